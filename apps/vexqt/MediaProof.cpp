#include "apps/vexqt/MediaProof.h"

#include "apps/vexqt/ProgressLine.h"
#include "vexqt/platform/Digest.h"
#include "vexqt/saving/FileLayout.h"

namespace vexqt::cli {

namespace {

std::vector<MediaProof::Range> mediaIn(File& file, std::error_code& error) {
    std::vector<MediaProof::Range> ranges;
    for (const RootExtent& atom : FileLayout::of(file, error).atoms) {
        if (atom.type != "mdat"_os) continue;
        const std::string ordinal = "[" + std::to_string(ranges.size()) + "]";
        const std::uint64_t header = std::min<std::uint64_t>(atom.headerLength, atom.length);
        ranges.push_back({.path = "mdat" + (ranges.empty() ? "" : ordinal),
                          .range = {atom.start + header, atom.length - header}});
    }
    return ranges;
}

/// A file that has become too short has the digest of what is there.
std::string digestOf(File& file, const std::vector<MediaProof::Range>& ranges,
                     ProgressLine& progress, std::error_code& error) {
    constexpr std::size_t kWindow = std::size_t{1} << 20;
    std::uint64_t total = 0, done = 0;
    for (const auto& [path, range] : ranges) total += range.length;
    Digest digest;
    Bytes window;
    for (const auto& [path, range] : ranges) {
        for (std::uint64_t at = range.offset; at < range.end() && !error; at += window.size()) {
            window.resize(std::min<std::uint64_t>(kWindow, range.end() - at));
            window.resize(file.readAt(at, window, error));
            digest.add(window);
            done += window.size();
            progress.tell(done, total);
            if (window.empty()) break;
        }
    }
    return digest.hex();
}

}  // namespace

MediaProof::MediaProof(const std::filesystem::path& movie, Console& console, FileSystem& files) {
    ProgressLine progress(console, "reading the media");
    std::error_code error;
    const auto file = files.openForReading(movie, error);
    if (!error) ranges_ = mediaIn(*file, error);
    if (!error) before_ = digestOf(*file, ranges_, progress, error);
    if (error) throw Failure("the media cannot be read: " + error.message());
}

void MediaProof::readAgain(const std::filesystem::path& saved, Console& console) {
    ProgressLine progress(console, "reading the media again");
    std::error_code error;
    const auto file = systemFiles().openForReading(saved, error);
    if (!error) after_ = digestOf(*file, ranges_, progress, error);
    if (!error) return;
    after_.reset();
    whyNotAgain_ = error.message();
}

void MediaProof::requireSame() const {
    if (!whyNotAgain_.empty())
        throw Failure("the media cannot be read after the save: " + whyNotAgain_);
    if (after_ && after_ != before_)
        throw Failure("the media is not what it was before the save: its SHA-256 was " + before_ +
                      " and is " + *after_);
}

}  // namespace vexqt::cli
