#include "apps/vexqt/command_line.h"

#include <CLI/CLI.hpp>

#include "apps/vexqt/commands.h"
#include "apps/vexqt/completion.h"
#include "apps/vexqt/movies.h"
#include "vexqt/platform/did_you_mean.h"

namespace vexqt::cli {

namespace {

// MARK: The commands

/// What stands behind FILE.
struct Operands {
    std::string_view name;  ///< "PATH.KEY=VALUE"; empty where nothing does.
    std::string_view about;
    std::size_t least = 0;
    std::size_t most = 0;
};

enum class Files { None, One, Several };
enum class Saves { No, Edited, Exactly };

void noOptions(CLI::App&, Arguments&) {}

struct CommandDescription {
    std::string_view name;
    std::string_view does;
    std::string_view examples;
    Files files;
    Operands operands = {};
    Saves saves = Saves::No;
    Command* run;
    /// Adds what no other command has.
    void (*addOptions)(CLI::App& app, Arguments& arguments) = noOptions;
    std::string_view more = {};  ///< What the help ends with.
};

constexpr std::size_t kAny = std::numeric_limits<std::uint16_t>::max();

void addEveryRow(CLI::App& app, Arguments& arguments) {
    app.add_flag("--all", arguments.everyRow, "every row of tables, every byte, every letter");
    app.add_flag("-r,--recursive", arguments.recursive, "also all the atoms below");
}

void addJobs(CLI::App& app, Arguments& arguments) {
    static constexpr std::size_t kMost = 256;
    app.add_option("--jobs", arguments.jobs, "how many files are worked on at a time, 1 without it")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, kMost));
}

void addFilesFrom(CLI::App& app, Arguments& arguments) {
    app.add_option("--files-from", arguments.filesFrom,
                   "also the files that are named in LIST, one a line; - for standard input")
        ->type_name("LIST");
    app.add_flag("--null", arguments.areNamesZeroEnded,
                 "names in LIST end with a zero byte, as find -print0 writes them");
}

