#include "vexqt/saving/Journal.h"

#include <algorithm>
#include <limits>

#include "vexqt/saving/crc64.h"

namespace vexqt {

namespace {

constexpr std::uint64_t kMagic = 0x5665785154'6A6E6C;  // "VexQTjnl"
constexpr std::uint32_t kFormat = 1;
constexpr std::uint64_t kPiece = 512;
constexpr std::size_t kRangeHeader = 16, kChecksum = 8;
/// How much is read or written at once.
constexpr std::size_t kRun = std::size_t{1} << 20;

void encode(ByteWriter& out, const FileIdentity& identity) {
    out.u64(identity.device);
    out.u64(identity.inode);
    out.u64(identity.size);
    out.u64(static_cast<std::uint64_t>(identity.modifiedSeconds));
    out.u64(static_cast<std::uint64_t>(identity.modifiedNanoseconds));
}

FileIdentity decodeIdentity(ByteReader& in) {
    FileIdentity identity;
    identity.device = in.u64();
    identity.inode = in.u64();
    identity.size = in.u64();
    identity.modifiedSeconds = static_cast<std::int64_t>(in.u64());
    identity.modifiedNanoseconds = static_cast<std::int64_t>(in.u64());
    identity.isRegular = true;
    return identity;
}

/// The piece that begins at an offset inside a range.
FileRange pieceAt(std::uint64_t offset, FileRange range, std::uint64_t commonLength) {
    std::uint64_t end = std::min(range.end(), (offset / kPiece + 1) * kPiece);
    if (offset < commonLength) end = std::min(end, commonLength);
    return {offset, end - offset};
}

/// How much of a range lies in a file of that length.
std::size_t partBelow(std::uint64_t length, FileRange range) {
    if (range.offset >= length) return 0;
    return static_cast<std::size_t>(std::min(range.length, length - range.offset));
}

/// Collects small parts, and writes them one behind the other.
class BodyWriter {
public:
    explicit BodyWriter(NamedFile& file) : file_(file) {}

    void u64(std::uint64_t value) { out_.u64(value); }
    void append(ByteView bytes) {
        out_.append(bytes);
        if (out_.length() >= kRun) finish();
    }
    void finish() {
        crc_.add(out_.view());
        file_.write(JournalHeader::kLength + length_, out_.view());
        length_ += out_.length();
        out_ = ByteWriter();
    }

    std::uint64_t length() const { return length_; }
    std::uint64_t checksum() const { return crc_.value(); }

private:
    NamedFile& file_;
    ByteWriter out_;
    Crc64 crc_;
    std::uint64_t length_ = 0;
};

}  // namespace

// MARK: Header

Bytes JournalHeader::encoded() const {
    ByteWriter out;
    out.u64(kMagic);
    out.u32(kFormat);
    out.u32(static_cast<std::uint32_t>(kind));
    encode(out, before);
    encode(out, after);
    out.u64(newLength);
    out.u64(bodyLength);
    out.u64(bodyChecksum);
    out.u64(Crc64::of(out.view()));
    return out.release();
}

std::optional<JournalHeader> JournalHeader::decoded(ByteView bytes) {
    if (bytes.size() < kLength) return std::nullopt;
    ByteReader in(bytes);
    if (in.u64() != kMagic || in.u32() != kFormat) return std::nullopt;
    JournalHeader header;
    const std::uint32_t kind = in.u32();
    if (kind > static_cast<std::uint32_t>(Kind::Undo)) return std::nullopt;
    header.kind = static_cast<Kind>(kind);
    header.before = decodeIdentity(in);
    header.after = decodeIdentity(in);
    header.newLength = in.u64();
    header.bodyLength = in.u64();
    header.bodyChecksum = in.u64();
    if (in.u64() != Crc64::of(bytes.first(kLength - kChecksum))) return std::nullopt;
    return header;
}

// MARK: Writing

Journal::Journal(std::unique_ptr<File> file, const std::filesystem::path& path)
    : file_(std::move(file)), named_(*file_, path.string()) {}

Journal Journal::write(std::unique_ptr<File> file, const std::filesystem::path& path,
                       JournalHeader header, const FileChange& change, const OldBytes& oldBytes) {
    Journal journal(std::move(file), path);
    journal.header_ = header;
    BodyWriter out(journal.named_);
    for (const auto& [range, newBytes] : change.touched()) {
        out.u64(range.offset);
        out.u64(range.length);
        for (std::uint64_t at = range.offset; at < range.end();) {
            const FileRange piece = pieceAt(at, range, journal.commonLength());
            at = piece.end();
            const std::size_t newCount = partBelow(change.newLength, piece);
            out.u64(newCount == 0
                        ? 0
                        : Crc64::of(newBytes.subspan(
                              static_cast<std::size_t>(piece.offset - range.offset), newCount)));
            const std::size_t oldCount = partBelow(change.oldLength, piece);
            out.append(oldCount == 0 ? ByteView() : oldBytes(piece.offset, oldCount));
        }
    }
    out.finish();
    journal.header_.bodyLength = out.length();
    journal.header_.bodyChecksum = out.checksum();
    journal.named_.write(0, journal.header_.encoded());
    return journal;
}

std::uint64_t Journal::lengthFor(const FileChange& change) {
    const std::uint64_t common = std::min(change.oldLength, change.newLength);
    std::uint64_t length = JournalHeader::kLength;
    for (const auto& [range, newBytes] : change.touched()) {
        length += kRangeHeader + partBelow(change.oldLength, range);
        for (std::uint64_t at = range.offset; at < range.end();
             at = pieceAt(at, range, common).end())
            length += kChecksum;
    }
    return length;
}

void Journal::writeUndoRecord(NamedFile& into, const FileIdentity& after) {
    BlockReader in(named_);
    for (std::uint64_t at = JournalHeader::kLength; at < length();) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(length() - at, BlockReader::kBlock));
        into.write(at, in.at(at, count));
        at += count;
    }
    JournalHeader header = header_;
    header.kind = JournalHeader::Kind::Undo;
    header.after = after;
    into.write(0, header.encoded());
}

