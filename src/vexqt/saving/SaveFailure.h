#pragma once

#include <cstdint>
#include <string>
#include <system_error>

namespace vexqt {

/// Why a file was not changed, or not changed back.
struct SaveFailure {
    /// Why, for programs.
    enum class Reason {
        System,          ///< The system refused; the code says why.
        Busy,            ///< Somebody else has the file locked.
        Changed,         ///< The file is not, or no more, what it is expected to be.
        RecoveryNeeded,  ///< A journal lies beside the file.
        NotAsMeant,      ///< What was written did not read back as it was meant.
        RollBackFailed,  ///< And the old bytes are still to be put back, from the journal.
    };

    std::error_code code;  ///< The system's; none where it was not the system.
    /// What happened and how the movie is now, for people: "writing 512 bytes at 1032: No space
    /// left on device; the movie is as it was".
    std::string what;
    /// The bytes that it was about; none if it was about something else.
    std::uint64_t offset = 0, length = 0;
    Reason reason = Reason::System;  ///< In one word.
};

}  // namespace vexqt
