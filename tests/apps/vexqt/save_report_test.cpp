// What saving commands report to programs, and the digest of the media.
#include <nlohmann/json.hpp>

#include "apps/vexqt/MediaProof.h"
#include "tests/apps/vexqt/calling.h"
#include "vexqt/platform/Digest.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms
using nlohmann::json;

const Bytes kFileType = atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  ")});
const Bytes kMedia = text("MEDIA DATA");
const Bytes kMovie = atom("moov"_os, {movieHeader(), track(1, "vide"_os)});

std::string digestOf(ByteView bytes) {
    Digest digest;
    digest.add(bytes);
    return digest.hex();
}

class SaveReport : public CommandTest {
protected:
    /// Runs a command with --report and reads what it prints.
    json reported(std::vector<std::string> arguments, int status = 0) {
        arguments.push_back("--report");
        called_ = call(arguments);
        EXPECT_EQ(called_.status, status) << called_.errors;
        const json document = json::parse(called_.output, nullptr, false);
        EXPECT_FALSE(document.is_discarded()) << called_.output;
        EXPECT_EQ(document["version"], 1);
        return document;
    }
    /// The ranges, each "offset+length purpose path".
    static std::vector<std::string> rangesOf(const json& report) {
        std::vector<std::string> ranges;
        for (const json& range : report["ranges"])
            ranges.push_back(std::to_string(range["offset"].get<std::uint64_t>()) + "+" +
                             std::to_string(range["length"].get<std::uint64_t>()) + " " +
                             range["purpose"].get<std::string>() + " " + range.value("path", "-"));
        return ranges;
    }
    using Ranges = std::vector<std::string>;

    /// Whether two files, and their lengths, differ where the report says, and nowhere else.
    static void expectNothingElse(const json& report, const Bytes& before, const Bytes& after) {
        EXPECT_EQ(report["oldLength"], before.size());
        EXPECT_EQ(report["newLength"], after.size());
        Bytes expected = before;
        expected.resize(after.size());
        std::uint64_t sum = 0;
        for (const json& range : report["ranges"]) {
            const auto offset = range["offset"].get<std::size_t>();
            const auto length = range["length"].get<std::size_t>();
            ASSERT_LE(offset + length, after.size());
            std::ranges::copy(ByteView(after).subspan(offset, length),
                              expected.begin() + static_cast<std::ptrdiff_t>(offset));
            sum += length;
        }
        EXPECT_EQ(expected, after);
        EXPECT_EQ(report["bytesWritten"], sum);
    }

    Called called_;
};

// MARK: What was written

TEST_F(SaveReport, OfAPatchNamesTheBytesThatDiffer) {
    // 600 becomes 601 in the last byte of the time scale.
    const json report = reported({"set", movie_, "moov.mvhd.timeScale=601", "--in-place"});
    EXPECT_EQ(report["file"], movie_);
    EXPECT_FALSE(report.contains("source"));
    EXPECT_EQ(report["outcome"], "saved");
    EXPECT_EQ(report["form"], "surgical");
    EXPECT_EQ(report["way"], "patch");
    EXPECT_EQ(rangesOf(report), Ranges{"67+1 edit moov"});
    expectNothingElse(report, smallMovie(), readFile(movie_));
    ASSERT_EQ(report["findings"].size(), 1U);
    EXPECT_EQ(report["findings"][0]["id"], "atom-changes");
    EXPECT_EQ(report["findings"][0]["severity"], "note");
    EXPECT_EQ(report["findings"][0]["path"], "moov.mvhd");
    EXPECT_EQ(report["findings"][0]["offset"], 44);
    EXPECT_EQ(report["findings"][0]["length"], 108);
    EXPECT_TRUE(report["notes"].empty());
    EXPECT_FALSE(report.contains("media"));
    EXPECT_FALSE(report.contains("error"));
}

