#include "apps/inspector/FieldPlaces.h"

#include <array>
#include <iterator>

#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

namespace {

constexpr std::array<std::string_view, 9> kMatrixKeys = {
    "matrixAValue", "matrixBValue", "matrixUValue", "matrixCValue", "matrixDValue",
    "matrixVValue", "matrixXValue", "matrixYValue", "matrixWValue"};
constexpr std::array<std::string_view, 3> kFlagKeys = {"flags0", "flags1", "flags2"};

/// The position of a key in a list of keys that share a row.
template <std::size_t count>
std::optional<std::size_t> positionIn(const std::array<std::string_view, count>& keys,
                                      std::string_view key) {
    const auto* found = std::ranges::find(keys, key);
    if (found == keys.end()) return std::nullopt;
    return static_cast<std::size_t>(found - keys.begin());
}

bool isFlagsRow(const Field* row) {
    return row != nullptr && row->name.empty() && row->width == 3 && row->unitWidth == 1;
}

bool isProperty(const AtomClass& cls, const Field& row, std::string_view key) {
    if (row.name == "matrix" && positionIn(kMatrixKeys, key)) return true;
    return std::ranges::any_of(propertiesOf(cls, row),
                               [key](const Field& property) { return property.name == key; });
}

/// The part that a property was read from; null where none was.
const Survey::Part* partOf(const AtomClass& cls, const Survey& survey, std::string_view key) {
    // Version and flags have no names in the rows: they are every atom's.
    const auto flags = std::ranges::find_if(
        survey.rows, [](const Survey::Part& part) { return isFlagsRow(part.row); });
    if (flags != survey.rows.end() && positionIn(kFlagKeys, key)) return &*flags;
    if (flags != survey.rows.end() && flags != survey.rows.begin() && key == "version") {
        const Survey::Part& before = *std::prev(flags);
        return before.row != nullptr && before.row->width == 1 ? &before : nullptr;
    }
    for (const Survey::Part& part : survey.rows)
        if (part.row != nullptr && isProperty(cls, *part.row, key)) return &part;
    return nullptr;
}

}  // namespace

const AtomAsRead* FieldPlaces::asRead() {
    if (!isSurveyed_ && atom_.origin().size() > 0) {
        try {
            asRead_.emplace(atom_);
        } catch (const Error&) {  // It was kept as it is: no field of it has a place.
            asRead_.reset();
        }
    }
    isSurveyed_ = true;
    return asRead_ ? &*asRead_ : nullptr;
}

const Survey::Part* FieldPlaces::partOf(std::string_view key) {
    const AtomAsRead* read = asRead();
    return read != nullptr ? inspector_app::partOf(atom_.atomClass(), read->survey, key) : nullptr;
}

/// The bytes that atoms are made from reach to their end, but do not always begin at their start.
ByteRange FieldPlaces::inFile(std::size_t start, std::size_t end) const {
    const Extent extent = atom_.extent();
    const std::uint64_t size = atom_.origin().size();
    const std::uint64_t inFront = extent.length > size ? extent.length - size : 0;
    return {extent.start + inFront + start, end - start};
}

std::optional<ByteRange> FieldPlaces::of(const QString& key) {
    const std::string name = fromQString(key);
    const Survey::Part* part = partOf(name);
    if (part == nullptr || part->end <= part->start || atom_.extent().length == 0)
        return std::nullopt;
    const std::size_t length = part->end - part->start;
    if (const auto cell = positionIn(kMatrixKeys, name); cell && length == 36)
        return inFile(part->start + 4 * *cell, part->start + 4 * *cell + 4);
    if (const auto flag = positionIn(kFlagKeys, name); flag && length == 3)
        return inFile(part->start + *flag, part->start + *flag + 1);
    return inFile(part->start, part->end);
}

std::optional<ByteRange> FieldPlaces::ofEntry(const QString& list, quint64 entry) {
    const std::string name = fromQString(list);
    const Field* property = atom_.propertyNamed(name);
    const Survey::Part* part = partOf(name);
    if (property == nullptr || property->list == nullptr || part == nullptr || !asRead()->record)
        return std::nullopt;
    const std::size_t width =
        property->list->columns.size() == 1 && property->list->columns.front().width == 0
            ? property->list->columns.front().bits / std::size_t{8}
            : wireWidth(property->list->columns);
    const std::size_t length = part->end - part->start;
    // Entries of differing lengths lie nowhere that could be told from here.
    const bool isOfOneWidth =
        width > 0 && property->list->size(*asRead()->record) == length / width;
    if (!isOfOneWidth || entry >= length / width) return std::nullopt;
    const std::size_t start = part->start + static_cast<std::size_t>(entry) * width;
    return inFile(start, start + width);
}

}  // namespace vexqt::inspector_app
