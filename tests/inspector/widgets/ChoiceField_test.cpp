#include "vexqt/inspector/widgets/ChoiceField.h"

#include <QLineEdit>
#include <QWheelEvent>

#include "inspector/widgets/field_tests.h"
#include "vexqt/core/os_type.h"

using namespace vexqt;
using namespace vexqt::testing;

class ChoiceFieldTest : public QObject {
    Q_OBJECT

private slots:
    void showsTheMeaningOfAValue() {
        ChoiceField field;
        addPrimaries(field);
        field.setValue(qulonglong{9});
        QCOMPARE(field.currentText(), QString::fromUtf8("9 — BT.2020"));
        QCOMPARE(field.currentIndex(), 1);
    }

    void showsAValueWithoutAMeaningAsItIs() {
        ChoiceField field;
        addPrimaries(field);
        field.setValue(qulonglong{77});
        QCOMPARE(field.currentText(), "77");
        QCOMPARE(field.currentIndex(), -1);
        QCOMPARE(field.value(), QVariant(77));
    }

    void takesWhatIsChosenWithTheKeyboard() {
        ChoiceField field;
        addPrimaries(field);
        field.setValue(qulonglong{1});
        const QSignalSpy changed(&field, &ChoiceField::valueChanged);
        QTest::keyClick(&field, Qt::Key_Down);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value(), QVariant(9));
    }

    void takesWhatIsTyped_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("one without a meaning") << "12"
                                               << "12";
        QTest::newRow("one with a meaning") << "9" << QString::fromUtf8("9 — BT.2020");
        QTest::newRow("hexadecimal") << "0x9" << QString::fromUtf8("9 — BT.2020");
        QTest::newRow("with a meaning behind it") << QString::fromUtf8("12 — whatever") << "12";
    }
    void takesWhatIsTyped() {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        ChoiceField field;
        addPrimaries(field);
        field.setValue(qulonglong{1});
        const QSignalSpy changed(&field, &ChoiceField::valueChanged);
        field.lineEdit()->setText(text);
        QTest::keyClick(field.lineEdit(), Qt::Key_Return);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.currentText(), shown);
    }

    void refusesWhatTheWidthOfThePropertyRefuses() {
        ChoiceField field;
        addPrimaries(field);
        field.configure(integer(ValueKind::Unsigned, 16));
        field.setValue(qulonglong{1});
        const QSignalSpy refused(&field, &ChoiceField::editRefused);
        enter(*field.lineEdit(), "65536");
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant(1));
        QVERIFY(!field.isAcceptable());
        QTest::keyClick(&field, Qt::Key_Escape);
        QVERIFY(field.isAcceptable());
        QCOMPARE(field.currentText(), QString::fromUtf8("1 — BT.709"));
    }

    void takesSignedNumbers() {
        ChoiceField field;
        field.addItems({QString::fromUtf8("-1 — none"), QString::fromUtf8("0 — own")});
        field.configure(integer(ValueKind::Signed, 16));
        field.setValue(qlonglong{-1});
        QCOMPARE(field.currentIndex(), 0);
        enter(*field.lineEdit(), "-2");
        QCOMPARE(field.value(), QVariant(-2));
    }

    void theSpacesOfACodeBelongToIt() {
        ChoiceField field;
        field.setProperty("formatter", "OSTypeFormatter");
        field.addItems({QString::fromUtf8("raw  — uncompressed"), QString::fromUtf8("avc1 — H.264"),
                        QString::fromUtf8("␀␀␀␀ — none")});
        field.configure(integer(ValueKind::Unsigned, 32));
        field.setValue(qulonglong{"avc1"_os});
        QCOMPARE(field.currentIndex(), 1);
        QTest::keyClick(&field, Qt::Key_Up);
        QCOMPARE(field.value(), QVariant(qulonglong{"raw "_os}));
        QCOMPARE(field.currentText(), QString::fromUtf8("raw  — uncompressed"));
        field.setValue(qulonglong{0});
        QCOMPARE(field.currentIndex(), 2);
    }

    void findsAHexadecimalValueInWhicheverDigits() {
        ChoiceField field;
        field.setProperty("formatter", "Hex4ByteFormatter");
        field.addItems(
            {QString::fromUtf8("0x00650002 — stereo"), QString::fromUtf8("0xFFFF0000 — unknown")});
        field.configure(integer(ValueKind::Unsigned, 32));
        field.setValue(qulonglong{0xFFFF0000U});
        QCOMPARE(field.currentIndex(), 1);
        QTest::keyClick(&field, Qt::Key_Up);
        QCOMPARE(field.value(), QVariant(0x00650002));
        QTest::keyClick(&field, Qt::Key_Down);
        QCOMPARE(field.value().toLongLong() & 0xFFFFFFFF, qlonglong{0xFFFF0000U});
    }

    void holdsTextsWhereThePropertyIsAText() {
        ChoiceField field;
        field.addItems({QString::fromUtf8("Kind_A — the first"), QString::fromUtf8("Kind_B")});
        field.configure({.kind = ValueKind::Text, .isOptional = true});
        field.setValue(QStringLiteral("Kind_A"));
        QCOMPARE(field.currentIndex(), 0);
        enter(*field.lineEdit(), "Kind_C");
        QCOMPARE(field.value(), QVariant("Kind_C"));
        field.setValue({});
        QCOMPARE(field.currentText(), QString());
        QVERIFY(!field.lineEdit()->placeholderText().isEmpty());
    }

    void theWheelChangesNothing() {
        ChoiceField field;
        addPrimaries(field);
        field.setValue(qulonglong{1});
        const QSignalSpy changed(&field, &ChoiceField::valueChanged);
        QWheelEvent turn(QPointF(5, 5), QPointF(5, 5), {}, QPoint(0, -120), Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&field, &turn);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!turn.isAccepted());
    }

    void takesNothingWhenReadOnly() {
        ChoiceField field;
        addPrimaries(field);
        field.setValue(qulonglong{1});
        field.setReadOnly(true);
        QTest::keyClick(&field, Qt::Key_Down);
        enter(*field.lineEdit(), "9");
        field.showPopup();
        QCOMPARE(field.value(), QVariant(1));
        QCOMPARE(field.currentText(), QString::fromUtf8("1 — BT.709"));
    }

private:
    static void addPrimaries(ChoiceField& field) {
        field.addItems({QString::fromUtf8("1 — BT.709"), QString::fromUtf8("9 — BT.2020")});
    }
};

static const FieldTest<ChoiceFieldTest> kTest;
#include "ChoiceField_test.moc"
