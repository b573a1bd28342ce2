#include "apps/vexqt/movies.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <new>

#include "apps/vexqt/Interruption.h"
#include "apps/vexqt/MediaProof.h"
#include "apps/vexqt/ProgressLine.h"
#include "apps/vexqt/batch.h"
#include "apps/vexqt/printable.h"
#include "apps/vexqt/save_report.h"
#include "vexqt/asset/AtomPath.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/platform/files.h"
#include "vexqt/platform/log.h"
#include "vexqt/saving/SafeSave.h"
#include "vexqt/saving/recovery.h"
#include "vexqt/saving/whole_files.h"

namespace vexqt::cli {

namespace fs = std::filesystem;

// MARK: Saying what happened

void Console::complain(std::string_view what) {
    // What was printed before comes first also where both go to one terminal.
    out.flush();
    try {
        err.write("vexqt: " + printable(what) + '\n');
        err.flush();
    } catch (const std::exception&) {
        // Nobody can be told that nobody can be told.
    }
}

void Console::complain(std::string_view file, std::string_view what) {
    complain(std::string(file == "-" ? "standard input" : file) + ": " + std::string(what));
}

ExitStatus attempt(const std::string& file, Console& console, const std::function<void()>& work) {
    const auto failed = [&](const std::string& what, ExitStatus status = ExitStatus::Failed) {
        if (console.failure != nullptr) {
            *console.failure = what;
        } else {
            console.complain(file, what);
        }
        return status;
    };
    try {
        work();
        return ExitStatus::Done;
    } catch (const Failure& failure) {
        return failed(failure.what(), failure.status());
    } catch (const PathError& error) {
        return failed(error.what(), error.reason() == PathError::Reason::Malformed
                                        ? ExitStatus::WrongUsage
                                        : ExitStatus::Failed);
    } catch (const Error& error) {
        return failed(error.what());
    } catch (const std::bad_alloc&) {
        return failed("there is not enough memory");
    }
}

ExitStatus attemptEach(const Arguments& arguments, Console& console,
                       const std::function<void(const std::string& file, Console& console)>& work) {
    return forEachFile(arguments, console,
                       arguments.strict ? AfterFailure::End : AfterFailure::GoOn,
                       [&](const std::string& file, Console& own) {
                           return attempt(file, own, [&] { work(file, own); });
                       });
}

namespace {

/// Copies what the library logs on this thread to standard error, as long as it lives.
class LogOnConsole {
public:
    LogOnConsole(const std::string& file, Console& console)
        : file_(file), console_(console), before_(std::exchange(hearing_, this)) {
        const std::lock_guard lock(mutex_);
        if (count_++ > 0) return;
        replaced_ = setLogSink([](std::string_view line) {
            if (hearing_ != nullptr) hearing_->console_.complain(hearing_->file_, line);
        });
    }
    ~LogOnConsole() {
        hearing_ = before_;
        const std::lock_guard lock(mutex_);
        if (--count_ == 0) setLogSink(std::move(replaced_));
    }
    LogOnConsole(const LogOnConsole&) = delete;
    LogOnConsole& operator=(const LogOnConsole&) = delete;

private:
    // Several movies may be worked on at a time, each by a thread, and there is one sink for all.
    static inline std::mutex mutex_;
    static inline std::size_t count_ = 0;
    static inline LogSink replaced_;
    static inline thread_local LogOnConsole* hearing_ = nullptr;

