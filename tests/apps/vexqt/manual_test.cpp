// The manual page and the help tell of the same commands and options.
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "tests/apps/vexqt/calling.h"

namespace vexqt::cli {
namespace {

using Names = std::set<std::string>;

/// The sections of the page by their headings: "## json" and "# EXIT STATUS" as "json" and so on.
std::map<std::string, std::string> sectionsOfPage() {
    std::ifstream page(VEXQT_MAN "/vexqt.1.scd");
    EXPECT_TRUE(page);
    std::map<std::string, std::string> sections;
    std::string heading;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with('#')) {
            heading = line.substr(line.find(' ') + 1);
        } else {
            sections[heading] += line + "\n";
        }
    }
    return sections;
}

/// "--output OUT", "--lines", and short names where there is no other.
Names optionsIn(const std::string& text) {
    static const std::regex kOption(R"(\*(--[a-z][a-z-]*)\*( _([A-Z.]+)_)?)");
    Names options;
    for (std::sregex_iterator each(text.begin(), text.end(), kOption), end; each != end; ++each)
        options.insert((*each)[1].str() + ((*each)[3].matched ? " " + (*each)[3].str() : ""));
    return options;
}

/// What stands in the first paragraph of a command's section.
std::string synopsisIn(const std::string& section) {
    const std::size_t begin = section.find_first_not_of('\n');
    return section.substr(begin, section.find("\n\n", begin) - begin);
}

/// The terms of a list: the lines that begin with an option, each with an indented text behind it.
std::string definitionsIn(const std::string& section) {
    static const std::regex kTerm(R"((^|\n)(\*-[^\n]*)\n\t)");
    std::string terms;
    for (std::sregex_iterator each(section.begin(), section.end(), kTerm), end; each != end; ++each)
        terms += (*each)[2].str() + "\n";
    return terms;
}

Names optionsOf(const CommandOutline& command) {
    Names options;
    for (const auto& option : command.options)
        options.insert(option.names.back() + (option.value.empty() ? "" : " " + option.value));
    return options;
}

bool isOneOf(const Names& names, const std::string& name) { return names.count(name) > 0; }

TEST(Manual, HasASectionForEveryCommandAndForNoOther) {
    Names inPage, inHelp;
    for (const auto& [heading, text] : sectionsOfPage())
        if (text.starts_with("\n*vexqt ") && heading != "SYNOPSIS" && heading != "DESCRIPTION")
            inPage.insert(heading);
    for (const CommandOutline& command : commandOutlines()) inHelp.emplace(command.name);
    EXPECT_EQ(inPage, inHelp);
    const std::string overview = call({"--help"}).output;
    for (const std::string& name : inPage)
        EXPECT_NE(overview.find("\n  " + name + " "), std::string::npos) << name;
}

TEST(Manual, NamesTheOptionsThatTheHelpNames) {
    auto sections = sectionsOfPage();
    const Names ofEvery = optionsIn(definitionsIn(sections["Of every command"]));
    const Names ofSaving = optionsIn(definitionsIn(sections["For saving"]));
    EXPECT_EQ(ofEvery.size(), 5U);
    for (const CommandOutline& command : commandOutlines()) {
        SCOPED_TRACE(command.name);
        const std::string synopsis = synopsisIn(sections[std::string(command.name)]);
        EXPECT_TRUE(synopsis.starts_with("*vexqt " + std::string(command.name) + "*"));
        Names inPage = optionsIn(synopsis);
        inPage.insert(ofEvery.begin(), ofEvery.end());
        if (synopsis.find("_SAVING_") != std::string::npos)
            inPage.insert(ofSaving.begin(), ofSaving.end());
        Names inHelp = optionsOf(command);
        if (!command.takesFile) {
            // There is no file to be read.
            EXPECT_FALSE(isOneOf(inHelp, "--strict"));
            inHelp.insert({"--memory", "--strict"});
        }
        EXPECT_EQ(inPage, inHelp);
    }
}

TEST(Manual, DefinesEveryOptionOnceUnderAllItsNames) {
    std::string definitions;
    for (const auto& [heading, text] : sectionsOfPage()) definitions += definitionsIn(text);
    std::map<std::string, Names> lines;
    std::istringstream in(definitions);
    for (std::string line; std::getline(in, line);)
        for (const std::string& option : optionsIn(line)) {
            EXPECT_TRUE(lines[option].empty()) << option << " is defined twice";
            lines[option].insert(line);
        }
    for (const CommandOutline& command : commandOutlines())
        for (const auto& option : command.options) {
            const std::string name =
                option.names.back() + (option.value.empty() ? "" : " " + option.value);
            ASSERT_EQ(lines[name].size(), 1U) << name;
            for (const std::string& each : option.names)
                EXPECT_NE(lines[name].begin()->find("*" + each + "*"), std::string::npos) << each;
        }
    std::size_t known = 0;
    Names all;
    for (const CommandOutline& command : commandOutlines()) all.merge(optionsOf(command));
    for (const auto& [option, line] : lines) known += isOneOf(all, option) ? 1 : 0;
    EXPECT_EQ(known, lines.size()) << "an option is in the page that is in no help";
}

TEST(Manual, HelpOfACommandNamesWhatItTakes) {
    for (const CommandOutline& command : commandOutlines()) {
        const std::string help = call({std::string(command.name), "--help"}).output;
        for (const auto& option : command.options)
            for (const std::string& name : option.names)
                EXPECT_NE(help.find(name), std::string::npos) << command.name << name;
    }
}

TEST(Manual, PagesAreWhatScdocTakes) {
    for (const std::string page : {"vexqt.1", "vexqt-json.5", "vexqt-inspector.1"}) {
        const auto made = testing::run(
            {"sh", "-c", "scdoc < " VEXQT_MAN "/" + page + ".scd | man --warnings -l - 2>&1"});
        EXPECT_EQ(made.status, 0) << made.errors << made.output;
        EXPECT_EQ(made.output.find("warning"), std::string::npos) << made.output;
        EXPECT_NE(made.output.find("NAME"), std::string::npos);
    }
}

}  // namespace
}  // namespace vexqt::cli
