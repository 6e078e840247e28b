#pragma once

// What CREATE TABLE and its relatives define: columns and constraints; see ast.h for ownership.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tsql/syntax/ast_expression.h"

namespace vicenter::tsql {

enum class ConstraintKind { kPrimaryKey, kUnique, kCheck, kForeignKey, kDefault };

struct IndexColumn {
    Name name;
    bool descending = false;
};

// A constraint of a table or of one column (then `columns` holds that column alone).
struct Constraint {
    ConstraintKind kind = ConstraintKind::kPrimaryKey;
    Position position;
    Name name;                         // CONSTRAINT name, or empty
    std::optional<bool> clustered;     // CLUSTERED / NONCLUSTERED as written
    std::vector<IndexColumn> columns;  // of a key; for kDefault the column of DEFAULT … FOR column
    ExprPtr expression;                // of CHECK or DEFAULT
    bool withValues = false;           // DEFAULT … WITH VALUES: also for the rows that are there
    // REFERENCES table (columns) [ON DELETE …] [ON UPDATE …]; the action in lower case ("cascade", "set
    // null", "no action", …), empty when none is written.
    ObjectName referencedTable;
    std::vector<Name> referencedColumns;
    std::string onDelete;
    std::string onUpdate;
};

struct Identity {
    std::int64_t seed = 1;
    std::int64_t increment = 1;
};

struct ColumnDefinition {
    Name name;
    TypeName type;
    std::optional<bool> nullable;  // NULL / NOT NULL as written
    std::optional<Identity> identity;
    Name collation;      // empty when there is none
    ExprPtr computedAs;  // c AS (a + b), then there is no type
    bool persisted = false;
    std::vector<Constraint> constraints;  // DEFAULT among them
};

// The body of CREATE TABLE and of DECLARE @t TABLE.
struct TableDefinition {
    std::vector<ColumnDefinition> columns;
    std::vector<Constraint> constraints;
};

}  // namespace vicenter::tsql
