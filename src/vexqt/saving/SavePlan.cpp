#include "vexqt/saving/SavePlan.h"

#include "vexqt/saving/ExactWriting.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {

std::string_view textOf(SavePlan::Way way) {
    switch (way) {
        case SavePlan::Way::Nothing:
            return "nothing";
        case SavePlan::Way::Patch:
            return "patch";
        case SavePlan::Way::InOldPlace:
            return "in the old place";
        case SavePlan::Way::Move:
            break;
    }
    return "move";
}

namespace {

Bytes codeBytes(OSType code) {
    ByteWriter out;
    out.u32(code);
    return out.release();
}

Bytes sizeBytes(std::uint32_t size) { return codeBytes(size); }

/// The header of free space of that length, 8 bytes or more.
Bytes freeHeader(std::uint64_t length) {
    ByteWriter out;
    const bool isShort = length <= std::numeric_limits<std::uint32_t>::max();
    out.u32(isShort ? static_cast<std::uint32_t>(length) : 1);
    out.u32("free"_os);
    if (!isShort) out.u64(length);
    return out.release();
}

std::string quoted(OSType type) { return "'" + textFromCode(type) + "'"; }

std::string bytesAt(const FileRange& range) {
    return std::to_string(range.length) + " bytes at " + std::to_string(range.offset);
}

/// The path of an atom below a root; empty where it is not there.
std::string pathTo(const VexQTAtom& root, std::string path, const VexQTAtom* atom) {
    if (&root == atom) return path;
    for (std::size_t i = 0; i < root.children().size(); ++i) {
        const VexQTAtom& child = *root.children()[i];
        const auto ordinal = std::ranges::count_if(
            std::span(root.children()).first(i),
            [&](const auto& before) { return before->atomType() == child.atomType(); });
        std::string segment = path + "." + pathSegment(child.atomType());
        if (ordinal > 0) segment += "[" + std::to_string(ordinal) + "]";
        if (std::string found = pathTo(child, std::move(segment), atom); !found.empty())
            return found;
    }
    return {};
}

std::string rootPath(const VexQTAsset& asset, const VexQTAtom& root) {
    std::size_t ordinal = 0;
    for (const auto& before : asset.rootAtoms()) {
        if (before.get() == &root) break;
        if (before->atomType() == root.atomType()) ++ordinal;
    }
    std::string path = pathSegment(root.atomType());
    if (ordinal > 0) path += "[" + std::to_string(ordinal) + "]";
    return path;
}

}  // namespace

// MARK: What both forms share

void SavePlan::add(std::string_view id, Severity severity, std::optional<FileRange> range,
                   std::string message, std::string path) {
    findings_.push_back({id, severity, std::move(path), range, std::move(message)});
}

bool SavePlan::has(Severity severity) const {
    return std::ranges::count(findings_, severity, &Finding::severity) > 0;
}

void SavePlan::write(std::uint64_t offset, const SharedBytes& bytes) {
    if (bytes.size() > 0) change_.writes.push_back({offset, bytes});
}

/// The plan is good only for the bytes that the asset was read from.
void SavePlan::checkSource(const VexQTAsset& asset, File& file) {
    constexpr std::size_t kBlock = 1 << 20;
    Bytes block;
    for (const auto& root : asset.rootAtoms()) {
        const ByteView origin = root->origin().view();
        if (origin.empty()) continue;
        const Extent extent = root->extent();
        const std::uint64_t start = extent.start + extent.length - origin.size();
        for (std::size_t done = 0; done < origin.size(); done += kBlock) {
            const ByteView expected = origin.subspan(done, std::min(kBlock, origin.size() - done));
            block.resize(expected.size());
            std::error_code error;
            const std::size_t count = file.readAt(start + done, block, error);
            if (error) throw Error("cannot be read: " + error.message());
            if (count == expected.size() && std::ranges::equal(block, expected)) continue;

            const RootExtent* now = layout_.atomAt(extent.start);
            const bool isFreed = root->atomType() == "moov"_os && now != nullptr &&
                                 now->type == "free"_os && now->length == extent.length;
            const FileRange range = {extent.start, extent.length};
            if (isFreed) {
                add("read-again-first", Severity::Destroys, range,
                    "the movie was saved since it was read; read it again before saving",
                    rootPath(asset, *root));
            } else {
                add("file-changed", Severity::Destroys, range,
                    "the file is no longer what was read; read it again before saving",
                    rootPath(asset, *root));
            }
            return;
        }
    }
}

