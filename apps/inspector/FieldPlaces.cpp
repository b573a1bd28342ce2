#include "apps/inspector/FieldPlaces.h"

#include <array>

#include "vexqt/core/full_atom.h"
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

/// The row that reads a property: its own, or the irregular one that it stands behind.
const Field* rowOf(const AtomClass& cls, std::string_view key) {
    const Field* reading = nullptr;
    for (const Field& row : cls.fields) {
        if (row.decode != nullptr) reading = &row;
        const bool isVersion = key == "version" && row.decode == &rows::readVersion;
        const bool isFlags =
            positionIn(kFlagKeys, key) && row.name.empty() && row.width == 3 && row.unitWidth == 1;
        const bool isMatrix = positionIn(kMatrixKeys, key) && row.name == "matrix";
        if (isVersion || isFlags || isMatrix) return &row;
        if (row.name != key) continue;
        // What was worked out from others lies behind a row that has a name of its own.
        const bool isIrregular = reading != nullptr && reading->name.empty();
        return row.decode != nullptr || isIrregular ? reading : nullptr;
    }
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
    const Field* row = read != nullptr ? rowOf(atom_.atomClass(), key) : nullptr;
    if (row == nullptr) return nullptr;
    const auto part = std::ranges::find(read->survey.rows, row, &Survey::Part::row);
    return part != read->survey.rows.end() ? &*part : nullptr;
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
