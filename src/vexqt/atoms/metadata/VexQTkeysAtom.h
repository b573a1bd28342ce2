#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

/// The name of a kind of metadata items: "com.example.title" in the namespace 'mdta'.
class VEXQT_EXPORT VexQTKeyEntry : public Record {
public:
    VexQTKeyEntry() = default;
    /// An entry with these properties.
    VexQTKeyEntry(std::int64_t keyIndex, OSType nameSpace, std::optional<std::string> value)
        : index_(keyIndex), nameSpace_(nameSpace) {
        setValue(std::move(value));
    }

    /// The place that the key was read from, counted from 1. Never written: the place in the list
    /// is what counts.
    std::int64_t index() const { return index_; }
    void setIndex(std::int64_t index) { index_ = index; }
    /// What the key's name is unique in: 'mdta'.
    OSType nameSpace() const { return nameSpace_; }
    void setNameSpace(OSType nameSpace) { nameSpace_ = nameSpace; }
    /// The same as four characters.
    std::string nameSpaceString() const { return textFromCode(nameSpace_); }
    void setNameSpaceString(std::string_view text) { nameSpace_ = codeFromText(text); }
    /// ASCII; absent when there is none or it does not decode.
    const std::optional<std::string>& value() const {
        static constinit const std::optional<std::string> kNone;
        return value_ ? *value_ : kNone;
    }
    void setValue(std::optional<std::string> value) { value_.made() = std::move(value); }

    /// The entry as it lies in the file, without a text where the text is not ASCII.
    Bytes atomData() const;

    struct Layout;

private:
    std::int64_t index_ = 0;
    OSType nameSpace_ = kAnyType;
    // An entry of 8 bytes may have no text at all, and there may be millions.
    Rare<std::optional<std::string>> value_;
};

/// The keys that the items of keyed metadata are numbered by: an item's type is its key's place in
/// this list, counted from 1.
///
/// Changing the list leaves the items as they are; see keyed_items.h for changing both.
class VEXQT_EXPORT VexQTkeysAtom final : public AtomOf<VexQTkeysAtom> {
public:
    static const AtomClass kClass;

    /// In file order.
    const std::vector<VexQTKeyEntry>& keys() const { return keys_; }
    std::vector<VexQTKeyEntry>& keys() { return keys_; }
    void setKeys(std::vector<VexQTKeyEntry> keys) { keys_ = std::move(keys); }
    /// How many there are.
    std::size_t numberOfKeys() const { return keys_.size(); }

private:
    struct Layout;
    void decodeKeys(AtomReader& in);
    void encodeKeys(ByteWriter& out) const;

    std::vector<VexQTKeyEntry> keys_;
};

}  // namespace vexqt
