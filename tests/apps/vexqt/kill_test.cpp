// The program is killed while it saves, at moments that chance has chosen.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <fstream>
#include <iostream>
#include <random>
#include <thread>

#include "tests/apps/vexqt/calling.h"
#include "vexqt/asset/VexQTAsset.h"

namespace vexqt::cli {
namespace {

using namespace vexqt::testing;  // NOLINT: the bytes of atoms
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

const std::string kProgram = VEXQT_PROGRAM;

/// Much faster than one character after the other.
Bytes bytesOf(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    Bytes bytes(fs::file_size(path));
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

void put(const fs::path& path, const Bytes& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(out) << path;
}

/// The program at work, its output dropped.
class Running {
public:
    explicit Running(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), kProgram);
        std::vector<char*> words;
        for (std::string& word : arguments) words.push_back(word.data());
        words.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
        EXPECT_EQ(posix_spawn(&process_, words[0], &actions, nullptr, words.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        // On a machine at work, who kills has to come in time.
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(process_), 10);
    }
    ~Running() {
        if (process_ > 0) wait();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    bool isOver() {
        siginfo_t info = {};
        return waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOHANG | WNOWAIT) !=
                   0 ||
               info.si_pid != 0;
    }
    void kill(int signal = SIGKILL) { ::kill(process_, signal); }
    /// The exit status, or 128 and the signal's number.
    int wait() {
        int status = 0;
        waitpid(std::exchange(process_, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t process_ = 0;
};

/// One way of saving, and the movie that makes it be taken.
struct Save {
    std::string what;
    Bytes movie;
    std::vector<std::string> arguments;  ///< What stands behind FILE.
    std::string command = "set";
    bool keepsUndo = false;  ///< To keep a record takes longer than many a save.
};

class KilledProgram : public CommandTest {
protected:
    struct Counts {
        int old = 0, oldWithTail = 0, saved = 0, recovered = 0, killed = 0;
    };

    /// A free space of a megabyte and a half, so that to write the movie takes a while.
    static Bytes movieAtom(std::size_t count = 1'500'000) {
        return atom("moov"_os, {movieHeader(), track(1, "vide"_os), atom("wide"_os, {noise(count)}),
                                atom("udta"_os, {zeros(4)})});
    }
    static Bytes noise(std::size_t count) {
        std::mt19937 random(static_cast<std::uint32_t>(count));
        Bytes bytes(count);
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
        return bytes;
    }

    std::vector<Save> saves() {
        const Bytes fileType = atom("ftyp"_os, {text("qt  "), u32(0x20050300), text("qt  ")});
        const Bytes media = atom("mdat"_os, {noise(700'000)});
        const Bytes openMedia = join({u32(0), text("mdat"), noise(700'000)});
        const Bytes first = join({fileType, movieAtom(), media});
        const Bytes last = join({fileType, media, movieAtom()});
        const Bytes room = atom("free"_os, {zeros(900'000)});
        const std::string more = write("more.bin", atom("more"_os, {noise(800'000)}));
        return {
            {"patch", last, {"moov.mvhd.timeScale=90000", "moov.trak.tkhd.layer=9"}},
            {"patch with a record", last, {"moov.mvhd.timeScale=90000"}, "set", true},
            {"in the old place, longer", last, {"moov", more, "--after", "mvhd"}, "insert"},
            {"in the old place, shorter", last, {"moov.wide"}, "remove"},
            {"in the old place, in front of free space", first, {"moov.wide"}, "remove"},
            {"in the free space behind it",
             join({fileType, movieAtom(), room, media}),
             {"moov", more, "--after", "mvhd"},
             "insert"},
            {"move", first, {"moov", more, "--after", "mvhd"}, "insert"},
            {"move behind open-ended media",
             join({fileType, movieAtom(), openMedia}),
             {"moov", more, "--after", "mvhd"},
             "insert"},
            {"exact", first, {"--force"}, "save"},
            {"undo", last, {}, "undo"},
        };
    }

    std::vector<std::string> commandOf(const Save& save) const {
        std::vector<std::string> arguments = {save.command, movie_};
        arguments.insert(arguments.end(), save.arguments.begin(), save.arguments.end());
        if (save.command == "undo") return arguments;
        if (save.command != "save") arguments.push_back("--in-place");
        if (!save.keepsUndo) arguments.push_back("--no-undo");
        return arguments;
    }
    /// Makes the file that is to be saved and gives its bytes.
    Bytes prepare(const Save& save) {
        put(movie_, save.movie);
        if (save.command != "undo") return save.movie;
        // What is taken back has to be saved first, so that there is a record.
        EXPECT_EQ(call({"remove", movie_, "moov.wide", "--in-place"}).status, 0);
        return bytesOf(movie_);
    }

    /// Whether the save has begun to leave traces.
    bool hasBegun(const fs::path& journal, const struct stat& before) const {
        struct stat now = {};
        return ::access(journal.c_str(), F_OK) == 0 ||
               (::stat(movie_.c_str(), &now) == 0 &&
                (now.st_mtim.tv_sec != before.st_mtim.tv_sec ||
                 now.st_mtim.tv_nsec != before.st_mtim.tv_nsec));
    }
    struct Moments {
        Clock::duration begin{}, end{};
    };
    /// When a save begins and when it is over, counted from the start of the program.
    Moments momentsOf(const Save& save) {
        prepare(save);
        struct stat before = {};
        EXPECT_EQ(::stat(movie_.c_str(), &before), 0);
        Moments moments;
        const auto start = Clock::now();
        Running program(commandOf(save));
        while (!program.isOver() && !hasBegun(journal_, before)) std::this_thread::yield();
        moments.begin = Clock::now() - start;
        while (!program.isOver()) std::this_thread::yield();
        moments.end = Clock::now() - start;
        EXPECT_EQ(program.wait(), 0) << save.what;
        return moments;
    }

    static Bytes movieAtomIn(const fs::path& path) {
        std::error_code error;
        const auto asset = VexQTAsset::initWithURL(path, error, {.tolerant = true});
        EXPECT_TRUE(asset) << error.message();
        if (!asset || asset->moovAtom() == nullptr) return {};
        const ByteView bytes = asset->moovAtom()->origin().view();
        return {bytes.begin(), bytes.end()};
    }

    /// What is left after a kill is the old file or the new one.
    void check(const Save& save, const Bytes& before, const Bytes& after, Counts& counts) {
        if (fs::exists(journal_)) {
            ++counts.recovered;
            EXPECT_EQ(call({"recover", movie_}).status, 0);
            EXPECT_FALSE(fs::exists(journal_));
            EXPECT_TRUE(bytesOf(movie_) == before) << "is not what it was";
            // Nothing stands in the way of doing it once more.
            EXPECT_EQ(call(commandOf(save)).status, 0);
            EXPECT_TRUE(bytesOf(movie_) == after) << "is not what it was to be";
            return;
        }
        const Bytes now = bytesOf(movie_);
        if (now == before) {
            ++counts.old;
        } else if (now == after) {
            ++counts.saved;
        } else {
            // What was to be the new movie lies behind the end of the old file and does not count.
            ++counts.oldWithTail;
            EXPECT_EQ(save.what, "move");
            ASSERT_GT(now.size(), before.size());
            EXPECT_TRUE(std::ranges::equal(ByteView(now).first(before.size()), before));
            EXPECT_TRUE(movieAtomIn(movie_) == movieAtom());
            EXPECT_EQ(call(commandOf(save)).status, 0);
            EXPECT_EQ(movieAtomIn(movie_).size(), movieAtom().size() + 800'008);
        }
    }

    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path()), {}));
    }

    const fs::path journal_ = folder_ / ".clip.mov.vexqt-journal";
};

TEST_F(KilledProgram, LeavesTheOldMovieOrTheNewOne) {
    constexpr int kRounds = 300;
    std::mt19937 random(20240229);
    struct Known {
        Moments moments;
        Bytes before, after;
    };
    const std::vector<Save> kinds = saves();
    std::vector<Known> known;
    for (const Save& save : kinds) {
        const Moments moments = momentsOf(save);
        Bytes after = bytesOf(movie_);
        known.push_back({moments, prepare(save), std::move(after)});
    }
    Counts counts;
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        const std::size_t kind = static_cast<std::size_t>(round) % kinds.size();
        const Save& save = kinds[kind];
        SCOPED_TRACE(save.what + ", round " + std::to_string(round));
        prepare(save);
        struct stat before = {};
        ASSERT_EQ(::stat(movie_.c_str(), &before), 0);
        const Moments& moments = known[kind].moments;
        const auto start = Clock::now();
        Running program(commandOf(save));
        // The program does not always take the same time to start, so that the save is waited for;
        // the moments before it are tried in every fourth round.
        auto from = start;
        auto until = moments.begin;
        if (round % 4 != 0) {
            while (!program.isOver() && !hasBegun(journal_, before)) std::this_thread::yield();
            from = Clock::now();
            until = moments.end - moments.begin;
        }
        const std::chrono::duration<double> longest = until;
        const std::chrono::duration<double> delay =
            longest * std::uniform_real_distribution<>(0, 1.1)(random);
        while (Clock::now() - from < delay && !program.isOver()) std::this_thread::yield();
        program.kill();
        if (program.wait() == 128 + SIGKILL) ++counts.killed;
        check(save, known[kind].before, known[kind].after, counts);
    }
    std::cout << kRounds << " rounds, " << counts.killed
              << " killed before their end: " << counts.old << " left the old file, "
              << counts.oldWithTail << " the old one with bytes behind its end, " << counts.saved
              << " the new one, " << counts.recovered << " a journal that gave the old one back\n";
    EXPECT_GT(counts.old, 0);
    EXPECT_GT(counts.saved, 0);
    EXPECT_GT(counts.recovered, 0);
}

TEST_F(KilledProgram, LeavesNoPartOfACopyUnderItsName) {
    const Save save = saves().front();
    const fs::path copy = folder_ / "copy.mov";
    put(movie_, save.movie);
    const std::vector<std::string> command = {"set", movie_, save.arguments.front(), "-o",
                                              copy.string()};
    ASSERT_EQ(call(command).status, 0);
    const Bytes whole = bytesOf(copy);
    std::mt19937 random(20240229);
    const std::size_t files = filesInFolder() - 1;
    std::chrono::duration<double> longest(0);
    int copies = 0;
    for (int round = 0; round <= 40 && !HasFailure(); ++round) {
        fs::remove(copy);
        Running program(command);
        // A file beside the movie is the beginning of the copy.
        while (!program.isOver() && filesInFolder() == files) std::this_thread::yield();
        const auto begin = Clock::now();
        // The first one says how long that takes.
        if (round == 0) {
            while (!program.isOver() && !fs::exists(copy)) std::this_thread::yield();
            longest = Clock::now() - begin;
            EXPECT_EQ(program.wait(), 0);
            continue;
        }
        std::this_thread::sleep_for(longest * std::uniform_real_distribution<>(0, 1)(random));
        program.kill();
        program.wait();
        EXPECT_TRUE(bytesOf(movie_) == save.movie);
        if (fs::exists(copy)) {
            ++copies;
            EXPECT_TRUE(bytesOf(copy) == whole);
        }
        // The part that is left beside it is there for people to delete.
        for (const auto& entry : fs::directory_iterator(folder_.path()))
            if (entry.path().filename().string().starts_with(".copy.mov")) fs::remove(entry);
    }
    std::cout << "40 rounds: " << copies << " copies were whole, the others are not there\n";
    EXPECT_EQ(call(command).status, 0);
    EXPECT_TRUE(bytesOf(copy) == whole);
}

// MARK: Ctrl-C

using InterruptedProgram = KilledProgram;

TEST_F(InterruptedProgram, LeavesNoJournalAndNoBytesBehindTheMovie) {
    std::mt19937 random(20240229);
    int stopped = 0, saved = 0;
    for (const Save& save : saves()) {
        if (save.command == "undo") continue;
        SCOPED_TRACE(save.what);
        const Moments moments = momentsOf(save);
        const Bytes after = bytesOf(movie_);
        for (int round = 0; round < 8 && !HasFailure(); ++round) {
            const Bytes before = prepare(save);
            struct stat status = {};
            ASSERT_EQ(::stat(movie_.c_str(), &status), 0);
            Running program(commandOf(save));
            while (!program.isOver() && !hasBegun(journal_, status)) std::this_thread::yield();
            const std::chrono::duration<double> longest = moments.end - moments.begin;
            std::this_thread::sleep_for(longest * std::uniform_real_distribution<>(0, 0.5)(random));
            program.kill(SIGINT);
            program.wait();
            const Bytes now = bytesOf(movie_);
            EXPECT_TRUE(now == before || now == after);
            EXPECT_FALSE(fs::exists(journal_));
            ++(now == before ? stopped : saved);
        }
    }
    std::cout << stopped << " saves were taken back, " << saved << " came to their end\n";
}

TEST_F(InterruptedProgram, LeavesNoPartOfACopyAtAll) {
    const fs::path copy = folder_ / "copy.mov";
    const Bytes movie =
        join({atom("ftyp"_os, {text("qt  "), u32(0)}), atom("mdat"_os, {zeros(100'000'000)}),
              atom("moov"_os, {movieHeader(), track(1, "vide"_os)})});
    put(movie_, movie);
    const std::size_t files = filesInFolder();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal);
        Running program({"set", movie_, "moov.mvhd.timeScale=25", "-o", copy.string()});
        while (!program.isOver() && filesInFolder() == files) std::this_thread::yield();
        program.kill(signal);
        EXPECT_EQ(program.wait(), 128 + signal);
        EXPECT_EQ(filesInFolder(), files + (fs::exists(copy) ? 1 : 0));
        fs::remove(copy);
    }
    EXPECT_TRUE(bytesOf(movie_) == movie);
}

}  // namespace
}  // namespace vexqt::cli
