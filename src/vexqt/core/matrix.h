// The row of an atom's matrix, which the base keeps for every class.
#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/core/codecs.h"

namespace vexqt {

/// The row of the matrix, in the form that a codec gives it.
template <class Codec>
constexpr Field matrixRow() {
    Field row = accessors<&VexQTAtom::matrix, &VexQTAtom::setMatrix>("matrix");
    row.width = Codec::width;
    row.unitWidth = 4;
    row.decode = [](Record& record, AtomReader& in) {
        static_cast<VexQTAtom&>(record).setMatrix(Codec::read(in));
    };
    row.encode = [](const Record& record, ByteWriter& out) {
        Codec::write(out, static_cast<const VexQTAtom&>(record).matrix());
    };
    return row;
}

}  // namespace vexqt
