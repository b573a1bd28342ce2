#pragma once

#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

namespace vexqt {

/// The fields of a timecode description. The metadata description has them too and uses none.
class VEXQT_EXPORT TimecodeFields : public VexQTSampleDescription {
public:
    /// The word behind the common fields, which the format reserves.
    std::uint32_t firstFlags() const { return firstFlags_; }
    void setFirstFlags(std::uint32_t flags) { firstFlags_ = flags; }
    /// How the timecode counts: dropping frames, wrapping after a day, below zero, as a counter.
    std::uint32_t tcFlags() const { return tcFlags_; }
    void setTcFlags(std::uint32_t flags) { tcFlags_ = flags; }
    /// Time units a second.
    std::uint32_t timeScale() const { return timeScale_; }
    void setTimeScale(std::uint32_t scale) { timeScale_ = scale; }
    /// In these time units.
    std::uint32_t frameDuration() const { return frameDuration_; }
    void setFrameDuration(std::uint32_t duration) { frameDuration_ = duration; }
    /// Frames a second, or a tick of a counter.
    std::uint8_t numFrames() const { return numFrames_; }
    void setNumFrames(std::uint8_t count) { numFrames_ = count; }
    /// The language of the source's name; written with it alone.
    std::uint16_t languageCode() const { return languageCode_; }
    void setLanguageCode(std::uint16_t code) { languageCode_ = code; }
    /// What the timecode was taken from, a tape for instance. ASCII; an empty name is not written.
    const std::optional<std::string>& sourceName() const { return sourceName_; }
    void setSourceName(std::optional<std::string> name) { sourceName_ = std::move(name); }

protected:
    using VexQTSampleDescription::VexQTSampleDescription;

    std::uint32_t firstFlags_ = 0;
    std::uint32_t tcFlags_ = 0;
    std::uint32_t timeScale_ = 0;
    std::uint32_t frameDuration_ = 0;
    std::uint8_t numFrames_ = 0;
    std::uint16_t languageCode_ = 0;
    std::optional<std::string> sourceName_;
};

}  // namespace vexqt
