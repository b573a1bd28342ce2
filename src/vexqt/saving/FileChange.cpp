#include "vexqt/saving/FileChange.h"

#include <limits>

namespace vexqt {

bool FileChange::isEmpty() const { return bytesWritten() == 0 && oldLength == newLength; }

std::string_view FileChange::flaw() const {
    std::uint64_t end = 0, covered = oldLength;
    for (const FileWrite& write : writes) {
        if (write.bytes.size() > std::numeric_limits<std::uint64_t>::max() - write.offset)
            return "a write ends past all offsets";
        if (write.offset < end) return "the writes are not in the order of their offsets";
        end = write.range().end();
        if (end > newLength) return "a write reaches past the new end of the file";
        if (write.offset <= covered && end > covered) covered = end;
        if (flip && write.offset < oldLength) return "a write lies before the old end of the file";
    }
    if (end < newLength && oldLength < newLength) return "nothing is written at the new end";
    if (!flip) return {};
    if (covered < newLength) return "what the file becomes longer by is not all written";
    if (newLength < oldLength) return "the file becomes shorter";
    if (flip->bytes.size() > kLongestFlip) return "too many bytes to be flipped";
    if (flip->offset > oldLength || flip->bytes.size() > oldLength - flip->offset)
        return "the flip does not lie in the old file";
    return {};
}

std::uint64_t FileChange::bytesWritten() const {
    std::uint64_t count = flip ? flip->bytes.size() : 0;
    for (const FileWrite& write : writes) count += write.bytes.size();
    return count;
}

std::vector<FileChange::Touched> FileChange::touched() const {
    std::vector<Touched> touched;
    const auto add = [&](const FileWrite& write) {
        if (write.bytes.size() != 0) touched.push_back({write.range(), write.bytes.view()});
    };
    if (flip) add(*flip);
    for (const FileWrite& write : writes) add(write);
    if (newLength < oldLength) touched.push_back({{newLength, oldLength - newLength}, {}});
    return touched;
}

}  // namespace vexqt
