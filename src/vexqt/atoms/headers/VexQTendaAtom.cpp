#include "vexqt/atoms/headers/VexQTendaAtom.h"

#include "vexqt/core/codecs.h"

namespace vexqt {

namespace {

/// Any number but 0 reads as true, one in the wrong byte order too.
struct TrueWrittenAsOne {
    static constexpr std::size_t width = 2;
    static bool read(ByteReader& in) { return in.u16() != 0; }
    static void write(ByteWriter& out, bool value) { out.u16(value ? 1 : 0); }
};

}  // namespace

struct VexQTendaAtom::Layout {
    using Atom = VexQTendaAtom;
    static constexpr Field fields[] = {
        field<&Atom::littleEndian_, TrueWrittenAsOne>("littleEndian"),
    };
    static_assert(wireWidth(fields) == 2, "10 bytes less the header");
};

constinit const AtomClass VexQTendaAtom::kClass = {
    .type = "enda"_os,
    .className = "VexQTendaAtom",
    .atomName = "Endianness",
    .nibName = "VexQTendaAtom",
    .accepts = exactly(10),
    .fields = Layout::fields,
    .create = create<VexQTendaAtom>,
};

}  // namespace vexqt