TEST_F(SaveReport, OfASaveInTheOldPlaceNamesTheFreeSpaceThatIsLeft) {
    const Bytes before = join({kFileType, kMovie, atom("mdat"_os, {kMedia})});
    const std::string file = write("first.mov", before);
    const json report = reported({"remove", file, "moov.trak.mdia", "--in-place"});
    EXPECT_EQ(report["way"], "in the old place");
    EXPECT_EQ(rangesOf(report), (Ranges{"20+216 atom moov", "236+8 free-space -"}));
    expectNothingElse(report, before, readFile(file));
}

TEST_F(SaveReport, OfAMoveNamesTheAtomThatBecomesFreeSpace) {
    const Bytes before = join({kFileType, kMovie, atom("mdat"_os, {kMedia})});
    const std::string file = write("first.mov", before);
    const std::string more = write("more.bin", atom("abcd"_os, {zeros(20)}));
    const json report = reported({"insert", file, "moov", more, "--in-place"});
    EXPECT_EQ(report["way"], "move");
    const std::string end = std::to_string(before.size());
    const std::string length = std::to_string(kMovie.size() + 28);
    EXPECT_EQ(rangesOf(report),
              (Ranges{end + "+" + length + " atom moov", "24+4 freed-atom moov"}));
    expectNothingElse(report, before, readFile(file));
}

TEST_F(SaveReport, OfAMoveBehindOpenEndedMediaNamesItsSize) {
    const Bytes before = join({kFileType, kMovie, u32(0), text("mdat"), kMedia});
    const std::string file = write("open.mov", before);
    const std::string more = write("more.bin", atom("abcd"_os, {zeros(20)}));
    const json report = reported({"insert", file, "moov", more, "--in-place"});
    const std::string media = std::to_string(kFileType.size() + kMovie.size());
    EXPECT_EQ(rangesOf(report)[1], media + "+4 size -");
    expectNothingElse(report, before, readFile(file));
}

TEST_F(SaveReport, OfAnExactSaveNamesTheHeaderOfTheOldMovie) {
    const Bytes before = join({kFileType, kMovie, atom("mdat"_os, {kMedia})});
    const std::string file = write("first.mov", before);
    const json report = reported({"save", file});
    EXPECT_EQ(report["form"], "exact");
    EXPECT_EQ(rangesOf(report)[0], "20+8 freed-atom moov");
    EXPECT_EQ(report["ranges"].size(), 2U);
    expectNothingElse(report, before, readFile(file));
}

TEST_F(SaveReport, OfEveryCommandThatSavesIsThere) {
    const std::string more = write("more.bin", atom("abcd"_os, {u32(1)}));
    const std::string file =
        write("table.mov",
              join({kFileType, atom("mdat"_os, {kMedia}),
                    atom("moov"_os, {movieHeader(), atom("trak"_os, {atom("stts"_os), zeros(1)}),
                                     atom("udta"_os, {atom("abcd"_os, {u8(1)}), zeros(4)})})}));
    const std::vector<std::vector<std::string>> commands = {
        {"set", file, "moov.mvhd.timeScale=25"},
        {"insert", file, "moov", more},
        {"remove", file, "moov.abcd"},
        {"set-key", file, "moov.meta", "com.example.title=One", "com.example.reel=A3"},
        {"remove-key", file, "moov.meta", "com.example.title"},
        {"insert-rows", file, "ftyp.compatibleBrands", "=mp42"},
        {"remove-rows", file, "ftyp.compatibleBrands[0]"},
    };
    const std::string copy = path("copy.mov");
    for (std::vector<std::string> command : commands) {
        SCOPED_TRACE(command.front());
        const bool changesFileType = command.front().ends_with("-rows");
        std::vector<std::string> intoCopy = command;
        intoCopy.insert(intoCopy.end(), {"-o", copy});
        const json copied = reported(intoCopy, changesFileType ? 3 : 0);
        EXPECT_EQ(copied["file"], copy);
        EXPECT_EQ(copied["source"], file);
        if (changesFileType) continue;
        expectNothingElse(copied, readFile(file), readFile(copy));
        const Bytes before = readFile(file);
        command.push_back("--in-place");
        const json saved = reported(command);
        expectNothingElse(saved, before, readFile(file));
    }
}

