#include "vexqt/saving/SafeSave.h"

#include <new>

#include "vexqt/saving/Draft.h"
#include "vexqt/saving/FileTransaction.h"

namespace vexqt {

namespace {

/// Bytes in memory in the place of the file that a movie was read from.
class BytesAsFile final : public ReadOnlyFile {
public:
    explicit BytesAsFile(ByteView bytes) : bytes_(bytes) {}

    std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> into,
                       std::error_code& error) override {
        error.clear();
        if (offset >= bytes_.size()) return 0;
        const ByteView there = bytes_.subspan(static_cast<std::size_t>(offset));
        const std::size_t count = std::min(into.size(), there.size());
        std::ranges::copy(there.first(count), into.begin());
        return count;
    }
    FileIdentity identity(std::error_code& error) override {
        error.clear();
        return {.size = bytes_.size(), .isRegular = true};
    }

private:
    ByteView bytes_;
};

/// Whether the file holds the new atoms, and all else that was written, where they were to be, and
/// can be followed from header to header to its end. Throws a SaveFailure where it cannot be read.
bool isAsPlanned(const SavePlan& plan, File& file) {
    NamedFile written(file, "");
    Bytes block;
    const auto has = [&](std::uint64_t offset, const SharedBytes& bytes) {
        constexpr std::size_t kBlock = 1 << 20;
        const ByteView meant = bytes.view();
        for (std::size_t done = 0; done < meant.size(); done += kBlock) {
            const ByteView expected = meant.subspan(done, std::min(kBlock, meant.size() - done));
            block.resize(expected.size());
            written.read(offset + done, block);
            if (!std::ranges::equal(block, expected)) return false;
        }
        return true;
    };
    for (const SavePlan::NewAtom& atom : plan.newAtoms())
        if (!has(atom.offset, atom.bytes)) return false;
    for (const FileWrite& write : plan.change().writes) {
        const FileRange range = write.range();
        const bool isRead = std::ranges::any_of(plan.newAtoms(), [&](const auto& atom) {
            return range.offset >= atom.offset && range.end() <= atom.offset + atom.bytes.size();
        });
        if (!isRead && !has(write.offset, write.bytes)) return false;
    }
    if (plan.form() == SaveForm::Exact) return true;
    const bool ended = plan.layout().end() == plan.layout().fileLength;
    std::error_code error;
    const FileLayout layout = FileLayout::of(file, error);
    check(error, "reading back the headers of the movie");
    return !ended || layout.end() == layout.fileLength;
}

/// Plans the save into the result. False, with the outcome, where the plan must not be executed or
/// there is nothing to do.
bool isToBeSaved(SaveResult& result, VexQTAsset& asset, File& file, const SaveOptions& options) {
    result.plan = SavePlan::of(asset, file, options.form, result.failure);
    if (result.failure) return false;
    const SavePlan& plan = result.plan;
    if (plan.has(Severity::Destroys) && !(options.force && plan.canBeForced())) {
        result.outcome = SaveResult::Outcome::Refused;
        return false;
    }
    result.outcome = SaveResult::Outcome::NothingToDo;
    return !plan.change().isEmpty();
}

SaveResult failed(std::string what) {
    SaveResult result;
    result.failure = SaveFailure{.code = {}, .what = std::move(what)};
    return result;
}

void apply(const FileChange& change, NamedFile& file) {
    for (const FileWrite& each : change.writes) file.write(each.offset, each.bytes.view());
    if (change.flip) file.write(change.flip->offset, change.flip->bytes.view());
    if (change.newLength < change.oldLength) file.truncate(change.newLength);
}

void finish(Draft& draft, SaveResult& result) {
    apply(result.plan.change(), draft.file());
    if (!isAsPlanned(result.plan, draft.file().file()))
        throw SaveFailure{.code = std::make_error_code(std::errc::io_error),
                          .what = "what was written does not read back as it was meant",
                          .reason = SaveFailure::Reason::NotAsMeant};
    try {
        if (auto note = draft.finish()) result.notes.push_back(std::move(*note));
    } catch (const std::bad_alloc&) {
        if (!draft.isFinished()) throw;  // Or there is no memory for a note.
    }
    result.outcome = SaveResult::Outcome::Saved;
}

/// Whether nothing but an edit is missing for a copy to be made.
bool isToBeCopied(SaveResult& result, VexQTAsset& asset, File& file, const SaveOptions& options) {
    return isToBeSaved(result, asset, file, options) ||
           result.outcome == SaveResult::Outcome::NothingToDo;
}

SaveResult copied(const std::function<void(SaveResult&)>& copy) {
    SaveResult result;
    try {
        copy(result);
    } catch (const SaveFailure& failure) {
        result.failure = failure;
    }
    if (result.failure) result.outcome = SaveResult::Outcome::Failed;
    return result;
}

}  // namespace

