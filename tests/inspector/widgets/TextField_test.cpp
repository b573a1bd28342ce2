#include "vexqt/inspector/widgets/TextField.h"

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class TextFieldTest : public QObject {
    Q_OBJECT

private slots:
    void takesAnyText() {
        TextField field;
        field.setValue(QStringLiteral("before"));
        const QSignalSpy changed(&field, &TextField::valueChanged);
        field.setText(QString::fromUtf8("naïve 🎬"));
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value(), QVariant(QString::fromUtf8("naïve 🎬")));
    }

    void refusesOtherLettersWhereOnlyASCIIIsWritten() {
        TextField field;
        field.setProperty("asciiOnly", true);
        field.setValue(QStringLiteral("before"));
        const QSignalSpy refused(&field, &TextField::editRefused);
        field.setText(QString::fromUtf8("naïve"));
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant("before"));
        enter(field, "naive ~");
        QCOMPARE(field.value(), QVariant("naive ~"));
    }

    void anEmptyTextIsNotAbsent() {
        TextField field;
        field.setValue(QStringLiteral("x"));
        enter(field, "");
        QVERIFY(field.value().isValid());
        QCOMPARE(field.value(), QVariant(QString()));
        QVERIFY(field.placeholderText().isEmpty());
        field.setValue({});
        QVERIFY(!field.placeholderText().isEmpty());
        QTest::keyClick(&field, Qt::Key_Return);
        QVERIFY(!field.value().isValid());
    }

    void anUntouchedTextKeepsWhatALineCannotShow() {
        TextField field;
        const QString text = QStringLiteral("two\nlines\tand a tab");
        field.setValue(text);
        const QSignalSpy changed(&field, &TextField::valueChanged);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(field.value(), QVariant(text));
    }
};

static const FieldTest<TextFieldTest> kTest;
#include "TextField_test.moc"
