#include "vexqt/platform/files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "vexqt/platform/MemoryFileSystem.h"

namespace vexqt {
namespace {

namespace fs = std::filesystem;

/// A folder that removes itself.
class Folder {
public:
    explicit Folder(const fs::path& parent = fs::temp_directory_path()) {
        std::string name = parent / "vexqt-files-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder to test in");
        path_ = fs::canonical(name);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(path_); }

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

Bytes readAll(File& file) {
    std::error_code error;
    Bytes bytes(file.size(error) + 1);
    bytes.resize(file.readAt(0, bytes, error));
    EXPECT_FALSE(error) << error.message();
    return bytes;
}

void write(FileSystem& files, const fs::path& path, ByteView bytes) {
    std::error_code error;
    const auto file = files.create(path, IfExists::Replace, error);
    ASSERT_FALSE(error) << error.message();
    file->writeAt(0, bytes, error);
    ASSERT_FALSE(error) << error.message();
}

/// What holds for every kind of file system.
class FileSystems : public testing::TestWithParam<const char*> {
protected:
    FileSystem& files() {
        return GetParam() == std::string_view("Memory") ? memory_ : systemFiles();
    }
    fs::path path(const char* name) const { return folder_.path() / name; }
    Bytes bytesOf(const fs::path& path) {
        const auto file = files().openForReading(path, error);
        EXPECT_FALSE(error) << error.message();
        return file ? readAll(*file) : Bytes();
    }

