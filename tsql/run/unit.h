#pragma once

// A parsed batch or procedure with the plans of its statements. Owned by the session that made it.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/sqlite/database.h"
#include "tsql/syntax/ast.h"
#include "tsql/syntax/shape.h"
#include "tsql/translate/translation.h"

namespace vicenter::tsql::engine {

// A translated statement, prepared.
struct Plan {
    Translation translation;
    PreparedStatement statement;
    std::uint64_t generation = 0;
    bool checkedForTemplate = false;
    bool fitsTemplate = false;
};

// A statement of a batch, or one more run of an earlier INSERT with other literals.
struct UnitItem {
    const Statement* statement = nullptr;
    std::uint32_t line = 1;
    std::uint32_t begin = 0;  // of its text
    std::uint32_t end = 0;
    std::size_t firstLiteral = 0;
    std::size_t literalCount = 0;  // of a run of a template; 0 for a plain statement
    const std::vector<std::uint32_t>* offsets = nullptr;
};

struct Unit {
    std::string text;
    std::vector<StatementPtr> statements;
    std::vector<UnitItem> items;
    std::vector<LiteralValue> literals;  // of all template runs; they refer to the batch text
    std::vector<std::unique_ptr<std::vector<std::uint32_t>>> offsets;
    std::unordered_map<const void*, std::unique_ptr<Plan>> plans;

    // Of a unit kept by the shape of its text: where its literals stand, and those that must stay as they
    // are.
    std::vector<std::uint32_t> shapeOffsets;
    std::vector<std::pair<int, std::string>> pinned;
};

// Reads a batch as a whole, so that a syntax error anywhere keeps all of it from running. The text must
// outlive the unit as far as template runs go.
std::shared_ptr<Unit> ParseUnit(std::string_view text, bool findTemplates);

}  // namespace vicenter::tsql::engine
