#include "vexqt/saving/SafeSave.h"

#include <unistd.h>

#include "vexqt/saving/AtomRows.h"
#include "vexqt/saving/FileTransaction.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {

namespace {

// MARK: Whether what will be written is what was meant

/// What a class writes for a row; absent also where it cannot write what the atom holds.
std::optional<Bytes> writtenRow(const Field& row, const VexQTAtom& atom) {
    try {
        return encodedRow(row, atom);
    } catch (const Error&) {
        return std::nullopt;
    }
}

/// The bytes that a row was read from; none where it was not in the file.
ByteView bytesOfRow(const Field& row, const AtomAsRead& read) {
    for (const Survey::Part& part : read.survey.rows)
        if (part.row == &row) return read.bytes.view().subspan(part.start, part.end - part.start);
    return {};
}

/// Whether a row that does not read as it was set has the bytes that stand for what was set: some
/// codecs read another value than they wrote, -1.0 among them.
bool hasMeantBytes(const Field& row, const VexQTAtom& meant, const VexQTAtom& readBack) {
    const auto now = writtenRow(row, meant);
    if (!now) return false;
    const ByteView there = bytesOfRow(row, AtomAsRead(readBack));
    if (meant.origin().size() == 0) return std::ranges::equal(there, *now);
    const AtomAsRead before(meant);
    const auto wouldBe = writtenRow(row, *before.record);
    return std::ranges::equal(
        there, mergedRow(row, bytesOfRow(row, before), wouldBe.value_or(Bytes()), *now));
}

bool haveSameRows(const VexQTAtom& meant, const VexQTAtom& readBack) {
    for (const Field& row : meant.atomClass().fields) {
        if (row.holdsChildren || row.encode == nullptr) continue;
        if (row.untouched != nullptr && row.untouched(meant)) continue;
        if (writtenRow(row, meant) == writtenRow(row, readBack)) continue;
        if (!hasMeantBytes(row, meant, readBack)) return false;
    }
    return true;
}

/// The path of the first atom that differs, empty for none.
std::string firstDifference(const VexQTAtom& meant, const VexQTAtom& readBack,
                            const std::string& path) {
    const bool isRaw = &meant.atomClass() == &VexQTAtom::kClass && meant.unknownBytes();
    if (isRaw && !meant.declinedClass()) {
        // Its type may be one that a class decodes; then it is read as that from now on.
        const ByteView bytes = readBack.origin().view();
        const ByteView raw = *meant.unknownBytes();
        const bool isSame = meant.atomTypeString() == readBack.atomTypeString() &&
                            bytes.size() >= raw.size() &&
                            std::ranges::equal(bytes.last(raw.size()), raw);
        return isSame ? std::string() : path;
    }
    const bool isSameKind = &meant.atomClass() == &readBack.atomClass() &&
                            meant.declinedClass() == readBack.declinedClass() &&
                            meant.atomTypeString() == readBack.atomTypeString();
    const bool isSame = isSameKind && meant.children().size() == readBack.children().size() &&
                        haveSameRows(meant, readBack);
    if (!isSame) return path;
    for (std::size_t i = 0; i < meant.children().size(); ++i) {
        const VexQTAtom& child = *meant.children()[i];
        std::string found = firstDifference(child, *readBack.children()[i],
                                            path + "." + pathSegment(child.atomType()));
        if (!found.empty()) return found;
    }
    return {};
}

SaveFailure failureOf(std::string what, std::error_code code = {},
                      SaveFailure::Reason reason = SaveFailure::Reason::System) {
    if (code) what += (what.empty() ? "" : ": ") + code.message();
    return {.code = code, .what = std::move(what), .reason = reason};
}

/// Whether the file holds the new atoms where they were to be, and can be followed from header to
/// header to its end.
bool isAsPlanned(const SavePlan& plan, File& file) {
    constexpr std::size_t kBlock = 1 << 20;
    std::error_code error;
    Bytes block;
    for (const SavePlan::NewAtom& atom : plan.newAtoms()) {
        const ByteView meant = atom.bytes.view();
        for (std::size_t done = 0; done < meant.size(); done += kBlock) {
            const ByteView expected = meant.subspan(done, std::min(kBlock, meant.size() - done));
            block.resize(expected.size());
            const std::size_t count = file.readAt(atom.offset + done, block, error);
            if (error || count != expected.size() || !std::ranges::equal(block, expected))
                return false;
        }
    }
    if (plan.form() == SaveForm::Exact) return true;
    const bool ended = plan.layout().end() == plan.layout().fileLength;
    const FileLayout layout = FileLayout::of(file, error);
    return !error && (!ended || layout.end() == layout.fileLength);
}

/// Why a plan must not be executed; absent where it may.
std::optional<SaveResult::Outcome> objection(SaveResult& result, const SaveOptions& options) {
    const SavePlan& plan = result.plan;
    const auto isBlocking = [](const Finding& finding) {
        return finding.id == "file-changed" || finding.id == "read-again-first" ||
               finding.id == "no-room";
    };
    // What force cannot mend either: there is nothing right to write.
    if (std::ranges::any_of(plan.findings(), isBlocking)) return SaveResult::Outcome::Refused;
    if (plan.has(Severity::Destroys) && !options.force) return SaveResult::Outcome::Refused;
    if (plan.form() == SaveForm::Surgical) {
        if (const auto path = firstNotAsMeant(plan)) {
            result.failure = failureOf(*path +
                                           " would not read back as it was edited; the movie is "
                                           "as it was",
                                       {}, SaveFailure::Reason::NotAsMeant);
            return SaveResult::Outcome::Failed;
        }
    }
    if (plan.change().isEmpty()) return SaveResult::Outcome::NothingToDo;
    return std::nullopt;
}

}  // namespace

