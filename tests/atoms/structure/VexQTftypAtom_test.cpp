#include "vexqt/atoms/structure/VexQTftypAtom.h"

#include <gtest/gtest.h>

#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace testing;

using Brands = std::vector<std::int32_t>;

TEST(FtypAtom, ReadsEveryField) {
    VexQTAtom parent;
    const Bytes bytes = atom("ftyp"_os, {
                                            text("qt  "),     // major brand
                                            u32(0x20050300),  // minor version
                                            text("isom"),     // compatible brands
                                            text("\xFFp42"),  //
                                        });
    const auto fileType = VexQTftypAtom::initWithData(bytes, &parent, 40);
    EXPECT_EQ(fileType->parent(), &parent);
    EXPECT_EQ(fileType->offsetInFile(), 40U);
    EXPECT_EQ(fileType->atomSize(), 24U);
    EXPECT_EQ(fileType->atomType(), "ftyp"_os);
    EXPECT_EQ(fileType->majorBrand(), "qt  "_os);
    EXPECT_EQ(fileType->minorVersion(), 0x20050300U);
    EXPECT_EQ(fileType->compatibleBrands(),
              (Brands{0x69736F6D, static_cast<std::int32_t>(0xFF703432)}));
    EXPECT_EQ(fileType->unknownData(), std::nullopt);
    EXPECT_EQ(fileType->version(), 1);
    EXPECT_EQ(fileType->atomData(), bytes);
}

TEST(FtypAtom, WritesEveryField) {
    VexQTftypAtom fileType;
    fileType.setMajorBrand("mp42"_os);
    fileType.setMinorVersion(0x80000001);
    fileType.setCompatibleBrands({"isom"_os, -1});
    fileType.compatibleBrands().push_back("mp42"_os);
    EXPECT_EQ(fileType.atomData(), atom("ftyp"_os, {text("mp42"), u32(0x80000001), text("isom"),
                                                    u32(0xFFFFFFFF), text("mp42")}));
}

TEST(FtypAtom, MadeInMemoryClaimsToBeAQuickTimeMovie) {
    VexQTftypAtom fileType;
    EXPECT_EQ(fileType.majorBrand(), "qt  "_os);
    EXPECT_EQ(fileType.minorVersion(), 0x00030520U);
    EXPECT_EQ(fileType.compatibleBrands(), (Brands{0x71742020, 0, 0, 0}));
    EXPECT_EQ(fileType.atomData(),
              atom("ftyp"_os, {text("qt  "), u32(0x00030520), text("qt  "), zeros(12)}));
}

TEST(FtypAtom, OneBrandComesBack) {
    const Bytes bytes = atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  ")});
    EXPECT_EQ(VexQTftypAtom::initWithData(bytes, nullptr, 0)->atomData(), bytes);
}

TEST(FtypAtom, LosesBytesThatAreNoWholeBrand) {
    for (std::size_t count = 1; count < 4; ++count) {
        const Bytes bytes =
            atom("ftyp"_os, {text("qt  "), u32(7), text("qt  "), Bytes(count, 0xEE)});
        const auto fileType = VexQTftypAtom::initWithData(bytes, nullptr, 0);
        EXPECT_EQ(fileType->atomSize(), 20 + count);
        EXPECT_EQ(fileType->compatibleBrands(), (Brands{0x71742020}));
        EXPECT_EQ(fileType->atomData(), atom("ftyp"_os, {text("qt  "), u32(7), text("qt  ")}));
    }
}

TEST(FtypAtom, WithoutCompatibleBrandsHasNone) {
    const Bytes bytes = atom("ftyp"_os, {text("qt  "), u32(7)});
    const auto fileType = VexQTftypAtom::initWithData(bytes, nullptr, 0);
    EXPECT_TRUE(fileType->compatibleBrands().empty());
    EXPECT_EQ(fileType->atomData(), bytes);
}

TEST(FtypAtom, OfFewerThan16BytesIsARangeError) {
    for (std::size_t length = 0; length < 16; ++length)
        EXPECT_THROW(VexQTftypAtom::initWithData(zeros(length), nullptr, 0), RangeError) << length;
}

TEST(FtypAtom, ReadsNeitherSizeFieldNorType) {
    const auto fileType = VexQTftypAtom::initWithData(
        atomClaiming(1, "abcd"_os, {text("qt  "), u32(7), text("isom")}), nullptr, 0);
    EXPECT_EQ(fileType->atomSize(), 20U);
    EXPECT_EQ(fileType->atomType(), "ftyp"_os);
    EXPECT_EQ(fileType->majorBrand(), "qt  "_os);
}

TEST(FtypAtom, WritingLeavesTheSizeAlone) {
    VexQTftypAtom fileType;
    fileType.atomData();
    EXPECT_EQ(fileType.atomSize(), 8U);
    const auto read = VexQTftypAtom::initWithData(
        atom("ftyp"_os, {text("qt  "), u32(7), text("isom")}), nullptr, 0);
    read->compatibleBrands().clear();
    EXPECT_EQ(read->atomData(), atom("ftyp"_os, {text("qt  "), u32(7)}));
    EXPECT_EQ(read->atomSize(), 20U);
}

TEST(FtypAtom, HasANameAndAView) {
    const VexQTftypAtom fileType;
    EXPECT_EQ(fileType.atomName(), "File Type");
    EXPECT_EQ(fileType.atomNibName(), "VexQTftypAtom");
}

TEST(FtypAtom, GivesItsBrandsOneByOne) {
    VexQTftypAtom fileType;
    const Field* brands = fileType.propertyNamed("compatibleBrands");
    ASSERT_NE(brands, nullptr);
    ASSERT_NE(brands->list, nullptr);
    EXPECT_EQ(brands->list->size(fileType), 4U);
    EXPECT_EQ(brands->list->cell(fileType, 0, 0), Value(0x71742020));
    EXPECT_EQ(brands->list->columns[0].display, Display::Code);
    brands->list->setCell(fileType, 1, 0, 0x6D703432U);
    brands->list->insertRows(fileType, 0, 1);
    brands->list->removeRows(fileType, 3, 2);
    EXPECT_EQ(fileType.compatibleBrands(), (Brands{0, 0x71742020, 0x6D703432}));
    EXPECT_THROW(brands->list->setCell(fileType, 0, 0, "qt  "), ValueError);
    std::array<std::uint64_t, 2> rows{};
    brands->list->integers(fileType, 0, 1, rows);
    EXPECT_EQ(rows[0], 0x71742020U);
    EXPECT_EQ(rows[1], 0x6D703432U);
}

}  // namespace
}  // namespace vexqt