constexpr CommandDescription kCommands[] = {
    {.name = "outline",
     .does = "prints the tree of atoms, one a line",
     .examples = "  vexqt outline clip.mov\n"
                 "  curl -s https://example.com/clip.mov | vexqt outline -\n",
     .files = Files::Several,
     .run = outline},
    {.name = "json",
     .does = "prints the whole decoded tree as JSON, one document a file",
     .examples = "  vexqt json clip.mov\n"
                 "  vexqt json --lines *.mov | jq -r 'select(.isValid | not) | .file'\n"
                 "  find . -name '*.mov' -print0 | vexqt json --lines --files-from - --null "
                 "--jobs 4\n",
     .files = Files::Several,
     .run = json,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_flag("--lines", arguments.onLines, "each document on one line");
             addJobs(app, arguments);
         }},
    {.name = "show",
     .does = "prints an atom for people, or the movie's contents",
     .examples = "  vexqt show clip.mov\n"
                 "  vexqt show clip.mov 'moov.trak[vide].tkhd'\n"
                 "  vexqt show clip.mov 'moov.trak[soun].mdia.minf.stbl.stts' --all\n",
     .files = Files::One,
     .operands = {"PATH", "the atom; without it, what is in the file", 0, 1},
     .run = show,
     .addOptions = addEveryRow},
    {.name = "get",
     .does = "prints one value",
     .examples = "  vexqt get clip.mov moov.mvhd.timeScale\n"
                 "  vexqt get clip.mov 'ftyp.compatibleBrands[0]'\n"
                 "  vexqt get clip.mov 'moov.trak.mdia.minf.stbl.stts.sampleDurations[0]"
                 ".sampleCount'\n",
     .files = Files::One,
     .operands = {"PATH.KEY", "the value", 1, 1},
     .run = get},
    {.name = "set",
     .does = "sets values, then saves",
     .examples =
         "  vexqt set clip.mov moov.mvhd.creationDateTime=2024-05-01T12:00:00Z -o fixed.mov\n"
         "  vexqt set clip.mov 'moov.trak[1].tkhd.trackWidth=1920' 'moov.trak[1].tkhd.layer=3' "
         "--in-place\n"
         "  vexqt set clip.mov moov.trak.tkhd.matrix='0 1 0 -1 0 0 1080 0 1' --in-place\n"
         "  vexqt set --from settings.txt --in-place --jobs 4 *.mov\n",
     .files = Files::One,
     .operands = {"PATH.KEY=VALUE",
                  "a value to set: numbers decimal or 0x…, codes as four characters, dates as "
                  "2001-01-31T12:00:00Z, bytes as hexadecimal digits or @FILE, pictures as "
                  "@FILE, or as `get` prints them",
                  0, kAny},
     .saves = Saves::Edited,
     .run = set,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_option("--absent", arguments.absent, "makes a value absent (repeatable)")
                 ->type_name("PATH.KEY")
                 ->allow_extra_args(false);
             app.add_option("--from", arguments.settings,
                            "a file of settings, one PATH.KEY=VALUE a line, for every FILE, of "
                            "which there may be several; - for standard input")
                 ->type_name("SETTINGS");
             addFilesFrom(app, arguments);
             addJobs(app, arguments);
         }},
    {.name = "remove",
     .does = "removes atoms, then saves",
     .examples = "  vexqt remove clip.mov moov.udta -o anonymous.mov\n"
                 "  vexqt remove clip.mov 'moov.trak[tmcd]' 'moov.trak[tmcd:1]' --in-place\n",
     .files = Files::One,
     .operands = {"PATH", "an atom to remove", 1, kAny},
     .saves = Saves::Edited,
     .run = remove},
    {.name = "insert",
     .does = "adds an atom from a file to a container, then saves",
     .examples = "  vexqt data donor.mov moov.udta -o udta.bin\n"
                 "  vexqt insert clip.mov moov udta.bin --after trak -o annotated.mov\n",
     .files = Files::One,
     .operands = {"PATH ATOMFILE", "the container, and the file with the atom's bytes", 2, 2},
     .saves = Saves::Edited,
     .run = insert,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_option("--after", arguments.after,
                            "behind the first atom of that type; at the end without one")
                 ->type_name("TYPE");
         }},
    {.name = "insert-rows",
     .does = "adds rows to a table, then saves",
     .examples =
         "  vexqt insert-rows clip.mov moov.trak.edts.elst.editListEntries --in-place\n"
         "  vexqt insert-rows clip.mov 'moov.trak.mdia.minf.stbl.stts.sampleDurations[0]' 2 "
         "sampleCount=1 sampleDuration=512 -o out.mov\n"
         "  vexqt insert-rows clip.mov 'moov.trak.mdia.minf.stbl.stss.syncSamples[0]' =1 "
         "--in-place\n",
     .files = Files::One,
     .operands = {"PATH.LIST[ROW] [COUNT] [COLUMN=VALUE…]",
                  "the row in front of which they are added, at the end without [ROW]; how many, "
                  "1 without COUNT; and what is in them (=VALUE for plain numbers)",
                  1, kAny},
     .saves = Saves::Edited,
     .run = insertRows},
    {.name = "remove-rows",
     .does = "removes rows of a table, then saves",
     .examples = "  vexqt remove-rows clip.mov 'moov.trak.edts.elst.editListEntries[0]' "
                 "--in-place\n",
     .files = Files::One,
     .operands = {"PATH.LIST[ROW] [COUNT]", "the first row, and how many, 1 without COUNT", 1, 2},
     .saves = Saves::Edited,
     .run = removeRows},
    {.name = "set-key",
     .does = "sets texts of keyed metadata and adds keys that are missing, then saves",
     .examples = "  vexqt set-key clip.mov moov.meta com.example.title='First light' --in-place\n"
                 "  vexqt set-key clip.mov moov.udta.meta com.example.reel=A003 -o out.mov\n",
     .files = Files::One,
     .operands = {"PATH KEY=TEXT…",
                  "the 'meta' atom, made where it is missing, and keys with their new texts", 2,
                  kAny},
     .saves = Saves::Edited,
     .run = setKey},
    {.name = "remove-key",
     .does = "removes keys of keyed metadata with their items, then saves",
     .examples = "  vexqt remove-key clip.mov moov.meta com.example.location.ISO6709 --in-place\n",
     .files = Files::One,
     .operands = {"PATH KEY…", "the 'meta' atom, and the keys", 2, kAny},
     .saves = Saves::Edited,
     .run = removeKey},
    {.name = "data",
     .does = "writes the bytes of an atom, or of all but media data and free space",
     .examples = "  vexqt data clip.mov moov.udta -o udta.bin\n"
                 "  vexqt data clip.mov moov.trak.tkhd | xxd\n",
     .files = Files::One,
     .operands = {"PATH", "the atom; without it, all of them", 0, 1},
     .run = data,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_option("-o,--output", arguments.output, "the file to write")->type_name("OUT");
         }},
    {.name = "save",
     .does = "rewrites the movie in place without an edit",
     .examples = "  vexqt save clip.mov\n",
     .files = Files::One,
     .saves = Saves::Exactly,
     .run = save,
     .more =
         "It writes what the movie's classes write, as --exact does, which is not always what was "
         "there: vexqt check tells what it would change."},
    {.name = "check",
     .does = "says what a save would change or destroy besides what was edited",
     .examples = "  vexqt check clip.mov\n"
                 "  vexqt check --json *.mov | jq -r '.exact.findings[].id' | sort | uniq -c\n",
     .files = Files::Several,
     .run = check,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_flag("--json", arguments.asJson, "a document a file, each on one line");
         },
     .more = "note is worth knowing; changes: something other than an edit will be different; "
             "destroys: "
             "something will be lost, or the movie will not play. Exit status 3 for the last two."},
    {.name = "undo",
     .does = "takes the last save in place back, and with the next call the one before",
     .examples = "  vexqt undo clip.mov\n",
     .files = Files::One,
     .run = undo,
     .more =
         "The file is then byte for byte what it was, if nobody has written to it since that save. "
         "Records lie in $XDG_STATE_HOME/vexqt/undo, else in ~/.local/state/vexqt/undo, for 30 "
         "days, 20 at most for a file and 64 MiB at most each. VEXQT_UNDO=off keeps none, "
         "--no-undo none of one save."},
    {.name = "properties",
     .does = "lists the properties of the atom classes: names, types, units, what can be set",
     .examples = "  vexqt properties mvhd\n"
                 "  vexqt properties --json | jq -r '.classes[].class'\n",
     .files = Files::None,
     .operands = {"CLASS", "a class such as VexQTmvhdAtom, or a type; without it, all", 0, 1},
     .run = properties,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_flag("--json", arguments.asJson, "as one JSON document");
         }},
    {.name = "recover",
     .does = "ends a save that was interrupted: the movie is what it was before",
     .examples = "  vexqt recover clip.mov\n",
     .files = Files::One,
     .run = recover,
     .addOptions =
         [](CLI::App& app, Arguments& arguments) {
             app.add_flag("--force", arguments.force,
                          "also where somebody has written to the movie since");
         },
     .more =
         "A save keeps the old bytes in .NAME.vexqt-journal beside the movie while it is not done. "
         "Where that is left, they are put back from there; without one nothing is done."},
};