TEST_F(SaveReport, OfWhatChangesNothingHasNoRanges) {
    const json report = reported({"set", movie_, "moov.mvhd.timeScale=600", "--in-place"});
    EXPECT_EQ(report["outcome"], "nothing-to-do");
    EXPECT_EQ(report["way"], "nothing");
    expectNothingElse(report, smallMovie(), smallMovie());
}

TEST_F(SaveReport, OfASaveThatIsRefusedSaysWhyAndThatNothingWasWritten) {
    const Bytes before =
        join({kMovie, atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})}), atom("mdat"_os)});
    const std::string file = write("fragments.mov", before);
    const std::string more = write("more.bin", atom("abcd"_os, {zeros(90)}));
    const json report = reported({"insert", file, "moov", more, "--in-place"}, 3);
    EXPECT_EQ(report["outcome"], "refused");
    EXPECT_TRUE(std::ranges::any_of(report["findings"], [](const json& finding) {
        return finding["id"] == "behind-fragments" && finding["severity"] == "destroys";
    })) << called_.output;
    expectNothingElse(report, before, readFile(file));
}

TEST_F(SaveReport, OfASaveThatFailsHasTheError) {
    write(".clip.mov.vexqt-journal", text("of somebody else"));
    const json report = reported({"set", movie_, "moov.mvhd.timeScale=25", "--in-place"}, 1);
    EXPECT_EQ(report["outcome"], "failed");
    EXPECT_NE(report["error"].get<std::string>().find("interrupted"), std::string::npos);
    EXPECT_TRUE(report["ranges"].empty());
    EXPECT_EQ(report["bytesWritten"], 0);
}

TEST_F(SaveReport, IsNotThereWhereNothingWasToBeSaved) {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"set", movie_, "moov.mvhd.timescale=1", "--in-place"},
          {"set", path("none.mov"), "moov.mvhd.timeScale=1", "--in-place"}}) {
        const Called called = call(command);
        EXPECT_EQ(called.status, 1);
        EXPECT_EQ(called.output, "");
    }
}

TEST_F(SaveReport, OfACopyOfStandardInputTellsOfTheCopy) {
    TextOutput out, errors;
    const int input = ::open(movie_.c_str(), O_RDONLY | O_CLOEXEC);
    const std::string copy = path("copy.mov");
    EXPECT_EQ(run({"set", "-", "moov.mvhd.timeScale=25", "-o", copy, "--report", "--media-digest"},
                  out, errors, input),
              0);
    ::close(input);
    const json report = json::parse(out.text());
    EXPECT_EQ(report["file"], copy);
    EXPECT_EQ(report["source"], "-");
    EXPECT_EQ(report["media"]["after"], digestOf(text("DATA")));
    expectNothingElse(report, smallMovie(), readFile(copy));
}

// MARK: undo

TEST_F(SaveReport, OfAnUndoNamesTheBytesThatWerePutBack) {
    ASSERT_EQ(call({"remove", movie_, "moov.trak[1]", "--in-place"}).status, 0);
    const Bytes saved = readFile(movie_);
    const json report = reported({"undo", movie_, "--media-digest"});
    EXPECT_EQ(report["outcome"], "undone");
    EXPECT_EQ(report["ranges"][0]["purpose"], "undo");
    EXPECT_EQ(report["media"]["after"], digestOf(text("DATA")));
    expectNothingElse(report, saved, smallMovie());
    EXPECT_EQ(readFile(movie_), smallMovie());
}

TEST_F(SaveReport, OfAnUndoWithoutARecordSaysSo) {
    const json report = reported({"undo", movie_}, 1);
    EXPECT_EQ(report["outcome"], "nothing-to-undo");
    EXPECT_EQ(report["error"], "there is nothing to undo");
    EXPECT_TRUE(report["ranges"].empty());
}

// MARK: Media

