// What the library does when there is no more memory: at the first allocation of an operation, at
// the second, and so on until the operation comes through.

#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "apps/vexqt/json_document.h"
#include "limits/Heap.h"
#include "limits/full_movie.h"
#include "testing/files.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/SafeSave.h"
#include "vexqt/saving/recovery.h"
#include "vexqt/vexqt.h"

namespace vexqt::testing {
namespace {

using Then = FailingHeap::Then;

/// Where every throw is watched there is time for every eleventh allocation.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t kStep = 11;
#else
constexpr std::uint64_t kStep = 1;
#endif

/// One try of an operation under a heap that fails.
class Try {
public:
    virtual ~Try() = default;
    /// May throw std::bad_alloc.
    virtual void act() = 0;
    /// Called afterwards, with a heap that does not fail.
    virtual void check(bool hasThrown) = 0;
};

/// Tries an operation again and again, each time a step later; gives how often it failed.
std::uint64_t failEveryAllocation(Then then, const std::function<std::unique_ptr<Try>()>& begin) {
    for (std::uint64_t n = 1;; n += kStep) {
        SCOPED_TRACE("allocation " + std::to_string(n) +
                     (then == Then::StaysFull ? " and all after it" : ""));
        const HeapWatch heap;
        bool hasFailed = false;
        {
            const std::unique_ptr<Try> attempt = begin();
            bool hasThrown = false;
            {
                const FailingHeap failing(n, then);
                try {
                    attempt->act();
                } catch (const std::bad_alloc&) {
                    hasThrown = true;
                }
                hasFailed = failing.hasFailed();
            }
            attempt->check(hasThrown);
        }
        EXPECT_EQ(heap.live(), 0) << "was lost";
        if (!hasFailed || ::testing::Test::HasFailure()) return n;
    }
}

void failEveryAllocation(const std::function<std::unique_ptr<Try>()>& begin,
                         std::initializer_list<Then> kinds = {Then::Recovers, Then::StaysFull}) {
    {
        // What is made once and kept is made here.
        const auto warmUp = begin();
        warmUp->act();
    }
    for (const Then then : kinds)
        EXPECT_GT(failEveryAllocation(then, begin), 2U) << "the operation did nothing";
}

template <class T, class... Arguments>
std::function<std::unique_ptr<Try>()> trying(Arguments... arguments) {
    return [=] { return std::make_unique<T>(arguments...); };
}

// MARK: Reading

class ReadFromMemory : public Try {
public:
    explicit ReadFromMemory(ReadOptions options) : options_(options) {}
    void act() override { asset_ = VexQTAsset::initWithData(movie_, options_); }
    void check(bool hasThrown) override { EXPECT_EQ(asset_ == nullptr, hasThrown); }

private:
    const Bytes movie_ = fullMovie();
    const ReadOptions options_;
    std::unique_ptr<VexQTAsset> asset_;
};

TEST(AllocationFailure, LeavesNothingOfAStrictReading) {
    failEveryAllocation(trying<ReadFromMemory>(ReadOptions{.tolerant = false}));
}

TEST(AllocationFailure, LeavesNothingOfATolerantReading) {
    failEveryAllocation(trying<ReadFromMemory>(ReadOptions{.tolerant = true}));
}

class ReadBrokenFromMemory : public Try {
public:
    void act() override { asset_ = VexQTAsset::initWithData(movie_, {.tolerant = true}); }
    void check(bool hasThrown) override {
        ASSERT_EQ(asset_ == nullptr, hasThrown);
        if (asset_) {
            EXPECT_GT(asset_->problems().size(), 5U);
        }
    }

private:
    const Bytes movie_ = brokenMovie();
    std::unique_ptr<VexQTAsset> asset_;
};

TEST(AllocationFailure, IsNoProblemOfTheMovie) {
    failEveryAllocation(trying<ReadBrokenFromMemory>());
}

/// Strict reading ends with the error of the movie, or for want of memory.
class RefuseFromMemory : public Try {
public:
    void act() override {
        try {
            VexQTAsset::initWithData(movie_);
        } catch (const Error& error) {
            path_ = error.path().size();
        }
    }
    void check(bool hasThrown) override { EXPECT_EQ(path_ == 0, hasThrown); }

private:
    const Bytes movie_ = brokenMovie();
    std::size_t path_ = 0;
};

TEST(AllocationFailure, IsNotTheErrorOfTheMovie) {
    failEveryAllocation(trying<RefuseFromMemory>());
}

/// A movie in a folder of its own.
class MovieFile {
public:
    explicit MovieFile(const Bytes& movie = fullMovie()) { writeFile(path(), movie); }
    std::filesystem::path path() const { return folder_ / "movie.mov"; }
    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
};

class ReadFile : public Try {
public:
    explicit ReadFile(ReadOptions options) : options_(options) {}
    void act() override {
        std::error_code error;
        asset_ = VexQTAsset::initWithURL(file_.path(), error, options_);
    }
    void check(bool hasThrown) override { EXPECT_EQ(asset_ == nullptr, hasThrown); }

private:
    const MovieFile file_;
    const ReadOptions options_;
    std::unique_ptr<VexQTAsset> asset_;
};

TEST(AllocationFailure, LeavesNothingOfAStrictReadingOfAFile) {
    failEveryAllocation(trying<ReadFile>(ReadOptions{.tolerant = false}));
}

TEST(AllocationFailure, LeavesNothingOfATolerantReadingOfAFile) {
    failEveryAllocation(trying<ReadFile>(ReadOptions{.tolerant = true}));
}

/// An asset that could not be read anew is still an asset.
class ReadAgain : public Try {
public:
    void act() override { asset_->readMainAtomsWithData(movie_, {.tolerant = true}); }
    void check(bool hasThrown) override {
        asset_->assetData();
        if (hasThrown) asset_->readMainAtomsWithData(movie_, {.tolerant = true});
        EXPECT_EQ(asset_->rootAtoms().size(), 4U);
        EXPECT_EQ(asset_->extentsAsRead().size(), 4U);
    }

private:
    const Bytes movie_ = fullMovie();
    const std::unique_ptr<VexQTAsset> asset_ = VexQTAsset::initWithData(movie_);
};

TEST(AllocationFailure, LeavesAnAssetThatCanBeReadAnew) {
    failEveryAllocation(trying<ReadAgain>());
}

// MARK: Showing and writing

std::string outlineOf(const VexQTAsset& asset) {
    std::string outline;
    for (const auto& root : asset.rootAtoms()) outline += root->description() + "\r\n";
    return outline;
}

/// Something that is done with a movie and does not change it.
class Look : public Try {
public:
    explicit Look(void (*look)(VexQTAsset&)) : look_(look) { asset_->assetData(); }
    void act() override { look_(*asset_); }
    void check(bool) override {
        EXPECT_EQ(outlineOf(*asset_), before_);
        EXPECT_TRUE(asset_->assetData() == bytesBefore_);
    }

private:
    void (*look_)(VexQTAsset&);
    const std::unique_ptr<VexQTAsset> asset_ = VexQTAsset::initWithData(fullMovie());
    // Writing stores the sizes, so the bytes are taken first.
    const Bytes bytesBefore_ = asset_->assetData();
    const std::string before_ = outlineOf(*asset_);
};

TEST(AllocationFailure, ChangesNothingWhileAMovieIsOutlined) {
    failEveryAllocation(trying<Look>([](VexQTAsset& asset) { outlineOf(asset); }));
}

TEST(AllocationFailure, ChangesNothingWhileAMovieIsSerialised) {
    failEveryAllocation(trying<Look>([](VexQTAsset& asset) { asset.assetData(); }));
}

TEST(AllocationFailure, ChangesNothingWhileAMovieIsWrittenAsJson) {
    failEveryAllocation(trying<Look>([](VexQTAsset& asset) {
        cli::TextOutput out;
        cli::JsonWriter json(out, cli::JsonWriter::Layout::Indented);
        cli::writeDocument(json, "movie.mov", asset);
        out.flush();
    }));
}

void visit(VexQTAtom& atom, const std::function<void(VexQTAtom&)>& visitor) {
    visitor(atom);
    for (const auto& child : atom.children()) visit(*child, visitor);
}

TEST(AllocationFailure, ChangesNothingWhilePropertiesAreRead) {
    failEveryAllocation(trying<Look>([](VexQTAsset& asset) {
        for (const auto& root : asset.rootAtoms())
            visit(*root, [](VexQTAtom& atom) {
                for (const Field* property : atom.properties()) {
                    atom.valueForKey(property->name);
                    if (property->list == nullptr || property->list->size(atom) == 0) continue;
                    property->list->cell(atom, 0, 0);
                }
            });
    }));
}

// MARK: Editing

/// An edit that fails leaves a movie that can be looked at, written and edited again.
class EditMovie : public Try {
public:
    explicit EditMovie(void (*edit)(VexQTAsset&)) : edit_(edit) {}
    void act() override { edit_(*asset_); }
    void check(bool) override {
        EXPECT_FALSE(outlineOf(*asset_).empty());
        EXPECT_FALSE(asset_->assetData().empty());
    }

private:
    void (*edit_)(VexQTAsset&);
    const std::unique_ptr<VexQTAsset> asset_ = VexQTAsset::initWithData(fullMovie());
};

TEST(AllocationFailure, LeavesAMovieWholeWhosePropertiesAreSet) {
    failEveryAllocation(trying<EditMovie>([](VexQTAsset& asset) {
        for (const auto& root : asset.rootAtoms())
            visit(*root, [](VexQTAtom& atom) {
                for (const Field* property : atom.properties()) {
                    if (property->get == nullptr || property->set == nullptr) continue;
                    atom.setValueForKey(property->get(atom), property->name);
                    if (property->isOptional) atom.setNilValueForKey(property->name);
                }
            });
    }));
}

TEST(AllocationFailure, LeavesAMovieWholeWhoseListsAreEdited) {
    failEveryAllocation(trying<EditMovie>([](VexQTAsset& asset) {
        for (const auto& root : asset.rootAtoms())
            visit(*root, [](VexQTAtom& atom) {
                for (const Field* property : atom.properties()) {
                    if (property->list == nullptr) continue;
                    const ListAccess& list = *property->list;
                    list.insertRows(atom, 0, 3);
                    for (std::size_t i = 0; i < list.columns.size(); ++i)
                        if (list.columns[i].set != nullptr || list.columns[i].name.empty())
                            list.setCell(atom, 1, i, list.cell(atom, 2, i));
                    list.removeRows(atom, 0, 2);
                }
            });
    }));
}

TEST(AllocationFailure, LeavesAMovieWholeWhoseAtomsAreAddedAndRemoved) {
    failEveryAllocation(trying<EditMovie>([](VexQTAsset& asset) {
        VexQTmoovAtom& movie = *asset.moovAtom();
        movie.addChild(VexQTAtom::initWithData(sampleAtom(), &movie, 0));
        movie.insertChild(VexQTAtom::initWithData(sampleAtom(), &movie, 0), "trak"_os);
        movie.removeChild(movie.childWithType("trak"_os));
        movie.removeChildrenWithType("abcd"_os);
    }));
}

TEST(AllocationFailure, LeavesAMovieWholeThatGetsAKeyedItem) {
    failEveryAllocation(trying<EditMovie>([](VexQTAsset& asset) {
        auto& metadata = dynamic_cast<VexQTmetaAtom&>(*asset.moovAtom()->childWithType("meta"_os));
        addKeyedItem(metadata, "mdta"_os, "com.example.a key that is long",
                     dataAtomWithText("a text that is too long for the place of short ones"));
        removeKey(dynamic_cast<VexQTkeysAtom&>(*metadata.childWithType("keys"_os)), 0);
    }));
}

// MARK: Saving

enum class Edit {
    Patch,  ///< As many bytes as before, kept in a journal.
    Grow    ///< More bytes, so that the movie moves.
};

void apply(Edit edit, VexQTAsset& asset) {
    auto& header = dynamic_cast<VexQTmvhdAtom&>(*asset.moovAtom()->childWithType("mvhd"_os));
    header.setDuration(0x01020304);
    if (edit == Edit::Patch) return;
    VexQTmoovAtom& movie = *asset.moovAtom();
    movie.addChild(VexQTAtom::initWithData(sampleAtom(), &movie, 0));
}

struct SaveCase {
    Edit edit;
    SaveForm form;
};

/// A save, checked against what the disk holds then.
class SaveOnDisk : public Try {
public:
    explicit SaveOnDisk(SaveCase what) : what_(what) {
        std::error_code error;
        asset_ = VexQTAsset::initWithURL(file_.path(), error, {.tolerant = true});
        apply(what.edit, *asset_);
    }
    void act() override { outcome_ = save(); }

protected:
    virtual SaveResult::Outcome save() = 0;

