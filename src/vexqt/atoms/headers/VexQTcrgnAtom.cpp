#include "vexqt/atoms/headers/VexQTcrgnAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

namespace {

/// An integer that is read from its last byte to its first and written from its first to its last.
template <std::unsigned_integral T>
struct ReadReversed : Unsigned<T> {
    static T read(ByteReader& in) { return withBytesReversed(Unsigned<T>::read(in)); }
};
using U16ReadReversed = ReadReversed<std::uint16_t>;
using U64ReadReversed = ReadReversed<std::uint64_t>;

}  // namespace

struct VexQTcrgnAtom::Layout {
    using Atom = VexQTcrgnAtom;
    static constexpr Field fields[] = {
        field<&Atom::regionSize_, U16ReadReversed>("regionSize").in("bytes"),
        field<&Atom::regionBoundaryBox_, Hex<U64ReadReversed>>("regionBoundaryBox"),
        irregular<&Atom::decodeRegionData, &Atom::encodeRegionData>(),
        property<&Atom::regionData_>("regionData"),
    };
    static_assert(wireWidth(fields) == 10, "18 bytes less the header; the region follows");
};

void VexQTcrgnAtom::decodeRegionData(AtomReader& in) {
    const ByteView bytes = in.rest();
    regionData_.assign(bytes.begin(), bytes.end());
}

void VexQTcrgnAtom::encodeRegionData(ByteWriter& out) const { out.append(regionData_); }

constinit const AtomClass VexQTcrgnAtom::kClass = {
    .type = "crgn"_os,
    .className = "VexQTcrgnAtom",
    .atomName = "Clipping Region",
    .nibName = "VexQTcrgnAtom",
    .accepts = atLeast(18),
    .fields = Layout::fields,
    .create = create<VexQTcrgnAtom>,
};

}  // namespace vexqt
