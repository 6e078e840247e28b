// The table that INSERT, UPDATE or DELETE changes, and the rows that they give back.

#include <algorithm>

#include "automation/object.h"
#include "tsql/functions/function.h"
#include "tsql/translate/output_columns.h"
#include "tsql/translate/translator.h"
#include "tsql/translate/view_nesting.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// The place of the target among the sources of FROM: by alias, or by name when it stands there once.
const Source* FindTarget(const ObjectName& target, const Scope& scope) {
    for (const Source& source : scope.sources) {
        if (target.parts.size() == 1 && SameName(source.exposedName, target.Object())) return &source;
    }
    for (const Source& source : scope.sources) {
        if (source.table != nullptr && SameName(source.tableName, target.Object())) return &source;
    }
    return nullptr;
}

// Its rows are made of several of the table's.
bool IsDistinctOrGrouped(const SelectBody& select) {
    bool aggregates = false;
    for (const SelectItem& item : select.items)
        aggregates = aggregates || (item.expression && HasAggregate(*item.expression));
    return aggregates || select.distinct || !select.groupBy.empty() || !select.grouping.empty() ||
           select.having != nullptr;
}

}  // namespace

void Translator::NoteTemporary(const TableInfo& table) {
    translation_.temporaries.push_back({table.name, table.definition, table.id});
}

void Translator::Begin(const TableInfo& table, const char* operation) {
    translation_.table = table.name;
    translation_.operation = operation;
    translation_.changesTemporary = table.temporary;
    // A later table of the same name is another one.
    if (table.temporary) NoteTemporary(table);
}

// The table behind a view of plain columns of one table is changed through it.
void Translator::RefuseView(const ObjectName& name, const Query& query) {
    const SelectBody* select = query.Select();
    if (select != nullptr && IsDistinctOrGrouped(*select))
        throw MakeError(4403, name.Where(), {name.Object()});
    const bool plain = select != nullptr;
    const bool single = plain && select->from.size() == 1 && select->from.front()->kind == SourceKind::kTable;
    if (plain && !single && !select->from.empty()) throw MakeError(4405, name.Where(), {name.Object()});
    bool derived = !single;
    if (single) {
        for (const SelectItem& item : select->items) {
            derived = derived || (item.kind != SelectItemKind::kStar &&
                                  (!item.expression || item.expression->kind != ExprKind::kColumn));
        }
    }
    if (derived) throw MakeError(4406, name.Where(), {name.Object()});
    throw MakeError(40510, name.Where(), {"INSERT of view " + name.Object()});
}

const TableInfo& Translator::TargetTable(const ObjectName& name) {
    const TableInfo* table = FindTable(name.Object());
    if (table != nullptr) return *table;
    if (name.Object().front() == '@') throw MakeError(1087, name.Where(), {name.Object()});
    if (const CreateViewStatement* view = context_.ViewDefinition(name.Object()))
        RefuseView(name, *view->query);
    throw MakeError(208, name.Where(), {name.Text()});
}

// The columns of a view by their names there and in the table behind it; without the latter what is derived.
Translator::ColumnNames Translator::ColumnsBehind(const ObjectName& name, const CreateViewStatement& view,
                                                  const TableInfo*& table) {
    const SelectBody* select = view.query->Select();
    if (select != nullptr && IsDistinctOrGrouped(*select))
        throw MakeError(4403, name.Where(), {name.Object()});
    if (select != nullptr && select->from.size() == 1 && select->from.front()->kind == SourceKind::kJoin)
        throw MakeError(4405, name.Where(), {name.Object()});
    const bool plain = select != nullptr && view.query->with.empty() && select->from.size() == 1 &&
                       select->from.front()->kind == SourceKind::kTable;
    if (!plain) RefuseView(name, *view.query);
    if (view.withCheckOption && translation_.checkedView.empty()) translation_.checkedView = name.Object();
    const ObjectName& source = As<TableRef>(*select->from.front()).name;
    ColumnNames below;
    if (const TableInfo* found = FindTable(source.Object())) {
        table = found;
        for (const ColumnInfo& column : found->columns)
            below.emplace_back(column.name, column.name);
    } else if (const CreateViewStatement* inner = context_.ViewDefinition(source.Object())) {
        if (++viewDepth_ > kViewNesting) throw MakeError(4413, name.Where(), {name.Object()});
        below = ColumnsBehind(source, *inner, table);
        --viewDepth_;
    } else {
        throw MakeError(208, name.Where(), {source.Text()});
    }
    ColumnNames columns;
    for (const SelectItem& item : select->items) {
        if (item.kind == SelectItemKind::kStar) {
            columns.insert(columns.end(), below.begin(), below.end());
            continue;
        }
        const auto* column = item.expression ? TryAs<ColumnExpr>(item.expression.get()) : nullptr;
        std::string behind;
        for (const auto& [own, known] : below) {
            if (column != nullptr && SameName(own, column->name.Object())) behind = known;
        }
        columns.emplace_back(
            item.alias.IsEmpty() && column != nullptr ? column->name.Object() : item.alias.text, behind);
    }
    for (std::size_t i = 0; i < columns.size() && i < view.columns.size(); ++i)
        columns[i].first = view.columns[i].text;
    return columns;
}

