#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// Where media data lies: in the same file, or at the location that the payload tells. All kinds of
/// references, aliases and URLs alike, are of this class and keep their own type.
///
/// Its version byte is neither kept nor shown, and one with a payload is written without its
/// version and flags, behind a size that still counts them.
class VEXQT_EXPORT VexQTDataReference final : public AtomOf<VexQTDataReference> {
public:
    static const AtomClass kClass;

    VexQTDataReference() { keepUnknownDataFrom(0); }

    /// What the entry takes up by rights: 12 for a reference to the same file, else the payload
    /// and 8. The size field may say otherwise.
    std::uint64_t atomSize() const override;

private:
    struct Layout;
    void decodePayload(AtomReader& in);
    void encodePayload(ByteWriter& out) const;
};

/// The data references: the places that the sample descriptions of a track name by number.
///
/// The payload stays in the raw remainder as it was read, but the children are what is written.
class VEXQT_EXPORT VexQTdrefAtom final : public AtomOf<VexQTdrefAtom> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
    void decodeEntries(AtomReader& in);

    std::size_t entriesRead_ = 0;
};

}  // namespace vexqt
