// How much memory a program needs at most that does one thing with a movie.
#pragma once

#include <filesystem>
#include <string>

namespace vexqt::benchmarks {

/// Does one thing with a movie and gives the most memory that this process ever had, in bytes.
/// The thing is "open", "decode" or "json".
std::uint64_t peakHere(const std::string& thing, const std::filesystem::path& movie);
/// The same in a process of its own, which has done nothing else.
std::uint64_t peakOf(const std::string& thing, const std::filesystem::path& movie);

}  // namespace vexqt::benchmarks
