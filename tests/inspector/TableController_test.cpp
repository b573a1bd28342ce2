#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "inspector/FormFolder.h"
#include "testing/bytes.h"
#include "vexqt/atoms/sampledescriptions/VexQTftabAtom.h"
#include "vexqt/atoms/sampletables/VexQTco64Atom.h"
#include "vexqt/atoms/sampletables/VexQTcttsAtom.h"
#include "vexqt/atoms/sampletables/VexQTelstAtom.h"
#include "vexqt/atoms/sampletables/VexQTstcoAtom.h"
#include "vexqt/atoms/sampletables/VexQTstpsAtom.h"
#include "vexqt/atoms/sampletables/VexQTstscAtom.h"
#include "vexqt/atoms/sampletables/VexQTstssAtom.h"
#include "vexqt/atoms/sampletables/VexQTstszAtom.h"
#include "vexqt/atoms/sampletables/VexQTsttsAtom.h"
#include "vexqt/inspector.h"

namespace vexqt {

using testing::atom;
using testing::FormFolder;
using testing::join;
using testing::u32;
using Numbers = std::vector<std::uint32_t>;

static Numbers numbersFrom(std::uint32_t first, std::size_t count) {
    Numbers numbers(count);
    for (std::size_t i = 0; i < count; ++i) numbers[i] = first + static_cast<std::uint32_t>(i);
    return numbers;
}

/// The cells of a controller's row; "" for an empty one.
static QStringList row(const TableController& controller, const QStringList& columns,
                       qsizetype row) {
    QStringList cells;
    for (const QString& column : columns)
        cells.append(controller.objectValueForTableColumn(nullptr, column, row).toString());
    return cells;
}

/// Nine sync samples, from 11 on.
struct NineInAGrid {
    explicit NineInAGrid(const FormFolder& forms) : controller("Grid", forms.path(), &stss) {
        stss.setSyncSamples(numbersFrom(11, 9));
    }
    QAbstractItemModel& model() {
        controller.view();
        return *controller.table()->model();
    }

    VexQTstssAtom stss;
    VexQTstssAtomViewController controller;
};

/// Writes down what the default centre posts.
class Listener {
public:
    Listener() : posts_(&NotificationCenter::defaultCenter(), &NotificationCenter::posted) {}

