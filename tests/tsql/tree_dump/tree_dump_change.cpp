#include "tests/tsql/tree_dump/tree_dump.h"
#include "tests/tsql/tree_dump/tree_text.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql {
namespace {

std::string_view OpName(AssignOp op) {
    static constexpr std::string_view kNames[] = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="};
    return kNames[static_cast<std::size_t>(op)];
}

}  // namespace

void TreeDump::Add(const std::vector<Assignment>& assignments) {
    for (const Assignment& assignment : assignments) {
        Line("Assignment", &assignment.position,
             Attribute("variable", assignment.variable) + Attribute("column", Print(assignment.column)) +
                 " " + std::string(OpName(assignment.op)));
        const Deeper deeper(*this);
        Add(*assignment.value);
    }
}

void TreeDump::Add(const MergeClause& clause) {
    static constexpr std::string_view kMatches[] = {" matched", " not matched by target",
                                                    " not matched by source"};
    static constexpr std::string_view kActions[] = {" update", " delete", " insert"};
    Line("when", &clause.position,
         std::string(kMatches[static_cast<std::size_t>(clause.match)]) +
             std::string(kActions[static_cast<std::size_t>(clause.action)]) +
             Attribute("columns", NamesText(clause.columns)) + Flag(clause.defaultValues, "default values"));
    const Deeper deeper(*this);
    Add("and", clause.condition);
    Add(clause.assignments);
    Add("values", clause.values);
}

void TreeDump::AddData(const Statement& statement) {
    const Position* at = &statement.position;
    switch (statement.kind) {
        case StatementKind::kInsert: {
            static constexpr std::string_view kSources[] = {" values", " query", " execute",
                                                            " default values"};
            const auto& insert = As<InsertStatement>(statement);
            Line("InsertStatement", at,
                 " " + Print(insert.table) + Attribute("columns", NamesText(insert.columns)) +
                     Attribute("hints", Joined(insert.hints)) +
                     std::string(kSources[static_cast<std::size_t>(insert.source)]));
            const Deeper deeper(*this);
            Add(insert.with);
            if (insert.top) Add(*insert.top);
            if (insert.output) Add(*insert.output);
            for (const auto& row : insert.rows)
                Add("row", row);
            if (insert.query) Add(*insert.query);
            if (insert.execute) Add(*insert.execute);
            return;
        }
        case StatementKind::kUpdate: {
            const auto& update = As<UpdateStatement>(statement);
            Line("UpdateStatement", at,
                 " " + Print(update.target) + Attribute("hints", Joined(update.hints)) +
                     Attribute("current of", NameText(update.currentOf)));
            const Deeper deeper(*this);
            Add(update.with);
            if (update.top) Add(*update.top);
            Add(update.assignments);
            if (update.output) Add(*update.output);
            Add("from", update.from);
            return Add("where", update.where);
        }
        case StatementKind::kMerge: {
            const auto& merge = As<MergeStatement>(statement);
            Line("MergeStatement", at,
                 " " + Print(merge.target) + Attribute("alias", NameText(merge.alias)) +
                     Attribute("hints", Joined(merge.hints)));
            const Deeper deeper(*this);
            Add(merge.with);
            Add(*merge.source);
            Add("on", merge.on);
            for (const MergeClause& clause : merge.clauses)
                Add(clause);
            return;
        }
        default: {
            const auto& removal = As<DeleteStatement>(statement);
            Line("DeleteStatement", at,
                 Flag(removal.fromKeyword, "from") + " " + Print(removal.target) +
                     Attribute("hints", Joined(removal.hints)) +
                     Attribute("current of", NameText(removal.currentOf)));
            const Deeper deeper(*this);
            Add(removal.with);
            if (removal.top) Add(*removal.top);
            if (removal.output) Add(*removal.output);
            Add("from", removal.from);
            return Add("where", removal.where);
        }
    }
}

}  // namespace vicenter::tsql
