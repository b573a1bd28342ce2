#include "vexqt/saving/AtomRows.h"

namespace vexqt {

AtomAsRead::AtomAsRead(const VexQTAtom& atom) : bytes(atom.origin()) {
    std::vector<Problem> ignored;
    ReadContext context(survey, ignored);
    record = VexQTAtom::make(atom.atomClass(), bytes, atom.parent(), atom.offsetInFile(), context);
}

std::unique_ptr<VexQTAtom> AtomAsRead::withRow(const Survey::Part& part, ByteView rowBytes) const {
    ByteWriter out;
    out.append(bytes.view().first(part.start));
    out.append(rowBytes);
    out.append(bytes.view().subspan(part.end));
    Survey otherSurvey;
    std::vector<Problem> ignored;
    ReadContext context(otherSurvey, ignored);
    try {
        return VexQTAtom::make(record->atomClass(), SharedBytes::copyOf(out.view()),
                               record->parent(), record->offsetInFile(), context);
    } catch (const Error&) {
        return nullptr;
    }
}

std::optional<Bytes> encodedRow(const Field& row, const Record& record) {
    if (row.encode == nullptr || !isPresent(row, record)) return std::nullopt;
    ByteWriter out;
    row.encode(record, out);
    return out.release();
}

std::span<const Field> propertiesOf(const AtomClass& cls, const Field& row) {
    const auto all = cls.fields;
    if (!row.name.empty()) return std::span(&row, 1);
    auto end = static_cast<std::size_t>(&row - all.data()) + 1;
    // One row may stand in several forms, of which one is in the file.
    while (end < all.size() && all[end].decode == row.decode) ++end;
    const std::size_t begin = end;
    while (end < all.size() && all[end].decode == nullptr) ++end;
    return all.subspan(begin, end - begin);
}

std::string_view nameOfRow(const AtomClass& cls, const Field& row) {
    for (const Field& property : propertiesOf(cls, row))
        if (!property.name.empty()) return property.name;
    return {};
}

}  // namespace vexqt
