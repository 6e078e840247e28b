#pragma once

// A T-SQL statement as SQLite runs it: the text, where its parameters come from, what it gives. Plain values.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/syntax/ast.h"
#include "tsql/types/convert.h"
#include "tsql/types/literal_value.h"
#include "tsql/types/result_column.h"
#include "tsql/types/sql_type.h"
#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// One parameter of the SQLite statement, filled each time the statement runs.
struct Parameter {
    // kRow: a value that the caller hands in, numbered by `ordinal`.
    enum class Source { kLiteral, kVariable, kSystem, kRow };
    Source source = Source::kLiteral;

    LiteralKind literal = LiteralKind::kNull;
    std::string text;  // the literal, or the name of the variable or system value in lower case
    int ordinal = -1;  // the literal's number among those of the batch when they may change; else -1
    bool negated = false;
    bool isMember = false;  // of a set of texts, see kMemberCall

    SqlType from;
    SqlType to;
    bool forColumn = false;  // stored under a column's rules, else converted as any expression
    std::string table;
    std::string column;
    bool nullable = true;
    bool isKey = false;
    std::string operation;
};

struct VariableAssignment {
    std::string variable;
    AssignOp op = AssignOp::kSet;
    std::size_t place = 0;  // of UPDATE: of its value among the columns
};

// What MERGE does with the rows of one WHEN: each row gives the number of its WHEN and that of the row in the
// target, and behind them the values of every WHEN.
struct MergeStep {
    int clause = 0;
    MergeAction action = MergeAction::kUpdate;
    std::size_t first = 0;             // of its values
    std::vector<std::string> columns;  // that they go to
    bool isWhole = false;              // all columns of the row, which is put anew
};

// A source of FROM whose columns OUTPUT may name.
struct ToldSource {
    std::string name;
    std::vector<ResultColumn> columns;
};

struct Translation {
    std::string sql;
    std::vector<Parameter> parameters;
    std::vector<ResultColumn> columns;
    std::vector<VariableAssignment> assignments;  // of SELECT @v = …, one per column
    std::string table;                            // the table that is changed, empty for none
    std::string operation;                        // INSERT, UPDATE, DELETE or MERGE of messages
    bool changesTemporary = false;
    bool usesIdentity = false;   // rows get their identity values from the session
    bool givesIdentity = false;  // the statement gives explicit values for an identity column
    bool FillsIdentity() const { return usesIdentity || givesIdentity; }
    bool hasOutput = false;    // rows come back from OUTPUT: `columns` describes them
    std::size_t goesInto = 0;  // how many of these go into the target of OUTPUT … INTO; the rest is a result
    std::vector<ToldSource> told;  // whose columns stand behind all others, for OUTPUT
    std::size_t ToldColumns() const {
        std::size_t count = 0;
        for (const ToldSource& source : told)
            count += source.columns.size();
        return count;
    }
    // Temporary tables that the statement uses, with the numbers of their definitions, which another
    // translation goes by, and their own.
    struct TemporaryUse {
        std::string name;
        std::int64_t definition = 0;
        std::int64_t table = 0;
    };
    std::vector<TemporaryUse> temporaries;
    std::string checkedView;           // through which rows are written that must be its own then
    std::vector<MergeStep> steps;      // of MERGE
    std::int64_t rowsOf = 0;           // the table whose row numbers stand behind the columns; 0 for none
    std::vector<ResultColumn> rowKey;  // its columns behind the number that tell the row from another one
    struct IdentityItem {
        std::size_t place = 0;
        SqlType type;
        std::int64_t seed = 1;
        std::int64_t increment = 1;
    };
    std::optional<IdentityItem> identity;  // IDENTITY(…) in the list of a SELECT … INTO
    bool oneRow = false;                   // cannot change more than one row, so no savepoint is needed
};

}  // namespace vicenter::tsql::engine
