#include "vexqt/atoms/metadata/VexQTdataAtom.h"

#include "vexqt/atoms/metadata/VexQTmetaAtom.h"
#include "vexqt/core/ChildMaker.h"
#include "vexqt/core/codecs.h"
#include "vexqt/platform/text.h"

namespace vexqt {

namespace {

/// Two bytes of an explicitly signed value are held as 0 to 65535, never below zero.
struct S16ReadUnsigned {
    static std::int32_t read(ByteReader& in) { return in.u16(); }
    static void write(ByteWriter& out, std::int32_t value) {
        out.u16(static_cast<std::uint16_t>(value));
    }
};

/// Three bytes give the last two, in the upper half of the four that are written.
struct ThreeBytesReadHigh {
    static std::int32_t read(ByteReader& in) {
        in.skip(1);
        return static_cast<std::int32_t>(std::uint32_t{in.u16()} << 16);
    }
    static void write(ByteWriter& out, std::int32_t value) {
        out.u32(static_cast<std::uint32_t>(value));
    }
};

struct Float32 {
    static float read(ByteReader& in) { return std::bit_cast<float>(in.u32()); }
    static void write(ByteWriter& out, float value) {
        out.u32(std::bit_cast<std::uint32_t>(value));
    }
};

/// Held as a single: what is written is the double nearest to that.
struct Float64Narrowed {
    static float read(ByteReader& in) {
        return static_cast<float>(std::bit_cast<double>(in.u64()));
    }
    static void write(ByteWriter& out, float value) {
        out.u64(std::bit_cast<std::uint64_t>(double{value}));
    }
};

/// The type indicators of a kind, one or two.
struct Indicators {
    std::uint32_t first;
    std::uint32_t second = first;
};

constexpr LengthRule kAnyLength = {};

/// What people are shown of a kind.
struct Shown {
    std::string_view atomName;
    std::string_view nibName;  ///< Empty for none.
};
constexpr Shown kTextItem = {"Metadata Text Item", "VexQTMetadataTextItem"};
constexpr Shown kImageItem = {"Metadata Image Item", "VexQTMetadataImageItem"};
constexpr Shown kIntegerItem = {"Metadata Integer Number Item", "VexQTMetadataIntegerNumberItem"};
constexpr Shown kHex1Item = {"Metadata Integer Number Item", "VexQTMetadata1ByteHexItem"};
constexpr Shown kHex2Item = {"Metadata Integer Number Item", "VexQTMetadata2ByteHexItem"};
constexpr Shown kHex4Item = {"Metadata Integer Number Item", "VexQTMetadata4ByteHexItem"};
constexpr Shown kFloatItem = {"Metadata Floating Number Item", "VexQTMetadataFloatNumberItem"};
constexpr Shown kMetadataItem = {"QuickTime Metadata", ""};
constexpr Shown kTrackItem = {"Metadata Track Number Item", "VexQTMetadataTrackNumberItem"};
constexpr Shown kDiskItem = {"Metadata Disk Number Item", "VexQTMetadataDiskNumberItem"};
constexpr Shown kRawItem = {"Metadata Data Item", "VexQTAtom"};
/// An integer of a length that no integer has.
constexpr Shown kNoIntegerItem = {"Metadata Data Item", "VexQTMetadataIntegerNumberItem"};

}  // namespace

/// How the bytes of a value are read and written.
struct VexQTdataAtom::Form {
    void (*read)(VexQTdataAtom&, AtomReader&);
    void (*write)(const VexQTdataAtom&, ByteWriter&);
};

/// One way in which a value lies in the file.
///
/// A value is read as the first of them all that fits its bytes says. It is called and written as
/// the first that has its constant says.
struct VexQTdataAtom::Kind {
    Indicators indicators;
    LengthRule length;          ///< Of the value alone.
    std::string_view constant;  ///< Empty for none.
    Shown shown;
    Form form;
    OSType under = 0;  ///< The code of the item; 0 for any.

    /// The reader stands at the value.
    static const Kind& ofBytes(const VexQTdataAtom& atom, const AtomReader& in);
    static const Kind& ofConstant(const std::optional<std::string>& constant);
};

struct VexQTdataAtom::Kinds {
    using Atom = VexQTdataAtom;
    using S8 = Signed<std::int8_t>;
    using S16 = Signed<std::int16_t>;
    using S32 = Signed<std::int32_t>;
    using S64 = Signed<std::int64_t>;