    const std::string& file_;
    Console& console_;
    LogOnConsole* before_;
};

void check(const std::error_code& error) {
    if (error) throw Failure(error.message());
}

// MARK: Reading

Bytes readDescriptor(int descriptor) {
    static constexpr std::size_t kStep = std::size_t{1024} * 1024;
    Bytes bytes;
    std::size_t used = 0;
    while (true) {
        if (bytes.size() < used + kStep) bytes.resize(std::max(used + kStep, 2 * used));
        const ssize_t count = ::read(descriptor, bytes.data() + used, bytes.size() - used);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw Failure(std::generic_category().message(errno));
        if (count == 0) break;
        used += static_cast<std::size_t>(count);
    }
    bytes.resize(used);
    return bytes;
}

struct DescriptorOwner {
    int descriptor;
    ~DescriptorOwner() { ::close(descriptor); }
};

/// What a shell puts in the place of <(command).
bool isPipe(const std::string& file) {
    std::error_code ignored;
    return fs::is_fifo(file, ignored);
}

bool isReadIntoMemory(const std::string& file, const Arguments& arguments) {
    return file == "-" || arguments.inMemory || isPipe(file);
}

/// What a path leads to that is no regular file, for people; empty for one that is, or for nothing.
std::string otherKindOf(const fs::path& path) {
    std::error_code ignored;
    switch (fs::status(path, ignored).type()) {
        case fs::file_type::directory:
            return "a folder";
        case fs::file_type::fifo:
            return "a pipe";
        case fs::file_type::socket:
            return "a socket";
        case fs::file_type::block:
        case fs::file_type::character:
            return "a device";
        default:
            return "";
    }
}

std::unique_ptr<VexQTAsset> openMovie(const fs::path& file, ReadOptions options) {
    std::error_code error;
    auto asset = VexQTAsset::initWithURL(file, error, options);
    if (const std::string kind = otherKindOf(file); error && !kind.empty())
        throw Failure("is " + kind + ", not a movie");
    check(error);
    return asset;
}

void listProblems(const std::string& file, const VexQTAsset& asset, Console& console) {
    for (const Problem& problem : asset.problems()) {
        const std::string path = problem.path.empty() ? "the file" : problem.path;
        console.complain(
            file, path + " at " + std::to_string(problem.offsetInFile) + ": " + problem.message);
    }
}

bool hasJournal(const std::string& file) {
    std::error_code error;
    return findJournal(systemFiles(), file, error) && !error;
}

/// A save that was interrupted is ended before anybody trusts what is there.
void tellOfJournal(const std::string& file, Console& console) {
    if (hasJournal(file))
        console.complain(file, "a save of this movie goes on, or was interrupted: vexqt recover " +
                                   file + " puts back what it was before");
}

/// A strict reading ends without an error at a brand that is not accepted.
void explainBrand(const std::string& file, const VexQTAsset& asset, Console& console) {
    const auto brand = integerFrom(asset.valueForKeyPath("ftyp.majorBrand"));
    if (!brand || asset.valueForKey("isValid") == Value(true)) return;
    std::string line = "ftyp at " + std::to_string(asset.rootAtoms().back()->extent().start) +
                       ": major brand '" + textFromCode(static_cast<OSType>(*brand)) +
                       "' is not accepted, only";
    for (const OSType accepted : VexQTAsset::acceptedMajorBrands())
        line += " '" + textFromCode(accepted) + "'";
    console.complain(file, line + "; reading ended here, as --strict asks");
}

}  // namespace

Bytes readAll(const std::string& file, Console& console) {
    if (file == "-") return readDescriptor(console.input);
    if (isPipe(file)) {
        const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0) throw Failure(std::generic_category().message(errno));
        const DescriptorOwner owner{descriptor};
        return readDescriptor(descriptor);
    }
    std::error_code error;
    const auto open = systemFiles().openForReading(file, error);
    check(error);
    const std::uint64_t size = open->size(error);
    check(error);
    Bytes bytes(static_cast<std::size_t>(size));
    bytes.resize(open->readAt(0, bytes, error));
    check(error);
    return bytes;
}

std::unique_ptr<VexQTAsset> readMovie(const std::string& file, const Arguments& arguments,
                                      Console& console) {
    const LogOnConsole logged(file, console);
    const ReadOptions options = {.tolerant = !arguments.strict};
    auto asset = isReadIntoMemory(file, arguments)
                     ? VexQTAsset::initWithData(readAll(file, console), options)
                     : openMovie(file, options);
    if (!isReadIntoMemory(file, arguments)) tellOfJournal(file, console);
    listProblems(file, *asset, console);
    if (arguments.strict) explainBrand(file, *asset, console);
    return asset;
}

// MARK: Saving

std::string describedFinding(const Finding& finding) {
    std::string place = finding.path;
    if (finding.range)
        place += (place.empty() ? "at " : " at ") + std::to_string(finding.range->offset);
    return (place.empty() ? "" : place + ": ") + finding.message + " [" + std::string(finding.id) +
           "]";
}

