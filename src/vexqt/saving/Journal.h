// The old bytes of all that a change touches, kept in a file of their own.
//
// Beside a movie, a journal says that a change has begun and not ended: whoever finds it whole puts
// the old bytes back. Elsewhere, with the state that the change left the movie in, the same file is
// the record with which the change is undone.
//
// All numbers are big-endian. The header, which fits into the smallest block that a disk writes at
// once:
//
//     magic "VexQTjnl"; format; kind; the file before the change; the file after it (zeroes beside
//     a movie); its new length; length of the body; checksum of the body; checksum of the header
//
// The body has, for each touched range in the order of their offsets:
//
//     offset; length; for each piece of the range: checksum of its new bytes, its old bytes
//
// A piece ends where a 512-byte block of the file ends, for that is what a power cut leaves old or
// new as a whole, and where the shorter of the old and new file ends. So a piece is old or new in a
// file that a crash has left, and if one is neither, somebody else has written to the file.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "vexqt/saving/NamedFile.h"

namespace vexqt {

struct JournalHeader {
    enum class Kind : std::uint32_t { RollBack, Undo };

    Kind kind = Kind::RollBack;
    FileIdentity before, after;
    std::uint64_t newLength = 0;
    std::uint64_t bodyLength = 0, bodyChecksum = 0;

    static constexpr std::size_t kLength = 128;

    Bytes encoded() const;
    static std::optional<JournalHeader> decoded(ByteView bytes);
};

/// Old bytes of a file; the view is valid until the next call.
using OldBytes = std::function<ByteView(std::uint64_t offset, std::size_t count)>;

/// Failures are thrown as SaveFailure.
class Journal {
public:
    /// Writes the body and then the header; `header` says all but what follows from the body.
    static Journal write(std::unique_ptr<File> file, const std::filesystem::path& path,
                         JournalHeader header, const FileChange& change, const OldBytes& oldBytes);
    /// How long that file will be.
    static std::uint64_t lengthFor(const FileChange& change);

    struct Found;
    /// What a file holds, which may be anything.
    static Found read(std::unique_ptr<File> file, const std::filesystem::path& path);

    const JournalHeader& header() const { return header_; }
    std::uint64_t oldLength() const { return header_.before.size; }
    std::uint64_t newLength() const { return header_.newLength; }
    std::uint64_t length() const { return JournalHeader::kLength + header_.bodyLength; }
    void flush() { named_.flush(); }

    /// What the movie holds now in the touched ranges.
    struct Comparison {
        bool isOld = true, isNew = true;  ///< All of it.
        /// Every piece is one or the other: it may be the file that a crash has left.
        bool isOldOrNew = true;
    };
    Comparison compare(NamedFile& movie);

    /// Makes the movie what it was before, and flushes it. Its time of modification is set back
    /// too, if the system lets us: nothing has become of the change.
    void putBack(NamedFile& movie);
    /// The change that does the same.
    FileChange backwards();
    /// Writes the record that undoes the change which left the file as `after` says.
    void writeUndoRecord(NamedFile& into, const FileIdentity& after);
    /// Says in a record, which must be open for writing, that its change left the file like that.
    void setAfter(const FileIdentity& after);

private:
    struct Piece {
        FileRange range;
        std::uint64_t newChecksum = 0;
        ByteView oldBytes = {};  ///< None behind the old end.
    };

    Journal(std::unique_ptr<File> file, const std::filesystem::path& path);

    std::uint64_t commonLength() const { return std::min(oldLength(), newLength()); }
    /// False if the body is not in order, before or after some of it was visited.
    bool walk(const std::function<void(const Piece&)>& visit);
    bool bodyIsWhole();
    /// Calls with old bytes that lie side by side, as many as are good to write at once.
    void forEachOldRun(const std::function<void(std::uint64_t offset, ByteView)>& visit);

    std::unique_ptr<File> file_;
    NamedFile named_;
    JournalHeader header_;
};

struct Journal::Found {
    std::optional<Journal> whole;
    /// The header alone, where that is whole.
    std::optional<JournalHeader> header;
};

/// Where the journal of a movie lies, whose path is free of symbolic links.
std::filesystem::path journalPathOf(const std::filesystem::path& movie);

}  // namespace vexqt
