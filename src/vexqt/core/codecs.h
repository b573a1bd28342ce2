// The codecs: how one value lies in the file.
#pragma once

#include "vexqt/core/ValueCodecs.h"
#include "vexqt/core/field.h"

namespace vexqt {

/// The bits of an unsigned integer, the most significant byte first.
template <std::unsigned_integral T>
struct Unsigned {
    static constexpr std::size_t width = sizeof(T);
    static T read(ByteReader& in) {
        if constexpr (sizeof(T) == 1) return in.u8();
        if constexpr (sizeof(T) == 2) return in.u16();
        if constexpr (sizeof(T) == 4) return in.u32();
        if constexpr (sizeof(T) == 8) return in.u64();
    }
    static void write(ByteWriter& out, T value) {
        if constexpr (sizeof(T) == 1) out.u8(value);
        if constexpr (sizeof(T) == 2) out.u16(value);
        if constexpr (sizeof(T) == 4) out.u32(value);
        if constexpr (sizeof(T) == 8) out.u64(value);
    }
};
/// One byte.
using U8 = Unsigned<std::uint8_t>;
/// Two bytes.
using U16 = Unsigned<std::uint16_t>;
/// Four bytes.
using U32 = Unsigned<std::uint32_t>;
/// Eight bytes.
using U64 = Unsigned<std::uint64_t>;

/// The bits of a signed integer.
template <std::signed_integral T>
struct Signed {
    /// What is read and written.
    using Bits = std::make_unsigned_t<T>;
    static constexpr std::size_t width = sizeof(T);
    static T read(ByteReader& in) { return static_cast<T>(Unsigned<Bits>::read(in)); }
    static void write(ByteWriter& out, T value) {
        Unsigned<Bits>::write(out, static_cast<Bits>(value));
    }
};

/// A four-character code.
struct Code : U32 {
    static constexpr Display display = Display::Code;
};
/// An integer that people write in hexadecimal: flags, a tag, a mask.
template <class Integer>
struct Hex : Integer {
    static constexpr Display display = Display::Hexadecimal;
};

/// A negative whole number reads one lower than it was written: 0xFFFF0000 reads as -2.0.
struct SignedFixed1616 {
    static constexpr std::size_t width = 4;
    static constexpr NumberRange range = {-32768, 32768};
    static double read(ByteReader& in) {
        return ValueCodecs::signedFixed1616ToDouble(static_cast<std::int32_t>(in.u32()));
    }
    static void write(ByteWriter& out, double value) {
        out.u32(static_cast<std::uint32_t>(ValueCodecs::doubleToSignedFixed1616(value)));
    }
};

/// As SignedFixed1616, and only the low 16 bits of the fraction are read or written.
struct SignedFixed230 {
    static constexpr std::size_t width = 4;
    static constexpr NumberRange range = {-2, 2};
    static double read(ByteReader& in) {
        return ValueCodecs::signedFixed230ToDouble(static_cast<std::int32_t>(in.u32()));
    }
    static void write(ByteWriter& out, double value) {
        out.u32(static_cast<std::uint32_t>(ValueCodecs::doubleToSignedFixed230(value)));
    }
};

/// From 0 to 255.996, in steps of 1/256.
struct UnsignedFixed88 {
    static constexpr std::size_t width = 2;
    static constexpr NumberRange range = {0, 256};
    static double read(ByteReader& in) { return ValueCodecs::unsignedFixed88ToDouble(in.u16()); }
    static void write(ByteWriter& out, double value) {
        out.u16(static_cast<std::uint16_t>(ValueCodecs::doubleToUnsignedFixed88(value)));
    }
};

/// From 0 to 65535.99998, in steps of 1/65536.
struct UnsignedFixed1616 {
    static constexpr std::size_t width = 4;
    static constexpr NumberRange range = {0, 65536};
    static double read(ByteReader& in) { return ValueCodecs::unsignedFixed1616ToDouble(in.u32()); }
    static void write(ByteWriter& out, double value) {
        out.u32(ValueCodecs::doubleToUnsignedFixed1616(value));
    }
};

/// Seconds from 1904 in 32 bits, wrapping. An absent date is written as 2001-01-01.
struct MacDate {
    static constexpr std::size_t width = 4;
    static constexpr Date epoch =
        std::chrono::sys_days{std::chrono::year{1904} / 1 / 1};  ///< What a field of 0 means.
    static constexpr Date absent =
        std::chrono::sys_days{std::chrono::year{2001} / 1 / 1};  ///< What is written of no date.

    static std::optional<Date> read(ByteReader& in) {
        return epoch + std::chrono::seconds(in.u32());
    }
    static void write(ByteWriter& out, const std::optional<Date>& date) {
        const auto since = [](Date instant) {
            return static_cast<std::uint64_t>(instant.time_since_epoch().count());
        };
        out.u32(static_cast<std::uint32_t>(since(date.value_or(absent)) - since(epoch)));
    }
};

/// a b u c d v x y w: the last of every three is 2.30, the others are 16.16.
struct MovieMatrix {
    static constexpr std::size_t width = 36;
    static Matrix read(ByteReader& in) {
        Matrix matrix;
        for (std::size_t i = 0; i < matrix.size(); ++i)
            matrix[i] = i % 3 == 2 ? SignedFixed230::read(in) : SignedFixed1616::read(in);
        return matrix;
    }
    static void write(ByteWriter& out, const Matrix& matrix) {
        for (std::size_t i = 0; i < matrix.size(); ++i) {
            if (i % 3 == 2) {
                SignedFixed230::write(out, matrix[i]);
            } else {
                SignedFixed1616::write(out, matrix[i]);
            }
        }
    }
};

}  // namespace vexqt