namespace {

/// What a person can do about a save that is refused.
std::string wayOut(const SaveResult& result, const Arguments& arguments) {
    const auto has = [&](std::string_view id) {
        return std::ranges::count(result.plan.findings(), id, &Finding::id) > 0;
    };
    if (has("file-changed") || has("read-again-first")) return "run the command again";
    if (!result.plan.canBeForced()) return "--force does not help, as there is nothing to write";
    std::string way;
    if (arguments.exact && !arguments.isAlwaysExact) way = "try it without --exact; ";
    if (arguments.inPlace) way += "-o OUT leaves this file as it is; ";
    return way + "--force saves all the same";
}

/// What went wrong, and what a person can do about it.
std::string explained(const std::string& file, const SaveResult& result, bool isInPlace) {
    if (!result.failure) return "cannot be saved";
    const SaveFailure& failure = *result.failure;
    switch (failure.reason) {
        case SaveFailure::Reason::Busy:
            return "somebody else is saving this movie; nothing was written";
        case SaveFailure::Reason::Changed:
            return "has changed since it was read, so nothing was written; run the command again";
        case SaveFailure::Reason::RecoveryNeeded:
            return failure.what + " (vexqt recover " + file + ")";
        case SaveFailure::Reason::System:
            break;
        case SaveFailure::Reason::NotAsMeant:
        case SaveFailure::Reason::RollBackFailed:
            return failure.what;
    }
    const bool isForbidden = failure.code == std::errc::permission_denied ||
                             failure.code == std::errc::operation_not_permitted ||
                             failure.code == std::errc::read_only_file_system;
    if (!isForbidden || !isInPlace) return failure.what;
    const bool wasOpened = result.plan.layout().fileLength != 0;
    const std::string what =
        wasOpened ? failure.what : "cannot be opened for writing: " + failure.code.message();
    return what + " (-o OUT saves into a copy)";
}

/// Says how a save went; a refusal and a failure leave by way of Failure.
void conclude(const std::string& file, const SaveResult& result, const Arguments& arguments,
              Console& console) {
    switch (result.outcome) {
        case SaveResult::Outcome::NothingToDo:
            return;
        case SaveResult::Outcome::Saved:
            for (const Finding& finding : result.plan.findings())
                if (finding.severity != Severity::Note && result.plan.form() != SaveForm::Exact)
                    console.complain(file, describedFinding(finding));
            for (const std::string& note : result.notes) console.complain(file, note);
            return;
        case SaveResult::Outcome::Refused: {
            std::string first;
            for (const Finding& finding : result.plan.findings()) {
                if (finding.severity != Severity::Destroys) continue;
                if (!first.empty()) console.complain(file, first);
                first = describedFinding(finding);
            }
            throw Failure(first + "; nothing was written (" + wayOut(result, arguments) + ")",
                          ExitStatus::Refused);
        }
        case SaveResult::Outcome::Failed:
            break;
    }
    throw Failure(explained(file, result, !arguments.output));
}

struct SavePlaces {
    std::string file;                   ///< What is saved; a copy is not there before the end.
    std::optional<std::string> source;  ///< What a copy is made of,
    const Bytes* memory = nullptr;      ///< and its bytes, where they are only in memory.
};

MediaProof proofOf(const SavePlaces& places, Console& console) {
    if (places.memory == nullptr) return {places.source.value_or(places.file), console};
    static constexpr const char* kName = "/movie";
    MemoryFileSystem memory;
    memory.put(kName, *places.memory);
    return {kName, console, memory};
}

/// Saves, and tells of it: on standard error what a person should know, on standard output what a
/// program has asked for.
void saveAndTell(const SavePlaces& places, const Arguments& arguments, Console& console,
                 UndoStore* undoStore, const std::function<SaveResult(const SaveOptions&)>& save) {
    std::optional<MediaProof> media;
    if (arguments.digestsMedia) media = proofOf(places, console);
    SaveResult result;
    const Interruption interruption;
    {
        ProgressLine progress(console, places.source ? "copying" : "saving");
        const auto report = [&](std::uint64_t done, std::uint64_t total) {
            interruption.check();
            progress.tell(done, total);
        };
        result = save({.form = arguments.exact ? SaveForm::Exact : SaveForm::Surgical,
                       .force = arguments.force,
                       .undo = undoStore,
                       .progress = report});
    }
    // A copy that was not made is no place to look into; something else may have its name.
    const bool isThere = !places.source || result.outcome == SaveResult::Outcome::Saved;
    if (media && isThere) media->readAgain(places.file, console);
    if (arguments.reports)
        writeReport(console.out, {.file = places.file, .source = places.source}, result,
                    media ? &*media : nullptr);
    conclude(places.file, result, arguments, console);
    if (media) media->requireSame();
    interruption.check();  // It came too late to stop the save.
}

UndoStore undoStoreFor(const Arguments& arguments) {
    return UndoStore(systemFiles(),
                     arguments.keepsNoUndo ? std::nullopt : UndoStore::folderOfUser());
}

}  // namespace

