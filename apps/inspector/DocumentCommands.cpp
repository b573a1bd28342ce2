#include "apps/inspector/DocumentCommands.h"

#include <iterator>

namespace vexqt::inspector_app {

namespace {

/// Edits further apart than this, in milliseconds, are two to whoever made them.
constexpr qint64 kOneEdit = 1500;

}  // namespace

Document::EditCommand::EditCommand(Document& document, Edit edit)
    : QUndoCommand(edit.text), document_(document) {
    edits_ << std::move(edit);
    sinceLast_.start();
}

void Document::EditCommand::redo() {
    for (const Edit& edit : edits_) edit.redo();
    tell();
}

void Document::EditCommand::undo() {
    for (auto edit = edits_.crbegin(); edit != edits_.crend(); ++edit) edit->undo();
    tell();
}

void Document::EditCommand::tell() {
    VexQTAtom* atom = edits_.first().atom;
    document_.atoms_.refresh(atom);
    if (document_.isPerforming_) return;
    emit document_.changedElsewhere(atom);
    emit document_.touched();
}

bool Document::EditCommand::mergeWith(const QUndoCommand* other) {
    const auto& next = static_cast<const EditCommand&>(*other);
    const Edit& mine = edits_.last();
    const Edit& its = next.edits_.first();
    if (its.atom != mine.atom || its.key != mine.key || its.key.isEmpty()) return false;
    if (sinceLast_.elapsed() > kOneEdit) return false;
    edits_ << next.edits_;
    sinceLast_.start();
    return true;
}

Document::PlaceCommand::PlaceCommand(Document& document, VexQTAtom* holder, int row,
                                     const QString& text, std::unique_ptr<VexQTAtom> inserted)
    : QUndoCommand(text),
      document_(document),
      holder_(holder),
      row_(row),
      atom_(std::move(inserted)) {}

void Document::PlaceCommand::change() {
    VexQTAtom* come = atom_.get();
    if (come != nullptr) {
        document_.atoms_.insert(holder_, row_, std::move(atom_));
    } else {
        atom_ = document_.atoms_.take(holder_, row_);
    }
    if (come != nullptr) emit document_.inserted(come);
    emit document_.touched();
}

}  // namespace vexqt::inspector_app
