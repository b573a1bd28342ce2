#include "vexqt/inspector/widgets/DataField.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTemporaryDir>

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class DataFieldTest : public QObject {
    Q_OBJECT

private slots:
    void typedDigitsOverwrite() {
        DataField field;
        field.setValue(QByteArray("\x01\x42\xFF", 3));
        const QSignalSpy changed(&field, &DataField::valueChanged);
        QTest::keyClicks(&field, "aB7");
        QCOMPARE(changed.count(), 0);
        take(field);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value().toByteArray(), QByteArray("\xAB\x72\xFF", 3));
    }

    void typedDigitsBehindTheEndAppend() {
        DataField field;
        field.setValue(QByteArray("\x01", 1));
        QTest::keyClick(&field, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(&field, "0203");
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("\x01\x02\x03", 3));
    }

    void typedDigitsInsertAfterTheInsertKey() {
        DataField field;
        field.setValue(QByteArray("\x01\x04", 2));
        QTest::keyClick(&field, Qt::Key_Right);
        QTest::keyClick(&field, Qt::Key_Insert);
        QTest::keyClicks(&field, "0203");
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("\x01\x02\x03\x04", 4));
    }

    void otherLettersAreNoDigits() {
        DataField field;
        field.setValue(QByteArray("\x01", 1));
        QTest::keyClicks(&field, "xyz");
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("\x01", 1));
    }

    void deleteAndBackspaceRemoveBytes() {
        DataField field;
        field.setValue(QByteArray("abcdef"));
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClick(&field, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(&field, Qt::Key_Backspace);
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("bcde"));
        QTest::keyClick(&field, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(&field, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(&field, Qt::Key_Delete);
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("de"));
        QTest::keyClick(&field, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(&field, Qt::Key_Backspace);
        QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClick(&field, Qt::Key_Delete);
        take(field);
        QVERIFY(field.value().isValid());
        QCOMPARE(field.value().toByteArray(), QByteArray());
    }

    void tabMovesThroughBothHalvesAndOut() {
        Window<DataField> window;
        window.field.setValue(QByteArray("abc"));
        QTest::keyClick(&window.field, Qt::Key_Tab);
        QVERIFY(window.field.hasFocus());
        QTest::keyClicks(&window.field, "Z~");
        QTest::keyClick(&window.field, Qt::Key_Tab);
        QVERIFY(window.other.hasFocus());
        QCOMPARE(window.field.value().toByteArray(), QByteArray("Z~c"));
        QTest::keyClick(&window.other, Qt::Key_Backtab);
        QVERIFY(window.field.hasFocus());
        QTest::keyClick(&window.field, Qt::Key_Backtab);
        QVERIFY(window.field.hasFocus());
        QTest::keyClick(&window.field, Qt::Key_Backtab);
        QVERIFY(!window.field.hasFocus());
    }

    void bringsBackTheOldBytesWithEscape() {
        DataField field;
        field.setValue(QByteArray("abc"));
        const QSignalSpy changed(&field, &DataField::valueChanged);
        QTest::keyClicks(&field, "00");
        QTest::keyClick(&field, Qt::Key_Escape);
        take(field);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(field.value().toByteArray(), QByteArray("abc"));
    }

    void takesNothingWhenReadOnly() {
        DataField field;
        field.setValue(QByteArray("abc"));
        field.setReadOnly(true);
        QApplication::clipboard()->setText("00");
        QTest::keyClicks(&field, "00");
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keySequence(&field, QKeySequence::Paste);
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("abc"));
    }

    void copiesAndPastesHexadecimalDigits() {
        DataField field;
        field.setValue(QByteArray("\x01\xAB\xFF", 3));
        QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
        QTest::keySequence(&field, QKeySequence::Copy);
        QCOMPARE(QApplication::clipboard()->text(), "01 AB FF");
        QApplication::clipboard()->setText("10 20\n30 40");
        QTest::keyClick(&field, Qt::Key_Home, Qt::ControlModifier);
        QTest::keySequence(&field, QKeySequence::Paste);
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("\x10\x20\x30\x40", 4));
    }

    void refusesToPasteWhatAreNoDigits() {
        DataField field;
        field.setValue(QByteArray("abc"));
        const QSignalSpy refused(&field, &DataField::editRefused);
        QApplication::clipboard()->setText("no digits");
        QTest::keySequence(&field, QKeySequence::Paste);
        take(field);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value().toByteArray(), QByteArray("abc"));
    }

    void takesTheBytesOfAFile() {
        const QTemporaryDir folder;
        QFile file(folder.filePath("bytes"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("from a file") > 0);
        file.close();
        DataField field;
        field.setValue(QByteArray("abc"));
        const QSignalSpy changed(&field, &DataField::valueChanged);
        const QSignalSpy refused(&field, &DataField::editRefused);
        field.takeFile(file.fileName());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value().toByteArray(), QByteArray("from a file"));
        field.takeFile(folder.filePath("missing"));
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value().toByteArray(), QByteArray("from a file"));
    }

    void noBytesAreNotAbsentBytes() {
        DataField field;
        const QSignalSpy changed(&field, &DataField::valueChanged);
        field.setValue({});
        take(field);
        QVERIFY(!field.value().isValid());
        field.setValue(QByteArray(""));
        take(field);
        QVERIFY(field.value().isValid());
        QCOMPARE(changed.count(), 0);
        QTest::keyClicks(&field, "4");
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("\x40", 1));
    }

    void scrollsToTheCaretAmongManyBytes() {
        DataField field;
        field.resize(field.sizeHint());
        field.show();
        field.setValue(QByteArray(1 << 20, 'x'));
        QTest::keyClick(&field, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(field.verticalScrollBar()->value(), field.verticalScrollBar()->maximum());
        QTest::keyClick(&field, Qt::Key_PageUp);
        QTest::keyClick(&field, Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(field.verticalScrollBar()->value(), 0);
    }

    void aNarrowFieldHasShorterRows() {
        DataField field;
        field.resize(field.sizeHint());
        field.show();
        field.setValue(QByteArray(1600, 'x'));
        const int wide = field.verticalScrollBar()->maximum();
        field.resize(field.sizeHint().width() * 2 / 3, field.height());
        QVERIFY(field.verticalScrollBar()->maximum() >= 2 * wide);
    }

    void aClickChoosesTheByteAndTheHalf() {
        DataField field;
        field.resize(field.sizeHint());
        field.show();
        field.setValue(QByteArray("abcdef"));
        const int width = field.fontMetrics().horizontalAdvance(u'0');
        // The digits of the third byte stand in the columns 12 and 13, behind the offset.
        QTest::mouseClick(field.viewport(), Qt::LeftButton, {}, QPoint(4 + 12 * width + 2, 8));
        QTest::keyClicks(&field, "5A");
        // Its character stands two columns behind the sixteen digits.
        QTest::mouseClick(field.viewport(), Qt::LeftButton, {}, QPoint(4 + 56 * width + 2, 8));
        QTest::keyClicks(&field, "!");
        take(field);
        QCOMPARE(field.value().toByteArray(), QByteArray("!bZdef"));
    }

private:
    static void take(DataField& field) {
        QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
    }
};

static const FieldTest<DataFieldTest> kTest;
#include "DataField_test.moc"
