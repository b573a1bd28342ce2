// Big-endian reading and writing of one atom's bytes.
//
// Every byte of a movie is read and written here and nowhere else. Every read is checked: one that
// would leave the view throws RangeError and does not move, so the error names the offset of the
// value that could not be read.
#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "vexqt/platform/bytes_types.h"
#include "vexqt/platform/error.h"

namespace vexqt {

/// The number with its bytes in the other order.
template <std::integral T>
constexpr T withBytesReversed(T value) {
    using Unsigned = std::make_unsigned_t<T>;
    auto bits = static_cast<Unsigned>(value);
    Unsigned swapped = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        swapped = static_cast<Unsigned>(swapped << 8 | (bits & 0xFF));
        bits = static_cast<Unsigned>(bits >> 8);
    }
    return static_cast<T>(swapped);
}

/// The same bytes as a number of this machine; its own inverse.
template <std::integral T>
constexpr T fromBigEndian(T value) {
    if constexpr (std::endian::native == std::endian::big || sizeof(T) == 1) return value;
    return withBytesReversed(value);
}

/// The number in the first bytes from an address on. The caller has checked that they are there.
template <std::integral T>
T loadBigEndian(const std::uint8_t* from) {
    T value = 0;
    std::memcpy(&value, from, sizeof(T));
    return fromBigEndian(value);
}
/// Writes a number to the bytes from an address on. The caller has checked that they are there.
template <std::integral T>
void storeBigEndian(std::uint8_t* to, T value) {
    value = fromBigEndian(value);
    std::memcpy(to, &value, sizeof(T));
}

/// Part of a block of bytes that all its parts keep alive together.
///
/// A movie atom is read into one block. Its atoms hold parts of it, never copies.
class SharedBytes {
public:
    SharedBytes() = default;

    /// A block of its own with the same bytes.
    static SharedBytes copyOf(ByteView bytes) {
        SharedBytes block(bytes.size());
        std::ranges::copy(bytes, block.fill().begin());
        return block;
    }
    /// A block of that length, its bytes not set. Whoever makes it fills it before sharing it.
    explicit SharedBytes(std::size_t length)
        : first_(std::make_shared_for_overwrite<std::uint8_t[]>(length)), length_(length) {}

    /// The whole block, for whoever has made it.
    std::span<std::uint8_t> fill() { return {first_.get(), length_}; }
    /// The bytes, as long as any part of the block lives.
    ByteView view() const { return {first_.get(), length_}; }
    /// In bytes.
    std::size_t size() const { return length_; }

    /// The part that begins at an offset inside this one. The caller has checked both.
    SharedBytes part(std::size_t offset, std::size_t length) const {
        SharedBytes part;
        part.first_ = {first_, std::span(first_.get(), length_).subspan(offset, length).data()};
        part.length_ = length;
        return part;
    }
    /// The part that begins at the first byte. The caller has checked its length.
    SharedBytes first(std::size_t length) const { return part(0, length); }

    /// Where a part of the same block lies in this one; absent for any other.
    std::optional<std::size_t> offsetOf(const SharedBytes& part) const {
        if (!sharesBlockWith(part)) return std::nullopt;
        const std::less_equal<> notAfter;  // Of any two addresses, as <= is not.
        const std::uint8_t* const first = first_.get();
        const std::uint8_t* const partFirst = part.first_.get();
        if (!notAfter(first, partFirst)) return std::nullopt;
        const auto offset = static_cast<std::size_t>(partFirst - first);
        if (offset > length_ || part.length_ > length_ - offset) return std::nullopt;
        return offset;
    }
    /// This part and one that lies right behind it in the same block, as one; absent otherwise.
    std::optional<SharedBytes> joined(const SharedBytes& next) const {
        if (!sharesBlockWith(next) || next.first_.get() != first_.get() + length_)
            return std::nullopt;
        SharedBytes whole = *this;
        whole.length_ += next.length_;
        return whole;
    }

private:
    bool sharesBlockWith(const SharedBytes& other) const {
        return first_ != nullptr && !first_.owner_before(other.first_) &&
               !other.first_.owner_before(first_);
    }

    std::shared_ptr<std::uint8_t[]> first_;
    std::size_t length_ = 0;
};

/// Reads one run of bytes from front to back.
class ByteReader {
public:
    /// Starts at a position, which may lie behind the end.
    explicit ByteReader(ByteView bytes, std::size_t position = 0)
        : bytes_(bytes), position_(position) {}

    /// Of the byte that is read next.
    std::size_t position() const { return position_; }
    /// Of the whole run.
    std::size_t length() const { return bytes_.size(); }
    /// 0 also where the position lies behind the end.
    std::size_t remaining() const {
        return position_ < bytes_.size() ? bytes_.size() - position_ : 0;
    }

