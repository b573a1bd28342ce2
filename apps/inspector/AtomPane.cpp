#include "apps/inspector/AtomPane.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QTreeView>

#include "apps/inspector/Document.h"
#include "apps/inspector/table_tools.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

namespace {

constexpr int kColumnGap = 14;
constexpr int kRowAir = 8;  ///< Above and below the text of a table's row.

QString noteOn(const VexQTAtom& atom) {
    if (!atom.children().empty()) return AtomPane::tr("This atom holds other atoms:");
    if (atom.atomType() == "mdat"_os)
        return AtomPane::tr(
            "Media data: the samples of the tracks lie here. The chunk offsets of each track "
            "(stco or co64) say where; a double click on one of them shows its bytes below.");
    if (atom.atomClass().type == "free"_os)
        return AtomPane::tr("Free space: readers skip it, and a save may use it.");
    if (Document::canHold(atom)) return AtomPane::tr("This atom holds other atoms, and none now.");
    return AtomPane::tr("There is no view for atoms of this type. Its bytes are below.");
}

}  // namespace

AtomPane::AtomPane(Document& document, QWidget* parent)
    : QWidget(parent),
      document_(document),
      header_(new AtomHeader),
      stack_(new QStackedWidget),
      scroll_(new QScrollArea),
      contentsPage_(new QWidget),
      note_(new QLabel),
      contents_(new QTreeView) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header_);
    layout->addWidget(stack_, 1);

    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setAccessibleName(tr("View of the atom"));
    scroll_->viewport()->setAutoFillBackground(false);
    note_->setWordWrap(true);
    note_->setAccessibleName(tr("What this atom is"));
    contents_->setRootIsDecorated(false);
    contents_->setItemsExpandable(false);
    contents_->setUniformRowHeights(true);
    contents_->setAlternatingRowColors(true);
    contents_->setAllColumnsShowFocus(true);
    contents_->setAccessibleName(tr("Atoms in this one"));
    contents_->setModel(&document.atoms());
    contents_->header()->setStretchLastSection(false);
    contents_->header()->setSectionResizeMode(AtomTreeModel::NameColumn, QHeaderView::Stretch);
    auto* page = new QVBoxLayout(contentsPage_);
    page->setContentsMargins(14, 8, 14, 14);
    page->setSpacing(8);
    page->addWidget(note_);
    page->addWidget(contents_, 1);
    page->addStretch(0);

    stack_->addWidget(contentsPage_);
    stack_->addWidget(scroll_);
    connect(contents_, &QTreeView::activated, this, [this](const QModelIndex& index) {
        if (VexQTAtom* atom = document_.atoms().atomAt(index)) emit atomChosen(atom);
    });
    setAtom(nullptr);
}

AtomPane::~AtomPane() { clear(); }

/// An edit in a view may lead to another view, so the old one outlives what it is doing now. It
/// does not outlive its atom.
void AtomPane::retire() {
    if (!controller_) return;
    controller_->disconnect(this);
    retired_.removeAll(nullptr);
    retired_ << controller_.get();
    controller_.release()->deleteLater();
}

void AtomPane::setAtom(VexQTAtom* atom) {
    if (atom == nullptr) return clear();
    // Whoever listened to the old view must not hear of the new one's first focus before it stands.
    scroll_->takeWidget();
    retire();
    atom_ = atom;
    header_->setAtom(atom);
    controller_.reset(VexQTAsset::newViewControllerForAtom(atom));
    QWidget* view = controller_ ? controller_->view() : nullptr;
    if (view == nullptr) {
        const bool isBroken = controller_ != nullptr;
        const QString note = isBroken ? tr("The view of this atom cannot be shown: %1")
                                            .arg(controller_->problems().join(QStringLiteral("; ")))
                                      : noteOn(*atom);
        controller_.reset();
        return showContents(note);
    }
    controller_->setEditHandler(document_.editHandler());
    connect(controller_.get(), &VexQTAtomViewController::fieldFocused, this,
            &AtomPane::fieldFocused);
    connect(controller_.get(), &VexQTAtomViewController::editRefused, this, &AtomPane::editRefused);
    connect(controller_.get(), &VexQTAtomViewController::edited, this, [this] {
        header_->setAtom(atom_);
        emit edited();
    });
    followTables(*view);
    scroll_->setWidget(view);
    view->show();
    stack_->setCurrentWidget(scroll_);
}

void AtomPane::clear() {
    scroll_->takeWidget();
    retire();
    for (const auto& controller : retired_) delete controller;
    retired_.clear();
    atom_ = nullptr;
    header_->setAtom(nullptr);
    contents_->setRootIndex({});
    contents_->hide();
    note_->setText({});
    stack_->setCurrentWidget(contentsPage_);
}

void AtomPane::showContents(const QString& note) {
    note_->setText(note);
    const bool hasChildren = !atom_->children().empty();
    contents_->setVisible(hasChildren);
    contents_->setRootIndex(document_.atoms().indexOf(atom_));
    for (const int column :
         {AtomTreeModel::TypeColumn, AtomTreeModel::SizeColumn, AtomTreeModel::OffsetColumn}) {
        contents_->resizeColumnToContents(column);
        contents_->setColumnWidth(column, contents_->columnWidth(column) + kColumnGap);
    }
    stack_->setCurrentWidget(contentsPage_);
}

void AtomPane::followTables(QWidget& view) {
    for (QTableView* table : view.findChildren<QTableView*>()) {
        if (table->accessibleName().isEmpty()) table->setAccessibleName(tr("Entries"));
        if (table->selectionModel() == nullptr) continue;
        table->installEventFilter(this);
        table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + kRowAir);
        connect(table->selectionModel(), &QItemSelectionModel::currentChanged, this,
                [this, table](const QModelIndex& current) {
                    const Table shown{table, controller_.get()};
                    if (current.isValid())
                        emit entryFocused(shown.listName(), shown.entryAt(current));
                });
    }
}

/// Copying from a table copies all the cells that are selected, not only the current one.
bool AtomPane::eventFilter(QObject* watched, QEvent* event) {
    auto* table = qobject_cast<QTableView*>(watched);
    if (table != nullptr && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        QApplication::clipboard()->setText(selectionAsCsv(*table));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void AtomPane::refresh() {
    header_->setAtom(atom_);
    if (controller_) return controller_->refresh();
    if (atom_ != nullptr) showContents(noteOn(*atom_));
}

void AtomPane::enter() {
    QWidget* first = contents_;
    if (controller_) {
        const QWidget* view = controller_->view();
        const auto takesFocus = [](const QWidget& widget) {
            return (widget.focusPolicy() & Qt::TabFocus) != 0 && widget.isVisible();
        };
        first = view->nextInFocusChain();
        while (view->isAncestorOf(first) && !takesFocus(*first)) first = first->nextInFocusChain();
    }
    first->setFocus(Qt::TabFocusReason);
}

}  // namespace vexqt::inspector_app
