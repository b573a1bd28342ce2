#include "vexqt/core/hex.h"

namespace vexqt {

std::string hexRepresentation(ByteView bytes) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
        text += ' ';
    }
    return text;
}

std::string asciiRepresentation(ByteView bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const std::uint8_t byte : bytes)
        text += byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.';
    return text;
}

std::optional<Bytes> dataFromHex(std::string_view) { return std::nullopt; }

}  // namespace vexqt
