#include "vexqt/inspector/widgets/ColorWell.h"

#include <QColorDialog>

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class ColorWellTest : public QObject {
    Q_OBJECT

private slots:
    void takesTheColorThatIsChosen() {
        Window<ColorWell> window;
        window.field.setValue(QColor(1, 2, 3));
        const QSignalSpy changed(&window.field, &ColorWell::valueChanged);
        QColorDialog& dialog = open(window.field);
        QCOMPARE(dialog.currentColor(), QColor(1, 2, 3));
        dialog.setCurrentColor(QColor(4, 5, 6, 128));
        dialog.accept();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(window.field.value().value<QColor>(), QColor(4, 5, 6, 128));
    }

    void aColorThatWasNotChosenKeepsEveryBit_data() {
        QTest::addColumn<bool>("accepts");
        QTest::newRow("cancelled") << false;
        QTest::newRow("taken as it was") << true;
    }
    void aColorThatWasNotChosenKeepsEveryBit() {
        QFETCH(bool, accepts);
        Window<ColorWell> window;
        const QColor exact = QColor::fromRgbF(0.123456F, 0.5F, 0.654321F, 0.25F);
        window.field.setValue(exact);
        const QSignalSpy changed(&window.field, &ColorWell::valueChanged);
        QColorDialog& dialog = open(window.field);
        if (accepts) {
            dialog.accept();
        } else {
            dialog.setCurrentColor(Qt::red);
            dialog.reject();
        }
        QCOMPARE(changed.count(), 0);
        QCOMPARE(window.field.value().value<QColor>(), exact);
    }

    void asksForAlphaOnlyWhereItIsKept() {
        Window<ColorWell> window;
        window.field.setValue(QColor(1, 2, 3));
        QColorDialog& withAlpha = open(window.field);
        QVERIFY(withAlpha.testOption(QColorDialog::ShowAlphaChannel));
        withAlpha.reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        window.field.setProperty("hasAlpha", false);
        QColorDialog& withoutAlpha = open(window.field);
        QVERIFY(!withoutAlpha.testOption(QColorDialog::ShowAlphaChannel));
    }

    void saysTheColorInWords() {
        ColorWell field;
        field.setValue(QColor(255, 128, 20, 128));
        QCOMPARE(field.text(), "#FF8014, 50 % opaque");
        field.setHasAlpha(false);
        QCOMPARE(field.text(), "#FF8014");
    }

    void anAbsentColorCanBeChosen() {
        Window<ColorWell> window;
        window.field.setValue({});
        QCOMPARE(window.field.text(), "absent");
        const QSignalSpy changed(&window.field, &ColorWell::valueChanged);
        QColorDialog& dialog = open(window.field);
        dialog.setCurrentColor(QColor(Qt::black));
        dialog.accept();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(window.field.value().value<QColor>().rgb(), QColor(Qt::black).rgb());
    }

    void opensNoDialogueWhenReadOnly() {
        Window<ColorWell> window;
        window.field.setValue(QColor(1, 2, 3));
        window.field.setReadOnly(true);
        QTest::keyClick(&window.field, Qt::Key_Space);
        QVERIFY(window.field.findChild<QColorDialog*>() == nullptr);
    }

private:
    static QColorDialog& open(ColorWell& field) {
        QTest::keyClick(&field, Qt::Key_Space);
        auto* dialog = field.findChild<QColorDialog*>();
        if (dialog == nullptr) qFatal("no dialogue is open");
        return *dialog;
    }
};

static const FieldTest<ColorWellTest> kTest;
#include "ColorWell_test.moc"