/// Puts the writes into the order of the file. Where two overlap the later one counts.
void SavePlan::finishChange() {
    std::vector<FileWrite> disjoint;
    for (auto later = change_.writes.rbegin(); later != change_.writes.rend(); ++later) {
        std::vector<FileWrite> pieces = {*later};
        for (const FileWrite& taken : disjoint) {
            std::vector<FileWrite> left;
            const FileRange over = {taken.offset, taken.bytes.size()};
            for (const FileWrite& piece : pieces) {
                const FileRange range = {piece.offset, piece.bytes.size()};
                if (!range.overlaps(over)) {
                    left.push_back(piece);
                    continue;
                }
                if (range.offset < over.offset)
                    left.push_back({range.offset, piece.bytes.first(static_cast<std::size_t>(
                                                      over.offset - range.offset))});
                if (over.end() < range.end()) {
                    const auto skipped = static_cast<std::size_t>(over.end() - range.offset);
                    left.push_back(
                        {over.end(), piece.bytes.part(skipped, piece.bytes.size() - skipped)});
                }
            }
            pieces = std::move(left);
        }
        disjoint.insert(disjoint.end(), pieces.begin(), pieces.end());
    }
    std::ranges::sort(disjoint, {}, &FileWrite::offset);
    change_.writes = std::move(disjoint);
}

// MARK: Surgical saving

class SavePlan::Surgical {
public:
    Surgical(SavePlan& plan, VexQTAsset& asset)
        : plan_(plan), asset_(asset), future_(plan.layout_) {}

    void make() {
        plan_.change_.newLength = future_.fileLength;
        for (const auto& root : asset_.rootAtoms()) addRoot(*root);
        for (const Extent& extent : asset_.extentsAsRead()) addIfRemoved(extent);
        for (const Problem& problem : asset_.problems()) {
            if (!problem.isStructural) continue;
            plan_.add("damaged", Severity::Note, {}, problem.message, problem.path);
        }
        const bool isAppended =
            flip_ && std::ranges::all_of(plan_.change_.writes, [&](const FileWrite& write) {
                return write.offset >= plan_.layout_.fileLength;
            });
        if (isAppended) {
            plan_.change_.flip = flip_;
        } else if (flip_) {
            plan_.change_.writes.push_back(*flip_);
        }
    }

private:
    void addRoot(VexQTAtom& root);
    void addIfRemoved(const Extent& extent);
    void addEdits(const VexQTAtom& root, const Surgery& surgery);
    void patch(std::uint64_t offset, const SharedBytes& was, const ByteRope& now);
    void place(const VexQTAtom& root, const SharedBytes& bytes);
    bool placeAt(std::size_t first, std::size_t last, const SharedBytes& bytes, OSType type);
    void move(const VexQTAtom& root, const SharedBytes& bytes, std::size_t index);
    bool closeOpenEnd();
    void gentlest(Way way) { plan_.way_ = std::max(plan_.way_, way); }

    SavePlan& plan_;
    VexQTAsset& asset_;
    FileLayout future_;  ///< The layout as it will be.
    std::optional<FileWrite> flip_;
};

void SavePlan::Surgical::addEdits(const VexQTAtom& root, const Surgery& surgery) {
    for (const Edit& edit : surgery.edits()) {
        std::string path = pathTo(root, rootPath(asset_, root), edit.atom);
        const std::string what = edit.property.empty()
                                     ? "children were added, removed or moved"
                                     : "'" + std::string(edit.property) + "' was edited";
        const Extent extent = edit.atom->extent();
        plan_.add("atom-changes", Severity::Note, FileRange{extent.start, extent.length}, what,
                  std::move(path));
    }
}

