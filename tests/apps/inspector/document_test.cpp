#include <QSignalSpy>
#include <QTest>

#include "apps/inspector/Document.h"
#include "movies.h"
#include "vexqt/inspector/qt_value.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/recovery.h"

namespace vexqt::inspector_app {

class DocumentTest : public QObject {
    Q_OBJECT

private:
    MovieFolder folder_;

    static SavePlan::Way wayOf(Document& document) { return document.plan().way(); }

    /// Leaves a movie as a save leaves it that was interrupted in the middle.
    static void interrupt(const QString& path) {
        const std::filesystem::path movie = path.toStdString();
        const QByteArray old = contentsOf(path);
        std::error_code error;
        FileChange change;
        change.oldLength = change.newLength = static_cast<std::uint64_t>(old.size());
        change.writes.push_back({64, SharedBytes::copyOf(testing::u32(0x12345678))});
        QByteArray journal;
        QString journalPath;
        {
            FileTransaction transaction(systemFiles());
            transaction.open(movie, *systemFiles().identityOf(movie, error));
            transaction.apply(change,
                              {.progress = {}, .verify = [&](File&) {
                                   std::error_code ignored;
                                   journalPath = QString::fromStdString(
                                       findJournal(systemFiles(), movie, ignored)->string());
                                   journal = contentsOf(journalPath);
                                   return false;
                               }});
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.seek(64);
        file.write(QByteArray::fromHex("12345678"));
        file.close();
        QFile beside(journalPath);
        QVERIFY(beside.open(QIODevice::WriteOnly));
        beside.write(journal);
    }

private slots:
    void aFileThatCannotBeOpenedIsRefusedInTheSystemsWords() {
        QString error;
        QVERIFY(!Document::open(folder_.path("none.mov"), error));
        QCOMPARE(error, "No such file or directory");
        QVERIFY(!Document::open(folder_.path("."), error));
        QVERIFY(!error.isEmpty());
    }

    void whateverAFileHoldsItIsADocument_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("seven bytes") << QByteArray("\0\0\0\0abc", 7);
        QTest::newRow("text") << QByteArray("This is no movie, and it is long enough to be one.");
        QTest::newRow("noise") << QByteArray::fromHex("fffefdfcfbfaf9f8f7f6f5f4f3f2f1f0ff00");
    }
    void whateverAFileHoldsItIsADocument() {
        QFETCH(QByteArray, bytes);
        QFile file(folder_.path("odd.mov"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        const auto document = opened(file.fileName());
        QVERIFY(document);
        QVERIFY(!document->remarks().isEmpty());
        QCOMPARE(document->bytes().length(), static_cast<quint64>(bytes.size()));
        QVERIFY(!document->isModified());
    }

    void aTruncatedMovieSaysWhereItBroke() {
        Bytes movie = testing::smallMovie();
        movie.resize(movie.size() - 200);
        const auto document = opened(folder_.add("cut.mov", movie));
        QVERIFY(document);
        QVERIFY(document->asset().moovAtom() != nullptr);
        bool isPlaced = false;
        for (const Document::Remark& remark : document->remarks())
            isPlaced = isPlaced || (remark.path.startsWith("moov") && remark.offset);
        QVERIFY(isPlaced);
    }

    void aWholeMovieHasNoRemarks() {
        const auto document = opened(folder_.addSmallMovie());
        for (const Document::Remark& remark : document->remarks())
            qInfo() << remark.path << remark.message;
        QVERIFY(document->remarks().isEmpty());
    }

    void undoOfAnEditLeavesNothingToSave() {
        const auto document = opened(folder_.addSmallMovie());
        VexQTAtom& header = atomAt(*document, "moov.mvhd");
        QSignalSpy modified(document.get(), &Document::modifiedChanged);
        edit(*document, header, "timeScale", std::uint64_t{48'000});
        QVERIFY(document->isModified());
        QCOMPARE(wayOf(*document), SavePlan::Way::Patch);
        document->history().undo();
        QVERIFY(!document->isModified());
        QCOMPARE(modified.size(), 2);
        QCOMPARE(wayOf(*document), SavePlan::Way::Nothing);
    }

    void undoOfEveryKindOfChangeGivesTheSameBytes() {
        const auto document = opened(folder_.addSmallMovie());
        const QByteArray before = Document::bytesOf(*document->asset().moovAtom());
        QString error;
        const QByteArray atom = asArray(testing::atom("name"_os, {testing::text("x")}));

        edit(*document, atomAt(*document, "moov.mvhd"), "preferredVolume", 0.25);
        document->remove(atomAt(*document, "moov.trak"));
        VexQTAtom& holder = *document->asset().moovAtom();
        document->insert(holder, Document::atomFrom(atom, &holder, error), nullptr);
        edit(*document, atomAt(*document, "moov.trak.tkhd"), "layer", std::int64_t{7});
        document->replace(atomAt(*document, "moov.mvhd"), Document::atomFrom(atom, &holder, error));
        document->remove(atomAt(*document, "mdat"));
        QVERIFY(Document::bytesOf(holder) != before);
        QVERIFY(wayOf(*document) != SavePlan::Way::Nothing);

        while (document->history().canUndo()) document->history().undo();
        QCOMPARE(Document::bytesOf(*document->asset().moovAtom()), before);
        QCOMPARE(wayOf(*document), SavePlan::Way::Nothing);
        QVERIFY(!document->isModified());

        while (document->history().canRedo()) document->history().redo();
        QCOMPARE(document->asset().rootAtoms().size(), std::size_t{2});
        QCOMPARE(atomAt(*document, "moov.trak.tkhd").valueForKey("layer"), Value(std::int64_t{7}));
        while (document->history().canUndo()) document->history().undo();
        QCOMPARE(wayOf(*document), SavePlan::Way::Nothing);
    }

    void editsOfOnePropertyInARowAreOneStepBack() {
        const auto document = opened(folder_.addSmallMovie());
        VexQTAtom& header = atomAt(*document, "moov.mvhd");
        for (const std::uint64_t scale : {700, 800, 900})
            edit(*document, header, "timeScale", scale);
        edit(*document, header, "duration", std::uint64_t{5});
        QCOMPARE(document->history().count(), 2);
        document->history().undo();
        document->history().undo();
        QCOMPARE(header.valueForKey("timeScale"), Value(std::uint64_t{600}));
        document->history().redo();
        QCOMPARE(header.valueForKey("timeScale"), Value(std::uint64_t{900}));
    }

    void editsAreToldOfButNotToTheViewThatMadeThem() {
        const auto document = opened(folder_.addSmallMovie());
        QSignalSpy elsewhere(document.get(), &Document::changedElsewhere);
        QSignalSpy touched(document.get(), &Document::touched);
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{1});
        QCOMPARE(elsewhere.size(), 0);
        QVERIFY(!touched.isEmpty());
        document->history().undo();
        QCOMPARE(elsewhere.size(), 1);
    }

    void theMovieAtomItselfIsNotRemoved() {
        const auto document = opened(folder_.addSmallMovie());
        VexQTAtom& movie = atomAt(*document, "moov");
        QVERIFY(!document->whyNotRemovable(movie).isEmpty());
        document->remove(movie);
        QCOMPARE(document->history().count(), 0);
    }

    void onlyAtomsThatHoldAtomsTakeSome() {
        const auto document = opened(folder_.addSmallMovie());
        QVERIFY(Document::canHold(atomAt(*document, "moov")));
        QVERIFY(!Document::canHold(atomAt(*document, "moov.mvhd")));
        QVERIFY(!Document::canHold(atomAt(*document, "moov.0xA96E616D")));
    }

    void bytesThatAreNotOneAtomAreRefused_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("half a header") << QByteArray(
            "\0\0\0\x08"
            "ab",
            6);
        QTest::newRow("too few") << QByteArray("\0\0\0\x09name", 8);
        QTest::newRow("too many") << QByteArray("\0\0\0\x08name!", 9);
        QTest::newRow("no extended size") << QByteArray("\0\0\0\x01name", 8);
    }
    void bytesThatAreNotOneAtomAreRefused() {
        QFETCH(QByteArray, bytes);
        QString error;
        QVERIFY(!Document::atomFrom(bytes, nullptr, error));
        QVERIFY(!error.isEmpty());
    }

    void bytesOfAnAtomAreThoseInTheFile() {
        const auto document = opened(folder_.addSmallMovie());
        QCOMPARE(Document::bytesOf(atomAt(*document, "moov.mvhd")),
                 asArray(testing::movieHeader()));
    }

    void aSaveWritesWhatWasEditedAndNothingElse() {
        const QString path = folder_.addSmallMovie();
        const QByteArray before = contentsOf(path);
        const auto document = opened(path);
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{601});
        const SaveResult result = document->save({});
        QCOMPARE(result.outcome, SaveResult::Outcome::Saved);
        QByteArray expected = before;
        expected[67] = static_cast<char>(601 & 0xFF);
        QCOMPARE(contentsOf(path), expected);

        QString error;
        QSignalSpy about(document.get(), &Document::aboutToReadAgain);
        QSignalSpy done(document.get(), &Document::hasReadAgain);
        QVERIFY(document->readAgain(error));
        QCOMPARE(about.size(), 1);
        QCOMPARE(done.size(), 1);
        QVERIFY(!document->isModified());
        QCOMPARE(atomAt(*document, "moov.mvhd").valueForKey("timeScale"),
                 Value(std::uint64_t{601}));
    }

    void anInsertedAtomIsReadAsWhatItIsOnceSaved() {
        const auto document = opened(folder_.addSmallMovie());
        VexQTAtom& holder = *document->asset().moovAtom();
        QString error;
        const QByteArray bytes = contentsOf(document->path()).mid(44, 108);
        document->insert(holder, Document::atomFrom(bytes, &holder, error),
                         &atomAt(*document, "moov.mvhd"));
        QCOMPARE(holder.children()[1]->extent().length, std::uint64_t{0});
        QCOMPARE(document->save({}).outcome, SaveResult::Outcome::Saved);
        QVERIFY(document->readAgain(error));
        QCOMPARE(atomAt(*document, "moov.mvhd[1]").valueForKey("timeScale"),
                 Value(std::uint64_t{600}));
    }

    void aCopyGetsTheEditsAndTheFileDoesNot() {
        const QString path = folder_.addSmallMovie();
        const QByteArray before = contentsOf(path);
        const auto document = opened(path);
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{601});
        QCOMPARE(document->saveCopy(folder_.path("copy.mov"), {}).outcome,
                 SaveResult::Outcome::Saved);
        QCOMPARE(contentsOf(path), before);
        QVERIFY(document->isModified());
        const auto copy = opened(folder_.path("copy.mov"));
        QCOMPARE(atomAt(*copy, "moov.mvhd").valueForKey("timeScale"), Value(std::uint64_t{601}));
    }

