#pragma once

#include <QPointer>
#include <QWidget>

#include "apps/inspector/AtomFilter.h"
#include "apps/inspector/Document.h"
#include "apps/inspector/FieldPlaces.h"
#include "apps/inspector/Saving.h"
#include "apps/inspector/table_tools.h"

class QLineEdit;
class QTreeView;
class QVBoxLayout;

namespace vexqt::inspector_app {

class AtomPane;
class BytePane;
class MessageBar;
class PathBar;
class RemarkList;

/// A movie in the window: the tree of its atoms, the selected one, and the bytes of the file.
class MovieTab : public QWidget {
    Q_OBJECT

public:
    explicit MovieTab(std::unique_ptr<Document> document, QWidget* parent = nullptr);
    ~MovieTab() override;

    Document& document() { return *document_; }
    /// Null while none is selected.
    VexQTAtom* selectedAtom() const;
    void select(VexQTAtom* atom);
    /// False, with the reason, for a path that names nothing.
    bool selectPath(const QString& path, QString& error);
    QString selectedPath() const;
    /// "vexqt show clip.mov moov.mvhd", quoted for a shell.
    QString selectionAsCommand() const;

    void findAtoms();
    void askForPath();
    void askForOffset();
    void enterTree();
    void enterView();
    void enterBytes();
    void setBytesVisible(bool isVisible);
    void expandAll();
    void collapseAll();

    /// The table in the selected atom's view; its view is null for none.
    Table table() const;
    void askForRow();
    void copyRows() const;
    void exportTable();

    void insertIntoSelected();
    void insertBehindSelected();
    void replaceSelected();
    void removeSelected();
    void exportSelected();

    /// These take in what is being typed first.
    bool save();
    void saveCopy();
    void check();
    void readAgain();
    void recoverMovie();
    void takeBackLastSave();
    /// False when the person wants to keep editing.
    bool mayClose();

    void say(theme::MessageKind kind, const QString& text);
    /// The messages that are shown, the last one first.
    QStringList messages() const;

    AtomPane& atomPane() { return *pane_; }
    BytePane& bytePane() { return *bytes_; }
    QTreeView& tree() { return *tree_; }
    QLineEdit& filterField() { return *filter_; }
    RemarkList& remarks() { return *remarks_; }
    PathBar& pathBar() { return *pathBar_; }

signals:
    /// The name, the modified mark, or what can be done has changed.
    void changed();
    void openRequested(const QString& path);

private:
    void setUpTree();
    void arrange();
    void connectParts();
    void connectDocument();
    MessageBar* addMessage(theme::MessageKind kind, const QString& text, const QString& id = {});
    /// What is wrong with a file that is not the movie.
    void sayOf(const QString& file, const QString& why);
    void finishTyping();
    void dismiss(const QString& id);
    void showSelected();
    void showPath();
    void showBytesOf(VexQTAtom* atom);
    void highlightField(const QString& key);
    void highlightEntry(const QString& list, quint64 entry);
    void followNotification(const QString& name, QObject* object, const QVariantMap& userInfo);
    void showRemarks();
    void showFileState();
    void applyFilter();
    std::unique_ptr<VexQTAtom> askForAtom(const QString& title, VexQTAtom* holder);
    QString startOfCommand() const;
    QString exportPath(const QString& ending) const;
    // These say why where they return false.
    bool exportMedia(const QString& path, const Extent& extent);
    bool exportAtom(const QString& path, VexQTAtom& atom);
    bool reload();

    std::unique_ptr<Document> document_;
    Saving saving_;
    AtomFilter shown_;
    std::optional<FieldPlaces> places_;    ///< Of the selected atom.
    std::unique_ptr<ByteSource> unsaved_;  ///< Its bytes, where it is not in the file.
    QString pathToKeep_;                   ///< Selected again when the file has been read again.

    QVBoxLayout* messages_;
    QLineEdit* filter_;
    QTreeView* tree_;
    RemarkList* remarks_;
    PathBar* pathBar_;
    AtomPane* pane_;
    BytePane* bytes_;
};

}  // namespace vexqt::inspector_app
