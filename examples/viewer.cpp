// A window with the atoms of a movie on the left and the form of the chosen one on the right.
//
//     viewer MOVIE
#include <vexqt/inspector.h>
#include <vexqt/vexqt.h>

#include <QApplication>
#include <QSplitter>
#include <QTreeWidget>
#include <cstdio>

using namespace vexqt;

namespace {

void add(const std::vector<std::unique_ptr<VexQTAtom>>& atoms, QTreeWidgetItem* parent) {
    for (const auto& atom : atoms) {
        auto* item = new QTreeWidgetItem(parent, {QString::fromStdString(atom->atomDescription())});
        item->setData(0, Qt::UserRole, QVariant::fromValue<void*>(atom.get()));
        add(atom->children(), item);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    std::error_code error;
    if (argc != 2) return std::fprintf(stderr, "usage: viewer MOVIE\n"), 2;
    const auto movie = VexQTAsset::initWithURL(argv[1], error, {.tolerant = true});
    if (movie == nullptr) return std::fprintf(stderr, "%s\n", error.message().c_str()), 1;

    QSplitter window;
    auto* tree = new QTreeWidget(&window);
    tree->setHeaderLabel(QString::fromLocal8Bit(argv[1]));
    add(movie->rootAtoms(), tree->invisibleRootItem());
    tree->expandAll();

    std::unique_ptr<VexQTAtomViewController> controller;
    QObject::connect(
        tree, &QTreeWidget::currentItemChanged, &window, [&](const QTreeWidgetItem* item) {
            auto* atom = static_cast<VexQTAtom*>(item->data(0, Qt::UserRole).value<void*>());
            // The controller owns its view; many atoms have none.
            controller.reset(VexQTAsset::newViewControllerForAtom(atom));
            if (controller != nullptr && controller->view() != nullptr)
                window.addWidget(controller->view());
        });
    tree->setCurrentItem(tree->topLevelItem(0));
    window.resize(900, 600);
    window.show();
    const int status = QApplication::exec();
    controller.reset();
    return status;
}