    void aChangeOnTheDiskIsNoticed() {
        const QString path = folder_.addSmallMovie();
        const auto document = opened(path);
        QSignalSpy changed(document.get(), &Document::changedOnDisk);
        QVERIFY(!document->isChangedOnDisk());
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write("more");
        file.close();
        QVERIFY(changed.wait(5000));
        QVERIFY(document->isChangedOnDisk());
        QCOMPARE(document->plan().has(Severity::Destroys), false);
        QCOMPARE(document->save({}).failure->reason, SaveFailure::Reason::Changed);
    }

    void aFileThatAnotherTakesThePlaceOfIsNoticed() {
        const QString path = folder_.addSmallMovie();
        const auto document = opened(path);
        QSignalSpy changed(document.get(), &Document::changedOnDisk);
        Bytes other = testing::smallMovie();
        other.resize(other.size() - 8);
        const QString beside = folder_.add("new.mov", other);
        std::filesystem::rename(beside.toStdString(), path.toStdString());
        QVERIFY(changed.wait(5000));
    }

    void ourOwnSaveIsNoChangeOnTheDisk() {
        const auto document = opened(folder_.addSmallMovie());
        QSignalSpy changed(document.get(), &Document::changedOnDisk);
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{601});
        QCOMPARE(document->save({}).outcome, SaveResult::Outcome::Saved);
        QString error;
        QVERIFY(document->readAgain(error));
        QTest::qWait(300);
        QCOMPARE(changed.size(), 0);
    }

