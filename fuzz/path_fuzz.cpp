// Paths and values as people type them.
#include "fuzzing.h"
#include "testing/text_claims.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexqt;
    fuzzing::beQuiet();
    testing::Decisions decisions({data, size});
    testing::checkPath(decisions);
    return 0;
}
