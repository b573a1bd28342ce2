// The commands that print a whole movie or one value of it.
#include "apps/vexqt/commands.h"
#include "apps/vexqt/json_document.h"
#include "apps/vexqt/movies.h"
#include "apps/vexqt/printable.h"

namespace vexqt::cli {

namespace {

/// The outline parts its lines by "\r\n".
void printLines(Output& out, std::string_view outline) {
    static constexpr std::string_view kLineEnd = "\r\n";
    const bool isTerminal = out.isTerminal();
    while (true) {
        const std::size_t end = outline.find(kLineEnd);
        const std::string_view line = outline.substr(0, end);
        out.write(isTerminal ? printable(line) : line);
        out.write("\n");
        if (end == std::string_view::npos) return;
        outline.remove_prefix(end + kLineEnd.size());
    }
}

}  // namespace

ExitStatus outline(const Arguments& arguments, Console& console) {
    return attemptEach(arguments, console, [&](const std::string& file, Console& own) {
        const auto asset = readMovie(file, arguments, own);
        // Programs get nothing but atoms; people see which file they are of.
        if ((arguments.files.size() > 1 || arguments.filesFrom) && own.out.isTerminal())
            own.out.write(printable(file) + ":\n");
        for (const auto& root : asset->rootAtoms()) printLines(own.out, root->description());
    });
}

ExitStatus json(const Arguments& arguments, Console& console) {
    const auto layout =
        arguments.onLines ? JsonWriter::Layout::OneLine : JsonWriter::Layout::Indented;
    return attemptEach(arguments, console, [&](const std::string& file, Console& own) {
        const auto asset = readMovie(file, arguments, own);
        JsonWriter writer(own.out, layout);
        writeDocument(writer, file, *asset);
        own.out.write("\n");
    });
}

ExitStatus get(const Arguments& arguments, Console& console) {
    return attempt(arguments.file(), console, [&] {
        const std::string& key = arguments.operands.front();
        const AtomPath path(key);
        const auto asset = readMovie(arguments.file(), arguments, console);
        if (key == "isValid") {
            const bool isValid = asset->valueForKey(key) == Value(true);
            return console.out.write(isValid ? "true\n" : "false\n");
        }
        const PropertyPlace place = path.propertyIn(asset->rootAtoms());
        if (place.isSingle()) {
            console.out.write(bareText(place.field(), place.value()));
        } else {
            JsonWriter writer(console.out, JsonWriter::Layout::Indented);
            writePlace(writer, place);
        }
        console.out.write("\n");
    });
}

}  // namespace vexqt::cli
