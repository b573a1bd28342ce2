// What the history of a document is made of.
#pragma once

#include <QElapsedTimer>
#include <QUndoCommand>

#include "apps/inspector/Document.h"

namespace vexqt::inspector_app {

/// An edit of values. Edits of one property that follow each other closely become one.
class Document::EditCommand : public QUndoCommand {
public:
    EditCommand(Document& document, Edit edit);

    void redo() override;
    void undo() override;
    int id() const override { return 1; }
    bool mergeWith(const QUndoCommand* other) override;

private:
    void tell();

    Document& document_;
    QList<Edit> edits_;
    QElapsedTimer sinceLast_;
};

/// Takes an atom out of its place or puts one into it, and back.
class Document::PlaceCommand : public QUndoCommand {
public:
    PlaceCommand(Document& document, VexQTAtom* holder, int row, const QString& text,
                 std::unique_ptr<VexQTAtom> inserted = nullptr);

    void redo() override { change(); }
    void undo() override { change(); }

private:
    void change();

    Document& document_;
    VexQTAtom* holder_;
    int row_;
    std::unique_ptr<VexQTAtom> atom_;  ///< As long as it is not in the tree.
};

}  // namespace vexqt::inspector_app
