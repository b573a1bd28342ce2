#include "apps/inspector/Document.h"

#include <QFileInfo>
#include <QScopedValueRollback>

#include "apps/inspector/DocumentCommands.h"
#include "apps/inspector/words.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/platform/log.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt::inspector_app {

namespace {

std::filesystem::path fileOf(const QString& path) { return path.toStdString(); }

QString sentence(const std::error_code& error) { return toQString(error.message()); }

/// Collects what the library logs, as long as it lives.
class LogCollector {
public:
    explicit LogCollector(QStringList& lines)
        : before_(setLogSink([&lines](std::string_view line) { lines << toQString(line); })) {}
    ~LogCollector() { setLogSink(std::move(before_)); }
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

private:
    LogSink before_;
};

}  // namespace

// MARK: Reading

std::unique_ptr<VexQTAsset> Document::read(const QString& path, QStringList& log, QString& error) {
    const LogCollector collector(log);
    try {
        std::error_code code;
        auto asset = VexQTAsset::initWithURL(fileOf(path), code, {.tolerant = true});
        if (!asset) error = sentence(code);
        return asset;
    } catch (const Error& failure) {
        error = toQString(failure.what());
    } catch (const std::bad_alloc&) {
        error = tr("there is not enough memory");
    }
    return nullptr;
}

std::unique_ptr<Document> Document::open(const QString& path, QString& error) {
    QStringList log;
    auto asset = read(path, log, error);
    if (!asset) return nullptr;
    return std::unique_ptr<Document>(new Document(path, std::move(asset), log));
}

Document::Document(QString path, std::unique_ptr<VexQTAsset> asset, const QStringList& log)
    : path_(std::move(path)) {
    adopt(std::move(asset), log);
    connect(&history_, &QUndoStack::cleanChanged, this,
            [this](bool isClean) { emit modifiedChanged(!isClean); });
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &Document::lookAtFile);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &Document::lookAtFile);
    watch();
}

QString Document::name() const { return QFileInfo(path_).fileName(); }

void Document::adopt(std::unique_ptr<VexQTAsset> asset, const QStringList& log) {
    atoms_.setRoots(nullptr);
    history_.clear();
    asset_ = std::move(asset);
    bytes_ = FileBytes::open(fileOf(path_));
    if (!bytes_) bytes_ = std::make_unique<MemoryBytes>(SharedBytes());
    atoms_.setRoots(&asset_->rootAtoms());
    remark(log);
}

bool Document::isMovie() const {
    const auto& roots = asset_->rootAtoms();
    const bool isWhole = !roots.empty() && asset_->problems().empty();
    return isWhole || std::ranges::any_of(roots, [](const auto& root) {
               return &root->atomClass() != &VexQTAtom::kClass;
           });
}

void Document::remark(const QStringList& log) {
    remarks_.clear();
    QHash<const VexQTAtom*, QString> byAtom;
    for (const Problem& problem : asset_->problems()) {
        remarks_ << Remark{toQString(problem.path), problem.offsetInFile,
                           toQString(problem.message)};
        try {
            if (problem.path.empty()) continue;
            byAtom.insert(&AtomPath(problem.path).atomIn(asset_->rootAtoms()),
                          toQString(problem.message));
        } catch (const PathError&) {  // Nothing was kept of that atom.
        }
    }
    for (const QString& line : log) remarks_ << Remark{{}, std::nullopt, line};
    if (asset_->rootAtoms().empty())
        remarks_ << Remark{
            {}, 0, tr("no atom could be read from these %1").arg(bytesText(bytes_->length()))};
    else if (const Extent last = asset_->rootAtoms().back()->extent();
             last.length != 0 && last.start + last.length < bytes_->length())
        remarks_ << Remark{{},
                           last.start + last.length,
                           tr("reading ended here, %1 before the end of the file")
                               .arg(bytesText(bytes_->length() - last.start - last.length))};
    atoms_.setProblems(byAtom);
}

bool Document::readAgain(QString& error) {
    QStringList log;
    auto asset = read(path_, log, error);
    if (!asset) return false;
    emit aboutToReadAgain();
    adopt(std::move(asset), log);
    toldOf_.reset();
    watch();
    emit hasReadAgain();
    return true;
}

// MARK: The file on the disk

/// A file that is replaced by another of its name is watched anew; the folder says when that is.
void Document::watch() {
    const QStringList paths = {path_, QFileInfo(path_).absolutePath()};
    for (const QString& path : paths)
        if (!watcher_.files().contains(path) && !watcher_.directories().contains(path))
            watcher_.addPath(path);
}

bool Document::isChangedOnDisk() const {
    std::error_code error;
    const auto now = systemFiles().identityOf(fileOf(path_), error);
    return error || now != asset_->fileIdentity();
}

