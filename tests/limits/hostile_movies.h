// Movies that are made to cost as much as they can for their length.
#pragma once

#include <span>
#include <string_view>

#include "vexqt/platform/bytes_types.h"

namespace vexqt::testing {

struct HostileFamily {
    std::string_view name;
    /// A movie whose movie atom has about that many bytes.
    Bytes (*movie)(std::size_t length);
    /// Whether it is nothing but tables, which are kept as they lie.
    bool isTables = false;
    /// Whether strict reading raises.
    bool isBroken = false;
};
std::span<const HostileFamily> hostileFamilies();

/// A file type, and a movie atom with that payload.
Bytes movieOf(ByteView payload);

/// A movie of about that many bytes that is nothing but atoms inside each other.
Bytes nested(std::size_t length);

}  // namespace vexqt::testing
