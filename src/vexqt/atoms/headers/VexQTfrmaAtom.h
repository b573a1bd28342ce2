#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The format that the samples have behind a wrapper or their protection.
class VEXQT_EXPORT VexQTfrmaAtom final : public AtomOf<VexQTfrmaAtom> {
public:
    static const AtomClass kClass;

    /// The four-character code of the format: 'mp4a'.
    OSType format() const { return format_; }
    void setFormat(OSType format) { format_ = format; }

private:
    struct Layout;

    OSType format_ = kAnyType;
};

}  // namespace vexqt
