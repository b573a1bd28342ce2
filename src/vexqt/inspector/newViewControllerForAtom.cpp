// The one operation of an asset that needs Qt.
#include <QFile>

#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/inspector/VexQTco64AtomViewController.h"
#include "vexqt/inspector/VexQTcttsAtomViewController.h"
#include "vexqt/inspector/VexQTelstAtomViewController.h"
#include "vexqt/inspector/VexQTftabAtomViewController.h"
#include "vexqt/inspector/VexQTstcoAtomViewController.h"
#include "vexqt/inspector/VexQTstpsAtomViewController.h"
#include "vexqt/inspector/VexQTstscAtomViewController.h"
#include "vexqt/inspector/VexQTstssAtomViewController.h"
#include "vexqt/inspector/VexQTstszAtomViewController.h"
#include "vexqt/inspector/VexQTsttsAtomViewController.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt {

namespace {

struct TableView {
    OSType type;
    VexQTAtomViewController* (*make)(const QString& nibName, const QString& bundle,
                                     VexQTAtom* atom);
};

template <class Controller>
VexQTAtomViewController* make(const QString& nibName, const QString& bundle, VexQTAtom* atom) {
    return new Controller(nibName, bundle, atom);
}

constexpr TableView kTableViews[] = {
    {"stco"_os, make<VexQTstcoAtomViewController>}, {"co64"_os, make<VexQTco64AtomViewController>},
    {"stss"_os, make<VexQTstssAtomViewController>}, {"stps"_os, make<VexQTstpsAtomViewController>},
    {"stsz"_os, make<VexQTstszAtomViewController>}, {"stts"_os, make<VexQTsttsAtomViewController>},
    {"ctts"_os, make<VexQTcttsAtomViewController>}, {"stsc"_os, make<VexQTstscAtomViewController>},
    {"elst"_os, make<VexQTelstAtomViewController>}, {"ftab"_os, make<VexQTftabAtomViewController>},
};

}  // namespace

VexQTAtomViewController* VexQTAsset::newViewControllerForAtom(VexQTAtom* atom) {
    if (atom == nullptr) return nullptr;
    const std::optional<std::string> name = atom->atomNibName();
    if (!name) return nullptr;
    const QString nibName = toQString(*name);
    const QString bundle = QStringLiteral(":/vexqt/inspector/forms");
    if (!QFile::exists(bundle + u'/' + nibName + QStringLiteral(".ui"))) return nullptr;

    // By the type alone: an atom of another class, such as one that was declined, shows no entries.
    for (const TableView& view : kTableViews)
        if (view.type == atom->atomType()) return view.make(nibName, bundle, atom);
    return make<VexQTAtomViewController>(nibName, bundle, atom);
}

}  // namespace vexqt
