#include "vexqt/inspector/widgets/field_widgets.h"

#include <QMetaProperty>

#include "inspector/widgets/field_tests.h"
#include "vexqt/inspector/widgets/FieldEditor.h"

using namespace vexqt;
using namespace vexqt::testing;

class FieldWidgetsTest : public QObject {
    Q_OBJECT

private slots:
    void makesEveryFieldByItsName_data() {
        QTest::addColumn<QString>("name");
        for (const char* name :
             {"ChoiceField", "CodeField", "ColorWell", "DataField", "DateField", "FloatField",
              "HexField", "IntegerField", "LanguageField", "PictureWell", "TextArea", "TextField"})
            QTest::newRow(name) << name;
    }
    void makesEveryFieldByItsName() {
        QFETCH(QString, name);
        QWidget parent;
        QWidget* field = createFieldWidget(name, &parent);
        QVERIFY(field != nullptr);
        QCOMPARE(field->parentWidget(), &parent);
        QCOMPARE(QString(field->metaObject()->className()), "vexqt::" + name);
        QVERIFY(dynamic_cast<FieldEditor*>(field) != nullptr);
        const QMetaProperty value = field->metaObject()->userProperty();
        QCOMPARE(QString(value.name()), "value");
        QCOMPARE(QString(value.notifySignal().name()), "valueChanged");
        const int refused = field->metaObject()->indexOfSignal("editRefused(QString)");
        QVERIFY(refused >= 0);
    }

    void knowsNoOtherName() {
        for (const char* name : {"", "QLabel", "LineField", "integerfield"})
            QVERIFY(createFieldWidget(name, nullptr) == nullptr);
    }

    void whatIsSetIsNoEdit_data() { makesEveryFieldByItsName_data(); }
    void whatIsSetIsNoEdit() {
        QFETCH(QString, name);
        const std::unique_ptr<QWidget> field(createFieldWidget(name, nullptr));
        const QMetaProperty value = field->metaObject()->userProperty();
        const QSignalSpy changed(field.get(), "2valueChanged()");
        for (const QVariant& given : {QVariant(), QVariant(1), QVariant()}) {
            value.write(field.get(), given);
            QCOMPARE(value.read(field.get()), given);
        }
        QCOMPARE(changed.count(), 0);
    }
};

static const FieldTest<FieldWidgetsTest> kTest;
#include "field_widgets_test.moc"
