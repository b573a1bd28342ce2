// The promise of a save: set one property of one atom of a movie to another value, and the bytes of
// that property change and no other; edit nothing, and nothing changes.
//
// It is tried on every property of every atom of the movies that the project makes, and of those in
// the folder that VEXQT_TEST_MOVIES names.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <set>

#include "atoms/all_classes.h"
#include "saving/changes.h"
#include "saving/movie_of_all_classes.h"
#include "testing/files.h"
#include "testing/small_movie.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/Surgery.h"

namespace vexqt {
namespace {

using namespace vexqt::testing;

/// Another value of the same kind; absent where there is none to try.
std::optional<Value> otherValue(const Field& field, const Value& value) {
    switch (field.kind) {
        case ValueKind::Boolean:
            return Value(!std::get<bool>(value));
        case ValueKind::Unsigned:
        case ValueKind::Signed:
            return Value(*integerFrom(value) ^ 1);
        case ValueKind::Floating:
            return Value(*doubleFrom(value) == 0.0 ? 1.0 : 0.0);
        case ValueKind::Instant:
            if (const auto* date = std::get_if<Date>(&value))
                return Value(*date + std::chrono::seconds(1));
            return std::nullopt;
        case ValueKind::Transformation: {
            Matrix matrix = std::get<Matrix>(value);
            matrix[6] = matrix[6] == 7 ? 8 : 7;
            return Value(matrix);
        }
        default:
            return std::nullopt;
    }
}

/// How many bytes one value of a property has at most in the file.
std::size_t widthOf(const Field& field) {
    if (field.kind == ValueKind::Transformation) return field.unitWidth;
    return field.width != 0 ? field.width : 8;
}

struct Figures {
    int set = 0, written = 0;
};

class Promise {
public:
    explicit Promise(VexQTAtom& root) : root_(root) {}

    void tryEverything() {
        EXPECT_TRUE(std::ranges::equal(written(), root_.origin().view())) << "without an edit";
        visit(root_);
    }
    Figures figures;

private:
    Bytes written() {
        Surgery surgery;
        const SharedBytes bytes = surgery.written(root_).flat();
        return {bytes.view().begin(), bytes.view().end()};
    }

    void visit(VexQTAtom& atom) {
        if (!atom.declinedClass() && atom.origin().size() > 0) {
            for (const Field* field : atom.properties())
                if (field->set != nullptr && field->get != nullptr) tryOne(atom, *field);
        }
        for (const auto& child : atom.children()) visit(*child);
    }

    void tryOne(VexQTAtom& atom, const Field& field) {
        const Value before = field.get(atom);
        const auto other = otherValue(field, before);
        if (!other) return;
        SCOPED_TRACE(std::string(atom.atomClass().className) + "." + std::string(field.name));
        field.set(atom, *other);
        const Bytes after = written();
        ++figures.set;
        check(field, after);
        field.set(atom, before);
    }

    void check(const Field& field, ByteView after) {
        const ByteView was = root_.origin().view();
        // Some values decide which others there are, or how a text is stored.
        static constexpr std::string_view kOfForm[] = {"appendEmptyChannelDescription",
                                                       "appendEmptyStringLength",
                                                       "appendZeroWord",
                                                       "colorTableID",
                                                       "componentNameIsCString",
                                                       "globalSampleSize",
                                                       "soundVersion"};
        if (std::ranges::count(kOfForm, field.name) > 0) return;
        ASSERT_EQ(after.size(), was.size());
        std::size_t first = was.size(), last = 0;
        for (std::size_t i = 0; i < was.size(); ++i) {
            if (was[i] == after[i]) continue;
            first = std::min(first, i);
            last = i;
        }
        if (first == was.size()) return;  // A property that is not in the file.
        ++figures.written;
        EXPECT_LE(last - first + 1, widthOf(field));
    }