std::optional<std::string> firstNotAsMeant(const SavePlan& plan) {
    for (const SavePlan::NewAtom& atom : plan.newAtoms()) {
        SharedBytes bytes = atom.bytes;
        // Root atoms are decoded from 8 bytes before the end of their header.
        if (ByteReader(bytes.view()).u32() == 1) bytes = bytes.part(8, bytes.size() - 8);
        std::vector<Problem> ignored;
        ReadContext context(ignored);
        const ReadContext::Siblings none;
        const ReadContext::Step step(context, atom.atom->atomType(), none);
        const std::string path = pathSegment(atom.atom->atomType());
        try {
            const auto readBack = VexQTAtom::make(atom.atom->atomClass(), bytes, nullptr,
                                                  atom.atom->offsetInFile(), context);
            if (!readBack) return path;
            if (std::string found = firstDifference(*atom.atom, *readBack, path); !found.empty())
                return found;
        } catch (const Error&) {
            return path;
        }
    }
    return std::nullopt;
}

SaveResult saveInPlace(VexQTAsset& asset, const SaveOptions& options, FileSystem& files) {
    SaveResult result;
    if (!asset.assetURL() || !asset.fileIdentity()) {
        result.failure = failureOf("the movie was not read from a file");
        return result;
    }
    FileTransaction transaction(files);
    result.failure = transaction.open(*asset.assetURL(), *asset.fileIdentity());
    if (result.failure) return result;

    result.plan = SavePlan::of(asset, transaction.file(), options.form);
    if (const auto outcome = objection(result, options)) {
        result.outcome = *outcome;
        return result;
    }
    result.failure = transaction.apply(result.plan.change(),
                                       {.progress = options.progress, .verify = [&](File& file) {
                                            return isAsPlanned(result.plan, file);
                                        }});
    result.notes = transaction.notes();
    result.outcome = result.failure ? SaveResult::Outcome::Failed : SaveResult::Outcome::Saved;
    if (!result.failure && options.undo != nullptr)
        if (auto note = options.undo->keep(transaction)) result.notes.push_back(std::move(*note));
    return result;
}