    qsizetype count() const { return posts_.size(); }
    QString name() const { return posts_.last()[0].toString(); }
    QObject* object() const { return posts_.last()[1].value<QObject*>(); }
    QVariantMap userInfo() const { return posts_.last()[2].toMap(); }
    qulonglong offset() const { return userInfo()["offset"].toULongLong(); }

private:
    QSignalSpy posts_;
};

class TableControllerTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        const QStringList titles = {"A", "B", "C", "D"};
        const QString grid = FormFolder::list("columnIdentifiers", {"0", "1", "2", "3"}) +
                             FormFolder::list("columnTitles", titles);
        forms_.write("Grid", FormFolder::widget("InspectorTableView", "table", grid));
        forms_.write("Plain", FormFolder::widget("QLabel", "label"));
        const QString count = FormFolder::text("controllerKey", "syncSamplesCount");
        forms_.write("Counted", FormFolder::widget("QLabel", "count", count));
        const QString hex = FormFolder::list(
            "columnFormatters", {"Hex4ByteFormatter", "", "OSTypeFormatter", "Hex1ByteFormatter"});
        forms_.write("Formatted", FormFolder::widget("InspectorTableView", "table", grid + hex));
        const QString rows =
            FormFolder::list("columnIdentifiers", {"sampleDuration", "sampleCount"}) +
            FormFolder::list("columnTitles", {"Duration", "Count"});
        forms_.write("Rows", FormFolder::widget("InspectorTableView", "table", rows));
    }

    // MARK: Grids

    void nineEntriesFillThreeRowsOfAGrid() {
        const NineInAGrid grid(forms_);
        const TableController& controller = grid.controller;
        QCOMPARE(controller.numberOfRowsInTableView(nullptr), 3);
        QCOMPARE(row(controller, kGrid, 0), QStringList({"11", "12", "13", "14"}));
        QCOMPARE(row(controller, kGrid, 1), QStringList({"15", "16", "17", "18"}));
        QCOMPARE(row(controller, kGrid, 2), QStringList({"19", "", "", ""}));
    }

    void cellsOutsideOfAGridAreEmpty() {
        const NineInAGrid grid(forms_);
        const TableController& controller = grid.controller;
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "1", 2).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "0", 3).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "3", -1).isValid());
        QVERIFY(!controller
                     .objectValueForTableColumn(nullptr, "0", std::numeric_limits<qsizetype>::max())
                     .isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "syncSample", 0).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "-1", 1).isValid());
    }

    void aGridTakesTheColumnFromItsIdentifierNotItsPosition() {
        const NineInAGrid grid(forms_);
        const TableController& controller = grid.controller;
        QCOMPARE(row(controller, {"3", "0"}, 1), QStringList({"18", "15"}));
    }

    void everyGridShowsItsOwnList() {
        VexQTstcoAtom stco;
        stco.setChunkOffsets({4294967295});
        VexQTco64Atom co64;
        co64.setChunkOffsets({1LL << 40, -1});
        VexQTstpsAtom stps;
        stps.setSyncSamples({7, 8, 9});
        VexQTstszAtom stsz;
        stsz.setSampleSizes({100, 200, 300, 400, 500});

        const VexQTstcoAtomViewController offsets("Grid", forms_.path(), &stco);
        const VexQTco64AtomViewController wideOffsets("Grid", forms_.path(), &co64);
        const VexQTstpsAtomViewController partial("Grid", forms_.path(), &stps);
        const VexQTstszAtomViewController sizes("Grid", forms_.path(), &stsz);
        QCOMPARE(row(offsets, kGrid, 0), QStringList({"4294967295", "", "", ""}));
        QCOMPARE(row(wideOffsets, kGrid, 0), QStringList({"1099511627776", "-1", "", ""}));
        QCOMPARE(row(partial, kGrid, 0), QStringList({"7", "8", "9", ""}));
        QCOMPARE(row(sizes, kGrid, 1), QStringList({"500", "", "", ""}));
        QCOMPARE(sizes.numberOfRowsInTableView(nullptr), 2);
    }

    void anEmptyGridHasNoRows() {
        VexQTstssAtom stss;
        const VexQTstssAtomViewController controller("Grid", forms_.path(), &stss);
        QCOMPARE(controller.numberOfRowsInTableView(nullptr), 0);
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "0", 0).isValid());
    }

    void rowsOfAGridAreCountedInSinglePrecision_data() {
        QTest::addColumn<uint>("entries");
        QTest::addColumn<qsizetype>("rows");
        QTest::newRow("exact") << 16777216U << qsizetype{4194304};
        QTest::newRow("one too few") << 16777217U << qsizetype{4194304};
        QTest::newRow("rounded up") << 16777219U << qsizetype{4194305};
    }
    void rowsOfAGridAreCountedInSinglePrecision() {
        QFETCH(const uint, entries);
        QFETCH(const qsizetype, rows);
        const auto stss = syncSamplesInMemory(entries);
        const VexQTstssAtomViewController controller("Grid", forms_.path(), stss.get());
        QCOMPARE(controller.syncSamplesCount(), qsizetype{entries});
        QCOMPARE(controller.numberOfRowsInTableView(nullptr), rows);
    }

    // MARK: Rows

    void integersShowAsUnsignedNumbersOf32Bits() {
        VexQTcttsAtom ctts;
        ctts.setCompositionOffsets({{3, 4294967295}, {4, 5}});
        const VexQTcttsAtomViewController offsets("Rows", forms_.path(), &ctts);
        QCOMPARE(row(offsets, {"sampleCount", "compositionOffset"}, 0),
                 QStringList({"3", "4294967295"}));
        QCOMPARE(row(offsets, {"sampleCount", "compositionOffset"}, 1), QStringList({"4", "5"}));

        VexQTsttsAtom stts;
        stts.setSampleDurations({{4294967295, 600}});
        const VexQTsttsAtomViewController durations("Rows", forms_.path(), &stts);
        QCOMPARE(row(durations, {"sampleCount", "sampleDuration"}, 0),
                 QStringList({"4294967295", "600"}));

        VexQTstscAtom stsc;
        stsc.setSampleToChunkEntries({{1, 20, 3}});
        const VexQTstscAtomViewController chunks("Rows", forms_.path(), &stsc);
        QCOMPARE(row(chunks, {"firstChunk", "samplesPerChunk", "sampleDescriptionID"}, 0),
                 QStringList({"1", "20", "3"}));
    }

    void anEditListShowsWholeRatesAndUnsignedTimes() {
        const auto entry = [](std::uint32_t duration, std::uint32_t time, double rate) {
            VexQTEditListEntry made;
            made.setTrackDuration(duration);
            made.setMediaTime(time);
            made.setMediaRate(rate);
            return made;
        };
        VexQTelstAtom elst;
        elst.setEditListEntries({entry(600, 4294967295, 1.5), entry(700, 10, -1.5)});
        const VexQTelstAtomViewController controller("Rows", forms_.path(), &elst);
        const QStringList columns = {"trackDuration", "mediaTime", "mediaRate"};
        QCOMPARE(row(controller, columns, 0), QStringList({"600", "4294967295", "1"}));
        QCOMPARE(row(controller, columns, 1), QStringList({"700", "10", "-1"}));
    }

    void aFontTableShowsNumbersOf16BitsAndNames() {
        VexQTFontTableEntry sans;
        sans.setFontID(65535);
        sans.setFontName("Sans");
        VexQTftabAtom ftab;
        ftab.setFontTableEntries({sans, VexQTFontTableEntry()});
        const VexQTftabAtomViewController controller("Rows", forms_.path(), &ftab);
        QCOMPARE(row(controller, {"fontID", "fontName"}, 0), QStringList({"65535", "Sans"}));
        QCOMPARE(row(controller, {"fontID", "fontName"}, 1), QStringList({"0", ""}));
    }

    void unknownColumnsAndRowsBehindTheLastAreEmpty() {
        VexQTsttsAtom stts;
        stts.setSampleDurations({{5, 600}});
        const VexQTsttsAtomViewController controller("Rows", forms_.path(), &stts);
        QCOMPARE(controller.numberOfRowsInTableView(nullptr), 1);
        QVERIFY(controller.objectValueForTableColumn(nullptr, "sampleCount", 0).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "sampleCount", 1).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "sampleCount", -1).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "0", 0).isValid());
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "", 0).isValid());
    }

    // MARK: Counts

    void everyControllerCountsItsListUnderTheListsName() {
        VexQTstcoAtom stco;
        stco.setChunkOffsets({1});
        VexQTco64Atom co64;
        co64.setChunkOffsets({1, 2});
        VexQTstssAtom stss;
        stss.setSyncSamples(numbersFrom(1, 3));
        VexQTstpsAtom stps;
        stps.setSyncSamples(numbersFrom(1, 4));
        VexQTstszAtom stsz;
        stsz.setSampleSizes(numbersFrom(1, 5));
        VexQTsttsAtom stts;
        stts.setSampleDurations(std::vector<VexQTSampleDuration>(6));
        VexQTcttsAtom ctts;
        ctts.setCompositionOffsets(std::vector<VexQTCompositionOffset>(7));
        VexQTstscAtom stsc;
        stsc.setSampleToChunkEntries(std::vector<VexQTSampleToChunkEntry>(8));
        VexQTelstAtom elst;
        elst.setEditListEntries(std::vector<VexQTEditListEntry>(9));
        VexQTftabAtom ftab;
        ftab.setFontTableEntries(std::vector<VexQTFontTableEntry>(10));

        const QString path = forms_.path();
        const auto count = [](const QObject& controller, const char* name) {
            return controller.property(name).value<qsizetype>();
        };
        QCOMPARE(count(VexQTstcoAtomViewController("", path, &stco), "chunkOffsetsCount"), 1);
        QCOMPARE(count(VexQTco64AtomViewController("", path, &co64), "chunkOffsetsCount"), 2);
        QCOMPARE(count(VexQTstssAtomViewController("", path, &stss), "syncSamplesCount"), 3);
        QCOMPARE(count(VexQTstpsAtomViewController("", path, &stps), "syncSamplesCount"), 4);
        QCOMPARE(count(VexQTstszAtomViewController("", path, &stsz), "sampleSizesCount"), 5);
        QCOMPARE(count(VexQTsttsAtomViewController("", path, &stts), "sampleDurationsCount"), 6);
        QCOMPARE(count(VexQTcttsAtomViewController("", path, &ctts), "compositionOffsetsCount"), 7);
        QCOMPARE(count(VexQTstscAtomViewController("", path, &stsc), "sampleToChunkEntriesCount"),
                 8);
        QCOMPARE(count(VexQTelstAtomViewController("", path, &elst), "editListEntriesCount"), 9);
        QCOMPARE(count(VexQTftabAtomViewController("", path, &ftab), "fontTableEntriesCount"), 10);
    }

    void aLabelShowsTheCountAndFollowsARefresh() {
        VexQTstssAtom stss;
        stss.setSyncSamples(numbersFrom(1, 3));
        VexQTstssAtomViewController controller("Counted", forms_.path(), &stss);
        const auto* label = controller.view()->findChild<QLabel*>("count");
        QCOMPARE(label->text(), "3");
        stss.syncSamples().push_back(9);
        controller.refresh();
        QCOMPARE(label->text(), "4");
        QCOMPARE(controller.problems(), QStringList());
    }

    void anAtomOfAnotherClassCountsAsEmpty() {
        VexQTAtom generic("stco"_os, 8, nullptr, 0);
        VexQTstcoAtomViewController controller("Grid", forms_.path(), &generic);
        QCOMPARE(controller.chunkOffsetsCount(), 0);
        QCOMPARE(controller.numberOfRowsInTableView(nullptr), 0);
        QVERIFY(!controller.objectValueForTableColumn(nullptr, "0", 0).isValid());
        const Listener listener;
        controller.doubleClick(nullptr);
        QCOMPARE(listener.count(), 0);
        QVERIFY(controller.view() != nullptr);
    }

    // MARK: Double clicks

    void aDoubleClickPostsTheOffsetOfItsCell() {
        Clicks clicks(forms_, 10);
        clicks.on(2, 1);
        QCOMPARE(clicks.posts.count(), 1);
        QCOMPARE(clicks.posts.name(), "VexQTChunkOffsetDoubleClickNotification");
        QCOMPARE(clicks.posts.object(), clicks.table());
        const QVariantMap userInfo = clicks.posts.userInfo();
        QCOMPARE(userInfo.size(), 3);
        QCOMPARE(userInfo["offset"], QVariant(qulonglong{1009}));
        QCOMPARE(userInfo["length"], QVariant(1024));
        QCOMPARE(userInfo["cellRect"], QVariant(clicks.cell(2, 1)));
        QVERIFY(!clicks.cell(2, 1).isEmpty());
    }

    void aDoubleClickOnAnEmptyCellDoesNothing() {
        Clicks clicks(forms_, 10);
        clicks.on(2, 2);
        QCOMPARE(clicks.posts.count(), 0);
    }

    void aDoubleClickOnATitleOrBelowTheLastRowDoesNothing() {
        Clicks clicks(forms_, 10);
        QWidget* header = clicks.table()->horizontalHeader()->viewport();
        const QPoint title(clicks.table()->columnViewportPosition(3) + 5, header->height() / 2);
        const QSignalSpy actions(clicks.table(), &InspectorTableView::doubleAction);
        QTest::mouseDClick(header, Qt::LeftButton, {}, title);
        QCOMPARE(actions.size(), 1);
        QCOMPARE(clicks.table()->clickedRow(), -1);
        QCOMPARE(clicks.table()->clickedColumn(), 3);

        clicks.at({clicks.cell(0, 3).center().x(), clicks.cell(2, 0).bottom() + 20});
        QCOMPARE(actions.size(), 2);
        QCOMPARE(clicks.table()->clickedRow(), -1);
        QCOMPARE(clicks.table()->clickedColumn(), 3);
        QCOMPARE(clicks.posts.count(), 0);
    }

    void aDoubleClickRightOfTheCellsPostsTheLastEntryOfTheRowAbove() {
        Clicks clicks(forms_, 10);
        clicks.at({clicks.cell(1, 3).right() + 20, clicks.cell(1, 3).center().y()});
        QCOMPARE(clicks.table()->clickedRow(), 1);
        QCOMPARE(clicks.table()->clickedColumn(), -1);
        QCOMPARE(clicks.posts.count(), 1);
        QCOMPARE(clicks.posts.offset(), 1003ULL);
        QCOMPARE(clicks.posts.userInfo()["cellRect"], QVariant(QRect()));

        clicks.at({clicks.cell(0, 3).right() + 20, clicks.cell(0, 3).center().y()});
        QCOMPARE(clicks.table()->clickedRow(), 0);
        QCOMPARE(clicks.table()->clickedColumn(), -1);
        QCOMPARE(clicks.posts.count(), 1);
    }

    void aDoubleClickTakesTheColumnsPositionNotItsIdentifier() {
        Clicks clicks(forms_, 10);
        clicks.table()->horizontalHeader()->moveSection(3, 0);
        clicks.at(clicks.table()->frameOfCell(0, 1).center());
        QCOMPARE(clicks.posts.offset(), 1004ULL);
        QCOMPARE(clicks.posts.userInfo()["cellRect"], QVariant(clicks.table()->frameOfCell(0, 1)));
    }

    void theReturnKeyPostsTheOffsetOfTheCurrentCell() {
        Clicks clicks(forms_, 10);
        clicks.table()->setCurrentIndex(clicks.table()->model()->index(1, 2));
        QTest::keyClick(clicks.table(), Qt::Key_Return);
        QCOMPARE(clicks.posts.offset(), 1006ULL);
    }

    void aWideOffsetIsPostedUnsigned() {
        VexQTco64Atom co64;
        co64.setChunkOffsets({-1});
        VexQTco64AtomViewController controller("Grid", forms_.path(), &co64);
        controller.view();
        QVERIFY(controller.table() != nullptr);
        controller.table()->setCurrentIndex(controller.table()->model()->index(0, 0));
        const Listener listener;
        QTest::keyClick(controller.table(), Qt::Key_Enter);
        QCOMPARE(listener.offset(), ~0ULL);
    }

    void withoutATableTheFirstOffsetIsPostedWithTheZeroRectangle() {
        VexQTstcoAtom stco;
        stco.setChunkOffsets(numbersFrom(1000, 5));
        VexQTstcoAtomViewController controller("Plain", forms_.path(), &stco);
        controller.view();
        const Listener listener;
        controller.doubleClick(nullptr);
        QCOMPARE(listener.count(), 1);
        QCOMPARE(listener.offset(), 1000ULL);
        QCOMPARE(listener.object(), nullptr);
        QCOMPARE(listener.userInfo()["cellRect"], QVariant(QRect()));
    }

    // MARK: The model

    void aTableShowsWhatItsControllerSays() {
        VexQTsttsAtom stts;
        stts.setSampleDurations({{5, 600}, {1, 300}});
        VexQTsttsAtomViewController controller("Rows", forms_.path(), &stts);
        controller.view();
        QAbstractItemModel& model = *controller.table()->model();
        const QAbstractItemModelTester tester(&model);
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.columnCount(), 2);
        QCOMPARE(model.headerData(0, Qt::Horizontal), "Duration");
        QCOMPARE(model.headerData(1, Qt::Vertical), "2");
        QCOMPARE(model.index(1, 0).data(), "300");
        QCOMPARE(model.index(1, 1).data(), "1");
        QCOMPARE(model.index(0, 0).data(Qt::EditRole), 600U);
        QCOMPARE(controller.problems(), QStringList());
    }

    void rowsOfAGridAreNumberedByTheirFirstEntry() {
        NineInAGrid grid(forms_);
        QAbstractItemModel& model = grid.model();
        const QAbstractItemModelTester tester(&model);
        QCOMPARE(model.headerData(2, Qt::Vertical), "9");
        QCOMPARE(model.index(2, 0).data(), "19");
        QVERIFY(!model.index(2, 1).data().isValid());
        QVERIFY(!model.headerData(3, Qt::Vertical).isValid());
    }

    void aColumnShowsItsValuesAsItsFormatterSays() {
        VexQTstssAtom stss;
        stss.setSyncSamples({0x80000000, 10, 0x61006263, 0x1FF});
        VexQTstssAtomViewController controller("Formatted", forms_.path(), &stss);
        controller.view();
        QAbstractItemModel& model = *controller.table()->model();
        QCOMPARE(model.index(0, 0).data(), "0xFFFFFFFF80000000");
        QCOMPARE(model.index(0, 1).data(), "10");
        QCOMPARE(model.index(0, 2).data(), u"a\u2400bc"_qs);
        QCOMPARE(model.index(0, 3).data(), "0xFF");
    }

    void aTableCannotBeEdited() {
        VexQTsttsAtom stts;
        stts.setSampleDurations({{5, 600}});
        VexQTsttsAtomViewController controller("Rows", forms_.path(), &stts);
        controller.view();
        QAbstractItemModel& model = *controller.table()->model();
        QVERIFY(!model.flags(model.index(0, 0)).testFlag(Qt::ItemIsEditable));
        QVERIFY(!model.setData(model.index(0, 0), 7));
        QCOMPARE(stts.sampleDurations()[0].sampleDuration(), 600U);
    }

    void aListThatGrewOrShrankIsShownAfterARefresh() {
        NineInAGrid grid(forms_);
        QAbstractItemModel& model = grid.model();
        const QAbstractItemModelTester tester(&model);
        grid.stss.syncSamples().resize(2);
        QVERIFY(!model.index(2, 0).data().isValid());
        grid.controller.refresh();
        QCOMPARE(model.rowCount(), 1);
        const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        grid.stss.syncSamples()[1] = 77;
        grid.controller.refresh();
        QCOMPARE(changes.size(), 1);
        QCOMPARE(model.index(0, 1).data(), "77");
    }

    void aTableWithTheFocusTellsItsList() {
        VexQTstssAtom stss;
        VexQTstssAtomViewController controller("Grid", forms_.path(), &stss);
        const QSignalSpy focused(&controller, &VexQTAtomViewController::fieldFocused);
        controller.view()->show();
        controller.view()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(controller.view()));
        controller.table()->setFocus();
        QCOMPARE(focused.last()[0], "syncSamples");
    }

    void twentyMillionEntriesAreShownAtOnce() {
        constexpr std::uint32_t kEntries = 20'000'000;
        const auto stss = syncSamplesInMemory(kEntries);
        QElapsedTimer time;
        time.start();
        VexQTstssAtomViewController controller("Grid", forms_.path(), stss.get());
        controller.view()->show();
        controller.table()->scrollToBottom();
        controller.view()->grab();
        QVERIFY2(time.elapsed() < 2000, qPrintable(QString::number(time.elapsed())));
        QAbstractItemModel& model = *controller.table()->model();
        QCOMPARE(model.rowCount(), 5'000'000);
        QCOMPARE(model.index(4'999'999, 3).data(), "19999999");
    }

