#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The media header: a media's time scale, duration and language.
class VEXQT_EXPORT VexQTmdhdAtom final : public AtomOf<VexQTmdhdAtom> {
public:
    static const AtomClass kClass;

    /// When it was made, in UTC; absent is written as 2001-01-01.
    std::optional<Date> creationDateTime() const { return creationDateTime_; }
    void setCreationDateTime(std::optional<Date> date) { creationDateTime_ = date; }
    /// When it was last changed, in UTC; absent is written as 2001-01-01.
    std::optional<Date> modificationDateTime() const { return modificationDateTime_; }
    void setModificationDateTime(std::optional<Date> date) { modificationDateTime_ = date; }

    /// Time units a second.
    std::uint32_t timeScale() const { return timeScale_; }
    void setTimeScale(std::uint32_t scale) { timeScale_ = scale; }
    /// In units of the time scale.
    std::uint32_t duration() const { return duration_; }
    void setDuration(std::uint32_t duration) { duration_ = duration; }
    /// The raw field: a packed three-letter code, or a small number of the older scheme.
    std::uint16_t language() const { return language_; }
    void setLanguage(std::uint16_t language) { language_ = language; }
    /// The raw field: how the media may be degraded in playback.
    std::uint16_t quality() const { return quality_; }
    void setQuality(std::uint16_t quality) { quality_ = quality; }

private:
    struct Layout;

    std::optional<Date> creationDateTime_, modificationDateTime_;
    std::uint32_t timeScale_ = 0;
    std::uint32_t duration_ = 0;
    std::uint16_t language_ = 0;
    std::uint16_t quality_ = 0;
};

}  // namespace vexqt
