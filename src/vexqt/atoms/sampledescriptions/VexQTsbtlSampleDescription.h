#pragma once

#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

namespace vexqt {

/// The sample description of a subtitle track: a wrapper around the entry itself, which is its
/// first child. It writes nothing of its own.
class VEXQT_EXPORT VexQTsbtlSampleDescription final
    : public AtomOf<VexQTsbtlSampleDescription, VexQTSampleDescription> {
public:
    static const AtomClass kClass;

    /// Six bytes; neither read nor written.
    const Bytes& reserved1() const { return reserved1_; }
    void setReserved1(Bytes bytes) { reserved1_ = std::move(bytes); }

private:
    struct Layout;
    void readSizeAndFormatAhead(AtomReader& in);

    Bytes reserved1_ = Bytes(6);
};

}  // namespace vexqt
