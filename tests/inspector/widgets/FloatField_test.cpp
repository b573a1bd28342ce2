#include "vexqt/inspector/widgets/FloatField.h"

#include <cmath>

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class FloatFieldTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void showsTheShortestTextThatReadsBack_data() {
        QTest::addColumn<int>("bits");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("single") << 32 << double{0.1F} << "0.1";
        QTest::newRow("double") << 64 << 0.1 << "0.1";
        QTest::newRow("a single as double") << 64 << double{0.1F} << "0.10000000149011612";
        QTest::newRow("whole") << 32 << 48000.0 << "48000";
        QTest::newRow("round") << 64 << 100000.0 << "100000";
        QTest::newRow("16.16") << 64 << 1 / 65536.0 << "0.0000152587890625";
        QTest::newRow("large") << 64 << 1e300 << "1e+300";
        QTest::newRow("zero below") << 64 << -0.0 << "-0";
        QTest::newRow("no number") << 32 << std::nan("") << "nan";
    }
    void showsTheShortestTextThatReadsBack() {
        QFETCH(int, bits);
        QFETCH(double, value);
        QFETCH(QString, text);
        FloatField field;
        field.configure(integer(ValueKind::Floating, static_cast<std::uint8_t>(bits)));
        field.setValue(value);
        QCOMPARE(field.text(), text);
    }

    void takesTheEndsOfItsRangeAndNothingBeyond() {
        FloatField field;
        field.configure(integer(ValueKind::Floating, 64));
        field.setMinimum(-32768);
        field.setMaximum(32768 - 1 / 65536.0);
        field.setValue(1.0);
        enter(field, "-32768");
        QCOMPARE(field.value(), QVariant(-32768.0));
        enter(field, "32767.9999847412109375");
        QCOMPARE(field.value(), QVariant(32768 - 1 / 65536.0));
        for (const char* beyond : {"32768", "-32768.00001", "inf", "-inf", "nan", "1e400"}) {
            const QSignalSpy refused(&field, &FloatField::editRefused);
            enter(field, beyond);
            QCOMPARE(refused.count(), 1);
            QCOMPARE(field.value(), QVariant(32768 - 1 / 65536.0));
            QTest::keyClick(&field, Qt::Key_Escape);
        }
    }

    void takesWhatSingleFloatsHaveWhereThereIsNoRange() {
        FloatField field;
        field.configure(integer(ValueKind::Floating, 32));
        field.setValue(1.0);
        enter(field, "nan");
        QVERIFY(std::isnan(field.value().toDouble()));
        enter(field, "-inf");
        QCOMPARE(field.value(), QVariant(-std::numeric_limits<double>::infinity()));
        enter(field, "1e400");
        QVERIFY(!field.isAcceptable());
    }

    void keepsWhatASingleKeeps() {
        FloatField field;
        field.configure(integer(ValueKind::Floating, 32));
        field.setValue(1.0);
        enter(field, "96000.123456789");
        QCOMPARE(field.value().toDouble(), double{96000.123456789F});
        QCOMPARE(field.text(), "96000.125");
    }

    void refusesWhatIsNoNumber_data() {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", "one", "1,5", "1.5.", "1 5", "0x10", "½"})
            QTest::newRow(text) << QString::fromUtf8(text);
    }
    void refusesWhatIsNoNumber() {
        QFETCH(QString, text);
        FloatField field;
        field.setValue(1.0);
        const QSignalSpy refused(&field, &FloatField::editRefused);
        enter(field, text);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant(1.0));
    }

    void hasAPointInEveryLocale() {
        QLocale::setDefault(QLocale(QLocale::German));
        FloatField field;
        field.setValue(1234.5);
        QCOMPARE(field.text(), "1234.5");
        enter(field, "2.25");
        QCOMPARE(field.value(), QVariant(2.25));
        enter(field, "2,5");
        QVERIFY(!field.isAcceptable());
    }

    void anUntouchedNumberKeepsEveryBit() {
        FloatField field;
        field.configure(integer(ValueKind::Floating, 32));
        const double exact = 0.1;
        field.setValue(exact);
        const QSignalSpy changed(&field, &FloatField::valueChanged);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 0);
        QVERIFY(field.value().toDouble() == exact);
    }

    void anAbsentNumberStaysAbsent() {
        FloatField field;
        field.setValue({});
        QTest::keyClick(&field, Qt::Key_Return);
        QVERIFY(!field.value().isValid());
        QVERIFY(!field.placeholderText().isEmpty());
    }
};

static const FieldTest<FloatFieldTest> kTest;
#include "FloatField_test.moc"
