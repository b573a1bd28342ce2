#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// How the colours of a picture are meant.
///
/// The range byte that newer files have at the end is dropped and not counted.
class VEXQT_EXPORT VexQTcolrAtom final : public AtomOf<VexQTcolrAtom> {
public:
    static const AtomClass kClass;

    /// 'nclc' or 'nclx' for indexes, 'prof' for a profile.
    OSType colorParameterType() const { return colorParameterType_; }
    void setColorParameterType(OSType type) { colorParameterType_ = type; }
    /// The primaries: 1 for high definition, 9 for wide gamut, 2 for unspecified.
    std::uint16_t primariesIndex() const { return primariesIndex_; }
    void setPrimariesIndex(std::uint16_t index) { primariesIndex_ = index; }
    /// The transfer function: 1 for high definition, 16 and 18 for high dynamic range.
    std::uint16_t transferFunctionIndex() const { return transferFunctionIndex_; }
    void setTransferFunctionIndex(std::uint16_t index) { transferFunctionIndex_ = index; }
    /// The matrix from red, green and blue to luma and chroma: 1 for high definition.
    std::uint16_t matrixIndex() const { return matrixIndex_; }
    void setMatrixIndex(std::uint16_t index) { matrixIndex_ = index; }

private:
    struct Layout;

    OSType colorParameterType_ = kAnyType;
    std::uint16_t primariesIndex_ = 0;
    std::uint16_t transferFunctionIndex_ = 0;
    std::uint16_t matrixIndex_ = 0;
};

}  // namespace vexqt
