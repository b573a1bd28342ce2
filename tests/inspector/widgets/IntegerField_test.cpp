#include "vexqt/inspector/widgets/IntegerField.h"

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class IntegerFieldTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void takesTheEndsOfEachWidth_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("bits");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("value");
        const auto kUnsigned = static_cast<int>(ValueKind::Unsigned);
        const auto kSigned = static_cast<int>(ValueKind::Signed);
        QTest::newRow("u8") << kUnsigned << 8 << "255" << QVariant(255);
        QTest::newRow("u16") << kUnsigned << 16 << "65535" << QVariant(65535);
        QTest::newRow("u32") << kUnsigned << 32 << "4294967295" << QVariant(4294967295U);
        QTest::newRow("u64") << kUnsigned << 64 << "18446744073709551615"
                             << QVariant(qulonglong(18446744073709551615ULL));
        QTest::newRow("least unsigned") << kUnsigned << 64 << "0" << QVariant(0);
        QTest::newRow("most s16") << kSigned << 16 << "32767" << QVariant(32767);
        QTest::newRow("least s16") << kSigned << 16 << "-32768" << QVariant(-32768);
        QTest::newRow("most s32") << kSigned << 32 << "2147483647" << QVariant(2147483647);
        QTest::newRow("least s32") << kSigned << 32 << "-2147483648" << QVariant(-2147483647 - 1);
        QTest::newRow("most s64") << kSigned << 64 << "9223372036854775807"
                                  << QVariant(qlonglong(9223372036854775807LL));
        QTest::newRow("least s64") << kSigned << 64 << "-9223372036854775808"
                                   << QVariant(qlonglong(-9223372036854775807LL - 1));
        QTest::newRow("number") << static_cast<int>(ValueKind::Number) << 0
                                << "18446744073709551615"
                                << QVariant(qulonglong(18446744073709551615ULL));
        QTest::newRow("negative number")
            << static_cast<int>(ValueKind::Number) << 0 << "-9223372036854775808"
            << QVariant(qlonglong(-9223372036854775807LL - 1));
    }
    void takesTheEndsOfEachWidth() {
        QFETCH(int, kind);
        QFETCH(int, bits);
        QFETCH(QString, text);
        QFETCH(QVariant, value);
        IntegerField field;
        field.configure(integer(static_cast<ValueKind>(kind), static_cast<std::uint8_t>(bits)));
        field.setValue(7);
        const QSignalSpy changed(&field, &IntegerField::valueChanged);
        enter(field, text);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value(), value);
        QCOMPARE(field.text(), text);
        QVERIFY(field.isAcceptable());
    }

    void refusesWhatIsBeyondTheEnds_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("bits");
        QTest::addColumn<QString>("text");
        const auto kUnsigned = static_cast<int>(ValueKind::Unsigned);
        const auto kSigned = static_cast<int>(ValueKind::Signed);
        QTest::newRow("u8") << kUnsigned << 8 << "256";
        QTest::newRow("u8, hexadecimal") << kUnsigned << 8 << "0x100";
        QTest::newRow("u16") << kUnsigned << 16 << "65536";
        QTest::newRow("u32") << kUnsigned << 32 << "4294967296";
        QTest::newRow("u64") << kUnsigned << 64 << "18446744073709551616";
        QTest::newRow("below zero") << kUnsigned << 64 << "-1";
        QTest::newRow("s16") << kSigned << 16 << "32768";
        QTest::newRow("s16 below") << kSigned << 16 << "-32769";
        QTest::newRow("s64") << kSigned << 64 << "9223372036854775808";
        QTest::newRow("s64 below") << kSigned << 64 << "-9223372036854775809";
    }
    void refusesWhatIsBeyondTheEnds() {
        QFETCH(int, kind);
        QFETCH(int, bits);
        QFETCH(QString, text);
        IntegerField field;
        field.configure(integer(static_cast<ValueKind>(kind), static_cast<std::uint8_t>(bits)));
        field.setValue(7);
        const QSignalSpy changed(&field, &IntegerField::valueChanged);
        const QSignalSpy refused(&field, &IntegerField::editRefused);
        enter(field, text);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant(7));
        QCOMPARE(field.text(), text);
        QVERIFY(!field.isAcceptable());
        QVERIFY(!field.accessibleDescription().isEmpty());
    }

    void refusesWhatIsNoWholeNumber_data() {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", "-", "0x", "1.5", "1,000", "1 000", "12x", "--1", "0x-1", "١"})
            QTest::newRow(text) << QString::fromUtf8(text);
    }
    void refusesWhatIsNoWholeNumber() {
        QFETCH(QString, text);
        IntegerField field;
        field.setValue(7);
        const QSignalSpy refused(&field, &IntegerField::editRefused);
        enter(field, text);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant(7));
    }

    void takesHexadecimalAndShowsDecimal() {
        IntegerField field;
        field.configure(integer(ValueKind::Unsigned, 32));
        field.setValue(7);
        enter(field, " 0xFFffFFff ");
        QCOMPARE(field.value(), QVariant(4294967295U));
        QCOMPARE(field.text(), "4294967295");
    }

    void writesTheSameDigitsInEveryLocale() {
        QLocale::setDefault(QLocale(QLocale::German));
        IntegerField field;
        field.setValue(qulonglong(1234567));
        QCOMPARE(field.text(), "1234567");
        enter(field, "1.234");
        QVERIFY(!field.isAcceptable());
    }

    void aRefusedTextGoesWithEscapeAndWithANewValue() {
        IntegerField field;
        field.setValue(7);
        enter(field, "seven");
        QVERIFY(!field.isAcceptable());
        QTest::keyClick(&field, Qt::Key_Escape);
        QVERIFY(field.isAcceptable());
        QCOMPARE(field.text(), "7");
        enter(field, "seven");
        field.setValue(8);
        QVERIFY(field.isAcceptable());
        QCOMPARE(field.text(), "8");
        QVERIFY(field.accessibleDescription().isEmpty());
    }

    void tellsOnceOfARefusedText() {
        Window<IntegerField> window;
        window.field.setValue(7);
        const QSignalSpy refused(&window.field, &IntegerField::editRefused);
        enter(window.field, "seven");
        QTest::keyClick(&window.field, Qt::Key_Return);
        QTest::keyClick(&window.field, Qt::Key_Tab);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(window.field.text(), "seven");
        window.field.setFocus();
        enter(window.field, "eight");
        QCOMPARE(refused.count(), 2);
    }

    void aMarkLeavesTheHelpAsItWas() {
        IntegerField field;
        field.setWhatsThis("Counts from 1.");
        field.setToolTip("Counts from 1.");
        field.setValue(7);
        enter(field, "seven");
        QVERIFY(field.toolTip() != "Counts from 1.");
        enter(field, "8");
        QCOMPARE(field.toolTip(), "Counts from 1.");
    }

    void emitsAtTheEndOfAnEditOnly() {
        IntegerField field;
        field.setValue(7);
        const QSignalSpy changed(&field, &IntegerField::valueChanged);
        QTest::keyClicks(&field, "23");
        QCOMPARE(changed.count(), 0);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 1);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 1);
    }

    void theSameNumberIsNoEdit() {
        IntegerField field;
        field.setValue(7);
        const QSignalSpy changed(&field, &IntegerField::valueChanged);
        enter(field, "0x7");
        QCOMPARE(changed.count(), 0);
        QCOMPARE(field.text(), "7");
    }

    void takesTheEditWhenTheFocusLeaves() {
        Window<IntegerField> window;
        window.field.setValue(7);
        const QSignalSpy changed(&window.field, &IntegerField::valueChanged);
        QTest::keyClicks(&window.field, "1");
        QTest::keyClick(&window.field, Qt::Key_Tab);
        QCOMPARE(changed.count(), 1);
        QVERIFY(window.other.hasFocus());
    }

    void anAbsentNumberIsShownAsAbsentAndStaysSo() {
        IntegerField field;
        field.setValue({});
        const QSignalSpy changed(&field, &IntegerField::valueChanged);
        QCOMPARE(field.text(), QString());
        QVERIFY(!field.placeholderText().isEmpty());
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!field.value().isValid());
        enter(field, "0");
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value(), QVariant(0));
        QVERIFY(field.placeholderText().isEmpty());
    }

    void takesNothingWhenReadOnly() {
        IntegerField field;
        field.setValue(7);
        field.setReadOnly(true);
        const QSignalSpy changed(&field, &IntegerField::valueChanged);
        enter(field, "8");
        QCOMPARE(changed.count(), 0);
        QCOMPARE(field.text(), "7");
    }
};

static const FieldTest<IntegerFieldTest> kTest;
#include "IntegerField_test.moc"
