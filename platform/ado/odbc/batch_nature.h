#pragma once

// What a batch does to the connection that it runs on, told from its text alone by our own lexer. When in
// doubt the careful answer.

#include <string_view>
#include <vector>

namespace vicenter::ado {

struct BatchNature {
    // Several changes, or one that may happen several times: they need a transaction to be one unit. A single
    // change is one by itself, and what only reads holds no locks afterwards when it runs without.
    bool needsUnit = false;
    // Must not run within a transaction: CREATE DATABASE and its like.
    bool refusesUnit = false;
    // Leaves something behind that the next user of the connection would meet: settings, temporary tables,
    // cursors, an open transaction, another database.
    bool leavesTraces = false;
    // Nothing is stored by it.
    bool onlyReads = true;
    // Some of its counts may be of rows that were only read; CountsOfChanges tells which.
    bool mayCountReads = false;
};

BatchNature NatureOf(std::string_view batch);

// Whether each count that a straight batch gives, in order, is of changed rows: SELECT @v = … counts what it
// read. Nothing for a batch with loops, branches or calls, whose counts cannot be told apart.
std::vector<bool> CountsOfChanges(std::string_view batch);

}  // namespace vicenter::ado
