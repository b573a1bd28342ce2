// Saves of edited movies into files in memory.
#include "fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexqt;
    fuzzing::beQuiet();
    fuzzing::MovieAndDecisions input({data, size});
    testing::checkSave(input.movie, input.decisions);
    return 0;
}
