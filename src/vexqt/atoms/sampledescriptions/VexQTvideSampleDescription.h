#pragma once

#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

namespace vexqt {

/// The sample description of a video track: picture size, compressor, depth, and extension atoms
/// with what the decoder needs.
///
/// Every entry of a video track is one, whatever its format. Its type is 'vide'.
class VEXQT_EXPORT VexQTvideSampleDescription final
    : public AtomOf<VexQTvideSampleDescription, VexQTSampleDescription> {
public:
    static const AtomClass kClass;

    /// The version of the compressed data; 0 by rights.
    std::uint16_t videoVersion() const { return videoVersion_; }
    void setVideoVersion(std::uint16_t version) { videoVersion_ = version; }
    /// The version of the compressor; 0 by rights.
    std::uint16_t revisionLevel() const { return revisionLevel_; }
    void setRevisionLevel(std::uint16_t level) { revisionLevel_ = level; }
    /// The four-character code of the compressor's maker.
    OSType vendor() const { return vendor_; }
    void setVendor(OSType vendor) { vendor_ = vendor; }
    /// From 0 to 1023.
    std::uint32_t temporalQuality() const { return temporalQuality_; }
    void setTemporalQuality(std::uint32_t quality) { temporalQuality_ = quality; }
    /// From 0 to 1024.
    std::uint32_t spatialQuality() const { return spatialQuality_; }
    void setSpatialQuality(std::uint32_t quality) { spatialQuality_ = quality; }
    /// In pixels.
    std::uint16_t width() const { return width_; }
    void setWidth(std::uint16_t width) { width_ = width; }
    /// In pixels.
    std::uint16_t height() const { return height_; }
    void setHeight(std::uint16_t height) { height_ = height; }
    /// In whole pixels per inch; fractions in the file are cut off.
    std::uint32_t horizontalResolution() const { return horizontalResolution_; }
    void setHorizontalResolution(std::uint32_t resolution) { horizontalResolution_ = resolution; }
    /// In whole pixels per inch; fractions in the file are cut off.
    std::uint32_t verticalResolution() const { return verticalResolution_; }
    void setVerticalResolution(std::uint32_t resolution) { verticalResolution_ = resolution; }
    /// How many frames are in a sample.
    std::uint16_t frameCount() const { return frameCount_; }
    void setFrameCount(std::uint16_t count) { frameCount_ = count; }
    /// ASCII; absent when it does not decode. A name of more than 30 characters does not fit: its
    /// length is written, over an empty field.
    const std::optional<std::string>& compressorName() const { return compressorName_; }
    void setCompressorName(std::optional<std::string> name) { compressorName_ = std::move(name); }
    /// In bits per pixel; 32 more than that for grey levels.
    std::uint16_t depth() const { return depth_; }
    void setDepth(std::uint16_t depth) { depth_ = depth; }
    /// -1 for none, 0 for one that follows, else a standard one.
    std::int16_t colorTableID() const { return colorTableID_; }
    void setColorTableID(std::int16_t tableID) { colorTableID_ = tableID; }
    /// Whether a zero word is written behind the last extension atom. Any four bytes that are left
    /// over set it.
    bool appendZeroWord() const { return appendZeroWord_; }
    void setAppendZeroWord(bool append) { appendZeroWord_ = append; }

private:
    struct Layout;
    bool hasColorTable0() const { return colorTableID_ == 0; }
    void decodeExtensionAtoms(AtomReader& in);
    void decodeZeroWord(AtomReader& in);
    void encodeZeroWord(ByteWriter& out) const;

    std::optional<std::string> compressorName_;
    OSType vendor_ = kAnyType;
    std::uint32_t temporalQuality_ = 0;
    std::uint32_t spatialQuality_ = 0;
    std::uint32_t horizontalResolution_ = 0;
    std::uint32_t verticalResolution_ = 0;
    std::uint16_t videoVersion_ = 0;
    std::uint16_t revisionLevel_ = 0;
    std::uint16_t width_ = 0;
    std::uint16_t height_ = 0;
    std::uint16_t frameCount_ = 0;
    std::uint16_t depth_ = 0;
    std::int16_t colorTableID_ = 0;
    bool appendZeroWord_ = false;
};

}  // namespace vexqt
