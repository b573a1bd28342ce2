#include "vexqt/saving/FileLayout.h"

namespace vexqt {

const RootExtent* FileLayout::atomAt(std::uint64_t start) const {
    const auto atom = std::ranges::lower_bound(atoms, start, {}, &RootExtent::start);
    return atom != atoms.end() && atom->start == start ? &*atom : nullptr;
}

FileLayout FileLayout::of(File& file, std::error_code& error) {
    FileLayout layout;
    layout.fileLength = file.size(error);
    std::uint64_t position = 0;
    while (!error && layout.fileLength - position >= 8) {
        std::array<std::uint8_t, 16> bytes{};
        const std::uint64_t there = layout.fileLength - position;
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), there));
        const std::size_t count = file.readAt(position, std::span(bytes).first(wanted), error);
        if (error) break;
        if (count < wanted) {  // What cannot be read is not free to be written over.
            error = std::make_error_code(std::errc::io_error);
            break;
        }
        ByteReader in(ByteView(bytes).first(count));
        RootExtent atom = {.start = position, .length = in.u32()};
        atom.type = in.u32();
        if (atom.length == 0) {
            atom.isOpenEnded = true;
            atom.length = there;
        } else if (atom.length == 1) {
            if (count < 16) break;
            atom.headerLength = 16;
            atom.length = in.u64();
        }
        if (atom.length < atom.headerLength) break;
        atom.isCut = atom.length > there;
        atom.length = std::min(atom.length, there);
        layout.atoms.push_back(atom);
        position = atom.end();
    }
    return layout;
}

}  // namespace vexqt
