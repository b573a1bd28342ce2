#include "vexqt/inspector/widgets/DateField.h"

#include <QLineEdit>
#include <QWheelEvent>

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

static QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return {QDate(year, month, day), QTime(hour, minute, second), Qt::UTC};
}

class DateFieldTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { zone_ = qgetenv("TZ"); }
    void cleanup() {
        setZone(zone_);
        QLocale::setDefault(QLocale::c());
    }

    void showsTheDateInUTCWhereverItIs() {
        setZone("Asia/Tokyo");
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        DateField field;
        field.setValue(utc(2011, 3, 4, 23, 30, 1));
        QCOMPARE(field.text(), "2011-03-04 23:30:01 UTC");
        QCOMPARE(field.value().toDateTime(), utc(2011, 3, 4, 23, 30, 1));
    }

    void takesWhatIsTypedAsUTC() {
        setZone("America/New_York");
        DateField field;
        field.setValue(utc(2001, 1, 1));
        const QSignalSpy changed(&field, &DateField::valueChanged);
        type(field, "1999-12-31 22:33:44 UTC");
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value().toDateTime(), utc(1999, 12, 31, 22, 33, 44));
    }

    void takesTheFirstAndTheLastSecondOfTheFormat() {
        DateField field;
        field.configure({.width = 4, .kind = ValueKind::Instant, .isOptional = true});
        field.setValue(utc(2001, 1, 1));
        type(field, "1904-01-01 00:00:00 UTC");
        QCOMPARE(field.value().toDateTime(), utc(1904, 1, 1));
        type(field, "2040-02-06 06:28:15 UTC");
        QCOMPARE(field.value().toDateTime(), utc(2040, 2, 6, 6, 28, 15));
    }

    void refusesWhatTheFormatCannotCount_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("before") << "1903-12-31 23:59:59 UTC";
        QTest::newRow("behind") << "2040-02-06 06:28:16 UTC";
    }
    void refusesWhatTheFormatCannotCount() {
        QFETCH(QString, text);
        DateField field;
        field.configure({.width = 4, .kind = ValueKind::Instant, .isOptional = true});
        field.setValue(utc(2001, 1, 1));
        const QSignalSpy changed(&field, &DateField::valueChanged);
        const QSignalSpy refused(&field, &DateField::editRefused);
        type(field, text);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.text(), "2001-01-01 00:00:00 UTC");
        QCOMPARE(field.value().toDateTime(), utc(2001, 1, 1));
    }

    void emitsAtTheEndOfAnEditOnly() {
        DateField field;
        field.setValue(utc(2001, 1, 1));
        field.setSelectedSection(QDateTimeEdit::DaySection);
        const QSignalSpy changed(&field, &DateField::valueChanged);
        QTest::keyClicks(&field, "17");
        QCOMPARE(changed.count(), 0);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value().toDateTime(), utc(2001, 1, 17));
    }

    void stepsWithTheArrowKeys() {
        DateField field;
        field.setValue(utc(2001, 1, 1));
        field.setSelectedSection(QDateTimeEdit::YearSection);
        QTest::keyClick(&field, Qt::Key_Up);
        QCOMPARE(field.value().toDateTime(), utc(2002, 1, 1));
    }

    void anAbsentDateIsShownAsAbsentAndStaysSo() {
        DateField field;
        field.setValue({});
        const QSignalSpy changed(&field, &DateField::valueChanged);
        QCOMPARE(field.text(), field.specialValueText());
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 0);
        QVERIFY(!field.value().isValid());
    }

    void aDateOutOfTheFormatIsKeptAsLongAsNobodyEditsIt() {
        DateField field;
        field.setValue(utc(1850, 1, 1));
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(field.text(), "1850-01-01 00:00:00 UTC");
        QCOMPARE(field.value().toDateTime(), utc(1850, 1, 1));
    }

    void bringsBackTheOldDateWithEscape() {
        DateField field;
        field.setValue(utc(2001, 1, 1));
        field.setSelectedSection(QDateTimeEdit::DaySection);
        QTest::keyClicks(&field, "17");
        QTest::keyClick(&field, Qt::Key_Escape);
        QCOMPARE(field.text(), "2001-01-01 00:00:00 UTC");
    }

    void theWheelChangesNothing() {
        DateField field;
        field.setValue(utc(2001, 1, 1));
        QWheelEvent turn(QPointF(5, 5), QPointF(5, 5), {}, QPoint(0, -120), Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&field, &turn);
        QCOMPARE(field.value().toDateTime(), utc(2001, 1, 1));
    }

    void takesNothingWhenReadOnly() {
        DateField field;
        field.setValue(utc(2001, 1, 1));
        field.setReadOnly(true);
        field.setSelectedSection(QDateTimeEdit::YearSection);
        QTest::keyClick(&field, Qt::Key_Up);
        QCOMPARE(field.value().toDateTime(), utc(2001, 1, 1));
    }

private:
    static void type(DateField& field, const QString& text) {
        field.findChild<QLineEdit*>()->setText(text);
        QTest::keyClick(&field, Qt::Key_Return);
    }
    static void setZone(const QByteArray& zone) {
        qputenv("TZ", zone);
        tzset();
    }

    QByteArray zone_;
};

static const FieldTest<DateFieldTest> kTest;
#include "DateField_test.moc"
