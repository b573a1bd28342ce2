// An atom beside itself as it was read.
#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"

namespace vexqt {

/// An atom as it was read, empty atoms in the place of its children, and where its parts lie in its
/// bytes.
struct VEXQT_EXPORT AtomAsRead {
    /// Reads the atom again from the bytes that it was read from.
    explicit AtomAsRead(const VexQTAtom& atom);

    /// The bytes from an offset up to another, as far as they were there: rows are said to begin
    /// behind a header that bytes may lack.
    SharedBytes part(std::size_t start, std::size_t end) const {
        start = std::min(start, bytes.size());
        return bytes.part(start, std::clamp(end, start, bytes.size()) - start);
    }

    /// The same atom as it would be read if one of its rows had other bytes; null where its class
    /// would not take it.
    std::unique_ptr<VexQTAtom> withRow(const Survey::Part& part, ByteView rowBytes) const;

    SharedBytes bytes;                  ///< All that the atom was read from.
    Survey survey;                      ///< Where rows and children lie in them.
    std::unique_ptr<VexQTAtom> record;  ///< The atom as it was.
};

/// What a row's class writes for a record; absent where the row is not in the file.
VEXQT_EXPORT std::optional<Bytes> encodedRow(const Field& row, const Record& record);

/// The properties that a row of the class reads and writes: itself, or those that stand right
/// behind an irregular one.
VEXQT_EXPORT std::span<const Field> propertiesOf(const AtomClass& cls, const Field& row);

/// The name of a row for people: its own, or that of the property whose bytes it holds.
VEXQT_EXPORT std::string_view nameOfRow(const AtomClass& cls, const Field& row);

}  // namespace vexqt
