#include <QCheckBox>
#include <QDateTime>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QUndoStack>

#include "inspector/FormFolder.h"
#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/atoms/headers/VexQTtkhdAtom.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/sampledescriptions/VexQTsounSampleDescription.h"
#include "vexqt/inspector.h"
#include "vexqt/inspector/property_edit.h"

namespace vexqt {

using testing::FormFolder;

/// A host that keeps edits on an undo stack.
class UndoHost : public EditHandler {
public:
    QUndoStack stack;
    QList<Edit> edits;

    void perform(Edit edit) override {
        struct Command : QUndoCommand {
            explicit Command(Edit theEdit) : QUndoCommand(theEdit.text), edit(std::move(theEdit)) {}
            void redo() override { edit.redo(); }
            void undo() override { edit.undo(); }
            Edit edit;
        };
        edits.append(edit);
        stack.push(new Command(std::move(edit)));
    }
};

/// An atom in a form of the given widgets.
template <class Atom>
struct Form {
    Atom atom;
    FormFolder folder;
    VexQTAtomViewController controller{"Form", folder.path(), &atom};

    explicit Form(const QString& widgets) { folder.write("Form", widgets); }

    template <class Widget>
    Widget& get(const char* name) {
        auto* widget = controller.view()->template findChild<Widget*>(name);
        if (widget == nullptr) qFatal("no widget %s", name);
        return *widget;
    }
    QVariant shown(const char* name) { return get<QWidget>(name).property("value"); }
    void type(const char* name, const QString& text) {
        auto& line = get<QLineEdit>(name);
        line.setText(text);
        emit line.editingFinished();
    }
};

static QString bound(const QString& className, const QString& name, const QString& key) {
    return FormFolder::widget(className, name, FormFolder::text("key", key));
}

static QString ruled(const QString& className, const QString& name, const char* rule,
                     const QString& value) {
    return FormFolder::widget(className, name, FormFolder::text(rule, value));
}

class FormBinderTest : public QObject {
    Q_OBJECT

private slots:
    // MARK: key

    void aFieldShowsAndSetsItsProperty() {
        Form<VexQTmvhdAtom> form(bound("IntegerField", "scale", "timeScale") +
                                 bound("FloatField", "rate", "preferredRate"));
        form.atom.setTimeScale(600);
        form.atom.setPreferredRate(1.5F);
        QCOMPARE(form.shown("scale"), QVariant(qulonglong{600}));
        QCOMPARE(form.shown("rate"), QVariant(1.5));
        const QSignalSpy edits(&form.controller, &VexQTAtomViewController::edited);
        form.type("scale", "90000");
        form.type("rate", "0.25");
        QCOMPARE(form.atom.timeScale(), 90000U);
        QCOMPARE(form.atom.preferredRate(), 0.25F);
        QCOMPARE(edits.size(), 2);
        QCOMPARE(edits[0][0].value<VexQTAtom*>(), &form.atom);
        QCOMPARE(form.controller.problems(), QStringList());
    }

    void aWidgetOfQtShowsAndSetsItsProperty() {
        Form<VexQThdlrAtom> form(bound("QCheckBox", "cString", "componentNameIsCString") +
                                 bound("QSpinBox", "flags", "componentFlags") +
                                 bound("QLineEdit", "name", "componentName"));
        form.atom.setComponentNameIsCString(true);
        form.atom.setComponentFlags(7);
        form.atom.setComponentName("Old");
        QVERIFY(form.get<QCheckBox>("cString").isChecked());
        QCOMPARE(form.get<QSpinBox>("flags").value(), 7);
        QCOMPARE(form.get<QLineEdit>("name").text(), "Old");
        form.get<QCheckBox>("cString").setChecked(false);
        form.get<QSpinBox>("flags").setValue(9);
        form.type("name", "New");
        QCOMPARE(form.atom.componentNameIsCString(), false);
        QCOMPARE(form.atom.componentFlags(), 9U);
        QCOMPARE(form.atom.componentName(), "New");
    }

