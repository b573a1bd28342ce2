#include "vexqt/asset/AtomPath.h"

#include <gtest/gtest.h>

#include "testing/small_movie.h"
#include "vexqt/asset/VexQTAsset.h"

namespace vexqt {
namespace {

using namespace testing;  // NOLINT: the bytes of atoms

class AtomPaths : public ::testing::Test {
protected:
    const VexQTAtom& atom(std::string_view path) { return AtomPath(path).atomIn(roots()); }
    PropertyPlace place(std::string_view key) { return AtomPath(key).propertyIn(roots()); }
    Value value(std::string_view key) { return place(key).value(); }
    std::uint64_t trackOf(std::string_view path) {
        return std::get<std::uint64_t>(atom(path).valueForKeyPath("tkhd.trackID"));
    }
    const AtomPath::Atoms& roots() { return asset_->rootAtoms(); }

    /// The message of the error, and "malformed" in front of one about the text itself.
    template <class Work>
    std::string failure(Work&& work) {
        try {
            work();
        } catch (const PathError& error) {
            const bool isMalformed = error.reason() == PathError::Reason::Malformed;
            return (isMalformed ? "malformed: " : "") + error.message();
        }
        return "";
    }
    std::string atomFailure(std::string_view path) {
        return failure([&] { atom(path); });
    }
    std::string keyFailure(std::string_view key) {
        return failure([&] { place(key); });
    }

private:
    std::unique_ptr<VexQTAsset> asset_ = VexQTAsset::initWithData(smallMovie());
};

TEST_F(AtomPaths, CodesWalkFromTheRoots) {
    EXPECT_EQ(atom("ftyp").atomType(), "ftyp"_os);
    EXPECT_EQ(atom("moov.trak.mdia.hdlr").valueForKey("componentSubType"),
              Value(std::uint64_t{"vide"_os}));
}

TEST_F(AtomPaths, ACodeAloneIsTheFirstOfItsType) { EXPECT_EQ(trackOf("moov.trak"), 1U); }

TEST_F(AtomPaths, AnOrdinalCountsFromZero) {
    EXPECT_EQ(trackOf("moov.trak[0]"), 1U);
    EXPECT_EQ(trackOf("moov.trak[1]"), 2U);
}

TEST_F(AtomPaths, AMediaTypeChoosesATrack) {
    EXPECT_EQ(trackOf("moov.trak[vide]"), 1U);
    EXPECT_EQ(trackOf("moov.trak[soun]"), 2U);
    EXPECT_EQ(trackOf("moov.trak[soun:0]"), 2U);
    EXPECT_EQ(trackOf("moov.trak[0x736F756E]"), 2U);
}

TEST_F(AtomPaths, AMediaTypeChoosesAMediaAtomItself) {
    EXPECT_EQ(atom("moov.trak.mdia[vide]").atomType(), "mdia"_os);
}

TEST_F(AtomPaths, ACodeMayBeHexadecimal) {
    EXPECT_EQ(atom("moov.0xA96E616D").atomType(), 0xA96E616DU);
    EXPECT_EQ(atom("moov.0xa96e616d").atomType(), 0xA96E616DU);
    EXPECT_EQ(atom("moov.0x612E625D").atomType(), "a.b]"_os);
    EXPECT_EQ(atom("0x6D6F6F76").atomType(), "moov"_os);
}

TEST_F(AtomPaths, ACharacterAbove127IsOneByteOfACode) {
    EXPECT_EQ(atom("moov.\u00A9nam").atomType(), 0xA96E616DU);
}

TEST(AtomPath, BlanksAtTheEndOfACodeMayBeLeftOut) {
    const auto asset = VexQTAsset::initWithData(
        join({testing::atom("url "_os), testing::atom("x y "_os), zeros(9)}), {.tolerant = true});
    EXPECT_EQ(AtomPath("url").atomIn(asset->rootAtoms()).atomType(), "url "_os);
    EXPECT_EQ(AtomPath("url ").atomIn(asset->rootAtoms()).atomType(), "url "_os);
    EXPECT_EQ(AtomPath("x y").atomIn(asset->rootAtoms()).atomType(), "x y "_os);
}

TEST(AtomPath, AnAtomIsFoundByTheTypeItHasInTheFileToo) {
    const Bytes movie = testing::atom(
        "moov"_os,
        {testing::atom(
            "trak"_os,
            {testing::atom("mdia"_os, {testing::atom("elng"_os, {u32(0), text("de\0")})})})});
    const auto asset = VexQTAsset::initWithData(movie);
    const VexQTAtom& language = AtomPath("moov.trak.mdia.elng").atomIn(asset->rootAtoms());
    EXPECT_EQ(language.atomType(), "enlg"_os);
    EXPECT_EQ(&AtomPath("moov.trak.mdia.enlg").atomIn(asset->rootAtoms()), &language);
}

TEST_F(AtomPaths, AKeyEndsWithAProperty) {
    EXPECT_EQ(value("moov.mvhd.timeScale"), Value(600U));
    EXPECT_EQ(value("moov.trak[1].tkhd.layer"), Value(65534));
}

TEST_F(AtomPaths, AKeyMayNameWhatEveryAtomHas) {
    EXPECT_EQ(value("moov.mvhd.version"), Value(0U));
    EXPECT_EQ(value("moov.mvhd.flags0"), Value(1U));
    EXPECT_EQ(value("moov.mvhd.flags2"), Value(3U));
    EXPECT_EQ(value("moov.mvhd.size"), Value(108U));
    EXPECT_EQ(value("moov.mvhd.type"), Value(std::uint64_t{"mvhd"_os}));
}

TEST_F(AtomPaths, ARowOfPlainValuesIsOneValue) {
    const PropertyPlace second = place("ftyp.compatibleBrands[1]");
    EXPECT_TRUE(second.isSingle());
    EXPECT_EQ(second.value(), Value(std::int64_t{"mp42"_os}));
    EXPECT_EQ(second.field().display, Display::Code);
    second.setValue(std::uint64_t{"isom"_os});
    EXPECT_EQ(value("ftyp.compatibleBrands[1]"), Value(std::int64_t{"isom"_os}));
}

TEST_F(AtomPaths, AListIsNoSingleValue) {
    const PropertyPlace list = place("ftyp.compatibleBrands");
    EXPECT_FALSE(list.isSingle());
    EXPECT_FALSE(list.canBeSet());
    EXPECT_THROW(list.setValue(1U), ValueError);
}

TEST_F(AtomPaths, TheRowBehindTheLastIsThereForInsertingOnly) {
    EXPECT_EQ(keyFailure("ftyp.compatibleBrands[2]"),
              "ftyp.compatibleBrands[2]: the rows are [0] to [1]");
    const auto end =
        AtomPath("ftyp.compatibleBrands[2]").propertyIn(roots(), AtomPath::Rows::ThereAndEnd);
    EXPECT_EQ(end.row, 2U);
}

TEST_F(AtomPaths, ADerivedPropertyCannotBeSet) {
    EXPECT_FALSE(place("moov.mvhd.atomName").canBeSet());
    EXPECT_THROW(place("moov.mvhd.atomName").setValue("x"), ValueError);
}

TEST_F(AtomPaths, AnAbsentAtomIsNamedWithWhatIsThere) {
    EXPECT_EQ(atomFailure("moof"),
              "moof: no 'moof' in the movie, only ftyp, mdat, moov; "
              "did you mean moov?");
    EXPECT_EQ(atomFailure("moov.trak[1].tkdh"),
              "moov.trak[1].tkdh: no 'tkdh' in moov.trak[1], only tkhd, mdia; did you mean tkhd?");
    EXPECT_EQ(atomFailure("moov.zzzz.mdia"),
              "moov.zzzz: no 'zzzz' in moov, only mvhd, trak, 0x612E625D, 0xA96E616D");
    EXPECT_EQ(atomFailure("moov.mvhd.tkhd"),
              "moov.mvhd.tkhd: moov.mvhd has no atoms, only creationDateTime, "
              "modificationDateTime, timeScale, duration, preferredRate, preferredVolume, "
              "previewTime, previewDuration, posterTime, selectionTime, selectionDuration, "
              "currentTime, nextTrackID, matrix");
}

TEST_F(AtomPaths, AnAbsentOrdinalIsToldFromHowManyThereAre) {
    EXPECT_EQ(atomFailure("moov.trak[2].tkhd"),
              "moov.trak[2]: there are 2 'trak' in moov, and the first is [0]");
    EXPECT_EQ(atomFailure("moov[1]"),
              "moov[1]: there is 1 'moov' in the movie, and the first is "
              "[0]");
    EXPECT_EQ(atomFailure("moov.trak[99999999999999999999]"),
              "moov.trak[99999999999999999999]: there are 2 'trak' in moov, and the first is [0]");
}

TEST_F(AtomPaths, AnAbsentMediaTypeIsToldFromThoseThere) {
    EXPECT_EQ(atomFailure("moov.trak[vdie]"),
              "moov.trak[vdie]: no such media type, only vide, soun; did you mean vide?");
    EXPECT_EQ(atomFailure("moov.trak[soun:1]"),
              "moov.trak[soun:1]: there is 1 'trak' of this media type, and the first is :0");
    EXPECT_EQ(atomFailure("moov.mvhd[vide]"),
              "moov.mvhd[vide]: 'mvhd' has no media types to choose from");
}

TEST_F(AtomPaths, AnAbsentPropertyIsNamedWithWhatIsThere) {
    EXPECT_EQ(keyFailure("moov.trak.mdia.mdhd.timescale"),
              "moov.trak.mdia.mdhd.timescale: moov.trak.mdia.mdhd has no property 'timescale', "
              "only creationDateTime, modificationDateTime, timeScale, duration, language, "
              "quality; did you mean timeScale?");
    EXPECT_EQ(keyFailure("moov.trak.mdia.mdhd.flags3"),
              "moov.trak.mdia.mdhd.flags3: moov.trak.mdia.mdhd has no property 'flags3', only "
              "creationDateTime, modificationDateTime, timeScale, duration, language, quality; "
              "did you mean flags0?");
}

TEST_F(AtomPaths, AnAtomIsNoValue) {
    EXPECT_EQ(keyFailure("moov.trak.mdia"),
              "moov.trak.mdia: this is an atom, not a value; it has mediaType");
}

TEST_F(AtomPaths, ARowOfWhatIsNoTableIsRefused) {
    EXPECT_EQ(keyFailure("moov.mvhd.timeScale[0]"),
              "moov.mvhd.timeScale[0]: timeScale is no table");
}

TEST_F(AtomPaths, AColumnOfWhatHasNoneIsRefused) {
    EXPECT_EQ(keyFailure("ftyp.compatibleBrands[0].code"),
              "ftyp.compatibleBrands[0].code: the rows of compatibleBrands have no columns");
    EXPECT_EQ(keyFailure("moov.mvhd.timeScale.value"),
              "moov.mvhd.timeScale.value: timeScale is one value");
    EXPECT_EQ(keyFailure("ftyp.compatibleBrands.code"),
              "ftyp.compatibleBrands.code: a row is missing: compatibleBrands[0].code");
}

TEST_F(AtomPaths, WhatIsNoPathIsMalformed) {
    const struct {
        std::string_view text, why;
    } cases[] = {
        {"", "'' is no path: it is empty"},
        {".", "'.' is no path: a name is missing at 1"},
        {"moov.", "'moov.' is no path: a name is missing at 6"},
        {"moov..trak", "'moov..trak' is no path: a name is missing at 6"},
        {"moov.[1]", "'moov.[1]' is no path: a name is missing at 6"},
        {"moov.trak[1", "'moov.trak[1' is no path: a bracket is not closed"},
        {"moov.trak[1]x", "'moov.trak[1]x' is no path: a bracket is not closed"},
        {"moov.trak[]", "'moov.trak[]' is no path: there is nothing in the brackets"},
        {"moov.trak]", "'moov.trak]' is no path: a bracket is not opened"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        EXPECT_EQ(atomFailure(each.text), "malformed: " + std::string(each.why));
    }
}

TEST_F(AtomPaths, ThePathOfAnAtomLeadsBackToIt) {
    const std::string_view paths[] = {"ftyp",
                                      "moov",
                                      "moov.mvhd",
                                      "moov.trak",
                                      "moov.trak[1]",
                                      "moov.trak[1].mdia.hdlr",
                                      "moov.0xA96E616D",
                                      "moov.0x612E625D"};
    for (const std::string_view path : paths) EXPECT_EQ(AtomPath::of(atom(path), roots()), path);
}

TEST(AtomPath, AnAtomThatDoesNotKnowItsParentHasAPath) {
    AtomPath::Atoms roots;
    roots.push_back(std::make_unique<VexQTAtom>("root"_os, 0, nullptr, 0));
    roots[0]->addChild(std::make_unique<VexQTAtom>("leaf"_os, 0, nullptr, 0));
    roots[0]->addChild(std::make_unique<VexQTAtom>("leaf"_os, 0, nullptr, 0));
    const AtomPlace place = AtomPath("root.leaf[1]").placeIn(roots);
    EXPECT_EQ(AtomPath::of(*place.atom, roots), "root.leaf[1]");
    EXPECT_EQ(place.holder, roots[0].get());
    EXPECT_EQ(place.root, roots[0].get());
}

TEST_F(AtomPaths, APlaceTellsTheHolderAndTheRoot) {
    const AtomPlace header = AtomPath("moov.trak[1].tkhd").placeIn(roots());
    EXPECT_EQ(header.holder, &atom("moov.trak[1]"));
    EXPECT_EQ(header.root, &atom("moov"));
    const AtomPlace movie = AtomPath("moov").placeIn(roots());
    EXPECT_EQ(movie.holder, nullptr);
    EXPECT_EQ(movie.root, movie.atom);
    EXPECT_EQ(place("moov.mvhd.timeScale").root, movie.atom);
}

TEST_F(AtomPaths, SegmentsTellSiblingsApart) {
    EXPECT_EQ(AtomPath::segmentsOf(atom("moov").children()),
              (std::vector<std::string>{"mvhd", "trak", "trak[1]", "0x612E625D", "0xA96E616D"}));
}

TEST_F(AtomPaths, AnAtomElsewhereHasNoPath) { EXPECT_EQ(AtomPath::of(VexQTAtom(), roots()), ""); }

}  // namespace
}  // namespace vexqt
