#include "apps/inspector/MovieTab.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QSaveFile>
#include <QSplitter>
#include <QTreeView>

#include "apps/inspector/AtomPane.h"
#include "apps/inspector/BytePane.h"
#include "apps/inspector/MessageBar.h"
#include "apps/inspector/PathBar.h"
#include "apps/inspector/RemarkList.h"
#include "apps/inspector/words.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/inspector/NotificationCenter.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt::inspector_app {

namespace {

/// A word as a shell takes it back.
QString shellWord(const QString& word) {
    const bool isPlain = !word.isEmpty() && std::all_of(word.begin(), word.end(), [](QChar c) {
        return (c.unicode() < 0x80 && c.isLetterOrNumber()) ||
               QStringLiteral("._-/+:@%").contains(c);
    });
    if (isPlain && !word.startsWith(u'-')) return word;
    QString inner = word;
    return u'\'' + inner.replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

/// A part of a window: how much it grows with it, and how many pixels it has at first.
struct Part {
    QWidget* widget;
    int stretch, size;
};

QSplitter* split(Qt::Orientation orientation, const Part& first, const Part& second) {
    auto* splitter = new QSplitter(orientation);
    for (const Part& part : {first, second}) {
        splitter->addWidget(part.widget);
        splitter->setStretchFactor(splitter->count() - 1, part.stretch);
    }
    splitter->setSizes({first.size, second.size});
    splitter->setChildrenCollapsible(false);
    return splitter;
}

ByteRange rangeOf(const VexQTAtom& atom) { return {atom.extent().start, atom.extent().length}; }

}  // namespace

MovieTab::MovieTab(std::unique_ptr<Document> document, QWidget* parent)
    : QWidget(parent),
      document_(std::move(document)),
      saving_(*document_, *this),
      messages_(new QVBoxLayout),
      filter_(new QLineEdit),
      tree_(new QTreeView),
      remarks_(new RemarkList),
      pathBar_(new PathBar),
      pane_(new AtomPane(*document_)),
      bytes_(new BytePane) {
    setUpTree();
    arrange();
    connectParts();
    connectDocument();
    showRemarks();
    showFileState();
    tree_->expandToDepth(0);
    // The movie is what most people come for.
    VexQTAtom* first = document_->asset().moovAtom();
    if (first == nullptr && !document_->asset().rootAtoms().empty())
        first = document_->asset().rootAtoms().front().get();
    select(first);
    if (first == nullptr) showBytesOf(nullptr);
}

MovieTab::~MovieTab() {
    // The view goes before what it shows.
    pane_->setAtom(nullptr);
    document_->disconnect(this);
}

// MARK: Making the window's parts

void MovieTab::setUpTree() {
    filter_->setPlaceholderText(tr("Filter atoms by type or name"));
    filter_->setAccessibleName(tr("Filter atoms"));
    filter_->setClearButtonEnabled(true);
    filter_->addAction(theme::icon(QStringLiteral("search")), QLineEdit::LeadingPosition);

    shown_.setSourceModel(&document_->atoms());
    tree_->setModel(&shown_);
    tree_->setUniformRowHeights(true);
    tree_->setAlternatingRowColors(true);
    tree_->setAllColumnsShowFocus(true);
    tree_->setAccessibleName(tr("Atoms of the movie"));
    tree_->setContextMenuPolicy(Qt::ActionsContextMenu);
    tree_->setIndentation(13);
    QHeaderView& header = *tree_->header();
    header.setStretchLastSection(false);
    header.setMinimumSectionSize(40);
    header.setSectionResizeMode(AtomTreeModel::NameColumn, QHeaderView::Stretch);
    const int digit = tree_->fontMetrics().horizontalAdvance(u'0');
    header.resizeSection(AtomTreeModel::TypeColumn, 18 * digit);
    header.resizeSection(AtomTreeModel::SizeColumn, 10 * digit);
    header.resizeSection(AtomTreeModel::OffsetColumn, 10 * digit);
}

void MovieTab::arrange() {
    auto* browser = new QWidget;
    auto* browserLayout = new QVBoxLayout(browser);
    browserLayout->setContentsMargins(6, 6, 0, 6);
    browserLayout->setSpacing(6);
    browserLayout->addWidget(filter_);
    browserLayout->addWidget(tree_, 1);

    auto* top = new QWidget;
    auto* topLayout = new QVBoxLayout(top);
    topLayout->setContentsMargins(0, 6, 6, 0);
    topLayout->setSpacing(0);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 0, 0, 0);
    bar->addWidget(pathBar_, 1);
    topLayout->addLayout(bar);
    topLayout->addWidget(pane_, 1);