    void aLabelShowsAProperty() {
        Form<VexQTmvhdAtom> form(bound("QLabel", "name", "atomName"));
        QCOMPARE(form.get<QLabel>("name").text(), "Movie Header");
        QCOMPARE(form.controller.problems(), QStringList());
    }

    void whatThePropertyKeptIsShownAfterAnEdit() {
        Form<VexQTmvhdAtom> form(bound("HexField", "flags", "flags0") +
                                 bound("HexField", "again", "flags0"));
        form.type("flags", "0x1FF");
        QCOMPARE(form.atom.flags0(), 0xFF);
        QCOMPARE(form.get<QLineEdit>("flags").text(), "0xFF");
        QCOMPARE(form.get<QLineEdit>("again").text(), "0xFF");
    }

    void aPropertyThatCannotBeSetIsReadOnly() {
        Form<VexQTmvhdAtom> form(bound("TextField", "name", "atomName") +
                                 bound("QLineEdit", "plain", "atomName") +
                                 bound("IntegerField", "scale", "timeScale"));
        QVERIFY(form.get<QLineEdit>("name").isReadOnly());
        QVERIFY(form.get<QLineEdit>("plain").isReadOnly());
        QVERIFY(!form.get<QLineEdit>("scale").isReadOnly());
        form.type("plain", "Another");
        QCOMPARE(form.atom.atomName(), "Movie Header");
    }

    void aCheckBoxWhosePropertyCannotBeSetIsDisabled() {
        Form<VexQTsounSampleDescription> form(bound("QCheckBox", "hidden", "hideV1Fields"));
        QVERIFY(form.get<QCheckBox>("hidden").isChecked());
        QVERIFY(!form.get<QCheckBox>("hidden").isEnabled());
    }

    void aKeyThatNamesNothingIsAProblem() {
        Form<VexQTmvhdAtom> form(bound("IntegerField", "scale", "timeScales") +
                                 ruled("QLabel", "hidden", "visibleWhen", "isHidden") +
                                 ruled("QLabel", "count", "controllerKey", "count") +
                                 ruled("ListEditor", "list", "listKey", "timeScale") +
                                 ruled("QCheckBox", "present", "presenceOf", "timeScale") +
                                 bound("QGroupBox", "group", "timeScale"));
        QVERIFY(!form.get<QWidget>("scale").isEnabled());
        const QStringList problems = form.controller.problems();
        for (const QString name : {"scale:", "hidden:", "count:", "list:", "present:"})
            QCOMPARE(problems.filter(name).size(), 1);
    }

    // MARK: Edits that are refused

    void anEditThatTheAtomRefusesBringsBackTheOldValue() {
        Form<VexQTmvhdAtom> form(bound("QLineEdit", "scale", "timeScale"));
        form.atom.setTimeScale(600);
        UndoHost host;
        form.controller.setEditHandler(&host);
        const QSignalSpy refusals(&form.controller, &VexQTAtomViewController::editRefused);
        const QSignalSpy edits(&form.controller, &VexQTAtomViewController::edited);
        form.type("scale", "abc");
        QCOMPARE(refusals.size(), 1);
        QCOMPARE(refusals[0][0], "timeScale");
        QVERIFY(!refusals[0][1].toString().isEmpty());
        QCOMPARE(form.get<QLineEdit>("scale").text(), "600");
        QCOMPARE(form.atom.timeScale(), 600U);
        QCOMPARE(edits.size(), 0);
        QCOMPARE(host.edits.size(), 0);
    }

    void aTextThatAFieldRefusesIsToldByTheController() {
        Form<VexQTmvhdAtom> form(bound("IntegerField", "scale", "timeScale"));
        form.atom.setTimeScale(600);
        const QSignalSpy refusals(&form.controller, &VexQTAtomViewController::editRefused);
        form.type("scale", "abc");
        QCOMPARE(refusals.size(), 1);
        QCOMPARE(refusals[0][0], "timeScale");
        QCOMPARE(form.atom.timeScale(), 600U);
    }

    // MARK: The edit handler

