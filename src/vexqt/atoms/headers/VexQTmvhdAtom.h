#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The movie header: time scale, duration, preferred playback and geometry of the whole movie.
///
/// Only the layout of 108 bytes with 32-bit times is understood, whatever the version byte says.
class VEXQT_EXPORT VexQTmvhdAtom final : public AtomOf<VexQTmvhdAtom> {
public:
    static const AtomClass kClass;

    /// When it was made, in UTC; absent is written as 2001-01-01.
    std::optional<Date> creationDateTime() const { return creationDateTime_; }
    void setCreationDateTime(std::optional<Date> date) { creationDateTime_ = date; }
    /// When it was last changed, in UTC; absent is written as 2001-01-01.
    std::optional<Date> modificationDateTime() const { return modificationDateTime_; }
    void setModificationDateTime(std::optional<Date> date) { modificationDateTime_ = date; }

    /// Time units a second. Every time below is in these units.
    std::uint32_t timeScale() const { return timeScale_; }
    void setTimeScale(std::uint32_t scale) { timeScale_ = scale; }
    /// The longest track.
    std::uint32_t duration() const { return duration_; }
    void setDuration(std::uint32_t duration) { duration_ = duration; }

    /// 1.0 is normal speed.
    float preferredRate() const { return preferredRate_; }
    void setPreferredRate(float rate) { preferredRate_ = rate; }
    /// 1.0 is full volume.
    float preferredVolume() const { return preferredVolume_; }
    void setPreferredVolume(float volume) { preferredVolume_ = volume; }

    /// Where the preview begins.
    std::uint32_t previewTime() const { return previewTime_; }
    void setPreviewTime(std::uint32_t time) { previewTime_ = time; }
    /// How long the preview is.
    std::uint32_t previewDuration() const { return previewDuration_; }
    void setPreviewDuration(std::uint32_t duration) { previewDuration_ = duration; }
    /// Where the poster frame is.
    std::uint32_t posterTime() const { return posterTime_; }
    void setPosterTime(std::uint32_t time) { posterTime_ = time; }
    /// Where the selection begins.
    std::uint32_t selectionTime() const { return selectionTime_; }
    void setSelectionTime(std::uint32_t time) { selectionTime_ = time; }
    /// How long the selection is.
    std::uint32_t selectionDuration() const { return selectionDuration_; }
    void setSelectionDuration(std::uint32_t duration) { selectionDuration_ = duration; }
    /// Where playback stands.
    std::uint32_t currentTime() const { return currentTime_; }
    void setCurrentTime(std::uint32_t time) { currentTime_ = time; }
    /// The ID that the next new track gets.
    std::uint32_t nextTrackID() const { return nextTrackID_; }
    void setNextTrackID(std::uint32_t trackID) { nextTrackID_ = trackID; }

private:
    struct Layout;

    std::optional<Date> creationDateTime_, modificationDateTime_;
    std::uint32_t timeScale_ = 0;
    std::uint32_t duration_ = 0;
    float preferredRate_ = 1;
    float preferredVolume_ = 1;
    std::uint32_t previewTime_ = 0;
    std::uint32_t previewDuration_ = 0;
    std::uint32_t posterTime_ = 0;
    std::uint32_t selectionTime_ = 0;
    std::uint32_t selectionDuration_ = 0;
    std::uint32_t currentTime_ = 0;
    std::uint32_t nextTrackID_ = 0;
};

}  // namespace vexqt
