#pragma once

#include <QString>
#include <optional>

#include "apps/inspector/ByteRange.h"
#include "vexqt/saving/AtomRows.h"

namespace vexqt::inspector_app {

/// Where the fields of one atom lie in the file.
class FieldPlaces {
public:
    explicit FieldPlaces(const VexQTAtom& atom) : atom_(atom) {}

    /// The bytes that a property was read from; absent for one that is not in the file.
    std::optional<ByteRange> of(const QString& key);
    /// Those of one entry of a list whose entries have one width.
    std::optional<ByteRange> ofEntry(const QString& list, quint64 entry);

private:
    const AtomAsRead* asRead();
    const Survey::Part* partOf(std::string_view key);
    ByteRange inFile(std::size_t start, std::size_t end) const;

    const VexQTAtom& atom_;
    std::optional<AtomAsRead> asRead_;
    bool isSurveyed_ = false;
};

}  // namespace vexqt::inspector_app