    auto* right = split(Qt::Vertical, {top, 3, 460}, {bytes_, 2, 240});
    auto* movie = split(Qt::Horizontal, {browser, 0, 480}, {right, 1, 760});
    messages_->setContentsMargins(0, 0, 0, 0);
    messages_->setSpacing(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(messages_);
    // What is wrong takes long sentences and long paths: all of the width.
    layout->addWidget(split(Qt::Vertical, {movie, 1, 650}, {remarks_, 0, 110}), 1);

    QWidget* before = filter_;
    for (QWidget* next :
         std::initializer_list<QWidget*>{tree_, remarks_, pathBar_, pane_, bytes_}) {
        setTabOrder(before, next);
        before = next;
    }
}

void MovieTab::connectParts() {
    connect(filter_, &QLineEdit::textChanged, this, &MovieTab::applyFilter);
    connect(filter_, &QLineEdit::returnPressed, this, &MovieTab::enterTree);
    connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &MovieTab::showSelected);
    connect(tree_, &QTreeView::activated, this, &MovieTab::enterView);
    connect(pathBar_, &PathBar::partChosen, this, [this](int position) {
        QModelIndex index = document_->atoms().indexOf(selectedAtom());
        QList<QModelIndex> chain;
        for (; index.isValid(); index = index.parent()) chain.prepend(index);
        if (position < chain.size()) select(document_->atoms().atomAt(chain[position]));
    });
    connect(pathBar_, &PathBar::pathEntered, this, [this](const QString& path) {
        QString error;
        if (selectPath(path, error)) return enterTree();
        pathBar_->refuse(error);
    });
    connect(remarks_, &RemarkList::remarkChosen, this,
            [this](const QString& path, std::optional<quint64> offset) {
                QString ignored;
                if (!path.isEmpty()) selectPath(path, ignored);
                if (offset) bytes_->hex().goTo(*offset);
            });
    connect(pane_, &AtomPane::fieldFocused, this, &MovieTab::highlightField);
    connect(pane_, &AtomPane::entryFocused, this, &MovieTab::highlightEntry);
    connect(pane_, &AtomPane::atomChosen, this, &MovieTab::select);
    connect(pane_, &AtomPane::editRefused, this, [this](const QString& key, const QString& why) {
        say(theme::MessageKind::Warning, tr("%1 keeps its value: %2").arg(key, why));
    });
    connect(&NotificationCenter::defaultCenter(), &NotificationCenter::posted, this,
            &MovieTab::followNotification);
}

void MovieTab::connectDocument() {
    Document& document = *document_;
    connect(&document, &Document::aboutToReadAgain, this, [this] {
        pathToKeep_ = selectedPath();
        pane_->setAtom(nullptr);
        bytes_->setSource(nullptr);
        places_.reset();
        unsaved_.reset();
    });
    connect(&document, &Document::hasReadAgain, this, [this] {
        dismiss(QStringLiteral("changedOnDisk"));
        dismiss(QStringLiteral("recovery"));
        showRemarks();
        tree_->expandToDepth(0);
        QString ignored;
        if (!selectPath(pathToKeep_, ignored)) select(document_->asset().moovAtom());
        showFileState();
        emit changed();
    });
    connect(&document, &Document::changedElsewhere, this, [this](VexQTAtom* atom) {
        // People see what an undo has undone.
        if (atom != selectedAtom()) select(atom);
        pane_->refresh();
    });
    connect(&document, &Document::inserted, this, &MovieTab::select);
    connect(&document, &Document::touched, this, [this] {
        showPath();
        emit changed();
    });
    connect(&document, &Document::modifiedChanged, this, &MovieTab::changed);
    connect(&document.history(), &QUndoStack::indexChanged, this, &MovieTab::changed);
    connect(&document, &Document::changedOnDisk, this, [this] {
        const QString text =
            document_->isModified()
                ? tr("%1 has changed on the disk. Reading it again loses your edits.")
                : tr("%1 has changed on the disk.");
        addMessage(theme::MessageKind::Warning, text.arg(document_->name()),
                   QStringLiteral("changedOnDisk"))
            ->addAction(tr("Read &Again"), [this] { readAgain(); });
    });
    connect(&saving_, &Saving::said, this, &MovieTab::say);
    connect(&saving_, &Saving::copySaved, this, [this](const QString& path) {
        addMessage(theme::MessageKind::Information,
                   tr("The copy is saved as %1.").arg(QFileInfo(path).fileName()))
            ->addAction(tr("&Open the Copy"), [this, path] { emit openRequested(path); });
    });
}

