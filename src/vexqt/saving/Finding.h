#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vexqt {

enum class Severity {
    Note,     ///< Worth knowing.
    Changes,  ///< Something other than what was edited will be different.
    Destroys  ///< Something will be lost, or the movie will not play.
};

/// "note", "changes", "destroys".
std::string_view textOf(Severity severity);

struct ByteRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;

    std::uint64_t end() const { return offset + length; }
    bool overlaps(const ByteRange& other) const {
        return offset < other.end() && other.offset < end();
    }
    friend bool operator==(const ByteRange&, const ByteRange&) = default;
};

/// Something that a save would do, told before anything is written.
struct Finding {
    std::string_view id;  ///< Stable: "atom-changes", "overwrites-atom", …
    Severity severity = Severity::Note;
    std::string path;                ///< The atom, where it is about one.
    std::optional<ByteRange> range;  ///< In the file, where it is about a place.
    std::string message;             ///< A sentence for people.
};

}  // namespace vexqt
