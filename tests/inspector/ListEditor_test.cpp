#include "vexqt/inspector/ListEditor.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include "inspector/FormFolder.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/atoms/structure/VexQTftypAtom.h"
#include "vexqt/inspector/ListTableModel.h"
#include "vexqt/inspector/VexQTAtomViewController.h"

namespace vexqt {

using testing::FormFolder;

/// Keeps the last edit.
class LastEdit : public EditHandler {
public:
    Edit edit;

    void perform(Edit theEdit) override {
        edit = std::move(theEdit);
        edit.redo();
    }
};

static QString listWidget(const QString& className, const QString& key,
                          const QStringList& columns) {
    QStringList titles = columns;
    for (QString& title : titles) title = "Title of " + title;
    return FormFolder::widget(className, "list",
                              FormFolder::text("listKey", key) +
                                  FormFolder::list("columnIdentifiers", columns) +
                                  FormFolder::list("columnTitles", titles));
}

class ListEditorTest : public QObject {
    Q_OBJECT

private:
    FormFolder folder_;
    VexQTkeysAtom keys_;
    VexQTftypAtom ftyp_;
    LastEdit handler_;
    std::unique_ptr<VexQTAtomViewController> controller_;

    InspectorTableView& table() { return *controller_->view()->findChild<InspectorTableView*>(); }
    QAbstractItemModel& model() { return *table().model(); }
    QAction& action(const char* name) { return *controller_->view()->findChild<QAction*>(name); }
    void show(VexQTAtom& atom, const QString& widget) {
        folder_.write("Form", widget);
        controller_ = std::make_unique<VexQTAtomViewController>("Form", folder_.path(), &atom);
        controller_->setEditHandler(&handler_);
        controller_->view();
        QCOMPARE(controller_->problems(), QStringList());
    }
    void showKeys() {
        show(keys_,
             listWidget("ListEditor", "keys", {"index", "nameSpace", "value", "dataType", "key"}));
    }
    QStringList names() const {
        QStringList names;
        for (const VexQTKeyEntry& key : keys_.keys())
            names.append(QString::fromStdString(key.value().value_or("-")));
        return names;
    }

private slots:
    void init() {
        handler_ = {};
        keys_.setKeys({{1, "mdta"_os, "a"}, {2, "udta"_os, "b"}, {3, "mdta"_os, "c"}});
        ftyp_.setCompatibleBrands({static_cast<std::int32_t>("qt  "_os), 0});
    }
    void cleanup() { controller_.reset(); }

    void aListShowsTheColumnsThatItHas() {
        showKeys();
        const QAbstractItemModelTester tester(&model());
        QCOMPARE(model().columnCount(), 3);
        QCOMPARE(model().rowCount(), 3);
        QCOMPARE(model().headerData(1, Qt::Horizontal), "Title of nameSpace");
        QCOMPARE(model().index(1, 0).data(), "2");
        QCOMPARE(model().index(1, 1).data(), "udta");
        QCOMPARE(model().index(1, 2).data(), "b");
    }

    void aListOfPlainNumbersHasOneColumnWithoutAName() {
        show(ftyp_, listWidget("ListEditor", "compatibleBrands", {""}));
        const QAbstractItemModelTester tester(&model());
        QCOMPARE(model().columnCount(), 1);
        QCOMPARE(model().index(0, 0).data(), "qt  ");
        QCOMPARE(model().index(1, 0).data(), QString(4, QChar(0x2400)));
        QVERIFY(model().setData(model().index(1, 0), "mp42"));
        QCOMPARE(ftyp_.compatibleBrands()[1], std::int32_t{0x6D703432});
        QVERIFY(model().setData(model().index(1, 0), u"a\u2400b"_qs));
        QCOMPARE(ftyp_.compatibleBrands()[1], std::int32_t{0x61006200});
    }

    void aCellIsEditedThroughTheHandler() {
        showKeys();
        const QAbstractItemModelTester tester(&model());
        QVERIFY(model().setData(model().index(2, 2), "new"));
        QCOMPARE(names(), QStringList({"a", "b", "new"}));
        QCOMPARE(handler_.edit.key, "keys[2].value");
        QCOMPARE(handler_.edit.text, "Change title of value");
        handler_.edit.undo();
        QCOMPARE(names(), QStringList({"a", "b", "c"}));
        handler_.edit.redo();
        QCOMPARE(names(), QStringList({"a", "b", "new"}));
    }

    void aTextThatNamesNoValueIsRefused() {
        showKeys();
        const QSignalSpy refusals(controller_.get(), &VexQTAtomViewController::editRefused);
        QVERIFY(!model().setData(model().index(0, 0), "one"));
        QVERIFY(!model().setData(model().index(0, 0), "9223372036854775808"));
        QVERIFY(!model().setData(model().index(0, 1), "mdtas"));
        QCOMPARE(refusals.size(), 3);
        QCOMPARE(refusals[0][0], "keys[0].index");
        QCOMPARE(refusals[0][1], u"“one” is no whole number."_qs);
        QCOMPARE(keys_.keys()[0].index(), 1);
        QCOMPARE(keys_.keys()[0].nameSpace(), "mdta"_os);
        QVERIFY(!handler_.edit.redo);
    }

    void numbersAreTakenInDecimalAndHexadecimal() {
        showKeys();
        QVERIFY(model().setData(model().index(0, 0), "-5"));
        QCOMPARE(keys_.keys()[0].index(), -5);
        QVERIFY(model().setData(model().index(0, 0), " 0x10 "));
        QCOMPARE(keys_.keys()[0].index(), 16);
        QVERIFY(model().setData(model().index(0, 0), "010"));
        QCOMPARE(keys_.keys()[0].index(), 10);
    }

