#include "testing/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace vexqt::testing {

TemporaryFolder::TemporaryFolder() {
    // In memory where the system has such a folder: saving flushes a lot.
    const std::filesystem::path inMemory = "/dev/shm";
    const bool isThere = access(inMemory.c_str(), W_OK) == 0;
    std::string name =
        ((isThere ? inMemory : std::filesystem::temp_directory_path()) / "vexqt-test-XXXXXX")
            .string();
    if (mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Bytes readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    const std::string content(std::istreambuf_iterator<char>(in), {});
    return {content.begin(), content.end()};
}

void writeFile(const std::filesystem::path& path, ByteView bytes) {
    std::ofstream out(path, std::ios::binary);
    for (const std::uint8_t byte : bytes) out.put(static_cast<char>(byte));
    EXPECT_TRUE(out) << path;
}

namespace {

struct Pipe {
    std::array<int, 2> ends{-1, -1};
    Pipe() { EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0); }
    ~Pipe() {
        for (int& end : ends) close(end);
    }
    void close(int& end) {
        if (end >= 0) ::close(end);
        end = -1;
    }
};

/// Reads what is there; false at the end.
bool readSome(int descriptor, std::string& into) {
    std::array<char, 65536> buffer;
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count > 0) into.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

}  // namespace

Outcome run(const std::vector<std::string>& command, std::string_view input) {
    Pipe in, out, errors;
    const pid_t child = fork();
    if (child == 0) {
        dup2(in.ends[0], STDIN_FILENO);
        dup2(out.ends[1], STDOUT_FILENO);
        dup2(errors.ends[1], STDERR_FILENO);
        std::vector<char*> arguments;
        for (const std::string& word : command)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    in.close(in.ends[0]);
    out.close(out.ends[1]);
    errors.close(errors.ends[1]);
    signal(SIGPIPE, SIG_IGN);

    Outcome outcome;
    if (input.empty()) in.close(in.ends[1]);
    bool outputOpen = true, errorsOpen = true;
    while (outputOpen || errorsOpen) {
        std::array<pollfd, 3> watched = {pollfd{outputOpen ? out.ends[0] : -1, POLLIN, 0},
                                         pollfd{errorsOpen ? errors.ends[0] : -1, POLLIN, 0},
                                         pollfd{in.ends[1], POLLOUT, 0}};
        if (poll(watched.data(), watched.size(), -1) < 0) break;
        if (watched[0].revents != 0) outputOpen = readSome(out.ends[0], outcome.output);
        if (watched[1].revents != 0) errorsOpen = readSome(errors.ends[0], outcome.errors);
        if (watched[2].revents != 0) {
            const ssize_t count =
                write(in.ends[1], input.data(), std::min<std::size_t>(input.size(), 4096));
            if (count > 0) input.remove_prefix(static_cast<std::size_t>(count));
            if (count < 0 || input.empty()) in.close(in.ends[1]);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

std::filesystem::path makeMovie(const TemporaryFolder& folder, const std::string& name,
                                const std::vector<std::string>& arguments) {
    const std::filesystem::path movie = folder / name;
    std::vector<std::string> command = {"ffmpeg", "-v", "error", "-nostdin", "-y"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    command.push_back(movie.string());
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return movie;
}

static std::string digest(const std::filesystem::path& movie,
                          const std::vector<std::string>& options) {
    std::vector<std::string> command = {"ffmpeg", "-v", "error", "-nostdin", "-i", movie.string()};
    command.insert(command.end(), options.begin(), options.end());
    command.insert(command.end(), {"-f", "md5", "-"});
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_FALSE(outcome.output.empty());
    return outcome.output;
}

std::string decodedDigest(const std::filesystem::path& movie) { return digest(movie, {}); }

std::string packetDigest(const std::filesystem::path& movie) {
    return digest(movie, {"-map", "0", "-c", "copy"});
}

std::string probe(const std::filesystem::path& movie, const std::string& entries) {
    const Outcome outcome = run({"ffprobe", "-v", "error", "-show_entries", entries, "-of",
                                 "default=noprint_wrappers=1", movie.string()});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
}

}  // namespace vexqt::testing
