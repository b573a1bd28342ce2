// The claims that hold of every input, on trees that are generated: RapidCheck makes the bytes that
// decide what each of them looks like, and looks for fewer when a claim breaks.
#include <rapidcheck.h>

#include <cstdio>
#include <cstdlib>

#include "testing/made_movies.h"
#include "testing/text_claims.h"
#include "vexqt/platform/log.h"

namespace {

using namespace vexqt;
using namespace vexqt::testing;

using Numbers = std::vector<std::uint8_t>;

Bytes movieOf(const Numbers& numbers) {
    Decisions decisions(numbers);
    return decidedMovie(decisions);
}

bool areReadAndWritten() {
    return rc::check("trees are read and written as claimed",
                     [](const Numbers& numbers) { checkReadings(movieOf(numbers)); });
}

bool areEdited() {
    return rc::check("edits of trees are written, and taken back, as claimed",
                     [](const Numbers& numbers, const Numbers& edits) {
                         Decisions decisions(edits);
                         checkEdits(movieOf(numbers), decisions);
                     });
}

bool areSaved() {
    return rc::check("edited trees are saved as claimed",
                     [](const Numbers& numbers, const Numbers& edits) {
                         Decisions decisions(edits);
                         checkSave(movieOf(numbers), decisions);
                     });
}

bool areJson() {
    return rc::check("trees are JSON as claimed",
                     [](const Numbers& numbers) { checkJson(movieOf(numbers)); });
}

}  // namespace

/// The arguments are how many trees each of the four claims is tried on and a seed, without which
/// every run makes other trees.
int main(int argc, char** argv) {
    setLogSink([](std::string_view) {});
    const std::string count = argc > 1 ? argv[1] : "1000";
    // Long lists of decisions make large trees.
    std::string parameters = "max_success=" + count + " max_size=400";
    if (argc > 2) parameters += std::string(" seed=") + argv[2];
    setenv("RC_PARAMS", parameters.c_str(), 1);
    bool holds = true;
    for (const auto claim : {areReadAndWritten, areEdited, areSaved, areJson})
        holds = claim() && holds;
    return holds ? 0 : 1;
}