const CommandDescription* commandNamed(std::string_view name) {
    const auto* found = std::ranges::find(kCommands, name, &CommandDescription::name);
    return found != std::end(kCommands) ? found : nullptr;
}

/// Whether there is nothing for it in what comes from standard input.
bool needsFile(const CommandDescription& command) {
    return command.run == save || command.run == check || command.run == undo ||
           command.run == recover;
}

// MARK: Help

constexpr std::string_view kVersion = "vexqt " VEXQT_VERSION "\n";

constexpr std::string_view kOverview =
    "Looks inside QuickTime movies and changes what is there.\n"
    "\n"
    "Examples:\n"
    "  vexqt outline clip.mov                              every atom, one a line\n"
    "  vexqt show clip.mov 'moov.trak[vide].tkhd'          one atom, for people\n"
    "  vexqt get clip.mov moov.mvhd.timeScale              one value, for scripts\n"
    "  vexqt json --lines *.mov | jq .                     everything, for programs\n"
    "  vexqt set clip.mov moov.mvhd.timeScale=600 -o fixed.mov\n"
    "  vexqt remove clip.mov moov.udta --in-place\n"
    "\n"
    "Usage: vexqt COMMAND [OPTION…] FILE…\n"
    "\n"
    "Commands (vexqt COMMAND --help tells more):\n";