private:
    /// A table whose entries, 0, 1, 2 and so on, have only been read.
    static std::unique_ptr<VexQTstssAtom> syncSamplesInMemory(std::uint32_t entries) {
        Bytes bytes = join({u32(16 + 4 * entries), testing::text("stss"), u32(0), u32(entries)});
        bytes.resize(bytes.size() + 4 * std::size_t{entries});
        for (std::uint32_t i = 0; i < entries; ++i)
            for (std::size_t byte = 0; byte < 4; ++byte)
                bytes[16 + 4 * std::size_t{i} + byte] =
                    static_cast<std::uint8_t>(i >> (24 - 8 * byte));
        return VexQTstssAtom::initWithData(bytes, nullptr, 0);
    }

    /// A table of chunk offsets from 1000 on, on the screen, and what it posts.
    struct Clicks {
        VexQTstcoAtom stco;
        VexQTstcoAtomViewController controller;
        Listener posts;

        Clicks(const FormFolder& forms, std::size_t entries)
            : controller("Grid", forms.path(), &stco) {
            stco.setChunkOffsets(numbersFrom(1000, entries));
            controller.view()->resize(600, 300);
            controller.view()->show();
        }
        InspectorTableView* table() const { return controller.table(); }
        QRect cell(int row, int column) const { return table()->frameOfCell(column, row); }
        void on(int row, int column) { at(cell(row, column).center()); }
        void at(const QPoint& place) {
            QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, place);
        }
    };

    const QStringList kGrid = {"0", "1", "2", "3"};
    FormFolder forms_;
};

}  // namespace vexqt

QTEST_MAIN(vexqt::TableControllerTest)
#include "TableController_test.moc"
