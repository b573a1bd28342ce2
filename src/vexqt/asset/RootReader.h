#pragma once

#include <functional>

#include "vexqt/atoms/structure/VexQTftypAtom.h"

namespace vexqt {

/// Where a movie's bytes come from.
class MovieSource {
public:
    MovieSource() = default;
    MovieSource(const MovieSource&) = delete;
    MovieSource& operator=(const MovieSource&) = delete;
    virtual ~MovieSource() = default;

    virtual std::uint64_t length() const = 0;
    /// As many of the bytes as are there.
    virtual SharedBytes read(std::uint64_t offset, std::uint64_t count) = 0;
};

enum class ReaderKind { OfFiles, OfMemory };

/// Reads the top-level atoms of a movie, one header after another.
///
/// There are two readers, of files and of memory, with one plan. They differ in what each of them
/// makes of a file that ends early, in the offset of free space, and in the last atom: the memory
/// reader does not look at one that begins 8 bytes or less before the end. Each of these
/// differences is a function below.
class RootReader {
public:
    RootReader(ReaderKind kind, MovieSource& source, ReadContext& context,
               std::vector<std::unique_ptr<VexQTAtom>>& roots)
        : kind_(kind), source_(source), context_(context), roots_(roots) {}

    /// Appends the atoms to the roots until something ends the reading. Calls back with the file
    /// type, as soon as it is read; reading ends when that says no.
    void read(const std::function<bool(const VexQTftypAtom&)>& accepts);

private:
    struct Header {
        std::uint64_t start = 0;
        std::size_t length = 8;
        /// Less 8 with an extended size, so that it counts from contents() in either form.
        std::uint64_t size = 0;
        OSType type = 0;
        bool isCut = false;  ///< The file ends before the extended size.

        /// Where the bytes that atoms are made from begin: 8 before the end of the header.
        std::uint64_t contents() const { return start + length - 8; }
        /// Past everything where the sum does not fit.
        std::uint64_t end() const;
    };
    enum class Next { Read, Stop };

    Header readHeader(std::uint64_t position);
    bool reachesPastEnd(const Header& header) const { return header.end() > source_.length(); }
    /// The memory reader refuses an atom that runs past the end; the file reader takes what is
    /// there.
    bool refusesTruncated(const Header& header) const;
    std::uint64_t offsetOfFree(const Header& header) const;
    bool readsHeaderAt(std::uint64_t position) const;

    /// Counts the bytes of an unknown atom and says whether they are too many to be read.
    bool isTooLong(const Header& header);
    Next addLeftInFile(const Header& header, std::uint64_t offsetInFile);
    Next readAtom(const Header& header, const std::function<bool(const VexQTftypAtom&)>& accepts);
    Next add(std::unique_ptr<VexQTAtom> atom, const Header& header);
    std::unique_ptr<VexQTAtom> decoded(const AtomClass& cls, const Header& header,
                                       std::uint64_t offsetInFile);
    std::uint64_t lengthThere(const Header& header) const;

    ReaderKind kind_;
    MovieSource& source_;
    ReadContext& context_;
    std::vector<std::unique_ptr<VexQTAtom>>& roots_;
    std::uint64_t unknownLength_ = 0;  ///< Of the atoms that are of no use to a movie.
};

}  // namespace vexqt
