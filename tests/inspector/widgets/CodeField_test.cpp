#include "vexqt/inspector/widgets/CodeField.h"

#include "inspector/widgets/field_tests.h"
#include "vexqt/core/os_type.h"

using namespace vexqt;
using namespace vexqt::testing;

class CodeFieldTest : public QObject {
    Q_OBJECT

private slots:
    void showsTheFourCharacters_data() {
        QTest::addColumn<unsigned>("code");
        QTest::addColumn<QString>("text");
        QTest::newRow("letters") << "vide"_os
                                 << "vide";
        QTest::newRow("a space at the end") << "qt  "_os
                                            << "qt  ";
        QTest::newRow("zero bytes") << 0x00410000U << QString::fromUtf8("␀A␀␀");
        QTest::newRow("above ASCII") << 0xA96E616DU << QString::fromUtf8("©nam");
    }
    void showsTheFourCharacters() {
        QFETCH(unsigned, code);
        QFETCH(QString, text);
        CodeField field;
        field.setValue(qulonglong{code});
        QCOMPARE(field.text(), text);
    }

    void takesFourCharactersAndFewer_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<unsigned>("code");
        QTest::newRow("four") << "soun"
                              << "soun"_os;
        QTest::newRow("spaces belong to it") << " a  "
                                             << " a  "_os;
        QTest::newRow("two, zero bytes behind") << "ab" << 0x61620000U;
        QTest::newRow("none at all") << "" << 0U;
        QTest::newRow("the symbol for null") << QString::fromUtf8("␀a␀b") << 0x00610062U;
    }
    void takesFourCharactersAndFewer() {
        QFETCH(QString, text);
        QFETCH(unsigned, code);
        CodeField field;
        field.setValue(qulonglong{"????"_os});
        const QSignalSpy changed(&field, &CodeField::valueChanged);
        field.setText(text);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(field.value().toUInt(), code);
    }

    void refusesFiveCharactersAndWhatIsNotASCII() {
        CodeField field;
        field.setValue(qulonglong{"vide"_os});
        for (const char* text : {"abcde", "©nam"}) {
            const QSignalSpy refused(&field, &CodeField::editRefused);
            field.setText(QString::fromUtf8(text));
            QTest::keyClick(&field, Qt::Key_Return);
            QCOMPARE(refused.count(), 1);
            QCOMPARE(field.value(), QVariant(qulonglong{"vide"_os}));
        }
    }
};

static const FieldTest<CodeFieldTest> kTest;
#include "CodeField_test.moc"
