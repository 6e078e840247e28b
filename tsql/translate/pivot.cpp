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
    const auto add = [&](const std::string& name, const Operand& item, std::int64_t weight) {
        query.sql += (query.columns.empty() ? "SELECT " : ", ") + Collated(item) + " AS c" +
                     std::to_string(query.columns.size() + 1);
        query.columns.push_back({name, item.type.IsUnknown() ? SqlType::Int() : item.type});
        query.natural.push_back(false);
        query.weights.push_back(weight);
    };
    for (const SourceColumn& column : columns) {
        if (SameName(column.name, pivot.value.Object()) || SameName(column.name, pivot.spread.Object()))
            continue;
        Operand item = Computed(column.sql, column.type);
        item.column = column.natural;
        groups += (groups.empty() ? " GROUP BY " : ", ") + Collated(item);
        add(column.name, item, column.weight);
    }
    const SqlType& spread = Find(columns, pivot.spread.Object(), pivot.spread.Where()).type;
    for (const Name& column : pivot.columns) {
        if (!IsValueOf(column.text, spread))
            throw MakeError(8114, column.position, {"nvarchar", spread.Name()});
        ownedExpressions_.push_back(AggregateOf(pivot, column));
        const std::int64_t before = weight_;
        ++foreignDepth_;
        const Operand item = Value(*ownedExpressions_.back(), inner);
        --foreignDepth_;
        add(column.text, item, weight_ - before + static_cast<std::int64_t>(item.sql.size()));
    }
    query.sql += " FROM " + from + groups;
    return Derived(query.sql, query, pivot.alias.text, {}, scope, pivot.position);
}

// Each row beside the numbers of the listed columns, and of those the ones that are not NULL.
std::string Translator::Unpivoted(const UnpivotTable& unpivot, Scope& scope) {
    Scope inner;
    inner.outer = scope.outer;
    const std::string from = SourceText(*unpivot.source, inner);
    const std::vector<SourceColumn> columns = AllColumns(inner, unpivot.position);
    const std::string number = "\"pivot$" + std::to_string(++aliasNumber_) + "\"";
    QueryText query;
    const auto add = [&](const std::string& name, const SqlType& type, const std::string& item,
                         std::int64_t weight) {
        query.sql += (query.columns.empty() ? "SELECT " : ", ") + item + " AS c" +
                     std::to_string(query.columns.size() + 1);
        query.columns.push_back({name, type});
        query.natural.push_back(false);
        query.weights.push_back(weight);
    };
    for (const SourceColumn& column : columns) {
        if (IsListed(unpivot.columns, column.name)) continue;
        Operand item = Computed(column.sql, column.type);
        item.column = column.natural;
        add(column.name, column.type, Collated(item), column.weight);
    }
    const SqlType type = Find(columns, unpivot.columns.front().text, unpivot.columns.front().position).type;
    std::string values = "CASE " + number + ".column1";
    std::string names = values;
    std::string numbers;
    std::int64_t weight = 0;
    for (std::size_t i = 0; i < unpivot.columns.size(); ++i) {
        const Name& name = unpivot.columns[i];
        const SourceColumn& column = Find(columns, name.text, name.position);
        if (!(column.type == type)) throw MakeError(8167, name.position, {name.text});
        const std::string when = " WHEN " + std::to_string(i) + " THEN ";
        values += when + column.sql;
        names += when + QuotedText(column.name);
        numbers += (i == 0 ? "(" : ", (") + std::to_string(i) + ")";
        weight += column.weight;
    }
    const std::size_t value = query.columns.size() + 1;
    add(unpivot.value.text, type, Collated(Computed(values + " END", type)), 2 * weight);
    const SqlType nameType = SqlType::NVarChar(128);
    add(unpivot.name.text, nameType, Collated(Computed(names + " END", nameType)), 2);
    query.sql = "SELECT * FROM (" + query.sql + " FROM " + from + ", (VALUES " + numbers + ") AS " + number +
                ") WHERE c" + std::to_string(value) + " IS NOT NULL";
    return Derived(query.sql, query, unpivot.alias.text, {}, scope, unpivot.position);
}

}  // namespace vicenter::tsql::engine
