#pragma once

#include <filesystem>

namespace vexqt::benchmarks {

/// Writes a movie with that many samples, whose tables are as long as tables can be: a run of its
/// own for every sample, a sync sample in every two, a chunk for every ten. About 24 bytes a sample
/// lie in the movie atom; the media data is a hole, which takes no room on most disks.
void writeBigMovie(const std::filesystem::path& path, std::uint32_t sampleCount);

}  // namespace vexqt::benchmarks