constexpr std::string_view kPathsAndStatus =
    "\n"
    "Paths walk from the top of the file by four-character codes: moov.trak is the first track,\n"
    "trak[1] the second, trak[vide] the first with video, trak[soun:1] the second with sound. A\n"
    "code with a point, a bracket or a byte outside of ASCII in it is written 0xA96E616D, or "
    "©nam.\n"
    "A key is a path and a property; rows are stts.sampleDurations[0].sampleCount.\n"
    "\n"
    "FILE may be - for standard input. What is wrong with a file is listed on standard error.\n"
    "\n"
    "Exit status: 0 done; 1 a file could not be read, decoded or written, or has no such atom or\n"
    "property; 2 the command line is wrong, or a value does not fit; 3 a save would change or\n"
    "destroy what nobody asked it to: check says so, and other commands refuse without --force.\n"
    "\n"
    "Only the bytes of what was edited are written; a crash leaves the old movie or the new one.\n"
    "A save in place can be taken back with undo, whose records lie in ~/.local/state/vexqt/undo\n"
    "for 30 days (VEXQT_UNDO=off keeps none). --report tells programs what was written.\n";

std::string operandsUsage(const CommandDescription& command) {
    const Operands& operands = command.operands;
    if (operands.name.empty()) return "";
    const std::string name(operands.name);
    if (operands.least == 0 && operands.most == 1) return " [" + name + "]";
    const bool saysSo = name.ends_with("…") || name.ends_with(']');
    const bool isLastRepeated = operands.most == kAny && !saysSo;
    return " " + name + (isLastRepeated ? "…" : "");
}

std::string filesUsage(const CommandDescription& command) {
    if (command.files == Files::None) return "";
    return command.files == Files::Several ? " FILE…" : " FILE";
}

