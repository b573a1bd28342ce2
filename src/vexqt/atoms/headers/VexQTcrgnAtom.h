#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The clipping region of a movie or a track.
///
/// Its size and its box are read with their bytes reversed and written as they are held, so an atom
/// that nobody edited is written with the bytes of these two reversed.
class VEXQT_EXPORT VexQTcrgnAtom final : public AtomOf<VexQTcrgnAtom> {
public:
    static const AtomClass kClass;

    /// In bytes, itself counted: 10 for a rectangle.
    std::uint16_t regionSize() const { return regionSize_; }
    void setRegionSize(std::uint16_t size) { regionSize_ = size; }
    /// The four sides of 16 bits as one number.
    std::uint64_t regionBoundaryBox() const { return regionBoundaryBox_; }
    void setRegionBoundaryBox(std::uint64_t sides) { regionBoundaryBox_ = sides; }
    /// What follows the box: none for a rectangle.
    const Bytes& regionData() const { return regionData_; }
    void setRegionData(Bytes data) { regionData_ = std::move(data); }

private:
    struct Layout;
    void decodeRegionData(AtomReader& in);
    void encodeRegionData(ByteWriter& out) const;

    std::uint16_t regionSize_ = 0;
    std::uint64_t regionBoundaryBox_ = 0;
    Bytes regionData_;
};

}  // namespace vexqt