    /// Cut at the first zero byte, text of two-byte units too.
    template <auto fromBytes>
    static void readText(Atom& atom, AtomReader& in) {
        atom.text_ = fromBytes(upToZero(in.rest()));
    }
    template <auto toBytes>
    static void writeText(const Atom& atom, ByteWriter& out) {
        if (atom.text_) out.append(toBytes(*atom.text_).value_or(Bytes()));
    }

    static void readImage(Atom& atom, AtomReader& in) {
        atom.undecodedImage_ = in.restShared();
        atom.rawImageData_ = atom.undecodedImage_;
    }
    template <PictureFormat format>
    static void writeImage(const Atom& atom, ByteWriter& out) {
        if (atom.rawImageData_) {
            out.append(atom.rawImageData_->view());
        } else {
            out.append(dataWithImage(atom.image(), format));
        }
    }

    template <class Codec>
    static void readNumber(Atom& atom, AtomReader& in) {
        atom.value_ = Number(Codec::read(in));
    }
    template <class Codec>
    static void writeInteger(const Atom& atom, ByteWriter& out) {
        using Integer = decltype(Codec::read(std::declval<ByteReader&>()));
        Codec::write(out, static_cast<Integer>(atom.value_.value_or(Number()).uint64Value()));
    }
    template <class Codec>
    static void writeFloat(const Atom& atom, ByteWriter& out) {
        Codec::write(out, atom.value_.value_or(Number()).floatValue());
    }
    /// A number of the wrong length: no value, and its bytes are lost.
    static void readNothing(Atom&, AtomReader& in) { in.rest(); }

    static void readMetadata(Atom& atom, AtomReader& in) {
        ChildMaker(atom, in).addRest(VexQTmetaAtom::kClass);
    }
    /// Metadata below a value is there to be read and shown; nothing says how it is written.
    static void writeMetadata(const Atom& atom, ByteWriter&) {
        if (!atom.children().empty())
            throw EncodingError("a value that is metadata itself cannot be written");
    }

    static void readTrackNumber(Atom& atom, AtomReader& in) {
        atom.trackNumber_ = in.u32();
        atom.totalTracks_ = in.u32();
        in.rest();
    }
    static void writeTrackNumber(const Atom& atom, ByteWriter& out) {
        out.u32(atom.trackNumber_);
        out.u32(atom.totalTracks_);
    }
    static void readDiskNumber(Atom& atom, AtomReader& in) {
        in.skip(2);
        atom.diskNumber_ = in.u16();
        atom.totalDisks_ = in.u16();
        in.rest();
    }
    static void writeDiskNumber(const Atom& atom, ByteWriter& out) {
        out.zeros(2);
        out.u16(atom.diskNumber_);
        out.u16(atom.totalDisks_);
    }

    static void readRaw(Atom& atom, AtomReader& in) { atom.keepRest(in); }
    static void writeRaw(const Atom& atom, ByteWriter& out) { atom.appendRest(out); }

    static constexpr Form kUTF8 = {readText<textFromUTF8>, writeText<utf8FromText>};
    static constexpr Form kUTF16 = {readText<textFromUTF16>, writeText<utf16FromText>};
    template <PictureFormat format>
    static constexpr Form kImage = {readImage, writeImage<format>};
    template <class Codec>
    static constexpr Form kInteger = {readNumber<Codec>, writeInteger<Codec>};
    template <class Codec>
    static constexpr Form kFloat = {readNumber<Codec>, writeFloat<Codec>};
    template <class Codec>
    static constexpr Form kAbsentFloat = {readNothing, writeFloat<Codec>};
    static constexpr Form kAbsentInteger = {readNothing, writeRaw};
    static constexpr Form kMetadata = {readMetadata, writeMetadata};
    static constexpr Form kTrackNumber = {readTrackNumber, writeTrackNumber};
    static constexpr Form kDiskNumber = {readDiskNumber, writeDiskNumber};
    static constexpr Form kRaw = {readRaw, writeRaw};

