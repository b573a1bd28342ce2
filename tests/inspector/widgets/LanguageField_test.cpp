#include "vexqt/inspector/widgets/LanguageField.h"

#include <QLabel>

#include "inspector/widgets/field_tests.h"
#include "vexqt/inspector/widgets/language_codes.h"

using namespace vexqt;
using namespace vexqt::testing;

class LanguageFieldTest : public QObject {
    Q_OBJECT

private slots:
    void knowsWhatACodeMeans_data() {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("meaning");
        QTest::newRow("the first script-system language") << 0 << "English";
        QTest::newRow("another") << 33 << "Chinese (simplified)";
        QTest::newRow("of the second run") << 128 << "Welsh";
        QTest::newRow("the last") << 151 << "Norwegian Nynorsk";
        QTest::newRow("never given") << 100 << "no language of this number";
        QTest::newRow("behind the last") << 0x3FF << "no language of this number";
        QTest::newRow("unspecified") << 0x7FFF << "unspecified";
        QTest::newRow("packed letters") << 0x15C7 << QString::fromUtf8("eng — English");
        QTest::newRow("undetermined") << 0x55C4 << QString::fromUtf8("und — undetermined");
        QTest::newRow("letters of no language") << 0x6B5A << "zzz";
        QTest::newRow("no letter") << 0x0400 << "no language code";
        QTest::newRow("the uppermost bit") << 0x95C7 << "no language code";
    }
    void knowsWhatACodeMeans() {
        QFETCH(int, code);
        QFETCH(QString, meaning);
        LanguageField field;
        field.setValue(qulonglong(code));
        QCOMPARE(field.findChild<QLabel*>()->text(), meaning);
        QCOMPARE(field.findChild<LineField*>()->text(), QString::number(code));
    }

    void takesNumbersAndLetters() {
        LanguageField field;
        field.configure(integer(ValueKind::Unsigned, 16));
        field.setValue(qulonglong(0));
        const QSignalSpy changed(&field, &LanguageField::valueChanged);
        auto& line = *field.findChild<LineField*>();
        enter(line, "deu");
        QCOMPARE(field.value(), QVariant(0x10B5));
        QCOMPARE(line.text(), "4277");
        QVERIFY(field.findChild<QLabel*>()->text().startsWith("deu"));
        enter(line, "0x7FFF");
        QCOMPARE(field.value(), QVariant(0x7FFF));
        QCOMPARE(changed.count(), 2);
    }

    void refusesWhatIsNeither_data() {
        QTest::addColumn<QString>("text");
        for (const char* text : {"de", "DEU", "deut", "65536", "-1"}) QTest::newRow(text) << text;
    }
    void refusesWhatIsNeither() {
        QFETCH(QString, text);
        LanguageField field;
        field.configure(integer(ValueKind::Unsigned, 16));
        field.setValue(qulonglong(0x15C7));
        const QSignalSpy refused(&field, &LanguageField::editRefused);
        enter(*field.findChild<LineField*>(), text);
        QCOMPARE(refused.count(), 1);
        QCOMPARE(field.value(), QVariant(0x15C7));
        QVERIFY(!field.isAcceptable());
    }

    void packsEveryLetterIntoFiveBits() {
        QCOMPARE(packedLanguageCode(u"aaa").value(), std::uint16_t{0x0421});
        QCOMPARE(packedLanguageCode(u"zzz").value(), std::uint16_t{0x6B5A});
        QVERIFY(!packedLanguageCode(u"a`a").has_value());
        QVERIFY(!packedLanguageCode(u"ab").has_value());
    }

    void theLineHasTheFocusAndTheNameOfTheWhole() {
        LanguageField field;
        field.setAccessibleName("Language");
        field.show();
        const auto* line = field.findChild<LineField*>();
        QCOMPARE(field.focusProxy(), line);
        QCOMPARE(line->accessibleName(), "Language");
    }
};

static const FieldTest<LanguageFieldTest> kTest;
#include "LanguageField_test.moc"
