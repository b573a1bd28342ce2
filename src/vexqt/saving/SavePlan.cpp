#include "vexqt/saving/SavePlan.h"

#include <map>
#include <set>
#include <unordered_map>

#include "vexqt/asset/AtomPath.h"
#include "vexqt/saving/ExactWriting.h"
#include "vexqt/saving/NamedFile.h"
#include "vexqt/saving/ReadBack.h"
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

constexpr const char* kFileChanged =
    "the file is no longer what was read; read it again before saving";

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

/// The paths of some atoms, found in one walk; empty for those that are not there.
using Paths = std::unordered_map<const VexQTAtom*, std::string>;

void findPaths(const std::vector<std::unique_ptr<VexQTAtom>>& atoms, std::string& path,
               Paths& found) {
    std::unordered_map<OSType, std::size_t> ordinals;
    const std::size_t length = path.size();
    for (const auto& atom : atoms) {
        if (!path.empty()) path += '.';
        path += pathSegment(atom->atomType(), ordinals[atom->atomType()]++);
        if (const auto wanted = found.find(atom.get()); wanted != found.end())
            wanted->second = path;
        findPaths(atom->children(), path, found);
        path.resize(length);
    }
}

/// Where a root atom lay when the asset was read; nowhere for one that was put in since, whatever
/// that says of itself.
FileRange placeInFile(const VexQTAtom& root, const VexQTAsset& asset) {
    const Extent extent = root.extent();
    const auto read =
        std::ranges::lower_bound(asset.extentsAsRead(), extent.start, {}, &Extent::start);
    const bool isOfFile = read != asset.extentsAsRead().end() && read->start == extent.start &&
                          read->length == extent.length;
    return isOfFile ? FileRange{extent.start, extent.length} : FileRange();
}
bool isOfFile(const VexQTAtom& root, const VexQTAsset& asset) {
    return placeInFile(root, asset).length != 0;
}