    void anEditGoesThroughTheHandlerAndCanBeUndone() {
        Form<VexQTmvhdAtom> form(bound("IntegerField", "scale", "timeScale"));
        form.atom.setTimeScale(600);
        UndoHost host;
        form.controller.setEditHandler(&host);
        form.type("scale", "90000");
        QCOMPARE(host.edits.size(), 1);
        QCOMPARE(host.edits[0].text, "Change time scale");
        QCOMPARE(host.edits[0].atom, &form.atom);
        QCOMPARE(host.edits[0].key, "timeScale");
        QCOMPARE(form.atom.timeScale(), 90000U);
        host.stack.undo();
        QCOMPARE(form.atom.timeScale(), 600U);
        form.controller.refresh();
        QCOMPARE(form.shown("scale"), QVariant(qulonglong{600}));
        host.stack.redo();
        QCOMPARE(form.atom.timeScale(), 90000U);
    }

    void aValueThatStaysTheSameIsNoEdit() {
        Form<VexQTmvhdAtom> form(bound("QSpinBox", "scale", "timeScale"));
        form.atom.setTimeScale(50);
        UndoHost host;
        form.controller.setEditHandler(&host);
        emit form.get<QSpinBox>("scale").valueChanged(50);
        QCOMPARE(host.edits.size(), 0);
    }

    void anEditIsNamedAfterTheLabelOfItsField() {
        const QString label =
            "<item><widget class=\"QLabel\" name=\"label\"><property name=\"text\">"
            "<string>&amp;Units a second:</string></property><property name=\"buddy\">"
            "<cstring>scale</cstring></property></widget></item>";
        Form<VexQTmvhdAtom> form(label + bound("IntegerField", "scale", "timeScale"));
        UndoHost host;
        form.controller.setEditHandler(&host);
        form.type("scale", "90000");
        QCOMPARE(host.edits[0].text, "Change units a second");
    }

    void anEditCanBeUndoneWithoutItsView() {
        VexQTmvhdAtom atom;
        atom.setTimeScale(600);
        UndoHost host;
        FormFolder folder;
        folder.write("Form", bound("IntegerField", "scale", "timeScale"));
        {
            VexQTAtomViewController controller("Form", folder.path(), &atom);
            controller.setEditHandler(&host);
            auto* line = controller.view()->findChild<QLineEdit*>("scale");
            line->setText("7");
            emit line->editingFinished();
        }
        QCOMPARE(atom.timeScale(), 7U);
        host.stack.undo();
        QCOMPARE(atom.timeScale(), 600U);
    }

    void undoingANewPictureBringsBackTheBytesOfTheOldOne() {
        VexQTdataAtom atom;
        atom.setImage(Picture({1, 1}, {1, 2, 3, 255}));
        atom.setRawImageData(Bytes{9, 8, 7});
        const auto edit = propertyEdit(atom, "image", Picture({1, 1}, {4, 5, 6, 255}));
        edit.redo();
        QVERIFY(!atom.rawImageData().has_value());
        edit.undo();
        QVERIFY(atom.image() == Picture({1, 1}, {1, 2, 3, 255}));
        QVERIFY(atom.rawImageData() == Bytes({9, 8, 7}));
    }

    void undoingAShortFormBringsBackTheWholeValue() {
        VexQTdataAtom atom;
        atom.setValue(Number(std::uint64_t{0x123456789A}));
        const auto edit = propertyEdit(atom, "intValue", 5);
        edit.redo();
        QVERIFY(atom.value() == Number(std::int32_t{5}));
        edit.undo();
        QVERIFY(atom.value() == Number(std::uint64_t{0x123456789A}));
    }

    // MARK: mask

