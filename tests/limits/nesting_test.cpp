// A megabyte of nothing but atoms inside each other, on a stack as small as that of a thread of a
// host may be.

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "apps/vexqt/json_document.h"
#include "limits/hostile_movies.h"
#include "vexqt/saving/Surgery.h"
#include "vexqt/vexqt.h"

namespace vexqt::testing {
namespace {

/// How much more stack a function takes where it was not optimised, or is watched by a sanitizer.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kFactor = 12;
#elif !defined(__OPTIMIZE__)
constexpr std::size_t kFactor = 3;
#else
constexpr std::size_t kFactor = 1;
#endif
constexpr std::size_t kStack = kFactor * 256 * 1024;

/// Runs on a thread with a stack of that length, and checks that it was long enough.
void runOnSmallStack(const std::function<void()>& work) {
    // All is filled with a pattern, the stack and as much behind its far end, where it would grow
    // to. What has another value afterwards was used.
    constexpr std::uint8_t kUnused = 0xA5;
    constexpr std::size_t kPage = 4096;
    Bytes memory(2 * kStack + kPage, kUnused);
    const std::span all(memory);
    const std::size_t start = kPage - reinterpret_cast<std::uintptr_t>(memory.data()) % kPage;
    const std::span stack = all.subspan(start + kStack, kStack);

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstack(&attributes, stack.data(), stack.size()), 0);
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    std::function<void()> argument = work;
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &argument), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);

    const auto first = std::ranges::find_if(all, [](std::uint8_t byte) { return byte != kUnused; });
    const std::size_t used = start + 2 * kStack - static_cast<std::size_t>(first - all.begin());
    EXPECT_LE(used, kStack) << "of " << kStack << " bytes of stack";
    ::testing::Test::RecordProperty("stack", static_cast<int>(used));
    if (std::getenv("VEXQT_SHOW") != nullptr) std::printf("%zu of %zu\n", used, kStack);
}

const Bytes& megabyteOfNesting() {
    static const Bytes movie = nested(std::size_t{1} << 20);
    return movie;
}

std::unique_ptr<VexQTAsset> readNested() {
    return VexQTAsset::initWithData(megabyteOfNesting(), {.tolerant = true});
}

TEST(Nesting, IsReadOnASmallStack) {
    std::unique_ptr<VexQTAsset> asset;
    runOnSmallStack([&] { asset = readNested(); });
    ASSERT_NE(asset, nullptr);
    EXPECT_EQ(asset->problems().size(), 1U);
}

TEST(Nesting, IsRefusedOnASmallStack) {
    std::string refusal;
    runOnSmallStack([&] {
        try {
            VexQTAsset::initWithData(megabyteOfNesting());
        } catch (const NestingError& error) {
            refusal = error.message();
        }
    });
    EXPECT_EQ(refusal, "nested deeper than 256 atoms");
}

TEST(Nesting, IsOutlinedOnASmallStack) {
    const auto asset = readNested();
    std::size_t length = 0;
    runOnSmallStack([&] { length = asset->moovAtom()->description().size(); });
    EXPECT_GT(length, 256U * 256U);
}

TEST(Nesting, IsWrittenAsJsonOnASmallStack) {
    const auto asset = readNested();
    cli::TextOutput out;
    runOnSmallStack([&] {
        cli::JsonWriter json(out, cli::JsonWriter::Layout::OneLine);
        cli::writeDocument(json, "nested.mov", *asset);
    });
    EXPECT_GT(out.text().size(), std::size_t{1} << 20);
}

/// What is read that deep holds values that are metadata, and these have no form in a file.
TEST(Nesting, IsRefusedToBeSerialisedOnASmallStack) {
    const auto asset = readNested();
    std::string refusal;
    runOnSmallStack([&] {
        try {
            asset->assetData();
        } catch (const EncodingError& error) {
            refusal = error.message();
        }
    });
    EXPECT_EQ(refusal, "a value that is metadata itself cannot be written");
}

/// Atoms that a host puts inside each other are written as deep as they could be read.
TEST(Nesting, IsSerialisedOnASmallStack) {
    auto nest = std::make_unique<VexQTtrakAtom>();
    for (std::size_t level = 1; level < kDeepestNesting; ++level) {
        auto outer = std::make_unique<VexQTtrakAtom>();
        nest->setParent(outer.get());
        outer->addChild(std::move(nest));
        nest = std::move(outer);
    }
    Bytes written;
    runOnSmallStack([&] { written = nest->atomData(); });
    EXPECT_EQ(written.size(), 8 * kDeepestNesting);
}

TEST(Nesting, IsSerialisedSurgicallyOnASmallStack) {
    const auto asset = readNested();
    std::size_t length = 0;
    runOnSmallStack([&] { length = Surgery().written(*asset->moovAtom()).length(); });
    EXPECT_EQ(length, asset->moovAtom()->origin().size());
}

TEST(Nesting, IsDestroyedOnASmallStack) {
    auto asset = readNested();
    runOnSmallStack([&] { asset.reset(); });
    EXPECT_EQ(asset, nullptr);
}

}  // namespace
}  // namespace vexqt::testing
