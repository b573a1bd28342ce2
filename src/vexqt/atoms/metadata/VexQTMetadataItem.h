#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// A metadata item: the values of one key, or of one classic code such as 'trkn'.
class VEXQT_EXPORT VexQTMetadataItem final : public AtomOf<VexQTMetadataItem, ContainerAtom> {
public:
    static const AtomClass kClass;

    /// The key's number in decimal digits, or the four characters of a classic code.
    std::string atomTypeString() const override;
};

}  // namespace vexqt
