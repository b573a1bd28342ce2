#include "vexqt/core/ChildMaker.h"

#include "vexqt/platform/log.h"

namespace vexqt {

static constexpr std::size_t kHeaderLength = 8;

ChildMaker::Header ChildMaker::peek() const {
    ByteReader in = in_;
    Header header;
    header.size = in.u32();
    header.type = in.u32();
    header.isExtended = header.size == 1;
    if (!header.isExtended) return header;
    // Cut short: whoever makes the child meets the end of the bytes again and deals with it.
    const bool isCut = in.remaining() < sizeof(std::uint64_t);
    header.size = isCut && in_.context().isTolerant() ? in_.remaining() : in.u64();
    return header;
}

/// Whether a child of that size has room for the header that it begins with.
bool ChildMaker::hasHeader(const AtomClass* cls, std::uint64_t size) const {
    ByteReader in = in_;
    const bool isExtended = (cls == nullptr || cls->header != HeaderRule::None) &&
                            in.remaining() >= sizeof(std::uint32_t) && in.u32() == 1;
    return size >= (isExtended ? 2 * kHeaderLength : kHeaderLength);
}

[[gnu::noinline]] SharedBytes ChildMaker::take(std::uint64_t size, bool isLongEnough,
                                               std::uint64_t offsetInFile) {
    ReadContext& context = in_.context();
    if (!context.isTolerant()) {
        if (size == 0) throw RangeError("a size of 0 does not move forward", in_.position());
        return in_.takeShared(size);
    }
    if (size > in_.remaining()) {
        context.addProblem(offsetInFile,
                           "declares " + std::to_string(size) + " bytes, " +
                               std::to_string(in_.remaining()) +
                               " there - kept to the end of what holds it",
                           true);
        return in_.restShared();
    }
    if (!isLongEnough) {
        // Nothing tells where the next child begins.
        context.addProblem(offsetInFile,
                           std::to_string(size) +
                               " bytes are no whole header - kept as raw data to "
                               "the end of what holds it",
                           true);
        return in_.restShared();
    }
    return in_.takeShared(size);
}

// Texts are put together out of the way of the descent, which takes its stack at every level.

[[noreturn, gnu::noinline]] static void raiseDeclined(const AtomClass& cls, std::size_t length) {
    throw InsertionError(std::string(cls.className) + " declines " + std::to_string(length) +
                         " bytes");
}

[[gnu::noinline]] static std::unique_ptr<VexQTAtom> declined(
    const AtomClass& cls, const Error* error, OSType type, const SharedBytes& bytes,
    std::uint64_t offsetInFile, const ChildMaker::Particulars& particulars, ReadContext& context) {
    std::string reason = error ? error->message() : std::to_string(bytes.size()) + " bytes";
    context.renameInnermost(type);
    context.addProblem(offsetInFile, "Atom '" + textFromCode(type) + "' declined by " +
                                         std::string(cls.className) + " (" + reason +
                                         ") - kept as raw data");
    return VexQTAtom::makeDeclined(cls, std::move(reason), type, bytes, particulars.parent,
                                   offsetInFile);
}

[[gnu::noinline]] static void note(Survey& survey, std::size_t start, std::size_t end) {
    survey.children.push_back({.start = start, .end = end});
}

std::unique_ptr<VexQTAtom> ChildMaker::made(const AtomClass& cls, OSType type,
                                            const SharedBytes& bytes, std::uint64_t offsetInFile,
                                            const Particulars& particulars, ReadContext& context) {
    if (!context.isTolerant()) {
        auto child = VexQTAtom::make(cls, bytes, particulars.parent, offsetInFile, context);
        if (child) return child;
        if (!particulars.lineWhenNone.empty()) log(particulars.lineWhenNone);
        raiseDeclined(cls, bytes.size());
    }
    try {
        auto child = VexQTAtom::make(cls, bytes, particulars.parent, offsetInFile, context);
        if (child) return child;
        return declined(cls, nullptr, type, bytes, offsetInFile, particulars, context);
    } catch (const Error& error) {
        return declined(cls, &error, type, bytes, offsetInFile, particulars, context);
    }
}

/// The type under which a child will be found: entries that begin with their own format have their
/// class's type all the same.
static OSType typeInTree(const AtomClass* cls, OSType type) {
    const bool isTypeOfClass =
        cls != nullptr && cls->header == HeaderRule::None && cls->type != kAnyType;
    return isTypeOfClass ? cls->type : type;
}

VexQTAtom* ChildMaker::add(const AtomClass* cls, OSType type, std::uint64_t size,
                           const Particulars& particulars) {
    const std::size_t start = in_.position();
    const std::uint64_t offsetInFile = holder_.offsetInFile() + start;
    const ReadContext::Step step(in_.context(), typeInTree(cls, type), holder_.children());
    try {
        const bool isLongEnough = !in_.context().isTolerant() || hasHeader(cls, size);
        const bool isCut = size > in_.remaining();
        const SharedBytes bytes = take(size, isLongEnough, offsetInFile);
        if (cls == nullptr) {
            if (isLongEnough && !isCut) return nullptr;
            cls = &VexQTAtom::kClass;  // What else it swallowed is not dropped with it.
        }
        if (Survey* survey = in_.context().survey()) {
            note(*survey, start, in_.position());
            holder_.addChild(std::make_unique<VexQTAtom>());  // Stands in for it in counts.
            return nullptr;
        }
        holder_.addChild(isLongEnough
                             ? made(*cls, type, bytes, offsetInFile, particulars, in_.context())
                             : VexQTAtom::makeDeclined(*cls, "no whole header", type, bytes,
                                                       particulars.parent, offsetInFile));
    } catch (Error& error) {
        error.enter(step.segment(), offsetInFile);
        throw;
    }
    return holder_.children().back().get();
}

VexQTAtom* ChildMaker::addRest(const AtomClass& cls) {
    if (!cls.accepts.accepts(in_.remaining())) {
        in_.restShared();
        return nullptr;
    }
    if (in_.context().isTolerant() && in_.remaining() == 0) {
        in_.context().addProblem(
            holder_.offsetInFile() + in_.position(),
            "nothing is left for the " + std::string(cls.className) + " that belongs here");
        return nullptr;
    }
    return add(&cls, cls.type, in_.remaining());
}

}  // namespace vexqt
