#pragma once

// T-SQL batches made up by grammar: what is written is nearly always a batch that the server would take, on
// two tables with texts, decimals and dates.

#include <string>

#include "tests/fuzz/choices.h"

namespace vicenter::fuzz {

// The tables of the batches, to be made before.
extern const char* const kTsqlTables;

// One batch of a few statements; its loops end by themselves.
std::string MakeTsqlBatch(Choices& choices);

}  // namespace vicenter::fuzz
