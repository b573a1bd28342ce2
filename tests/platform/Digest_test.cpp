#include "vexqt/platform/Digest.h"

#include <gtest/gtest.h>

namespace vexqt {
namespace {

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

// The examples that were published with the algorithm.
TEST(Digest, IsThatOfThePublishedExamples) {
    const struct {
        std::string_view text, digest;
    } cases[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.text);
        Digest digest;
        digest.add(bytesOf(each.text));
        EXPECT_EQ(digest.hex(), each.digest);
    }
}

TEST(Digest, TakesBytesPieceByPiece) {
    Digest digest;
    const Bytes piece(1000, 'a');
    for (int i = 0; i < 1000; ++i) digest.add(piece);
    EXPECT_EQ(digest.hex(), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Digest, OfNothingAddedIsThatOfNoBytes) {
    Digest digest;
    digest.add({});
    EXPECT_EQ(digest.hex(), Digest().hex());
}

TEST(Digest, GoesOnAfterItWasTold) {
    Digest digest;
    digest.add(bytesOf("ab"));
    EXPECT_EQ(digest.hex(), digest.hex());
    digest.add(bytesOf("c"));
    EXPECT_EQ(digest.hex(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace vexqt
