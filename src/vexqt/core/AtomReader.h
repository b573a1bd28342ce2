#pragma once

#include "vexqt/core/ReadContext.h"
#include "vexqt/core/bytes.h"

namespace vexqt {

/// Reads one atom. What it hands on to children and tables are parts of the atom's own bytes.
class AtomReader : public ByteReader {
public:
    /// Reads from a position on in the bytes of an atom, which outlive the reader.
    AtomReader(const SharedBytes& bytes, std::size_t position, ReadContext& context)
        : ByteReader(bytes.view(), position), bytes_(bytes), context_(context) {}

    /// The next bytes, as part of the atom. \throws RangeError where there are fewer.
    SharedBytes takeShared(std::uint64_t count) {
        const std::size_t start = position();
        return bytes_.part(start, take(count).size());
    }
    /// Everything up to the end, as part of the atom's bytes.
    SharedBytes restShared() { return remaining() == 0 ? SharedBytes() : takeShared(remaining()); }

    /// The reading that this is part of.
    ReadContext& context() const { return context_; }

    /// Tells a survey that an entry of a list was read from there to here, where entries have
    /// lengths of their own.
    void noteEntryFrom(std::size_t start) const {
        if (Survey* survey = context_.survey())
            survey->entries.push_back({.start = start, .end = position()});
    }

private:
    const SharedBytes& bytes_;
    ReadContext& context_;
};

}  // namespace vexqt
