// Movies from files that nobody vouches for, read by both readings and written by both writings.
//
// A strict reading ends with a tree or an Error and nothing else; a tolerant one with a tree. The
// two trees are the same as far as the strict one goes. A tree that nobody edited is written
// surgically with the bytes that it was read from, and exactly the same bytes twice.
#include <cstdlib>

#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/platform/log.h"
#include "vexqt/saving/Surgery.h"

namespace {

using namespace vexqt;

void require(bool holds) {
    if (!holds) std::abort();
}

std::optional<Bytes> exactBytes(VexQTAsset& asset) {
    try {
        return asset.assetData();
    } catch (const Error&) {
        return std::nullopt;
    }
}

std::string outlineOf(const VexQTAsset& asset) {
    std::string outline;
    for (const auto& root : asset.rootAtoms()) outline += root->description() + "\r\n";
    return outline;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isQuiet = [] {
        setLogSink([](std::string_view) {});
        return true;
    }();
    require(isQuiet);
    const ByteView bytes(data, size);
    const auto tolerant = VexQTAsset::initWithData(bytes, {.tolerant = true});
    for (const auto& root : tolerant->rootAtoms()) {
        if (root->origin().size() == 0) continue;
        Surgery surgery;
        const SharedBytes written = surgery.written(*root).flat();
        require(std::ranges::equal(written.view(), root->origin().view()));
        require(surgery.edits().empty());
    }
    const std::string outline = outlineOf(*tolerant);
    try {
        const auto strict = VexQTAsset::initWithData(bytes);
        // A size of 0 is nothing to the strict reading, and all the rest to the tolerant one.
        const bool hasEmptyRoot = std::ranges::any_of(
            strict->rootAtoms(), [](const auto& root) { return root->atomSize() == 0; });
        if (!hasEmptyRoot) require(outline.starts_with(outlineOf(*strict)));
        const auto once = exactBytes(*strict);
        if (once) require(exactBytes(*strict) == once);
    } catch (const Error&) {
    }
    return 0;
}