namespace {

/// A copy under a name of its own, removed unless it is finished.
class Draft {
public:
    Draft(FileSystem& files, const std::filesystem::path& target)
        : files_(files),
          target_(target),
          path_(target.parent_path() / ("." + target.filename().string().substr(0, 200) +
                                        ".vexqt-" + std::to_string(::getpid()))) {}
    ~Draft() {
        std::error_code ignored;
        if (isOurs_ && !isFinished_) files_.remove(path_, ignored);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    std::unique_ptr<File> copyOf(const std::filesystem::path& from, const CopyProgress& progress,
                                 std::error_code& error) {
        auto file = files_.copy(from, path_, progress, error);
        isOurs_ = file != nullptr;
        return file;
    }
    void finish(std::error_code& error) {
        files_.rename(path_, target_, error);
        if (error) return;
        isFinished_ = true;
        const auto folder = target_.parent_path();
        files_.flushDirectory(folder.empty() ? "." : folder, error);
    }

private:
    FileSystem& files_;
    std::filesystem::path target_, path_;
    bool isOurs_ = false, isFinished_ = false;
};

/// Where a copy goes: a symbolic link stays one, and what it leads to is replaced. Fails for the
/// movie itself under any name.
std::filesystem::path targetOf(const std::filesystem::path& copy, const VexQTAsset& asset,
                               FileSystem& files, std::optional<SaveFailure>& failure) {
    std::error_code error;
    const auto there = files.identityOf(copy, error);
    if (error) {
        failure = failureOf({}, error);
        return {};
    }
    if (!there) return copy;
    if (asset.fileIdentity() && there->isSameFile(*asset.fileIdentity())) {
        failure = failureOf("is the movie itself; save it in place");
    } else if (!there->isRegular) {
        failure = failureOf("is no regular file");
    }
    const auto resolved = files.resolve(copy, error);
    if (error) failure = failureOf({}, error);
    return resolved;
}

void applyTo(File& file, const FileChange& change, std::error_code& error) {
    const auto write = [&](const FileWrite& each) {
        if (!error) file.writeAt(each.offset, each.bytes.view(), error);
    };
    for (const FileWrite& each : change.writes) write(each);
    if (change.flip) write(*change.flip);
    if (!error && change.newLength < change.oldLength) file.truncate(change.newLength, error);
    if (!error) file.flush(error);
}

}  // namespace

SaveResult saveCopy(VexQTAsset& asset, const std::filesystem::path& copy,
                    const SaveOptions& options, FileSystem& files) {
    SaveResult result;
    if (!asset.assetURL() || !asset.fileIdentity()) {
        result.failure = failureOf("the movie was not read from a file");
        return result;
    }
    const auto target = targetOf(copy, asset, files, result.failure);
    if (result.failure) return result;

    std::error_code error;
    const auto identity = files.identityOf(*asset.assetURL(), error);
    if (error || identity != asset.fileIdentity()) {
        result.failure = failureOf("the file is no longer the one that was read", error,
                                   SaveFailure::Reason::Changed);
        return result;
    }
    Draft draft(files, target);
    const auto file = draft.copyOf(*asset.assetURL(), options.progress, error);
    if (!file) {
        result.failure = failureOf({}, error);
        return result;
    }
    result.plan = SavePlan::of(asset, *file, options.form);
    const auto outcome = objection(result, options);
    if (outcome && *outcome != SaveResult::Outcome::NothingToDo) {
        result.outcome = *outcome;
        return result;
    }
    applyTo(*file, result.plan.change(), error);
    if (!error && !isAsPlanned(result.plan, *file))
        result.failure = failureOf("what was written did not read back as it was meant", {},
                                   SaveFailure::Reason::NotAsMeant);
    if (!error && !result.failure) draft.finish(error);
    if (error) result.failure = failureOf({}, error);
    result.outcome = result.failure ? SaveResult::Outcome::Failed : SaveResult::Outcome::Saved;
    return result;
}

}  // namespace vexqt