    /// One byte. \throws RangeError where there is none.
    std::uint8_t u8() { return big<std::uint8_t>(); }
    /// Two bytes. \throws RangeError where there are fewer.
    std::uint16_t u16() { return big<std::uint16_t>(); }
    /// Four bytes. \throws RangeError where there are fewer.
    std::uint32_t u32() { return big<std::uint32_t>(); }
    /// Eight bytes. \throws RangeError where there are fewer.
    std::uint64_t u64() { return big<std::uint64_t>(); }

    /// The next bytes, not copied. \throws RangeError where there are fewer.
    ByteView take(std::uint64_t count) {
        check(count);
        const ByteView taken = bytes_.subspan(position_, static_cast<std::size_t>(count));
        position_ += taken.size();
        return taken;
    }
    /// Everything up to the end; nothing where the position lies behind it.
    ByteView rest() { return remaining() == 0 ? ByteView() : take(remaining()); }
    /// Passes bytes. \throws RangeError where there are fewer.
    void skip(std::uint64_t count) { take(count); }
    /// Moves to any offset. One behind the end makes the next read a RangeError.
    void seek(std::size_t position) { position_ = position; }

protected:
    /// \throws RangeError where fewer bytes are left.
    void check(std::uint64_t count) const {
        if (count > remaining() || position_ > bytes_.size())
            throw RangeError(position_, count, length());
    }

private:
    template <std::unsigned_integral T>
    T big() {
        return loadBigEndian<T>(take(sizeof(T)).data());
    }

    ByteView bytes_;
    std::size_t position_;
};

// MARK: Many numbers at once
//
// The loops that decode and encode tables check a whole run of bytes before they begin, and then go
// through it number by number without a check.

/// A place in a run of bytes.
class BytePlace {
public:
    /// The first of them.
    explicit BytePlace(ByteView run) : at_(run.data()) {}

    /// The big-endian number that begins there.
    template <std::integral T>
    T load() const {
        return loadBigEndian<T>(at_);
    }
    /// Reads the next bytes and no others.
    ByteReader reader(std::size_t count) const { return ByteReader(ByteView(at_, count)); }

    /// So many bytes further on.
    BytePlace& operator+=(std::size_t count) {
        at_ += count;
        return *this;
    }
    /// How many bytes lie between two places in one run.
    std::ptrdiff_t operator-(const BytePlace& other) const { return at_ - other.at_; }
    /// Whether it is the same byte.
    bool operator==(const BytePlace&) const = default;

private:
    const std::uint8_t* at_;
};

/// A place in a run of bytes that are there to be overwritten.
class WritablePlace {
public:
    /// The first of them.
    explicit WritablePlace(std::span<std::uint8_t> run) : at_(run.data()) {}

    /// Puts a number there, big-endian.
    template <std::integral T>
    void store(T value) const {
        storeBigEndian(at_, value);
    }
    /// So many bytes further on.
    WritablePlace& operator+=(std::size_t count) {
        at_ += count;
        return *this;
    }

private:
    std::uint8_t* at_;
};

// MARK: Writing

/// Puts a run of bytes together, the first one first.
class ByteWriter {
public:
    /// One byte.
    void u8(std::uint8_t value) { bytes_.push_back(value); }
    /// Two bytes.
    void u16(std::uint16_t value) { big(value); }
    /// Four bytes.
    void u32(std::uint32_t value) { big(value); }
    /// Eight bytes.
    void u64(std::uint64_t value) { big(value); }
    /// So many bytes of zero.
    void zeros(std::size_t count) { bytes_.insert(bytes_.end(), count, 0); }
    /// Bytes as they are.
    void append(ByteView bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    /// The next bytes, for the caller to overwrite. They are zero, and to make them so costs: ask
    /// for a few thousand at a time, and the zeros never leave the processor's cache.
    std::span<std::uint8_t> grow(std::size_t count) {
        bytes_.resize(bytes_.size() + count);
        return std::span(bytes_).last(count);
    }

    /// Overwrites four bytes that have been written already.
    void patchU32(std::size_t position, std::uint32_t value) {
        storeBigEndian(std::span(bytes_).subspan(position, sizeof(value)).data(), value);
    }
    /// Puts bytes in front of what was written from a position on.
    void insert(std::size_t position, ByteView bytes) {
        bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(position), bytes.begin(),
                      bytes.end());
    }
    /// Takes the memory for so many bytes at once.
    void reserve(std::size_t length) { bytes_.reserve(length); }

    /// How many bytes were written.
    std::size_t length() const { return bytes_.size(); }
    /// What was written, until more is.
    ByteView view() const { return bytes_; }
    /// Gives the bytes away; the writer is empty afterwards.
    Bytes release() { return std::move(bytes_); }

private:
    template <std::unsigned_integral T>
    void big(T value) {
        const std::size_t position = bytes_.size();
        bytes_.resize(position + sizeof(T));
        storeBigEndian(std::span(bytes_).subspan(position).data(), value);
    }

    Bytes bytes_;
};

}  // namespace vexqt
