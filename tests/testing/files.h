// Folders that remove themselves, files as bytes, and the programs that tests call.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "vexqt/platform/bytes_types.h"

namespace vexqt::testing {

/// A folder of a test's own, removed with all it holds when the test ends.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

Bytes readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, ByteView bytes);

struct Outcome {
    int status = -1;  ///< The exit status; 128 and the signal's number after a signal.
    std::string output;
    std::string errors;
};
/// Runs a program to its end, without a shell.
Outcome run(const std::vector<std::string>& command, std::string_view input = {});

/// Makes a movie with ffmpeg's own test sources: the arguments stand before the file's name.
/// The test fails when ffmpeg does.
std::filesystem::path makeMovie(const TemporaryFolder& folder, const std::string& name,
                                const std::vector<std::string>& arguments);
/// The digest of all decoded frames and samples.
std::string decodedDigest(const std::filesystem::path& movie);
/// The digest of all packets as they lie in the file.
std::string packetDigest(const std::filesystem::path& movie);
/// What ffprobe prints of the entries, for instance "stream=width,height".
std::string probe(const std::filesystem::path& movie, const std::string& entries);

}  // namespace vexqt::testing
