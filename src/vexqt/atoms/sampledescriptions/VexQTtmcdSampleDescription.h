#pragma once

#include "vexqt/atoms/sampledescriptions/TimecodeFields.h"

namespace vexqt {

/// The sample description of a timecode track: how it counts, and the name of its source.
class VEXQT_EXPORT VexQTtmcdSampleDescription final
    : public AtomOf<VexQTtmcdSampleDescription, TimecodeFields> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
    void decodeSource(AtomReader& in);
    void encodeSource(ByteWriter& out) const;
};

}  // namespace vexqt
