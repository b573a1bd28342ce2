#pragma once

#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"

namespace vexqt {

/// The sample description of a closed-caption track: the common fields, and child atoms.
class VEXQT_EXPORT VexQTclcpSampleDescription final
    : public AtomOf<VexQTclcpSampleDescription, VexQTSampleDescription> {
public:
    static const AtomClass kClass;

    /// The six bytes that every other entry leaves out. More are cut off and fewer filled with
    /// zeros when they are written.
    const Bytes& reserved1() const { return reserved1_; }
    void setReserved1(Bytes bytes) { reserved1_ = std::move(bytes); }

private:
    struct Layout;
    void decodeChildAtoms(AtomReader& in);
    void encodeChildAtoms(ByteWriter& out) const;

    Bytes reserved1_ = Bytes(6);
};

}  // namespace vexqt