    VexQTAtom& root_;
};

Figures tryMovie(VexQTAsset& asset) {
    Figures all;
    for (const auto& root : asset.rootAtoms()) {
        if (root->origin().size() == 0 || root->origin().size() > 100'000) continue;
        Promise promise(*root);
        promise.tryEverything();
        all.set += promise.figures.set;
        all.written += promise.figures.written;
    }
    return all;
}

// MARK: Every class, every property, as a save writes it

/// One edit of one atom.
struct Trial {
    std::string what;
    const Field* property = nullptr;
    std::function<void(VexQTAtom&)> edit;
};

/// Other values than the one that is there.
std::vector<Value> otherValues(const Field& field, const Value& value) {
    switch (field.kind) {
        case ValueKind::Text: {
            const auto* is = std::get_if<std::string>(&value);
            if (is == nullptr || is->empty()) return {Value("Zz and more")};
            return {Value("Z" + is->substr(1)), Value(*is + " and more"), Value(is->substr(1))};
        }
        case ValueKind::Data: {
            const auto* is = std::get_if<Bytes>(&value);
            if (is == nullptr || is->empty()) return {Value(Bytes{1, 2, 3})};
            Bytes other = *is;
            other[0] ^= 1;
            return {Value(other)};
        }
        case ValueKind::Number: {
            const auto* is = std::get_if<Number>(&value);
            return {Value(Number(is != nullptr ? is->int32Value() ^ 1 : 7))};
        }
        case ValueKind::Color:
            return {Value(Color::rgb(0.5, 0.25, 0.125, 0.0))};
        case ValueKind::Picture:
            return {Value(Picture({1, 1}, {1, 2, 3, 4}))};
        default:
            break;
    }
    const auto other = otherValue(field, value);
    return other ? std::vector<Value>{*other} : std::vector<Value>();
}

std::vector<Trial> trialsOf(const VexQTAtom& atom) {
    std::vector<Trial> trials;
    std::vector<const Field*> properties = atom.properties();
    for (const std::string_view name : {"version", "flags0", "flags1", "flags2"})
        properties.push_back(atom.propertyNamed(name));
    for (const Field* field : properties) {
        const std::string name(field->name);
        if (field->list != nullptr) {
            const ListAccess& list = *field->list;
            const std::size_t rows = list.size(atom);
            for (std::size_t column = 0; column < list.columns.size() && rows > 0; ++column) {
                const std::size_t row = rows / 2;
                if (list.columns[column].set == nullptr && !list.columns[column].name.empty())
                    continue;
                for (const Value& value :
                     otherValues(list.columns[column], list.cell(atom, row, column)))
                    trials.push_back({name + "." + std::string(list.columns[column].name), field,
                                      [=, &list](VexQTAtom& edited) {
                                          list.setCell(edited, row, column, value);
                                      }});
            }
            trials.push_back({name + ", a row more", field,
                              [&list](VexQTAtom& edited) { list.insertRows(edited, 0, 1); }});
            if (rows > 0)
                trials.push_back({name + ", a row less", field,
                                  [&list](VexQTAtom& edited) { list.removeRows(edited, 0, 1); }});
        } else if (field->set != nullptr && field->get != nullptr) {
            for (const Value& value : otherValues(*field, field->get(atom)))
                trials.push_back(
                    {name, field, [=](VexQTAtom& edited) { field->set(edited, value); }});
        }
    }
    return trials;
}

/// A movie, and what a save of one edit after the other makes of it. Each begins with the movie as
/// it is.
class SavedEdits {
public:
    explicit SavedEdits(Bytes movie) : movie_(std::move(movie)) {}

    void tryEverything() {
        const auto asset = read();
        ASSERT_TRUE(saved(*asset) == movie_) << "without an edit";
        for (std::size_t i = 0; i < asset->rootAtoms().size(); ++i)
            visit(*asset->rootAtoms()[i], {i});
    }

    std::set<std::string_view> classes, classesInFile;
    int set = 0, inFile = 0;
    /// Edits that a save refuses unless it is forced, and those that change more than themselves.
    std::set<std::string> refused, changingMore;

private:
    using Place = std::vector<std::size_t>;

    std::unique_ptr<VexQTAsset> read() const {
        return VexQTAsset::initWithData(movie_, {.tolerant = true});
    }
    static std::vector<VexQTAtom*> chainTo(VexQTAsset& asset, const Place& place) {
        std::vector<VexQTAtom*> chain = {asset.rootAtoms()[place[0]].get()};
        for (std::size_t i = 1; i < place.size(); ++i)
            chain.push_back(chain.back()->children()[place[i]].get());
        return chain;
    }

    /// The file after a save, planned as people's files are.
    Bytes saved(VexQTAsset& asset) {
        MemoryFileSystem files;
        files.put("/a.mov", movie_);
        std::error_code error;
        plan_ = SavePlan::of(asset, *files.openForReading("/a.mov", error), SaveForm::Surgical);
        return changed(movie_, plan_.change());
    }

    void visit(const VexQTAtom& atom, const Place& place) {
        classes.insert(atom.atomClass().className);
        EXPECT_FALSE(atom.declinedClass()) << atom.declinedReason();
        for (const Trial& trial : trialsOf(atom)) tryOne(trial, place);
        for (std::size_t i = 0; i < atom.children().size(); ++i) {
            Place below = place;
            below.push_back(i);
            visit(*atom.children()[i], below);
        }
    }

    void tryOne(const Trial& trial, const Place& place) {
        const auto asset = read();
        const auto chain = chainTo(*asset, place);
        VexQTAtom& atom = *chain.back();
        const std::string name = std::string(atom.atomClass().className) + "." + trial.what;
        SCOPED_TRACE(name);
        const AtomAsRead asRead(atom);
        trial.edit(atom);
        const Bytes after = saved(*asset);
        ++set;
        if (plan_.has(Severity::Destroys)) refused.insert(name);
        if (plan_.has(Severity::Changes)) changingMore.insert(name);
        if (after == movie_) return;  // A property that is not in the file.
        ++inFile;
        classesInFile.insert(atom.atomClass().className);
        // What decides which other fields there are changes those with itself.
        const bool isOfForm = trial.what == "soundVersion" || trial.what == "dataTypeString" ||
                              trial.what == "globalSampleSize";
        // What is not last takes free space, or leaves some.
        const bool isMoved = after.size() == movie_.size() && plan_.way() != SavePlan::Way::Patch;
        if (isOfForm || isMoved) return;
        EXPECT_TRUE(after == expected(trial, chain, asRead, after));
    }

    /// The movie with the bytes of the edited rows taken from what was saved, and with the sizes
    /// of all around them.
    Bytes expected(const Trial& trial, const std::vector<VexQTAtom*>& chain,
                   const AtomAsRead& asRead, ByteView after) const {
        const std::uint64_t start = chain.back()->extent().start;
        Bytes bytes = movie_;
        const std::size_t growth = after.size() - movie_.size();  // Wraps where it shrinks.
        const auto rows = rowsOf(trial, chain.back()->atomClass(), asRead);
        // From the last one on, so that what is in front stays where it is.
        for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
            const auto from = static_cast<std::ptrdiff_t>(start + row->start);
            const auto to = static_cast<std::ptrdiff_t>(start + row->end);
            const std::size_t length = row->end - row->start + (row == rows.rbegin() ? growth : 0);
            bytes.erase(bytes.begin() + from, bytes.begin() + to);
            const ByteView now = after.subspan(static_cast<std::size_t>(from), length);
            bytes.insert(bytes.begin() + from, now.begin(), now.end());
        }
        if (growth == 0) return bytes;
        std::set<std::uint64_t> patched;  // An entry may begin with the atom that it is.
        for (const VexQTAtom* holder : chain) {
            if (!patched.insert(holder->extent().start).second) continue;
            const auto at = static_cast<std::size_t>(holder->extent().start);
            storeBigEndian(&bytes[at], static_cast<std::uint32_t>(
                                           loadBigEndian<std::uint32_t>(&bytes[at]) + growth));
        }
        return bytes;
    }

    /// Where the property lies: its own row, that of its irregular form, and the number or length
    /// in front of it.
    static std::vector<Survey::Part> rowsOf(const Trial& trial, const AtomClass& cls,
                                            const AtomAsRead& asRead) {
        const auto& parts = asRead.survey.rows;
        const auto fields = cls.fields;
        if (trial.property < fields.data() || trial.property >= fields.data() + fields.size())
            return {{.start = 8, .end = 12}};  // Version and flags.
        const auto partOf = [&](const Field* row) {
            return std::ranges::find(parts, row, &Survey::Part::row);
        };
        const Field* row = trial.property;
        while (partOf(row) == parts.end() && row != fields.data()) --row;
        const auto part = partOf(row);
        if (part == parts.end()) return {};
        const bool hasCount = trial.property->list != nullptr;
        const bool hasLength =
            &cls == &VexQTUserDataTextItem::kClass && trial.property->name == "text";
        if (hasLength) return {parts[0], *part};
        if (hasCount && part != parts.begin()) return {*(part - 1), *part};
        return {*part};
    }

    Bytes movie_;
    SavePlan plan_;
};

TEST(Promise, HoldsForEveryPropertyOfEveryClass) {
    SavedEdits edits(MovieOfAllClasses().bytes());
    edits.tryEverything();
    // A font is an entry of its table and no atom of the tree.
    std::set<std::string_view> all;
    for (const AtomClass* cls : kAllClasses) all.insert(cls->className);
    all.erase(VexQTFontTableEntry::kClass.className);
    EXPECT_EQ(edits.classes, all);
    // Whoever changes what decides how others are read is told beforehand.
    EXPECT_EQ(edits.refused,
              (std::set<std::string>{"VexQTdataAtom.dataType", "VexQTdataAtom.dataTypeString",
                                     "VexQThdlrAtom.componentSubType",
                                     "VexQTstszAtom.sampleSizes, a row more"}));
    EXPECT_EQ(edits.changingMore, std::set<std::string>());
    EXPECT_GT(edits.inFile, 1000);
    std::cout << "[  PROMISE ] " << edits.classes.size() << " classes ("
              << edits.classesInFile.size() << " of them with fields in the file), " << edits.set
              << " edits, " << edits.inFile << " of them in the file\n";
}

TEST(Promise, HoldsForEveryPropertyOfTheSmallMovie) {
    const auto asset = VexQTAsset::initWithData(smallMovie(), {.tolerant = true});
    const Figures figures = tryMovie(*asset);
    EXPECT_GT(figures.written, 40);
}

TEST(Promise, HoldsForEveryPropertyOfMoviesFromAFolder) {
    const char* folder = std::getenv("VEXQT_TEST_MOVIES");
    if (folder == nullptr) GTEST_SKIP() << "VEXQT_TEST_MOVIES names no folder of movies";
    Figures all;
    int movies = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        SCOPED_TRACE(entry.path());
        std::error_code error;
        const auto asset = VexQTAsset::initWithURL(entry.path(), error, {.tolerant = true});
        ASSERT_TRUE(asset) << error.message();
        const Figures figures = tryMovie(*asset);
        all.set += figures.set;
        all.written += figures.written;
        ++movies;
    }
    std::cout << movies << " movies, " << all.set << " properties set, " << all.written
              << " in the file\n";
}

}  // namespace
}  // namespace vexqt
