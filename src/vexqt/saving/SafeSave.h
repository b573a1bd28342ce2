// Saving as people mean it: what was edited is in the file afterwards, and nothing else has
// changed.
#pragma once

#include "vexqt/export.h"
#include "vexqt/saving/SaveFailure.h"
#include "vexqt/saving/SavePlan.h"
#include "vexqt/saving/UndoStore.h"

namespace vexqt {

/// How a movie is saved.
struct SaveOptions {
    SaveForm form = SaveForm::Surgical;  ///< Which bytes are written.
    /// Save although something will be destroyed.
    bool force = false;
    /// Where the record is kept with which the save can be undone; null to keep none.
    UndoStore* undo = nullptr;
    /// Told while bytes are kept and written.
    CopyProgress progress = {};
};

/// What came of a save.
struct SaveResult {
    /// How the file is now.
    enum class Outcome {
        Saved,
        NothingToDo,  ///< Nobody edited anything; the file was not touched.
        Refused,      ///< It would destroy something; the plan's findings say what.
        Failed        ///< The file is as it was, unless the failure says otherwise.
    };

    Outcome outcome = Outcome::Failed;   ///< In one word.
    SavePlan plan;                       ///< Empty when the file could not be opened.
    std::optional<SaveFailure> failure;  ///< Why, where it failed.
    std::vector<std::string> notes;      ///< What a person should know about a save that went well.
};

/// Saves an asset into the file that it was read from.
///
/// What will be written is read back and compared with the tree in memory before a byte is written,
/// the file is checked to be still the one that was read, and what was written is read again before
/// it counts. A crash at any moment leaves the old movie or the new one; recover() ends what an
/// interrupted save has begun.
///
/// The asset keeps telling where things lay before; read the file again before saving once more.
VEXQT_EXPORT SaveResult saveInPlace(VexQTAsset& asset, const SaveOptions& options = {},
                                    FileSystem& files = systemFiles());

/// Saves an asset into a copy of the file that it was read from. What is wrong with the save is
/// found out before anything is copied. The copy takes its name only when it is whole, and replaces
/// what had that name; it has the permissions and extended attributes of the original.
VEXQT_EXPORT SaveResult saveCopy(VexQTAsset& asset, const std::filesystem::path& copy,
                                 const SaveOptions& options = {},
                                 FileSystem& files = systemFiles());

/// The same for an asset that was read from these bytes in memory.
VEXQT_EXPORT SaveResult saveCopy(VexQTAsset& asset, ByteView movie,
                                 const std::filesystem::path& copy, const SaveOptions& options = {},
                                 FileSystem& files = systemFiles());

}  // namespace vexqt
