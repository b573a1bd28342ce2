#include "vexqt/saving/ByteRope.h"

namespace vexqt {

void ByteRope::append(const SharedBytes& part) {
    if (part.size() == 0) return;
    length_ += part.size();
    if (!parts_.empty()) {
        if (const auto joined = parts_.back().joined(part)) {
            parts_.back() = *joined;
            return;
        }
    }
    parts_.push_back(part);
}

void ByteRope::append(ByteRope&& rope) {
    for (const SharedBytes& part : rope.parts_) append(part);
}

SharedBytes ByteRope::flat() const {
    if (parts_.size() == 1) return parts_.front();
    SharedBytes block(static_cast<std::size_t>(length_));
    auto next = block.fill();
    for (const SharedBytes& part : parts_) {
        std::ranges::copy(part.view(), next.begin());
        next = next.subspan(part.size());
    }
    return block;
}

}  // namespace vexqt
