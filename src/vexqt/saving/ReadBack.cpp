#include "vexqt/saving/ReadBack.h"

#include "vexqt/asset/AtomPath.h"
#include "vexqt/saving/SavePlan.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {

namespace {

/// What a class writes for a row; absent also where it cannot write what the atom holds.
std::optional<Bytes> writtenRow(const Field& row, const Record& record) {
    try {
        return encodedRow(row, record);
    } catch (const Error&) {
        return std::nullopt;
    }
}

/// Where a row was read; null where it was not in the file.
const Survey::Part* partOf(const Field& row, const AtomAsRead& read) {
    const auto& rows = read.survey.rows;
    const auto part = std::ranges::find(rows, &row, &Survey::Part::row);
    return part != rows.end() ? &*part : nullptr;
}

class Comparison {
public:
    explicit Comparison(SaveForm form) : form_(form) {}

    std::optional<Misreading> compare(const VexQTAtom& meant, const VexQTAtom& readBack,
                                      const std::string& path) const;

private:
    std::optional<std::string> rowDifference(const VexQTAtom& meant,
                                             const VexQTAtom& readBack) const;
    bool hasMeantBytes(const Field& row, const VexQTAtom& meant, const AtomAsRead& readBack) const;
    static bool readsAsWritten(const Field& row, ByteView written, const AtomAsRead& readBack);

    SaveForm form_;
};

/// Whether the row has the bytes that the save was to give it.
bool Comparison::hasMeantBytes(const Field& row, const VexQTAtom& meant,
                               const AtomAsRead& readBack) const {
    const auto now = writtenRow(row, meant);
    const Survey::Part* there = partOf(row, readBack);
    if (!now || there == nullptr) return false;
    const SharedBytes bytes = readBack.part(there->start, there->end);
    if (!readsAsWritten(row, *now, readBack)) return false;
    if (meant.origin().size() == 0 || form_ == SaveForm::Exact)
        return std::ranges::equal(bytes.view(), *now);
    const AtomAsRead before(meant);
    const Survey::Part* was = partOf(row, before);
    if (was == nullptr) return std::ranges::equal(bytes.view(), *now);
    const auto edited = editedRow(*was, before, meant);
    return std::ranges::equal(
        bytes.view(), edited ? ByteView(edited->bytes) : before.part(was->start, was->end).view());
}

/// Whether a row that was read back has the value that it would have if its bytes were the class's
/// own.
bool Comparison::readsAsWritten(const Field& row, ByteView written, const AtomAsRead& readBack) {
    const auto record = readBack.withRow(*partOf(row, readBack), written);
    return record && writtenRow(row, *record) == writtenRow(row, *readBack.record);
}

/// The name of the first row that does not read as it was meant; absent where all of them do.
std::optional<std::string> Comparison::rowDifference(const VexQTAtom& meant,
                                                     const VexQTAtom& readBack) const {
    for (const Field& row : meant.atomClass().fields) {
        if (row.holdsChildren || row.encode == nullptr) continue;
        if (row.untouched != nullptr && row.untouched(meant)) continue;
        if (writtenRow(row, meant) == writtenRow(row, readBack)) continue;
        if (!hasMeantBytes(row, meant, AtomAsRead(readBack)))
            return std::string(nameOfRow(meant.atomClass(), row));
    }
    return std::nullopt;
}

/// Whether nothing of an atom is written but its header.
bool isBareHeader(const VexQTAtom& atom) {
    return atom.children().empty() &&
           std::ranges::all_of(atom.atomClass().fields, [&](const Field& row) {
               return row.holdsChildren || writtenRow(row, atom).value_or(Bytes()).empty();
           });
}

/// Whether what is missing is a last child that is a header and nothing else, which is written and
/// not read: it held what was removed.
bool endsWithUnreadChild(const VexQTAtom& meant, const VexQTAtom& readBack) {
    constexpr std::size_t kHeader = 8;
    const ByteView bytes = readBack.origin().view();
    if (meant.atomClass().bareLastChild != BareLastChild::IsDropped ||
        meant.children().size() != readBack.children().size() + 1 || bytes.size() < 2 * kHeader ||
        !isBareHeader(*meant.children().back()))
        return false;
    ByteReader last(bytes.last(kHeader));
    return last.u32() == kHeader && last.u32() == meant.children().back()->atomType();
}

std::optional<Misreading> Comparison::compare(const VexQTAtom& meant, const VexQTAtom& readBack,
                                              const std::string& path) const {
    const bool isRaw = &meant.atomClass() == &VexQTAtom::kClass && meant.unknownBytes();
    if (isRaw && !meant.declinedClass()) {
        // Its type may be one that a class decodes; then it is read as that from now on.
        const ByteView bytes = readBack.origin().view();
        const ByteView raw = *meant.unknownBytes();
        const bool isSame = meant.atomTypeString() == readBack.atomTypeString() &&
                            bytes.size() >= raw.size() &&
                            std::ranges::equal(bytes.last(raw.size()), raw);
        if (isSame) return std::nullopt;
        return Misreading{path, "its bytes would read back as others"};
    }
    // Where there is no header the type follows from the fields.
    const bool hasType = meant.atomClass().header != HeaderRule::None;
    const bool isSameKind = &meant.atomClass() == &readBack.atomClass() &&
                            meant.declinedClass() == readBack.declinedClass() &&
                            (!hasType || meant.atomTypeString() == readBack.atomTypeString());
    if (!isSameKind) {
        const bool isDeclined = readBack.declinedClass() && !meant.declinedClass();
        return Misreading{
            path, isDeclined ? "its new bytes would not be read as what they are any more (" +
                                   readBack.declinedReason() + ")"
                             : std::string("would read back as another kind of atom")};
    }
    if (const auto row = rowDifference(meant, readBack)) {
        return Misreading{path, (row->empty() ? "its bytes" : "'" + *row + "'") +
                                    " would not read back as edited"};
    }
    const auto& children = meant.children();
    const std::size_t count = children.size() - (endsWithUnreadChild(meant, readBack) ? 1 : 0);
    if (count != readBack.children().size()) {
        return Misreading{path, std::to_string(children.size()) + " atoms in it would read back " +
                                    "as " + std::to_string(readBack.children().size())};
    }
    const auto segments = AtomPath::segmentsOf(children);
    for (std::size_t i = 0; i < count; ++i)
        if (auto found = compare(*children[i], *readBack.children()[i], path + "." + segments[i]))
            return found;
    return std::nullopt;
}

}  // namespace

