// One atom of the class that the first byte picks, read in both ways.
#include "atoms/all_classes.h"
#include "fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexqt;
    fuzzing::beQuiet();
    if (size == 0) return 0;
    const AtomClass& cls = *testing::kAllClasses[*data % std::size(testing::kAllClasses)];
    testing::checkAtom(cls, ByteView(data, size).subspan(1));
    return 0;
}
