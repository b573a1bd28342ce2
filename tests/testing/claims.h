// What holds of every input, whoever made it, for programs that look for one of which it does not:
// the fuzzers, and the tests that generate trees.
#pragma once

#include <functional>
#include <stdexcept>

#include "vexqt/asset/VexQTAsset.h"

namespace vexqt::testing {

/// A claim that does not hold.
class BrokenClaim : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

void claim(bool holds, const std::string& what);

/// Bytes that nobody vouches for, taken for decisions; zeros when they are used up.
class Decisions {
public:
    explicit Decisions(ByteView bytes) : left_(bytes) {}

    bool areUsedUp() const { return left_.empty(); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(number(1)); }
    std::uint64_t number(std::size_t width);
    /// Less than the count; 0 where that is 0.
    std::size_t below(std::size_t count);
    Bytes bytes(std::size_t most);
    /// All that is left.
    ByteView rest() const { return left_; }

private:
    ByteView left_;
};

/// A strict reading ends with a tree or an Error and nothing else, a tolerant one with a tree.
/// Where the tolerant one lists no problem the two trees agree as far as the strict one goes; so do
/// those of the two readers. Children lie inside their parents. A tree that nobody edited is
/// written surgically with the bytes that it was read from, and exactly with the same bytes twice.
void checkReadings(ByteView movie);

/// The same of one atom of a class.
void checkAtom(const AtomClass& cls, ByteView bytes);

/// Edits, as they are decided, can be written or are an Error, twice with the same bytes, and
/// taken back they leave nothing.
void checkEdits(ByteView movie, Decisions& decisions);

/// A save plan does what it says: it is flawless, writes what the new movie needs, leaves the media
/// alone, and a movie that it saved parses to its end and reads back.
void checkSave(ByteView movie, Decisions& decisions);

/// Makes one edit somewhere in a movie. Gives what takes it back; null where nothing was done.
std::function<void()> makeEdit(VexQTAsset& asset, Decisions& decisions);

}  // namespace vexqt::testing
