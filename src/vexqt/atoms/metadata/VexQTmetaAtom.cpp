#include "vexqt/atoms/metadata/VexQTmetaAtom.h"

#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/atoms/metadata/VexQTilstAtom.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

static constexpr ChildRule kChildren[] = {
    {.cls = &VexQTkeysAtom::kClass},
    {.cls = &VexQTilstAtom::kClass},
    {.cls = &VexQThdlrAtom::kClass},
};

struct VexQTmetaAtom::Layout {
    using Atom = VexQTmetaAtom;
    static constexpr Field fields[] = {
        irregular<&Atom::decodeVersionAndFlags, &Atom::encodeVersionAndFlags>(),
        childAtoms,
    };
};

static constexpr std::size_t kVersionAndFlags = 4;

bool VexQTmetaAtom::isFullAtom() const {
    if (form_ != Form::OfParent) return form_ == Form::FullAtom;
    return parent() != nullptr && parent()->atomType() == "udta"_os;
}

/// Too short a full atom is read without its version, but is written with one.
void VexQTmetaAtom::decodeVersionAndFlags(AtomReader& in) {
    if (in.context().isTolerant() && isPlainlyInOtherForm(in)) {
        form_ = isFullAtom() ? Form::ChildrenAtOnce : Form::FullAtom;
        in.context().addProblem(offsetInFile(), isFullAtom()
                                                    ? "has a version and flags, which metadata has "
                                                      "in user data alone - read with them"
                                                    : "has no version and flags, which metadata "
                                                      "has in user data - read without them");
    }
    if (!isFullAtom() || in.position() + kVersionAndFlags >= in.length()) return;
    rows::readVersion(*this, in);
    rows::readFlags(*this, in);
}

void VexQTmetaAtom::encodeVersionAndFlags(ByteWriter& out) const {
    if (!isFullAtom()) return;
    rows::writeVersion(*this, out);
    rows::writeFlags(*this, out);
}

namespace {

enum class Child { None, Plausible, Handler };

/// What the bytes at an offset look like when they are taken for the first child.
Child childAt(ByteReader in, std::size_t offset) {
    in.seek(offset);
    if (in.remaining() < 8) return Child::None;
    const std::size_t available = in.remaining();
    const std::uint32_t size = in.u32();
    const OSType type = in.u32();
    if (size < 8 || size > available) return Child::None;
    if (type == VexQThdlrAtom::kClass.type) return Child::Handler;
    const std::string characters = textFromCode(type);
    const auto isPrintable = [](char c) { return c >= ' ' && c <= '~'; };
    return std::ranges::all_of(characters, isPrintable) ? Child::Plausible : Child::None;
}

}  // namespace

/// Whether the other form gives a better first child than the parent's: a handler, or any child
/// where the parent's form gives none.
bool VexQTmetaAtom::isPlainlyInOtherForm(const AtomReader& in) const {
    const Child atOnce = childAt(in, in.position());
    const Child behindVersion = childAt(in, in.position() + kVersionAndFlags);
    return isFullAtom() ? atOnce > behindVersion : behindVersion > atOnce;
}

constinit const AtomClass VexQTmetaAtom::kClass = {
    .type = "meta"_os,
    .className = "VexQTmetaAtom",
    .atomName = "Metadata",
    .header = HeaderRule::ReadZeroLeavesEight,
    .writtenHeader = WrittenHeader::AsHeld,
    .typeRule = TypeRule::AsHeld,
    .fields = Layout::fields,
    .children = kChildren,
    .create = create<VexQTmetaAtom>,
};

}  // namespace vexqt
