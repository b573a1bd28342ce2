#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/inspector/EditHandler.h"

namespace vexqt {

/// The edit that sets a property, without a text. Undoing it brings back every property that
/// setting this one changed: a new picture, for instance, drops the bytes of the old one.
///
/// Doing it for the first time throws what the atom throws.
EditHandler::Edit propertyEdit(VexQTAtom& atom, const std::string& key, const Value& value);

}  // namespace vexqt
