// Opening movies for a command, and saying what happened meanwhile.
#pragma once

#include <functional>

#include "apps/vexqt/commands.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/saving/Finding.h"

namespace vexqt::cli {

/// Reads a movie, "-" from standard input, and lists its problems on standard error.
/// \throws Failure when the file cannot be opened, Error when a strict reading ends.
std::unique_ptr<VexQTAsset> readMovie(const std::string& file, const Arguments& arguments,
                                      Console& console);

/// Everything that standard input has, or a file.
Bytes readAll(const std::string& file, Console& console);

/// Runs some work on a file and turns whatever it throws into a line on standard error and a
/// status. The output's own errors pass.
ExitStatus attempt(const std::string& file, Console& console, const std::function<void()>& work);

/// Runs it on every file, also behind one that failed, unless the reading is strict. What is said
/// of a file goes to the console that the work is given.
ExitStatus attemptEach(const Arguments& arguments, Console& console,
                       const std::function<void(const std::string& file, Console& console)>& work);

/// Changes a movie and saves it: in place, or in a copy that takes its name only when it is whole.
/// What was saved is read again and looked at, where there is something to look for.
ExitStatus edit(const Arguments& arguments, Console& console,
                const std::function<void(VexQTAsset&)>& change,
                const std::function<void(VexQTAsset&)>& lookAgain = {});

/// "moov.mvhd at 40: 'timeScale' was edited [atom-changes]".
std::string describedFinding(const Finding& finding);

/// \throws Failure unless something that can be changed in place has that name.
void requireFile(const std::string& file);
/// \throws Failure where no new file can have that name: for a folder, a device, a name in no
/// folder, and for what it is made from.
void requireTarget(const std::string& output, const std::string& source);

/// Writes bytes to a file, which takes its name only when it is whole.
void writeWhole(const std::string& file, ByteView bytes);

}  // namespace vexqt::cli
