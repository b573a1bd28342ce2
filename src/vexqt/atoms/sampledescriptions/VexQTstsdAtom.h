#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The sample description table: one entry for every format that a track's samples have. The
/// sample-to-chunk table counts them from 1.
///
/// The entries are the atom's children. Their class goes by the media that the table lies in, not
/// by their own format, so it takes a handler reference that comes before the media information.
class VEXQT_EXPORT VexQTstsdAtom final : public AtomOf<VexQTstsdAtom> {
public:
    static const AtomClass kClass;

    /// The media type of the media that the table was read in; "????" outside of any.
    OSType mediaType() const { return mediaType_; }
    void setMediaType(OSType type) { mediaType_ = type; }

private:
    struct Layout;
    void decodeEntries(AtomReader& in);

    OSType mediaType_ = kAnyType;
};

}  // namespace vexqt
