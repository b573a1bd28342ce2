#include "testing/made_movies.h"

#include "atoms/all_classes.h"
#include "testing/bytes.h"

namespace vexqt::testing {

Bytes defaultAtom(const AtomClass& cls) {
    try {
        if (Bytes bytes = cls.create()->atomData(); bytes.size() >= 8) return bytes;
    } catch (const Error&) {
        // The text styles of a fresh atom have colours without red.
    }
    return atom(cls.type);
}

namespace {

/// The container that a class occurs in; null for root atoms and for what no table names.
const AtomClass* containerOf(const AtomClass& cls) {
    for (const AtomClass* container : kAllClasses)
        for (const ChildRule& rule : container->children)
            if (rule.cls == &cls && container != &cls) return container;
    return nullptr;
}

}  // namespace

Bytes defaultAtomInPlace(const AtomClass& cls) {
    Bytes bytes = defaultAtom(cls);
    const AtomClass* inner = &cls;
    for (int level = 0; level < 12; ++level) {
        const AtomClass* container = containerOf(*inner);
        if (container == nullptr) break;
        // What stands in front of the children of a full atom.
        const Bytes fields = defaultAtom(*container);
        bytes = atom(container->type, {ByteView(fields).subspan(8), bytes});
        inner = container;
    }
    return bytes;
}

namespace {

class MovieMaker {
public:
    explicit MovieMaker(Decisions& decisions) : decisions_(decisions) {}

    Bytes movie() {
        Bytes all = atom("ftyp"_os, {text("qt  "), u32(0x200), text("qt  ")});
        while (!decisions_.areUsedUp() && all.size() < 20'000) append(all, root());
        return all;
    }

private:
    static void append(Bytes& all, ByteView part) {
        all.insert(all.end(), part.begin(), part.end());
    }

    Bytes root() {
        switch (decisions_.below(6)) {
            case 0:
                return atom("free"_os, {decisions_.bytes(30)});
            case 1:
                return atom("mdat"_os, {decisions_.bytes(30)});
            case 2:
                return made(VexQTmoofAtom::kClass, 0);
            case 3:
                return noise();
            default:
                return made(VexQTmoovAtom::kClass, 0);
        }
    }

    Bytes noise() {
        const auto type = static_cast<OSType>(decisions_.number(4));
        return withSizeAsDecided(atom(type, {decisions_.bytes(60)}));
    }

    Bytes made(const AtomClass& cls, int depth) {
        Bytes bytes = defaultAtom(cls);
        if (!cls.children.empty() && depth < 8) {
            const std::size_t count = decisions_.below(5);
            for (std::size_t i = 0; i < count; ++i) append(bytes, child(cls, depth + 1));
            return withSizeAsDecided(atom(cls.type, {ByteView(bytes).subspan(8)}));
        }
        return withSizeAsDecided(withChanges(std::move(bytes)));
    }

    Bytes child(const AtomClass& container, int depth) {
        const std::size_t kind = decisions_.below(16);
        if (kind == 0) return noise();
        if (kind == 1) return made(*kAllClasses[decisions_.below(std::size(kAllClasses))], depth);
        const ChildRule& rule = container.children[decisions_.below(container.children.size())];
        return rule.cls != nullptr ? made(*rule.cls, depth) : atom(rule.type);
    }

    Bytes withChanges(Bytes bytes) {
        const std::size_t kind = decisions_.below(8);
        if (kind == 0) bytes.resize(8 + decisions_.below(bytes.size() - 7));
        if (kind == 1 || kind == 2) append(bytes, decisions_.bytes(60));
        const std::size_t count = decisions_.below(6);
        for (std::size_t i = 0; i < count && bytes.size() > 8; ++i)
            bytes[8 + decisions_.below(bytes.size() - 8)] = decisions_.byte();
        // The size field again tells the length.
        const Bytes size = u32(static_cast<std::uint32_t>(bytes.size()));
        std::copy(size.begin(), size.end(), bytes.begin());
        return bytes;
    }

    /// Once in a while a size field is not what it should be.
    Bytes withSizeAsDecided(Bytes bytes) {
        if (decisions_.below(32) != 1) return bytes;
        const Bytes size = u32(static_cast<std::uint32_t>(decisions_.number(4)));
        if (decisions_.byte() % 2 == 0) {
            bytes[3] = size[3];
        } else {
            std::copy(size.begin(), size.end(), bytes.begin());
        }
        return bytes;
    }

    Decisions& decisions_;
};

}  // namespace

Bytes decidedMovie(Decisions& decisions) { return MovieMaker(decisions).movie(); }

}  // namespace vexqt::testing
