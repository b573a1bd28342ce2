#include "vexqt/atoms/headers/VexQTsmhdAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

namespace {

/// A negative number reads one lower than it was written: 0xFF80 reads as -1.5.
struct SignedFixed88 {
    static constexpr std::size_t width = 2;
    static constexpr NumberRange range = {-128, 128};
    static double read(ByteReader& in) { return ValueCodecs::signedFixed88ToDouble(in.u16()); }
    static void write(ByteWriter& out, double value) {
        out.u16(static_cast<std::uint16_t>(ValueCodecs::doubleToSignedFixed88(value)));
    }
};

}  // namespace

struct VexQTsmhdAtom::Layout {
    static constexpr Field fields[] = {
        versionKept,
        flagsNotRead,
        field<&VexQTsmhdAtom::balance_, SignedFixed88>("balance"),
        reserved<2>(),
    };
    static_assert(wireWidth(fields) == 8, "16 bytes less the header");
};

constinit const AtomClass VexQTsmhdAtom::kClass = {
    .type = "smhd"_os,
    .className = "VexQTsmhdAtom",
    .atomName = "Sound Media Information Header",
    .nibName = "VexQTsmhdAtom",
    .accepts = exactly(16),
    .fields = Layout::fields,
    .create = create<VexQTsmhdAtom>,
};

}  // namespace vexqt