    void aMaskShowsAndSetsItsBitsAlone() {
        const QString box = FormFolder::widget(
            "QCheckBox", "enabled",
            FormFolder::text("key", "flags2") + FormFolder::number("mask", 0x01));
        const QString pair =
            FormFolder::widget("QCheckBox", "shown",
                               FormFolder::text("key", "flags2") + FormFolder::number("mask", 6));
        Form<VexQTtkhdAtom> form(box + pair);
        form.atom.setFlags2(0x0C);
        QVERIFY(!form.get<QCheckBox>("enabled").isChecked());
        QCOMPARE(form.get<QCheckBox>("shown").checkState(), Qt::PartiallyChecked);
        form.get<QCheckBox>("enabled").setChecked(true);
        QCOMPARE(form.atom.flags2(), 0x0D);
        form.get<QCheckBox>("shown").click();
        QCOMPARE(form.atom.flags2(), 0x0F);
        QCOMPARE(form.get<QCheckBox>("shown").checkState(), Qt::Checked);
        form.get<QCheckBox>("shown").click();
        QCOMPARE(form.atom.flags2(), 0x09);
        QCOMPARE(form.get<QCheckBox>("shown").checkState(), Qt::Unchecked);
        QCOMPARE(form.controller.problems(), QStringList());
    }

    void aMaskOfAnythingButACheckBoxAndAnIntegerIsAProblem() {
        const QString mask = FormFolder::number("mask", 1);
        const auto masked = [&](const QString& className, const QString& name, const QString& key) {
            return FormFolder::widget(className, name, FormFolder::text("key", key) + mask);
        };
        Form<VexQTmvhdAtom> form(masked("IntegerField", "field", "flags2") +
                                 masked("QCheckBox", "rate", "preferredRate"));
        form.controller.view();
        QCOMPARE(form.controller.problems().size(), 2);
    }

    // MARK: presenceOf

    void aCheckBoxMakesAPropertyPresentAndAbsent() {
        Form<VexQTmvhdAtom> form(ruled("QCheckBox", "hasDate", "presenceOf", "creationDateTime") +
                                 bound("DateField", "date", "creationDateTime"));
        form.atom.setCreationDateTime(std::nullopt);
        auto& box = form.get<QCheckBox>("hasDate");
        QVERIFY(!box.isChecked());
        QVERIFY(!form.get<QWidget>("date").isEnabled());
        box.click();
        QVERIFY(form.get<QWidget>("date").isEnabled());
        QCOMPARE(form.shown("date").toDateTime().toString(Qt::ISODate), "2001-01-01T00:00:00Z");
        QVERIFY(form.atom.creationDateTime().has_value());
        box.click();
        QVERIFY(!form.atom.creationDateTime().has_value());
        QVERIFY(!form.get<QWidget>("date").isEnabled());
        QCOMPARE(form.controller.problems(), QStringList());
    }

    void undoingAbsenceBringsBackTheValue() {
        Form<VexQThdlrAtom> form(ruled("QCheckBox", "hasName", "presenceOf", "componentName"));
        form.atom.setComponentName("Old");
        UndoHost host;
        form.controller.setEditHandler(&host);
        form.get<QCheckBox>("hasName").click();
        QVERIFY(!form.atom.componentName().has_value());
        host.stack.undo();
        QCOMPARE(form.atom.componentName(), "Old");
        form.controller.refresh();
        QVERIFY(form.get<QCheckBox>("hasName").isChecked());
    }

    void aPresentTextBeginsEmpty() {
        Form<VexQThdlrAtom> form(ruled("QCheckBox", "hasName", "presenceOf", "componentName"));
        form.get<QCheckBox>("hasName").click();
        QCOMPARE(form.atom.componentName(), "");
    }

    void aPictureHasNoDefault() {
        Form<VexQTdataAtom> form(ruled("QCheckBox", "hasImage", "presenceOf", "image"));
        form.controller.view();
        QCOMPARE(form.controller.problems().size(), 1);
    }

    // MARK: visibleWhen, onlyWhere

    void aBooleanHidesAndShowsWidgets() {
        Form<VexQTsounSampleDescription> form(
            ruled("QGroupBox", "one", "visibleWhenNot", "hideV1Fields") +
            ruled("QLabel", "other", "visibleWhen", "hideV1Fields") +
            bound("IntegerField", "version", "soundVersion"));
        QVERIFY(form.get<QWidget>("one").isHidden());
        QVERIFY(!form.get<QWidget>("other").isHidden());
        form.type("version", "1");
        QVERIFY(!form.get<QWidget>("one").isHidden());
        QVERIFY(form.get<QWidget>("other").isHidden());
    }

