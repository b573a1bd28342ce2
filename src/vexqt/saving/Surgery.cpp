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

/// How many elements in front and behind are as they were.
struct Unedited {
    std::size_t before = 0, behind = 0;
};
template <class AreEqual>
Unedited unedited(std::size_t wouldBe, std::size_t now, const AreEqual& areEqual) {
    const std::size_t fewer = std::min(wouldBe, now);
    Unedited elements;
    while (elements.before < fewer && areEqual(elements.before, elements.before)) ++elements.before;
    while (elements.behind < fewer - elements.before &&
           areEqual(wouldBe - 1 - elements.behind, now - 1 - elements.behind))
        ++elements.behind;
    return elements;
}

}  // namespace

EditedRow mergedRow(const Field& row, ByteView read, ByteView wouldBe, ByteView now) {
    const std::vector<std::size_t> widths = repeatingWidths(row);
    // Only where a row comes back in the length that it was read in is it known which of its bytes
    // are which value's. What lies behind a value that comes back shorter, such as padding or what
    // follows a text's zero byte, stays behind the new one. Of what gives no value at all nothing
    // does: it would make the new one unreadable too.
    if (widths.empty() || read.size() != wouldBe.size()) {
        EditedRow merged = {.bytes = Bytes(now.begin(), now.end())};
        const bool isLonger = !wouldBe.empty() && read.size() > wouldBe.size() &&
                              std::ranges::equal(read.first(wouldBe.size()), wouldBe);
        if (isLonger) append(merged.bytes, read.subspan(wouldBe.size()));
        merged.isRewritten = !isLonger && !wouldBe.empty() && !std::ranges::equal(read, wouldBe);
        return merged;
    }

    std::size_t width = 0;
    for (const std::size_t each : widths) width += each;
    const Elements was(read, width), would(wouldBe, width), is(now, width);
    const auto [before, behind] =
        unedited(would.count(), is.count(),
                 [&](std::size_t i, std::size_t j) { return std::ranges::equal(would[i], is[j]); });

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
    return {.bytes = std::move(merged)};
}

namespace {

/// The name of what was edited of a row, as far as that can be told without decoding pictures.
std::string_view editedProperty(const AtomClass& cls, const Field& row, const Record& before,
                                const Record& now) {
    for (const Field& property : propertiesOf(cls, row)) {
        if (property.get == nullptr || property.kind == ValueKind::Picture) continue;
        if (property.get(before) != property.get(now)) return property.name;
    }
    return nameOfRow(cls, row);
}

/// A list whose entries have lengths of their own, before it was edited and now.
class EntryMerge {
public:
    EntryMerge(const ListAccess& list, const Survey::Part& part, const AtomAsRead& read,
               const VexQTAtom& atom)
        : part_(part), read_(read) {
        for (std::size_t i = 0; i < list.size(*read.record); ++i)
            wouldBe_.push_back(list.entryBytes(*read.record, i));
        for (std::size_t i = 0; i < list.size(atom); ++i) now_.push_back(list.entryBytes(atom, i));
        isKnown_ = wouldBe_.size() == read.survey.entries.size();
    }

    /// Whether it is known where each entry lies.
    bool isKnown() const { return isKnown_; }

    /// What stands in front of the entries, their number for instance, and then the entries. Bytes
    /// that are no entry stay behind the one that they follow.
    EditedRow merged(ByteView rowWouldBe, ByteView rowNow) const {
        const auto headOf = [](ByteView row, const std::vector<Bytes>& entries) {
            for (const Bytes& entry : entries) row = row.first(row.size() - entry.size());
            return row;
        };
        EditedRow row;
        const ByteView nowHead = headOf(rowNow, now_);
        const ByteView wasHead = read_.part(part_.start, startOf(0)).view();
        const bool isHeadKept = std::ranges::equal(headOf(rowWouldBe, wouldBe_), nowHead);
        append(row.bytes, isHeadKept ? wasHead : nowHead);

        const std::size_t count = wouldBe_.size();
        const auto [before, behind] =
            unedited(count, now_.size(),
                     [&](std::size_t i, std::size_t j) { return wouldBe_[i] == now_[j]; });
        for (std::size_t i = 0; i < before; ++i) appendKept(row, i);
        if (count == now_.size()) {
            appendInPlace(row, before, count - behind);
        } else {
            appendMoved(row, before, count - behind, now_.size() - behind);
        }
        for (std::size_t i = count - behind; i < count; ++i) appendKept(row, i);
        return row;
    }

private:
    std::size_t startOf(std::size_t i) const {
        return i < read_.survey.entries.size() ? read_.survey.entries[i].start : part_.end;
    }
    ByteView wasEntry(std::size_t i) const {
        return read_.part(startOf(i), read_.survey.entries[i].end).view();
    }
    void appendKept(EditedRow& row, std::size_t i) const {
        append(row.bytes, wasEntry(i));
        appendGap(row, i);
    }
    bool isAsItsClassWrites(std::size_t i) const {
        return std::ranges::equal(wasEntry(i), wouldBe_[i]);
    }

