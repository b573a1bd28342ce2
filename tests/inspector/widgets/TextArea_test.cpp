#include "vexqt/inspector/widgets/TextArea.h"

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class TextAreaTest : public QObject {
    Q_OBJECT

private slots:
    void takesTheEditWhenTheFocusLeavesAndNotBefore() {
        Window<TextArea> window;
        window.field.setValue(QStringLiteral("b"));
        const QSignalSpy changed(&window.field, &TextArea::valueChanged);
        QTest::keyClicks(&window.field, "a");
        QTest::keyClick(&window.field, Qt::Key_Return);
        QCOMPARE(changed.count(), 0);
        QTest::keyClick(&window.field, Qt::Key_Tab);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(window.field.value(), QVariant("a\nb"));
        QVERIFY(window.other.hasFocus());
    }

    void takesTheEditWithCtrlReturn() {
        TextArea field;
        field.setValue(QStringLiteral("b"));
        const QSignalSpy changed(&field, &TextArea::valueChanged);
        QTest::keyClicks(&field, "a");
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value(), QVariant("ab"));
    }

    void bringsBackTheOldTextWithEscape() {
        TextArea field;
        field.setValue(QStringLiteral("b"));
        QTest::keyClicks(&field, "a");
        QTest::keyClick(&field, Qt::Key_Escape);
        QCOMPARE(field.toPlainText(), "b");
        QCOMPARE(field.value(), QVariant("b"));
    }

    void keepsTheEndsOfLines_data() {
        QTest::addColumn<QString>("end");
        QTest::newRow("line feed") << "\n";
        QTest::newRow("carriage return") << "\r";
        QTest::newRow("both") << "\r\n";
    }
    void keepsTheEndsOfLines() {
        QFETCH(QString, end);
        TextArea field;
        field.setValue(QStringLiteral("one") + end + QStringLiteral("two"));
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(field.value(), QVariant(QStringLiteral("one") + end + QStringLiteral("two")));
        QTest::keyClicks(&field, "x");
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(field.value(), QVariant(QStringLiteral("xone") + end + QStringLiteral("two")));
    }

    void refusesOtherLettersWhereOnlyASCIIIsWritten() {
        TextArea field;
        field.setProperty("asciiOnly", true);
        field.setValue(QStringLiteral("b"));
        const QSignalSpy refused(&field, &TextArea::editRefused);
        field.setPlainText(QString::fromUtf8("é"));
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(refused.count(), 1);
        QVERIFY(!field.isAcceptable());
        QCOMPARE(field.value(), QVariant("b"));
    }

    void anEmptyTextIsNotAbsent() {
        TextArea field;
        field.setValue({});
        QVERIFY(!field.placeholderText().isEmpty());
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(!field.value().isValid());
        field.setValue(QString());
        QVERIFY(field.placeholderText().isEmpty());
        QVERIFY(field.value().isValid());
    }

    void takesNothingWhenReadOnly() {
        TextArea field;
        field.setValue(QStringLiteral("b"));
        field.setReadOnly(true);
        QTest::keyClicks(&field, "a");
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(field.value(), QVariant("b"));
    }
};

static const FieldTest<TextAreaTest> kTest;
#include "TextArea_test.moc"