void requireFile(const std::string& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) check(error);
    const std::string kind = otherKindOf(file);
    if (!kind.empty())
        throw Failure("is " + kind + ", and only what lies in a file can be saved in place");
}

void requireTarget(const std::string& output, const std::string& source) {
    const std::string kind = otherKindOf(output);
    if (!kind.empty()) throw Failure("is " + kind + ", which is not replaced by a file");
    std::error_code error;
    if (source != "-" && fs::equivalent(output, source, error))
        throw Failure("is the movie itself" +
                      std::string(output == source ? "" : " under another name"));
    const fs::path folder = fs::path(output).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error))
        throw Failure("there is no folder " + folder.string());
}

void writeWhole(const std::string& file, ByteView bytes) {
    if (const auto failure = vexqt::writeWhole(file, bytes)) throw Failure(failure->what);
}

namespace {

ExitStatus changeAndSave(const Arguments& arguments, Console& console,
                         const std::function<void(VexQTAsset&)>& change) {
    const std::string& file = arguments.file();
    const ReadOptions options = {.tolerant = !arguments.strict};
    const bool isFromMemory = isReadIntoMemory(file, arguments);
    Bytes bytes;

    if (arguments.output) {
        const ExitStatus target =
            attempt(*arguments.output, console, [&] { requireTarget(*arguments.output, file); });
        if (target != ExitStatus::Done) return target;
    }
    std::unique_ptr<VexQTAsset> asset;
    const ExitStatus changed = attempt(file, console, [&] {
        if (!arguments.output) requireFile(file);
        // A movie is saved only when no journal lies beside it; nor is one half saved copied.
        if (arguments.output && !isFromMemory && !arguments.force && hasJournal(file))
            throw Failure("a save of this movie goes on, or was interrupted: vexqt recover " +
                          file + " puts back what it was before (--force copies what is there)");
        {
            const LogOnConsole logged(file, console);
            if (isFromMemory) bytes = readAll(file, console);
            asset =
                isFromMemory ? VexQTAsset::initWithData(bytes, options) : openMovie(file, options);
        }
        listProblems(file, *asset, console);
        change(*asset);
        if (arguments.output) return;
        // Only what was read from a file can be saved. What was read into memory is opened and
        // changed once more.
        if (isFromMemory) {
            asset = openMovie(file, options);
            change(*asset);
        }
        UndoStore undoStore = undoStoreFor(arguments);
        const SavePlaces places = {.file = file, .source = {}};
        saveAndTell(places, arguments, console, &undoStore,
                    [&](const SaveOptions& saving) { return saveInPlace(*asset, saving); });
    });
    if (changed != ExitStatus::Done || !arguments.output) return changed;

    return attempt(*arguments.output, console, [&] {
        const std::string& output = *arguments.output;
        const SavePlaces places = {
            .file = output, .source = file, .memory = isFromMemory ? &bytes : nullptr};
        saveAndTell(places, arguments, console, nullptr, [&](const SaveOptions& saving) {
            return isFromMemory ? saveCopy(*asset, bytes, output, saving)
                                : saveCopy(*asset, output, saving);
        });
    });
}

}  // namespace

ExitStatus edit(const Arguments& arguments, Console& console,
                const std::function<void(VexQTAsset&)>& change,
                const std::function<void(VexQTAsset&)>& lookAgain) {
    const ExitStatus status = changeAndSave(arguments, console, change);
    if (status != ExitStatus::Done || !lookAgain) return status;
    const std::string& saved = arguments.output ? *arguments.output : arguments.file();
    return attempt(saved, console, [&] {
        const auto asset = openMovie(saved, {.tolerant = !arguments.strict});
        lookAgain(*asset);
    });
}

}  // namespace vexqt::cli
