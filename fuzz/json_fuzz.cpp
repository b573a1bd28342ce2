// Movies as JSON, and their values as the texts that scripts read and write.
#include "fuzzing.h"
#include "testing/text_claims.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexqt;
    fuzzing::beQuiet();
    testing::checkJson({data, size});
    return 0;
}