void SavePlan::Surgical::addRoot(VexQTAtom& root) {
    if (root.atomClass().type == "mdat"_os || root.atomClass().type == "free"_os) return;
    const SharedBytes& was = root.origin();
    Surgery surgery;
    const ByteRope now = surgery.written(root);
    addEdits(root, surgery);
    if (was.size() == 0) {
        place(root, now.flat());
        return;
    }
    if (now.parts().size() == 1 && now.length() == was.size() && was.offsetOf(now.parts().front()))
        return;  // Nobody edited it.

    const Extent extent = root.extent();
    const auto inFront = static_cast<std::size_t>(extent.length - was.size());
    if (now.length() == was.size()) {
        patch(extent.start + inFront, was, now);
        gentlest(Way::Patch);
        const SharedBytes flat = now.flat();
        plan_.newAtoms_.push_back({&root, extent.start + inFront, flat});
        return;
    }
    if (inFront == 0) {
        place(root, now.flat());
        return;
    }
    // The bytes of a root atom with an extended size begin with that size.
    ByteWriter whole;
    whole.u32(1);
    whole.u32(root.atomType());
    whole.u64(now.length() + inFront);
    for (const SharedBytes& part : now.parts()) whole.append(part.view());
    Bytes bytes = whole.release();
    bytes.erase(bytes.begin() + 16, bytes.begin() + 24);
    place(root, SharedBytes::copyOf(bytes));
}

void SavePlan::Surgical::addIfRemoved(const Extent& extent) {
    for (const auto& root : asset_.rootAtoms())
        if (root->extent().start == extent.start && root->extent().length == extent.length) return;
    plan_.write(extent.start + 4, SharedBytes::copyOf(codeBytes("free"_os)));
    plan_.add("atom-changes", Severity::Note, FileRange{extent.start, extent.length},
              "was removed and becomes free space");
    gentlest(Way::Patch);
}

/// Writes the runs of bytes that differ, where they lie.
void SavePlan::Surgical::patch(std::uint64_t offset, const SharedBytes& was, const ByteRope& now) {
    std::size_t position = 0;
    for (const SharedBytes& part : now.parts()) {
        const std::size_t start = position;
        position += part.size();
        if (was.offsetOf(part) == start) continue;
        const ByteView before = was.view().subspan(start, part.size());
        const ByteView after = part.view();
        std::size_t i = 0;
        while (i < after.size()) {
            if (before[i] == after[i]) {
                ++i;
                continue;
            }
            const std::size_t first = i;
            while (i < after.size() && before[i] != after[i]) ++i;
            plan_.write(offset + start + first, part.part(first, i - first));
        }
    }
}

/// Writes an atom over the atoms from first to last, which it or free space fills now, and makes
/// free space of what is left over. False where it does not fit.
bool SavePlan::Surgical::placeAt(std::size_t first, std::size_t last, const SharedBytes& bytes,
                                 OSType type) {
    const std::uint64_t start = future_.atoms[first].start;
    const std::uint64_t room = future_.atoms[last].end() - start;
    const bool isAtEnd = last + 1 == future_.atoms.size() && future_.end() == future_.fileLength;
    const bool isFiller = bytes.size() + 8 <= room && !(isAtEnd && first == last);
    if (!isFiller && bytes.size() != room && !isAtEnd) return false;

    plan_.write(start, bytes);
    std::vector<RootExtent> atoms = {{.type = type, .start = start, .length = bytes.size()}};
    if (isFiller) {
        const RootExtent filler = {
            .type = "free"_os, .start = atoms[0].end(), .length = room - bytes.size()};
        plan_.write(filler.start, SharedBytes::copyOf(freeHeader(filler.length)));
        atoms.push_back(filler);
    } else if (isAtEnd) {
        plan_.change_.newLength = future_.fileLength = atoms[0].end();
    }
    const auto begin = future_.atoms.begin();
    future_.atoms.erase(begin + static_cast<std::ptrdiff_t>(first),
                        begin + static_cast<std::ptrdiff_t>(last) + 1);
    future_.atoms.insert(future_.atoms.begin() + static_cast<std::ptrdiff_t>(first), atoms.begin(),
                         atoms.end());
    return true;
}

