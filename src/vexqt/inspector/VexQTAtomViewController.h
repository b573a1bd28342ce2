#pragma once

#include <QFont>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/inspector/EditHandler.h"
#include "vexqt/inspector/export.h"

namespace vexqt {

class FormBinder;

/// Shows one atom in a view that is loaded from an interface description, and edits it there.
///
/// The controller owns its view. It does not own the atom: the host keeps the movie for as long as
/// one of its views is open.
class VEXQT_INSPECTOR_EXPORT VexQTAtomViewController : public QObject {
    Q_OBJECT
    Q_PROPERTY(QFont textViewFont READ textViewFont CONSTANT)

public:
    /// The bundle is a folder of interface descriptions, in the file system or in Qt's resources;
    /// the name is that of a description without its ".ui".
    VexQTAtomViewController(const QString& nibName, const QString& bundle, VexQTAtom* atom,
                            QObject* parent = nullptr);
    /// Takes the view along, wherever a host has put it.
    ~VexQTAtomViewController() override;

    /// The name of the interface description, without ".ui".
    const QString& nibName() const { return nibName_; }
    /// The folder of interface descriptions.
    const QString& bundle() const { return bundle_; }
    /// The atom that is shown.
    VexQTAtom* atom() const { return atom_; }

    /// The view, loaded when it is first asked for, and again when a host has deleted it. Null when
    /// the description cannot be read; problems() says why.
    QWidget* view();
    /// Whether there is a view now, so that view() need not load it.
    bool isViewLoaded() const { return !view_.isNull(); }
    /// What is wrong with the interface description: unknown classes, keys that name nothing. Empty
    /// until the view is loaded.
    QStringList problems() const { return problems_; }

    /// The system's fixed-pitch font at 11 points, for text views.
    QFont textViewFont() const;

    /// Who performs the edits from now on; not owned. Null: the controller itself does.
    void setEditHandler(EditHandler* handler) { editHandler_ = handler; }
    /// Null where the controller itself performs the edits.
    EditHandler* editHandler() const { return editHandler_; }
    /// Has an edit performed and shows what has become of the atom. False when the library refuses
    /// it: then nothing was edited, and editRefused has told why.
    bool performEdit(EditHandler::Edit edit);

    /// Shows all values anew, after they were changed elsewhere.
    virtual void refresh();

signals:
    /// The property whose field has the focus has become this one; empty for none.
    void fieldFocused(const QString& key);
    /// An edit was performed.
    void edited(vexqt::VexQTAtom* atom);
    /// An edit could not be taken; the old value stays.
    void editRefused(const QString& key, const QString& why);

protected:
    /// Called when the view was loaded, before its values are shown.
    virtual void awakeFromNib() {}

    /// Adds to problems().
    void addProblem(const QString& problem) { problems_.append(problem); }

private:
    QString nibName_, bundle_;
    VexQTAtom* atom_;
    EditHandler* editHandler_ = nullptr;
    QPointer<QWidget> view_;
    QPointer<FormBinder> binder_;  ///< The view's.
    QStringList problems_;
};

}  // namespace vexqt
