// What a save did, as JSON for programs.
#pragma once

#include "apps/vexqt/JsonWriter.h"
#include "apps/vexqt/MediaProof.h"
#include "vexqt/saving/SafeSave.h"

namespace vexqt::cli {

/// The version of the document. It grows when a member goes or means something else, not when one
/// is added.
inline constexpr std::uint64_t kReportVersion = 1;

struct SavedFiles {
    std::string file;                   ///< What was written.
    std::optional<std::string> source;  ///< What a copy was made of.
};

/// One document. Without a proof it says nothing of the media.
void writeReport(Output& out, const SavedFiles& files, const SaveResult& result,
                 const MediaProof* media);
void writeReport(Output& out, const SavedFiles& files, const UndoResult& result,
                 const MediaProof* media);

/// A member of an object with an array of findings.
void writeFindings(JsonWriter& json, const std::vector<Finding>& findings);

}  // namespace vexqt::cli
