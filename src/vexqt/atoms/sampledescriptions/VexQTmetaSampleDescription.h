#pragma once

#include "vexqt/atoms/sampledescriptions/TimecodeFields.h"

namespace vexqt {

/// The sample description of a timed-metadata track: the table of the keys that its samples use.
///
/// Its type is the format that it was read with. It knows neither its data reference nor what else
/// stands beside the key table, and it is written only while it has exactly one child.
class VEXQT_EXPORT VexQTmetaSampleDescription final
    : public AtomOf<VexQTmetaSampleDescription, TimecodeFields> {
public:
    static const AtomClass kClass;

    void appendTo(ByteWriter& out) override;

    /// The entry as it was read; it is not what is written.
    std::optional<Bytes> originalData() const;
    void setOriginalData(std::optional<Bytes> bytes);

private:
    struct Layout;
    void decodeVersion(AtomReader& in);
    void encodeDataReference(ByteWriter& out) const;
    void decodeKeyTables(AtomReader& in);
    void encodeKeyTable(ByteWriter& out) const;

    std::optional<SharedBytes> originalData_;
};

}  // namespace vexqt