/// The bytes that a root atom is decoded from: they begin 8 before the end of its header.
SharedBytes bytesToDecode(const SharedBytes& bytes) {
    const bool isExtended = bytes.size() >= 16 && ByteReader(bytes.view()).u32() == 1;
    return isExtended ? bytes.part(8, bytes.size() - 8) : bytes;
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

bool SavePlan::canBeForced() const {
    static constexpr std::string_view kNothingToWrite[] = {"atom-refuses", "file-changed",
                                                           "no-room", "read-again-first"};
    return std::ranges::none_of(findings_, [](const Finding& finding) {
        return finding.severity == Severity::Destroys &&
               std::ranges::count(kNothingToWrite, finding.id) > 0;
    });
}

/// Reads every new atom before it is written: what does not read as it was meant is told.
void SavePlan::checkNewAtoms(const VexQTAsset& asset) {
    for (const NewAtom& made : newAtoms_) {
        const FileRange range = {made.offset, made.bytes.size()};
        const std::string path = AtomPath::of(*made.atom, asset.rootAtoms());
        const SharedBytes bytes = bytesToDecode(made.bytes);
        const std::uint64_t offset = made.offset + made.bytes.size() - bytes.size();
        if (auto wrong = misreadingOf(*made.atom, bytes, offset, path, form_)) {
            add("unreadable-after", Severity::Destroys, range, std::move(wrong->message),
                std::move(wrong->path));
            continue;
        }
        const AtomClass& cls = made.atom->atomClass();
        auto wrong = strictFailure(cls, bytes, offset, path);
        if (!wrong) continue;
        // A surgical save is not to blame for what was so before.
        const SharedBytes& was = made.atom->origin();
        const bool wasUnreadable =
            was.size() != 0 && strictFailure(cls, was, made.atom->offsetInFile(), path);
        if (form_ == SaveForm::Surgical && wasUnreadable) continue;
        add("unreadable-after", Severity::Destroys, range,
            "a strict reading of what is written fails: " + wrong->message, std::move(wrong->path));
    }
}

void SavePlan::write(std::uint64_t offset, const SharedBytes& bytes) {
    change_.writes.push_back({offset, bytes});
}

/// The plan is good only for the bytes that the asset was read from.
void SavePlan::checkSource(const VexQTAsset& asset, File& file) {
    constexpr std::size_t kBlock = 1 << 20;
    Bytes block;
    for (const auto& root : asset.rootAtoms()) {
        const ByteView origin = root->origin().view();
        if (origin.empty() || !isOfFile(*root, asset)) continue;
        const Extent extent = root->extent();
        const std::uint64_t start = extent.start + extent.length - origin.size();
        for (std::size_t done = 0; done < origin.size(); done += kBlock) {
            const ByteView expected = origin.subspan(done, std::min(kBlock, origin.size() - done));
            block.resize(expected.size());
            std::error_code error;
            const FileRange piece = {start + done, block.size()};
            const std::size_t count = file.readAt(piece.offset, block, error);
            check(error, "reading " + bytesAt(piece), piece);
            if (count == expected.size() && std::ranges::equal(block, expected)) continue;

            const RootExtent* now = layout_.atomAt(extent.start);
            const bool isFreed = root->atomType() == "moov"_os && now != nullptr &&
                                 now->type == "free"_os && now->length == extent.length;
            const FileRange range = {extent.start, extent.length};
            if (isFreed) {
                add("read-again-first", Severity::Destroys, range,
                    "the movie was saved since it was read; read it again before saving",
                    AtomPath::of(*root, asset.rootAtoms()));
            } else {
                add("file-changed", Severity::Destroys, range, kFileChanged,
                    AtomPath::of(*root, asset.rootAtoms()));
            }
            return;
        }
    }
}

/// Puts the writes into the order of the file. Where two overlap the later one counts.
void SavePlan::finishChange() {
    std::map<std::uint64_t, FileWrite> taken;  // By offset; none reaches into the next.
    for (auto later = change_.writes.rbegin(); later != change_.writes.rend(); ++later) {
        FileWrite left = *later;
        while (left.bytes.size() > 0) {
            auto over = taken.upper_bound(left.offset);
            if (over != taken.begin() && std::prev(over)->second.range().end() > left.offset)
                --over;
            const bool isTaken = over != taken.end() && over->first <= left.offset;
            const std::uint64_t end = over == taken.end() ? left.range().end()
                                      : isTaken           ? over->second.range().end()
                                                          : over->first;
            const auto count = static_cast<std::size_t>(
                std::min<std::uint64_t>(left.bytes.size(), end - left.offset));
            if (!isTaken)
                taken.emplace(left.offset, FileWrite{left.offset, left.bytes.first(count)});
            left = {left.offset + count, left.bytes.part(count, left.bytes.size() - count)};
        }
    }
    change_.writes.clear();
    for (const auto& [offset, write] : taken) change_.writes.push_back(write);
}

// MARK: Surgical saving

class SavePlan::Surgical {
public:
    Surgical(SavePlan& plan, VexQTAsset& asset)
        : plan_(plan), asset_(asset), future_(plan.layout_) {}

    void make() {
        plan_.change_.newLength = future_.fileLength;
        for (const auto& root : asset_.rootAtoms()) addRoot(*root);
        addRemoved();
        for (const Problem& problem : asset_.problems()) {
            if (!problem.isStructural) continue;
            plan_.add("damaged", Severity::Note, {}, problem.message, problem.path);
        }
        checkMovies();
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
    void patchTypeOf(const VexQTAtom& leftInFile);
    void addRemoved();
    void addEdits(const Surgery& surgery);
    void checkMovies();
    void freeOtherMovies();
    void patch(std::uint64_t offset, const SharedBytes& was, const ByteRope& now);
    static SharedBytes wholeAtom(OSType type, const VexQTAtom& root, const ByteRope& now,
                                 std::size_t inFront);
    void place(const VexQTAtom& root, const SharedBytes& bytes);
    bool placeAt(std::size_t first, std::size_t last, const SharedBytes& bytes, OSType type);
    void move(const VexQTAtom& root, const SharedBytes& bytes, std::size_t index);
    bool closeOpenEnd(RootExtent& last);
    bool closeEnd(const VexQTAtom& root);
    void leaveNothingBehind(const FileRange& moved);
    std::string pathOf(const VexQTAtom& atom) const {
        return AtomPath::of(atom, asset_.rootAtoms());
    }
    void gentlest(Way way) { plan_.way_ = std::max(plan_.way_, way); }

    SavePlan& plan_;
    VexQTAsset& asset_;
    FileLayout future_;  ///< The layout as it will be.
    std::optional<FileWrite> flip_;
    bool firstMovieIsMoved_ = false;
};

void SavePlan::Surgical::addEdits(const Surgery& surgery) {
    Paths paths;
    for (const Edit& edit : surgery.edits()) paths[edit.atom];
    for (const VexQTAtom* atom : surgery.disagreeingSizes()) paths[atom];
    if (paths.empty()) return;
    std::string path;
    findPaths(asset_.rootAtoms(), path, paths);
    for (const Edit& edit : surgery.edits()) {
        std::string what = edit.property.empty()
                               ? "children were added, removed or moved"
                               : "'" + std::string(edit.property) + "' was edited";
        if (edit.changesMore)
            what +=
                ", and what stands with it is written anew: the file has it in another form than "
                "its class writes";
        const Extent extent = edit.atom->extent();
        plan_.add("atom-changes", edit.changesMore ? Severity::Changes : Severity::Note,
                  FileRange{extent.start, extent.length}, std::move(what), paths[edit.atom]);
    }
    for (const VexQTAtom* atom : surgery.disagreeingSizes()) {
        const Extent extent = atom->extent();
        plan_.add("size-disagrees", Severity::Note, FileRange{extent.start, extent.length},
                  "its size field does not tell its " + std::to_string(extent.length) +
                      " bytes; it grows or shrinks by as much as they do",
                  paths[atom]);
    }
}

void SavePlan::Surgical::checkMovies() {
    std::size_t movies = 0;
    for (const auto& root : asset_.rootAtoms()) {
        const RootExtent* old = plan_.layout_.atomAt(root->extent().start);
        if (root->atomType() != "moov"_os) continue;
        ++movies;
        if (old == nullptr || !old->isCut || root->origin().size() == 0) continue;
        plan_.add("movie-cut-short", Severity::Note, FileRange{old->start, old->length},
                  "the file ends inside the movie; what is there of it stays", pathOf(*root));
    }
    if (movies < 2) return;
    if (firstMovieIsMoved_) {
        freeOtherMovies();
    } else {
        plan_.add("several-movies", Severity::Note, {},
                  "there are " + std::to_string(movies) + " movies; players take the first");
    }
}

/// Players take the movie that comes first, so behind others the first one would not be it any
/// more. A move that was killed before it counted leaves such another one, whole and not counting.
void SavePlan::Surgical::freeOtherMovies() {
    for (const auto& root : asset_.rootAtoms()) {
        const FileRange range = placeInFile(*root, asset_);
        const bool isOther = root->atomType() == "moov"_os && root.get() != asset_.moovAtom();
        if (!isOther || range.length == 0) continue;
        const bool isEdited = std::ranges::count(plan_.newAtoms_, root.get(), &NewAtom::atom) > 0;
        if (isEdited) {
            plan_.add("several-movies", Severity::Destroys, range,
                      "another movie was edited too, and the first would be written behind it: "
                      "only one of them can come first",
                      pathOf(*root));
            continue;
        }
        plan_.write(range.offset + 4, SharedBytes::copyOf(codeBytes("free"_os)));
        plan_.add("several-movies", Severity::Changes, range,
                  "another movie, which players do not take, becomes free space: the first one "
                  "will lie behind it",
                  pathOf(*root));
    }
}

void SavePlan::Surgical::addRoot(VexQTAtom& root) {
    if (root.atomClass().type == "mdat"_os || root.atomClass().type == "free"_os) return;
    if (root.isLeftInFile()) {
        patchTypeOf(root);
        return;
    }
    const SharedBytes& was = root.origin();
    Surgery surgery;
    ByteRope now;
    try {
        now = surgery.written(root);
    } catch (const Error& error) {
        const Extent extent = root.extent();
        plan_.add("atom-refuses", Severity::Destroys, FileRange{extent.start, extent.length},
                  "cannot be written: " + error.message(), error.path());
        return;
    }
    addEdits(surgery);
    if (was.size() == 0 || !isOfFile(root, asset_)) {
        place(root, now.flat());
        return;
    }
    if (surgery.edits().empty()) return;

    const Extent extent = root.extent();
    const auto inFront = static_cast<std::size_t>(extent.length - was.size());
    const RootExtent* there = plan_.layout_.atomAt(extent.start);
    const bool isTypeEdited = std::ranges::any_of(surgery.edits(), [&](const Edit& edit) {
        return edit.atom == &root && edit.property == "type";
    });
    const OSType type = isTypeEdited || there == nullptr ? root.atomType() : there->type;
    const SharedBytes whole = wholeAtom(type, root, now, inFront);
    if (now.length() == was.size()) {
        if (isTypeEdited && inFront != 0)
            plan_.write(extent.start + 4, SharedBytes::copyOf(codeBytes(type)));
        patch(extent.start + inFront, was, now);
        gentlest(Way::Patch);
        plan_.newAtoms_.push_back({&root, extent.start, whole});
        return;
    }
    place(root, whole);
}

/// All that can be edited of an atom whose bytes were not read. It must still be where it was.
void SavePlan::Surgical::patchTypeOf(const VexQTAtom& leftInFile) {
    const Extent extent = leftInFile.extent();
    const RootExtent* there = plan_.layout_.atomAt(extent.start);
    if (there == nullptr || there->length != extent.length) {
        plan_.add("file-changed", Severity::Destroys, FileRange{extent.start, extent.length},
                  kFileChanged, pathOf(leftInFile));
        return;
    }
    if (there->type == leftInFile.atomType()) return;
    plan_.write(extent.start + 4, SharedBytes::copyOf(codeBytes(leftInFile.atomType())));
    plan_.add("atom-changes", Severity::Note, FileRange{extent.start, extent.length},
              "'type' was edited", pathOf(leftInFile));
    gentlest(Way::Patch);
}

/// The bytes of a root atom with an extended size begin with that size: the first 8 bytes of its
/// header are put in front of them.
SharedBytes SavePlan::Surgical::wholeAtom(OSType type, const VexQTAtom& root, const ByteRope& now,
                                          std::size_t inFront) {
    if (inFront == 0) return now.flat();
    ByteWriter whole;
    whole.u32(1);
    whole.u32(type);
    const bool hasSameSize = now.length() == root.origin().size();
    if (!hasSameSize) whole.u64(now.length() + inFront);
    std::size_t skipped = hasSameSize ? 0 : sizeof(std::uint64_t);
    for (const SharedBytes& part : now.parts()) {
        const std::size_t count = std::min(skipped, part.size());
        whole.append(part.view().subspan(count));
        skipped -= count;
    }
    return SharedBytes::copyOf(whole.view());
}

void SavePlan::Surgical::addRemoved() {
    std::set<std::pair<std::uint64_t, std::uint64_t>> kept;
    for (const auto& root : asset_.rootAtoms())
        kept.emplace(root->extent().start, root->extent().length);
    for (const Extent& extent : asset_.extentsAsRead()) {
        if (kept.contains({extent.start, extent.length})) continue;
        plan_.write(extent.start + 4, SharedBytes::copyOf(codeBytes("free"_os)));
        plan_.add("atom-changes", Severity::Note, FileRange{extent.start, extent.length},
                  "was removed and becomes free space");
        gentlest(Way::Patch);
    }
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
    const bool isNew = old == nullptr || !isOfFile(root, asset_);
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
                  pathOf(root));
        return;
    }
    move(root, bytes, index);
}

