#include "vexqt/platform/error.h"

#include <utility>

namespace vexqt {

Error::Error(const std::string& message)
    : std::runtime_error(message),
      texts_(
          std::make_shared<const Texts>(Texts{.message = message, .path = {}, .whole = message})) {}

void Error::enter(std::string_view segment, std::uint64_t offsetInFile) {
    Texts texts = *texts_;
    if (texts.path.empty()) {
        texts.path = segment;
        texts.offsetInFile = offsetInFile;
    } else {
        texts.path = std::string(segment) + "." + texts.path;
    }
    texts.whole = texts.path + " at " + std::to_string(texts.offsetInFile) + ": " + texts.message;
    texts_ = std::make_shared<const Texts>(std::move(texts));
}

RangeError::RangeError(std::uint64_t offset, std::uint64_t count, std::uint64_t length)
    : RangeError(std::to_string(count) + " bytes wanted at " + std::to_string(offset) + ", " +
                     std::to_string(length) + " there",
                 offset, count, length) {}

RangeError::RangeError(const std::string& message, std::uint64_t offset, std::uint64_t count,
                       std::uint64_t length)
    : Error(message), offset_(offset), count_(count), length_(length) {}

UndefinedKeyError::UndefinedKeyError(std::string_view key)
    : Error("no property " + std::string(key)) {}

ValueError::ValueError(std::string_view key, const std::string& message)
    : Error(std::string(key) + ": " + message) {}

}  // namespace vexqt
