// How much longer a movie of twice the length keeps the library busy.

#include <gtest/gtest.h>

#include <functional>

#include "apps/vexqt/json_document.h"
#include "limits/Work.h"
#include "limits/hostile_movies.h"
#include "vexqt/platform/MemoryFileSystem.h"
#include "vexqt/saving/SavePlan.h"
#include "vexqt/vexqt.h"

namespace vexqt::testing {
namespace {

constexpr std::size_t kLength = 48 * 1024;
/// What doubles with the length is 2, and a sorting or a search takes a little more.
constexpr double kMostGrowth = 2.3;
/// What is done once, whatever the length.
constexpr double kFixedWork = 20'000;

struct Question {
    const char* name;
    /// Does all that is to be counted.
    void (*work)(VexQTAsset& asset, ByteView movie);
};

SavePlan planOf(VexQTAsset& asset, ByteView movie, SaveForm form) {
    MemoryFileSystem files;
    files.put("movie.mov", Bytes(movie.begin(), movie.end()));
    std::error_code error;
    const auto file = files.openForReading("movie.mov", error);
    return SavePlan::of(asset, *file, form);
}

void visit(VexQTAtom& atom, void (*visitor)(VexQTAtom&)) {
    visitor(atom);
    for (const auto& child : atom.children()) visit(*child, visitor);
}

/// Edits every atom, and every second row of every list.
void editAll(VexQTAtom& atom) {
    if (atom.propertyNamed("unknownData") != nullptr && atom.children().empty() &&
        &atom.atomClass() == &VexQTAtom::kClass)
        atom.setAtomType("edit"_os);
    for (const Field* property : atom.properties()) {
        if (property->list == nullptr) continue;
        const ListAccess& list = *property->list;
        const std::size_t column = list.columns.size() - 1;
        const bool isInteger = list.columns[column].kind == ValueKind::Unsigned ||
                               list.columns[column].kind == ValueKind::Signed;
        if (!isInteger) continue;
        for (std::size_t row = 0; row < list.size(atom); row += 2)
            list.setCell(atom, row, column, Value(std::uint64_t{12345}));
    }
}

const Question kQuestions[] = {
    {"read",
     [](VexQTAsset&, ByteView movie) { VexQTAsset::initWithData(movie, {.tolerant = true}); }},
    {"read strictly",
     [](VexQTAsset&, ByteView movie) {
         try {
             VexQTAsset::initWithData(movie);
         } catch (const Error&) {
             // A broken movie ends it.
         }
     }},
    {"outline",
     [](VexQTAsset& asset, ByteView) {
         for (const auto& root : asset.rootAtoms()) root->description();
     }},
    {"JSON",
     [](VexQTAsset& asset, ByteView) {
         cli::TextOutput out;
         cli::JsonWriter json(out, cli::JsonWriter::Layout::OneLine);
         cli::writeDocument(json, "movie.mov", asset);
         out.flush();
     }},
    {"serialise",
     [](VexQTAsset& asset, ByteView) {
         try {
             asset.assetData();
         } catch (const EncodingError&) {
             // Metadata below a value cannot be written.
         }
     }},
    {"plan to save",
     [](VexQTAsset& asset, ByteView movie) { planOf(asset, movie, SaveForm::Surgical); }},
    {"plan to save as the classes write",
     [](VexQTAsset& asset, ByteView movie) { planOf(asset, movie, SaveForm::Exact); }},
    {"plan to save what is edited everywhere",
     [](VexQTAsset& asset, ByteView movie) {
         for (const auto& root : asset.rootAtoms()) visit(*root, editAll);
         planOf(asset, movie, SaveForm::Surgical);
     }},
};

double workOf(const Question& question, const Bytes& movie) {
    const auto asset = VexQTAsset::initWithData(movie, {.tolerant = true});
    const WorkWatch work;
    question.work(*asset, movie);
    return static_cast<double>(work.count());
}

class Work : public ::testing::TestWithParam<HostileFamily> {};

TEST_P(Work, AtMostDoublesWhenTheMovieDoes) {
    const Bytes movie = GetParam().movie(kLength);
    const Bytes twice = GetParam().movie(2 * kLength);
    for (const Question& question : kQuestions) {
        SCOPED_TRACE(question.name);
        workOf(question, movie);  // What is made once is made here.
        const double once = workOf(question, movie);
        const double doubled = workOf(question, twice);
        EXPECT_GT(once, 0);
        EXPECT_LE(doubled, kMostGrowth * once + kFixedWork);
    }
}

INSTANTIATE_TEST_SUITE_P(Families, Work,
                         ::testing::ValuesIn(hostileFamilies().begin(), hostileFamilies().end()),
                         [](const auto& family) {
                             std::string name(family.param.name);
                             std::erase_if(name, [](char c) { return c == ' ' || c == ','; });
                             return name;
                         });

}  // namespace
}  // namespace vexqt::testing