std::optional<Misreading> misreadingOf(const VexQTAtom& meant, const SharedBytes& bytes,
                                       std::uint64_t offsetInFile, const std::string& path,
                                       SaveForm form) {
    std::vector<Problem> ignored;
    ReadContext context(ignored);
    const ReadContext::Siblings none;
    const ReadContext::Step step(context, meant.atomType(), none);
    try {
        const auto readBack =
            VexQTAtom::make(meant.atomClass(), bytes, nullptr, offsetInFile, context);
        if (readBack) return Comparison(form).compare(meant, *readBack, path);
        return Misreading{path, "its new bytes would not be read as what they are any more"};
    } catch (const Error& error) {
        return Misreading{path, "would not be read back: " + error.message()};
    }
}

std::optional<Misreading> strictFailure(const AtomClass& cls, const SharedBytes& bytes,
                                        std::uint64_t offsetInFile, const std::string& path) {
    ReadContext context;
    const ReadContext::Siblings none;
    const ReadContext::Step step(context, cls.type, none);
    try {
        if (VexQTAtom::make(cls, bytes, nullptr, offsetInFile, context)) return std::nullopt;
        return Misreading{path, std::string(cls.className) + " declines its bytes"};
    } catch (const Error& error) {
        return Misreading{error.path().empty() ? path : path + "." + error.path(), error.message()};
    }
}

}  // namespace vexqt
