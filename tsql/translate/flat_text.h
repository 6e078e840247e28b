#pragma once

// A statement of SQLite with what nests too deep in it taken out of the nest. SQLite's parser holds a hundred
// places at once, and a call within a call takes five of them.
//
// What is taken out stands at the head of the statement by a name of its own, WITH "deep$1"(v$) AS (…), and
// by that name in its old place. SQLite looks the columns of such a query up where it is named, not where it
// is written, so it may refer to every table around its old place; and it is evaluated there, when it is its
// turn and not before: a branch of a CASE that is not taken stays untouched.

#include <string>

namespace vicenter::tsql::engine {

// Places of the parser that the text of one query may take, by an estimate that is never too low.
inline constexpr int kDeepestText = 60;

// As it stands when a name within holds one of the control characters 1 to 3.
std::string Flattened(const std::string& sql, int deepest = kDeepestText);

}  // namespace vicenter::tsql::engine
