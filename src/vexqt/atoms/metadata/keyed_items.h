// Keyed metadata: an item's code is the place of its key in the 'keys' beside the item list.
//
// The atoms themselves keep no such order: whoever changes a list of keys leaves every item's code
// as it is. What changes both together stands here.
#pragma once

#include "vexqt/atoms/metadata/VexQTMetadataItem.h"
#include "vexqt/atoms/metadata/VexQTdataAtom.h"
#include "vexqt/atoms/metadata/VexQTilstAtom.h"
#include "vexqt/atoms/metadata/VexQTkeysAtom.h"
#include "vexqt/atoms/metadata/VexQTmetaAtom.h"

namespace vexqt {

/// The namespace that keys of the common form stand in.
inline constexpr OSType kKeyNameSpace = "mdta"_os;

/// The keys that count for an item list: of its siblings the nearest, the earlier of two as near.
/// Null where there are none.
VEXQT_EXPORT VexQTkeysAtom* keysOfItems(const VexQTilstAtom& items);

/// The key of an item; null where its list has no keys, or none at that place.
VEXQT_EXPORT const VexQTKeyEntry* keyOfItem(const VexQTMetadataItem& item);

/// The first item of a list whose key has that text; null for none.
VEXQT_EXPORT VexQTMetadataItem* itemWithKey(const VexQTilstAtom& items, std::string_view key);

/// A UTF-8 text for an item to hold.
VEXQT_EXPORT std::unique_ptr<VexQTdataAtom> dataAtomWithText(std::string_view text);

/// Adds an item, and its key where that is new. What is missing of handler, keys and item list is
/// made. The sizes of all atoms above grow.
///
/// \throws ValueError where an item has the key's place already, the key is not ASCII, or the items
/// go by classic codes.
VEXQT_EXPORT VexQTMetadataItem& addKeyedItem(VexQTmetaAtom& metadata, OSType nameSpace,
                                             const std::string& key,
                                             std::unique_ptr<VexQTdataAtom> value);

/// Removes the key in that row and its items. The items of the keys behind it get their new places.
/// The sizes of all atoms above shrink.
///
/// \throws RangeError where there is no such row.
VEXQT_EXPORT void removeKey(VexQTkeysAtom& keys, std::size_t row);

}  // namespace vexqt
