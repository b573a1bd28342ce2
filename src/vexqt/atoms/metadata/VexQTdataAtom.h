#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/platform/Picture.h"

namespace vexqt {

// The kinds of value that a data atom can hold.
inline constexpr std::string_view VexQTDataAtomType_UTF8Text = "VexQTDataAtomType_UTF8Text";
inline constexpr std::string_view VexQTDataAtomType_UTF16Text = "VexQTDataAtomType_UTF16Text";
inline constexpr std::string_view VexQTDataAtomType_JPEGImage = "VexQTDataAtomType_JPEGImage";
inline constexpr std::string_view VexQTDataAtomType_PNGImage = "VexQTDataAtomType_PNGImage";
inline constexpr std::string_view VexQTDataAtomType_BMPImage = "VexQTDataAtomType_BMPImage";
inline constexpr std::string_view VexQTDataAtomType_SInt8 = "VexQTDataAtomType_SInt8";
inline constexpr std::string_view VexQTDataAtomType_SInt16 = "VexQTDataAtomType_SInt16";
inline constexpr std::string_view VexQTDataAtomType_SInt32 = "VexQTDataAtomType_SInt32";
inline constexpr std::string_view VexQTDataAtomType_SInt64 = "VexQTDataAtomType_SInt64";
inline constexpr std::string_view VexQTDataAtomType_UInt8 = "VexQTDataAtomType_UInt8";
inline constexpr std::string_view VexQTDataAtomType_UInt16 = "VexQTDataAtomType_UInt16";
inline constexpr std::string_view VexQTDataAtomType_UInt32 = "VexQTDataAtomType_UInt32";
inline constexpr std::string_view VexQTDataAtomType_UInt64 = "VexQTDataAtomType_UInt64";
inline constexpr std::string_view VexQTDataAtomType_Float32 = "VexQTDataAtomType_Float32";
inline constexpr std::string_view VexQTDataAtomType_Float64 = "VexQTDataAtomType_Float64";
inline constexpr std::string_view VexQTDataAtomType_QTMetadata = "VexQTDataAtomType_QTMetadata";
inline constexpr std::string_view VexQTDataAtomType_TrackNumber = "VexQTDataAtomType_TrackNumber";
inline constexpr std::string_view VexQTDataAtomType_DiskNumber = "VexQTDataAtomType_DiskNumber";
inline constexpr std::string_view VexQTDataAtomType_Reserved = "VexQTDataAtomType_Reserved";
inline constexpr std::string_view VexQTDataAtomType_Unknown = "VexQTDataAtomType_Unknown";

/// The value of a metadata item: a text, a picture, a number or whole metadata of its own.
///
/// The type indicator, the length and the item's code decide when it is read what kind of value it
/// is. From then on the kind alone decides: a changed type indicator changes nothing but itself.
class VEXQT_EXPORT VexQTdataAtom final : public AtomOf<VexQTdataAtom> {
public:
    static const AtomClass kClass;

    std::string atomName() const override;
    /// Chosen for the kind when the value is read; absent for an atom made in memory.
    std::optional<std::string> atomNibName() const override { return nibName_; }
    void setAtomNibName(std::optional<std::string> name) { nibName_ = std::move(name); }

    /// The type indicator.
    std::uint32_t dataType() const { return dataType_; }
    void setDataType(std::uint32_t type) { dataType_ = type; }
    /// The country in the high half and the language in the low one; 0 for any.
    std::uint32_t dataLocale() const { return dataLocale_; }
    void setDataLocale(std::uint32_t locale) { dataLocale_ = locale; }
    /// The kind of value, one of the constants above. Absent where an integer has no usable length.
    const std::optional<std::string>& dataTypeString() const { return dataTypeString_; }
    void setDataTypeString(std::optional<std::string> kind) { dataTypeString_ = std::move(kind); }

    /// Absent when there is none or it does not decode.
    const std::optional<std::string>& text() const { return text_; }
    void setText(std::optional<std::string> text) { text_ = std::move(text); }

    /// Decoded at its first use; absent when there is none or it does not decode.
    std::optional<Picture> image() const;
    /// Drops the bytes that the picture was read from, so that the new one is encoded.
    void setImage(std::optional<Picture> image);
    /// The picture's bytes as they were read; absent once a picture was set.
    std::optional<Bytes> rawImageData() const;
    /// These bytes are written whatever they are; the picture stays as it is.
    void setRawImageData(std::optional<Bytes> bytes);

    /// The number that the atom holds; absent where it holds something else.
    const std::optional<Number>& value() const { return value_; }
    void setValue(std::optional<Number> value) { value_ = value; }
    /// The low 32 bits of the value; 0 where it is absent.
    std::int32_t intValue() const { return value_.value_or(Number()).int32Value(); }
    void setIntValue(std::int32_t value) { value_ = Number(value); }

    /// Together with totalTracks eight bytes, each number a whole word. Common files have reserved
    /// halves there, so that three tracks of twelve read as 3 and 12 times 65536.
    std::uint32_t trackNumber() const { return trackNumber_; }
    void setTrackNumber(std::uint32_t number) { trackNumber_ = number; }
    /// How many tracks there are; 0 where that is not known.
    std::uint32_t totalTracks() const { return totalTracks_; }
    void setTotalTracks(std::uint32_t count) { totalTracks_ = count; }
    /// Together with totalDisks six bytes, the first two of them reserved.
    std::uint16_t diskNumber() const { return diskNumber_; }
    void setDiskNumber(std::uint16_t number) { diskNumber_ = number; }
    /// How many disks there are; 0 where that is not known.
    std::uint16_t totalDisks() const { return totalDisks_; }
    void setTotalDisks(std::uint16_t count) { totalDisks_ = count; }

    /// The bytes of a picture in a file format; empty for no picture or one that the format cannot
    /// hold.
    static Bytes dataWithImage(const std::optional<Picture>& image,
                               PictureFormat usingBitmapFileType);
    /// A JPEG file, or no bytes.
    static Bytes JPEGDataWithImage(const std::optional<Picture>& image);
    /// A BMP file, or no bytes.
    static Bytes BMPDataWithImage(const std::optional<Picture>& image);
    /// A PNG file, or no bytes.
    static Bytes PNGDataWithImage(const std::optional<Picture>& image);

private:
    struct Form;
    struct Kind;
    struct Kinds;
    struct Layout;
    void decodeValue(AtomReader& in);
    void encodeValue(ByteWriter& out) const;
    bool holdsMetadata() const { return dataTypeString_ == VexQTDataAtomType_QTMetadata; }
    bool holdsPlainValue() const { return !holdsMetadata(); }

    std::uint32_t dataType_ = 0;
    std::uint32_t dataLocale_ = 0;
    std::optional<std::string> dataTypeString_;
    std::optional<std::string> text_;
    mutable std::optional<Picture> image_;
    mutable SharedBytes undecodedImage_;  ///< What the picture is decoded from; empty once it was.
    std::optional<Number> value_;
    std::optional<std::string> nibName_;
    std::optional<SharedBytes> rawImageData_;
    std::uint32_t trackNumber_ = 0;
    std::uint32_t totalTracks_ = 0;
    std::uint16_t diskNumber_ = 0;
    std::uint16_t totalDisks_ = 0;
};

}  // namespace vexqt
