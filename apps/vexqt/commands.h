// What the command line asks for, and the functions that do it.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "apps/vexqt/Output.h"

namespace vexqt::cli {

enum class ExitStatus {
    Done = 0,
    Failed = 1,  ///< A file could not be read, decoded or written, or lacks what was asked for.
    WrongUsage = 2,
    Refused = 3  ///< A save would change or destroy what nobody asked it to.
};

/// Of several files the one that went worst decides.
ExitStatus worse(ExitStatus a, ExitStatus b);

/// Where a run reads and writes.
struct Console {
    Output& out;
    Output& err;
    int input = 0;  ///< The descriptor of standard input.
    bool hasColors = false;
    /// Where attempt() leaves what it failed with, in place of a line on standard error.
    std::string* failure = nullptr;

    /// Writes "vexqt: what" on a line of standard error.
    void complain(std::string_view what);
    /// The same with the file that it is about in front.
    void complain(std::string_view file, std::string_view what);
};

/// Something that a command cannot do, in words that follow "vexqt: FILE: ".
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& message, ExitStatus status = ExitStatus::Failed)
        : std::runtime_error(message), status_(status) {}
    ExitStatus status() const { return status_; }

private:
    ExitStatus status_;
};

/// What was written behind the command's name. Each command uses what its options fill.
struct Arguments {
    std::vector<std::string> files;
    std::vector<std::string> operands;  ///< What stands behind FILE: paths, keys, assignments.
    bool inMemory = false;
    bool strict = false;
    bool onLines = false;
    bool everyRow = false;
    bool recursive = false;
    std::optional<std::string> after;
    std::vector<std::string> absent;
    bool inPlace = false;
    std::optional<std::string> output;
    bool exact = false;
    bool isAlwaysExact = false;  ///< Of a command that has no other form.
    bool force = false;
    bool keepsNoUndo = false;
    bool asJson = false;
    bool reports = false;
    bool digestsMedia = false;
    std::optional<std::string> settings;   ///< A file of assignments.
    std::optional<std::string> filesFrom;  ///< A list of files behind those of the command line.
    bool areNamesZeroEnded = false;
    std::size_t jobs = 1;
    bool isInputTaken = false;  ///< Whether standard input is read by something else.

    const std::string& file() const { return files.front(); }
};

using Command = ExitStatus(const Arguments&, Console&);

Command outline, json, show, get;
Command set, remove, insert, insertRows, removeRows, setKey, removeKey, save;
Command data;
Command check, undo, recover;
Command properties;

}  // namespace vexqt::cli
