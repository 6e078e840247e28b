#pragma once

// What a statement is made of while it is translated: operands with their texts and types, the names that
// they may use, queries taken apart. Plain values, each of one Translator.

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tsql/catalog/catalog.h"
#include "tsql/syntax/ast.h"
#include "tsql/translate/translation.h"

namespace vicenter::tsql::engine {

// Operators of one kind in a row, which go on in one call where they would nest too deep; see kChainCall.
struct Chain {
    char kind = 0;  // as the call has it
    int levels = 0;
    // Of the call, while there is one.
    std::string program;
    std::string values;
    std::size_t count = 0;
};

// A translated expression.
struct Operand {
    std::string sql;
    SqlType type;
    bool column = false;               // a column, whose collation SQLite knows
    std::optional<Parameter> pending;  // not yet in the text: its conversion happens when it is bound
    const LiteralExpr* literal = nullptr;
    std::shared_ptr<const Chain> chain = {};  // whose text is `sql`
    // A column that is no expression of a query in FROM: with `pending` what may stand in the text twice.
    bool isPlain = false;
    // Of an item of a list: how long its text is with that of all queries in FROM put in; 1 for a column.
    std::int64_t weight = 1;
};

struct SourceColumn {
    std::string name;
    SqlType type;
    std::string sql;
    bool natural = true;      // SQLite knows the collation
    std::int64_t weight = 1;  // see Operand
};

struct Source {
    std::string exposedName;
    std::string tableName;
    const TableInfo* table = nullptr;
    std::string alias;  // quoted
    std::vector<SourceColumn> columns;
    std::string viewSchema;  // of one of the server's views; empty for anything else
};

// A column that no text can name: the number of a row in the table behind a query.
inline constexpr const char* kRowNumberName = "$row";

// What $action names: a column of the row that OUTPUT of MERGE tells of.
inline constexpr const char* kActionName = "$action";

// Groups and windows worked out in a query of their own, below the one that lists what becomes of them.
struct Stage {
    std::string alias;                // of the query below, quoted
    std::vector<std::string> values;  // its columns k1, k2, …
};

// A column by which a query is not grouped: in its list, in HAVING and in ORDER BY.
inline constexpr int kUngroupedInList = 8120;
inline constexpr int kUngroupedInHaving = 8121;
inline constexpr int kUngroupedInOrder = 8127;

// The names that an expression may use, innermost first.
struct Scope {
    const Scope* outer = nullptr;
    const SelectBody* select = nullptr;  // whose names they are
    bool isBehind = false;               // FROM and WHERE are translated
    Stage* stage = nullptr;
    int belowStage = 0;  // within what the query below works out
    std::vector<Source> sources;
    // Set while the select list, HAVING and ORDER BY of a grouped query are translated.
    bool grouped = false;
    std::vector<std::string> groupColumns;
    const std::vector<ExprPtr>* groupExpressions = nullptr;
    // With ROLLUP and its kin: the expressions of all sets, each with its text, which is NULL in the sets
    // that leave it out, and the sets that it is in.
    struct SetMember {
        const Expr* expression = nullptr;
        Operand operand;
        std::string isIn;  // a condition of SQLite
    };
    std::vector<SetMember> setMembers;
    int ungrouped = kUngroupedInList;  // the error for a column by which it is not grouped
    std::size_t whereAt = 0;           // where WHERE begins in the text behind the list
    std::string someRows;              // with ROLLUP: -1, or an error when there is no row at all
};

// What stands in a place of its own is translated while it lasts.
class GroupedPlace {
  public:
    GroupedPlace(Scope& scope, int error) : scope_(scope), saved_(scope.ungrouped) {
        scope.ungrouped = error;
    }
    GroupedPlace(const GroupedPlace&) = delete;
    GroupedPlace& operator=(const GroupedPlace&) = delete;
    ~GroupedPlace() { scope_.ungrouped = saved_; }

  private:
    Scope& scope_;
    int saved_;
};

// A SELECT taken apart, so that a UNION can agree on types before the texts are made.
struct SelectParts {
    std::string head;  // SELECT, SELECT DISTINCT
    std::vector<Operand> items;
    std::vector<std::string> names;
    std::string tail;   // FROM … HAVING …
    std::string order;  // ORDER BY …
    std::string limit;  // LIMIT …
    std::vector<VariableAssignment> assignments;
    bool singleRow = false;
};

// A query in parentheses, without them.
struct QueryText {
    std::string sql;
    std::vector<ResultColumn> columns;
    std::vector<bool> natural;
    std::vector<std::int64_t> weights;  // of the columns, see Operand; none where all are columns
    std::vector<VariableAssignment> assignments;
    bool singleRow = false;
};

// How a statement has to be translated, where it is not as usual.
struct Ways {
    bool stages = false;                 // for all groups and windows
    bool sharesQueries = false;          // those that WITH names stand in the text once, however often used
    bool separates = false;              // no query in FROM is merged with the one around it
    std::set<const SelectBody*> groups;  // queries that an aggregate within a subquery belongs to
};

// Thrown by a translation that finds out that it needs other ways: begin again.
struct NeedsWays {
    Ways ways;
};

}  // namespace vicenter::tsql::engine
