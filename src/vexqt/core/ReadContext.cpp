#include "vexqt/core/ReadContext.h"

#include <algorithm>
#include <span>

#include "vexqt/core/VexQTAtom.h"

namespace vexqt {

static constexpr std::size_t kMostProblems = 1000;

void ReadContext::addProblem(std::uint64_t offsetInFile, std::string message, bool isStructural) {
    if (problems_->size() > kMostProblems) return;
    if (problems_->size() == kMostProblems) message = "further problems are not listed";
    std::string path;
    for (const Step* step : steps_) {
        if (!path.empty()) path += '.';
        path += step->segment();
    }
    problems_->push_back({std::move(path), offsetInFile, std::move(message), isStructural});
}

void ReadContext::renameInnermost(OSType type) {
    if (!steps_.empty()) steps_.back()->type_ = type;
}

ReadContext::Step::Step(ReadContext& context, OSType type, const Siblings& siblings)
    : context_(context), type_(type), siblings_(siblings), before_(siblings.size()) {
    context_.steps_.push_back(this);
}

std::string ReadContext::Step::segment() const {
    const auto ordinal =
        std::ranges::count_if(std::span(siblings_).first(before_),
                              [this](const auto& sibling) { return sibling->atomType() == type_; });
    std::string segment = pathSegment(type_);
    if (ordinal > 0) segment += '[' + std::to_string(ordinal) + ']';
    return segment;
}

}  // namespace vexqt