TEST_F(SaveReport, HasTheDigestOfAllMediaBeforeAndAfter) {
    const Bytes before =
        join({kFileType, atom("mdat"_os, {kMedia}), kMovie, u32(1), text("mdat"), u64(20),
              text("more"), atom("free"_os), u32(0), text("mdat"), text("to the end")});
    const std::string file = write("three.mov", before);
    const std::string more = write("more.bin", atom("abcd"_os, {zeros(20)}));
    const json report =
        reported({"insert", file, "moov", more, "--in-place", "--media-digest"})["media"];
    const std::string expected = digestOf(join({kMedia, text("more"), text("to the end")}));
    EXPECT_EQ(report["digest"], "sha256");
    EXPECT_EQ(report["before"], expected);
    EXPECT_EQ(report["after"], expected);
    ASSERT_EQ(report["ranges"].size(), 3U);
    const std::size_t second = kFileType.size() + 8 + kMedia.size() + kMovie.size() + 16;
    EXPECT_EQ(report["ranges"][0],
              (json{{"path", "mdat"}, {"offset", kFileType.size() + 8}, {"length", 10}}));
    EXPECT_EQ(report["ranges"][1], (json{{"path", "mdat[1]"}, {"offset", second}, {"length", 4}}));
    EXPECT_EQ(report["ranges"][2],
              (json{{"path", "mdat[2]"}, {"offset", second + 4 + 8 + 8}, {"length", 10}}));
}

TEST_F(SaveReport, OfACopyHasTheDigestOfTheCopy) {
    const json report = reported({"set", movie_, "moov.mvhd.timeScale=25", "-o", path("copy.mov"),
                                  "--media-digest"})["media"];
    EXPECT_EQ(report["before"], digestOf(text("DATA")));
    EXPECT_EQ(report["after"], report["before"]);
}

TEST_F(SaveReport, OfACopyThatWasNotMadeHasNoDigestOfIt) {
    // Something else has the name of the copy.
    const std::string copy = write("copy.mov", smallMovie());
    write("fragments.mov",
          join({kMovie, atom("moof"_os, {atom("mfhd"_os, {u32(1), u32(1)})}), atom("mdat"_os)}));
    const std::string more = write("more.bin", atom("abcd"_os, {zeros(90)}));
    const json report =
        reported({"insert", path("fragments.mov"), "moov", more, "-o", copy, "--media-digest"}, 3);
    EXPECT_EQ(report["media"]["before"], digestOf({}));
    EXPECT_TRUE(report["media"]["after"].is_null());
}

TEST_F(SaveReport, WithoutAReportTheMediaIsReadAllTheSame) {
    const Called called =
        call({"set", movie_, "moov.mvhd.timeScale=25", "--in-place", "--media-digest"});
    EXPECT_EQ(called.status, 0);
    EXPECT_EQ(called.output, "");
    EXPECT_EQ(called.errors, "");
}

TEST_F(SaveReport, MediaThatIsNotWhatItWasIsAFailure) {
    // To the open-ended media the movie behind it belongs too, until that is taken back.
    const std::string file =
        write("open.mov", join({kFileType, kMovie, u32(0), text("mdat"), kMedia}));
    ASSERT_EQ(call({"save", file, "--force"}).status, 0);
    const Bytes saved = readFile(file);
    const json report = reported({"undo", file, "--media-digest"}, 1);
    const ByteView swallowed = ByteView(saved).subspan(kFileType.size() + kMovie.size() + 8);
    EXPECT_EQ(report["media"]["before"], digestOf(swallowed));
    EXPECT_EQ(report["media"]["after"], digestOf(kMedia));
    EXPECT_EQ(called_.errors,
              said(file, "the media is not what it was before the save: its SHA-256 was " +
                             digestOf(swallowed) + " and is " + digestOf(kMedia)));
}

TEST_F(SaveReport, AMediaFileThatIsGoneCannotBeProven) {
    TextOutput out, errors;
    Console console = {.out = out, .err = errors};
    MediaProof proof(movie_, console);
    std::filesystem::remove(movie_);
    proof.readAgain(movie_, console);
    EXPECT_EQ(proof.after(), std::nullopt);
    EXPECT_THROW(proof.requireSame(), Failure);
}

}  // namespace
}  // namespace vexqt::cli
