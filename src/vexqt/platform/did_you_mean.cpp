#include "vexqt/platform/did_you_mean.h"

#include <algorithm>
#include <utility>

namespace vexqt {

namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// How many letters have to be changed, added, left out or exchanged with their neighbour.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = lowered(a[i - 1]) == lowered(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast =
            std::exchange(last, std::exchange(row, std::vector<std::size_t>(b.size() + 1)));
    }
    return last.back();
}

}  // namespace

std::string didYouMean(std::string_view name, const std::vector<std::string>& there) {
    if (name.size() > 64) return {};
    std::string_view nearest;
    std::size_t least = std::max<std::size_t>(2, name.size() / 3) + 1;
    for (const std::string& candidate : there) {
        // Of a code of four letters at least two have to be right.
        const std::size_t away = distance(name, candidate);
        if (away >= least || away >= candidate.size()) continue;
        least = away;
        nearest = candidate;
    }
    return nearest.empty() ? std::string() : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace vexqt