void SavePlan::Surgical::place(const VexQTAtom& root, const SharedBytes& bytes) {
    const OSType type = root.atomType();
    const RootExtent* old = future_.atomAt(root.extent().start);
    const bool isNew = root.origin().size() == 0 || old == nullptr;
    const std::size_t index =
        isNew ? future_.atoms.size() : static_cast<std::size_t>(old - future_.atoms.data());
    if (!isNew) {
        std::size_t last = index;
        while (last + 1 < future_.atoms.size() && future_.atoms[last + 1].isFreeSpace()) ++last;
        const bool isPlaced = placeAt(index, last, bytes, type);
        std::size_t first = index;
        while (first > 0 && future_.atoms[first - 1].isFreeSpace()) --first;
        if (isPlaced || (first < index && placeAt(first, last, bytes, type))) {
            gentlest(Way::InOldPlace);
            plan_.newAtoms_.push_back(
                {&root, future_.atoms[isPlaced ? index : first].start, bytes});
            return;
        }
    }
    const bool isBoundToItsPlace = type == "ftyp"_os || type == "moof"_os;
    if (isBoundToItsPlace && !isNew) {
        plan_.add("no-room", Severity::Destroys,
                  FileRange{root.extent().start, root.extent().length},
                  quoted(type) + " would need " + std::to_string(bytes.size()) +
                      " bytes and cannot be moved; no free space follows it",
                  rootPath(asset_, root));
        return;
    }
    move(root, bytes, index);
}

/// Gives an atom that reaches to the end of the file its real size, so that another may follow.
bool SavePlan::Surgical::closeOpenEnd() {
    RootExtent& last = future_.atoms.back();
    if (last.length <= std::numeric_limits<std::uint32_t>::max()) {
        plan_.write(last.start,
                    SharedBytes::copyOf(sizeBytes(static_cast<std::uint32_t>(last.length))));
        last.isOpenEnded = false;
        return true;
    }
    // Writers leave 8 bytes in front of media for just this.
    const std::size_t count = future_.atoms.size();
    if (count < 2 || future_.atoms[count - 2].length != 8) return false;
    const OSType inFront = future_.atoms[count - 2].type;
    if (inFront != "wide"_os && inFront != "free"_os && inFront != "skip"_os) return false;
    ByteWriter header;
    header.u32(1);
    header.u32(last.type);
    header.u64(last.length + 8);
    plan_.write(last.start - 8, SharedBytes::copyOf(header.view()));
    last = {
        .type = last.type, .start = last.start - 8, .headerLength = 16, .length = last.length + 8};
    future_.atoms.erase(future_.atoms.end() - 2);
    return true;
}

void SavePlan::Surgical::move(const VexQTAtom& root, const SharedBytes& bytes, std::size_t index) {
    const bool isMovie = root.atomType() == "moov"_os;
    const FileRange old = {root.extent().start, root.extent().length};
    if (!future_.atoms.empty() && future_.atoms.back().isOpenEnded && !closeOpenEnd()) {
        const RootExtent& last = future_.atoms.back();
        plan_.add("no-room", Severity::Destroys, FileRange{last.start, last.length},
                  quoted(last.type) +
                      " reaches to the end of the file and its size field is too "
                      "short for its size; nothing can be written behind it",
                  rootPath(asset_, root));
        return;
    }
    const auto hasType = [&](OSType type) {
        return std::ranges::count(future_.atoms, type, &RootExtent::type) > 0;
    };
    if (isMovie && (hasType("moof"_os) || hasType("sidx"_os))) {
        plan_.add("behind-fragments", Severity::Destroys, old,
                  "the movie would lie behind its fragments, where players do not find it",
                  rootPath(asset_, root));
    }
    const auto firstMedia = std::ranges::find(future_.atoms, "mdat"_os, &RootExtent::type);
    if (isMovie && firstMedia != future_.atoms.end() && old.length != 0 &&
        old.offset < firstMedia->start) {
        plan_.add("movie-no-longer-first", Severity::Changes, old,
                  "the movie lay in front of its media and will lie behind it: playing it from a "
                  "network will start later",
                  rootPath(asset_, root));
    }
    const std::uint64_t start = future_.end();
    if (start < future_.fileLength) {
        const FileRange left = {start, future_.fileLength - start};
        plan_.add("overwrites-atom", Severity::Changes, left,
                  bytesAt(left) + " behind the last atom are no atom and are written over");
    }
    plan_.write(start, bytes);
    plan_.change_.newLength = future_.fileLength =
        std::max(future_.fileLength, start + bytes.size());
    future_.atoms.push_back({.type = root.atomType(), .start = start, .length = bytes.size()});
    if (old.length != 0 && index < future_.atoms.size()) {
        const FileWrite freed = {old.offset + 4, SharedBytes::copyOf(codeBytes("free"_os))};
        if (flip_) {
            plan_.change_.writes.push_back(freed);
        } else {
            flip_ = freed;
        }
        future_.atoms[index].type = "free"_os;
    }
    plan_.newAtoms_.push_back({&root, start, bytes});
    gentlest(Way::Move);
}

