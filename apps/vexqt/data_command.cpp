#include "apps/vexqt/commands.h"
#include "apps/vexqt/movies.h"
#include "vexqt/asset/AtomPath.h"

namespace vexqt::cli {

ExitStatus data(const Arguments& arguments, Console& console) {
    Bytes bytes;
    const ExitStatus read = attempt(arguments.file(), console, [&] {
        std::optional<AtomPath> path;
        if (!arguments.operands.empty()) path.emplace(arguments.operands.front());
        const auto asset = readMovie(arguments.file(), arguments, console);
        bytes = path ? path->atomIn(asset->rootAtoms()).atomData() : asset->assetData();
        if (path && bytes.empty())
            console.complain(
                arguments.file(),
                arguments.operands.front() + ": free space and media data have no bytes here");
    });
    if (read != ExitStatus::Done) return read;
    if (arguments.output && *arguments.output != "-")
        return attempt(*arguments.output, console, [&] {
            requireTarget(*arguments.output, arguments.file());
            writeWhole(*arguments.output, bytes);
        });
    if (!arguments.output && console.out.isTerminal()) {
        console.complain("data: bytes are nothing for a terminal (-o OUT, or -o - for here)");
        return ExitStatus::WrongUsage;
    }
    console.out.write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return ExitStatus::Done;
}

}  // namespace vexqt::cli