// MARK: Messages

MessageBar* MovieTab::addMessage(theme::MessageKind kind, const QString& text, const QString& id) {
    static constexpr int kMost = 3;
    for (MessageBar* bar : findChildren<MessageBar*>()) {
        const bool isSame = !id.isEmpty() ? bar->objectName() == id : bar->text() == text;
        // What came of the last act is of no use after the next one.
        const bool isOutdated =
            bar->objectName().isEmpty() && id.isEmpty() && messages_->count() >= kMost;
        if (isSame || isOutdated) delete bar;
    }
    auto* bar = new MessageBar(kind, text);
    bar->setObjectName(id);
    messages_->insertWidget(0, bar);
    return bar;
}

void MovieTab::dismiss(const QString& id) {
    for (MessageBar* bar : findChildren<MessageBar*>(id)) bar->deleteLater();
}

void MovieTab::say(theme::MessageKind kind, const QString& text) { addMessage(kind, text); }

void MovieTab::sayOf(const QString& file, const QString& why) {
    say(theme::MessageKind::Problem, tr("%1: %2").arg(file, why));
}

QStringList MovieTab::messages() const {
    QStringList texts;
    for (int i = 0; i < messages_->count(); ++i)
        if (const auto* bar = qobject_cast<MessageBar*>(messages_->itemAt(i)->widget()))
            texts << bar->text();
    return texts;
}

void MovieTab::showRemarks() {
    remarks_->setRemarks(document_->remarks());
    remarks_->setVisible(!document_->remarks().isEmpty());
    if (!document_->isMovie())
        addMessage(theme::MessageKind::Problem,
                   tr("%1 could not be read as a movie. Its bytes are shown below.")
                       .arg(document_->name()),
                   QStringLiteral("unreadable"));
}

void MovieTab::showFileState() {
    if (!document_->needsRecovery()) return;
    addMessage(theme::MessageKind::Warning,
               tr("A save of this movie was interrupted, or goes on at this moment. The movie can "
                  "be put back to what it was before that save."),
               QStringLiteral("recovery"))
        ->addAction(tr("Put &Back"), [this] { recoverMovie(); });
}

// MARK: The selected atom

VexQTAtom* MovieTab::selectedAtom() const {
    return document_->atoms().atomAt(shown_.mapToSource(tree_->currentIndex()));
}

void MovieTab::select(VexQTAtom* atom) {
    const QModelIndex source = document_->atoms().indexOf(atom);
    if (atom == nullptr || !source.isValid()) return;
    if (!shown_.mapFromSource(source).isValid()) filter_->clear();
    const QModelIndex index = shown_.mapFromSource(source);
    tree_->setCurrentIndex(index);
    tree_->scrollTo(index);
}

bool MovieTab::selectPath(const QString& path, QString& error) {
    try {
        select(&AtomPath(fromQString(path)).atomIn(document_->asset().rootAtoms()));
        return true;
    } catch (const Error& failure) {
        error = toQString(failure.what());
        return false;
    }
}

QString MovieTab::selectedPath() const { return document_->atoms().pathOf(selectedAtom()); }

QString MovieTab::startOfCommand() const {
    return QStringLiteral("vexqt show %1").arg(shellWord(document_->path()));
}

QString MovieTab::selectionAsCommand() const {
    const QString path = selectedPath();
    return path.isEmpty() ? startOfCommand() : startOfCommand() + u' ' + shellWord(path);
}

void MovieTab::showSelected() {
    VexQTAtom* atom = selectedAtom();
    showPath();
    pane_->setAtom(atom);
    showBytesOf(atom);
    emit changed();
}

void MovieTab::showPath() {
    const VexQTAtom* atom = selectedAtom();
    QStringList parts;
    QModelIndex index = document_->atoms().indexOf(atom);
    for (; atom != nullptr && index.isValid(); index = index.parent()) {
        const VexQTAtom* holder = document_->atoms().atomAt(index.parent());
        const auto& siblings =
            holder != nullptr ? holder->children() : document_->asset().rootAtoms();
        parts.prepend(
            toQString(AtomPath::segmentsOf(siblings)[static_cast<std::size_t>(index.row())]));
    }
    pathBar_->setParts(parts);
}