    SaveOptions options() { return {.form = what_.form, .force = true, .undo = &undo_}; }
    std::vector<std::string> namesIn(const std::filesystem::path& folder) const {
        std::vector<std::string> names;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(folder, none))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    const SaveCase what_;
    const MovieFile file_;
    const Bytes before_ = fullMovie();
    const TemporaryFolder records_;
    std::unique_ptr<VexQTAsset> asset_;
    UndoStore undo_{systemFiles(), records_ / "undo"};
    std::optional<SaveResult::Outcome> outcome_;
};

class SaveInPlace : public SaveOnDisk {
public:
    using SaveOnDisk::SaveOnDisk;

    void check(bool hasThrown) override {
        const auto recovered = recover(systemFiles(), file_.path());
        EXPECT_NE(recovered.outcome, Recovery::Failed) << recovered.text;
        EXPECT_NE(recovered.outcome, Recovery::Refused) << recovered.text;
        const bool isSaved = outcome_ == SaveResult::Outcome::Saved;
        EXPECT_FALSE(isSaved && hasThrown);
        EXPECT_EQ(readFile(file_.path()) == before_, !isSaved);
        EXPECT_EQ(namesIn(file_.folder().path()), std::vector<std::string>{"movie.mov"});
        for (const std::string& record : namesIn(records_ / "undo"))
            EXPECT_FALSE(record.ends_with(".part")) << record;
        if (isSaved) checkIsWhole();
    }

private:
    SaveResult::Outcome save() override { return saveInPlace(*asset_, options()).outcome; }
    void checkIsWhole() {
        std::error_code error;
        const auto saved = VexQTAsset::initWithURL(file_.path(), error);
        ASSERT_TRUE(saved && saved->moovAtom());
        const auto* header =
            dynamic_cast<VexQTmvhdAtom*>(saved->moovAtom()->childWithType("mvhd"_os));
        ASSERT_NE(header, nullptr);
        EXPECT_EQ(header->duration(), 0x01020304U);
    }
};

TEST(AllocationFailure, LeavesTheOldMovieOrTheNewWhereBytesArePatched) {
    failEveryAllocation(trying<SaveInPlace>(SaveCase{Edit::Patch, SaveForm::Surgical}));
}

TEST(AllocationFailure, LeavesTheOldMovieOrTheNewWhereTheMovieMoves) {
    failEveryAllocation(trying<SaveInPlace>(SaveCase{Edit::Grow, SaveForm::Surgical}));
}

TEST(AllocationFailure, LeavesTheOldMovieOrTheNewWhereTheClassesWrite) {
    failEveryAllocation(trying<SaveInPlace>(SaveCase{Edit::Grow, SaveForm::Exact}));
}

class SaveCopy : public SaveOnDisk {
public:
    using SaveOnDisk::SaveOnDisk;

