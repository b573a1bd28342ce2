#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include "inspector/FormFolder.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/headers/VexQTtkhdAtom.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"
#include "vexqt/inspector.h"

namespace vexqt {

using testing::FormFolder;
using Controller = std::unique_ptr<VexQTAtomViewController>;

static Controller controllerFor(VexQTAtom& atom) {
    return Controller(VexQTAsset::newViewControllerForAtom(&atom));
}

class VexQTAtomViewControllerTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        forms_.write("Form", FormFolder::widget("IntegerField", "scale",
                                                FormFolder::text("key", "timeScale")));
        forms_.write("Table",
                     FormFolder::widget("InspectorTableView", "table",
                                        FormFolder::list("columnIdentifiers", {"sampleCount"}) +
                                            FormFolder::list("columnTitles", {"Count"})));
    }

    // MARK: Choosing a view

    void anAtomGetsTheViewOfItsName() {
        VexQTtkhdAtom tkhd;
        const Controller controller = controllerFor(tkhd);
        QVERIFY(controller != nullptr);
        QCOMPARE(controller->metaObject()->className(), "vexqt::VexQTAtomViewController");
        QCOMPARE(controller->nibName(), "VexQTtkhdAtom");
        QCOMPARE(controller->bundle(), ":/vexqt/inspector/forms");
        QCOMPARE(controller->atom(), &tkhd);
        QVERIFY(!controller->isViewLoaded());
        QVERIFY(controller->view() != nullptr);
        QCOMPARE(controller->problems(), QStringList());
    }

    void anAtomWithoutAViewsNameGetsNone() {
        VexQTmoovAtom moov;
        QVERIFY(controllerFor(moov) == nullptr);
        VexQTdataAtom data;
        data.setAtomNibName(std::nullopt);
        data.setAtomType("stco"_os);
        QVERIFY(controllerFor(data) == nullptr);
        QVERIFY(VexQTAsset::newViewControllerForAtom(nullptr) == nullptr);
    }

    void anAtomWhoseViewIsNotThereGetsNoneWhateverItsType() {
        VexQTdataAtom data;
        data.setAtomNibName("VexQTnoneAtom");
        QVERIFY(controllerFor(data) == nullptr);
        data.setAtomType("stco"_os);
        QVERIFY(controllerFor(data) == nullptr);
    }

    void aPlainAtomGetsTheGenericView() {
        VexQTAtom generic("abcd"_os, 8, nullptr, 0);
        const Controller controller = controllerFor(generic);
        QVERIFY(controller != nullptr);
        QCOMPARE(controller->nibName(), "VexQTAtom");
        QVERIFY(controller->view() != nullptr);
    }

    void theTypeAloneChoosesATableController_data() {
        QTest::addColumn<QString>("type");
        for (const char* type :
             {"stco", "co64", "stss", "stps", "stsz", "stts", "ctts", "stsc", "elst", "ftab"})
            QTest::newRow(type) << type;
    }
    void theTypeAloneChoosesATableController() {
        QFETCH(const QString, type);
        VexQTAtom generic(codeFromText(fromQString(type)), 8, nullptr, 0);
        const Controller controller = controllerFor(generic);
        QVERIFY(controller != nullptr);
        QCOMPARE(controller->metaObject()->className(),
                 qPrintable(QStringLiteral("vexqt::VexQT%1AtomViewController").arg(type)));
        QVERIFY(controller->view() != nullptr);
        QCOMPARE(qobject_cast<TableController*>(controller.get())->count(), 0);
    }

    // MARK: The view

    void theViewIsLoadedOnceWhenItIsFirstAskedFor() {
        struct Woken : VexQTAtomViewController {
            using VexQTAtomViewController::VexQTAtomViewController;
            int times = 0;
            void awakeFromNib() override { ++times; }
        };
        VexQTmvhdAtom mvhd;
        Woken controller("Form", forms_.path(), &mvhd);
        QVERIFY(!controller.isViewLoaded());
        QCOMPARE(controller.times, 0);
        const QWidget* view = controller.view();
        QVERIFY(view != nullptr);
        QCOMPARE(view->objectName(), "Form");
        QCOMPARE(controller.view(), view);
        QCOMPARE(controller.times, 1);
    }

    void aMissingOrBrokenDescriptionIsAProblemAndNoView() {
        VexQTmvhdAtom mvhd;
        VexQTAtomViewController missing("None", forms_.path(), &mvhd);
        QVERIFY(missing.view() == nullptr);
        QCOMPARE(missing.problems().size(), 1);
        forms_.writeRaw("Broken", "<ui version=\"4.0\"><widget class=");
        VexQTAtomViewController broken("Broken", forms_.path(), &mvhd);
        QVERIFY(broken.view() == nullptr);
        QCOMPARE(broken.problems().size(), 1);
        broken.refresh();
    }

    void aWidgetOfAnUnknownClassIsAProblem() {
        forms_.write("Unknown", FormFolder::widget("NoSuchField", "field") +
                                    FormFolder::widget("Line", "line") +
                                    FormFolder::widget("QLabel", "label"));
        VexQTmvhdAtom mvhd;
        VexQTAtomViewController controller("Unknown", forms_.path(), &mvhd);
        QVERIFY(controller.view() != nullptr);
        QCOMPARE(controller.problems(), QStringList("field: no widget is a NoSuchField"));
        QVERIFY(controller.view()->findChild<QLabel*>("label") != nullptr);
    }

    void columnsThatDoNotGoTogetherAreAProblem() {
        forms_.write("Odd",
                     FormFolder::widget("InspectorTableView", "table",
                                        FormFolder::list("columnIdentifiers", {"sampleCount"}) +
                                            FormFolder::list("columnFormatters", {"NoFormatter"})));
        VexQTsttsAtom stts;
        VexQTsttsAtomViewController controller("Odd", forms_.path(), &stts);
        QVERIFY(controller.view() != nullptr);
        QCOMPARE(controller.problems().size(), 2);
    }

    void theTextFontHasAFixedPitchAnd11Points() {
        VexQTmvhdAtom mvhd;
        const VexQTAtomViewController controller("Form", forms_.path(), &mvhd);
        QCOMPARE(controller.textViewFont().pointSize(), 11);
        QVERIFY(QFontInfo(controller.textViewFont()).fixedPitch());
        QCOMPARE(controller.property("textViewFont").value<QFont>(), controller.textViewFont());
    }

    void aRefreshShowsWhatWasChangedElsewhere() {
        VexQTmvhdAtom mvhd;
        VexQTAtomViewController controller("Form", forms_.path(), &mvhd);
        controller.refresh();
        auto* field = controller.view()->findChild<QWidget*>("scale");
        mvhd.setTimeScale(12345);
        controller.refresh();
        QCOMPARE(field->property("value"), QVariant(qulonglong{12345}));
    }

    // MARK: Who goes first

    void aViewThatAHostDeletesIsLoadedAnew() {
        VexQTsttsAtom stts;
        stts.setSampleDurations({{5, 600}});
        VexQTsttsAtomViewController controller("Table", forms_.path(), &stts);
        {
            QWidget window;
            QVBoxLayout layout(&window);
            layout.addWidget(controller.view());
        }
        QVERIFY(!controller.isViewLoaded());
        QVERIFY(controller.table() == nullptr);
        controller.refresh();
        QVERIFY(controller.view() != nullptr);
        QCOMPARE(controller.table()->model()->rowCount(), 1);
        QCOMPARE(controller.problems(), QStringList());
    }

    void aControllerTakesItsViewAlong() {
        VexQTsttsAtom stts;
        QWidget window;
        QVBoxLayout layout(&window);
        auto controller =
            std::make_unique<VexQTsttsAtomViewController>("Table", forms_.path(), &stts);
        const QPointer<QWidget> view = controller->view();
        layout.addWidget(view);
        window.show();
        controller.reset();
        QVERIFY(view.isNull());
        QVERIFY(window.children().size() == 1);
        window.grab();
    }

    void aFocusedViewMayGoWithOrBeforeItsController() {
        VexQTmvhdAtom mvhd;
        for (const bool viewFirst : {true, false}) {
            auto controller =
                std::make_unique<VexQTAtomViewController>("Form", forms_.path(), &mvhd);
            QWidget* view = controller->view();
            view->show();
            view->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(view));
            view->findChild<QWidget*>("scale")->setFocus();
            if (viewFirst) delete view;
            controller.reset();
        }
    }

    void aParentTakesItsControllersAlong() {
        VexQTmvhdAtom mvhd;
        auto parent = std::make_unique<QObject>();
        auto* controller = new VexQTAtomViewController("Form", forms_.path(), &mvhd, parent.get());
        const QPointer<QWidget> view = controller->view();
        parent.reset();
        QVERIFY(view.isNull());
    }

    // MARK: The notification centre

    void whatIsPostedReachesThoseWhoListen() {
        NotificationCenter center;
        const QSignalSpy here(&center, &NotificationCenter::posted);
        const QSignalSpy elsewhere(&NotificationCenter::defaultCenter(),
                                   &NotificationCenter::posted);
        QObject object;
        center.post("Name", &object, {{"key", 1}});
        QCOMPARE(here.size(), 1);
        QCOMPARE(here[0][0], "Name");
        QCOMPARE(here[0][1].value<QObject*>(), &object);
        QCOMPARE(here[0][2].toMap(), QVariantMap({{"key", 1}}));
        QCOMPARE(elsewhere.size(), 0);
        QCOMPARE(&NotificationCenter::defaultCenter(), &NotificationCenter::defaultCenter());
    }

private:
    FormFolder forms_;
};

}  // namespace vexqt

QTEST_MAIN(vexqt::VexQTAtomViewControllerTest)
#include "VexQTAtomViewController_test.moc"
