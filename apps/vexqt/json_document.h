// Atoms and their values as JSON.
//
// Nothing here knows a class: an atom is what its tree, its properties and their tables say.
#pragma once

#include "apps/vexqt/JsonWriter.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/asset/VexQTAsset.h"

namespace vexqt::cli {

/// A whole movie, with its file as it was named on the command line.
void writeDocument(JsonWriter& json, std::string_view file, const VexQTAsset& asset);
/// An atom with all that is in it.
void writeAtom(JsonWriter& json, const VexQTAtom& atom);
/// A property, a row or a cell.
void writePlace(JsonWriter& json, const PropertyPlace& place);
/// One value of the kind that a field has.
void writeValue(JsonWriter& json, const Field& field, const Value& value);

/// What JSON has for a value, but a text without its quotes.
std::string bareText(const Field& field, const Value& value);

}  // namespace vexqt::cli
