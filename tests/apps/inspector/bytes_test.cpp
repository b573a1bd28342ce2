#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "apps/inspector/BytePane.h"
#include "apps/inspector/FieldPlaces.h"
#include "apps/inspector/program.h"
#include "apps/inspector/words.h"
#include "movies.h"

namespace vexqt::inspector_app {

/// Counts what is read of a very long source.
class LongSource : public ByteSource {
public:
    quint64 length() const override { return 300'000'000'000; }
    QByteArray read(quint64, qsizetype count) override {
        read_ += static_cast<quint64>(count);
        return QByteArray(count, 'x');
    }
    quint64 read_ = 0;
};

class BytesTest : public QObject {
    Q_OBJECT

private:
    MovieFolder folder_;

    template <class View>
    static void show(View& view, ByteSource& source) {
        view.resize(700, 300);
        view.show();
        view.setSource(&source);
    }
    static void typeOffset(BytePane& pane, const QString& typed) {
        auto* field = pane.findChild<QLineEdit*>();
        field->setText(typed);
        QTest::keyClick(field, Qt::Key_Return);
    }

private slots:
    void initTestCase() { prepare(*qApp, false); }

    void readsBehind4GiBOfASparseFile() {
        const QString path = folder_.path("sparse.mov");
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const quint64 place = (quint64{1} << 32) + 12'345;
        QVERIFY(file.resize(static_cast<qint64>(place + 1000)));
        QVERIFY(file.seek(static_cast<qint64>(place)));
        file.write("moov!");
        file.close();

        const auto source = FileBytes::open(path.toStdString());
        QVERIFY(source);
        QCOMPARE(source->length(), place + 1000);
        QCOMPARE(source->read(place, 5), "moov!");
        QCOMPARE(source->read(place + 998, 100).size(), 2);

        HexView view;
        show(view, *source);
        view.goTo(place);
        QCOMPARE(view.cursor(), place);
        const quint64 row = place / static_cast<quint64>(view.bytesPerRow());
        QVERIFY(row >= view.firstVisibleRow());
        QVERIFY(row < view.firstVisibleRow() + 40);
        view.select({place, 5});
        QCOMPARE(view.selectedText(), "moov!");
        QCOMPARE(view.selectedHex(), "6d 6f 6f 76 21");
    }

    void scrollsThrough300GBAndReadsWhatIsSeen() {
        LongSource source;
        HexView view;
        show(view, source);
        QTest::qWait(10);
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
        QTest::qWait(10);
        const quint64 last = view.rowCount() - 1;
        QVERIFY(view.firstVisibleRow() <= last);
        QVERIFY(last - view.firstVisibleRow() < 60);
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 2);
        QTest::qWait(10);
        const double share =
            static_cast<double>(view.firstVisibleRow()) / static_cast<double>(last);
        QVERIFY(share > 0.49 && share < 0.51);
        QVERIFY(source.read_ < 100'000);
    }