void Journal::setAfter(const FileIdentity& after) {
    header_.after = after;
    named_.write(0, header_.encoded());
}

// MARK: Reading

Journal::Found Journal::read(std::unique_ptr<File> file, const std::filesystem::path& path) {
    Found found;
    Journal journal(std::move(file), path);
    const std::uint64_t size = journal.named_.identity().size;
    if (size < JournalHeader::kLength) return found;
    Bytes bytes(JournalHeader::kLength);
    journal.named_.read(0, bytes);
    found.header = JournalHeader::decoded(bytes);
    if (!found.header || found.header->bodyLength != size - JournalHeader::kLength) return found;
    journal.header_ = *found.header;
    if (journal.bodyIsWhole()) found.whole.emplace(std::move(journal));
    return found;
}

bool Journal::bodyIsWhole() {
    Crc64 crc;
    BlockReader in(named_);
    for (std::uint64_t at = JournalHeader::kLength; at < length();) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(length() - at, BlockReader::kBlock));
        crc.add(in.at(at, count));
        at += count;
    }
    return crc.value() == header_.bodyChecksum && walk([](const Piece&) {});
}

bool Journal::walk(const std::function<void(const Piece&)>& visit) {
    BlockReader in(named_);
    const std::uint64_t longest = std::max(oldLength(), newLength());
    std::uint64_t at = JournalHeader::kLength, lastEnd = 0;
    while (at < length()) {
        if (length() - at < kRangeHeader) return false;
        ByteReader header(in.at(at, kRangeHeader));
        FileRange range;
        range.offset = header.u64();
        range.length = header.u64();
        at += kRangeHeader;
        if (range.offset < lastEnd || range.offset > longest ||
            range.length > longest - range.offset)
            return false;
        lastEnd = range.end();
        for (std::uint64_t offset = range.offset; offset < range.end();) {
            Piece piece = {.range = pieceAt(offset, range, commonLength())};
            offset = piece.range.end();
            const std::size_t count = kChecksum + partBelow(oldLength(), piece.range);
            if (length() - at < count) return false;
            ByteReader bytes(in.at(at, count));
            at += count;
            piece.newChecksum = bytes.u64();
            piece.oldBytes = bytes.rest();
            visit(piece);
        }
    }
    return true;
}

Journal::Comparison Journal::compare(NamedFile& movie) {
    Comparison result;
    BlockReader in(movie);
    result.isOld = in.size() == oldLength();
    result.isNew = in.size() == newLength();
    result.isOldOrNew =
        in.size() >= commonLength() && in.size() <= std::max(oldLength(), newLength());
    if (!result.isOldOrNew) return result;
    walk([&](const Piece& piece) {
        // Nothing can be said of bytes that only one of the two files has, while there may be some
        // of them: they are what a crash left behind the end.
        const bool isCommon = piece.range.end() <= commonLength();
        if (!isCommon && !result.isOld && !result.isNew) return;
        const ByteView now = in.at(piece.range.offset, partBelow(in.size(), piece.range));
        const bool isOld = std::ranges::equal(now, piece.oldBytes);
        const bool isNew = now.empty() || Crc64::of(now) == piece.newChecksum;
        result.isOld &= isOld;
        result.isNew &= isNew;
        result.isOldOrNew &= isOld || isNew || !isCommon;
    });
    return result;
}

void Journal::forEachOldRun(const std::function<void(std::uint64_t offset, ByteView)>& visit) {
    Bytes run;
    std::uint64_t start = 0;
    const auto finish = [&] {
        if (!run.empty()) visit(start, run);
        run.clear();
    };
    walk([&](const Piece& piece) {
        if (piece.oldBytes.empty()) return;
        if (start + run.size() != piece.range.offset || run.size() >= kRun) finish();
        if (run.empty()) start = piece.range.offset;
        run.insert(run.end(), piece.oldBytes.begin(), piece.oldBytes.end());
    });
    finish();
}

void Journal::putBack(NamedFile& movie) {
    forEachOldRun([&](std::uint64_t offset, ByteView bytes) { movie.write(offset, bytes); });
    if (movie.identity().size != oldLength()) movie.truncate(oldLength());
    std::error_code ignored;
    movie.file().setModified(header_.before.modifiedSeconds, header_.before.modifiedNanoseconds,
                             ignored);
    movie.flush();
}

FileChange Journal::backwards() {
    FileChange change;
    change.oldLength = newLength();
    change.newLength = oldLength();
    forEachOldRun([&](std::uint64_t offset, ByteView bytes) {
        change.writes.push_back({offset, SharedBytes::copyOf(bytes)});
    });
    return change;
}

std::filesystem::path journalPathOf(const std::filesystem::path& movie) {
    // The narrowest of the file systems that people use, those that encrypt names, take 143 bytes.
    constexpr std::size_t kLongest = 143;
    static const std::string kEnding = ".vexqt-journal";
    std::string name = movie.filename().string();
    if (1 + name.size() + kEnding.size() > kLongest) {
        const std::string digits = "~" + digestOf(name);
        std::size_t kept = kLongest - 1 - digits.size() - kEnding.size();
        // A character of UTF-8 is kept or left as a whole.
        while (kept > 0 && (static_cast<unsigned char>(name[kept]) & 0xC0) == 0x80) --kept;
        name.resize(kept);
        name += digits;
    }
    return movie.parent_path() / ("." + name + kEnding);
}

}  // namespace vexqt
