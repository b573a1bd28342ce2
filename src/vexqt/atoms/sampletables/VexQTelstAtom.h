#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/table.h"

namespace vexqt {

/// One stretch of a track: how long it lasts, where in the media it begins and how fast it plays.
class VEXQT_EXPORT VexQTEditListEntry : public Record {
public:
    struct Layout;

    VexQTEditListEntry() = default;
    /// From the 12 bytes of one entry; null for any other number of bytes.
    static std::unique_ptr<VexQTEditListEntry> initWithData(ByteView data);
    /// The entry's 12 bytes.
    Bytes atomData() const;

    /// In units of the movie's time scale.
    std::uint32_t trackDuration() const { return trackDuration_; }
    void setTrackDuration(std::uint32_t duration) { trackDuration_ = duration; }
    /// In units of the media's time scale. An empty stretch has -1, held as 4294967295.
    std::uint32_t mediaTime() const { return mediaTime_; }
    void setMediaTime(std::uint32_t time) { mediaTime_ = time; }
    /// 1.0 is normal speed.
    double mediaRate() const { return mediaRate_; }
    void setMediaRate(double rate) { mediaRate_ = rate; }

private:
    std::uint32_t trackDuration_ = 0;
    std::uint32_t mediaTime_ = 0;
    double mediaRate_ = 0;
};

/// The edit list: which stretches of the media a track plays, one after another.
///
/// Only entries of 12 bytes are understood, whatever the version byte says.
class VEXQT_EXPORT VexQTelstAtom final : public AtomOf<VexQTelstAtom> {
public:
    static const AtomClass kClass;

    /// In the order in which they are played.
    const std::vector<VexQTEditListEntry>& editListEntries() const {
        return editListEntries_.rows();
    }
    std::vector<VexQTEditListEntry>& editListEntries() { return editListEntries_.rows(); }
    void setEditListEntries(std::vector<VexQTEditListEntry> entries) {
        editListEntries_.setRows(std::move(entries));
    }

private:
    struct Layout;

    Table<VexQTEditListEntry> editListEntries_;
};

}  // namespace vexqt
