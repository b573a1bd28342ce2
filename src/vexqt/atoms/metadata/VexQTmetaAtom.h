#pragma once

#include "vexqt/core/ContainerAtom.h"

namespace vexqt {

/// Metadata: a handler that names the scheme, the keys and the items.
///
/// Below user data it is a full atom, with a version and flags in front of its children; anywhere
/// else the children come at once. Files from elsewhere have it the other way round. A tolerant
/// reading sees that and the atom is written as it was found.
class VEXQT_EXPORT VexQTmetaAtom final : public AtomOf<VexQTmetaAtom, ContainerAtom> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
    enum class Form { OfParent, FullAtom, ChildrenAtOnce };

    bool isFullAtom() const;
    bool isPlainlyInOtherForm(const AtomReader& in) const;
    void decodeVersionAndFlags(AtomReader& in);
    void encodeVersionAndFlags(ByteWriter& out) const;

    Form form_ = Form::OfParent;
};

}  // namespace vexqt
