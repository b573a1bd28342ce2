// The table of the keys that the samples of a timed-metadata track use, and its entries.
#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// A key of timed metadata: what its values are called in the samples, what they mean, and their
/// type.
class VEXQT_EXPORT VexQTmebxkeyEntry final : public Record {
public:
    VexQTmebxkeyEntry() = default;
    /// An entry with these properties; the text of key() is absent.
    VexQTmebxkeyEntry(std::uint32_t keyIndex, OSType nameSpace, std::optional<std::string> value,
                      std::uint64_t dataType)
        : index_(keyIndex), nameSpace_(nameSpace), value_(std::move(value)), dataType_(dataType) {}

    /// The code under which the key's values stand in the samples.
    std::uint32_t index() const { return index_; }
    void setIndex(std::uint32_t index) { index_ = index; }
    /// What the key's name is unique in: 'mdta'.
    OSType nameSpace() const { return nameSpace_; }
    void setNameSpace(OSType nameSpace) { nameSpace_ = nameSpace; }
    /// The same as four characters.
    std::string nameSpaceString() const { return ValueCodecs::stringWithOSType(nameSpace_); }
    void setNameSpaceString(std::string_view text) {
        nameSpace_ = ValueCodecs::OSTypeWithString(text);
    }
    /// The key's name within its namespace.
    const std::optional<std::string>& value() const { return value_; }
    void setValue(std::optional<std::string> value) { value_ = std::move(value); }
    /// The type's namespace in the high half, the type in the low one.
    std::uint64_t dataType() const { return dataType_; }
    void setDataType(std::uint64_t type) { dataType_ = type; }
    /// Neither read nor written.
    const std::optional<std::string>& key() const {
        static constinit const std::optional<std::string> kNone;
        return key_ ? *key_ : kNone;
    }
    void setKey(std::optional<std::string> key) { key_.made() = std::move(key); }

    /// The key's record as it lies in the table.
    Bytes keyData() const;

private:
    friend class VexQTmebxkeysAtom;
    struct Layout;

    std::uint32_t index_ = 0;
    OSType nameSpace_ = kAnyType;
    std::optional<std::string> value_;
    std::uint64_t dataType_ = 0;
    Rare<std::optional<std::string>> key_;
};

/// The key table. It is written in the natural order of the keys' names, whatever order it holds.
class VEXQT_EXPORT VexQTmebxkeysAtom final : public AtomOf<VexQTmebxkeysAtom> {
public:
    static const AtomClass kClass;

    /// In the order in which they were read.
    const std::vector<VexQTmebxkeyEntry>& keys() const { return keys_; }
    std::vector<VexQTmebxkeyEntry>& keys() { return keys_; }
    void setKeys(std::vector<VexQTmebxkeyEntry> keys) { keys_ = std::move(keys); }
    /// How many there are.
    std::size_t numberOfKeys() const { return keys_.size(); }

private:
    struct Layout;
    void decodeKeys(AtomReader& in);
    void encodeKeys(ByteWriter& out) const;

    std::vector<VexQTmebxkeyEntry> keys_;
};

}  // namespace vexqt
