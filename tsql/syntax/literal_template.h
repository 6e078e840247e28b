#pragma once

// A batch of ten thousand INSERTs with literal values is one statement, ten thousand times: a template, made
// from the first of them, finds the end and the literals of the next by comparing the text between them,
// without tokens or trees. As cautious as a shape is (shape.h): whatever is not plainly a repetition is no
// match. Immutable.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/base/position.h"
#include "tsql/syntax/shape.h"

namespace vicenter::tsql {

class LiteralTemplate {
  public:
    // Nothing for statements that are no data statement, have no literal, or stand in the way of a safe
    // match.
    static std::optional<LiteralTemplate> Make(std::string_view statement);

    // Matches at `offset`, after blanks and semicolons. Gives the offset behind the statement and its
    // literals in order; nothing when the text there is no such statement, or when what follows it is neither
    // the end of the text nor a semicolon nor a word that starts a statement. *start gets the offset of the
    // statement's first letter. Kinds of literals may differ from those of the statement that the template
    // was made from.
    std::optional<std::uint32_t> Match(std::string_view text, std::uint32_t offset,
                                       std::vector<LiteralValue>* literals,
                                       std::uint32_t* start = nullptr) const;

  private:
    struct Slot {
        std::string before;  // the text since the previous literal
        bool value = false;  // behind '(', ',' or a comparison: a sign or NULL may stand here
    };
    std::vector<Slot> slots_;
    std::string after_;  // the text behind the last literal
};

// The position of `offset`, counted on from an earlier one.
Position Advance(std::string_view text, Position from, std::uint32_t offset);

}  // namespace vicenter::tsql
