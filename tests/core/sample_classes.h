// Atom classes that exist in tests alone.
#pragma once

#include "vexqt/core/ContainerAtom.h"
#include "vexqt/core/codecs.h"

namespace vexqt::testing {

/// 12 bytes: a number.
class Leaf final : public AtomOf<Leaf> {
public:
    static const AtomClass kClass;
    std::uint32_t number() const { return number_; }

private:
    struct Layout;
    std::uint32_t number_ = 0;
};

struct Leaf::Layout {
    static constexpr Field fields[] = {field<&Leaf::number_, U32>("number")};
};
inline constinit const AtomClass Leaf::kClass = {.type = "leaf"_os,
                                                 .className = "Leaf",
                                                 .atomName = "Leaf",
                                                 .accepts = exactly(12),
                                                 .fields = Layout::fields,
                                                 .create = vexqt::create<Leaf>};

/// Takes any number of bytes and raises for fewer than 16.
class Hungry final : public AtomOf<Hungry> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
    std::uint64_t number_ = 0;
};

struct Hungry::Layout {
    static constexpr Field fields[] = {field<&Hungry::number_, U64>("number")};
};
inline constinit const AtomClass Hungry::kClass = {.type = "hung"_os,
                                                   .className = "Hungry",
                                                   .atomName = "Hungry",
                                                   .fields = Layout::fields,
                                                   .create = vexqt::create<Hungry>};

/// Cannot be written.
class Stubborn final : public AtomOf<Stubborn> {
public:
    static const AtomClass kClass;

private:
    struct Layout;
};

struct Stubborn::Layout {
    static constexpr Field fields[] = {
        {.encode = [](const Record&, ByteWriter&) { throw EncodingError("it has no form"); }}};
};
inline constinit const AtomClass Stubborn::kClass = {.type = "firm"_os,
                                                     .className = "Stubborn",
                                                     .atomName = "Stubborn",
                                                     .fields = Layout::fields,
                                                     .create = vexqt::create<Stubborn>};

/// Holds others of its own class, leaves, hungry and stubborn ones; drops 'drop'.
class Nest final : public AtomOf<Nest, ContainerAtom> {
public:
    static const AtomClass kClass;
    static const ChildRule kTable[5];
};

inline constinit const ChildRule Nest::kTable[] = {
    {.cls = &Nest::kClass},
    {.cls = &Leaf::kClass},
    {.cls = &Hungry::kClass},
    {.cls = &Stubborn::kClass},
    {.cls = nullptr, .type = "drop"_os},
};
inline constinit const AtomClass Nest::kClass = {.type = "nest"_os,
                                                 .className = "Nest",
                                                 .atomName = "Nest",
                                                 .header = HeaderRule::Read,
                                                 .writtenHeader = WrittenHeader::AsHeld,
                                                 .typeRule = TypeRule::Restored,
                                                 .fields = kOnlyChildAtoms,
                                                 .children = kTable,
                                                 .create = vexqt::create<Nest>};

/// Takes an extended size of 0 in a child for what it says.
class Stuck final : public AtomOf<Stuck, ContainerAtom> {
public:
    static const AtomClass kClass;
};
inline constinit const AtomClass Stuck::kClass = {.type = "stuk"_os,
                                                  .className = "Stuck",
                                                  .atomName = "Stuck",
                                                  .fields = kOnlyChildAtoms,
                                                  .zeroExtendedSizeReachesEnd = false,
                                                  .create = vexqt::create<Stuck>};

}  // namespace vexqt::testing
