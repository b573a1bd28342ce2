#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// Media data at the top level of a file. Its payload is never loaded and never written.
class VEXQT_EXPORT VexQTmdatAtom final : public VexQTAtom {
public:
    static const AtomClass kClass;

    VexQTmdatAtom();
    /// Stands for bytes in the file: their number, header included, and where they begin.
    VexQTmdatAtom(std::uint64_t size, std::uint64_t offsetInFile, VexQTAtom* parent);

    void appendTo(ByteWriter&) override {}
};

}  // namespace vexqt
