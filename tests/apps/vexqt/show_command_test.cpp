#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms

class Show : public CommandTest {
protected:
    /// What is shown of a movie with one atom in its only track's sample table.
    std::string shown(const Bytes& table, std::vector<std::string> options = {}) {
        const std::string file = write(
            "table.mov",
            join({atom("moov"_os,
                       {atom("trak"_os,
                             {atom("mdia"_os, {atom("minf"_os, {atom("stbl"_os, {table})})})})}),
                  zeros(1)}));
        const std::string type(table.begin() + 4, table.begin() + 8);
        options.insert(options.begin(), {"show", file, "moov.trak.mdia.minf.stbl." + type});
        const Called called = call(options);
        EXPECT_EQ(called.status, 0);
        EXPECT_EQ(called.errors, "");
        return called.output;
    }
    /// The same, from the properties on.
    std::string properties(const Bytes& table, const std::vector<std::string>& options = {}) {
        const std::string all = shown(table, options);
        return all.substr(all.find("\n\n") + 2);
    }
};

TEST_F(Show, AnAtomWithItsPlaceAndProperties) {
    EXPECT_EQ(call({"show", movie_, "moov.mvhd"}).output,
              "Movie Header  'mvhd'\n"
              "  path                    moov.mvhd\n"
              "  class                   VexQTmvhdAtom\n"
              "  size                    108 bytes\n"
              "  position                44 (0x2C) to 152 (0x98)\n"
              "  version                 0\n"
              "  flags                   0x010203\n"
              "\n"
              "  creationDateTime        2001-01-01 00:00:00 UTC\n"
              "  modificationDateTime    2001-01-01 00:01:00 UTC\n"
              "  timeScale               600  time units a second\n"
              "  duration                1200  time units\n"
              "  preferredRate           1.5\n"
              "  preferredVolume         0.5\n"
              "  previewTime             11  time units\n"
              "  previewDuration         12  time units\n"
              "  posterTime              13  time units\n"
              "  selectionTime           14  time units\n"
              "  selectionDuration       15  time units\n"
              "  currentTime             16  time units\n"
              "  nextTrackID             3\n"
              "  matrix                  1  2  0\n"
              "                          3  4  0\n"
              "                          5  6  1\n");
}

TEST_F(Show, AContainerWithWhatIsInIt) {
    EXPECT_EQ(call({"show", movie_, "moov.trak[soun].mdia"}).output,
              "Sound Media  'mdia'\n"
              "  path                    moov.trak[1].mdia\n"
              "  class                   VexQTmdiaAtom\n"
              "  size                    80 bytes\n"
              "  position                432 (0x1B0) to 512 (0x200)\n"
              "\n"
              "  mediaType               'soun'\n"
              "\n"
              "  contains 2 atoms\n"
              "  type    name               size   at\n"
              "  mdhd    Media Header         32  440\n"
              "  hdlr    Handler Reference    40  472\n");
}

TEST_F(Show, AMovieAsATree) {
    const std::string odd =
        write("odd.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}),
                               atom("moov"_os, {atom("mvhd"_os, {zeros(4)}),
                                                atom("trak"_os, {trackHeader(1)}), zeros(8)})}));
    const Called called = call({"show", odd});
    EXPECT_EQ(called.output, odd +
                                 "\n"
                                 "  brand accepted          yes\n"
                                 "  atoms                   5\n"
                                 "  problems                1, listed on standard error\n"
                                 "\n"
                                 "  type      name                                     size  at\n"
                                 "  ftyp      File Type                                  16   0\n"
                                 "  moov      Movie                                     128  16\n"
                                 "    mvhd    Generic Atom, declined by VexQTmvhdAtom    12  24\n"
                                 "    trak    Track                                     100  36\n"
                                 "      tkhd  Track Header                               92  44\n");
}

TEST_F(Show, RawBytesAsAHexDump) {
    const Bytes payload = text("ABCDEFGHIJKLMNOPQRSTUVWXYZ\n");
    const std::string all = shown(atom("abcd"_os, {payload}));
    EXPECT_EQ(all.substr(all.find("  raw data")),
              "  raw data                27 bytes\n"
              "    00000000  41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50   ABCDEFGHIJKLMNOP\n"
              "    00000010  51 52 53 54 55 56 57 58 59 5A 0A                  QRSTUVWXYZ.\n");
}

TEST_F(Show, ManyRawBytesOnlyOnRequest) {
    const Bytes table = atom("abcd"_os, {zeros(100)});
    const std::string part = shown(table);
    EXPECT_NE(part.find("    00000030  00"), std::string::npos);
    EXPECT_EQ(part.find("    00000040  00"), std::string::npos);
    EXPECT_TRUE(part.ends_with("    … 36 more bytes, shown with --all\n"));
    EXPECT_NE(shown(table, {"--all"}).find("    00000060  00 00 00 00   "), std::string::npos);
}

TEST_F(Show, AnAtomThatWasDeclinedWithTheReason) {
    const std::string file = write(
        "odd.mov", join({atom("moov"_os, {atom("mvhd"_os, {zeros(4)}), zeros(8)}), zeros(1)}));
    EXPECT_NE(call({"show", file, "moov.mvhd"})
                  .output.find("  kept as raw data        declined by VexQTmvhdAtom: 12 bytes\n"),
              std::string::npos);
}

