// The promise of a save: set one property of one atom of a movie to another value, and the bytes of
// that property change and no other; edit nothing, and nothing changes.
//
// It is tried on every property of every atom of the movies that the project makes, and of those in
// the folder that VEXQT_TEST_MOVIES names.
#include <gtest/gtest.h>

#include <cstdlib>

#include "testing/files.h"
#include "testing/small_movie.h"
#include "vexqt/asset/VexQTAsset.h"
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
