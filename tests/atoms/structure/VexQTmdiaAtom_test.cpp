#include "vexqt/atoms/structure/VexQTmdiaAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace testing;

Bytes handler(OSType subType) {
    return atom("hdlr"_os, {u32(0), text("mhlr"), u32(subType), zeros(12)});
}

std::unique_ptr<VexQTmdiaAtom> read(std::initializer_list<ByteView> children) {
    return VexQTmdiaAtom::initWithData(atom("mdia"_os, children), nullptr, 0);
}

TEST(MdiaAtom, TakesItsMediaTypeFromItsHandler) {
    const auto media = read({handler("soun"_os)});
    EXPECT_EQ(media->mediaType(), "soun"_os);
    EXPECT_EQ(media->atomName(), "Sound Media");
    EXPECT_EQ(media->atomDescription(), "Sound Media ('mdia')");
}

TEST(MdiaAtom, OfSeveralHandlersTheLastDecides) {
    EXPECT_EQ(read({handler("soun"_os), handler("vide"_os)})->mediaType(), "vide"_os);
}

TEST(MdiaAtom, WithoutAHandlerHasTheMediaTypeZero) {
    const auto media = read({atom("free"_os, {u8(0)})});
    EXPECT_EQ(media->mediaType(), 0U);
    EXPECT_EQ(media->atomName(), "Media");
}

TEST(MdiaAtom, MadeInMemoryHasTheUnknownMediaType) {
    const VexQTmdiaAtom media;
    EXPECT_EQ(media.mediaType(), "????"_os);
    EXPECT_EQ(media.atomName(), "Media");
}

TEST(MdiaAtom, TheHandlerOfItsInformationDoesNotCount) {
    const auto media = read({handler("vide"_os), atom("minf"_os, {handler("alis"_os)})});
    EXPECT_EQ(media->mediaType(), "vide"_os);
    ASSERT_EQ(media->children().size(), 2U);
    EXPECT_EQ(media->children()[1]->valueForKeyPath("hdlr.componentSubType"), Value("alis"_os));
}

TEST(MdiaAtom, OfATolerantReadingTakesNoTypeFromAHandlerThatWasDeclined) {
    const auto [media, problems] =
        readTolerantly<VexQTmdiaAtom>(atom("mdia"_os, {atom("hdlr"_os, {zeros(12)})}));
    EXPECT_EQ(problems.size(), 1U);
    EXPECT_EQ(media->mediaType(), 0U);
}

TEST(MdiaAtom, DescriptionsBeforeTheHandlerFindNoMediaType) {
    const Bytes information =
        atom("minf"_os, {atom("stbl"_os, {atom("stsd"_os, {zeros(4), u32(0)})})});
    const auto before = read({information, handler("vide"_os)});
    EXPECT_EQ(before->valueForKeyPath("minf.stbl.stsd.mediaType"), Value(0));
    const auto after = read({handler("vide"_os), information});
    EXPECT_EQ(after->valueForKeyPath("minf.stbl.stsd.mediaType"), Value("vide"_os));
}

TEST(MdiaAtom, ItsMediaTypeCanBeSetAndIsNotWritten) {
    const auto media = read({handler("soun"_os)});
    media->setMediaType("vide"_os);
    EXPECT_EQ(media->atomName(), "Video Media");
    EXPECT_EQ(media->atomData(), atom("mdia"_os, {handler("soun"_os)}));
    media->setValueForKey("text"_os, "mediaType");
    EXPECT_EQ(media->mediaType(), "text"_os);
}

TEST(MdiaAtom, IsNamedByItsMediaType) {
    struct Case {
        OSType mediaType;
        const char* name;
    };
    static constexpr Case kCases[] = {
        {"vide"_os, "Video Media"},
        {"soun"_os, "Sound Media"},
        {"text"_os, "Text Media"},
        {"tmcd"_os, "Timecode Media"},
        {"clcp"_os, "Closed-Captioning Media"},
        {"sbtl"_os, "Subtitling Media"},
        {"musi"_os, "Music Media"},
        {"MPEG"_os, "MPEG-1 Media"},
        {"sprt"_os, "Sprite Media"},
        {"qd3d"_os, "3D Media"},
        {"strm"_os, "Streaming Media"},
        {"meta"_os, "Metadata"},
        {"mpeg"_os, "Media"},
        {"abcd"_os, "Media"},
    };
    VexQTmdiaAtom media;
    for (const auto& [mediaType, name] : kCases) {
        media.setMediaType(mediaType);
        EXPECT_EQ(media.atomName(), name);
    }
}

}  // namespace
}  // namespace vexqt