const TableInfo& Translator::FilledTable(const ObjectName& name, std::vector<Name>& columns) {
    const CreateViewStatement* view =
        FindTable(name.Object()) == nullptr ? context_.ViewDefinition(name.Object()) : nullptr;
    if (view == nullptr) return TargetTable(name);
    const TableInfo* table = nullptr;
    const ColumnNames known = ColumnsBehind(name, *view, table);
    std::vector<Name> behind;
    const auto add = [&](const std::string& column, Position where) {
        if (column.empty()) throw MakeError(4406, where, {name.Object()});
        behind.push_back(Name{column, where, false});
    };
    for (const Name& column : columns) {
        const auto found = std::ranges::find_if(
            known, [&](const auto& entry) { return SameName(entry.first, column.text); });
        if (found == known.end()) throw MakeError(207, column.position, {column.text});
        add(found->second, column.position);
    }
    if (columns.empty()) {
        for (const auto& [own, column] : known) {
            const ColumnInfo* behindIt = table->FindColumn(column);
            const bool takesNone =
                behindIt != nullptr && (behindIt->identity || !behindIt->computedText.empty());
            if (!takesNone) add(column, name.Where());
        }
    }
    columns = std::move(behind);
    // For OUTPUT, which has the rows by the names of the view.
    changed_.name = &name;
    changed_.table = table;
    changed_.columns = known;
    return *table;
}

Translation Translator::RowsBesideView(const ObjectName& view) {
    changed_.name = &view;
    changed_.isOpen = true;
    Scope scope;
    TableRef source(view.Where());
    source.name = view;
    const std::string from = Table(source, scope);
    changed_.isOpen = false;
    std::string row;
    for (const SourceColumn& column : scope.sources.front().columns) {
        if (column.name == kRowNumberName) row = column.sql;
    }
    Operand numbers = System("", SqlType::NVarChar(kMaxLength));
    numbers.pending->source = Parameter::Source::kRow;
    numbers.pending->ordinal = 0;
    translation_.columns.push_back({"", SqlType::Int()});
    return Finished("SELECT 1 FROM json_each(" + Render(numbers) + ") WHERE value NOT IN (SELECT " + row +
                    " FROM " + from + ")");
}

// What UPDATE or DELETE changes: one of the sources of its FROM, or a table that is added to them.
const Source& Translator::ChangedSource(const ObjectName& name, const std::vector<TableSourcePtr>& sources,
                                        Position where, Scope& scope, std::string& from) {
    changed_.name = &name;
    changed_.isOpen = true;
    from = From(sources, scope);
    const Source* target = FindTarget(name, scope);
    const CommonTable* common =
        target == nullptr && name.parts.size() == 1 ? FindCommonTable(name.Object()) : nullptr;
    if (common != nullptr) {
        const std::string text = CommonTableText(*common, name.Object(), scope, where);
        from += (from.empty() ? " FROM " : ", ") + text;
        target = &scope.sources.back();
    }
    if (target == nullptr && FindTable(name.Object()) == nullptr &&
        context_.ViewDefinition(name.Object()) != nullptr) {
        TableRef view(name.Where());
        view.name = name;
        from += (from.empty() ? " FROM " : ", ") + Table(view, scope);
        target = &scope.sources.back();
    }
    changed_.isOpen = false;
    if (target == nullptr) {
        const TableInfo& named = TargetTable(name);
        scope.sources.push_back(SourceOf(named, named.name));
        target = &scope.sources.back();
        from += (from.empty() ? " FROM " : ", ") + named.Sql() + " AS " + target->alias;
    }
    if (target->table == nullptr) {
        if (changed_.table != nullptr) return SourceBehind(*target, name, where, from);
        throw MakeError(40510, where, {"UPDATE and DELETE of query " + name.Text()});
    }
    return *target;
}

