// Writing an atom so that only the bytes of what was edited change.
//
// Nobody marks what was edited. Every row of an atom's class is looked at three times: the bytes as
// they were read; what the class writes for the values that those bytes give; what it writes for
// the values that the atom has now. Where the last two agree nobody edited the row, and the bytes
// that were read stay, however the class itself would have written them. What no row covers and no
// child is made of stays as well: dropped children, a last bare header, bytes behind the end.
#pragma once

#include "vexqt/export.h"
#include "vexqt/saving/AtomRows.h"
#include "vexqt/saving/ByteRope.h"

namespace vexqt {

/// A row of an atom that was edited.
struct Edit {
    const VexQTAtom* atom = nullptr;  ///< What has the row.
    std::string_view property;  ///< The row's name; empty for what has none, such as a child list.
    /// Whether bytes of the row that stand for something else change as well: the file has it in
    /// another form than the class writes.
    bool changesMore = false;
};

/// Writes atoms and remembers what was edited in them.
class VEXQT_EXPORT Surgery {
public:
    /// The atom's bytes, children included. An atom made in memory is written as its class writes
    /// it.
    /// \throws EncodingError where an edit has no form in the file.
    ByteRope written(VexQTAtom& atom);

    /// What was found to be edited while writing, in file order.
    const std::vector<Edit>& edits() const { return edits_; }
    /// Atoms whose length changes and whose size field did not tell it before. What is added to the
    /// one is added to the other.
    const std::vector<const VexQTAtom*>& disagreeingSizes() const { return disagreeingSizes_; }

private:
    ByteRope writtenAsRead(VexQTAtom& atom);
    void noteSize(const VexQTAtom& atom, ByteView header);
    void appendRow(const Field& row, const Survey::Part& part, const AtomAsRead& read,
                   VexQTAtom& atom, ByteRope& out);
    void appendChildren(const Survey::Part& region, const AtomAsRead& read, VexQTAtom& atom,
                        ByteRope& out);

    std::vector<Edit> edits_;
    std::vector<const VexQTAtom*> disagreeingSizes_;
};

/// The bytes of a row that was edited.
struct EditedRow {
    Bytes bytes;  ///< As they are written.
    /// Whether they are the class's own, and those that were read were not: what of them nobody
    /// edited is written in another way as well.
    bool isRewritten = false;
};

/// Those that were read, but for the values that differ between what would be written of them and
/// what would be written now.
VEXQT_EXPORT EditedRow mergedRow(const Field& row, ByteView read, ByteView wouldBe, ByteView now);

/// The same for a row of an atom: where its list has entries of lengths of their own, each of them
/// that was not edited keeps its bytes.
///
/// Absent where nobody edited the row, or where its class cannot write what was read.
/// \throws EncodingError where the edit has no form in the file.
VEXQT_EXPORT std::optional<EditedRow> editedRow(const Survey::Part& part, const AtomAsRead& read,
                                                const VexQTAtom& atom);

}  // namespace vexqt
