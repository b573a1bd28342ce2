#pragma once

#include <vector>

#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/export.h"
#include "vexqt/saving/FileChange.h"
#include "vexqt/saving/FileLayout.h"
#include "vexqt/saving/Finding.h"
#include "vexqt/saving/SaveFailure.h"

namespace vexqt {

/// Which bytes a save writes.
enum class SaveForm {
    Surgical,  ///< What was edited, and as little else as can be.
    Exact  ///< What the classes' own rules give, as VexQTAsset::writeInPlaceWithError leaves it.
};

/// What a save will do to a file, found out without writing anything.
class VEXQT_EXPORT SavePlan {
public:
    /// How the new movie gets its place, from the gentlest way on.
    enum class Way {
        Nothing,     ///< Nobody edited anything.
        Patch,       ///< It is as long as the old one: only bytes that differ are written.
        InOldPlace,  ///< It begins where the old one did, or in the free space in front of it.
        Move         ///< It is written behind everything else, and the old one becomes free space.
    };

    /// Plans to save an asset into a file that holds what the asset was read from: its own file or
    /// a copy of it.
    /// \throws Error when the file cannot be read.
    static SavePlan of(VexQTAsset& asset, File& file, SaveForm form);
    /// The same, and an empty plan when the file cannot be read.
    static SavePlan of(VexQTAsset& asset, File& file, SaveForm form,
                       std::optional<SaveFailure>& failure);
    /// A plan to do nothing.
    SavePlan() = default;

    /// How the new movie gets its place.
    Way way() const { return way_; }
    /// Which bytes it writes.
    SaveForm form() const { return form_; }
    /// The ranges to write, with their new bytes.
    const FileChange& change() const { return change_; }
    /// Everything worth knowing beforehand, edits included.
    const std::vector<Finding>& findings() const { return findings_; }
    /// Whether a finding is as bad as that.
    bool has(Severity severity) const;
    /// False where force does not help, because there is nothing right to write: the file is not
    /// what was read, an atom has no room, or its class cannot write it.
    bool canBeForced() const;

    /// Where the top-level atoms lie now.
    const FileLayout& layout() const { return layout_; }
    /// The atoms whose bytes will be others, and where each of them will lie. Its bytes are held by
    /// the plan.
    struct NewAtom {
        const VexQTAtom* atom = nullptr;  ///< Of the tree in memory.
        std::uint64_t offset = 0;         ///< Of the first header byte.
        SharedBytes bytes;                ///< Header included.
    };
    /// In file order.
    const std::vector<NewAtom>& newAtoms() const { return newAtoms_; }

private:
    explicit SavePlan(SaveForm form) : form_(form) {}
    class Surgical;
    class Exact;

    void add(std::string_view id, Severity severity, std::optional<FileRange> range,
             std::string message, std::string path = {});
    void checkSource(const VexQTAsset& asset, File& file);
    void checkNewAtoms(const VexQTAsset& asset);
    void write(std::uint64_t offset, const SharedBytes& bytes);
    void finishChange();

    SaveForm form_ = SaveForm::Surgical;
    Way way_ = Way::Nothing;
    FileLayout layout_;
    FileChange change_;
    std::vector<Finding> findings_;
    std::vector<NewAtom> newAtoms_;
};

/// "nothing", "patch", "in the old place", "move".
VEXQT_EXPORT std::string_view textOf(SavePlan::Way way);

}  // namespace vexqt