    void anInterruptedSaveIsFoundAndPutBack() {
        const QString path = folder_.addSmallMovie();
        const QByteArray before = contentsOf(path);
        interrupt(path);
        QVERIFY(contentsOf(path) != before);
        const auto document = opened(path);
        QVERIFY(document->needsRecovery());
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{601});
        QCOMPARE(document->save({}).failure->reason, SaveFailure::Reason::RecoveryNeeded);
        QCOMPARE(document->recover(IfChanged::Refuse).outcome, Recovery::RolledBack);
        QVERIFY(!document->needsRecovery());
        QCOMPARE(contentsOf(path), before);
    }

    void readingAgainWhatIsGoneKeepsWhatIsHere() {
        const auto document = opened(folder_.addSmallMovie());
        edit(*document, atomAt(*document, "moov.mvhd"), "timeScale", std::uint64_t{601});
        QVERIFY(QFile::remove(document->path()));
        QString error;
        QVERIFY(!document->readAgain(error));
        QCOMPARE(error, "No such file or directory");
        QVERIFY(document->isModified());
        QCOMPARE(atomAt(*document, "moov.mvhd").valueForKey("timeScale"),
                 Value(std::uint64_t{601}));
    }
};

}  // namespace vexqt::inspector_app

QTEST_MAIN(vexqt::inspector_app::DocumentTest)
#include "document_test.moc"
