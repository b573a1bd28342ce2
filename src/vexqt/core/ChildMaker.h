#pragma once

#include "vexqt/core/VexQTAtom.h"
#include "vexqt/export.h"

namespace vexqt {

/// Makes the children of one atom while it is read: the one place where children are made, and so
/// the one place where reading is strict or tolerant.
///
/// Strictly, a child that reaches past the end, declines its bytes or raises ends the reading. A
/// tolerant reading keeps what is there of it, as a generic atom with its raw bytes where its class
/// does not take them, and lists the problem.
class VEXQT_EXPORT ChildMaker {
public:
    /// For the children of a holder that is read at this moment.
    ChildMaker(VexQTAtom& holder, AtomReader& in) : holder_(holder), in_(in) {}

    /// Size and type of the next child.
    struct Header {
        OSType type = 0;          ///< The four-character code.
        std::uint64_t size = 0;   ///< As it stands in the size field or the extended one.
        bool isExtended = false;  ///< Whether it takes 16 bytes.
    };
    /// The header at the reader's position, which does not move.
    Header peek() const;

    /// How a holder's children differ from those of a plain container.
    struct Particulars {
        VexQTAtom* parent = nullptr;      ///< Told to the child; most often the holder.
        std::string_view lineWhenNone{};  ///< Logged before a declined child raises.
    };

    /// Takes the next bytes, makes a child of them and adds it to the holder. Without a class they
    /// are taken and dropped, unless their size is wrong. Gives the child, null for none: a survey
    /// only counts them.
    /// \throws InsertionError when the class declines the bytes, and what decoding them raises.
    VexQTAtom* add(const AtomClass* cls, OSType type, std::uint64_t size,
                   const Particulars& particulars);
    /// The same for a child whose parent is the holder.
    VexQTAtom* add(const AtomClass* cls, OSType type, std::uint64_t size) {
        return add(cls, type, size, {.parent = &holder_});
    }
    /// Makes a child of all the bytes that are left. Null where its class declines them: then it is
    /// left out, whatever the reading.
    VexQTAtom* addRest(const AtomClass& cls);

    /// An atom of a class from its bytes, or what a tolerant reading keeps in its place. Never
    /// null. \throws InsertionError when the class declines the bytes, and what decoding them
    /// raises.
    static std::unique_ptr<VexQTAtom> made(const AtomClass& cls, OSType type,
                                           const SharedBytes& bytes, std::uint64_t offsetInFile,
                                           const Particulars& particulars, ReadContext& context);

private:
    bool hasHeader(const AtomClass* cls, std::uint64_t size) const;
    SharedBytes take(std::uint64_t size, bool isLongEnough, std::uint64_t offsetInFile);

    VexQTAtom& holder_;
    AtomReader& in_;
};

}  // namespace vexqt
