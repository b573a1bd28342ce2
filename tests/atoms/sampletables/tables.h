// What the tests of all tables say alike.
#pragma once

#include <gtest/gtest.h>

#include "testing/bytes.h"

namespace vexqt::testing {

/// Where a read left the bytes, and how many bytes there were.
struct MissingRead {
    std::uint64_t offset, count, length;
    friend bool operator==(const MissingRead&, const MissingRead&) = default;
    friend std::ostream& operator<<(std::ostream& out, const MissingRead& read) {
        return out << read.count << " bytes wanted at " << read.offset << ", " << read.length
                   << " there";
    }
};

/// What decoding the bytes raises; the test fails when it raises nothing.
template <class Atom>
MissingRead missingRead(ByteView bytes) {
    try {
        Atom::initWithData(bytes, nullptr, 0);
    } catch (const RangeError& error) {
        return {error.offset(), error.count(), error.length()};
    }
    ADD_FAILURE() << "nothing is raised for " << bytes.size() << " bytes";
    return {};
}

/// The list property of that name.
inline const ListAccess& listNamed(const VexQTAtom& atom, std::string_view name) {
    return *atom.propertyNamed(name)->list;
}

/// Every cell of a list property, row by row, in words.
inline std::string cellsOf(const VexQTAtom& atom, std::string_view name) {
    const ListAccess& list = listNamed(atom, name);
    std::string cells;
    for (std::size_t row = 0; row < list.size(atom); ++row) {
        for (std::size_t column = 0; column < list.columns.size(); ++column) {
            const Value value = list.cell(atom, row, column);
            if (const auto* number = std::get_if<double>(&value)) {
                cells += std::to_string(*number) + ' ';
            } else {
                cells += std::to_string(static_cast<std::int64_t>(*integerFrom(value))) + ' ';
            }
        }
        cells += "/ ";
    }
    return cells;
}

}  // namespace vexqt::testing
