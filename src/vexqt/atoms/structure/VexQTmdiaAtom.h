#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// The media of a track: its time scale, its handler, and where its samples are.
class VEXQT_EXPORT VexQTmdiaAtom final : public AtomOf<VexQTmdiaAtom, ContainerAtom> {
public:
    static const AtomClass kClass;

    /// "????" for a media made in memory. One that is read has 0 until its handler has been read,
    /// then the handler's component subtype; of several handlers the last one decides.
    OSType mediaType() const { return mediaType_; }
    void setMediaType(OSType type) { mediaType_ = type; }

    /// Told by the media type: "Sound Media".
    std::string atomName() const override;

protected:
    void didDecodeChild(const VexQTAtom& child) override;

private:
    struct Layout;

    OSType mediaType_ = kAnyType;
};

}  // namespace vexqt
