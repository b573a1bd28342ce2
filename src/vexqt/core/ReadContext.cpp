#include "vexqt/core/ReadContext.h"

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
    path.shrink_to_fit();  // It may be long, and there may be a thousand.
    problems_->push_back({std::move(path), offsetInFile, std::move(message), isStructural});
}

void ReadContext::renameInnermost(OSType type) {
    if (!steps_.empty()) steps_.back()->type_ = type;
}

std::size_t ReadContext::countOfType(OSType type, std::size_t level, const Siblings& siblings,
                                     std::size_t before) {
    if (counts_.size() <= level) counts_.resize(level + 1);
    Counts& counts = counts_[level];
    if (counts.siblings != &siblings || counts.upTo > before) counts = {.siblings = &siblings};
    for (; counts.upTo < before; ++counts.upTo) ++counts.ofType[siblings[counts.upTo]->atomType()];
    const auto found = counts.ofType.find(type);
    return found != counts.ofType.end() ? found->second : 0;
}

ReadContext::Step::Step(ReadContext& context, OSType type, const Siblings& siblings)
    : context_(context),
      type_(type),
      siblings_(siblings),
      before_(siblings.size()),
      level_(context.steps_.size()) {
    context_.steps_.push_back(this);
}

ReadContext::Step::~Step() {
    context_.steps_.pop_back();
    // The children of this atom will not be named again.
    if (context_.counts_.size() > level_ + 1) context_.counts_.resize(level_ + 1);
}

std::string ReadContext::Step::segment() const {
    return pathSegment(type_, context_.countOfType(type_, level_, siblings_, before_));
}

}  // namespace vexqt