// MARK: Exact saving

class SavePlan::Exact {
public:
    Exact(SavePlan& plan, VexQTAsset& asset) : plan_(plan), asset_(asset) {}
    void make();

private:
    void checkAtoms();
    void checkMovies();
    void checkPlace(const FileRange& newMovie);

    SavePlan& plan_;
    VexQTAsset& asset_;
};

void SavePlan::Exact::make() {
    checkAtoms();
    checkMovies();
    std::vector<VexQTAsset::InPlaceWrite> writes;
    try {
        writes = asset_.inPlaceWrites();
    } catch (const Error& error) {
        plan_.add("atom-refuses", Severity::Destroys, {}, error.message(), error.path());
        return;
    }
    plan_.change_.newLength = plan_.layout_.fileLength;
    std::size_t movies = 0;
    for (const auto& root : asset_.rootAtoms())
        if (dynamic_cast<const VexQTmoovAtom*>(root.get()) && root->atomType() == "moov"_os)
            ++movies;
    for (std::size_t i = 0; i < writes.size(); ++i) {
        const SharedBytes bytes = SharedBytes::copyOf(writes[i].bytes);
        plan_.write(writes[i].offset, bytes);
        const FileRange range = {writes[i].offset, bytes.size()};
        plan_.change_.newLength = std::max(plan_.change_.newLength, range.end());
        if (i < movies) continue;  // A header that frees an old movie.
        const VexQTAtom* movie = nullptr;
        for (const auto& root : asset_.rootAtoms())
            if (root->atomType() == "moov"_os) movie = root.get();
        plan_.newAtoms_.push_back({movie, range.offset, bytes});
        checkPlace(range);
        try {
            VexQTmoovAtom::initWithData(bytes.view(), nullptr, range.offset);
        } catch (const Error& error) {
            plan_.add("unreadable-after", Severity::Destroys, range,
                      "a strict reading of the new movie fails: " + error.message(), error.path());
        }
    }
    if (movies > 0 && plan_.newAtoms_.empty()) {
        plan_.add("movie-not-written", Severity::Destroys, {},
                  "there is no media data behind which a new movie is written; the old one would "
                  "become free space all the same");
    }
    plan_.way_ = writes.empty() ? Way::Nothing : Way::Move;
}

void SavePlan::Exact::checkAtoms() {
    for (const auto& root : asset_.rootAtoms()) {
        if (root->atomType() != "moov"_os) continue;
        for (Finding& finding : exactWritingFindings(*root, rootPath(asset_, *root)))
            plan_.findings_.push_back(std::move(finding));
    }
}

