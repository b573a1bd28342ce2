#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The dimensions of a track in one aperture mode. Its three classes differ in their flags alone.
class VEXQT_EXPORT ApertureDimensionsAtom : public VexQTAtom {
public:
    /// In pixels.
    double width() const { return width_; }
    void setWidth(double width) { width_ = width; }
    /// In pixels.
    double height() const { return height_; }
    void setHeight(double height) { height_ = height; }

protected:
    using VexQTAtom::VexQTAtom;

    /// The rows of version, flags, width and height.
    static const Field kFields[4];
    /// The same, but the flags are written as zeros whatever the atom's own are.
    static const Field kFieldsWithoutFlags[4];

private:
    double width_ = 0;
    double height_ = 0;
};

}  // namespace vexqt