void Document::lookAtFile() {
    watch();
    if (isBusy_) return;
    std::error_code error;
    const auto now = systemFiles().identityOf(fileOf(path_), error);
    if (error || now == asset_->fileIdentity() || (toldOf_ && toldOf_ == now)) return;
    toldOf_ = now;
    emit changedOnDisk();
}

bool Document::needsRecovery() const {
    std::error_code error;
    return findJournal(systemFiles(), fileOf(path_), error).has_value() && !error;
}

RecoveryResult Document::recover(IfChanged ifChanged) {
    const QScopedValueRollback busy(isBusy_, true);
    return vexqt::recover(systemFiles(), fileOf(path_), ifChanged);
}

UndoResult Document::takeBackLastSave() {
    const QScopedValueRollback busy(isBusy_, true);
    const UndoStore store(systemFiles(), UndoStore::folderOfUser());
    return vexqt::undo(systemFiles(), store, fileOf(path_));
}

// MARK: Edits

void Document::perform(Edit edit) {
    const QScopedValueRollback performing(isPerforming_, true);
    history_.push(new EditCommand(*this, std::move(edit)));
    emit touched();
}

bool Document::canHold(const VexQTAtom& atom) {
    const bool isGeneric = &atom.atomClass() == &VexQTAtom::kClass;
    return std::ranges::any_of(atom.atomClass().fields, &Field::holdsChildren) &&
           !(isGeneric && atom.unknownBytes());
}

QString Document::whyNotRemovable(const VexQTAtom& atom) {
    if (&atom == asset_->moovAtom())
        return tr("The movie atom itself is not removed, only what is in it.");
    return {};
}

void Document::remove(VexQTAtom& atom) {
    const QModelIndex place = atoms_.indexOf(&atom);
    if (!place.isValid() || !whyNotRemovable(atom).isEmpty()) return;
    history_.push(new PlaceCommand(*this, atoms_.holderOf(&atom), place.row(),
                                   tr("Remove %1").arg(typeFor(atom))));
}

std::unique_ptr<VexQTAtom> Document::atomFrom(const QByteArray& bytes, VexQTAtom* holder,
                                              QString& error) {
    const ByteView view(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                        static_cast<std::size_t>(bytes.size()));
    try {
        ByteReader in(view);
        std::uint64_t size = in.u32();
        in.skip(4);
        if (size == 1) size = in.u64();
        if (size == view.size()) {
            auto atom = VexQTAtom::initWithData(view, holder, 0);
            atom->setExtent({});  // It lies nowhere in this file yet.
            return atom;
        }
        error = tr("it is not one atom: its size field says %1, and there are %2")
                    .arg(QString::number(size), bytesText(view.size()));
    } catch (const Error& failure) {
        error = tr("it holds no whole atom: %1").arg(toQString(failure.what()));
    }
    return nullptr;
}

void Document::insert(VexQTAtom& holder, std::unique_ptr<VexQTAtom> atom, const VexQTAtom* after) {
    const QModelIndex behind = after != nullptr ? atoms_.indexOf(after) : QModelIndex();
    const int row =
        behind.isValid() ? behind.row() + 1 : static_cast<int>(holder.children().size());
    const QString text = tr("Insert %1").arg(typeFor(*atom));
    history_.push(new PlaceCommand(*this, &holder, row, text, std::move(atom)));
}

void Document::replace(VexQTAtom& atom, std::unique_ptr<VexQTAtom> by) {
    const QModelIndex place = atoms_.indexOf(&atom);
    VexQTAtom* holder = atoms_.holderOf(&atom);
    if (!place.isValid() || !whyNotRemovable(atom).isEmpty()) return;
    const QString text = tr("Replace %1").arg(typeFor(atom));
    const int row = place.row();
    history_.beginMacro(text);
    history_.push(new PlaceCommand(*this, holder, row, text));
    history_.push(new PlaceCommand(*this, holder, row, text, std::move(by)));
    history_.endMacro();
}

QByteArray Document::bytesOf(VexQTAtom& atom) {
    const SharedBytes bytes = Surgery().written(atom).flat();
    return {reinterpret_cast<const char*>(bytes.view().data()),
            static_cast<qsizetype>(bytes.size())};
}

// MARK: Saving

SavePlan Document::plan() {
    std::error_code error;
    const auto file = systemFiles().openForReading(fileOf(path_), error);
    if (!file) throw Error(error.message());
    return SavePlan::of(*asset_, *file, SaveForm::Surgical);
}

SaveResult Document::save(const SaveOptions& options) {
    const QScopedValueRollback busy(isBusy_, true);
    return saveInPlace(*asset_, options);
}

SaveResult Document::saveCopy(const QString& path, const SaveOptions& options) {
    return vexqt::saveCopy(*asset_, fileOf(path), options);
}

}  // namespace vexqt::inspector_app