    void aStepOfTheWheelIsThreeRowsHoweverLongTheFile() {
        LongSource source;
        HexView view;
        show(view, source);
        view.goTo(200'000'000'000);
        const quint64 before = view.firstVisibleRow();
        QWheelEvent turn({10, 10}, view.mapToGlobal(QPointF(10, 10)), {}, {0, -120}, Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.viewport(), &turn);
        QCOMPARE(view.firstVisibleRow(), before + 3);
    }

    void keysMoveTheCursorByByteRowPageAndFile() {
        LongSource source;
        HexView view;
        show(view, source);
        const auto width = static_cast<quint64>(view.bytesPerRow());
        QTest::keyClick(&view, Qt::Key_Right);
        QCOMPARE(view.cursor(), 1);
        QTest::keyClick(&view, Qt::Key_Down);
        QCOMPARE(view.cursor(), 1 + width);
        QTest::keyClick(&view, Qt::Key_Home);
        QCOMPARE(view.cursor(), width);
        QTest::keyClick(&view, Qt::Key_End);
        QCOMPARE(view.cursor(), 2 * width - 1);
        QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(view.cursor(), source.length() - 1);
        QTest::keyClick(&view, Qt::Key_Right);
        QCOMPARE(view.cursor(), source.length() - 1);
        QTest::keyClick(&view, Qt::Key_PageUp);
        QVERIFY(view.cursor() < source.length() - width);
        QTest::keyClick(&view, Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(view.cursor(), 0);
        QTest::keyClick(&view, Qt::Key_Up);
        QCOMPARE(view.cursor(), 0);
    }

    void shiftSelectsAndCopyCopies() {
        MemoryBytes source(SharedBytes::copyOf(testing::text("ABCD\n")));
        HexView view;
        show(view, source);
        QTest::keyClick(&view, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(&view, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(view.selection(), (ByteRange{0, 3}));
        QTest::keySequence(&view, QKeySequence::Copy);
        QCOMPARE(QApplication::clipboard()->text(), "41 42 43");
        view.select({3, 2});
        QCOMPARE(view.selectedText(), QStringLiteral("D·"));
    }

    void aClickGoesToTheByteUnderIt() {
        MemoryBytes source(SharedBytes::copyOf(testing::zeros(100)));
        HexView view;
        show(view, source);
        QSignalSpy moved(&view, &HexView::cursorMoved);
        std::optional<quint64> there;
        for (int x = 0; x < 700; x += 3) {
            there = view.offsetAt({x, 2});
            if (there == 7) {
                QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, {x, 2});
                break;
            }
        }
        QCOMPARE(view.cursor(), 7);
        QVERIFY(!moved.isEmpty());
        QCOMPARE(view.offsetAt({100, 290}), std::nullopt);
        QCOMPARE(view.offsetAt({100, -5}), std::nullopt);
    }

    void withoutBytesNothingHappens() {
        HexView view;
        view.resize(700, 300);
        view.show();
        view.setSource(nullptr);
        view.goTo(10);
        view.select({1, 2});
        QTest::keyClick(&view, Qt::Key_Down);
        QCOMPARE(view.selectedHex(), "");
        MemoryBytes none{SharedBytes()};
        view.setSource(&none);
        view.reveal({0, 10});
        QTest::keyClick(&view, Qt::Key_End);
        QCOMPARE(view.rowCount(), 0);
    }

    void theFieldTakesOffsetsInEveryForm_data() {
        QTest::addColumn<QString>("typed");
        QTest::newRow("decimal") << "2,748";
        QTest::newRow("plain") << "2748";
        QTest::newRow("hexadecimal") << "0xABC";
        QTest::newRow("small letters") << " 0xabc ";
        QTest::newRow("apostrophes") << "2'748";
    }
    void theFieldTakesOffsetsInEveryForm() {
        QFETCH(QString, typed);
        QLocale::setDefault(QLocale(QLocale::English));
        LongSource source;
        BytePane pane;
        show(pane, source);
        typeOffset(pane, typed);
        QCOMPARE(pane.hex().cursor(), 2748);
    }

    void aTypoInTheFieldMovesNothing() {
        LongSource source;
        BytePane pane;
        pane.setSource(&source);
        pane.hex().goTo(5);
        typeOffset(pane, "12z");
        QCOMPARE(pane.hex().cursor(), 5);
    }

    void theCaptionTellsTheFieldAndItsPlace() {
        LongSource source;
        BytePane pane;
        pane.setSource(&source);
        pane.showAtom({40, 108});
        QVERIFY2(pane.caption().contains("108 bytes at 40 (0x28)"), qPrintable(pane.caption()));
        pane.showField({60, 4}, "timeScale");
        QVERIFY2(pane.caption().contains("timeScale: 4 bytes at 60"), qPrintable(pane.caption()));
        QCOMPARE(pane.hex().highlight(), (ByteRange{60, 4}));
        pane.showField({}, "timeScale");
        QVERIFY(!pane.caption().contains("timeScale"));
    }

    void fieldsLieWhereTheyWereRead_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("key");
        QTest::addColumn<quint64>("offset");
        QTest::addColumn<quint64>("length");
        // The movie header begins at 44, the first track header at 160.
        QTest::newRow("version") << "moov.mvhd"
                                 << "version" << quint64{52} << quint64{1};
        QTest::newRow("second flag") << "moov.mvhd"
                                     << "flags1" << quint64{54} << quint64{1};
        QTest::newRow("time scale") << "moov.mvhd"
                                    << "timeScale" << quint64{64} << quint64{4};
        QTest::newRow("matrix") << "moov.mvhd"
                                << "matrixXValue" << quint64{44 + 68} << quint64{4};
        QTest::newRow("name of irregular length") << "moov.trak.mdia.hdlr"
                                                  << "componentName" << quint64{0} << quint64{0};
    }
    void fieldsLieWhereTheyWereRead() {
        QFETCH(QString, path);
        QFETCH(QString, key);
        QFETCH(quint64, offset);
        QFETCH(quint64, length);
        const auto document = opened(folder_.addSmallMovie());
        VexQTAtom& atom = atomAt(*document, path.toUtf8().constData());
        const auto range = FieldPlaces(atom).of(key);
        QVERIFY(range);
        if (length == 0) {
            const QByteArray there = contentsOf(document->path())
                                         .mid(static_cast<qsizetype>(range->offset),
                                              static_cast<qsizetype>(range->length));
            QVERIFY2(there.contains("Handler"), there.toHex().constData());
            return;
        }
        QCOMPARE(range->offset, offset);
        QCOMPARE(range->length, length);
    }

    void aFieldThatIsNotInTheFileHasNoPlace() {
        const auto document = opened(folder_.addSmallMovie());
        QVERIFY(!FieldPlaces(atomAt(*document, "moov.mvhd")).of("nothing"));
        QVERIFY(!FieldPlaces(atomAt(*document, "mdat")).of("version"));
        VexQTAtom made("abcd"_os, 8, nullptr, 0);
        QVERIFY(!FieldPlaces(made).of("unknownData"));
    }

    void entriesOfATableLieSideBySide() {
        using namespace testing;
        const QString path = folder_.add(
            "table.mov",
            atom(
                "moov"_os,
                {atom("trak"_os,
                      {atom("mdia"_os,
                            {atom("minf"_os,
                                  {atom("stbl"_os, {atom("stts"_os, {u32(0), u32(2), u32(7), u32(8),
                                                                     u32(9), u32(10)})})})})})}));
        const auto document = opened(path);
        VexQTAtom& table = atomAt(*document, "moov.trak.mdia.minf.stbl.stts");
        FieldPlaces places(table);
        QCOMPARE(places.ofEntry("sampleDurations", 0), (ByteRange{40 + 16, 8}));
        QCOMPARE(places.ofEntry("sampleDurations", 1), (ByteRange{40 + 24, 8}));
        QCOMPARE(places.ofEntry("sampleDurations", 2), std::nullopt);
        QCOMPARE(places.ofEntry("nothing", 0), std::nullopt);
    }
};

}  // namespace vexqt::inspector_app

QTEST_MAIN(vexqt::inspector_app::BytesTest)
#include "bytes_test.moc"