void SavePlan::Exact::checkMovies() {
    std::size_t movies = 0;
    for (const auto& root : asset_.rootAtoms()) {
        const auto* movie = dynamic_cast<const VexQTmoovAtom*>(root.get());
        if (movie == nullptr || movie->atomType() != "moov"_os) continue;
        ++movies;
        const Extent extent = movie->extent();
        const FileRange range = {extent.start, extent.length};
        const std::string path = rootPath(asset_, *root);
        if (extent.headerLength == 16) {
            plan_.add("movie-header-64bit", Severity::Destroys, range,
                      "the movie has a header of 16 bytes; the old one would be freed 8 bytes too "
                      "late and stay a movie of one unreadable size",
                      path);
        }
        if (movie->originalSize() > std::numeric_limits<std::uint32_t>::max()) {
            plan_.add("old-size-too-large", Severity::Destroys, range,
                      "the old movie is too large for the free header written over it", path);
        }
        const RootExtent* old = plan_.layout_.atomAt(extent.start);
        if (old != nullptr && old->isCut) {
            plan_.add("movie-cut-short", Severity::Destroys, range,
                      "the file ends inside the movie; what is missing would be missing for good",
                      path);
        }
    }
    if (movies > 1) {
        plan_.add("several-movies", Severity::Destroys, {},
                  "there are " + std::to_string(movies) +
                      " movies; all would become free space and only the last be written");
    }
    for (const RootExtent& atom : plan_.layout_.atoms) {
        if (atom.type == "mdat"_os && atom.isCut) {
            plan_.add("media-past-end", Severity::Changes, FileRange{atom.start, atom.length},
                      "the media claims to end past the end of the file; the new movie would be "
                      "written behind that, and zeros between");
        }
    }
    for (const Problem& problem : asset_.problems())
        if (problem.isStructural)
            plan_.add("damaged", Severity::Changes, {}, problem.message, problem.path);
}

void SavePlan::Exact::checkPlace(const FileRange& newMovie) {
    const auto isOldMovie = [&](const RootExtent& atom) { return atom.type == "moov"_os; };
    bool isFirstMedia = true;
    for (const RootExtent& atom : plan_.layout_.atoms) {
        const FileRange range = {atom.start, atom.length};
        if (range.overlaps(newMovie) && !isOldMovie(atom) && !atom.isFreeSpace()) {
            plan_.add("overwrites-atom", Severity::Destroys, range,
                      quoted(atom.type) + " of " + bytesAt(range) + " would be written over");
        }
        const bool endsInside = newMovie.end() > range.offset && newMovie.end() < range.end();
        if (endsInside) {
            plan_.add("stale-bytes", Severity::Changes,
                      FileRange{newMovie.end(), range.end() - newMovie.end()},
                      "the last " + std::to_string(range.end() - newMovie.end()) + " bytes of " +
                          quoted(atom.type) +
                          " would be left behind the new movie, where a header "
                          "is expected");
        }
        if (atom.type == "mdat"_os && isFirstMedia) {
            isFirstMedia = false;
            const auto movie = std::ranges::find_if(plan_.layout_.atoms, isOldMovie);
            if (movie != plan_.layout_.atoms.end() && movie->start < atom.start) {
                plan_.add("movie-no-longer-first", Severity::Changes,
                          FileRange{movie->start, movie->length},
                          "the movie lay in front of its media and will lie behind it: playing it "
                          "from a network will start later");
            }
        }
    }
    const bool isFragmented =
        std::ranges::count(plan_.layout_.atoms, "moof"_os, &RootExtent::type) > 0;
    if (isFragmented) {
        plan_.add("behind-fragments", Severity::Destroys, newMovie,
                  "the movie would lie behind its fragments, where players do not find it");
    }
}

// MARK: The plan

SavePlan SavePlan::of(VexQTAsset& asset, File& file, SaveForm form) {
    SavePlan plan(form);
    std::error_code error;
    plan.layout_ = FileLayout::of(file, error);
    if (error) throw Error("cannot be read: " + error.message());
    plan.change_.oldLength = plan.change_.newLength = plan.layout_.fileLength;
    plan.checkSource(asset, file);
    if (form == SaveForm::Surgical) {
        Surgical(plan, asset).make();
    } else {
        Exact(plan, asset).make();
    }
    plan.finishChange();
    return plan;
}

}  // namespace vexqt
