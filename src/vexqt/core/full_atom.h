// The version byte and the three flag bytes of full atoms, in every way that the classes treat
// them.
#pragma once

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

namespace rows {

inline void readVersion(Record& record, AtomReader& in) {
    static_cast<VexQTAtom&>(record).setVersion(in.u8());
}
inline void writeVersion(const Record& record, ByteWriter& out) {
    out.u8(static_cast<const VexQTAtom&>(record).version());
}
inline void readFlags(Record& record, AtomReader& in) {
    auto& atom = static_cast<VexQTAtom&>(record);
    const ByteView flags = in.take(3);
    atom.setFlags0(flags[0]);
    atom.setFlags1(flags[1]);
    atom.setFlags2(flags[2]);
}
inline void writeFlags(const Record& record, ByteWriter& out) {
    const auto& atom = static_cast<const VexQTAtom&>(record);
    for (const std::uint8_t flags : {atom.flags0(), atom.flags1(), atom.flags2()}) out.u8(flags);
}
template <std::size_t count>
void skip(Record&, AtomReader& in) {
    in.skip(count);
}
template <std::size_t count>
void writeZeros(const Record&, ByteWriter& out) {
    out.zeros(count);
}

}  // namespace rows

/// The version, read and written.
inline constexpr Field versionKept = {
    .width = 1, .decode = rows::readVersion, .encode = rows::writeVersion};
/// The version is read, and written as zero whatever it is.
inline constexpr Field versionWrittenAsZero = {
    .width = 1, .decode = rows::readVersion, .encode = rows::writeZeros<1>};

/// The flags, read and written.
inline constexpr Field flagsKept = {
    .width = 3, .unitWidth = 1, .decode = rows::readFlags, .encode = rows::writeFlags};
/// The file's flags are ignored; the atom's own are written, zero unless someone set them.
inline constexpr Field flagsNotRead = {
    .width = 3, .unitWidth = 1, .decode = rows::skip<3>, .encode = rows::writeFlags};
/// The file's flags are ignored, and zeros are written whatever the atom's own are.
inline constexpr Field flagsDropped = {
    .width = 3, .unitWidth = 1, .decode = rows::skip<3>, .encode = rows::writeZeros<3>};

}  // namespace vexqt