    /// All the kinds. The last is that of values, and of constants, that no other covers.
    static constexpr Kind table[] = {
        {{1, 4}, kAnyLength, VexQTDataAtomType_UTF8Text, kTextItem, kUTF8},
        {{2, 5}, kAnyLength, VexQTDataAtomType_UTF16Text, kTextItem, kUTF16},

        {{13}, kAnyLength, VexQTDataAtomType_JPEGImage, kImageItem, kImage<PictureFormat::JPEG>},
        {{14}, kAnyLength, VexQTDataAtomType_PNGImage, kImageItem, kImage<PictureFormat::PNG>},
        {{27}, kAnyLength, VexQTDataAtomType_BMPImage, kImageItem, kImage<PictureFormat::BMP>},

        {{21}, exactly(1), VexQTDataAtomType_SInt8, kIntegerItem, kInteger<S8>},
        {{21}, exactly(2), VexQTDataAtomType_SInt16, kIntegerItem, kInteger<S16ReadUnsigned>},
        {{21}, exactly(4), VexQTDataAtomType_SInt32, kIntegerItem, kInteger<S32>},
        {{21}, exactly(8), VexQTDataAtomType_SInt64, kIntegerItem, kInteger<S64>},
        {{22}, exactly(1), VexQTDataAtomType_UInt8, kIntegerItem, kInteger<U8>},
        {{22}, exactly(2), VexQTDataAtomType_UInt16, kIntegerItem, kInteger<U16>},
        {{22}, exactly(4), VexQTDataAtomType_UInt32, kIntegerItem, kInteger<U32>},
        {{22}, exactly(8), VexQTDataAtomType_UInt64, kIntegerItem, kInteger<U64>},
        {{21, 22}, kAnyLength, {}, kNoIntegerItem, kAbsentInteger},

        {{23}, exactly(4), VexQTDataAtomType_Float32, kFloatItem, kFloat<Float32>},
        {{23}, kAnyLength, VexQTDataAtomType_Float32, kFloatItem, kAbsentFloat<Float32>},
        {{24}, exactly(8), VexQTDataAtomType_Float64, kFloatItem, kFloat<Float64Narrowed>},
        {{24}, kAnyLength, VexQTDataAtomType_Float64, kFloatItem, kAbsentFloat<Float64Narrowed>},

        {{28}, kAnyLength, VexQTDataAtomType_QTMetadata, kMetadataItem, kMetadata},

        // Without a type the length tells the kind, and only then the item.
        {{0}, exactly(1), VexQTDataAtomType_SInt8, kHex1Item, kInteger<S8>},
        {{0}, exactly(2), VexQTDataAtomType_SInt16, kHex2Item, kInteger<S16>},
        {{0}, exactly(3), VexQTDataAtomType_SInt32, kHex4Item, kInteger<ThreeBytesReadHigh>},
        {{0}, exactly(4), VexQTDataAtomType_SInt32, kHex4Item, kInteger<S32>},
        {{0}, kAnyLength, VexQTDataAtomType_TrackNumber, kTrackItem, kTrackNumber, "trkn"_os},
        {{0}, kAnyLength, VexQTDataAtomType_DiskNumber, kDiskItem, kDiskNumber, "disk"_os},
        {{0}, kAnyLength, VexQTDataAtomType_Reserved, kRawItem, kRaw},

        {{}, kAnyLength, VexQTDataAtomType_Unknown, kRawItem, kRaw},
    };
};

const VexQTdataAtom::Kind& VexQTdataAtom::Kind::ofBytes(const VexQTdataAtom& atom,
                                                        const AtomReader& in) {
    const OSType item = atom.parent() != nullptr ? atom.parent()->atomType() : 0;
    const auto fits = [&](const Kind& kind) {
        return (atom.dataType_ == kind.indicators.first ||
                atom.dataType_ == kind.indicators.second) &&
               kind.length.accepts(in.remaining()) && (kind.under == 0 || kind.under == item);
    };
    return *std::find_if(std::begin(Kinds::table), std::end(Kinds::table) - 1, fits);
}

const VexQTdataAtom::Kind& VexQTdataAtom::Kind::ofConstant(
    const std::optional<std::string>& constant) {
    return *std::find_if(std::begin(Kinds::table), std::end(Kinds::table) - 1,
                         [&](const Kind& kind) { return kind.constant == constant; });
}

struct VexQTdataAtom::Layout {
    using Atom = VexQTdataAtom;

