// What is done about a change that was interrupted.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "vexqt/export.h"
#include "vexqt/platform/files.h"
#include "vexqt/saving/SaveFailure.h"

namespace vexqt {

/// What was done.
enum class Recovery {
    NothingToDo,  ///< No journal lies beside the movie.
    RolledBack,   ///< The movie is what it was before the interrupted save.
    Discarded,    ///< The journal said nothing about the movie and was removed.
    Refused,      ///< The movie was changed after the interruption; it and the journal stay.
    Failed,       ///< The movie and its journal are in need of recovery as before.
};

/// What was done about an interrupted change.
struct RecoveryResult {
    Recovery outcome = Recovery::NothingToDo;  ///< In one word.
    std::string text;                          ///< For people; says it all.
    std::filesystem::path journal;             ///< The journal that was found; empty for none.
    std::optional<SaveFailure> failure;        ///< Why, where it failed.
};

/// Whether a movie is recovered that somebody changed since.
enum class IfChanged {
    Refuse,
    /// Puts the old bytes back where they were, or gives up a journal that is damaged.
    RecoverAnyway,
};

/// The journal beside a movie, if there is one. It may be that of a save that goes on at this
/// moment.
VEXQT_EXPORT std::optional<std::filesystem::path> findJournal(FileSystem& files,
                                                              const std::filesystem::path& path,
                                                              std::error_code& error);

/// Ends what a save that was interrupted has begun. It may be interrupted itself and then be done
/// again.
VEXQT_EXPORT RecoveryResult recover(FileSystem& files, const std::filesystem::path& path,
                                    IfChanged ifChanged = IfChanged::Refuse);

}  // namespace vexqt
