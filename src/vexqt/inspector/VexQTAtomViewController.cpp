#include "vexqt/inspector/VexQTAtomViewController.h"

#include <QFile>
#include <QFontDatabase>
#include <memory>

#include "vexqt/inspector/FormBinder.h"
#include "vexqt/inspector/FormLoader.h"
#include "vexqt/inspector/qt_value.h"

/// Naming the resources makes the linker keep them where the library is static. The macro works
/// outside of namespaces alone.
static void keepForms() { Q_INIT_RESOURCE(vexqt_inspector_forms); }

namespace vexqt {

VexQTAtomViewController::VexQTAtomViewController(const QString& nibName, const QString& bundle,
                                                 VexQTAtom* atom, QObject* parent)
    : QObject(parent), nibName_(nibName), bundle_(bundle), atom_(atom) {
    keepForms();
}

VexQTAtomViewController::~VexQTAtomViewController() { delete view_; }

QWidget* VexQTAtomViewController::view() {
    if (view_) return view_;
    problems_.clear();
    QFile file(bundle_ + u'/' + nibName_ + QStringLiteral(".ui"));
    if (!file.open(QFile::ReadOnly)) {
        addProblem(file.fileName() + QStringLiteral(": ") + file.errorString());
        return nullptr;
    }
    FormLoader loader;
    view_ = loader.load(&file);
    problems_ += loader.problems();
    if (!view_) return nullptr;

    awakeFromNib();
    binder_ = new FormBinder(*view_, *this);
    problems_ += binder_->problems();
    return view_;
}

QFont VexQTAtomViewController::textViewFont() const {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(11);
    return font;
}

bool VexQTAtomViewController::performEdit(EditHandler::Edit edit) {
    // Done before a handler has it: no error may leave through an undo stack, and what the library
    // refuses must not lie on one. For the handler the first redo is then done already.
    try {
        edit.redo();
    } catch (const Error& error) {
        emit editRefused(edit.key, toQString(error.message()));
        return false;
    }
    if (editHandler_ != nullptr) {
        edit.redo = [redo = edit.redo, isDone = std::make_shared<bool>(true)] {
            if (!std::exchange(*isDone, false)) redo();
        };
        editHandler_->perform(std::move(edit));
    }
    refresh();
    emit edited(atom_);
    return true;
}

void VexQTAtomViewController::refresh() {
    if (binder_) binder_->showAll();
}

}  // namespace vexqt
