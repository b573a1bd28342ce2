// The rows that every sample description begins with, and how a class adds its own:
//
//     static constexpr auto fields = entryRows(field<…>(…), field<…>(…));
//     static constexpr auto listing = entryListing<fields>();
//
// An entry's rows begin with its own size, so its class has HeaderRule::None and
// WrittenHeader::InRows.
#pragma once

#include "vexqt/atoms/sampledescriptions/VexQTSampleDescription.h"
#include "vexqt/core/codecs.h"

namespace vexqt {

/// Read from the entry's size field. The length that the entry has when it is written goes there.
struct EntrySize {
    static constexpr std::size_t width = 4;
    static std::uint32_t read(ByteReader& in) { return in.u32(); }
    static void write(ByteWriter& out, std::uint32_t) { out.zeros(4); }
};

struct VexQTSampleDescription::CommonRows {
    using Entry = VexQTSampleDescription;
    static constexpr Field size =
        field<&Entry::sampleDescriptionSize_, EntrySize>("sampleDescriptionSize").in("bytes");
    static constexpr Field format = field<&Entry::dataFormat_, Code>("dataFormat");
    static constexpr Field dataReference =
        field<&Entry::dataReferenceIndex_, U16>("dataReferenceIndex");
};

/// The common rows, 16 bytes of them, and those of a class.
template <class... Rows>
constexpr auto entryRows(const Rows&... rows) {
    using Common = VexQTSampleDescription::CommonRows;
    return std::to_array<Field>(
        {Common::size, Common::format, reserved<6>(), Common::dataReference, rows...});
}

/// A common row of a class that does not read and write it in its place.
constexpr Field notInFile(const Field& common) {
    Field row = common;
    row.width = 0;
    row.decode = nullptr;
    row.encode = nullptr;
    return row;
}

/// The properties of an entry in the order in which people expect them, whatever its class: the
/// format comes first.
template <const auto& fields>
constexpr auto entryListing() {
    constexpr auto count = static_cast<std::size_t>(
        std::ranges::count_if(fields, [](const Field& row) { return !row.name.empty(); }));
    using Common = VexQTSampleDescription::CommonRows;
    std::array<std::string_view, count> listing = {Common::format.name, Common::dataReference.name,
                                                   Common::size.name};
    auto next = listing.begin() + 3;
    for (const Field& row : std::span(fields).subspan(4))
        if (!row.name.empty()) *next++ = row.name;
    return listing;
}

}  // namespace vexqt