/// Gives an atom that reaches to the end of the file its real size, so that another may follow.
bool SavePlan::Surgical::closeOpenEnd(RootExtent& last) {
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

/// Sees to it that readers find what is written behind the last atom.
bool SavePlan::Surgical::closeEnd(const VexQTAtom& root) {
    if (future_.atoms.empty()) return true;
    RootExtent& last = future_.atoms.back();
    const FileRange range = {last.start, last.length};
    if (last.isOpenEnded && !closeOpenEnd(last)) {
        plan_.add("no-room", Severity::Destroys, range,
                  quoted(last.type) +
                      " reaches to the end of the file and its size field is too short for its "
                      "size; nothing can be written behind it",
                  pathOf(root));
        return false;
    }
    if (!last.isCut) return true;
    ByteWriter size;
    if (last.headerLength == 16) {
        size.u64(last.length);
    } else {
        size.u32(static_cast<std::uint32_t>(last.length));
    }
    plan_.write(last.start + (last.headerLength == 16 ? 8 : 0), SharedBytes::copyOf(size.view()));
    last.isCut = false;
    plan_.add("media-past-end", Severity::Changes, range,
              quoted(last.type) + " claims to end past the end of the file; its size becomes the " +
                  std::to_string(last.length) + " bytes that are there");
    return true;
}

/// What is left of bytes that were no atom, behind one that was written over their beginning,
/// becomes free space where it has room for a header, and goes where it has none.
void SavePlan::Surgical::leaveNothingBehind(const FileRange& moved) {
    if (moved.end() >= future_.fileLength) {
        plan_.change_.newLength = future_.fileLength = moved.end();
        return;
    }
    const std::uint64_t left = future_.fileLength - moved.end();
    if (left < 8) {
        plan_.change_.newLength = future_.fileLength = moved.end();
        return;
    }
    plan_.write(moved.end(), SharedBytes::copyOf(freeHeader(left)));
    future_.atoms.push_back({.type = "free"_os,
                             .start = moved.end(),
                             .headerLength = freeHeader(left).size(),
                             .length = left});
}

void SavePlan::Surgical::move(const VexQTAtom& root, const SharedBytes& bytes, std::size_t index) {
    const bool isMovie = root.atomType() == "moov"_os;
    const FileRange old = placeInFile(root, asset_);
    if (!closeEnd(root)) return;
    if (&root == asset_.moovAtom()) firstMovieIsMoved_ = old.length != 0;
    const auto hasType = [&](OSType type) {
        return std::ranges::count(future_.atoms, type, &RootExtent::type) > 0;
    };
    if (isMovie && (hasType("moof"_os) || hasType("sidx"_os))) {
        plan_.add("behind-fragments", Severity::Destroys, old,
                  "the movie would lie behind its fragments, where players do not find it",
                  pathOf(root));
    }
    const auto firstMedia = std::ranges::find(future_.atoms, "mdat"_os, &RootExtent::type);
    if (isMovie && firstMedia != future_.atoms.end() && old.length != 0 &&
        old.offset < firstMedia->start) {
        plan_.add("movie-no-longer-first", Severity::Changes, old,
                  "the movie lay in front of its media and will lie behind it: playing it from a "
                  "network will start later",
                  pathOf(root));
    }
    const std::uint64_t start = future_.end();
    if (start < future_.fileLength) {
        const FileRange left = {start, future_.fileLength - start};
        plan_.add("overwrites-atom", Severity::Changes, left,
                  bytesAt(left) + " behind the last atom are no atom and are written over");
    }
    plan_.write(start, bytes);
    future_.atoms.push_back({.type = root.atomType(), .start = start, .length = bytes.size()});
    leaveNothingBehind({start, bytes.size()});
    if (old.length != 0) {
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
    void checkBytesBehindTheLastAtom(const FileRange& newMovie);
    std::string pathOf(const VexQTAtom& atom) const {
        return AtomPath::of(atom, asset_.rootAtoms());
    }

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
        for (Finding& finding : exactWritingFindings(*root, pathOf(*root)))
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
        const std::string path = pathOf(*root);
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
        if (atom.type == "mdat"_os && atom.isOpenEnded) {
            plan_.add("media-past-end", Severity::Destroys, FileRange{atom.start, atom.length},
                      "the media has a size of 0, so that it reaches to the end of the file: the "
                      "new movie behind it would be taken for a part of it");
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
    checkBytesBehindTheLastAtom(newMovie);
    const bool isFragmented = std::ranges::any_of(plan_.layout_.atoms, [](const RootExtent& atom) {
        return atom.type == "moof"_os || atom.type == "sidx"_os;
    });
    if (isFragmented) {
        plan_.add("behind-fragments", Severity::Destroys, newMovie,
                  "the movie would lie behind its fragments, where players do not find it");
    }
}

void SavePlan::Exact::checkBytesBehindTheLastAtom(const FileRange& newMovie) {
    const FileRange left = {plan_.layout_.end(), plan_.layout_.fileLength - plan_.layout_.end()};
    if (left.length == 0 || !left.overlaps(newMovie)) return;
    plan_.add("overwrites-atom", Severity::Changes, left,
              bytesAt(left) + " behind the last atom are no atom and are written over");
    if (newMovie.end() >= left.end()) return;
    const FileRange stale = {newMovie.end(), left.end() - newMovie.end()};
    plan_.add("stale-bytes", Severity::Changes, stale,
              bytesAt(stale) + " would be left behind the new movie, where a header is expected");
}

// MARK: The plan

SavePlan SavePlan::of(VexQTAsset& asset, File& file, SaveForm form) {
    std::optional<SaveFailure> failure;
    SavePlan plan = of(asset, file, form, failure);
    if (failure) throw Error(failure->what);
    return plan;
}

SavePlan SavePlan::of(VexQTAsset& asset, File& file, SaveForm form,
                      std::optional<SaveFailure>& failure) {
    SavePlan plan(form);
    try {
        std::error_code error;
        plan.layout_ = FileLayout::of(file, error);
        check(error, "reading the headers of the movie");
        plan.change_.oldLength = plan.change_.newLength = plan.layout_.fileLength;
        plan.checkSource(asset, file);
    } catch (const SaveFailure& found) {
        failure = found;
        return SavePlan(form);
    }
    if (form == SaveForm::Surgical) {
        Surgical(plan, asset).make();
    } else {
        Exact(plan, asset).make();
    }
    plan.finishChange();
    plan.checkNewAtoms(asset);
    return plan;
}

}  // namespace vexqt
