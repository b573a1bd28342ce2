#include "vexqt/core/ReadContext.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "sample_classes.h"
#include "testing/bytes.h"
#include "testing/reading.h"

namespace vexqt {
namespace {

using namespace testing;

/// That many atoms, each but the innermost with the next one as its child.
Bytes nested(std::size_t levels) {
    Bytes bytes = atom("nest"_os, {u8(0)});
    while (--levels > 0) bytes = atom("nest"_os, {bytes});
    return bytes;
}

std::size_t depthOf(const VexQTAtom& atom) {
    return 1 + (atom.children().empty() ? 0 : depthOf(*atom.children()[0]));
}

TEST(Nesting, Of256LevelsIsRead) {
    const auto root = Nest::initWithData(nested(256), nullptr, 0);
    EXPECT_EQ(depthOf(*root), 256U);
    const auto [tolerant, problems] = readTolerantly<Nest>(nested(256));
    EXPECT_EQ(depthOf(*tolerant), 256U);
    EXPECT_TRUE(problems.empty());
}

TEST(Nesting, DeeperThan256LevelsIsANestingError) {
    const Bytes bytes = nested(257);
    try {
        Nest::initWithData(bytes, nullptr, 1000);
        FAIL();
    } catch (const NestingError& error) {
        EXPECT_EQ(error.message(), "nested deeper than 256 atoms");
        EXPECT_EQ(error.offsetInFile(), 1000U + 256 * 8);
        EXPECT_EQ(error.path().size(), 257 * 5 - 1U);
    }
}

TEST(Nesting, DeeperThan256LevelsStaysGenericWhenTolerant) {
    const Bytes bytes = nested(300);
    const auto [root, problems] = readTolerantly<Nest>(bytes, 1000);
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].offsetInFile, 1000U + 256 * 8);
    EXPECT_EQ(problems[0].message,
              "Atom 'nest' declined by Nest (nested deeper than 256 atoms) - kept as raw data");
    EXPECT_EQ(depthOf(*root), 257U);
    EXPECT_EQ(root->atomData(), bytes);
}

TEST(Nesting, OfAnyClassBelow256LevelsIsRefused) {
    const Bytes bytes = nested(256);
    Bytes deeper = atom("free"_os, {u8(1)});
    for (int i = 0; i < 256; ++i) deeper = atom("nest"_os, {deeper});
    EXPECT_THROW(Nest::initWithData(deeper, nullptr, 0), NestingError);
}

TEST(Nesting, CountsTheAtomsAboveOneThatIsReadAlone) {
    std::vector<std::unique_ptr<VexQTAtom>> chain;
    VexQTAtom* parent = nullptr;
    for (int i = 0; i < 255; ++i) {
        chain.push_back(std::make_unique<VexQTAtom>("abcd"_os, 8, parent, 0));
        parent = chain.back().get();
    }
    EXPECT_NE(VexQTAtom::initWithData(atom("free"_os), parent, 0), nullptr);
    EXPECT_THROW(Nest::initWithData(nested(2), parent, 0), NestingError);
    VexQTAtom last("abcd"_os, 8, parent, 0);
    EXPECT_THROW(VexQTAtom::initWithData(atom("free"_os), &last, 0), NestingError);
}

void* callWork(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

/// Runs on a thread with a stack of its own, and gives how many bytes of it were used.
std::size_t stackUsedBy(const std::function<void()>& work) {
    static constexpr std::uint8_t kUnused = 0xA5;
    Bytes memory(3 << 20, kUnused);
    void* first = memory.data();
    std::size_t length = memory.size();
    std::align(4096, 2 << 20, first, length);
    length = 2 << 20;

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, first, length);
    pthread_t thread{};
    auto* argument = const_cast<std::function<void()>*>(&work);
    EXPECT_EQ(pthread_create(&thread, &attributes, callWork, argument), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const auto used =
        std::ranges::find_if(memory, [](std::uint8_t byte) { return byte != kUnused; });
    return static_cast<std::size_t>(memory.end() - used);
}

void readWriteDescribeAndDestroy(const Bytes& bytes) {
    const auto root = readTolerantly<Nest>(bytes).atom;
    root->atomData();
    root->description();
    try {
        Nest::initWithData(bytes, nullptr, 0);
    } catch (const NestingError&) {
        // The deepest way out.
    }
}

TEST(Nesting, TakesLittleStackALevel) {
    const Bytes flat = nested(1);
    const Bytes deep = nested(257);
    const std::size_t least = stackUsedBy([&] { readWriteDescribeAndDestroy(flat); });
    const std::size_t most = stackUsedBy([&] { readWriteDescribeAndDestroy(deep); });
    const std::size_t aLevel = (most - least) / 256;
    RecordProperty("BytesALevel", static_cast<int>(aLevel));
#ifdef NDEBUG
    // 256 levels fit a stack of 256 KiB with room for those who call.
    EXPECT_LT(aLevel, 1000U);
#else
    EXPECT_LT(aLevel, 8192U);
#endif
}

TEST(Problems, NameTheirPlaceAmongTheSiblingsOfTheirType) {
    const Bytes good = atom("leaf"_os, {zeros(4)});
    const Bytes bad = atom("leaf"_os, {zeros(5)});
    const Bytes bytes = atom("nest"_os, {
                                            good,
                                            atom("nest"_os, {bad, good, bad}),
                                            bad,
                                            atom("nest"_os, {good, good, bad}),
                                            atom("free"_os, {u8(0)}),
                                            atom("nest"_os, {bad}),
                                            bad,
                                        });
    std::vector<std::string> paths;
    for (const Problem& problem : readTolerantly<Nest>(bytes).problems)
        paths.push_back(problem.path);
    EXPECT_EQ(paths, (std::vector<std::string>{"nest.nest.leaf", "nest.nest.leaf[2]",
                                               "nest.leaf[1]", "nest.nest[1].leaf[2]",
                                               "nest.nest[2].leaf", "nest.leaf[2]"}));
}

TEST(Problems, AreListedUpToAThousand) {
    Bytes leaves;
    for (int i = 0; i < 1500; ++i) leaves = join({leaves, atom("leaf"_os, {zeros(5)})});
    const auto [root, problems] = readTolerantly<Nest>(atom("nest"_os, {leaves}));
    ASSERT_EQ(problems.size(), 1001U);
    EXPECT_EQ(problems[999].path, "nest.leaf[999]");
    EXPECT_EQ(problems[999].message, "Atom 'leaf' declined by Leaf (13 bytes) - kept as raw data");
    EXPECT_EQ(problems[1000].message, "further problems are not listed");
    EXPECT_EQ(root->children().size(), 1500U);
    EXPECT_EQ(root->children()[1499]->declinedClass(), "Leaf");
}

}  // namespace
}  // namespace vexqt