    std::error_code error = std::make_error_code(std::errc::io_error);  // To see it cleared.

private:
    Folder folder_;
    MemoryFileSystem memory_;
};

INSTANTIATE_TEST_SUITE_P(, FileSystems, testing::Values("System", "Memory"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(FileSystems, WrittenBytesAreRead) {
    const auto file = files().create(path("a"), IfExists::Refuse, error);
    ASSERT_TRUE(file);
    EXPECT_FALSE(error);
    error = std::make_error_code(std::errc::io_error);
    file->writeAt(0, Bytes{1, 2, 3, 4}, error);
    EXPECT_FALSE(error);
    error = std::make_error_code(std::errc::io_error);
    file->flush(error);
    EXPECT_FALSE(error);
    EXPECT_EQ(bytesOf(path("a")), (Bytes{1, 2, 3, 4}));
}

TEST_P(FileSystems, ReadsAnyPartAndLessOnlyAtTheEnd) {
    write(files(), path("a"), Bytes{10, 11, 12, 13, 14});
    const auto file = files().openForReading(path("a"), error);
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    const struct {
        std::uint64_t offset;
        std::size_t count;
        Bytes bytes;
    } cases[] = {
        {0, 5, {10, 11, 12, 13, 14}},
        {1, 2, {11, 12}},
        {3, 9, {13, 14}},
        {5, 1, {}},
        {6, 4, {}},
        {2, 0, {}},
        {kMost / 2, 4, {}},
        {kMost / 2 - 1, 4, {}},
        {kMost / 2 + 1, 4, {}},
        {kMost, 4, {}},
    };
    for (const auto& [offset, count, bytes] : cases) {
        SCOPED_TRACE(offset);
        Bytes into(count);
        error = std::make_error_code(std::errc::io_error);
        into.resize(file->readAt(offset, into, error));
        EXPECT_FALSE(error) << error.message();
        EXPECT_EQ(into, bytes);
    }
}

TEST_P(FileSystems, OpeningForWritingKeepsWhatIsThere) {
    write(files(), path("a"), Bytes{1, 2, 3, 4});
    const auto file = files().openForWriting(path("a"), error);
    file->writeAt(1, Bytes{9}, error);
    EXPECT_FALSE(error);
    EXPECT_EQ(readAll(*file), (Bytes{1, 9, 3, 4}));
}

TEST_P(FileSystems, WritingPastTheEndFillsTheGapWithZeroes) {
    write(files(), path("a"), Bytes{1});
    const auto file = files().openForWriting(path("a"), error);
    file->writeAt(3, Bytes{7, 8}, error);
    EXPECT_EQ(readAll(*file), (Bytes{1, 0, 0, 7, 8}));
}

TEST_P(FileSystems, TruncateCutsOffAndFillsUp) {
    write(files(), path("a"), Bytes{1, 2, 3, 4});
    const auto file = files().openForWriting(path("a"), error);
    file->truncate(2, error);
    EXPECT_EQ(readAll(*file), (Bytes{1, 2}));
    file->truncate(3, error);
    EXPECT_FALSE(error);
    EXPECT_EQ(readAll(*file), (Bytes{1, 2, 0}));
}

TEST_P(FileSystems, WritesPastEveryFileAreAnError) {
    const auto file = files().create(path("a"), IfExists::Refuse, error);
    constexpr auto kMost = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint64_t offset : {kMost, kMost - 1, kMost / 2, kMost / 2 + 1}) {
        SCOPED_TRACE(offset);
        file->writeAt(offset, Bytes{1, 2}, error);
        EXPECT_TRUE(error);
    }
    file->truncate(kMost, error);
    EXPECT_TRUE(error);
    EXPECT_EQ(file->size(error), 0U);
}

TEST_P(FileSystems, WritingNothingChangesNothing) {
    write(files(), path("a"), Bytes{1});
    const auto file = files().openForWriting(path("a"), error);
    file->writeAt(5, {}, error);
    EXPECT_FALSE(error);
    EXPECT_EQ(file->size(error), 1U);
}

TEST_P(FileSystems, AFileOpenForReadingCannotBeWritten) {
    write(files(), path("a"), Bytes{1});
    const auto file = files().openForReading(path("a"), error);
    file->writeAt(0, Bytes{2}, error);
    EXPECT_TRUE(error);
    file->truncate(0, error);
    EXPECT_TRUE(error);
    EXPECT_EQ(readAll(*file), Bytes{1});
}

TEST_P(FileSystems, CreatePrivateRefusesWhatExists) {
    write(files(), path("a"), Bytes{1, 2});
    EXPECT_FALSE(files().createPrivate(path("a"), error));
    EXPECT_EQ(error, std::errc::file_exists);
    EXPECT_EQ(bytesOf(path("a")), (Bytes{1, 2}));
    const auto file = files().createPrivate(path("b"), error);
    ASSERT_TRUE(file);
    EXPECT_FALSE(error);
    file->writeAt(0, Bytes{3}, error);
    EXPECT_EQ(bytesOf(path("b")), Bytes{3});
}

TEST_P(FileSystems, ATimeOfModificationThatIsSetStays) {
    write(files(), path("a"), Bytes{1});
    const auto file = files().openForWriting(path("a"), error);
    const FileIdentity before = file->identity(error);
    file->writeAt(0, Bytes{2}, error);
    EXPECT_FALSE(file->identity(error).isSameState(before));
    error = std::make_error_code(std::errc::io_error);
    file->setModified(before.modifiedSeconds, before.modifiedNanoseconds, error);
    EXPECT_FALSE(error);
    EXPECT_EQ(file->identity(error), before);
    file->setModified(1'000'000'007, 250'000'000, error);
    const FileIdentity set = *files().identityOf(path("a"), error);
    EXPECT_EQ(set.modifiedSeconds, 1'000'000'007);
    EXPECT_EQ(set.modifiedNanoseconds, 250'000'000);
    EXPECT_FALSE(set.isSameState(before));
    EXPECT_TRUE(set.isSameFile(before));
}

TEST_P(FileSystems, ListsTheNamesInAFolder) {
    files().makePrivateFolder(path("x") / "y", error);
    EXPECT_FALSE(error) << error.message();
    EXPECT_TRUE(files().list(path("x") / "y", error).empty());
    EXPECT_FALSE(error);
    write(files(), path("x") / "y" / "b", {});
    write(files(), path("x") / "y" / "a", {});
    write(files(), path("x") / "c", {});
    error = std::make_error_code(std::errc::io_error);
    auto names = files().list(path("x") / "y", error);
    EXPECT_FALSE(error);
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<fs::path>{"a", "b"}));
}

TEST_P(FileSystems, MakesAFolderThatIsThereOnceMore) {
    for (int i = 0; i < 2; ++i) {
        error = std::make_error_code(std::errc::io_error);
        files().makePrivateFolder(path("x"), error);
        EXPECT_FALSE(error) << error.message();
    }
}

TEST_P(FileSystems, CreateReplacesOrRefuses) {
    write(files(), path("a"), Bytes{1, 2});
    EXPECT_FALSE(files().create(path("a"), IfExists::Refuse, error));
    EXPECT_EQ(error, std::errc::file_exists);
    EXPECT_EQ(bytesOf(path("a")), (Bytes{1, 2}));
    EXPECT_TRUE(files().create(path("a"), IfExists::Replace, error));
    EXPECT_FALSE(error);
    EXPECT_EQ(bytesOf(path("a")), Bytes());
}

TEST_P(FileSystems, WhatIsNotThereIsAnError) {
    std::error_code expected = std::make_error_code(std::errc::no_such_file_or_directory);
    EXPECT_FALSE(files().openForReading(path("none"), error));
    EXPECT_EQ(error, expected);
    error.clear();
    EXPECT_FALSE(files().openForWriting(path("none"), error));
    EXPECT_EQ(error, expected);
    error.clear();
    EXPECT_FALSE(files().copy(path("none"), path("to"), {}, error));
    EXPECT_EQ(error, expected);
    EXPECT_FALSE(files().exists(path("to"), error));
    files().rename(path("none"), path("to"), error);
    EXPECT_EQ(error, expected);
    error.clear();
    files().remove(path("none"), error);
    EXPECT_EQ(error, expected);
    error.clear();
    EXPECT_EQ(files().resolve(path("none"), error), fs::path());
    EXPECT_EQ(error, expected);
}

TEST_P(FileSystems, ExistsWithoutAnError) {
    EXPECT_FALSE(files().exists(path("a"), error));
    EXPECT_FALSE(error);
    write(files(), path("a"), {});
    error = std::make_error_code(std::errc::io_error);
    EXPECT_TRUE(files().exists(path("a"), error));
    EXPECT_FALSE(error);
    EXPECT_FALSE(files().exists(path("a") / "below", error));
    EXPECT_FALSE(error);
}

TEST_P(FileSystems, IdentityTellsFilesAndTheirStatesApart) {
    write(files(), path("a"), Bytes{1, 2, 3});
    write(files(), path("b"), Bytes{1, 2, 3});
    const FileIdentity a = *files().identityOf(path("a"), error);
    const FileIdentity b = *files().identityOf(path("b"), error);
    EXPECT_TRUE(a.isRegular);
    EXPECT_EQ(a.size, 3U);
    EXPECT_FALSE(a.isSameFile(b));
    EXPECT_EQ(files().identityOf(path("a"), error), a);

    const auto file = files().openForWriting(path("a"), error);
    EXPECT_EQ(file->identity(error), a);
    file->writeAt(3, Bytes{4}, error);
    EXPECT_NE(file->identity(error), a);
    EXPECT_TRUE(file->identity(error).isSameFile(a));
    EXPECT_EQ(file->size(error), 4U);
}

TEST_P(FileSystems, RenameReplaces) {
    write(files(), path("a"), Bytes{1});
    write(files(), path("b"), Bytes{2});
    files().rename(path("a"), path("b"), error);
    EXPECT_FALSE(error);
    EXPECT_EQ(bytesOf(path("b")), Bytes{1});
    EXPECT_FALSE(files().exists(path("a"), error));
    files().flushDirectory(path("b").parent_path(), error);
    EXPECT_FALSE(error);
}

TEST_P(FileSystems, RenameToItselfChangesNothing) {
    write(files(), path("a"), Bytes{1});
    files().rename(path("a"), path("a"), error);
    EXPECT_FALSE(error);
    EXPECT_EQ(bytesOf(path("a")), Bytes{1});
}

TEST_P(FileSystems, ARemovedFileLivesWhileItIsOpen) {
    write(files(), path("a"), Bytes{1, 2});
    const auto file = files().openForReading(path("a"), error);
    files().remove(path("a"), error);
    EXPECT_FALSE(error);
    EXPECT_FALSE(files().exists(path("a"), error));
    EXPECT_EQ(readAll(*file), (Bytes{1, 2}));
}

TEST_P(FileSystems, OneLocksAndOthersWaitTheirTurn) {
    write(files(), path("a"), {});
    const auto second = files().openForReading(path("a"), error);
    {
        const auto first = files().openForWriting(path("a"), error);
        first->lock(error);
        EXPECT_FALSE(error);
        first->lock(error);
        EXPECT_FALSE(error) << "it has the lock already";
        second->lock(error);
        EXPECT_EQ(error, std::errc::operation_would_block);
    }
    second->lock(error);
    EXPECT_FALSE(error);
}

TEST_P(FileSystems, CopyIsAnotherFileWithTheSameBytes) {
    write(files(), path("a"), Bytes{1, 2, 3});
    std::vector<std::pair<std::uint64_t, std::uint64_t>> reports;
    const auto copy = files().copy(
        path("a"), path("b"), [&](auto done, auto total) { reports.emplace_back(done, total); },
        error);
    EXPECT_FALSE(error);
    ASSERT_TRUE(copy);
    EXPECT_EQ(readAll(*copy), (Bytes{1, 2, 3}));
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.back(), std::pair(std::uint64_t{3}, std::uint64_t{3}));
    copy->writeAt(0, Bytes{9}, error);
    EXPECT_EQ(bytesOf(path("a")), (Bytes{1, 2, 3}));
    EXPECT_EQ(bytesOf(path("b")), (Bytes{9, 2, 3}));
}

TEST_P(FileSystems, CopyReplacesNothing) {
    write(files(), path("a"), Bytes{1});
    write(files(), path("b"), Bytes{2});
    EXPECT_FALSE(files().copy(path("a"), path("b"), {}, error));
    EXPECT_EQ(error, std::errc::file_exists);
    EXPECT_EQ(bytesOf(path("b")), Bytes{2});
}

TEST_P(FileSystems, CopyOfAnEmptyFileIsEmpty) {
    write(files(), path("a"), {});
    EXPECT_TRUE(files().copy(path("a"), path("b"), {}, error));
    EXPECT_EQ(bytesOf(path("b")), Bytes());
}

TEST_P(FileSystems, ResolveTakesTheDotsOut) {
    write(files(), path("a"), {});
    const fs::path folder = path("a").parent_path();
    EXPECT_EQ(files().resolve(folder / ".." / folder.filename() / "." / "a", error), path("a"));
    EXPECT_FALSE(error);
}

// What only the files of a machine have.

class SystemFiles : public testing::Test {
protected:
    fs::path path(const char* name) const { return folder_.path() / name; }

