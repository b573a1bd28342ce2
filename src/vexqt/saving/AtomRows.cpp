#include "vexqt/saving/AtomRows.h"

namespace vexqt {

AtomAsRead::AtomAsRead(const VexQTAtom& atom) : bytes(atom.origin()) {
    std::vector<Problem> ignored;
    ReadContext context(survey, ignored);
    record = VexQTAtom::make(atom.atomClass(), bytes, atom.parent(), atom.offsetInFile(), context);
}

std::optional<Bytes> encodedRow(const Field& row, const Record& record) {
    if (row.encode == nullptr || !isPresent(row, record)) return std::nullopt;
    ByteWriter out;
    row.encode(record, out);
    return out.release();
}

std::string_view nameOfRow(const AtomClass& cls, const Field& row) {
    if (!row.name.empty()) return row.name;
    // Properties that an irregular row reads and writes stand right behind it.
    bool isBehind = false;
    for (const Field& each : cls.fields) {
        if (isBehind && each.decode == nullptr && !each.name.empty()) return each.name;
        if (isBehind && each.decode != nullptr) break;
        isBehind = isBehind || &each == &row;
    }
    return {};
}

}  // namespace vexqt
