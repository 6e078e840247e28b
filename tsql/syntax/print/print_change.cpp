// INSERT, UPDATE, DELETE and MERGE.

#include "tsql/syntax/print/printer_core.h"

namespace vicenter::tsql {

void Printer::Put(const InsertStatement& insert) {
    PutWith(insert.with);
    Text("insert ");
    if (insert.top) Put(*insert.top);
    Text("into ");
    Put(insert.table);
    PutHints(insert.hints);
    PutNameList(insert.columns);
    if (insert.output) Put(*insert.output);
    switch (insert.source) {
        case InsertSource::kDefaultValues:
            Text(" default values");
            break;
        case InsertSource::kQuery:
            Text(" ");
            Put(*insert.query);
            break;
        case InsertSource::kExecute:
            Text(" ");
            Put(*insert.execute);
            break;
        case InsertSource::kValues:
            for (const auto& row : insert.rows) {
                Text(&row == &insert.rows.front() ? " values (" : ", (");
                PutList(row);
                Text(")");
            }
            break;
    }
}

void Printer::Put(const UpdateStatement& update) {
    PutWith(update.with);
    Text("update ");
    if (update.top) Put(*update.top);
    Put(update.target);
    PutHints(update.hints);
    PutAssignments(update.assignments);
    if (update.output) Put(*update.output);
    PutFrom(update.from);
    if (update.where) {
        Text(" where ");
        Put(*update.where);
    } else if (!update.currentOf.IsEmpty()) {
        Text(" where current of ");
        Put(update.currentOf);
    }
}

void Printer::PutAssignments(const std::vector<Assignment>& assignments) {
    for (const Assignment& assignment : assignments) {
        Text(&assignment == &assignments.front() ? " set " : ", ");
        Text(assignment.variable);
        if (!assignment.column.IsEmpty()) {
            if (!assignment.variable.empty()) Text(" = ");
            Put(assignment.column);
        }
        Text(AssignText(assignment.op));
        Put(*assignment.value);
    }
}

void Printer::Put(const MergeStatement& merge) {
    PutWith(merge.with);
    Text("merge ");
    if (merge.top) Put(*merge.top);
    Text("into ");
    Put(merge.target);
    PutHints(merge.hints);
    if (!merge.alias.IsEmpty()) {
        Text(" as ");
        Put(merge.alias);
    }
    Text(" using ");
    Put(*merge.source);
    Text(" on ");
    Put(*merge.on);
    for (const MergeClause& clause : merge.clauses)
        Put(clause);
    if (merge.output) Put(*merge.output);
    Text(";");  // belongs to the statement
}

void Printer::Put(const MergeClause& clause) {
    switch (clause.match) {
        case MergeMatch::kMatched:
            Text(" when matched");
            break;
        case MergeMatch::kNotMatchedByTarget:
            Text(" when not matched by target");
            break;
        case MergeMatch::kNotMatchedBySource:
            Text(" when not matched by source");
            break;
    }
    if (clause.condition) {
        Text(" and ");
        Put(*clause.condition);
    }
    Text(" then ");
    switch (clause.action) {
        case MergeAction::kUpdate:
            Text("update");
            return PutAssignments(clause.assignments);
        case MergeAction::kDelete:
            return Text("delete");
        case MergeAction::kInsert:
            break;
    }
    Text("insert");
    PutNameList(clause.columns);
    if (clause.defaultValues) return Text(" default values");
    Text(" values (");
    PutList(clause.values);
    Text(")");
}

void Printer::Put(const DeleteStatement& statement) {
    PutWith(statement.with);
    Text("delete ");
    if (statement.top) Put(*statement.top);
    if (statement.fromKeyword) Text("from ");
    Put(statement.target);
    PutHints(statement.hints);
    if (statement.output) Put(*statement.output);
    PutFrom(statement.from);
    if (statement.where) {
        Text(" where ");
        Put(*statement.where);
    } else if (!statement.currentOf.IsEmpty()) {
        Text(" where current of ");
        Put(statement.currentOf);
    }
}

}  // namespace vicenter::tsql