/// Text broken into lines, each behind so many blanks.
std::string wrapped(std::string_view text, std::size_t indent) {
    static constexpr std::size_t kColumns = 90;
    std::string out;
    std::size_t column = indent;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (column > indent && column + end + 1 > kColumns) {
            out += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (column > indent) {
            out += ' ';
            ++column;
        }
        out += text.substr(0, end);
        column += end;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

std::string entry(std::string_view name, std::string_view about) {
    static constexpr std::size_t kColumns = 22;
    std::string line = "  " + std::string(name);
    line += line.size() + 2 > kColumns ? "\n" + std::string(kColumns, ' ')
                                       : std::string(kColumns - line.size(), ' ');
    return line + wrapped(about, kColumns) + "\n";
}

std::string overview() {
    std::string text(kOverview);
    for (const CommandDescription& command : kCommands) text += entry(command.name, command.does);
    text += kPathsAndStatus;
    text += "\nOptions:\n" + entry("-h, --help", "this text, or that of a command") +
            entry("--version", "the version");
    return text;
}

/// "OUT", without the checks that CLI11 appends to it.
std::string valueName(const CLI::Option& option) {
    const std::string name = option.get_type_name();
    return name.substr(0, name.find(':'));
}

std::string helpOf(const CommandDescription& command, const CLI::App& app) {
    std::string text = "vexqt " + std::string(command.name) + " " + std::string(command.does) +
                       ".\n\nExamples:\n" + std::string(command.examples) + "\nUsage: vexqt " +
                       std::string(command.name) + " [OPTION…]" + filesUsage(command) +
                       operandsUsage(command) +
                       (command.saves == Saves::Edited ? " (--in-place | -o OUT)" : "") + "\n\n";
    const std::string file = command.files == Files::Several ? "movies" : "a movie";
    if (command.files != Files::None)
        text += entry("FILE", file + (needsFile(command) ? "" : ", or - for standard input"));
    if (!command.operands.name.empty())
        text += entry(command.operands.name, command.operands.about);
    text += "\nOptions:\n";
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) continue;
        std::string name = option->get_name(false, true);
        std::ranges::replace(name, ',', ' ');
        if (option->get_expected_min() > 0) name += ' ' + valueName(*option);
        text += entry(name, option->get_description());
    }
    if (!command.more.empty()) text += "\n" + wrapped(command.more, 0) + "\n";
    return text;
}

// MARK: Parsing

struct Request {
    Arguments arguments;
    std::vector<std::string> words;  ///< FILE and what stands behind it.
    std::string color = "auto";
    const CommandDescription* command = nullptr;
};

void addSharedOptions(CLI::App& app, Request& request, Files files) {
    if (files != Files::None) {
        app.add_flag("--memory", request.arguments.inMemory,
                     "reads the file into memory first, and the movie from there");
        app.add_flag("--strict", request.arguments.strict,
                     "ends at the first thing that is wrong, with exit status 1");
    }
    app.add_option("--color", request.color, "auto, always or never; NO_COLOR is respected")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    app.set_help_flag("-h,--help", "this text");
    app.set_version_flag("--version", std::string(kVersion))->description("the version");
}

void addReport(CLI::App& app, Arguments& arguments) {
    app.add_flag("--report", arguments.reports,
                 "prints what was written where, and the findings, as JSON");
    app.add_flag("--media-digest", arguments.digestsMedia,
                 "reads the media before and after, and fails if its SHA-256 is another one");
}

void addCommand(CLI::App& app, const CommandDescription& command, Request& request) {
    CLI::App& sub = *app.add_subcommand(std::string(command.name));
    Arguments& arguments = request.arguments;
    sub.add_option("FILE", request.words);
    if (command.files == Files::Several) addFilesFrom(sub, arguments);
    if (command.saves == Saves::Edited) {
        sub.add_flag("--in-place", arguments.inPlace, "changes the file itself");
        sub.add_option("-o,--output", arguments.output, "changes a copy with this name")
            ->type_name("OUT");
        sub.add_flag(
            "--exact", arguments.exact,
            "writes the movie as its classes write it, behind the media, and nothing else");
    }
    if (command.saves != Saves::No) {
        sub.add_flag("--force", arguments.force, "saves although something will be destroyed");
        sub.add_flag("--no-undo", arguments.keepsNoUndo, "keeps no record for vexqt undo");
    }
    if (command.saves != Saves::No || command.run == undo) addReport(sub, arguments);
    command.addOptions(sub, arguments);
    addSharedOptions(sub, request, command.files);
    sub.callback([&request, &command] { request.command = &command; });
}

// CLI11 takes an argument such as "[a,b]" for the list of a and b. Here it is the name of a file.
constexpr char kMask = '\x01';

std::vector<std::string> masked(const std::vector<std::string>& words) {
    std::vector<std::string> reversed(words.rbegin(), words.rend());
    for (std::string& word : reversed)
        if (word.starts_with('[') && word.ends_with(']')) word.insert(word.begin(), kMask);
    return reversed;
}

