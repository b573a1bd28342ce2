#include "vexqt/inspector/widgets/HexField.h"

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class HexFieldTest : public QObject {
    Q_OBJECT

private slots:
    void takesItsFormatterFromTheWidth_data() {
        QTest::addColumn<int>("bits");
        QTest::addColumn<QString>("text");
        QTest::newRow("8") << 8 << "0x2A";
        QTest::newRow("16") << 16 << "0x002A";
        QTest::newRow("32") << 32 << "0x0000002A";
        QTest::newRow("64") << 64 << "0x              2A";
    }
    void takesItsFormatterFromTheWidth() {
        QFETCH(int, bits);
        QFETCH(QString, text);
        HexField field;
        field.configure(integer(ValueKind::Unsigned, static_cast<std::uint8_t>(bits)));
        field.setValue(42);
        QCOMPARE(field.text(), text);
    }

    void keepsTheFormatterOfTheForm() {
        HexField field;
        field.setProperty("formatter", "Hex1ByteFormatter");
        field.configure(integer(ValueKind::Unsigned, 32));
        field.setValue(0x1234);
        QCOMPARE(field.text(), "0x34");
    }

    void showsTheUppermostBitOfFourBytesInSixteenDigits() {
        HexField field;
        field.configure(integer(ValueKind::Unsigned, 32));
        field.setValue(qulonglong(0x80000000U));
        QCOMPARE(field.text(), "0xFFFFFFFF80000000");
        const QSignalSpy changed(&field, &HexField::valueChanged);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(field.value(), QVariant(qulonglong(0x80000000U)));
    }

    void takesTheLongestRunOfDigits() {
        HexField field;
        field.configure(integer(ValueKind::Unsigned, 32));
        field.setValue(0);
        enter(field, "  0x1Fzz");
        QCOMPARE(field.value(), QVariant(0x1F));
        QCOMPARE(field.text(), "0x0000001F");
    }

    void aWiderNumberIsTheBusinessOfTheProperty() {
        HexField field;
        field.configure(integer(ValueKind::Unsigned, 8));
        field.setValue(0);
        enter(field, "0x1FF");
        QCOMPARE(field.value(), QVariant(511));
        QCOMPARE(field.text(), "0xFF");
    }

    void takesEightBytesWithTheSpacesThatItShows() {
        HexField field;
        field.configure(integer(ValueKind::Unsigned, 64));
        field.setValue(0);
        enter(field, "0x              FE");
        QCOMPARE(field.value(), QVariant(254));
        enter(field, "0xFEDCBA9876543210");
        QCOMPARE(field.value().toULongLong(), 0xFEDCBA9876543210ULL);
        QCOMPARE(field.text(), "0xFEDCBA9876543210");
    }

    void refusesWhatHasNoDigits() {
        HexField field;
        field.configure(integer(ValueKind::Unsigned, 16));
        field.setValue(3);
        const QSignalSpy refused(&field, &HexField::editRefused);
        enter(field, "xyz");
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant(3));
        QVERIFY(!field.isAcceptable());
    }
};

static const FieldTest<HexFieldTest> kTest;
#include "HexField_test.moc"
