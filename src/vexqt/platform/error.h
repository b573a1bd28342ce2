// Everything that the library throws.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "vexqt/export.h"

namespace vexqt {

/// Reading or editing failed.
///
/// Every atom that an error leaves puts itself in front of the path, and the innermost one says
/// where it lies, so a host can tell what is broken: "moov.trak[2].mdia at 8: 4 bytes wanted at
/// 24, 24 there".
class VEXQT_EXPORT Error : public std::runtime_error {
public:
    /// With a sentence for people; lower case, without a full stop.
    explicit Error(const std::string& message);
    /// Declared so that a moved error is a copied one: an error always has its texts.
    Error(const Error&) noexcept = default;
    /// A copy, like the constructor.
    Error& operator=(const Error&) noexcept = default;
    ~Error() override = default;

    /// Called by each atom that the error leaves, the innermost first.
    void enter(std::string_view segment, std::uint64_t offsetInFile);

    /// What went wrong, without the place.
    const std::string& message() const { return texts_->message; }
    /// The atoms from the outermost to the one that failed; empty until an atom was left.
    const std::string& path() const { return texts_->path; }
    /// Where the innermost atom of the path begins; 0 until an atom was left.
    std::uint64_t offsetInFile() const { return texts_->offsetInFile; }
    /// The message with the path and the offset in front.
    const char* what() const noexcept override { return texts_->whole.c_str(); }

private:
    // Shared and never changed, because an exception is copied where nothing may be thrown.
    struct Texts {
        std::string message, path, whole;
        std::uint64_t offsetInFile = 0;
    };
    std::shared_ptr<const Texts> texts_;
};

/// A read past the end of a byte buffer, or a walk that would not move forward.
class VEXQT_EXPORT RangeError : public Error {
public:
    /// Bytes were wanted where there are fewer: "4 bytes wanted at 24, 24 there".
    RangeError(std::uint64_t offset, std::uint64_t count, std::uint64_t length);
    /// Something else is wrong with the count at that place, for instance a size of 0 or 4 in a
    /// walk from header to header.
    explicit RangeError(const std::string& message, std::uint64_t offset = 0,
                        std::uint64_t count = 0, std::uint64_t length = 0);

    /// Where bytes were wanted.
    std::uint64_t offset() const { return offset_; }
    /// How many were wanted.
    std::uint64_t count() const { return count_; }
    /// The length of the buffer.
    std::uint64_t length() const { return length_; }

private:
    std::uint64_t offset_, count_, length_;
};

/// An absent child was appended to a child list.
class VEXQT_EXPORT InsertionError : public Error {
public:
    using Error::Error;
};

/// Atoms are nested deeper than any real movie nests them.
class VEXQT_EXPORT NestingError : public Error {
public:
    using Error::Error;
};

/// A component was asked of a colour that is of the other kind.
class VEXQT_EXPORT ColorSpaceError : public Error {
public:
    using Error::Error;
};

/// There is no property of that name.
class VEXQT_EXPORT UndefinedKeyError : public Error {
public:
    /// For the key that names nothing.
    explicit UndefinedKeyError(std::string_view key);
};

/// A property was given a value of the wrong kind.
class VEXQT_EXPORT ValueError : public Error {
public:
    using Error::Error;
    /// Names the property: "timeScale: a value of the wrong kind".
    ValueError(std::string_view key, const std::string& message);
};

/// What an atom holds has no form in the file.
class VEXQT_EXPORT EncodingError : public Error {
public:
    using Error::Error;
};

}  // namespace vexqt
