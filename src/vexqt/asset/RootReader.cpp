#include "vexqt/asset/RootReader.h"

#include "vexqt/atoms/structure/VexQTfreeAtom.h"
#include "vexqt/atoms/structure/VexQTmdatAtom.h"
#include "vexqt/atoms/structure/VexQTmoofAtom.h"
#include "vexqt/atoms/structure/VexQTmoovAtom.h"
#include "vexqt/core/ChildMaker.h"
#include "vexqt/platform/log.h"

namespace vexqt {

static constexpr std::uint64_t kHeaderLength = 8;
/// What a tolerant reading takes of atoms that it knows nothing about, all together. Far more than
/// writers put there, far less than the media that a damaged header lets pass for such an atom.
static constexpr std::uint64_t kMostUnknownBytes = std::uint64_t{64} << 20;

std::uint64_t RootReader::Header::end() const {
    const std::uint64_t sum = contents() + size;
    return sum < size ? std::numeric_limits<std::uint64_t>::max() : sum;
}

// MARK: Where the two readers differ

bool RootReader::refusesTruncated(const Header& header) const {
    return kind_ == ReaderKind::OfMemory && reachesPastEnd(header) && !context_.isTolerant();
}

std::uint64_t RootReader::offsetOfFree(const Header& header) const {
    return kind_ == ReaderKind::OfFiles ? header.contents() + kHeaderLength : header.contents();
}

bool RootReader::readsHeaderAt(std::uint64_t position) const {
    const std::uint64_t length = source_.length();
    if (length < kHeaderLength) return false;
    return kind_ == ReaderKind::OfFiles ? position <= length - kHeaderLength
                                        : position < length - kHeaderLength;
}

// MARK: The plan of both

RootReader::Header RootReader::readHeader(std::uint64_t position) {
    const SharedBytes bytes = source_.read(position, 2 * kHeaderLength);
    ByteReader in(bytes.view());
    Header header = {.start = position, .size = in.u32(), .type = in.u32()};
    if (header.size == 1) {
        header.length = 2 * kHeaderLength;
        header.isCut = in.remaining() < sizeof(std::uint64_t);
        if (!header.isCut) header.size = in.u64() - kHeaderLength;
    }
    if (header.size != 0) return header;
    header.size = header.length - kHeaderLength;
    if (header.size == 0 && context_.isTolerant()) header.size = source_.length() - position;
    return header;
}

void RootReader::read(const std::function<bool(const VexQTftypAtom&)>& accepts) {
    if (source_.length() < kHeaderLength) {
        if (kind_ == ReaderKind::OfMemory && !context_.isTolerant())
            throw RangeError(0, kHeaderLength, source_.length());
        if (context_.isTolerant())
            context_.addProblem(
                0, "too short for an atom: " + std::to_string(source_.length()) + " bytes", true);
        return;
    }
    std::uint64_t position = 0;
    while (true) {
        const Header header = readHeader(position);
        const ReadContext::Step step(context_, header.type, roots_);
        try {
            if (header.isCut) {
                const std::uint64_t there = source_.length() - position;
                if (!context_.isTolerant()) throw RangeError(kHeaderLength, kHeaderLength, there);
                context_.addProblem(position, "the file ends inside its header", true);
                return;
            }
            if (readAtom(header, accepts) == Next::Stop) return;
            if (!readsHeaderAt(header.end()) && kind_ == ReaderKind::OfMemory) return;
            if (header.end() <= position)
                throw RangeError("a size of 0 does not move forward", position);
        } catch (Error& error) {
            error.enter(step.segment(), position);
            throw;
        }
        position = header.end();
        if (!readsHeaderAt(position)) return;
    }
}

bool RootReader::isTooLong(const Header& header) {
    if (!context_.isTolerant()) return false;
    unknownLength_ += lengthThere(header);
    return unknownLength_ > kMostUnknownBytes;
}

RootReader::Next RootReader::addLeftInFile(const Header& header, std::uint64_t offsetInFile) {
    context_.addProblem(header.start, std::to_string(lengthThere(header)) +
                                          " bytes that are no movie - left in the file unread");
    auto atom = std::make_unique<VexQTAtom>(header.type, 0, nullptr, offsetInFile);
    atom->increaseSizeBy(static_cast<std::int64_t>(header.size));
    return add(std::move(atom), header);
}

RootReader::Next RootReader::readAtom(const Header& header,
                                      const std::function<bool(const VexQTftypAtom&)>& accepts) {
    if (refusesTruncated(header)) {
        log("Atom '" + textFromCode(header.type) + "' declares size " +
            std::to_string(header.size) + " but only " + std::to_string(source_.length()) +
            " bytes are available - truncated data, stopping parse");
        return Next::Stop;
    }
    if (context_.isTolerant() && reachesPastEnd(header)) {
        context_.addProblem(header.start,
                            "declares " + std::to_string(header.size) + " bytes, " +
                                std::to_string(lengthThere(header)) +
                                " there - the file is cut short",
                            true);
    }
    const std::uint64_t offset = header.contents();
    switch (header.type) {
        case "free"_os:
            return add(std::make_unique<VexQTfreeAtom>(header.size, offsetOfFree(header), nullptr),
                       header);
        case "mdat"_os:
            if (header.size == 0) return Next::Stop;
            return add(std::make_unique<VexQTmdatAtom>(header.size, offset, nullptr), header);
        case "ftyp"_os: {
            if (isTooLong(header)) return addLeftInFile(header, offset);
            add(decoded(VexQTftypAtom::kClass, header, offset), header);
            const auto* fileType = dynamic_cast<const VexQTftypAtom*>(roots_.back().get());
            return fileType == nullptr || accepts(*fileType) ? Next::Read : Next::Stop;
        }
        case "moov"_os: {
            auto atom = decoded(VexQTmoovAtom::kClass, header, offset);
            if (auto* movie = dynamic_cast<VexQTmoovAtom*>(atom.get()))
                movie->setOriginalSize(header.size);
            return add(std::move(atom), header);
        }
        case "moof"_os: {
            auto atom = decoded(VexQTmoofAtom::kClass, header, offset);
            if (auto* segment = dynamic_cast<VexQTmoofAtom*>(atom.get()))
                segment->setOriginalSize(header.size);
            return add(std::move(atom), header);
        }
        default: {
            const std::uint64_t end = std::min(header.end(), source_.length());
            if (end == offset) {
                log("Empty Atom");
                return Next::Stop;
            }
            // Hosts know a generic root atom by this offset: 8 bytes before its end.
            const std::uint64_t offsetOfGeneric = std::max(end, kHeaderLength) - kHeaderLength;
            if (isTooLong(header)) return addLeftInFile(header, offsetOfGeneric);
            return add(decoded(VexQTAtom::kClass, header, offsetOfGeneric), header);
        }
    }
}

std::unique_ptr<VexQTAtom> RootReader::decoded(const AtomClass& cls, const Header& header,
                                               std::uint64_t offsetInFile) {
    return ChildMaker::made(cls, header.type, source_.read(header.contents(), header.size),
                            offsetInFile, {}, context_);
}

std::uint64_t RootReader::lengthThere(const Header& header) const {
    return std::min(header.end(), source_.length()) - header.start;
}

RootReader::Next RootReader::add(std::unique_ptr<VexQTAtom> atom, const Header& header) {
    atom->setExtent({header.start, header.length, lengthThere(header)});
    roots_.push_back(std::move(atom));
    return Next::Read;
}

}  // namespace vexqt