    void aPropertyThatCanBeAbsentShowsWidgetsWhileItIsThere() {
        Form<VexQThdlrAtom> form(ruled("QLabel", "named", "visibleWhen", "componentName") +
                                 ruled("QLabel", "nameless", "visibleWhenNot", "componentName"));
        QVERIFY(form.get<QWidget>("named").isHidden());
        QVERIFY(!form.get<QWidget>("nameless").isHidden());
        form.atom.setComponentName("");
        form.controller.refresh();
        QVERIFY(!form.get<QWidget>("named").isHidden());
        QVERIFY(form.get<QWidget>("nameless").isHidden());
        QCOMPARE(form.controller.problems(), QStringList());
    }

    void aWidgetForOtherClassesIsHiddenAndNotBound() {
        const auto group = [](const QString& name, const QStringList& classes, const QString& key) {
            const QString inner = "<layout class=\"QVBoxLayout\">" +
                                  bound("IntegerField", name + "Field", key) + "</layout>";
            return FormFolder::widget("QGroupBox", name,
                                      FormFolder::list("onlyWhere", classes) + inner);
        };
        Form<VexQTmvhdAtom> form(group("sound", {"VexQTsmhdAtom", "VexQTvmhdAtom"}, "balance") +
                                 group("movie", {"VexQTmvhdAtom"}, "timeScale"));
        form.atom.setTimeScale(600);
        QVERIFY(form.get<QWidget>("sound").isHidden());
        QVERIFY(!form.get<QWidget>("movie").isHidden());
        QCOMPARE(form.shown("movieField"), QVariant(qulonglong{600}));
        QCOMPARE(form.controller.problems(), QStringList());
    }

    // MARK: controllerKey, fontKey, secondsOf

    void aFontKeySetsTheFontOfTheController() {
        Form<VexQTmvhdAtom> form(ruled("QPlainTextEdit", "text", "fontKey", "textViewFont"));
        QCOMPARE(form.get<QWidget>("text").font().pointSize(), 11);
        QVERIFY(QFontInfo(form.controller.textViewFont()).fixedPitch());
        QCOMPARE(form.get<QWidget>("text").font().family(),
                 form.controller.textViewFont().family());
    }

    void aLabelShowsATimeInSeconds() {
        const QString seconds = FormFolder::text("secondsOf", "duration") +
                                FormFolder::text("timeScaleKey", "timeScale");
        Form<VexQTmvhdAtom> form(FormFolder::widget("QLabel", "seconds", seconds));
        form.atom.setDuration(1234);
        form.atom.setTimeScale(0);
        QCOMPARE(form.get<QLabel>("seconds").text(), "");
        form.atom.setTimeScale(100);
        form.controller.refresh();
        QCOMPARE(form.get<QLabel>("seconds").text(), "= 12.340 s");
        QCOMPARE(form.controller.problems(), QStringList());
    }

    // MARK: Focus

    void theFocusedFieldIsTold() {
        Form<VexQTmvhdAtom> form(bound("IntegerField", "scale", "timeScale") +
                                 bound("LanguageField", "flags", "flags0") +
                                 FormFolder::widget("QLineEdit", "free"));
        const QSignalSpy focused(&form.controller, &VexQTAtomViewController::fieldFocused);
        form.controller.view()->show();
        form.controller.view()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.controller.view()));
        form.get<QWidget>("free").setFocus();
        form.get<QWidget>("scale").setFocus();
        QCOMPARE(focused.last()[0], "timeScale");
        form.get<QWidget>("flags").setFocus();
        QCOMPARE(focused.last()[0], "flags0");
        form.get<QWidget>("free").setFocus();
        QCOMPARE(focused.last()[0], "");
    }
};

}  // namespace vexqt

QTEST_MAIN(vexqt::FormBinderTest)
#include "FormBinder_test.moc"
