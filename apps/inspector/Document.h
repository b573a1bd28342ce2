#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QUndoStack>

#include "apps/inspector/AtomTreeModel.h"
#include "apps/inspector/ByteSource.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/inspector/EditHandler.h"
#include "vexqt/saving/SafeSave.h"
#include "vexqt/saving/recovery.h"

namespace vexqt::inspector_app {

/// A movie that is open: its atoms, what was done to them, and the file that they came from.
class Document : public QObject, private EditHandler {
    Q_OBJECT

public:
    /// Null, with a sentence that says why, for a file that cannot be opened. Whatever its bytes
    /// are, a file that can be opened gives a document.
    static std::unique_ptr<Document> open(const QString& path, QString& error);

    const QString& path() const { return path_; }
    /// The file's name, without its folder.
    QString name() const;

    VexQTAsset& asset() { return *asset_; }
    AtomTreeModel& atoms() { return atoms_; }
    QUndoStack& history() { return history_; }
    bool isModified() const { return !history_.isClean(); }
    /// What views of atoms hand their edits to.
    EditHandler* editHandler() { return this; }
    /// The file's bytes; never null, but empty where it can no longer be read.
    ByteSource& bytes() { return *bytes_; }

    /// Whether anything in the file is what movies consist of.
    bool isMovie() const;

    /// Something to say about the file, beside what the library lists.
    struct Remark {
        QString path;                   ///< Empty for the file as a whole.
        std::optional<quint64> offset;  ///< Absent for what has no place.
        QString message;
    };
    const QList<Remark>& remarks() const { return remarks_; }

    /// Reads the file once more; edits are lost. False, with the reason, where that fails: then all
    /// is as before.
    bool readAgain(QString& error);
    /// Whether the file is another than was read, or gone. Nothing is told of it a second time.
    bool isChangedOnDisk() const;
    /// The journal of a save that was interrupted lies beside the movie.
    bool needsRecovery() const;
    RecoveryResult recover(IfChanged ifChanged);
    UndoResult takeBackLastSave();

    // Changes of the tree, each of which can be undone.

    /// Whether atoms that are put into it will be written.
    static bool canHold(const VexQTAtom& atom);
    /// An empty text where it may be removed, otherwise why not.
    QString whyNotRemovable(const VexQTAtom& atom);
    void remove(VexQTAtom& atom);
    /// Null, with the reason, for bytes that are not one whole atom. Whatever its type, it is kept
    /// as it is; saved and read again it is shown as what it is.
    static std::unique_ptr<VexQTAtom> atomFrom(const QByteArray& bytes, VexQTAtom* holder,
                                               QString& error);
    /// Behind the last child, or behind a given one.
    void insert(VexQTAtom& holder, std::unique_ptr<VexQTAtom> atom, const VexQTAtom* after);
    void replace(VexQTAtom& atom, std::unique_ptr<VexQTAtom> by);

    /// The bytes of an atom that is not media: as they lie in the file, but for what was edited.
    /// \throws EncodingError where an edit has no form in the file.
    static QByteArray bytesOf(VexQTAtom& atom);

    // Saving.

    /// What a save would do. \throws Error
    SavePlan plan();
    SaveResult save(const SaveOptions& options);
    SaveResult saveCopy(const QString& path, const SaveOptions& options);

signals:
    /// Everything that points into the tree is to be let go.
    void aboutToReadAgain();
    void hasReadAgain();
    /// Values of an atom have changed; not told of edits that a view has made itself.
    void changedElsewhere(VexQTAtom* atom);
    /// An atom was put in, by whatever way.
    void inserted(VexQTAtom* atom);
    /// Anything has changed.
    void touched();
    void modifiedChanged(bool isModified);
    void changedOnDisk();

private:
    class EditCommand;
    class PlaceCommand;

    Document(QString path, std::unique_ptr<VexQTAsset> asset, const QStringList& log);

    static std::unique_ptr<VexQTAsset> read(const QString& path, QStringList& log, QString& error);
    void adopt(std::unique_ptr<VexQTAsset> asset, const QStringList& log);
    void remark(const QStringList& log);
    void watch();
    void lookAtFile();
    void perform(Edit edit) override;

    QString path_;
    std::unique_ptr<VexQTAsset> asset_;
    std::unique_ptr<ByteSource> bytes_;
    AtomTreeModel atoms_;
    QList<Remark> remarks_;
    QFileSystemWatcher watcher_;
    std::optional<FileIdentity> toldOf_;  ///< The change on disk that was last told of.
    bool isPerforming_ = false;
    bool isBusy_ = false;  ///< The file changes because of us.
    QUndoStack history_;   ///< Last, as its commands hold atoms whose holders are above.
};

}  // namespace vexqt::inspector_app