    void aRowIsInsertedBehindTheCurrentOne() {
        showKeys();
        const QAbstractItemModelTester tester(&model());
        table().setCurrentIndex(model().index(0, 2));
        action("insertRow").trigger();
        QCOMPARE(names(), QStringList({"a", "-", "b", "c"}));
        QCOMPARE(model().rowCount(), 4);
        QCOMPARE(table().currentIndex(), model().index(1, 2));
        QVERIFY(handler_.edit.key.isEmpty());
        handler_.edit.undo();
        QCOMPARE(names(), QStringList({"a", "b", "c"}));
    }

    void aRowIsInsertedIntoAnEmptyList() {
        keys_.setKeys({});
        showKeys();
        QVERIFY(!action("removeRows").isEnabled());
        action("insertRow").trigger();
        QCOMPARE(names(), QStringList({"-"}));
        QCOMPARE(keys_.keys()[0].nameSpace(), kAnyType);
    }

    void removedRowsComeBackAsTheyWere() {
        showKeys();
        const QAbstractItemModelTester tester(&model());
        table().setCurrentIndex(model().index(1, 1));
        action("removeRows").trigger();
        QCOMPARE(names(), QStringList({"a", "c"}));
        QCOMPARE(table().currentIndex().row(), 1);
        handler_.edit.undo();
        QCOMPARE(names(), QStringList({"a", "b", "c"}));
        QCOMPARE(keys_.keys()[1].index(), 2);
        QCOMPARE(keys_.keys()[1].nameSpace(), "udta"_os);
    }

    void rowsThatLieApartAreRemovedTogether() {
        showKeys();
        table().selectionModel()->select(model().index(0, 0), QItemSelectionModel::Select);
        table().selectionModel()->select(model().index(2, 0), QItemSelectionModel::Select);
        table().selectionModel()->setCurrentIndex(model().index(0, 0),
                                                  QItemSelectionModel::NoUpdate);
        action("removeRows").trigger();
        QCOMPARE(names(), QStringList({"b"}));
    }

    void aRowMovesUpAndDown() {
        showKeys();
        const QAbstractItemModelTester tester(&model());
        table().setCurrentIndex(model().index(0, 0));
        QVERIFY(!action("moveRowUp").isEnabled());
        action("moveRowDown").trigger();
        QCOMPARE(names(), QStringList({"b", "a", "c"}));
        QCOMPARE(table().currentIndex().row(), 1);
        action("moveRowDown").trigger();
        QCOMPARE(names(), QStringList({"b", "c", "a"}));
        QVERIFY(!action("moveRowDown").isEnabled());
        handler_.edit.undo();
        QCOMPARE(names(), QStringList({"b", "a", "c"}));
        controller_->refresh();
        table().setCurrentIndex(model().index(1, 0));
        action("moveRowUp").trigger();
        QCOMPARE(names(), QStringList({"a", "b", "c"}));
    }

    void everyActionHasAButtonAndAKey() {
        showKeys();
        const auto buttons = controller_->view()->findChildren<QToolButton*>();
        QCOMPARE(controller_->view()->findChildren<QAction*>().size(), 4);
        int withAction = 0;
        for (const QToolButton* button : buttons)
            if (button->defaultAction() != nullptr) {
                ++withAction;
                QVERIFY(!button->defaultAction()->shortcut().isEmpty());
                QVERIFY(!button->defaultAction()->text().isEmpty());
            }
        QCOMPARE(withAction, 4);
    }

    void keysOfTheKeyboardEditAPlainTable() {
        show(keys_, listWidget("InspectorTableView", "keys", {"value"}));
        controller_->view()->show();
        controller_->view()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(controller_->view()));
        table().setFocus();
        table().setCurrentIndex(model().index(0, 0));
        QTest::keyClick(&table(), Qt::Key_Down, Qt::AltModifier);
        QCOMPARE(names(), QStringList({"b", "a", "c"}));
        QTest::keyClick(&table(), Qt::Key_Delete);
        QCOMPARE(names(), QStringList({"b", "c"}));
        QTest::keyClick(&table(), Qt::Key_Insert);
        QCOMPARE(names(), QStringList({"b", "c", "-"}));
    }

    void whatIsOutsideOfTheListIsNotTouched() {
        showKeys();
        QVERIFY(!model().insertRows(4, 1));
        QVERIFY(!model().insertRows(-1, 1));
        QVERIFY(!model().removeRows(2, 2));
        QVERIFY(!model().removeRows(-1, 1));
        QVERIFY(!model().removeRows(0, 0));
        auto& list = static_cast<ListTableModel&>(model());
        QVERIFY(!list.moveEntry(2, 3));
        QVERIFY(!list.moveEntry(-1, 0));
        QVERIFY(!list.moveEntry(1, 1));
        QCOMPARE(names(), QStringList({"a", "b", "c"}));
    }

    void aListThatAnotherShortenedIsSafeToShow() {
        showKeys();
        keys_.setKeys({});
        QVERIFY(!model().index(2, 2).data().isValid());
        QVERIFY(!model().setData(model().index(2, 2), "x"));
        controller_->refresh();
        QCOMPARE(model().rowCount(), 0);
    }
};

}  // namespace vexqt

QTEST_MAIN(vexqt::ListEditorTest)
#include "ListEditor_test.moc"
