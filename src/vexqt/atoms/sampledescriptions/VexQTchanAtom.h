#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// One channel of a channel layout: 20 bytes without a header of their own.
///
/// A description that is read does not know its parent.
class VEXQT_EXPORT VexQTChannelDescription final : public AtomOf<VexQTChannelDescription> {
public:
    static const AtomClass kClass;

    VexQTChannelDescription() { setVersion(0); }

    /// Which loudspeaker the channel is for.
    std::uint32_t channelLabel() const { return channelLabel_; }
    void setChannelLabel(std::uint32_t label) { channelLabel_ = label; }
    /// How the coordinates are meant.
    std::uint32_t channelFlags() const { return channelFlags_; }
    void setChannelFlags(std::uint32_t flags) { channelFlags_ = flags; }
    /// In metres or degrees, as the flags say: to the right, or the azimuth.
    float channelCoordinateX() const { return channelCoordinateX_; }
    void setChannelCoordinateX(float coordinate) { channelCoordinateX_ = coordinate; }
    /// To the front, or the elevation.
    float channelCoordinateY() const { return channelCoordinateY_; }
    void setChannelCoordinateY(float coordinate) { channelCoordinateY_ = coordinate; }
    /// Upwards, or the distance.
    float channelCoordinateZ() const { return channelCoordinateZ_; }
    void setChannelCoordinateZ(float coordinate) { channelCoordinateZ_ = coordinate; }

private:
    struct Layout;

    std::uint32_t channelLabel_ = 0;
    std::uint32_t channelFlags_ = 0;
    float channelCoordinateX_ = 0;
    float channelCoordinateY_ = 0;
    float channelCoordinateZ_ = 0;
};

/// The channel layout of a sound description: a tag, or a bitmap, or a description for every
/// channel. The descriptions are the atom's children.
class VEXQT_EXPORT VexQTchanAtom final : public AtomOf<VexQTchanAtom> {
public:
    static const AtomClass kClass;

    VexQTchanAtom();

    /// Which layout it is: a kind in the high half and the number of channels in the low one; 0 for
    /// the descriptions, 65536 for the bitmap.
    std::uint32_t channelLayoutTag() const { return channelLayoutTag_; }
    void setChannelLayoutTag(std::uint32_t tag) { channelLayoutTag_ = tag; }
    /// One bit for every channel that is there, the front left in the lowest.
    std::uint32_t channelBitmap() const { return channelBitmap_; }
    void setChannelBitmap(std::uint32_t bitmap) { channelBitmap_ = bitmap; }
    /// Whether zeros for one description are written where there is none. Any byte behind a count
    /// of 0 sets it.
    bool appendEmptyChannelDescription() const { return appendEmptyChannelDescription_; }
    void setAppendEmptyChannelDescription(bool append) { appendEmptyChannelDescription_ = append; }

private:
    struct Layout;
    void decodeDescriptions(AtomReader& in);
    void decodeEmptyDescription(AtomReader& in);
    void encodeEmptyDescription(ByteWriter& out) const;

    std::uint32_t channelLayoutTag_ = 0;
    std::uint32_t channelBitmap_ = 0;
    bool appendEmptyChannelDescription_ = false;
};

}  // namespace vexqt