    void check(bool) override {
        EXPECT_TRUE(readFile(file_.path()) == before_);
        std::vector<std::string> expected = {"movie.mov"};
        if (outcome_ == SaveResult::Outcome::Saved) expected.insert(expected.begin(), "copy.mov");
        EXPECT_EQ(namesIn(file_.folder().path()), expected);
    }

private:
    SaveResult::Outcome save() override {
        return saveCopy(*asset_, file_.folder() / "copy.mov", options()).outcome;
    }
};

TEST(AllocationFailure, LeavesNothingOfACopy) {
    failEveryAllocation(trying<SaveCopy>(SaveCase{Edit::Grow, SaveForm::Surgical}));
}

/// The same with files in memory, which themselves take memory: a full heap may be a full disk.
class SaveInMemory : public Try {
public:
    explicit SaveInMemory(bool isCopy) : isCopy_(isCopy) {
        files_.put("/movie.mov", before_);
        std::error_code error;
        const auto file = files_.openForReading("/movie.mov", error);
        std::filesystem::path real = real_.path();
        asset_ = VexQTAsset::initWithURL(real, error, {.tolerant = true});
        files_.put(real, before_);
        const auto named = files_.openForReading(real, error);
        asset_->readMainAtomsWithFileHandle(*named, {.tolerant = true});
        movie_ = real;
        apply(Edit::Patch, *asset_);
    }
    void act() override {
        const SaveResult result = isCopy_ ? saveCopy(*asset_, "/copy.mov", {.force = true}, files_)
                                          : saveInPlace(*asset_, {.force = true}, files_);
        outcome_ = result.outcome;
    }
    void check(bool) override {
        recover(files_, movie_);
        const bool isSaved = outcome_ == SaveResult::Outcome::Saved;
        EXPECT_EQ(files_.bytes(movie_) == before_, isCopy_ || !isSaved);
        EXPECT_EQ(files_.paths().size(), isCopy_ && isSaved ? 3U : 2U);
    }

private:
    const bool isCopy_;
    const Bytes before_ = fullMovie();
    const MovieFile real_;
    MemoryFileSystem files_;
    std::filesystem::path movie_;
    std::unique_ptr<VexQTAsset> asset_;
    std::optional<SaveResult::Outcome> outcome_;
};

TEST(AllocationFailure, LeavesTheOldMovieOrTheNewInMemory) {
    failEveryAllocation(trying<SaveInMemory>(false));
}

TEST(AllocationFailure, LeavesNothingOfACopyInMemory) {
    // To remove a file in memory takes memory: there a draft stays behind in a heap that is full.
    failEveryAllocation(trying<SaveInMemory>(true), {Then::Recovers});
}

// MARK: Taking back

/// Undoing a save, and finding what was left of one.
class UndoSave : public Try {
public:
    UndoSave() {
        std::error_code error;
        const auto asset = VexQTAsset::initWithURL(file_.path(), error, {.tolerant = true});
        apply(Edit::Patch, *asset);
        EXPECT_EQ(saveInPlace(*asset, {.undo = &store_}).outcome, SaveResult::Outcome::Saved);
        saved_ = readFile(file_.path());
    }
    void act() override { outcome_ = undo(systemFiles(), store_, file_.path()).outcome; }
    void check(bool) override {
        recover(systemFiles(), file_.path());
        const bool isUndone = outcome_ == UndoResult::Outcome::Undone;
        EXPECT_TRUE(readFile(file_.path()) == (isUndone ? before_ : saved_));
    }

private:
    const MovieFile file_;
    const Bytes before_ = fullMovie();
    Bytes saved_;
    const TemporaryFolder records_;
    UndoStore store_{systemFiles(), records_ / "undo"};
    std::optional<UndoResult::Outcome> outcome_;
};

TEST(AllocationFailure, LeavesASaveThatIsNotUndone) { failEveryAllocation(trying<UndoSave>()); }

/// Nothing that is made at its first use stays half made.
TEST(AllocationFailure, LeavesNothingHalfMadeAtTheFirstUse) {
    const auto coldly = [](const std::function<std::unique_ptr<Try>()>& begin) {
        for (std::uint64_t n = 1;; n += kStep) {
            const auto attempt = begin();
            const FailingHeap failing(n, Then::Recovers);
            try {
                attempt->act();
            } catch (const std::bad_alloc&) {
                continue;
            }
            if (!failing.hasFailed()) return;
        }
    };
    coldly(trying<RefuseFromMemory>());
    coldly(trying<Look>([](VexQTAsset& asset) { asset.assetData(); }));
    coldly(trying<SaveInPlace>(SaveCase{Edit::Grow, SaveForm::Surgical}));
}

}  // namespace
}  // namespace vexqt::testing