std::string Translator::ChangeLimit(const TopClause& top, const std::string& rows, const std::string& alias) {
    Scope none;
    if (!top.percent) return " LIMIT " + RowCount(*top.count, none, RowLimit::kTop);
    return " LIMIT " + kPercentCall.Call({"(SELECT count(DISTINCT " + alias + "._rowid_)" + rows + ")",
                                          RenderAs(Value(*top.count, none), SqlType::Float())});
}

bool Translator::IsChanged(const std::string& exposed) const {
    return changed_.isOpen && changed_.name->parts.size() == 1 && SameName(changed_.name->Object(), exposed);
}

// Rows of one table, each once: what the server changes through a query, too.
QueryText Translator::ChangedQuery(const Query& query, const std::string& exposed,
                                   const std::vector<Name>& columns) {
    const SelectBody* select = query.Select();
    if (select != nullptr && IsDistinctOrGrouped(*select)) throw MakeError(4403, query.position, {exposed});
    const bool plain =
        select != nullptr && select->from.size() == 1 && select->from.front()->kind == SourceKind::kTable;
    const bool nested = changed_.levels++ > 0;
    if (!plain && (select == nullptr || select->from.empty() || nested))
        throw MakeError(40510, query.position, {"UPDATE and DELETE of query " + exposed});
    if (!plain && !translation_.checkedView.empty())
        throw MakeError(40510, query.position, {"UPDATE of join " + exposed + " WITH CHECK OPTION"});
    changed_.wantsRow = true;
    changed_.inner = plain ? &As<TableRef>(*select->from.front()) : nullptr;
    changed_.renames = plain ? nullptr : &columns;
    QueryText text = QueryOf(query, nullptr, false);
    for (std::size_t i = 0; i < columns.size() && i < changed_.columns.size(); ++i)
        changed_.columns[i].first = columns[i].text;
    return text;
}

namespace {

// What tells a row from one that has got its number after it: a key without NULL, or all that is stored;
// nothing where the number is the key.
std::vector<const ColumnInfo*> IdentifyingColumns(const TableInfo& table) {
    std::vector<const ColumnInfo*> columns;
    for (const KeyInfo& key : table.keys) {
        if (!key.IsUnique()) continue;
        columns.clear();
        for (const std::string& name : key.columns)
            columns.push_back(table.FindColumn(name));
        if (key.kind == KeyKind::kPrimary && table.IsRowNumber(key.columns.front())) return {};
        if (std::none_of(columns.begin(), columns.end(),
                         [](const ColumnInfo* column) { return column->nullable; }))
            return columns;
    }
    columns.clear();
    for (const ColumnInfo& column : table.columns) {
        if (column.computedText.empty()) columns.push_back(&column);
    }
    return columns;
}

}  // namespace

// The table that has the columns that UPDATE names; error 4405 where they are of several, and for DELETE.
const Source& Translator::ChangedOfJoin(const Scope& scope, const SelectParts& parts) const {
    const Source* chosen = nullptr;
    bool isOfSeveral = changed_.assigned.empty();
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        const bool isRenamed = changed_.renames != nullptr && i < changed_.renames->size();
        const std::string& name = isRenamed ? (*changed_.renames)[i].text : parts.names[i];
        const bool isAssigned = std::ranges::any_of(
            changed_.assigned, [&](const std::string& other) { return SameName(other, name); });
        for (const Source& source : scope.sources) {
            const bool isOwn = std::ranges::any_of(source.columns, [&](const SourceColumn& column) {
                return isAssigned && column.sql == parts.items[i].sql;
            });
            if (!isOwn) continue;
            isOfSeveral = isOfSeveral || (chosen != nullptr && chosen != &source);
            chosen = &source;
        }
    }
    if (isOfSeveral) throw MakeError(4405, changed_.name->Where(), {changed_.name->Object()});
    return chosen != nullptr ? *chosen : scope.sources.front();
}