void MovieTab::showBytesOf(VexQTAtom* atom) {
    places_.reset();
    std::unique_ptr<ByteSource> before = std::move(unsaved_);
    if (atom == nullptr) return bytes_->setSource(&document_->bytes());
    places_.emplace(*atom);
    if (atom->extent().length != 0) {
        bytes_->setSource(&document_->bytes());
        bytes_->showAtom(rangeOf(*atom));
        return;
    }
    try {
        unsaved_ = std::make_unique<MemoryBytes>(Surgery().written(*atom).flat());
    } catch (const Error&) {  // It has no form in the file yet; a save says why.
        unsaved_ = std::make_unique<MemoryBytes>(SharedBytes());
    }
    bytes_->setSource(unsaved_.get(), tr("as a save will write it"));
    bytes_->showAtom({0, unsaved_->length()});
}

void MovieTab::highlightField(const QString& key) {
    // The focus leaves the form when somebody looks at the bytes of its field.
    if (key.isEmpty() || !places_) return;
    const auto range = places_->of(key);
    bytes_->showField(range.value_or(ByteRange{}), key);
}

void MovieTab::highlightEntry(const QString& list, quint64 entry) {
    if (!places_) return;
    const auto range = places_->ofEntry(list, entry);
    bytes_->showField(range.value_or(ByteRange{}),
                      tr("%1[%2]", "a list and the number of an entry, as in paths")
                          .arg(list, QString::number(entry)));
}

void MovieTab::followNotification(const QString& name, QObject* object,
                                  const QVariantMap& userInfo) {
    if (name != QStringLiteral("VexQTChunkOffsetDoubleClickNotification")) return;
    const auto* table = qobject_cast<QWidget*>(object);
    if (table == nullptr || !isAncestorOf(table)) return;
    const quint64 offset = userInfo.value(QStringLiteral("offset")).toULongLong();
    const quint64 length = userInfo.value(QStringLiteral("length")).toULongLong();
    const quint64 end = document_->bytes().length();
    if (offset >= end) {
        say(theme::MessageKind::Warning, tr("This chunk begins at %1, and the file ends at %2.")
                                             .arg(offsetText(offset), offsetText(end)));
        return;
    }
    bytes_->setVisible(true);
    bytes_->hex().goTo(offset);
    bytes_->showField({offset, std::min(length, end - offset)}, tr("Chunk"));
}

// MARK: Moving about

void MovieTab::applyFilter() {
    VexQTAtom* atom = selectedAtom();
    shown_.setText(filter_->text());
    if (!filter_->text().trimmed().isEmpty()) {
        tree_->expandAll();
        return;
    }
    if (atom == nullptr) atom = pane_->atom();
    select(atom);
}

void MovieTab::findAtoms() {
    filter_->setFocus(Qt::ShortcutFocusReason);
    filter_->selectAll();
}

void MovieTab::askForPath() { pathBar_->askForPath(); }

void MovieTab::askForOffset() {
    bytes_->setVisible(true);
    bytes_->askForOffset();
}

void MovieTab::enterTree() {
    if (!tree_->currentIndex().isValid()) tree_->setCurrentIndex(shown_.index(0, 0));
    tree_->setFocus(Qt::ShortcutFocusReason);
}

void MovieTab::enterView() { pane_->enter(); }

void MovieTab::enterBytes() {
    bytes_->setVisible(true);
    bytes_->hex().setFocus(Qt::ShortcutFocusReason);
}

void MovieTab::setBytesVisible(bool isVisible) { bytes_->setVisible(isVisible); }
void MovieTab::expandAll() { tree_->expandAll(); }
void MovieTab::collapseAll() { tree_->collapseAll(); }

/// Beside the movie, named after it and the selected atom.
QString MovieTab::exportPath(const QString& ending) const {
    const QFileInfo file(document_->path());
    return file.absolutePath() + u'/' + file.completeBaseName() + u'-' +
           typeFor(*selectedAtom()).trimmed() + ending;
}

// MARK: Tables

Table MovieTab::table() const { return tableIn(pane_->controller()); }

