#include "vexqt/atoms/sampledescriptions/VexQTchanAtom.h"

#include "vexqt/core/ChildMaker.h"
#include "vexqt/core/ContainerAtom.h"
#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

// MARK: VexQTChannelDescription

namespace {

/// The bits of a single-precision number, those of one that is not a number too.
struct Float32 {
    static constexpr std::size_t width = 4;
    static float read(ByteReader& in) { return std::bit_cast<float>(in.u32()); }
    static void write(ByteWriter& out, float value) {
        out.u32(std::bit_cast<std::uint32_t>(value));
    }
};

constexpr std::size_t kDescriptionLength = 20;

}  // namespace

struct VexQTChannelDescription::Layout {
    using Atom = VexQTChannelDescription;
    static constexpr Field fields[] = {
        field<&Atom::channelLabel_, U32>("channelLabel"),
        field<&Atom::channelFlags_, Hex<U32>>("channelFlags"),
        field<&Atom::channelCoordinateX_, Float32>("channelCoordinateX"),
        field<&Atom::channelCoordinateY_, Float32>("channelCoordinateY"),
        field<&Atom::channelCoordinateZ_, Float32>("channelCoordinateZ"),
    };
    static_assert(wireWidth(fields) == kDescriptionLength);
};

constinit const AtomClass VexQTChannelDescription::kClass = {
    .type = kAnyType,
    .className = "VexQTChannelDescription",
    .atomName = "Channel Layout Entry",
    .nibName = "VexQTChannelDescription",
    .accepts = exactly(kDescriptionLength),
    .header = HeaderRule::None,
    .writtenHeader = WrittenHeader::None,
    .fields = Layout::fields,
    .create = create<VexQTChannelDescription>,
};

// MARK: VexQTchanAtom

struct VexQTchanAtom::Layout {
    using Atom = VexQTchanAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::channelLayoutTag_, Hex<U32>>("channelLayoutTag"),
        field<&Atom::channelBitmap_, Hex<U32>>("channelBitmap"),
        childCount,
        childAtomsReadBy<&Atom::decodeDescriptions>(),
        irregular<&Atom::decodeEmptyDescription, &Atom::encodeEmptyDescription>(),
        property<&Atom::appendEmptyChannelDescription_>("appendEmptyChannelDescription"),
    };
    static_assert(wireWidth(fields) == 16, "24 bytes less the header; descriptions follow");
};

VexQTchanAtom::VexQTchanAtom() {
    setVersion(0);
    setAtomSize(0);
}

/// As many descriptions as fit: of their count only whether it is 0 is asked.
void VexQTchanAtom::decodeDescriptions(AtomReader& in) {
    if (childCountBefore(in) == 0) return;
    ChildMaker maker(*this, in);
    while (in.remaining() >= kDescriptionLength)
        maker.add(&VexQTChannelDescription::kClass, kAnyType, kDescriptionLength,
                  {.parent = nullptr, .lineWhenNone = {}});
    in.rest();
}

/// What is left over here follows a count of 0.
void VexQTchanAtom::decodeEmptyDescription(AtomReader& in) {
    appendEmptyChannelDescription_ = in.remaining() > 0;
    in.rest();
}

void VexQTchanAtom::encodeEmptyDescription(ByteWriter& out) const {
    if (children().empty() && appendEmptyChannelDescription_) out.zeros(kDescriptionLength);
}

constinit const AtomClass VexQTchanAtom::kClass = {
    .type = "chan"_os,
    .className = "VexQTchanAtom",
    .atomName = "Channel Layout",
    .nibName = "VexQTchanAtom",
    .accepts = atLeast(24),
    .fields = Layout::fields,
    .create = create<VexQTchanAtom>,
};

}  // namespace vexqt