SaveResult saveInPlace(VexQTAsset& asset, const SaveOptions& options, FileSystem& files) {
    if (!asset.assetURL()) return failed("the movie was not read from a file");
    SaveResult result;
    FileTransaction transaction(files);
    result.failure = transaction.open(*asset.assetURL(), *asset.fileIdentity());
    if (result.failure) return result;
    if (!isToBeSaved(result, asset, transaction.file(), options)) {
        if (result.failure) result.failure->what += "; the movie is as it was";
        return result;
    }

    std::vector<std::string> noteWithoutMemory;
    if (options.undo != nullptr)
        noteWithoutMemory.emplace_back(
            "there was no memory left to keep the record with which this save could be undone");
    result.failure = transaction.apply(result.plan.change(),
                                       {.progress = options.progress, .verify = [&](File& file) {
                                            return isAsPlanned(result.plan, file);
                                        }});
    result.outcome = result.failure ? SaveResult::Outcome::Failed : SaveResult::Outcome::Saved;
    if (result.failure) return result;
    // Whatever happens from here on, the movie is saved and must be said to be.
    try {
        result.notes = transaction.notes();
        if (options.undo != nullptr)
            if (auto note = options.undo->keep(transaction))
                result.notes.push_back(std::move(*note));
    } catch (const std::bad_alloc&) {
        result.notes.swap(noteWithoutMemory);
    }
    return result;
}

SaveResult saveCopy(VexQTAsset& asset, const std::filesystem::path& copy,
                    const SaveOptions& options, FileSystem& files) {
    if (!asset.assetURL()) return failed("the movie was not read from a file");
    return copied([&](SaveResult& result) {
        const std::filesystem::path& original = *asset.assetURL();
        Draft draft(files, copy, asset.fileIdentity());
        const auto checkUnchanged = [&] {
            std::error_code error;
            const auto identity = files.identityOf(original, error);
            check(error, "looking at " + original.string());
            if (identity == asset.fileIdentity()) return;
            throw SaveFailure{.code = std::make_error_code(std::errc::io_error),
                              .what = original.string() + " has changed since it was read",
                              .reason = SaveFailure::Reason::Changed};
        };
        checkUnchanged();
        std::error_code error;
        const std::unique_ptr<File> source = files.openForReading(original, error);
        check(error, "opening " + original.string());
        // A save that is refused does not copy a long movie first.
        if (!isToBeCopied(result, asset, *source, options)) return;
        draft.copy(original, options.progress);
        checkUnchanged();
        finish(draft, result);
    });
}

SaveResult saveCopy(VexQTAsset& asset, ByteView movie, const std::filesystem::path& copy,
                    const SaveOptions& options, FileSystem& files) {
    return copied([&](SaveResult& result) {
        Draft draft(files, copy);
        BytesAsFile source(movie);
        if (!isToBeCopied(result, asset, source, options)) return;
        draft.create();
        draft.file().write(0, movie);
        finish(draft, result);
    });
}

}  // namespace vexqt
