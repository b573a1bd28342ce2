#include "vexqt/atoms/headers/ApertureDimensionsAtom.h"

#include "vexqt/core/codecs.h"
#include "vexqt/core/full_atom.h"

namespace vexqt {

constinit const Field ApertureDimensionsAtom::kFields[4] = {
    versionWrittenAsZero,
    flagsNotRead,
    field<&ApertureDimensionsAtom::width_, UnsignedFixed1616>("width").in("pixels"),
    field<&ApertureDimensionsAtom::height_, UnsignedFixed1616>("height").in("pixels"),
};

constinit const Field ApertureDimensionsAtom::kFieldsWithoutFlags[4] = {
    versionWrittenAsZero,
    flagsDropped,
    field<&ApertureDimensionsAtom::width_, UnsignedFixed1616>("width").in("pixels"),
    field<&ApertureDimensionsAtom::height_, UnsignedFixed1616>("height").in("pixels"),
};

}  // namespace vexqt