void MovieTab::askForRow() {
    const Table shown = table();
    const quint64 count = shown.entryCount();
    if (shown.view == nullptr || count == 0) return;
    const int most = static_cast<int>(std::min<quint64>(count, std::numeric_limits<int>::max()));
    bool isChosen = false;
    const int row = QInputDialog::getInt(this, tr("Go to Row"),
                                         tr("&Entry, from 1 to %1:").arg(QLocale().toString(most)),
                                         1, 1, most, 1, &isChosen);
    if (isChosen) shown.goTo(static_cast<quint64>(row) - 1);
}

void MovieTab::copyRows() const {
    const Table shown = table();
    if (shown.view != nullptr) QApplication::clipboard()->setText(selectionAsCsv(*shown.view));
}

void MovieTab::exportTable() {
    const Table shown = table();
    if (shown.list() == nullptr) return;
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Export Table"), exportPath(QStringLiteral(".csv")),
                                     tr("Comma-separated values (*.csv)"));
    if (path.isEmpty()) return;
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly)) return sayOf(path, out.errorString());
    QProgressDialog progress(tr("Exporting the table"), tr("&Stop"), 0, 1000, this);
    progress.setWindowModality(Qt::WindowModal);
    const auto tell = [&](quint64 done, quint64 total) {
        progress.setValue(static_cast<int>(done * 999 / std::max<quint64>(total, 1)));
        return !progress.wasCanceled();
    };
    const Field& field = *selectedAtom()->propertyNamed(fromQString(shown.listName()));
    if (!writeCsv(*selectedAtom(), field, out, tell) || !out.commit()) {
        if (!progress.wasCanceled()) sayOf(path, out.errorString());
        return;
    }
    say(theme::MessageKind::Information,
        tr("%n row(s) exported to %1.", nullptr, static_cast<int>(shown.entryCount()))
            .arg(QFileInfo(path).fileName()));
}

// MARK: Whole atoms

std::unique_ptr<VexQTAtom> MovieTab::askForAtom(const QString& title, VexQTAtom* holder) {
    const QString path = QFileDialog::getOpenFileName(this, title);
    if (path.isEmpty()) return nullptr;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        sayOf(path, file.errorString());
        return nullptr;
    }
    QString error;
    auto atom = Document::atomFrom(file.readAll(), holder, error);
    if (!atom) sayOf(QFileInfo(path).fileName(), error);
    return atom;
}

void MovieTab::insertIntoSelected() {
    VexQTAtom* holder = selectedAtom();
    if (holder == nullptr || !Document::canHold(*holder)) return;
    if (auto atom = askForAtom(tr("Insert an Atom"), holder))
        document_->insert(*holder, std::move(atom), nullptr);
}

void MovieTab::insertBehindSelected() {
    VexQTAtom* before = selectedAtom();
    VexQTAtom* holder = document_->atoms().holderOf(before);
    if (holder == nullptr || !Document::canHold(*holder)) return;
    if (auto atom = askForAtom(tr("Insert an Atom"), holder))
        document_->insert(*holder, std::move(atom), before);
}

void MovieTab::replaceSelected() {
    VexQTAtom* old = selectedAtom();
    VexQTAtom* holder = document_->atoms().holderOf(old);
    if (holder == nullptr) return;
    if (auto atom = askForAtom(tr("Replace the Atom"), holder))
        document_->replace(*old, std::move(atom));
}

void MovieTab::removeSelected() {
    VexQTAtom* atom = selectedAtom();
    if (atom == nullptr) return;
    const QString why = document_->whyNotRemovable(*atom);
    if (!why.isEmpty()) return say(theme::MessageKind::Information, why);
    document_->remove(*atom);
}

/// Media is copied block by block; it may be larger than the memory.
bool MovieTab::exportMedia(const QString& path, const Extent& extent) {
    static constexpr qsizetype kBlock = 1 << 20;
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly)) {
        sayOf(path, out.errorString());
        return false;
    }
    QProgressDialog progress(tr("Exporting the atom"), tr("&Stop"), 0, 1000, this);
    progress.setWindowModality(Qt::WindowModal);
    for (quint64 done = 0; done < extent.length;) {
        const quint64 left = extent.length - done;
        const QByteArray block = document_->bytes().read(
            extent.start + done, static_cast<qsizetype>(std::min<quint64>(left, kBlock)));
        if (block.isEmpty() || out.write(block) != block.size()) {
            sayOf(path, block.isEmpty() ? tr("the movie could not be read") : out.errorString());
            return false;
        }
        done += static_cast<quint64>(block.size());
        progress.setValue(
            static_cast<int>(static_cast<double>(done) / static_cast<double>(extent.length) * 999));
        if (progress.wasCanceled()) return false;
    }
    if (out.commit()) return true;
    sayOf(path, out.errorString());
    return false;
}

