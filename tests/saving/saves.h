// Small movies, edits of them, and what saving the edits does to their files.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "testing/bytes.h"
#include "testing/files.h"
#include "vexqt/atoms/headers/VexQTmvhdAtom.h"
#include "vexqt/saving/SafeSave.h"

namespace vexqt::testing {

inline const Bytes kFileType = atom("ftyp"_os, {text("qt  "), u32(7), text("qt  ")});
inline const Bytes kMedia = atom("mdat"_os, {Bytes(100, 0xDA)});

inline Bytes header() {
    VexQTmvhdAtom mvhd;
    mvhd.setTimeScale(600);
    return mvhd.atomData();
}
/// A movie with a header and a filler of that payload.
inline Bytes movie(std::size_t filler) {
    return atom("moov"_os, {header(), atom("wide"_os, {Bytes(filler, 0x11)})});
}

using Editing = std::function<void(VexQTAsset&)>;

inline void setTimeScale(VexQTAsset& asset) {
    asset.moovAtom()->childWithType("mvhd"_os)->setValueForKey(90000, "timeScale");
}
inline void shrink(VexQTAsset& asset) { asset.moovAtom()->removeChildrenWithType("wide"_os); }
inline Editing grow(std::size_t by) {
    return [by](VexQTAsset& asset) {
        asset.moovAtom()->addChild(
            VexQTAtom::initWithData(atom("skip"_os, {Bytes(by - 8, 0x22)}), nullptr, 0));
    };
}
inline void leaveAlone(VexQTAsset&) {}

struct Saved {
    SaveResult result;
    Bytes before, after;
    std::string report;  ///< The findings' identifiers.

    bool has(std::string_view id) const {
        return std::ranges::count(result.plan.findings(), id, &Finding::id) > 0;
    }
};

inline Saved saved(ByteView bytes, const Editing& edit, SaveOptions options = {}) {
    const TemporaryFolder folder;
    const auto path = folder / "movie.mov";
    writeFile(path, bytes);
    std::error_code error;
    const auto asset = VexQTAsset::initWithURL(path, error, {.tolerant = true});
    edit(*asset);
    Saved all;
    all.before = Bytes(bytes.begin(), bytes.end());
    all.result = saveInPlace(*asset, options);
    all.after = readFile(path);
    for (const Finding& finding : all.result.plan.findings())
        all.report += std::string(finding.id) + ": " + finding.message + "\n";
    const auto entries = std::distance(std::filesystem::directory_iterator(folder.path()), {});
    EXPECT_EQ(entries, 1) << "nothing is left beside the movie";
    return all;
}

inline Bytes part(const Bytes& bytes, std::size_t from, std::size_t length) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(from + length)};
}

}  // namespace vexqt::testing
