#pragma once

#include "apps/vexqt/commands.h"

namespace vexqt::cli {

/// The files that a command goes through: those on its line and then those of a list, whose names
/// are read as they are asked for, so that a list may come from a program that is still looking.
class FileNames {
public:
    FileNames(const Arguments& arguments, const Console& console);
    ~FileNames();
    FileNames(const FileNames&) = delete;
    FileNames& operator=(const FileNames&) = delete;

    /// Absent behind the last one, and where the list cannot be read.
    std::optional<std::string> next();
    /// Says whether the list could be read, once no more names are wanted.
    ExitStatus end(Console& console) const;

private:
    std::optional<std::string> nextOfList();
    bool readMore();

    const Arguments& arguments_;
    std::size_t given_ = 0;  ///< How many of the command line's have been given out.
    int descriptor_ = -1;
    bool isOwned_ = false;
    std::string read_;        ///< Of the list.
    std::size_t taken_ = 0;   ///< Bytes of it that have been given out.
    std::size_t looked_ = 0;  ///< Bytes of it in which there is no end of a name.
    int error_ = 0;
};

}  // namespace vexqt::cli