/// A table of so many rows: the row's number, and a hundred times as much.
Bytes durations(std::uint32_t rows) {
    Bytes entries;
    for (std::uint32_t i = 0; i < rows; ++i) entries = join({entries, u32(i), u32(100 * i)});
    return atom("stts"_os, {u32(0), u32(rows), entries});
}

TEST_F(Show, ATableInColumns) {
    EXPECT_EQ(properties(durations(3)),
              "  sampleDurations         3 rows\n"
              "    row  sampleCount (samples)  sampleDuration (time units)\n"
              "      0                      0                            0\n"
              "      1                      1                          100\n"
              "      2                      2                          200\n");
}

TEST_F(Show, OfALongTableTheFirstAndTheLastRows) {
    EXPECT_EQ(properties(durations(1014)),
              "  sampleDurations         1,014 rows\n"
              "     row  sampleCount (samples)  sampleDuration (time units)\n"
              "       0                      0                            0\n"
              "       1                      1                          100\n"
              "       2                      2                          200\n"
              "       3                      3                          300\n"
              "       4                      4                          400\n"
              "       5                      5                          500\n"
              "       6                      6                          600\n"
              "       7                      7                          700\n"
              "       8                      8                          800\n"
              "       9                      9                          900\n"
              "       …  1,001 more rows, shown with --all\n"
              "    1011                   1011                       101100\n"
              "    1012                   1012                       101200\n"
              "    1013                   1013                       101300\n");
}

TEST_F(Show, EveryRowOnRequest) {
    const std::string all = properties(durations(1014), {"--all"});
    EXPECT_EQ(std::ranges::count(all, '\n'), 1016);
    EXPECT_EQ(all.find("…"), std::string::npos);
}

TEST_F(Show, ATableThatIsNotMuchLongerThanItsPartsWhole) {
    EXPECT_EQ(properties(durations(13)).find("…"), std::string::npos);
    EXPECT_NE(properties(durations(14)).find("…  1 more row, shown with --all\n"),
              std::string::npos);
}

TEST_F(Show, ColoursAndNothingElseDiffer) {
    std::string coloured = call({"show", movie_, "moov.mvhd", "--color=always"}).output;
    EXPECT_NE(coloured.find("\x1B[1m"), std::string::npos);
    while (true) {
        const std::size_t begin = coloured.find("\x1B[");
        if (begin == std::string::npos) break;
        coloured.erase(begin, coloured.find('m', begin) - begin + 1);
    }
    EXPECT_EQ(coloured, call({"show", movie_, "moov.mvhd", "--color=never"}).output);
}

TEST_F(Show, EverythingBelowOnRequest) {
    const std::string all = call({"show", movie_, "moov.trak", "--recursive"}).output;
    for (const std::string path : {"moov.trak", "moov.trak.tkhd", "moov.trak.mdia",
                                   "moov.trak.mdia.mdhd", "moov.trak.mdia.hdlr"}) {
        SCOPED_TRACE(path);
        EXPECT_NE(all.find(call({"show", movie_, path}).output), std::string::npos);
    }
    EXPECT_EQ(all.find("moov.trak[1]"), std::string::npos);
}

/// Two items of keyed metadata, the second key's first.
Bytes keyedMetadata() {
    const auto key = [](std::string_view name) {
        return join({u32(static_cast<std::uint32_t>(name.size() + 8)), text("mdta"), text(name)});
    };
    const auto item = [](OSType code, std::string_view value) {
        return atom(code, {atom("data"_os, {u32(1), u32(0), text(value)})});
    };
    return atom("meta"_os,
                {atom("hdlr"_os, {zeros(8), text("mdta"), zeros(13)}),
                 atom("keys"_os, {u32(0), u32(2), key("com.example.title"), key("com.example.by")}),
                 atom("ilst"_os, {item(2, "Somebody"), item(1, "A [title]")})});
}

TEST_F(Show, KeyedMetadataWithTheKeys) {
    const std::string file = write(
        "meta.mov", join({atom("ftyp"_os, {text("qt  "), u32(0)}), atom("mdat"_os, {text("DATA")}),
                          atom("moov"_os, {keyedMetadata(), zeros(1)})}));
    const Called items = call({"show", file, "moov.meta.ilst"});
    EXPECT_NE(items.output.find("Metadata Item com.example.by"), std::string::npos) << items.output;
    const std::string title = "moov.meta.ilst[com.example.title]";
    EXPECT_NE(call({"show", file, title})
                  .output.find("  key                     "
                               "com.example.title\n"),
              std::string::npos);
    EXPECT_EQ(call({"get", file, title + ".data.text"}).output, "A [title]\n");
    EXPECT_EQ(call({"get", file, "moov.meta.ilst[com.example.tilte].data.text"}).errors,
              said(file,
                   "moov.meta.ilst[com.example.tilte]: no such key, only com.example.by, "
                   "com.example.title; did you mean com.example.title?"));
    EXPECT_EQ(call({"set", file, title + ".data.text=New", "--in-place"}).status, 0);
    EXPECT_EQ(call({"get", file, title + ".data.text"}).output, "New\n");
}

}  // namespace
}  // namespace vexqt::cli
