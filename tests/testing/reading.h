// Readings of single atoms, and what came of them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vexqt/core/VexQTAtom.h"

namespace vexqt::testing {

template <class T>
struct TolerantReading {
    std::unique_ptr<T> atom;
    std::vector<Problem> problems;
};

/// Reads an atom tolerantly, as the readers of files do.
template <class T>
TolerantReading<T> readTolerantly(ByteView bytes, std::uint64_t offsetInFile = 0,
                                  VexQTAtom* parent = nullptr) {
    TolerantReading<T> reading;
    ReadContext context(reading.problems);
    const ReadContext::Siblings none;
    const ReadContext::Step step(context, T::kClass.type, none);
    auto atom =
        VexQTAtom::make(T::kClass, SharedBytes::copyOf(bytes), parent, offsetInFile, context);
    reading.atom.reset(static_cast<T*>(atom.release()));
    return reading;
}

/// The text of the error that a call throws; any other exception passes.
template <class ErrorType, class Call>
std::string errorOf(Call&& call) {
    try {
        call();
    } catch (const ErrorType& error) {
        return error.what();
    }
    return "no error";
}

}  // namespace vexqt::testing
