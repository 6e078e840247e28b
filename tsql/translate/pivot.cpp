// PIVOT: a group for each row of the other columns, with an aggregate for each listed value. UNPIVOT: a row
// for each listed column that is not NULL.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

ObjectName NameOf(std::string text, Position where) {
    ObjectName name;
    name.parts.push_back({std::move(text), where, true});
    return name;
}

// sum(CASE WHEN spread = N'column' THEN value END)
ExprPtr AggregateOf(const PivotTable& pivot, const Name& column) {
    auto choice = std::make_unique<CaseExpr>(pivot.position);
    CaseExpr::Branch branch;
    branch.when = std::make_unique<ComparisonExpr>(
        pivot.position, ComparisonOp::kEqual,
        std::make_unique<ColumnExpr>(pivot.position, NameOf(pivot.spread.Object(), pivot.position)),
        std::make_unique<LiteralExpr>(column.position, LiteralKind::kNString, column.text));
    branch.then = std::make_unique<ColumnExpr>(pivot.position, NameOf(pivot.value.Object(), pivot.position));
    choice->branches.push_back(std::move(branch));
    auto aggregate = std::make_unique<FunctionExpr>(pivot.position, pivot.function);
    aggregate->arguments.push_back(std::move(choice));
    return aggregate;
}

bool IsListed(const std::vector<Name>& names, const std::string& name) {
    return std::any_of(names.begin(), names.end(),
                       [&](const Name& other) { return SameName(other.text, name); });
}

// All columns of what stands before the word, each name once.
std::vector<SourceColumn> AllColumns(const Scope& scope, Position where) {
    std::vector<SourceColumn> all;
    for (const Source& source : scope.sources) {
        for (const SourceColumn& column : source.columns) {
            for (const SourceColumn& other : all) {
                if (SameName(other.name, column.name)) throw MakeError(8156, where, {column.name, ""});
            }
            all.push_back(column);
        }
    }
    return all;
}

bool IsValueOf(const std::string& text, const SqlType& type) {
    try {
        Convert(engine::Value(text), SqlType::NVarChar(128), type, 0);
        return true;
    } catch (const SqlError&) {
        return false;
    }
}

const SourceColumn& Find(const std::vector<SourceColumn>& columns, const std::string& name, Position where) {
    for (const SourceColumn& column : columns) {
        if (SameName(column.name, name)) return column;
    }
    throw MakeError(207, where, {name});
}

}  // namespace

std::string Translator::Pivoted(const PivotTable& pivot, Scope& scope) {
    Scope inner;
    inner.outer = scope.outer;
    const std::string from = SourceText(*pivot.source, inner);
    const std::vector<SourceColumn> columns = AllColumns(inner, pivot.position);
    Find(columns, pivot.value.Object(), pivot.value.Where());
    Find(columns, pivot.spread.Object(), pivot.spread.Where());
    const FunctionEntry* entry = FindFunction(LowerAscii(pivot.function.Object()));
    if (entry == nullptr || entry->kind != FunctionKind::kAggregate || entry->most != 1)
        throw MakeError(40510, pivot.position, {"PIVOT by " + pivot.function.Object()});

    QueryText query;
    std::string groups;
    const auto add = [&](const std::string& name, const Operand& item) {
        query.sql += (query.columns.empty() ? "SELECT " : ", ") + Collated(item) + " AS c" +
                     std::to_string(query.columns.size() + 1);
        query.columns.push_back({name, item.type.IsUnknown() ? SqlType::Int() : item.type});
        query.natural.push_back(false);
    };
    for (const SourceColumn& column : columns) {
        if (SameName(column.name, pivot.value.Object()) || SameName(column.name, pivot.spread.Object()))
            continue;
        Operand item = Computed(column.sql, column.type);
        item.column = column.natural;
        groups += (groups.empty() ? " GROUP BY " : ", ") + Collated(item);
        add(column.name, item);
    }
    const SqlType& spread = Find(columns, pivot.spread.Object(), pivot.spread.Where()).type;
    for (const Name& column : pivot.columns) {
        if (!IsValueOf(column.text, spread))
            throw MakeError(8114, column.position, {"nvarchar", spread.Name()});
        ownedExpressions_.push_back(AggregateOf(pivot, column));
        ++foreignDepth_;
        Operand item = Value(*ownedExpressions_.back(), inner);
        --foreignDepth_;
        // Whether there is one row of nothing or none at all is not known.
        if (groups.empty()) {
            item =
                Computed("CASE WHEN count(*) = 0 THEN " + kRefuseCall.Call({QuotedText("PIVOT of no rows")}) +
                             " ELSE " + Render(item) + " END",
                         item.type);
        }
        add(column.text, item);
    }
    query.sql += " FROM " + from + groups;
    return Derived(query.sql, query, pivot.alias.text, {}, scope, pivot.position);
}

std::string Translator::Unpivoted(const UnpivotTable& unpivot, Scope& scope) {
    Scope inner;
    inner.outer = scope.outer;
    const std::string from = SourceText(*unpivot.source, inner);
    const std::vector<SourceColumn> columns = AllColumns(inner, unpivot.position);
    std::string others;
    QueryText query;
    for (const SourceColumn& column : columns) {
        if (IsListed(unpivot.columns, column.name)) continue;
        Operand item = Computed(column.sql, column.type);
        item.column = column.natural;
        query.columns.push_back({column.name, column.type});
        others += Collated(item) + " AS c" + std::to_string(query.columns.size()) + ", ";
    }
    const SqlType type = Find(columns, unpivot.columns.front().text, unpivot.columns.front().position).type;
    const std::size_t value = query.columns.size() + 1;
    query.columns.push_back({unpivot.value.text, type});
    query.columns.push_back({unpivot.name.text, SqlType::NVarChar(128)});
    query.natural.assign(query.columns.size(), false);
    for (const Name& name : unpivot.columns) {
        const SourceColumn& column = Find(columns, name.text, name.position);
        if (!(column.type == type)) throw MakeError(8167, name.position, {name.text});
        Operand item = Computed(column.sql, column.type);
        item.column = column.natural;
        query.sql += (query.sql.empty() ? "" : " UNION ALL ") + ("SELECT " + others) + Collated(item) +
                     " AS c" + std::to_string(value) + ", " + QuotedText(column.name) + " AS c" +
                     std::to_string(value + 1) + " FROM " + from + " WHERE " + column.sql + " IS NOT NULL";
    }
    return Derived(query.sql, query, unpivot.alias.text, {}, scope, unpivot.position);
}

}  // namespace vicenter::tsql::engine