void unmask(std::vector<std::string>& words) {
    for (std::string& word : words)
        if (word.starts_with(std::string{kMask, '['})) word.erase(0, 1);
}

/// Tells files and operands apart.
void splitWords(Request& request) {
    Arguments& arguments = request.arguments;
    const CommandDescription& command = *request.command;
    std::vector<std::string>& words = request.words;
    unmask(words);
    unmask(arguments.absent);
    const bool takesSeveral = command.files == Files::Several || arguments.settings;
    const std::size_t most = takesSeveral ? words.size() : command.files == Files::None ? 0 : 1;
    const std::size_t files = std::min(most, words.size());
    const auto operands = words.begin() + static_cast<std::ptrdiff_t>(files);
    arguments.files.assign(words.begin(), operands);
    arguments.operands.assign(operands, words.end());
}

/// What is wrong with the options that are for several files; empty for nothing.
std::string mistakeInSeveral(const Arguments& arguments, const CommandDescription& command) {
    if (command.run == set && !arguments.settings) {
        if (arguments.filesFrom) return "--files-from goes with --from alone";
        if (arguments.jobs > 1) return "--jobs goes with --from alone";
    }
    if (arguments.areNamesZeroEnded && !arguments.filesFrom)
        return "--null goes with --files-from alone";
    const bool isOne = arguments.files.size() == 1 && !arguments.filesFrom;
    if (arguments.settings && arguments.output && !isOne) return "-o OUT goes with one FILE alone";
    return {};
}

/// What is wrong with files, operands and options; empty for nothing.
std::string mistakeIn(const Arguments& arguments, const CommandDescription& command) {
    if (command.files != Files::None && arguments.files.empty() && !arguments.filesFrom)
        return "FILE is missing";
    if (std::string mistake = mistakeInSeveral(arguments, command); !mistake.empty())
        return mistake;
    const std::string wanted = operandsUsage(command).erase(0, 1);
    const bool isSetBare = command.run == set && arguments.operands.empty() &&
                           arguments.absent.empty() && !arguments.settings;
    if (isSetBare || arguments.operands.size() < command.operands.least)
        return wanted + " is missing";
    if (arguments.operands.size() > command.operands.most)
        return "'" + arguments.operands[command.operands.most] + "' is one argument too many";
    if (command.saves == Saves::Edited && arguments.inPlace == arguments.output.has_value())
        return "either --in-place or -o OUT is needed";
    if (std::ranges::count(arguments.files, "") > 0) return "FILE is empty";
    if (arguments.output && arguments.output->empty()) return "OUT is empty";
    if (command.saves == Saves::Edited && arguments.output == "-")
        return "a copy is a file, and not for standard output";
    const bool changesFile = arguments.inPlace || (needsFile(command) && command.run != check);
    const auto fromInput = std::ranges::count(arguments.files, "-");
    if (changesFile && fromInput > 0) return "standard input cannot be changed in place";
    if (fromInput + (arguments.settings == "-" ? 1 : 0) + (arguments.filesFrom == "-" ? 1 : 0) > 1)
        return "standard input can be read only once";
    return {};
}

bool hasColors(const Request& request, const Output& out) {
    if (request.color != "auto") return request.color == "always";
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value != nullptr && *value != '\0';
    };
    const char* terminal = std::getenv("TERM");
    const bool isDumb = terminal != nullptr && std::string_view(terminal) == "dumb";
    return out.isTerminal() && !isSet("NO_COLOR") && !isDumb;
}

ExitStatus wrongUsage(Console& console, const std::string& what,
                      const CommandDescription* command) {
    const std::string name = command != nullptr ? std::string(command->name) : "";
    console.complain((name.empty() ? "" : name + ": ") + what + " (vexqt " +
                     (name.empty() ? "" : name + " ") + "--help tells more)");
    return ExitStatus::WrongUsage;
}

