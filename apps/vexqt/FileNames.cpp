#include "apps/vexqt/FileNames.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vexqt::cli {

FileNames::FileNames(const Arguments& arguments, const Console& console) : arguments_(arguments) {
    if (!arguments.filesFrom) return;
    isOwned_ = *arguments.filesFrom != "-";
    descriptor_ =
        isOwned_ ? ::open(arguments.filesFrom->c_str(), O_RDONLY | O_CLOEXEC) : console.input;
    if (descriptor_ < 0) error_ = errno;
}

FileNames::~FileNames() {
    if (isOwned_ && descriptor_ >= 0) ::close(descriptor_);
}

std::optional<std::string> FileNames::next() {
    if (given_ < arguments_.files.size()) return arguments_.files[given_++];
    std::optional<std::string> name = nextOfList();
    while (name && name->empty()) name = nextOfList();
    if (name == "-") name = "./-";  // The name of a file: standard input is no member of a list.
    return name;
}

std::optional<std::string> FileNames::nextOfList() {
    const char end = arguments_.areNamesZeroEnded ? '\0' : '\n';
    while (true) {
        const std::size_t found = read_.find(end, looked_);
        if (found != std::string::npos) {
            std::string name = read_.substr(taken_, found - taken_);
            taken_ = looked_ = found + 1;
            return name;
        }
        looked_ = read_.size();
        if (readMore()) continue;
        if (taken_ == read_.size()) return std::nullopt;
        std::string last = read_.substr(taken_);  // The last line may lack its end.
        taken_ = read_.size();
        return last;
    }
}

/// Whether there was more.
bool FileNames::readMore() {
    static constexpr std::size_t kStep = std::size_t{64} * 1024;
    if (descriptor_ < 0) return false;
    read_.erase(0, taken_);
    looked_ -= taken_;
    taken_ = 0;
    const std::size_t used = read_.size();
    read_.resize(used + kStep);
    ssize_t count = 0;
    do count = ::read(descriptor_, read_.data() + used, kStep);
    while (count < 0 && errno == EINTR);
    if (count < 0) error_ = errno;
    read_.resize(used + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return count > 0;
}

ExitStatus FileNames::end(Console& console) const {
    if (error_ == 0) return ExitStatus::Done;
    console.complain(*arguments_.filesFrom, std::generic_category().message(error_));
    return ExitStatus::Failed;
}

}  // namespace vexqt::cli
