#include "vexqt/saving/Draft.h"

#include <unistd.h>

#include <new>

namespace vexqt {

namespace fs = std::filesystem;

Draft::Draft(FileSystem& files, const fs::path& target, const std::optional<FileIdentity>& original)
    : files_(files), target_(target) {
    std::error_code error;
    const auto there = files_.identityOf(target, error);
    check(error, "looking for " + target.string());
    if (!there) return;
    if (original && there->isSameFile(*original))
        throw SaveFailure{.code = std::make_error_code(std::errc::file_exists),
                          .what = "is the movie itself; save it in place"};
    if (!there->isRegular)
        throw SaveFailure{.code = std::make_error_code(std::errc::not_supported),
                          .what = "is no regular file"};
    target_ = files_.resolve(target, error);
    check(error, "finding " + target.string());
}

Draft::~Draft() {
    if (!isOurs_) return;
    try {
        std::error_code ignored;
        files_.remove(path_, ignored);
    } catch (const std::bad_alloc&) {
        // Files that take memory to be removed, such as those in memory.
    }
}

/// A name that another process, or one that was killed, has left here is passed over.
template <class Make>
void Draft::make(const std::string& doing, const Make& makeFile) {
    constexpr std::size_t kLongest = 100;
    constexpr int kMostTries = 100;
    std::string name = target_.filename().string();
    if (name.size() > kLongest) {
        std::size_t kept = kLongest;
        // A character of UTF-8 is kept or left as a whole.
        while (kept > 0 && (static_cast<unsigned char>(name[kept]) & 0xC0) == 0x80) --kept;
        name.resize(kept);
    }
    std::error_code error;
    for (int number = 0; number < kMostTries; ++number) {
        path_ = target_.parent_path() / ("." + name + ".vexqt-" + std::to_string(::getpid()) + "-" +
                                         std::to_string(number));
        file_ = makeFile(path_, error);
        isOurs_ = file_ != nullptr;
        if (file_ || error != std::errc::file_exists) break;
    }
    check(error, doing);
    named_.emplace(*file_, "the copy");
}

void Draft::create() {
    make("making a file beside " + target_.string(),
         [&](const fs::path& path, std::error_code& error) {
             return files_.create(path, IfExists::Refuse, error);
         });
}

void Draft::copy(const fs::path& from, const CopyProgress& progress) {
    make("copying " + from.string(), [&](const fs::path& path, std::error_code& error) {
        return files_.copy(from, path, progress, error);
    });
}

std::optional<std::string> Draft::finish() {
    named_->flush();
    // Made beforehand: a copy that has its name is a copy that was made.
    const fs::path folder = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
    std::error_code error;
    files_.rename(path_, target_, error);
    if (error) check(error, "giving the copy its name " + target_.string());
    isOurs_ = false;
    isFinished_ = true;
    files_.flushDirectory(folder, error);
    if (!error) return std::nullopt;
    return "flushing " + folder.string() + ": " + error.message() +
           "; if the power fails now, the copy may not have its name";
}

}  // namespace vexqt
