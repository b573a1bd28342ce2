#include "vexqt/atoms/metadata/keyed_items.h"

#include "vexqt/atoms/headers/VexQThdlrAtom.h"
#include "vexqt/platform/text.h"

namespace vexqt {

namespace {

template <class Atom>
Atom* firstChild(const VexQTAtom& holder) {
    for (const auto& child : holder.children())
        if (auto* atom = dynamic_cast<Atom*>(child.get())) return atom;
    return nullptr;
}

/// Adds a finished child to an atom, which grows by it.
template <class Atom>
Atom& adopt(VexQTAtom& holder, std::unique_ptr<Atom> child) {
    if (!child) throw InsertionError("an absent child");
    const std::size_t length = child->atomData().size();
    Atom& adopted = *child;
    child->setParent(&holder);
    holder.addChild(std::move(child));
    holder.increaseSizeBy(static_cast<std::int64_t>(length));
    return adopted;
}

/// Like any handler of keyed metadata, without a name.
std::unique_ptr<VexQThdlrAtom> keyedHandler() {
    auto handler = std::make_unique<VexQThdlrAtom>();
    handler->setVersion(0);
    handler->setComponentType(0);
    handler->setComponentSubType(kKeyNameSpace);
    handler->setComponentManufacturer(0);
    return handler;
}

VexQTkeysAtom& keysFor(VexQTmetaAtom& metadata) {
    if (auto* keys = firstChild<VexQTkeysAtom>(metadata)) return *keys;
    const auto* items = firstChild<VexQTilstAtom>(metadata);
    const auto* handler = firstChild<VexQThdlrAtom>(metadata);
    if ((items != nullptr && !items->children().empty()) ||
        (handler != nullptr && handler->componentSubType() != kKeyNameSpace))
        throw ValueError("the items of this metadata go by codes, not by keys");
    if (handler == nullptr) adopt(metadata, keyedHandler());
    auto keys = std::make_unique<VexQTkeysAtom>();
    keys->setVersion(0);
    return adopt(metadata, std::move(keys));
}

VexQTilstAtom& itemsFor(VexQTmetaAtom& metadata, const VexQTkeysAtom& keys) {
    for (const auto& child : metadata.children()) {
        auto* items = dynamic_cast<VexQTilstAtom*>(child.get());
        if (items != nullptr && keysOfItems(*items) == &keys) return *items;
    }
    return adopt(metadata, std::make_unique<VexQTilstAtom>());
}

/// The place of the key, counted from 1; one past the last where it is not there.
OSType placeOfKey(const VexQTkeysAtom& keys, OSType nameSpace, const std::string& key) {
    const auto found = std::ranges::find_if(keys.keys(), [&](const VexQTKeyEntry& entry) {
        return entry.nameSpace() == nameSpace && entry.value() == key;
    });
    return static_cast<OSType>(found - keys.keys().begin() + 1);
}

}  // namespace

VexQTkeysAtom* keysOfItems(const VexQTilstAtom& items) {
    if (items.parent() == nullptr) return nullptr;
    const auto& siblings = items.parent()->children();
    const auto self = std::ranges::find(siblings, &items, &std::unique_ptr<VexQTAtom>::get);
    VexQTkeysAtom* nearest = nullptr;
    std::ptrdiff_t distance = 0;
    for (auto sibling = siblings.begin(); sibling != siblings.end(); ++sibling) {
        auto* keys = dynamic_cast<VexQTkeysAtom*>(sibling->get());
        if (keys == nullptr) continue;
        const std::ptrdiff_t away = std::abs(sibling - self);
        if (nearest != nullptr && away >= distance) continue;
        nearest = keys;
        distance = away;
    }
    return nearest;
}

const VexQTKeyEntry* keyOfItem(const VexQTMetadataItem& item) {
    const auto* items = dynamic_cast<const VexQTilstAtom*>(item.parent());
    const VexQTkeysAtom* keys = items != nullptr ? keysOfItems(*items) : nullptr;
    const OSType place = item.atomType();
    if (keys == nullptr || place == 0 || place > keys->numberOfKeys()) return nullptr;
    return &keys->keys()[place - 1];
}

VexQTMetadataItem* itemWithKey(const VexQTilstAtom& items, std::string_view key) {
    for (const auto& child : items.children()) {
        auto* item = dynamic_cast<VexQTMetadataItem*>(child.get());
        const VexQTKeyEntry* entry = item != nullptr ? keyOfItem(*item) : nullptr;
        if (entry != nullptr && entry->value() == key) return item;
    }
    return nullptr;
}

std::unique_ptr<VexQTdataAtom> dataAtomWithText(std::string_view text) {
    VexQTdataAtom data;
    data.setDataType(1);
    data.setDataTypeString(std::string(VexQTDataAtomType_UTF8Text));
    data.setText(std::string(text));
    return VexQTdataAtom::initWithData(data.atomData(), nullptr, 0);
}

VexQTMetadataItem& addKeyedItem(VexQTmetaAtom& metadata, OSType nameSpace, const std::string& key,
                                std::unique_ptr<VexQTdataAtom> value) {
    if (!asciiFromText(key) || key.find('\0') != std::string::npos)
        throw ValueError("a key has ASCII characters alone");
    auto item = std::make_unique<VexQTMetadataItem>();
    adopt(*item, std::move(value));
    VexQTkeysAtom& keys = keysFor(metadata);
    VexQTilstAtom& items = itemsFor(metadata, keys);
    const OSType place = placeOfKey(keys, nameSpace, key);
    if (items.childWithType(place) != nullptr)
        throw ValueError("there is an item " + std::to_string(place) + " already");
    if (place > keys.numberOfKeys()) {
        const auto& added = keys.keys().emplace_back(place, nameSpace, key);
        keys.increaseSizeBy(static_cast<std::int64_t>(added.atomData().size()));
    }
    item->setAtomType(place);
    return adopt(items, std::move(item));
}

void removeKey(VexQTkeysAtom& keys, std::size_t row) {
    if (row >= keys.numberOfKeys() || keys.parent() == nullptr)
        throw RangeError("no key in that row", row, 1, keys.numberOfKeys());
    const auto place = static_cast<OSType>(row + 1);
    const auto last = static_cast<OSType>(keys.numberOfKeys());
    for (const auto& sibling : keys.parent()->children()) {
        auto* items = dynamic_cast<VexQTilstAtom*>(sibling.get());
        if (items == nullptr || keysOfItems(*items) != &keys) continue;
        while (const VexQTAtom* item = items->childWithType(place)) items->removeChild(item);
        for (const auto& item : items->children())
            if (item->atomType() > place && item->atomType() <= last)
                item->setAtomType(item->atomType() - 1);
    }
    auto& list = keys.keys();
    keys.increaseSizeBy(-static_cast<std::int64_t>(list[row].atomData().size()));
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(row));
    for (std::size_t i = row; i < list.size(); ++i)
        list[i].setIndex(static_cast<std::int64_t>(i + 1));
}

}  // namespace vexqt
