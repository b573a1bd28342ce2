// Writes a movie with very long tables, for trying things out.

#include <cstdlib>
#include <iostream>

#include "BigMovie.h"

int main(int argc, char** argv) {
    const long count = argc == 3 ? std::atol(argv[2]) : 0;
    if (count < 1 || count > 100'000'000) {
        std::cerr << "usage: " << argv[0] << " FILE SAMPLES\n";
        return 2;
    }
    vexqt::benchmarks::writeBigMovie(argv[1], static_cast<std::uint32_t>(count));
}