    std::error_code error;

private:
    Folder folder_;
};

TEST_F(SystemFiles, OnlyRegularFilesAreOpenedAndNothingBlocks) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const struct {
        fs::path path;
        std::errc error;
    } cases[] = {
        {path("pipe"), std::errc::not_supported},
        {"/dev/null", std::errc::not_supported},
        {path("."), std::errc::is_a_directory},
    };
    for (const auto& [path, expected] : cases) {
        SCOPED_TRACE(path);
        EXPECT_FALSE(systemFiles().openForReading(path, error));
        EXPECT_EQ(error, expected);
        EXPECT_FALSE(systemFiles().openForWriting(path, error));
        EXPECT_EQ(error, expected);
        EXPECT_FALSE(systemFiles().create(path, IfExists::Replace, error));
        EXPECT_EQ(error, expected);
        const auto identity = systemFiles().identityOf(path, error);
        EXPECT_FALSE(error);
        ASSERT_TRUE(identity);
        EXPECT_FALSE(identity->isRegular);
    }
}

TEST_F(SystemFiles, SymbolicLinksLeadToTheFile) {
    write(systemFiles(), path("a"), Bytes{1});
    fs::create_symlink("a", path("link"));
    EXPECT_EQ(systemFiles().resolve(path("link"), error), path("a"));
    EXPECT_EQ(systemFiles().identityOf(path("link"), error),
              systemFiles().identityOf(path("a"), error));
    write(systemFiles(), path("link"), Bytes{2});
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(readAll(*systemFiles().openForReading(path("a"), error)), Bytes{2});
}

TEST_F(SystemFiles, HardLinksAreOneFile) {
    write(systemFiles(), path("a"), Bytes{1});
    fs::create_hard_link(path("a"), path("b"));
    const auto a = systemFiles().identityOf(path("a"), error);
    const auto b = systemFiles().identityOf(path("b"), error);
    EXPECT_TRUE(a->isSameFile(*b));
}

TEST_F(SystemFiles, PrivateFilesAndFoldersAreForTheirOwnerAlone) {
    systemFiles().makePrivateFolder(path("x") / "y", error);
    ASSERT_FALSE(error) << error.message();
    systemFiles().createPrivate(path("x") / "y" / "a", error);
    ASSERT_FALSE(error) << error.message();
    EXPECT_EQ(fs::status(path("x")).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(path("x") / "y").permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(path("x") / "y" / "a").permissions(), fs::perms(0600));
}

TEST_F(SystemFiles, AFolderWhereAFileIsCannotBeMade) {
    write(systemFiles(), path("a"), {});
    systemFiles().makePrivateFolder(path("a"), error);
    EXPECT_EQ(error, std::errc::file_exists);
    systemFiles().makePrivateFolder(path("a") / "b", error);
    EXPECT_TRUE(error);
    EXPECT_TRUE(systemFiles().list(path("none"), error).empty());
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST_F(SystemFiles, CopyKeepsPermissions) {
    write(systemFiles(), path("a"), Bytes{1});
    fs::permissions(path("a"), fs::perms(0400));
    EXPECT_TRUE(systemFiles().copy(path("a"), path("b"), {}, error)) << error.message();
    EXPECT_EQ(fs::status(path("b")).permissions(), fs::perms(0400));
}

TEST_F(SystemFiles, CopyKeepsHoles) {
    constexpr std::uint64_t kLength = std::uint64_t{5} << 30;
    {
        const auto file = systemFiles().create(path("a"), IfExists::Refuse, error);
        file->writeAt(std::uint64_t{1} << 30, Bytes{1, 2, 3}, error);
        file->writeAt(std::uint64_t{4} << 30, Bytes{4, 5, 6}, error);
        file->truncate(kLength, error);
        ASSERT_FALSE(error) << error.message();
    }
    const auto copy = systemFiles().copy(path("a"), path("b"), {}, error);
    ASSERT_FALSE(error) << error.message();
    EXPECT_EQ(copy->size(error), kLength);
    Bytes bytes(5);
    EXPECT_EQ(copy->readAt((std::uint64_t{1} << 30) - 1, bytes, error), 5U);
    EXPECT_EQ(bytes, (Bytes{0, 1, 2, 3, 0}));
    EXPECT_EQ(copy->readAt((std::uint64_t{4} << 30) - 1, bytes, error), 5U);
    EXPECT_EQ(bytes, (Bytes{0, 4, 5, 6, 0}));
    struct stat status = {};
    ASSERT_EQ(::stat(path("b").c_str(), &status), 0);
    EXPECT_LT(status.st_blocks * 512, 1 << 20);
}

TEST_F(SystemFiles, CopiesFromOneFileSystemToAnotherAndTellsHowFarItIs) {
    const fs::path memory = "/dev/shm";
    if (!fs::is_directory(memory)) GTEST_SKIP() << "no second file system here";
    const Folder folder(memory);
    Bytes bytes(40 << 20);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * i >> 7);
    write(systemFiles(), folder.path() / "a", bytes);
    std::vector<std::uint64_t> reports;
    const auto copy = systemFiles().copy(
        folder.path() / "a", path("b"), [&](auto done, auto) { reports.push_back(done); }, error);
    ASSERT_FALSE(error) << error.message();
    EXPECT_TRUE(readAll(*copy) == bytes);
    EXPECT_GE(reports.size(), 3U);
    EXPECT_TRUE(std::ranges::is_sorted(reports));
    EXPECT_EQ(reports.back(), bytes.size());
}

TEST_F(SystemFiles, ProgressThatThrowsLeavesNoCopy) {
    write(systemFiles(), path("a"), Bytes{1});
    const auto stop = [](std::uint64_t, std::uint64_t) { throw std::runtime_error("stop"); };
    EXPECT_THROW(systemFiles().copy(path("a"), path("b"), stop, error), std::runtime_error);
    EXPECT_FALSE(systemFiles().exists(path("b"), error));
}

/// Lets no file grow past a number of bytes, like a disk that fills up while it is written.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit full = {.rlim_cur = bytes, .rlim_max = before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_ = {};
    void (*handler_)(int);
};

