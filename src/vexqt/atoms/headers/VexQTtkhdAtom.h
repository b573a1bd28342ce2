#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The track header: a track's identity, duration, place among the layers, and presentation size.
///
/// Only the layout of 92 bytes with 32-bit times is understood, whatever the version byte says.
class VEXQT_EXPORT VexQTtkhdAtom final : public AtomOf<VexQTtkhdAtom> {
public:
    static const AtomClass kClass;

    /// When it was made, in UTC; absent is written as 2001-01-01.
    std::optional<Date> creationDateTime() const { return creationDateTime_; }
    void setCreationDateTime(std::optional<Date> date) { creationDateTime_ = date; }
    /// When it was last changed, in UTC; absent is written as 2001-01-01.
    std::optional<Date> modificationDateTime() const { return modificationDateTime_; }
    void setModificationDateTime(std::optional<Date> date) { modificationDateTime_ = date; }

    /// The number by which others name the track: from 1 on, unique in the movie.
    std::uint32_t trackID() const { return trackID_; }
    void setTrackID(std::uint32_t trackID) { trackID_ = trackID; }
    /// In units of the movie's time scale.
    std::uint32_t duration() const { return duration_; }
    void setDuration(std::uint32_t duration) { duration_ = duration; }
    /// The raw field: small numbers lie in front, negative ones wrap.
    std::uint16_t layer() const { return layer_; }
    void setLayer(std::uint16_t layer) { layer_ = layer; }
    /// Tracks of one group are alternatives of each other; 0 for none.
    std::uint16_t alternateGroup() const { return alternateGroup_; }
    void setAlternateGroup(std::uint16_t group) { alternateGroup_ = group; }
    /// The raw 8.8 field, unlike the movie header: 256 is full volume.
    std::uint16_t volume() const { return volume_; }
    void setVolume(std::uint16_t volume) { volume_ = volume; }
    /// In pixels.
    float trackWidth() const { return trackWidth_; }
    void setTrackWidth(float width) { trackWidth_ = width; }
    /// In pixels.
    float trackHeight() const { return trackHeight_; }
    void setTrackHeight(float height) { trackHeight_ = height; }

private:
    struct Layout;

    std::optional<Date> creationDateTime_, modificationDateTime_;
    std::uint32_t trackID_ = 0;
    std::uint32_t duration_ = 0;
    std::uint16_t layer_ = 0;
    std::uint16_t alternateGroup_ = 0;
    std::uint16_t volume_ = 0;
    float trackWidth_ = 0;
    float trackHeight_ = 0;
};

}  // namespace vexqt