    /// As many entries as before: each is the one that was read in its place.
    void appendInPlace(EditedRow& row, std::size_t begin, std::size_t end) const {
        for (std::size_t i = begin; i < end; ++i) {
            if (wouldBe_[i] == now_[i]) {
                appendKept(row, i);
                continue;
            }
            append(row.bytes, now_[i]);
            appendGap(row, i);
            row.isRewritten |= !isAsItsClassWrites(i);
        }
    }

    /// Entries were inserted or removed, and perhaps others edited: those that are still there are
    /// looked for in the order in which they stood.
    void appendMoved(EditedRow& row, std::size_t begin, std::size_t end, std::size_t nowEnd) const {
        bool isAnyNew = false, isAnyOddGone = false;
        std::size_t next = begin;
        const auto leaveOutUpTo = [&](std::size_t place) {
            for (; next < place; ++next) {
                appendGap(row, next);
                isAnyOddGone |= !isAsItsClassWrites(next);
            }
        };
        for (std::size_t j = begin; j < nowEnd; ++j) {
            std::size_t place = next;
            while (place < end && wouldBe_[place] != now_[j]) ++place;
            if (place < end) {
                leaveOutUpTo(place);
                appendKept(row, next++);
            } else {
                append(row.bytes, now_[j]);
                isAnyNew = true;
            }
        }
        leaveOutUpTo(end);
        row.isRewritten = isAnyNew && isAnyOddGone;
    }

    void appendGap(EditedRow& row, std::size_t i) const {
        append(row.bytes, read_.part(read_.survey.entries[i].end, startOf(i + 1)).view());
    }

    const Survey::Part& part_;
    const AtomAsRead& read_;
    std::vector<Bytes> wouldBe_, now_;
    bool isKnown_ = false;
};

/// Whether what was kept behind a value is no part of it, to judge by its first byte and by all of
/// it. Of a text without an end of its own that is too long for its class to read it is one.
bool isApart(ByteView kept, ByteView value, const Survey::Part& part, const AtomAsRead& read) {
    const auto readAs = [&](ByteView bytes) -> std::optional<Bytes> {
        const auto record = read.withRow(part, bytes);
        return record ? encodedRow(*part.row, *record) : std::nullopt;
    };
    const auto alone = readAs(value);
    if (!alone) return true;  // It is too short to stand alone.
    return readAs(kept.first(value.size() + 1)) == alone && readAs(kept) == alone;
}

}  // namespace