    static void chooseKind(Record& record, AtomReader& in) {
        auto& atom = static_cast<Atom&>(record);
        const Kind& kind = Kind::ofBytes(atom, in);
        if (!kind.constant.empty()) atom.dataTypeString_ = kind.constant;
        if (!kind.shown.nibName.empty()) atom.nibName_ = kind.shown.nibName;
    }
    static constexpr Field value = irregular<&Atom::decodeValue, &Atom::encodeValue>();
    static constexpr Field fields[] = {
        field<&Atom::dataType_, U32>("dataType"),
        field<&Atom::dataLocale_, U32>("dataLocale"),
        {.decode = chooseKind},
        when<&Atom::holdsPlainValue>(value),
        when<&Atom::holdsMetadata>(value.holdingChildren()),
        property<&Atom::dataTypeString_>("dataTypeString"),
        property<&Atom::text_>("text"),
        accessors<&Atom::image, &Atom::setImage>("image"),
        property<&Atom::value_>("value"),
        property<&Atom::nibName_>("nibName"),
        accessors<&Atom::rawImageData, &Atom::setRawImageData>("rawImageData"),
        property<&Atom::trackNumber_>("trackNumber"),
        property<&Atom::totalTracks_>("totalTracks"),
        property<&Atom::diskNumber_>("diskNumber"),
        property<&Atom::totalDisks_>("totalDisks"),
        accessors<&Atom::intValue, &Atom::setIntValue>("intValue"),
    };
    static constexpr std::string_view listing[] = {
        "dataType", "dataLocale",   "dataTypeString", "text",        "image",      "value",
        "nibName",  "rawImageData", "trackNumber",    "totalTracks", "diskNumber", "totalDisks"};
    static_assert(wireWidth(fields) == 8, "16 bytes less the header; the value follows");
};

void VexQTdataAtom::decodeValue(AtomReader& in) { Kind::ofBytes(*this, in).form.read(*this, in); }

void VexQTdataAtom::encodeValue(ByteWriter& out) const {
    Kind::ofConstant(dataTypeString_).form.write(*this, out);
}

constinit const AtomClass VexQTdataAtom::kClass = {
    .type = "data"_os,
    .className = "VexQTdataAtom",
    .atomName = kRawItem.atomName,
    .accepts = atLeast(16),
    .sizeRule = SizeRule::NotStored,
    .typeRule = TypeRule::Restored,
    .fields = Layout::fields,
    .listing = Layout::listing,
    .create = create<VexQTdataAtom>,
};

std::string VexQTdataAtom::atomName() const {
    return std::string(Kind::ofConstant(dataTypeString_).shown.atomName);
}

// MARK: Pictures

std::optional<Picture> VexQTdataAtom::image() const {
    if (undecodedImage_.size() != 0) {
        image_ = Picture::decode(undecodedImage_.view());
        undecodedImage_ = SharedBytes();
    }
    return image_;
}

void VexQTdataAtom::setImage(std::optional<Picture> image) {
    image_ = std::move(image);
    undecodedImage_ = SharedBytes();
    rawImageData_.reset();
}

std::optional<Bytes> VexQTdataAtom::rawImageData() const {
    if (!rawImageData_) return std::nullopt;
    const ByteView bytes = rawImageData_->view();
    return Bytes(bytes.begin(), bytes.end());
}

void VexQTdataAtom::setRawImageData(std::optional<Bytes> bytes) {
    rawImageData_.reset();
    if (bytes) rawImageData_ = SharedBytes::copyOf(*bytes);
}

Bytes VexQTdataAtom::dataWithImage(const std::optional<Picture>& image,
                                   PictureFormat usingBitmapFileType) {
    if (!image) return {};
    return image->encode(usingBitmapFileType).value_or(Bytes());
}

Bytes VexQTdataAtom::JPEGDataWithImage(const std::optional<Picture>& image) {
    return dataWithImage(image, PictureFormat::JPEG);
}

Bytes VexQTdataAtom::BMPDataWithImage(const std::optional<Picture>& image) {
    return dataWithImage(image, PictureFormat::BMP);
}

Bytes VexQTdataAtom::PNGDataWithImage(const std::optional<Picture>& image) {
    return dataWithImage(image, PictureFormat::PNG);
}

}  // namespace vexqt
