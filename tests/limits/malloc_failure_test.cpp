// What the library makes of C libraries that are out of memory: those that read and write pictures.

#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "limits/Malloc.h"
#include "vexqt/platform/Picture.h"

namespace vexqt::testing {
namespace {

using Then = FailingMalloc::Then;

Picture gradient() {
    Bytes pixels;
    for (std::uint32_t y = 0; y < 24; ++y)
        for (std::uint32_t x = 0; x < 40; ++x)
            for (const std::uint32_t part : {x * 6, y * 10, x + y, 255U})
                pixels.push_back(static_cast<std::uint8_t>(part));
    return {{40, 24}, std::move(pixels)};
}

/// Works with each call failing in turn; the result is either that of a heap that does not fail,
/// or none.
template <class Result>
void failEveryCall(const std::function<std::optional<Result>()>& work) {
    const std::optional<Result> expected = work();
    ASSERT_TRUE(expected);
    for (const Then then : {Then::Recovers, Then::StaysFull}) {
        std::uint64_t failures = 0;
        for (std::uint64_t n = 1;; ++n) {
            SCOPED_TRACE("call " + std::to_string(n));
            const std::int64_t before = liveBlocks();
            std::optional<Result> result;
            bool hasFailed = false, hasThrown = false;
            {
                const FailingMalloc failing(n, then);
                try {
                    result = work();
                } catch (const std::bad_alloc&) {
                    hasThrown = true;
                }
                hasFailed = failing.hasFailed();
            }
            if (result) {
                ASSERT_TRUE(*result == *expected);
            } else {
                ASSERT_TRUE(hasFailed);
                ++failures;
            }
            result.reset();
            // A thrown exception may be kept for the next one.
            ASSERT_LE(liveBlocks(), before + (hasThrown ? 1 : 0)) << "was lost";
            if (!hasFailed) break;
        }
        EXPECT_GT(failures, 0U) << "it took no memory";
    }
}

class PictureFormats : public ::testing::TestWithParam<PictureFormat> {};

TEST_P(PictureFormats, AreReadWholeOrNotAtAll) {
    const Bytes bytes = gradient().encode(GetParam()).value();
    failEveryCall<Picture>([&] { return Picture::decode(bytes); });
}

TEST_P(PictureFormats, AreWrittenWholeOrNotAtAll) {
    const Picture picture = gradient();
    failEveryCall<Bytes>([&] { return picture.encode(GetParam()); });
}

INSTANTIATE_TEST_SUITE_P(MallocFailure, PictureFormats,
                         ::testing::Values(PictureFormat::JPEG, PictureFormat::PNG,
                                           PictureFormat::BMP));

}  // namespace
}  // namespace vexqt::testing
