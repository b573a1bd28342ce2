#include <QAbstractButton>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTest>
#include <QTreeWidget>

#include "apps/inspector/MessageBar.h"
#include "apps/inspector/PathBar.h"
#include "apps/inspector/SaveSheet.h"
#include "apps/inspector/invocation.h"
#include "apps/inspector/program.h"
#include "apps/inspector/theme.h"
#include "apps/inspector/words.h"
#include "movies.h"

namespace vexqt::inspector_app {

class AppearanceTest : public QObject {
    Q_OBJECT

private:
    MovieFolder folder_;

    static QAbstractButton* button(const SaveSheet& sheet, const char* name) {
        return sheet.findChild<QAbstractButton*>(QLatin1String(name));
    }

private slots:
    void initTestCase() {
        prepare(*qApp, false);
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void textCanBeReadInLightAndDark_data() {
        QTest::addColumn<QPalette>("palette");
        QTest::newRow("light") << theme::light();
        QTest::newRow("dark") << theme::dark();
    }
    void textCanBeReadInLightAndDark() {
        QFETCH(QPalette, palette);
        struct Pair {
            const char* what;
            QColor front, back;
        };
        const auto color = [&](QPalette::ColorRole role) { return palette.color(role); };
        const theme::ByteColors bytes = theme::byteColors(palette);
        QList<Pair> pairs = {
            {"text", color(QPalette::Text), color(QPalette::Base)},
            {"text on every second row", color(QPalette::Text), color(QPalette::AlternateBase)},
            {"window", color(QPalette::WindowText), color(QPalette::Window)},
            {"button", color(QPalette::ButtonText), color(QPalette::Button)},
            {"selection", color(QPalette::HighlightedText), color(QPalette::Highlight)},
            {"hint", color(QPalette::PlaceholderText), color(QPalette::Base)},
            {"remark", color(QPalette::PlaceholderText), color(QPalette::Window)},
            {"link", color(QPalette::Link), color(QPalette::Base)},
            {"tip", color(QPalette::ToolTipText), color(QPalette::ToolTipBase)},
            {"offset", bytes.offset, color(QPalette::Base)},
            {"other bytes", bytes.outside, color(QPalette::Base)},
            {"the atom's bytes", bytes.inside, bytes.rangeBack},
            {"the atom's zeroes", bytes.zero, bytes.rangeBack},
            {"the field's bytes", bytes.highlight, bytes.highlightBack}};
        for (const auto kind : {theme::MessageKind::Information, theme::MessageKind::Warning,
                                theme::MessageKind::Problem}) {
            const theme::MessageColors message = theme::messageColors(palette, kind);
            pairs.append({"message", message.front, message.back});
        }
        for (const Pair& pair : pairs) {
            const double contrast = theme::contrast(pair.front, pair.back);
            QVERIFY2(contrast >= 4.5,
                     qPrintable(QStringLiteral("%1: %2").arg(pair.what).arg(contrast)));
        }
    }

    void contrastIsThatOfTheEye() {
        QCOMPARE(qRound(theme::contrast(Qt::black, Qt::white)), 21);
        QCOMPARE(qRound(theme::contrast(Qt::white, Qt::white)), 1);
    }

    void everyIconIsADrawingInTheTextsColour() {
        const QDir icons(QStringLiteral(":/vexqt/inspector-app/icons"));
        const QStringList names = icons.entryList({QStringLiteral("*.svg")});
        QVERIFY(names.size() >= 15);
        for (const QString& name : names) {
            QFile file(icons.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray drawing = file.readAll();
            QVERIFY2(drawing.contains("currentColor"), qPrintable(name));
            const QImage image = theme::icon(QString(name).chopped(4)).pixmap(16).toImage();
            bool isDrawn = false;
            for (int x = 0; x < image.width() && !isDrawn; ++x)
                for (int y = 0; y < image.height(); ++y)
                    isDrawn = isDrawn || qAlpha(image.pixel(x, y)) > 100;
            QVERIFY2(isDrawn, qPrintable(name));
        }
    }

    void pluralsAreEnglish() {
        QCOMPARE(bytesText(1), "1 byte");
        QCOMPARE(bytesText(0), "0 bytes");
        QCOMPARE(bytesText(1'234'567), "1,234,567 bytes");
        QCOMPARE(bytesText(quint64{5'000'000'001}), "5,000,000,001 bytes");
        QCOMPARE(sizeText(9'999), "9,999 bytes");
        QCOMPARE(sizeText(3'680'760), "3.7 MB (3,680,760 bytes)");
        QCOMPARE(offsetText(1234), "1,234 (0x4D2)");
    }

    void theCommandLineIsUnderstood() {
        const Invocation one = invocationFrom(
            {"--screenshot", "a.png", "--select", "moov.mvhd", "--dark", "clip.mov"});
        QCOMPARE(one.mistake, "");
        QCOMPARE(one.screenshot, "a.png");
        QCOMPARE(one.select, "moov.mvhd");
        QVERIFY(one.isDark);
        QCOMPARE(one.movies, QStringList("clip.mov"));
        QCOMPARE(invocationFrom({"a.mov", "b.mov"}).movies.size(), 2);
        QCOMPARE(invocationFrom({"--size=900x700", "a.mov"}).size, QSize(900, 700));
        QVERIFY(invocationFrom({"--help", "--nonsense"}).wantsHelp);
    }

    void mistakesInTheCommandLineAreTold_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("unknown") << QStringList{"--nonsense", "a.mov"};
        QTest::newRow("a picture of nothing") << QStringList{"--screenshot", "a.png"};
        QTest::newRow("a picture of two") << QStringList{"--screenshot", "a.png", "a", "b"};
        QTest::newRow("no picture") << QStringList{"--screenshot", "", "a"};
        QTest::newRow("selected in nothing") << QStringList{"--select", "moov"};
        QTest::newRow("no size") << QStringList{"--size", "big", "a"};
        QTest::newRow("too large") << QStringList{"--size", "900x99999", "a"};
    }
    void mistakesInTheCommandLineAreTold() {
        QFETCH(QStringList, arguments);
        QVERIFY(!invocationFrom(arguments).mistake.isEmpty());
    }

    void theManualNamesTheOptionsOfTheHelp() {
        QFile page(QStringLiteral(VEXQT_MAN "/vexqt-inspector.1.scd"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(page.readAll());
        // Terms stand at the beginning of a line: "*--select* _PATH_", "  --select PATH       …".
        static const QRegularExpression kInPage(
            QStringLiteral("^(?:\\*(-\\w)\\*, )?\\*(--\\w+)\\*(?: _(\\w+)_)?$"),
            QRegularExpression::MultilineOption);
        static const QRegularExpression kInHelp(
            QStringLiteral("^  (?:(-\\w), )?(--\\w+)(?: (\\w+))?  "),
            QRegularExpression::MultilineOption);
        const auto terms = [](const QRegularExpression& form, const QString& in) {
            QStringList found;
            for (const QRegularExpressionMatch& match : form.globalMatch(in))
                found.append(match.capturedTexts().mid(1).join(u' '));
            found.sort();
            return found;
        };
        const QStringList inPage = terms(kInPage, text);
        QCOMPARE(inPage, terms(kInHelp, helpText()));
        QCOMPARE(inPage.size(), 6);
        // And the command line takes them, and the synopsis has those of a picture.
        for (const char* option : {"--screenshot", "--select", "--size", "--dark"}) {
            QVERIFY(text.count(QLatin1String(option)) >= 2);
            QVERIFY(!invocationFrom({option}).mistake.startsWith("Unknown option"));
        }
    }

    void theSheetTellsHowMuchIsWrittenAndWhere() {
        const auto document = opened(folder_.addSmallMovie());
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{601});
        const SavePlan plan = document->plan();
        QCOMPARE(SaveSheet::summaryOf(plan),
                 "1 byte will be written, in one place. Nothing moves, and the media stays as it "
                 "is.");
        SaveSheet sheet("clip.mov", plan, SaveSheet::Purpose::Save);
        QVERIFY(button(sheet, "save")->isEnabled());
        QVERIFY(!sheet.findChild<QCheckBox*>());
        const auto* list = sheet.findChild<QTreeWidget*>();
        QCOMPARE(list->topLevelItemCount(), 1);
        QCOMPARE(list->topLevelItem(0)->child(0)->text(0), "'timeScale' was edited");
        QCOMPARE(list->topLevelItem(0)->child(0)->text(1), "moov.mvhd");
        button(sheet, "save")->click();
        QCOMPARE(sheet.choice(), SaveSheet::Choice::Save);
        QVERIFY(!sheet.isForced());
    }

    void whatDestroysTakesASecondAct() {
        // A movie in front of its fragments that no longer fits.
        using namespace testing;
        const auto document = opened(folder_.add(
            "fragments.mov",
            join({atom("moov"_os, {movieHeader()}), atom("moof"_os), atom("mdat"_os, {u32(1)})})));
        VexQTAtom& holder = *document->asset().moovAtom();
        QString error;
        document->insert(holder, Document::atomFrom(asArray(atom("name"_os)), &holder, error),
                         nullptr);
        const SavePlan plan = document->plan();
        QVERIFY(plan.has(Severity::Destroys));
        SaveSheet sheet("clip.mov", plan, SaveSheet::Purpose::Save);
        QVERIFY(!button(sheet, "save")->isEnabled());
        QVERIFY(!button(sheet, "saveCopy")->isEnabled());
        sheet.findChild<QCheckBox*>()->setChecked(true);
        QVERIFY(button(sheet, "save")->isEnabled());
        QVERIFY(sheet.isForced());
        button(sheet, "saveCopy")->click();
        QCOMPARE(sheet.choice(), SaveSheet::Choice::SaveCopy);
    }

    void whatCannotBeSavedIsNotOffered() {
        // A file type that is longer than its place.
        using namespace testing;
        const auto document = opened(folder_.add(
            "type.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}), atom("mdat"_os, {u32(1)}),
                              atom("moov"_os, {movieHeader()})})));
        VexQTAtom& type = atomAt(*document, "ftyp");
        const ListAccess& brands = *type.propertyNamed("compatibleBrands")->list;
        brands.insertRows(type, 0, 1);
        const SavePlan plan = document->plan();
        QVERIFY(SaveSheet::isBlocked(plan));
        SaveSheet sheet("clip.mov", plan, SaveSheet::Purpose::Save);
        QVERIFY(!button(sheet, "save")->isEnabled());
        QVERIFY(!sheet.findChild<QCheckBox*>());
    }

    void aSheetThatInformsOffersNothing() {
        const auto document = opened(folder_.addSmallMovie());
        SaveSheet sheet("clip.mov", document->plan(), SaveSheet::Purpose::Inform);
        QVERIFY(!button(sheet, "save"));
        QCOMPARE(SaveSheet::summaryOf(document->plan()),
                 "Nothing will be written: the file has all of it already.");
    }

    void aMessageGoesWhenItIsActedOn() {
        auto* bar = new MessageBar(theme::MessageKind::Warning, "The file has changed.");
        QPointer<MessageBar> watched = bar;
        int acts = 0;
        bar->addAction("Read", [&] { ++acts; });
        bar->show();
        for (auto* each : bar->findChildren<QAbstractButton*>())
            if (each->text() == "Read") each->click();
        QCOMPARE(acts, 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!watched);
    }

    void aLongPathKeepsItsEnd() {
        PathBar bar;
        bar.resize(160, 30);
        bar.show();
        bar.setParts({"moov", "trak[1]", "mdia", "minf", "stbl", "stsd", "mp4a"});
        QStringList shown;
        for (const auto* each : bar.findChildren<QAbstractButton*>()) shown << each->text();
        QCOMPARE(shown.last(), "mp4a");
        QVERIFY(shown.size() < 7);
        QCOMPARE(bar.path(), "moov.trak[1].mdia.minf.stbl.stsd.mp4a");
    }
};

}  // namespace vexqt::inspector_app

QTEST_MAIN(vexqt::inspector_app::AppearanceTest)
#include "appearance_test.moc"
