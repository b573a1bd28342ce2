#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// Free space at the top level of a file. Its payload is never loaded and never written.
class VEXQT_EXPORT VexQTfreeAtom final : public VexQTAtom {
public:
    static const AtomClass kClass;

    VexQTfreeAtom();
    /// Stands for bytes in the file: their number, header included, and where they begin.
    VexQTfreeAtom(std::uint64_t size, std::uint64_t offsetInFile, VexQTAtom* parent);

    void appendTo(ByteWriter&) override {}
};

}  // namespace vexqt
