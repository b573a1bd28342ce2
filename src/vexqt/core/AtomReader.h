#pragma once

#include "vexqt/core/bytes.h"

namespace vexqt {

class ReadContext;

/// Reads one atom. What it hands on to children and tables are parts of the atom's own bytes.
class AtomReader : public ByteReader {
public:
    AtomReader(const SharedBytes& bytes, std::size_t position, ReadContext& context)
        : ByteReader(bytes.view(), position), bytes_(bytes), context_(context) {}

    SharedBytes takeShared(std::uint64_t count) {
        const std::size_t start = position();
        return bytes_.part(start, take(count).size());
    }
    SharedBytes restShared() { return remaining() == 0 ? SharedBytes() : takeShared(remaining()); }

    ReadContext& context() const { return context_; }

private:
    const SharedBytes& bytes_;
    ReadContext& context_;
};

}  // namespace vexqt
