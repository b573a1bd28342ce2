#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The scheme that protects a sample format.
class VEXQT_EXPORT VexQTschmAtom final : public AtomOf<VexQTschmAtom> {
public:
    static const AtomClass kClass;

    /// The version and the flags as one number.
    std::uint32_t reserved1() const { return reserved1_; }
    void setReserved1(std::uint32_t versionAndFlags) { reserved1_ = versionAndFlags; }
    /// The four-character code of the scheme: 'cenc'.
    OSType schemaType() const { return schemaType_; }
    void setSchemaType(OSType type) { schemaType_ = type; }
    /// The version of the scheme.
    std::uint32_t reserved2() const { return reserved2_; }
    void setReserved2(std::uint32_t version) { reserved2_ = version; }

private:
    struct Layout;

    std::uint32_t reserved1_ = 0;
    OSType schemaType_ = kAnyType;
    std::uint32_t reserved2_ = 0;
};

}  // namespace vexqt
