// Movies from files that nobody vouches for, read by both readers in both ways.
#include "fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexqt;
    fuzzing::beQuiet();
    testing::checkReadings({data, size});
    return 0;
}
