#pragma once

// The literals with which a tree runs.
//
// A program that is kept by the shape of its text runs again for texts that differ in their literals, and the
// repeated INSERTs of a long batch are one tree with many literals. Neither is parsed again: the literals of
// this run stand beside the tree, in the order of those in its text. A frame holds its run; a procedure that
// is called has literals of its own and therefore an empty one. A plain value; what it points to outlives the
// frame.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tsql/syntax/ast_expression.h"
#include "tsql/syntax/shape.h"

namespace vicenter::tsql::engine {

// Literals by their number, and the texts with which alone a plan holds.
using PinnedLiterals = std::vector<std::pair<int, std::string>>;

class LiteralRun {
  public:
    // The tree's own literals.
    LiteralRun() = default;
    // A text of a known shape: offsets tell where the tree's own literals stand. What is pinned is added to
    // the list, which belongs to the program.
    LiteralRun(const std::vector<LiteralValue>& values, const std::vector<std::uint32_t>& offsets,
               PinnedLiterals& pinned)
        : values_(&values), offsets_(&offsets), pinned_(&pinned) {}
    // One INSERT of many: its literals begin at `first`. They carry their signs, since NULL, 1 and -1 may
    // take turns in one place, where a shape keeps the sign in its text.
    LiteralRun(const std::vector<LiteralValue>& values, std::size_t first,
               const std::vector<std::uint32_t>& offsets)
        : values_(&values), first_(first), offsets_(&offsets), ownSigns_(true) {}

    bool IsEmpty() const { return values_ == nullptr; }
    // The number of a literal of the tree; -1 for one that is the same in every run.
    int OrdinalOf(const LiteralExpr& literal) const;
    const LiteralValue& At(int ordinal) const {
        return (*values_)[first_ + static_cast<std::size_t>(ordinal)];
    }
    bool IsNegative(const LiteralValue& literal, bool negatedByTree) const {
        return ownSigns_ ? literal.negative : negatedByTree;
    }
    // The plan that is being made looked at the literal's text, so that it holds for no other. False when the
    // literal is the same in every run anyway.
    bool Pin(const LiteralExpr& literal) const;

  private:
    const std::vector<LiteralValue>* values_ = nullptr;
    std::size_t first_ = 0;
    const std::vector<std::uint32_t>* offsets_ = nullptr;
    PinnedLiterals* pinned_ = nullptr;
    bool ownSigns_ = false;
};

}  // namespace vicenter::tsql::engine