bool MovieTab::exportAtom(const QString& path, VexQTAtom& atom) {
    const OSType type = atom.atomClass().type;
    const bool isNeverRead = type == "mdat"_os || type == "free"_os;
    if (isNeverRead) return exportMedia(path, atom.extent());
    try {
        const QByteArray bytes = Document::bytesOf(atom);
        QSaveFile out(path);
        if (out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size() && out.commit())
            return true;
        sayOf(path, out.errorString());
    } catch (const Error& error) {
        say(theme::MessageKind::Problem, toQString(error.what()));
    }
    return false;
}

void MovieTab::exportSelected() {
    VexQTAtom* atom = selectedAtom();
    if (atom == nullptr) return;
    const QString path = QFileDialog::getSaveFileName(this, tr("Export the Atom"),
                                                      exportPath(QStringLiteral(".bin")));
    if (path.isEmpty() || !exportAtom(path, *atom)) return;
    say(theme::MessageKind::Information,
        tr("%1 is exported to %2.").arg(selectedPath(), QFileInfo(path).fileName()));
}

// MARK: The file

/// An edit that is being typed is an edit.
void MovieTab::finishTyping() {
    const QPointer<QWidget> focused = QApplication::focusWidget();
    if (!focused || !pane_->isAncestorOf(focused)) return;
    focused->clearFocus();
    if (focused) focused->setFocus();
}

bool MovieTab::save() {
    finishTyping();
    return saving_.save();
}

void MovieTab::saveCopy() {
    finishTyping();
    saving_.saveCopy();
}

void MovieTab::check() {
    finishTyping();
    saving_.check();
}

void MovieTab::readAgain() {
    if (document_->isModified()) {
        const auto answer = QMessageBox::question(
            this, tr("Read Again"),
            tr("Reading %1 again loses your edits. Read it all the same?").arg(document_->name()),
            QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Yes) return;
    }
    reload();
}

bool MovieTab::reload() {
    QString error;
    if (document_->readAgain(error)) return true;
    say(theme::MessageKind::Problem, tr("%1 cannot be read: %2").arg(document_->name(), error));
    return false;
}

void MovieTab::recoverMovie() {
    RecoveryResult result = document_->recover(IfChanged::Refuse);
    if (result.outcome == Recovery::Refused) {
        const auto answer = QMessageBox::warning(
            this, tr("Put Back"),
            tr("%1\n\nPut the old bytes back all the same?").arg(toQString(result.text)),
            QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer == QMessageBox::Yes) result = document_->recover(IfChanged::RecoverAnyway);
    }
    const bool isDone = result.outcome == Recovery::RolledBack ||
                        result.outcome == Recovery::Discarded ||
                        result.outcome == Recovery::NothingToDo;
    if (isDone && !reload()) return;
    say(isDone ? theme::MessageKind::Information : theme::MessageKind::Problem,
        toQString(result.text));
}

void MovieTab::takeBackLastSave() {
    if (document_->isModified())
        return say(theme::MessageKind::Warning,
                   tr("Save or undo your edits before the last save is taken back."));
    const UndoResult result = document_->takeBackLastSave();
    const bool isDone = result.outcome == UndoResult::Outcome::Undone ||
                        result.outcome == UndoResult::Outcome::AlreadyUndone;
    if (isDone && !reload()) return;
    say(isDone ? theme::MessageKind::Information : theme::MessageKind::Warning,
        toQString(result.text));
}

bool MovieTab::mayClose() {
    finishTyping();
    if (!document_->isModified()) return true;
    QMessageBox question(QMessageBox::Question, tr("Close"),
                         tr("%1 has edits that are not saved.").arg(document_->name()),
                         QMessageBox::Cancel, this);
    question.setInformativeText(tr("What should become of them?"));
    QPushButton* save = question.addButton(tr("&Save…"), QMessageBox::AcceptRole);
    QPushButton* discard = question.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    question.exec();
    if (question.clickedButton() == save) return saving_.save();
    return question.clickedButton() == discard;
}

}  // namespace vexqt::inspector_app
