#include "vexqt/saving/ExactWriting.h"

#include "vexqt/asset/AtomPath.h"
#include "vexqt/core/hex.h"
#include "vexqt/saving/AtomRows.h"

namespace vexqt {

std::string_view textOf(Severity severity) {
    switch (severity) {
        case Severity::Note:
            return "note";
        case Severity::Changes:
            return "changes";
        case Severity::Destroys:
            break;
    }
    return "destroys";
}

namespace {

class Comparison {
public:
    void add(VexQTAtom& atom, const std::string& path);
    std::vector<Finding> take() { return std::move(findings_); }

private:
    void addRow(const VexQTAtom& atom, const Field& row, const Survey::Part& part,
                const AtomAsRead& read, const std::string& path);
    void addDropped(const VexQTAtom& atom, const AtomAsRead& read, const std::string& path);
    void addSize(const VexQTAtom& atom, const std::string& path);
    void report(std::string_view id, Severity severity, const std::string& path, FileRange range,
                std::string message) {
        findings_.push_back({id, severity, path, range, std::move(message)});
    }

    std::vector<Finding> findings_;
};

std::string shortHex(ByteView bytes) {
    constexpr std::size_t kMost = 8;
    std::string text = hexRepresentation(bytes.first(std::min(bytes.size(), kMost)));
    if (!text.empty()) text.pop_back();
    if (bytes.size() > kMost) text += " …";
    return text.empty() ? "nothing" : text;
}

/// Where the bytes of an atom begin in the file, header included in what is counted.
std::uint64_t startInFile(const VexQTAtom& atom) {
    const Extent extent = atom.extent();
    return extent.start + extent.length - atom.origin().size();
}

void Comparison::addRow(const VexQTAtom& atom, const Field& row, const Survey::Part& part,
                        const AtomAsRead& read, const std::string& path) {
    const AtomClass& cls = atom.atomClass();
    const bool holdsSize = cls.header == HeaderRule::None && part.start == 0 &&
                           cls.writtenHeader == WrittenHeader::InRows;
    if (holdsSize) return;  // It is put in at the end: addSize tells of it.
    const SharedBytes shared = read.part(part.start, part.end);
    const ByteView was = shared.view();
    const std::string_view name = nameOfRow(atom.atomClass(), row);
    const std::string what = name.empty() ? "bytes" : "'" + std::string(name) + "'";
    const std::uint64_t offset = startInFile(atom) + part.start;
    std::optional<Bytes> wouldBe, now;
    try {
        wouldBe = encodedRow(row, *read.record);
        now = encodedRow(row, atom);
    } catch (const Error& error) {
        report("atom-refuses", Severity::Destroys, path, {offset, was.size()},
               what + " cannot be written: " + error.message());
        return;
    }
    const bool isEdited = wouldBe != now;
    const Bytes written = now.value_or(Bytes());
    if (std::ranges::equal(was, written)) return;
    const auto [before, after] = std::ranges::mismatch(was, written);
    const auto first = static_cast<std::size_t>(before - was.begin());
    report("atom-changes", isEdited ? Severity::Note : Severity::Changes, path,
           {offset + first, was.size() - first},
           what +
               (isEdited       ? " was edited"
                : name.empty() ? " change by themselves"
                               : " changes by itself") +
               ", from " + shortHex(was.subspan(first)) + " to " +
               shortHex(ByteView(written).subspan(first)));
}

/// What lies in the atom's bytes and is neither a row that is written nor a child.
void Comparison::addDropped(const VexQTAtom& atom, const AtomAsRead& read,
                            const std::string& path) {
    std::vector<Survey::Part> covered = read.survey.children;
    for (const Survey::Part& part : read.survey.rows)
        if (part.row->encode != nullptr && !part.row->holdsChildren) covered.push_back(part);
    std::ranges::sort(covered, {}, &Survey::Part::start);
    const bool hasHeader = atom.atomClass().header != HeaderRule::None;
    std::size_t position = hasHeader ? read.survey.rows.front().start : 0;
    covered.push_back({.start = read.bytes.size(), .end = read.bytes.size()});
    for (const Survey::Part& part : covered) {
        if (part.start > position) {
            const std::size_t length = part.start - position;
            report("atom-dropped", Severity::Changes, path, {startInFile(atom) + position, length},
                   std::to_string(length) + " bytes are not written: " +
                       shortHex(read.part(position, part.start).view()));
        }
        position = std::max(position, part.end);
    }
}

void Comparison::addSize(const VexQTAtom& atom, const std::string& path) {
    const AtomClass& cls = atom.atomClass();
    const ByteView bytes = atom.origin().view();
    const bool isEntry = cls.header == HeaderRule::None;
    if ((isEntry && cls.writtenHeader != WrittenHeader::InRows) || bytes.size() < 8) return;
    const Extent extent = atom.extent();
    // The bytes of a root atom with an extended size begin inside its header.
    if (extent.length != bytes.size()) return;
    ByteReader in(bytes);
    std::uint64_t size = in.u32();
    in.skip(4);
    if (size == 1 && in.remaining() >= sizeof(std::uint64_t)) size = in.u64();
    if (size != bytes.size()) {
        report("size-disagrees", Severity::Changes, path, {extent.start, bytes.size()},
               "its size field says " + std::to_string(size) + ", it has " +
                   std::to_string(bytes.size()) + " bytes");
    } else if (extent.headerLength == 16 && bytes.size() <= 0xFFFFFFFF) {
        report("atom-changes", Severity::Changes, path, {extent.start, 16},
               "its header of 16 bytes becomes one of 8");
    }
}

void Comparison::add(VexQTAtom& atom, const std::string& path) {
    if (atom.origin().size() == 0) {
        report("atom-changes", Severity::Note, path, {}, "was inserted");
        return;
    }
    if (atom.declinedClass()) return;  // Written back as it is.
    addSize(atom, path);
    const AtomAsRead read(atom);
    for (const Survey::Part& part : read.survey.rows)
        if (part.row->encode != nullptr && !part.row->holdsChildren)
            addRow(atom, *part.row, part, read, path);
    addDropped(atom, read, path);

    const auto segments = AtomPath::segmentsOf(atom.children());
    for (std::size_t i = 0; i < segments.size(); ++i)
        add(*atom.children()[i], path + "." + segments[i]);
    if (atom.atomClass().writtenHeader == WrittenHeader::None && atom.atomData().empty()) {
        report("atom-dropped", Severity::Destroys, path, {startInFile(atom), read.bytes.size()},
               "is not written at all");
    }
}

}  // namespace

std::vector<Finding> exactWritingFindings(VexQTAtom& root, std::string_view rootPath) {
    Comparison comparison;
    comparison.add(root, std::string(rootPath));
    return comparison.take();
}

}  // namespace vexqt