std::optional<EditedRow> editedRow(const Survey::Part& part, const AtomAsRead& read,
                                   const VexQTAtom& atom) {
    const Field& row = *part.row;
    std::optional<Bytes> wouldBe;
    try {
        wouldBe = encodedRow(row, *read.record);
    } catch (const Error&) {
        return std::nullopt;  // What its class cannot write at all stays as it is.
    }
    const auto now = encodedRow(row, atom);
    if (wouldBe == now) return std::nullopt;

    const ByteView before = wouldBe ? ByteView(*wouldBe) : ByteView();
    const ByteView after = now ? ByteView(*now) : ByteView();
    const std::span<const Field> properties = propertiesOf(atom.atomClass(), row);
    for (const Field& property : properties) {
        if (property.list == nullptr || property.list->entryBytes == nullptr) continue;
        const EntryMerge entries(*property.list, part, read, atom);
        if (entries.isKnown()) return entries.merged(before, after);
    }
    EditedRow merged = mergedRow(row, read.part(part.start, part.end).view(), before, after);
    if (merged.bytes.size() > after.size() && !isApart(merged.bytes, after, part, read))
        merged = {.bytes = Bytes(after.begin(), after.end()), .isRewritten = true};
    // Where the row is one value, all that was written anew is what was edited.
    const bool isOneValue = properties.size() == 1 && properties.front().list == nullptr;
    if (isOneValue) merged.isRewritten = false;
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
        // A size that has wrapped past 4 GiB, as a child was removed that it did not count, adds
        // the length of a longer header to what is written once. Then it is forgotten.
        atom.atomData();
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
    // The bytes of a root atom with an extended size begin behind its type.
    const bool holdType = atom.extent().length == atom.origin().size();
    if (atom.declinedClass()) {
        const Bytes now = atom.atomData();
        const bool isEdited = !std::ranges::equal(now, atom.origin().view());
        if (isEdited) edits_.push_back({&atom, "type"});
        out.append(isEdited && holdType ? SharedBytes::copyOf(now) : atom.origin());
        return out;
    }
    const AtomAsRead read(atom);
    const bool hasHeader = atom.atomClass().header != HeaderRule::None;
    // Free space and media data have no rows, and a header may lie in fewer bytes than it takes.
    std::size_t headerEnd = hasHeader ? read.bytes.size() : 0;
    if (!read.survey.rows.empty()) headerEnd = std::min(headerEnd, read.survey.rows.front().start);
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
        if (row.encode == nullptr) continue;
        body.append(read.part(position, part->start));
        position = part->end;
        if (!isPresent(row, atom)) continue;  // The edit of another row threw this one out.
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
        if (newLength != read.bytes.size()) noteSize(atom, header.view());
        ByteWriter patched;
        patched.append(newLength != read.bytes.size()
                           ? grownSize(header.view(), read.bytes.size(), newLength)
                           : Bytes(header.view().begin(), header.view().end()));
        if (isTypeEdited && holdType) patched.patchU32(4, writtenType(atom));
        header = SharedBytes::copyOf(patched.view());
    }
    out.append(header);
    if (atom.atomClass().writtenHeader == WrittenHeader::InRows && newLength != read.bytes.size()) {
        // Its first row is its size.
        const SharedBytes flat = body.flat();
        noteSize(atom, flat.view());
        out.append(grownSize(flat.view(), read.bytes.size(), newLength));
        return out;
    }
    out.append(std::move(body));
    return out;
}

/// Whether the size field tells the length is looked at where it is about to change.
void Surgery::noteSize(const VexQTAtom& atom, ByteView header) {
    const std::uint32_t size = ByteReader(header).u32();
    const bool isPlain = size > 1;  // 0 and 1 are no sizes.
    if (isPlain && size != atom.origin().size()) disagreeingSizes_.push_back(&atom);
}

void Surgery::appendRow(const Field& row, const Survey::Part& part, const AtomAsRead& read,
                        VexQTAtom& atom, ByteRope& out) {
    const SharedBytes bytes = read.part(part.start, part.end);
    if (row.untouched != nullptr && row.untouched(atom)) return out.append(bytes);
    const auto edited = editedRow(part, read, atom);
    if (!edited) return out.append(bytes);
    edits_.push_back(
        {&atom, editedProperty(atom.atomClass(), row, *read.record, atom), edited->isRewritten});
    out.append(edited->bytes);
}

void Surgery::appendChildren(const Survey::Part& region, const AtomAsRead& read, VexQTAtom& atom,
                             ByteRope& out) {
    const auto& parts = read.survey.children;
    std::vector<std::size_t> starts;
    for (const Survey::Part& part : parts) starts.push_back(part.start);

    /// Which of the children that were read this one is; their number for one that is new.
    const auto placeOf = [&](const VexQTAtom& child) {
        const auto start = read.bytes.offsetOf(child.origin());
        if (!start) return parts.size();
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
