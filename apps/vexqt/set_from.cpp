#include "apps/vexqt/set_from.h"

#include "apps/vexqt/Assignment.h"
#include "apps/vexqt/batch.h"
#include "apps/vexqt/movies.h"
#include "apps/vexqt/printable.h"
#include "vexqt/asset/AtomPath.h"

namespace vexqt::cli {

namespace {

std::string_view trimmed(std::string_view text) {
    static constexpr std::string_view kBlanks = " \t";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Checked already here, so that a mistake in the file changes no movie at all.
std::string assignmentIn(std::string_view line) {
    const Assignment assignment{std::string(line)};
    const std::string key(trimmed(assignment.key));
    const AtomPath path(key);
    return key + '=' + assignment.value;
}

/// "clip.mov: done", "clip.mov: failed: why"
std::string outcomeLine(const std::string& file, ExitStatus status, const std::string& why) {
    if (status == ExitStatus::Done) return printable(file) + ": done\n";
    return printable(file) + (status == ExitStatus::Refused ? ": refused: " : ": failed: ") +
           printable(why) + '\n';
}

}  // namespace

std::vector<std::string> assignmentsIn(std::string_view settings) {
    static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (settings.starts_with(kByteOrderMark)) settings.remove_prefix(kByteOrderMark.size());
    std::vector<std::string> assignments;
    for (std::size_t number = 1; !settings.empty(); ++number) {
        std::string_view line = settings.substr(0, settings.find('\n'));
        settings.remove_prefix(std::min(line.size() + 1, settings.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        const std::string_view content = trimmed(line);
        if (content.empty() || content.starts_with('#')) continue;
        const std::string place = "line " + std::to_string(number) + ": ";
        try {
            assignments.push_back(assignmentIn(line));
        } catch (const Failure& failure) {
            throw Failure(place + failure.what(), failure.status());
        } catch (const PathError& error) {
            throw Failure(place + error.what(), ExitStatus::WrongUsage);
        }
    }
    return assignments;
}

ExitStatus setFrom(const Arguments& arguments, Console& console) {
    Arguments forEach = arguments;
    const ExitStatus read = attempt(*arguments.settings, console, [&] {
        const Bytes bytes = readAll(*arguments.settings, console);
        forEach.operands = assignmentsIn(std::string(bytes.begin(), bytes.end()));
        if (forEach.operands.empty() && arguments.absent.empty())
            throw Failure("there is no setting in it", ExitStatus::WrongUsage);
    });
    if (read != ExitStatus::Done) return read;
    forEach.settings.reset();
    forEach.filesFrom.reset();
    // What one movie takes from standard input is not there for the next.
    forEach.isInputTaken =
        arguments.files.size() != 1 || arguments.filesFrom || arguments.settings == "-";

    return forEachFile(arguments, console, AfterFailure::GoOn,
                       [&](const std::string& file, Console& own) {
                           Arguments one = forEach;
                           one.files = {file};
                           std::string why;
                           own.failure = &why;
                           const ExitStatus status = set(one, own);
                           own.failure = nullptr;
                           // A report takes the place of the line, which programs do not want then.
                           Output& out = arguments.reports ? own.err : own.out;
                           out.write(outcomeLine(file, status, why));
                           out.flush();
                           return status;
                       });
}

}  // namespace vexqt::cli