// Of a query over a query the number is the one that comes from below.
void Translator::AddRowNumber(const SelectBody& select, const Scope& scope, SelectParts& parts) {
    const Source& source = scope.sources.size() > 1 ? ChangedOfJoin(scope, parts) : scope.sources.front();
    const auto below = std::ranges::find_if(
        source.columns, [](const SourceColumn& column) { return column.name == kRowNumberName; });
    const bool isBelow = below != source.columns.end();
    const bool none = scope.grouped || (source.table == nullptr && !isBelow);
    if (none && changed_.isCursor) return;
    if (none)
        throw MakeError(40510, select.position, {"UPDATE and DELETE of query " + changed_.name->Text()});
    const auto columnsBelow = std::exchange(changed_.columns, {});
    if (!isBelow) changed_.table = source.table;
    const auto behindOf = [&](const SourceColumn& column) {
        if (!isBelow) return column.name;
        const auto found = std::ranges::find_if(
            columnsBelow, [&](const auto& entry) { return SameName(entry.first, column.name); });
        return found == columnsBelow.end() ? std::string() : found->second;
    };
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        std::string behind;
        for (const SourceColumn& column : source.columns) {
            if (parts.items[i].sql == column.sql) behind = behindOf(column);
        }
        changed_.columns.emplace_back(parts.names[i], behind);
    }
    if (isBelow) {
        parts.items.push_back(Staged(scope, Computed(below->sql, SqlType::Of(TypeKind::kBigInt))));
        parts.names.emplace_back(kRowNumberName);
        return;
    }
    parts.items.push_back(Staged(scope, Computed(source.alias + "._rowid_", SqlType::Of(TypeKind::kBigInt))));
    parts.names.emplace_back(kRowNumberName);
    if (!changed_.isCursor) return;
    // The number may be another row's later on, unless it is the key itself.
    for (const ColumnInfo* column : IdentifyingColumns(*source.table)) {
        parts.items.push_back(
            Staged(scope, Computed(source.alias + "." + Quoted(column->name), column->type)));
        parts.names.emplace_back();
        translation_.rowKey.push_back({column->name, column->type});
    }
}

Translation Translator::CursorQuery(const Query& query) {
    const SelectBody* select = query.Select();
    const bool plain = select != nullptr && !IsDistinctOrGrouped(*select) && select->from.size() == 1 &&
                       select->from.front()->kind == SourceKind::kTable;
    if (!plain) return Select(query);
    changed_.isCursor = true;
    changed_.wantsRow = true;
    QueryText text = QueryOf(query, nullptr, true);
    if (changed_.table != nullptr) {
        translation_.rowsOf = changed_.table->id;
        text.columns.resize(text.columns.size() - 1 - translation_.rowKey.size());
    }
    translation_.columns = std::move(text.columns);
    return Finished(text.sql);
}

// WHERE CURRENT OF: the row's number comes from the cursor when the statement runs.
std::string Translator::CurrentRow(const Name& cursor, const std::string& alias) {
    if (changed_.table != nullptr) throw MakeError(40510, cursor.position, {"WHERE CURRENT OF … of a query"});
    return alias + "._rowid_ = " + Render(System("current row", SqlType::Of(TypeKind::kBigInt)));
}

// The table itself stands beside its query, row by row, under a name of its own.
const Source& Translator::SourceBehind(const Source& query, const ObjectName& name, Position where,
                                       std::string& from) {
    std::string row;
    for (const SourceColumn& column : query.columns) {
        if (column.name == kRowNumberName) row = column.sql;
    }
    if (row.empty()) throw MakeError(40510, where, {"UPDATE and DELETE of query " + name.Text()});
    changed_.source = SourceOf(*changed_.table, "ts$behind");
    from += " JOIN " + changed_.table->Sql() + " AS " + changed_.source.alias + " ON " +
            changed_.source.alias + "._rowid_ = " + row;
    return changed_.source;
}

// OUTPUT that is worked out of whole rows has them by the names of the table.
void Translator::CheckOutputBehind(const OutputClause& output) const {
    if (changed_.table == nullptr) return;
    const std::vector<ColumnInfo>& columns = changed_.table->columns;
    const bool isWhole =
        std::equal(columns.begin(), columns.end(), changed_.columns.begin(), changed_.columns.end(),
                   [](const ColumnInfo& column, const auto& entry) {
                       return SameName(column.name, entry.first) && SameName(column.name, entry.second);
                   });
    if (isWhole) return;
    VisitTold(output, [&](const std::string& qualifier, const std::string& name, Position where) {
        if (!SameName(qualifier, "inserted") && !SameName(qualifier, "deleted")) return;
        const auto found = std::ranges::find_if(
            changed_.columns, [&](const auto& entry) { return SameName(entry.first, name); });
        if (found == changed_.columns.end() && !name.empty()) throw MakeError(207, where, {name});
        if (name.empty() || !SameName(found->first, found->second))
            throw MakeError(40510, where, {"OUTPUT of query " + changed_.name->Text()});
    });
}

std::string Translator::BehindName(const std::string& name, Position where) const {
    if (changed_.table == nullptr) return name;
    for (const auto& [own, behind] : changed_.columns) {
        if (!SameName(own, name)) continue;
        const ColumnInfo* column = changed_.table->FindColumn(behind);
        if (column == nullptr || !column->computedText.empty())
            throw MakeError(4406, where, {changed_.name->Text()});
        return behind;
    }
    throw MakeError(207, where, {name});
}

}  // namespace vicenter::tsql::engine
