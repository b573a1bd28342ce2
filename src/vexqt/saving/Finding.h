#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vexqt/export.h"
#include "vexqt/saving/FileChange.h"

namespace vexqt {

/// How bad a finding is.
enum class Severity {
    Note,     ///< Worth knowing.
    Changes,  ///< Something other than what was edited will be different.
    Destroys  ///< Something will be lost, or the movie will not play.
};

/// "note", "changes", "destroys".
VEXQT_EXPORT std::string_view textOf(Severity severity);

/// Something that a save would do, told before anything is written.
struct Finding {
    std::string_view id;                 ///< Stable: "atom-changes", "overwrites-atom", …
    Severity severity = Severity::Note;  ///< How bad it is.
    std::string path;                    ///< The atom, where it is about one.
    std::optional<FileRange> range;      ///< In the file, where it is about a place.
    std::string message;                 ///< A sentence for people.
};

}  // namespace vexqt
