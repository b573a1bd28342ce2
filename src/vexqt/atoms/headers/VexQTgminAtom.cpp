#include "vexqt/atoms/headers/VexQTgminAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

namespace {

/// The field is taken for the low half of a 16.16 number, so a balance of 1.0 is written as 0.
struct BalanceAsFractionOf1616 {
    static constexpr std::size_t width = 2;
    static constexpr NumberRange range = {0, 1};
    static double read(ByteReader& in) { return ValueCodecs::signedFixed1616ToDouble(in.u16()); }
    static void write(ByteWriter& out, double value) {
        out.u16(static_cast<std::uint16_t>(ValueCodecs::doubleToSignedFixed1616(value)));
    }
};

}  // namespace

struct VexQTgminAtom::Layout {
    using Atom = VexQTgminAtom;
    static constexpr Field fields[] = {
        versionKept,
        flagsKept,
        field<&Atom::graphicsMode_, Hex<U16>>("graphicsMode"),
        field<&Atom::opColor0_, U16>("opColor0"),
        field<&Atom::opColor1_, U16>("opColor1"),
        field<&Atom::opColor2_, U16>("opColor2"),
        field<&Atom::balance_, BalanceAsFractionOf1616>("balance"),
        reserved<2>(),
    };
    static_assert(wireWidth(fields) == 16, "24 bytes less the header");
};

constinit const AtomClass VexQTgminAtom::kClass = {
    .type = "gmin"_os,
    .className = "VexQTgminAtom",
    .atomName = "Base Media Information",
    .nibName = "VexQTgminAtom",
    .accepts = exactly(24),
    .fields = Layout::fields,
    .create = create<VexQTgminAtom>,
};

}  // namespace vexqt
