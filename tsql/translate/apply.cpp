// CROSS APPLY and OUTER APPLY, and functions in FROM. What is applied may refer to the row before it, which a
// subquery in SQLite's FROM cannot; the argument of a table can, so the rows are packed into one.

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/functions/volatile.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// The rows of a packed query as a table.
QueryText Unpacked(const QueryText& query, const std::string& packed) {
    QueryText rows;
    rows.sql = std::string(kRowsTable) + "(" + packed + ")";
    rows.columns = query.columns;
    rows.natural.assign(query.columns.size(), false);
    return rows;
}

}  // namespace

std::string Translator::Applied(const JoinedTable& join, Scope& scope) {
    const bool outer = join.join == JoinKind::kOuterApply;
    const std::string left = SourceText(*join.left, scope);
    const std::string word = outer ? " LEFT JOIN " : " JOIN ";
    const std::string always = outer ? " ON true" : "";
    const TableSource& right = *join.right;
    if (const auto* function = TryAs<FunctionTable>(&right))
        return left + word + FunctionSource(*function, scope, &scope) + always;
    const auto* derived = TryAs<DerivedTable>(&right);
    const auto* values = TryAs<ValuesTable>(&right);
    // A table by its name knows nothing of the row.
    if (derived == nullptr && values == nullptr) return left + word + SourceText(right, scope) + always;
    const QueryText query =
        derived != nullptr ? QueryOf(*derived->query, &scope, false) : ValuesQuery(*values, &scope);
    if (query.columns.size() > static_cast<std::size_t>(kMostPackedColumns))
        throw MakeError(40510, right.position,
                        {"APPLY of more than " + std::to_string(kMostPackedColumns) + " columns"});
    std::vector<std::string> list;
    for (std::size_t i = 0; i < query.columns.size(); ++i)
        list.push_back("c" + std::to_string(i + 1));
    // What asks nothing of the row before it is run once, unless it seems to.
    std::string row;
    for (const Source& source : scope.sources) {
        if (row.empty() && !source.columns.empty()) row = source.columns.front().sql;
    }
    const std::string eachTime =
        IsVolatile(query.sql) && !row.empty() ? " WHERE typeof(" + row + ") <> ''" : std::string();
    const QueryText rows =
        Unpacked(query, "(SELECT " + kPackCall.Call(list) + " FROM (" + query.sql + ")" + eachTime + ")");
    const Name& alias = derived != nullptr ? derived->alias : values->alias;
    const std::vector<Name>& names = derived != nullptr ? derived->columns : values->columns;
    return left + word + Derived(rows.sql, rows, alias.text, names, scope, right.position) + always;
}

// STRING_SPLIT(text, separator)
std::string Translator::FunctionSource(const FunctionTable& function, Scope& scope, const Scope* outer) {
    const std::string& name = function.name.Object();
    if (function.name.parts.size() != 1 || !SameName(name, "string_split")) {
        if (SameName(name, "generate_series")) throw MakeError(40510, function.position, {UpperAscii(name)});
        throw MakeError(208, function.position, {function.name.Text()});
    }
    if (function.arguments.size() == 3)
        throw MakeError(40510, function.position, {"STRING_SPLIT with ordinals"});
    if (function.arguments.size() != 2) throw MakeError(313, function.position, {"string_split"});
    Scope none;
    none.outer = outer;
    const Operand text = Value(*function.arguments[0], none);
    const Operand separator = Value(*function.arguments[1], none);
    const bool unicode = text.type.IsUnicode();
    const int length = text.type.IsText() ? text.type.length : unicode ? 4000 : 8000;
    if (!text.type.IsText() && !text.type.IsUnknown())
        throw MakeError(8116, function.position, {text.type.Name(), 1, "string_split"});
    if (separator.type.IsText() && separator.type.length != 1)
        throw MakeError(214, function.position, {"separator", "nchar(1)/nvarchar(1)"});
    QueryText one;
    one.columns.push_back({"value", unicode ? SqlType::NVarChar(length) : SqlType::VarChar(length)});
    const QueryText rows = Unpacked(one, kSplitCall.Call({Render(text), Render(separator)}));
    const std::string exposed = function.alias.IsEmpty() ? name : function.alias.text;
    return Derived(rows.sql, rows, exposed, function.columns, scope, function.position);
}

}  // namespace vicenter::tsql::engine
