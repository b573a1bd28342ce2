#pragma once

#include <QScrollArea>
#include <QWidget>
#include <memory>

#include "apps/inspector/AtomHeader.h"
#include "vexqt/inspector/VexQTAtomViewController.h"

class QLabel;
class QStackedWidget;
class QTreeView;

namespace vexqt::inspector_app {

class Document;

/// One atom: what is true of every atom, and below it the atom's own view. An atom that has none
/// shows what is in it.
class AtomPane : public QWidget {
    Q_OBJECT

public:
    explicit AtomPane(Document& document, QWidget* parent = nullptr);
    ~AtomPane() override;

    /// Null for none.
    void setAtom(VexQTAtom* atom);
    VexQTAtom* atom() const { return atom_; }
    /// Null where the atom has no view.
    VexQTAtomViewController* controller() const { return controller_.get(); }
    /// Shows all values anew.
    void refresh();
    /// Moves the focus to the first field.
    void enter();

signals:
    /// Another field has the focus; empty for none.
    void fieldFocused(const QString& key);
    /// Another entry of a list is the current one.
    void entryFocused(const QString& list, quint64 entry);
    void atomChosen(VexQTAtom* atom);
    void edited();
    void editRefused(const QString& key, const QString& why);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void retire();
    void clear();
    void showContents(const QString& note);
    void followTables(QWidget& view);

    Document& document_;
    VexQTAtom* atom_ = nullptr;
    std::unique_ptr<VexQTAtomViewController> controller_;
    QList<QPointer<VexQTAtomViewController>> retired_;
    AtomHeader* header_;
    QStackedWidget* stack_;
    QScrollArea* scroll_;
    QWidget* contentsPage_;
    QLabel* note_;
    QTreeView* contents_;
};

}  // namespace vexqt::inspector_app
