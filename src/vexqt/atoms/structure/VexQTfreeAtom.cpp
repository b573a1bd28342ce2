#include "vexqt/atoms/structure/VexQTfreeAtom.h"

namespace vexqt {

constinit const AtomClass VexQTfreeAtom::kClass = {
    .type = "free"_os,
    .className = "VexQTfreeAtom",
    .atomName = "Empty Space",
    .create = vexqt::create<VexQTfreeAtom>,
};

VexQTfreeAtom::VexQTfreeAtom() : VexQTfreeAtom(0, 0, nullptr) {}

VexQTfreeAtom::VexQTfreeAtom(std::uint64_t size, std::uint64_t offsetInFile, VexQTAtom* parent)
    : VexQTAtom(kClass) {
    setAtomSize(size);
    setOffsetInFile(offsetInFile);
    setParent(parent);
}

}  // namespace vexqt
