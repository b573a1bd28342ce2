#pragma once

#include <filesystem>

#include "apps/vexqt/commands.h"
#include "vexqt/platform/files.h"
#include "vexqt/saving/FileChange.h"

namespace vexqt::cli {

/// The digest of a movie's media before and after a save: of the bytes in its 'mdat' atoms, one
/// behind the other in the order of the file.
class MediaProof {
public:
    /// What one 'mdat' atom holds.
    struct Range {
        std::string path;  ///< "mdat", "mdat[1]"
        FileRange range;
    };

    /// Reads the media before the save.
    /// \throws Failure where that cannot be done.
    MediaProof(const std::filesystem::path& movie, Console& console,
               FileSystem& files = systemFiles());

    /// Reads the same ranges after it, in the movie or in the copy.
    void readAgain(const std::filesystem::path& saved, Console& console);
    /// \throws Failure unless the media is what it was.
    void requireSame() const;

    const std::vector<Range>& ranges() const { return ranges_; }
    const std::string& before() const { return before_; }
    /// Absent where there is nothing to be read after the save, or it cannot be.
    const std::optional<std::string>& after() const { return after_; }

private:
    std::vector<Range> ranges_;
    std::string before_;
    std::optional<std::string> after_;
    std::string whyNotAgain_;
};

}  // namespace vexqt::cli
