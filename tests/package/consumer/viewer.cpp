// Shows the movie header of a new movie and says what the field of its time scale shows. The view
// lies in the installed library.
#include <vexqt/inspector.h>

#include <QApplication>
#include <cstdio>
#include <memory>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    vexqt::VexQTmvhdAtom mvhd;
    mvhd.setTimeScale(600);
    const std::unique_ptr<vexqt::VexQTAtomViewController> controller(
        vexqt::VexQTAsset::newViewControllerForAtom(&mvhd));
    if (!controller || controller->view() == nullptr) {
        return 1;
    }
    for (const QWidget* field : controller->view()->findChildren<QWidget*>()) {
        if (field->property("key") == "timeScale") {
            std::printf("%s\n", qPrintable(field->property("value").toString()));
        }
    }
    return 0;
}
