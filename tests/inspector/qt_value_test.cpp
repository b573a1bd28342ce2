#include "vexqt/inspector/qt_value.h"

#include <QColor>
#include <QDateTime>
#include <QImage>
#include <QTest>

namespace vexqt {

struct Case {
    Value value;
};

}  // namespace vexqt
Q_DECLARE_METATYPE(vexqt::Case)

namespace vexqt {

class QtValueTest : public QObject {
    Q_OBJECT

private slots:
    void everyKindComesBackAsItWas_data() {
        QTest::addColumn<Case>("value");
        QTest::newRow("boolean") << Case{Value(true)};
        QTest::newRow("signed") << Case{Value(std::int64_t{-5})};
        QTest::newRow("unsigned") << Case{Value(~std::uint64_t{0})};
        QTest::newRow("floating") << Case{Value(-0.75)};
        QTest::newRow("text") << Case{Value("Grüße")};
        QTest::newRow("empty text") << Case{Value("")};
        QTest::newRow("bytes") << Case{Value(Bytes{0, 255, 10})};
        QTest::newRow("empty bytes") << Case{Value(Bytes{})};
        QTest::newRow("date before 1970")
            << Case{Value(Date(std::chrono::seconds(-2'082'844'800)))};
        QTest::newRow("date after 2038") << Case{Value(Date(std::chrono::seconds(4'000'000'000)))};
        QTest::newRow("picture") << Case{Value(Picture({2, 1}, {1, 2, 3, 255, 4, 5, 6, 128}))};
        QTest::newRow("matrix") << Case{Value(Matrix{1, 2, 3, 4, 5, 6, 7, 8, 9})};
        QTest::newRow("absent") << Case{Value()};
    }
    void everyKindComesBackAsItWas() {
        QFETCH(Case, value);
        QVERIFY(fromVariant(toVariant(value.value)) == value.value);
    }

    void emptyBytesAreNotAbsent() {
        QVERIFY(toVariant(Value(Bytes{})).isValid());
        QVERIFY(!toVariant(Value()).isValid());
    }

    void aDateIsShownInUTC() {
        const QDateTime date = toVariant(Value(Date(std::chrono::seconds(86'399)))).toDateTime();
        QCOMPARE(date.toString(Qt::ISODate), "1970-01-01T23:59:59Z");
    }

    void aGreyLevelIsShownAsThatGrey() {
        const QColor color = toVariant(Value(Color::grey(0.5, 0.25))).value<QColor>();
        QCOMPARE(qRound(color.redF() * 100), 50);
        QCOMPARE(qRound(color.blueF() * 100), 50);
        QCOMPARE(qRound(color.alphaF() * 100), 25);
    }

    void pixelsLieAsThePictureHasThem() {
        const Value picture(Picture({1, 2}, {1, 2, 3, 255, 4, 5, 6, 128}));
        const QImage image = toVariant(picture).value<QImage>();
        QCOMPARE(image.size(), QSize(1, 2));
        QCOMPARE(image.pixelColor(0, 0), QColor(1, 2, 3, 255));
        QCOMPARE(image.pixelColor(0, 1), QColor(4, 5, 6, 128));
    }
};

}  // namespace vexqt

QTEST_GUILESS_MAIN(vexqt::QtValueTest)
#include "qt_value_test.moc"
