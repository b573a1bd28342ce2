#include "vexqt/atoms/structure/VexQTmdatAtom.h"

namespace vexqt {

constinit const AtomClass VexQTmdatAtom::kClass = {
    .type = "mdat"_os,
    .className = "VexQTmdatAtom",
    .atomName = "Movie Data",
    .create = vexqt::create<VexQTmdatAtom>,
};

VexQTmdatAtom::VexQTmdatAtom() : VexQTmdatAtom(0, 0, nullptr) {}

VexQTmdatAtom::VexQTmdatAtom(std::uint64_t size, std::uint64_t offsetInFile, VexQTAtom* parent)
    : VexQTAtom(kClass) {
    setAtomSize(size);
    setOffsetInFile(offsetInFile);
    setParent(parent);
}

}  // namespace vexqt
