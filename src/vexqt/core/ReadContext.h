// What one reading of a movie carries down the tree: how tolerant it is, what it met, where it is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vexqt/core/os_type.h"
#include "vexqt/export.h"

namespace vexqt {

class VexQTAtom;
struct Field;

/// Something that a tolerant reading met and went on from.
struct Problem {
    std::string path;                ///< The atom, from the roots: "moov.trak[1].mdia.mdhd".
    std::uint64_t offsetInFile = 0;  ///< Where the atom begins.
    std::string message;             ///< A sentence for people.
    /// Whether sizes contradict each other or bytes are missing, rather than a class declining what
    /// is whole.
    bool isStructural = false;

    friend bool operator==(const Problem& left, const Problem& right) {
        return left.path == right.path && left.offsetInFile == right.offsetInFile &&
               left.message == right.message;
    }
};

/// Where the parts of one atom lie in its bytes, counted from the first of them, as its class reads
/// them.
struct Survey {
    /// A row or a child.
    struct Part {
        const Field* row = nullptr;  ///< Null for a child.
        std::size_t start = 0;       ///< Of its first byte.
        std::size_t end = 0;         ///< Behind its last byte.
    };
    std::vector<Part> rows;      ///< In file order.
    std::vector<Part> children;  ///< In file order; none for a child that its class drops.
    /// Of the list whose entries have lengths of their own, if the class has one; in file order,
    /// none for an entry that its class drops.
    std::vector<Part> entries;
};

/// Atoms nested deeper are a NestingError: no real movie comes near.
inline constexpr std::size_t kDeepestNesting = 256;

/// One reading of a movie, on its way down the tree.
class VEXQT_EXPORT ReadContext {
public:
    /// The children of one atom, or the roots.
    using Siblings = std::vector<std::unique_ptr<VexQTAtom>>;

    /// Strict: the first thing that is wrong raises.
    ReadContext() = default;
    /// Tolerant: what is wrong is added to problems, and reading goes on.
    explicit ReadContext(std::vector<Problem>& problems) : problems_(&problems) {}
    /// Tolerant, and finds out where the parts of one atom lie instead of making its children.
    ReadContext(Survey& survey, std::vector<Problem>& problems)
        : problems_(&problems), survey_(&survey) {}
    ReadContext(const ReadContext&) = delete;
    ReadContext& operator=(const ReadContext&) = delete;

    /// Whether what is wrong becomes a problem rather than an Error.
    bool isTolerant() const { return problems_ != nullptr; }
    /// Adds a problem of the atom that is being read; only when tolerant. A file that is nothing
    /// but problems does not fill the memory with them: the list ends after a thousand and says so.
    void addProblem(std::uint64_t offsetInFile, std::string message, bool isStructural = false);

    /// Null unless this is a survey.
    Survey* survey() const { return survey_; }

    /// How many atoms deep the one being read lies, itself counted.
    std::size_t depth() const { return outerDepth_ + steps_.size(); }
    /// For an atom that is read below atoms which this reading did not make.
    void setOuterDepth(std::size_t depth) { outerDepth_ = depth; }

    /// The atom that is being read will be found under another type than it was thought.
    void renameInnermost(OSType type);

    /// One atom on the way from the roots to what is being read; lives as long as it is read.
    class Step {
    public:
        /// Goes one level down. \throws NestingError below kDeepestNesting.
        Step(ReadContext& context, OSType type, const Siblings& siblings);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

        /// "trak", or "trak[2]" for the third of its type among its siblings.
        std::string segment() const;

    private:
        friend class ReadContext;

        ReadContext& context_;
        OSType type_;
        const Siblings& siblings_;
        std::size_t before_;  ///< How many siblings there were when this one was begun.
        std::size_t level_;
    };

private:
    /// How many there are of each type among the first siblings at one level. It grows from one
    /// problem to the next: a container of millions is counted once, not for each of its problems.
    struct Counts {
        const Siblings* siblings = nullptr;
        std::size_t upTo = 0;
        std::unordered_map<OSType, std::size_t> ofType{};
    };
    std::size_t countOfType(OSType type, std::size_t level, const Siblings& siblings,
                            std::size_t before);

    std::vector<Problem>* problems_ = nullptr;
    Survey* survey_ = nullptr;
    std::size_t outerDepth_ = 0;
    std::vector<Step*> steps_;
    std::vector<Counts> counts_;
};

}  // namespace vexqt