TEST_F(SystemFiles, AWriteThatTheSystemCutsShortIsAnError) {
    const auto file = systemFiles().create(path("a"), IfExists::Refuse, error);
    {
        const FullDisk disk(3);
        file->writeAt(0, Bytes{1, 2, 3, 4, 5}, error);
    }
    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(readAll(*file), (Bytes{1, 2, 3}));
}

TEST_F(SystemFiles, ACopyThatDoesNotFitLeavesNothing) {
    write(systemFiles(), path("a"), Bytes{1, 2, 3, 4, 5});
    {
        const FullDisk disk(3);
        EXPECT_FALSE(systemFiles().copy(path("a"), path("b"), {}, error));
    }
    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_FALSE(systemFiles().exists(path("b"), error));
}

TEST(ReadOnlyFile, RefusesWhatWouldChangeOrLockIt) {
    class : public ReadOnlyFile {
        std::size_t readAt(std::uint64_t, std::span<std::uint8_t>, std::error_code&) override {
            return 0;
        }
        FileIdentity identity(std::error_code&) override { return {}; }
    } file;
    std::error_code writing, cutting, flushing, dating, locking;
    file.writeAt(0, Bytes{1}, writing);
    file.truncate(0, cutting);
    file.flush(flushing);
    file.setModified(0, 0, dating);
    file.lock(locking);
    for (const std::error_code& each : {writing, cutting, flushing, dating, locking})
        EXPECT_EQ(each, std::errc::bad_file_descriptor);
}

TEST(MemoryFileSystem, TellsWhatItHolds) {
    MemoryFileSystem files;
    files.put("/b", {1, 2});
    files.put("a", {3});
    EXPECT_EQ(files.bytes("/b"), (Bytes{1, 2}));
    EXPECT_EQ(files.bytes("/x/../a"), Bytes{3});
    EXPECT_EQ(files.paths(), (std::set<fs::path>{"/a", "/b"}));
}

}  // namespace
}  // namespace vexqt
