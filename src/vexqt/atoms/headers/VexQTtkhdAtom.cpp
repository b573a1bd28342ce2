#include "vexqt/atoms/headers/VexQTtkhdAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"
#include "vexqt/core/matrix.h"

namespace vexqt {

namespace {

/// Elements are rounded to single precision as they are read, unlike the movie header's.
struct TrackMatrix : MovieMatrix {
    static Matrix read(ByteReader& in) {
        Matrix matrix = MovieMatrix::read(in);
        for (double& element : matrix) element = static_cast<float>(element);
        return matrix;
    }
};

/// Unsigned 16.16, computed in single precision as it is read.
struct TrackDimension {
    static constexpr std::size_t width = 4;
    static constexpr NumberRange range = UnsignedFixed1616::range;
    static float read(ByteReader& in) {
        const std::uint32_t pattern = in.u32();
        return static_cast<float>(pattern >> 16) +
               static_cast<float>(pattern & 0xFFFF) * (1.0F / 65536.0F);
    }
    static void write(ByteWriter& out, float value) { UnsignedFixed1616::write(out, value); }
};

}  // namespace

struct VexQTtkhdAtom::Layout {
    using Atom = VexQTtkhdAtom;
    static constexpr Field fields[] = {
        versionWrittenAsZero,
        flagsKept,
        field<&Atom::creationDateTime_, MacDate>("creationDateTime"),
        field<&Atom::modificationDateTime_, MacDate>("modificationDateTime"),
        field<&Atom::trackID_, U32>("trackID"),
        reserved<4>(),
        field<&Atom::duration_, U32>("duration").in("movie time units"),
        reserved<8>(),
        field<&Atom::layer_, U16>("layer"),
        field<&Atom::alternateGroup_, U16>("alternateGroup"),
        field<&Atom::volume_, U16>("volume").in("1/256"),
        reserved<2>(),
        matrixRow<TrackMatrix>(),
        field<&Atom::trackWidth_, TrackDimension>("trackWidth").in("pixels"),
        field<&Atom::trackHeight_, TrackDimension>("trackHeight").in("pixels"),
    };
    static_assert(wireWidth(fields) == 84, "92 bytes less the header");
};

constinit const AtomClass VexQTtkhdAtom::kClass = {
    .type = "tkhd"_os,
    .className = "VexQTtkhdAtom",
    .atomName = "Track Header",
    .nibName = "VexQTtkhdAtom",
    .accepts = exactly(92),
    .fields = Layout::fields,
    .create = create<VexQTtkhdAtom>,
};

}  // namespace vexqt
