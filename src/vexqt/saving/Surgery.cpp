#include "vexqt/saving/Surgery.h"

#include <vector>

namespace vexqt {

// MARK: One row

namespace {

/// The widths of the values that repeat in a row's bytes; none where they are one value.
std::vector<std::size_t> repeatingWidths(const Field& row) {
    if (row.unitWidth != 0) return {row.unitWidth};
    std::vector<std::size_t> widths;
    if (row.list != nullptr)
        for (const Field& column : row.list->columns) widths.push_back(column.width);
    if (std::ranges::count(widths, std::size_t{0}) > 0) return {};
    return widths;
}

/// A view cut into a head and elements of one width.
struct Elements {
    Elements(ByteView bytes, std::size_t width)
        : head(bytes.first(bytes.size() % width)),
          body(bytes.subspan(head.size())),
          elementWidth(width) {}

    std::size_t count() const { return body.size() / elementWidth; }
    ByteView operator[](std::size_t index) const {
        return body.subspan(index * elementWidth, elementWidth);
    }

    ByteView head, body;
    std::size_t elementWidth;
};

void append(Bytes& out, ByteView bytes) { out.insert(out.end(), bytes.begin(), bytes.end()); }

/// One element, value by value.
void appendMerged(Bytes& out, ByteView read, ByteView wouldBe, ByteView now,
                  std::span<const std::size_t> widths) {
    std::size_t offset = 0;
    for (const std::size_t width : widths) {
        const auto value = [&](ByteView element) { return element.subspan(offset, width); };
        append(out, std::ranges::equal(value(wouldBe), value(now)) ? value(read) : value(now));
        offset += width;
    }
}

}  // namespace

Bytes mergedRow(const Field& row, ByteView read, ByteView wouldBe, ByteView now) {
    const std::vector<std::size_t> widths = repeatingWidths(row);
    // Only where a row comes back in the length that it was read in is it known which of its bytes
    // are which value's. What lies behind a value that comes back shorter, such as padding or what
    // follows a text's zero byte, stays behind the new one.
    if (widths.empty() || read.size() != wouldBe.size()) {
        Bytes merged(now.begin(), now.end());
        const bool isLonger =
            read.size() > wouldBe.size() && std::ranges::equal(read.first(wouldBe.size()), wouldBe);
        if (isLonger) append(merged, read.subspan(wouldBe.size()));
        return merged;
    }

    std::size_t width = 0;
    for (const std::size_t each : widths) width += each;
    const Elements was(read, width), would(wouldBe, width), is(now, width);
    const std::size_t fewer = std::min(would.count(), is.count());
    std::size_t before = 0;
    while (before < fewer && std::ranges::equal(would[before], is[before])) ++before;
    std::size_t behind = 0;
    while (behind < fewer - before &&
           std::ranges::equal(would[would.count() - 1 - behind], is[is.count() - 1 - behind]))
        ++behind;

    Bytes merged;
    merged.reserve(now.size());
    append(merged, std::ranges::equal(would.head, is.head) ? was.head : is.head);
    append(merged, was.body.first(before * width));
    for (std::size_t i = before; i < is.count() - behind; ++i) {
        if (would.count() == is.count()) {
            appendMerged(merged, was[i], would[i], is[i], widths);
        } else {
            append(merged, is[i]);
        }
    }
    append(merged, was.body.last(behind * width));
    return merged;
}

// MARK: One atom

namespace {

OSType writtenType(const VexQTAtom& atom) {
    const AtomClass& cls = atom.atomClass();
    return cls.typeRule == TypeRule::AsHeld ? atom.atomType() : cls.type;
}

/// Adds to a size as it stands in its field. A size of 0, which reaches to the end, stays 0.
Bytes grownSize(ByteView header, std::uint64_t oldLength, std::uint64_t newLength) {
    ByteReader in(header);
    const std::uint32_t sizeField = in.u32();
    const std::uint64_t growth = newLength - oldLength;  // Wraps where it shrinks.
    ByteWriter out;
    out.append(header);
    if (sizeField == 1) {
        in.skip(4);
        if (in.remaining() < sizeof(std::uint64_t))
            throw EncodingError("its extended size lies where its class reads fields");
        const std::uint64_t size = in.u64() + growth;
        out.patchU32(8, static_cast<std::uint32_t>(size >> 32));
        out.patchU32(12, static_cast<std::uint32_t>(size));
    } else if (sizeField != 0) {
        const std::uint64_t size = sizeField + growth;
        if (size > std::numeric_limits<std::uint32_t>::max())
            throw EncodingError("it would be longer than its size field can tell");
        out.patchU32(0, static_cast<std::uint32_t>(size));
    }
    return out.release();
}

}  // namespace

ByteRope Surgery::written(VexQTAtom& atom) {
    if (atom.origin().size() == 0) {
        ByteRope rope;
        rope.append(atom.atomData());
        return rope;
    }
    try {
        return writtenAsRead(atom);
    } catch (Error& error) {
        error.enter(pathSegment(atom.atomType()), atom.offsetInFile());
        throw;
    }
}

ByteRope Surgery::writtenAsRead(VexQTAtom& atom) {
    ByteRope out;
    if (atom.declinedClass()) {
        const Bytes now = atom.atomData();
        const bool isEdited = !std::ranges::equal(now, atom.origin().view());
        if (isEdited) edits_.push_back({&atom, "type"});
        out.append(isEdited ? SharedBytes::copyOf(now) : atom.origin());
        return out;
    }
    const AtomAsRead read(atom);
    const bool hasHeader = atom.atomClass().header != HeaderRule::None;
    const std::size_t headerEnd = hasHeader ? read.survey.rows.front().start : 0;
    std::size_t position = headerEnd;

    ByteRope body;
    std::size_t surveyed = 0;
    for (const Field& row : atom.atomClass().fields) {
        if (row.decode == nullptr) continue;
        const Survey::Part* part = nullptr;
        if (surveyed < read.survey.rows.size() && read.survey.rows[surveyed].row == &row)
            part = &read.survey.rows[surveyed++];
        if (part == nullptr) {
            // The edit of another row brought this one in.
            if (const auto now = encodedRow(row, atom)) body.append(*now);
            continue;
        }
        const bool isOutNow = !isPresent(row, atom);
        if (row.encode == nullptr && !row.holdsChildren && !isOutNow) continue;
        body.append(read.part(position, std::max(position, part->start)));
        position = part->end;
        if (isOutNow) continue;  // The edit of another row threw this one out.
        if (row.holdsChildren) {
            appendChildren(*part, read, atom, body);
        } else {
            appendRow(row, *part, read, atom, body);
        }
    }
    body.append(read.part(position, read.bytes.size()));

    SharedBytes header = read.part(0, headerEnd);
    const std::uint64_t newLength = headerEnd + body.length();
    const bool isTypeEdited = hasHeader && writtenType(*read.record) != writtenType(atom);
    if (isTypeEdited) edits_.push_back({&atom, "type"});
    if (hasHeader && headerEnd >= 8 && (newLength != read.bytes.size() || isTypeEdited)) {
        ByteWriter patched;
        patched.append(newLength != read.bytes.size()
                           ? grownSize(header.view(), read.bytes.size(), newLength)
                           : Bytes(header.view().begin(), header.view().end()));
        if (isTypeEdited) patched.patchU32(4, writtenType(atom));
        header = SharedBytes::copyOf(patched.view());
    }
    out.append(header);
    if (atom.atomClass().writtenHeader == WrittenHeader::InRows && newLength != read.bytes.size()) {
        // Its first row is its size.
        const SharedBytes flat = body.flat();
        out.append(grownSize(flat.view(), read.bytes.size(), newLength));
        return out;
    }
    out.append(std::move(body));
    return out;
}

void Surgery::appendRow(const Field& row, const Survey::Part& part, const AtomAsRead& read,
                        VexQTAtom& atom, ByteRope& out) {
    const SharedBytes bytes = read.part(part.start, part.end);
    if (row.untouched != nullptr && row.untouched(atom)) return out.append(bytes);

    std::optional<Bytes> wouldBe;
    try {
        wouldBe = encodedRow(row, *read.record);
    } catch (const Error&) {
        return out.append(bytes);  // What its class cannot write at all stays as it is.
    }
    const auto now = encodedRow(row, atom);
    if (wouldBe == now) return out.append(bytes);

    edits_.push_back({&atom, row.name});
    if (now) out.append(mergedRow(row, bytes.view(), wouldBe.value_or(Bytes()), *now));
}

void Surgery::appendChildren(const Survey::Part& region, const AtomAsRead& read, VexQTAtom& atom,
                             ByteRope& out) {
    const auto& parts = read.survey.children;
    std::vector<std::size_t> starts;
    for (const Survey::Part& part : parts) starts.push_back(part.start);

    /// Which of the children that were read this one is; their number for one that is new.
    const auto placeOf = [&](const VexQTAtom& child) {
        const auto start = read.bytes.offsetOf(child.origin());
        if (!start || child.origin().size() == 0) return parts.size();
        const auto found = std::ranges::lower_bound(starts, *start);
        const auto place = static_cast<std::size_t>(found - starts.begin());
        const bool isIt = place < parts.size() && parts[place].start == *start &&
                          parts[place].end == *start + child.origin().size();
        return isIt ? place : parts.size();
    };
    std::vector<bool> isKept(parts.size());
    for (const auto& child : atom.children())
        if (const std::size_t place = placeOf(*child); place < parts.size()) isKept[place] = true;

    // Bytes between children that are none themselves stay behind the nearest child before them
    // that is kept. What follows the last child stays last, whatever was added: bytes too few for a
    // header, or a terminator.
    const std::size_t firstStart = parts.empty() ? region.start : parts.front().start;
    const std::size_t lastEnd = parts.empty() ? firstStart : parts.back().end;
    const auto appendGapsFrom = [&](std::size_t place) {
        for (; place + 1 < parts.size(); ++place) {
            out.append(read.part(parts[place].end, parts[place + 1].start));
            if (isKept[place + 1]) return;
        }
    };
    out.append(read.part(std::min(region.start, firstStart), firstStart));
    if (!parts.empty() && !isKept.front()) appendGapsFrom(0);
    std::size_t nextPlace = 0;
    bool isEdited = atom.children().size() != parts.size();
    for (const auto& child : atom.children()) {
        out.append(written(*child));
        const std::size_t place = placeOf(*child);
        isEdited = isEdited || place != nextPlace++;
        if (place < parts.size()) appendGapsFrom(place);
    }
    out.append(read.part(lastEnd, std::max(lastEnd, region.end)));
    if (isEdited) edits_.push_back({&atom, {}});
}

}  // namespace vexqt
