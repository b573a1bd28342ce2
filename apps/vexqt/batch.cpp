#include "apps/vexqt/batch.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>

#include "apps/vexqt/FileNames.h"

namespace vexqt::cli {

namespace {

/// Brings what is written about many files at once into the order of the files.
///
/// What belongs to the first file that is not done passes straight through. Of each of the others
/// so much is kept, and whoever writes more waits; and nobody runs far ahead. So the memory that
/// this takes does not depend on what the files hold.
class Sequence {
public:
    Sequence(Console& console, std::size_t jobs) : console_(console), most_(4 * jobs) {}

    /// Waits until the work on that file may begin. False where the run has ended.
    bool begin(std::size_t index) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return isOver_ || index < current_ + most_; });
        return !isOver_;
    }

    /// \throws OutputClosed where the run has ended meanwhile, and what the output throws.
    void write(std::size_t index, Output& out, std::string_view bytes) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] {
            return isOver_ || index == current_ || parts_[index].size + bytes.size() <= kMostKept;
        });
        if (isOver_) throw OutputClosed();
        if (index == current_) return pass(out, bytes);
        Part& part = parts_[index];
        if (part.pieces.empty() || part.pieces.back().out != &out)
            part.pieces.push_back({&out, {}});
        part.pieces.back().text += bytes;
        part.size += bytes.size();
    }

    void end(std::size_t index, bool isLast) {
        const std::lock_guard lock(mutex_);
        parts_[index].isDone = true;
        parts_[index].isLast = isLast;
        while (!isOver_) {
            const auto part = parts_.find(current_);
            if (part == parts_.end()) break;
            for (const Piece& piece : part->second.pieces) pass(*piece.out, piece.text);
            part->second.pieces.clear();
            if (!part->second.isDone) break;
            isOver_ = part->second.isLast;
            parts_.erase(part);
            ++current_;
        }
        changed_.notify_all();
    }

    /// Keeps what the current work has thrown, and lets everybody end.
    void fail(const std::exception_ptr& error) {
        const std::lock_guard lock(mutex_);
        if (!isOver_) error_ = error;
        isOver_ = true;
        changed_.notify_all();
    }
    void rethrow() const {
        if (error_) std::rethrow_exception(error_);
    }

private:
    struct Piece {
        Output* out;
        std::string text;
    };
    struct Part {
        std::vector<Piece> pieces;
        std::size_t size = 0;
        bool isDone = false;
        bool isLast = false;
    };
    static constexpr std::size_t kMostKept = std::size_t{1} << 20;

    void pass(Output& out, std::string_view bytes) {
        if (&out == &console_.err) console_.out.flush();
        out.write(bytes);
        if (&out == &console_.err) out.flush();
    }

    Console& console_;
    const std::size_t most_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::size_t, Part> parts_;
    std::size_t current_ = 0;
    bool isOver_ = false;
    std::exception_ptr error_;
};

/// Where the work on one file writes.
class PartOutput final : public Output {
public:
    PartOutput(Sequence& sequence, std::size_t index, Output& out)
        : sequence_(sequence), index_(index), out_(out) {}

private:
    void send(std::string_view bytes) override { sequence_.write(index_, out_, bytes); }

    Sequence& sequence_;
    std::size_t index_;
    Output& out_;
};

}  // namespace

ExitStatus worse(ExitStatus a, ExitStatus b) {
    // What was refused is as it was; what failed may be anything.
    static constexpr ExitStatus kFromBest[] = {ExitStatus::Done, ExitStatus::Refused,
                                               ExitStatus::WrongUsage, ExitStatus::Failed};
    return std::ranges::find(kFromBest, a) > std::ranges::find(kFromBest, b) ? a : b;
}

ExitStatus forEachFile(
    const Arguments& arguments, Console& console, AfterFailure afterFailure,
    const std::function<ExitStatus(const std::string& file, Console& console)>& work) {
    FileNames names(arguments, console);
    ExitStatus status = ExitStatus::Done;
    const auto isEnd = [&](ExitStatus one) {
        return one != ExitStatus::Done && afterFailure == AfterFailure::End;
    };
    if (arguments.jobs <= 1) {
        while (const auto file = names.next()) {
            const ExitStatus one = work(*file, console);
            status = worse(status, one);
            if (isEnd(one)) break;
        }
        return worse(status, names.end(console));
    }

    Sequence sequence(console, arguments.jobs);
    std::mutex mutex;  // Of the names and the status.
    std::size_t next = 0;
    const auto workOn = [&](std::size_t index, const std::string& file) {
        PartOutput out(sequence, index, console.out), err(sequence, index, console.err);
        Console own = {.out = out, .err = err, .input = console.input};
        const ExitStatus one = work(file, own);
        out.flush();
        err.flush();
        {
            const std::lock_guard lock(mutex);
            status = worse(status, one);
        }
        sequence.end(index, isEnd(one));
    };
    const auto run = [&] {
        try {
            while (true) {
                std::size_t index = 0;
                std::optional<std::string> file;
                {
                    const std::lock_guard lock(mutex);
                    file = names.next();
                    if (!file) return;
                    index = next++;
                }
                if (!sequence.begin(index)) return;
                workOn(index, *file);
            }
        } catch (...) {
            sequence.fail(std::current_exception());
        }
    };
    {
        std::vector<std::jthread> threads;
        try {
            while (threads.size() < arguments.jobs) threads.emplace_back(run);
        } catch (const std::system_error&) {
            if (threads.empty()) run();  // Where there are not so many, fewer do it.
        }
    }
    sequence.rethrow();
    return worse(status, names.end(console));
}

}  // namespace vexqt::cli
