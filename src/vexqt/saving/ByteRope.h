#pragma once

#include "vexqt/core/bytes.h"
#include "vexqt/export.h"

namespace vexqt {

/// A long run of bytes put together from parts of what was read and from new ones, without a copy
/// of either.
class VEXQT_EXPORT ByteRope {
public:
    /// A part that lies right behind the one before it, in the same block, becomes one with it.
    void append(const SharedBytes& part);
    /// Copies bytes and appends the copy.
    void append(ByteView newBytes) {
        if (!newBytes.empty()) append(SharedBytes::copyOf(newBytes));
    }
    /// Appends all parts of another, which is empty afterwards.
    void append(ByteRope&& rope);

    /// In bytes.
    std::uint64_t length() const { return length_; }
    /// From front to back.
    const std::vector<SharedBytes>& parts() const { return parts_; }
    /// All of it, copied into one block.
    SharedBytes flat() const;

private:
    std::vector<SharedBytes> parts_;
    std::uint64_t length_ = 0;
};

}  // namespace vexqt