std::string nearCommand(const std::string& mistyped) {
    std::vector<std::string> names;
    for (const CommandDescription& each : kCommands) names.emplace_back(each.name);
    return didYouMean(mistyped, names);
}

/// Of the first word that looks like an option and is none.
std::string nearOption(const std::vector<std::string>& words, const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    for (const std::string& word : words) {
        const std::string name = word.substr(0, word.find('='));
        if (word == "--") break;
        if (word.starts_with("--") && std::ranges::find(names, name) == names.end())
            return didYouMean(name, names);
    }
    return {};
}

ExitStatus parseAndRun(const std::vector<std::string>& words, Console& console) {
    if (words.empty()) {
        console.err.write(overview());
        console.err.flush();
        return ExitStatus::WrongUsage;
    }
    if (words.front() == kCompleteCommand) return complete(std::span(words).subspan(1), console);
    const CommandDescription* command = commandNamed(words.front());
    if (command == nullptr && !words.front().starts_with('-'))
        return wrongUsage(
            console, "no command '" + words.front() + "'" + nearCommand(words.front()), nullptr);

    Request request;
    CLI::App app;
    app.require_subcommand(1);
    app.set_help_flag("-h,--help");
    app.set_version_flag("--version", std::string(kVersion));
    for (const CommandDescription& each : kCommands) addCommand(app, each, request);
    try {
        app.parse(masked(words));
    } catch (const CLI::CallForHelp&) {
        console.out.write(command != nullptr ? helpOf(*command, *app.get_subcommand(words.front()))
                                             : overview());
        return ExitStatus::Done;
    } catch (const CLI::CallForVersion&) {
        console.out.write(kVersion);
        return ExitStatus::Done;
    } catch (const CLI::ParseError& error) {
        std::string what = error.what();
        std::ranges::replace(what, '\n', ' ');
        if (command != nullptr) what += nearOption(words, *app.get_subcommand(words.front()));
        return wrongUsage(console, what, command);
    }
    splitWords(request);
    const std::string mistake = mistakeIn(request.arguments, *request.command);
    if (!mistake.empty()) return wrongUsage(console, mistake, request.command);
    console.hasColors = hasColors(request, console.out);
    return request.command->run(request.arguments, console);
}

}  // namespace

std::vector<CommandOutline> commandOutlines() {
    Request request;
    CLI::App app;
    std::vector<CommandOutline> outlines;
    for (const CommandDescription& each : kCommands) {
        addCommand(app, each, request);
        CommandOutline& outline = outlines.emplace_back();
        outline.name = each.name;
        outline.does = each.does;
        outline.operands = each.operands.name;
        outline.repeatsLastOperand = each.operands.most == kAny;
        outline.takesFile = each.files != Files::None;
        outline.takesSeveralFiles = each.files == Files::Several;
        for (const CLI::Option* option :
             app.get_subcommand(std::string(each.name))->get_options()) {
            if (option->get_positional()) continue;
            CommandOutline::Option& described = outline.options.emplace_back();
            for (const std::string& name : option->get_snames())
                described.names.push_back("-" + name);
            for (const std::string& name : option->get_lnames())
                described.names.push_back("--" + name);
            if (option->get_expected_min() > 0) described.value = valueName(*option);
            described.about = option->get_description();
        }
    }
    return outlines;
}

int run(const std::vector<std::string>& arguments, Output& out, Output& err, int input) {
    Console console = {.out = out, .err = err, .input = input};
    try {
        const ExitStatus status = parseAndRun(arguments, console);
        out.flush();
        return static_cast<int>(status);
    } catch (const OutputClosed&) {
        return static_cast<int>(ExitStatus::Done);
    } catch (const OutputError& error) {
        out.discard();
        console.complain(error.what());
        return static_cast<int>(ExitStatus::Failed);
    }
}

}  // namespace vexqt::cli
