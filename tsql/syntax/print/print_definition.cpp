#include "tsql/syntax/print/printer_core.h"

namespace vicenter::tsql {

void Printer::PutClustered(const std::optional<bool>& clustered) {
    if (clustered) Text(*clustered ? " clustered" : " nonclustered");
}

void Printer::PutIndexColumns(const std::vector<IndexColumn>& columns) {
    Text(" (");
    for (const IndexColumn& column : columns) {
        if (&column != &columns.front()) Text(", ");
        Put(column.name);
        if (column.descending) Text(" desc");
    }
    Text(")");
}

// A constraint of a column names no columns, but for keys that were written with them.
void Printer::Put(const Constraint& constraint, bool ofColumn) {
    if (!constraint.name.IsEmpty()) {
        Text("constraint ");
        Put(constraint.name);
        Text(" ");
    }
    switch (constraint.kind) {
        case ConstraintKind::kPrimaryKey:
        case ConstraintKind::kUnique:
            Text(constraint.kind == ConstraintKind::kPrimaryKey ? "primary key" : "unique");
            PutClustered(constraint.clustered);
            PutIndexColumns(constraint.columns);
            break;
        case ConstraintKind::kCheck:
            Text("check (");
            Put(*constraint.expression);
            Text(")");
            break;
        case ConstraintKind::kDefault:
            Text("default ");
            Put(*constraint.expression);
            if (!ofColumn) {
                Text(" for ");
                Put(constraint.columns.front().name);
            }
            if (constraint.withValues) Text(" with values");
            break;
        case ConstraintKind::kForeignKey: {
            Text("foreign key");
            PutIndexColumns(constraint.columns);
            Text(" references ");
            Put(constraint.referencedTable);
            PutNameList(constraint.referencedColumns);
            if (!constraint.onDelete.empty()) Text(" on delete " + constraint.onDelete);
            if (!constraint.onUpdate.empty()) Text(" on update " + constraint.onUpdate);
            break;
        }
    }
}

void Printer::Put(const ColumnDefinition& column) {
    Put(column.name);
    if (column.computedAs) {
        Text(" as (");
        Put(*column.computedAs);
        Text(column.persisted ? ") persisted" : ")");
    } else {
        Text(" ");
        Put(column.type);
    }
    if (!column.collation.IsEmpty()) {
        Text(" collate ");
        Put(column.collation);
    }
    if (column.identity) {
        Text(" identity(" + std::to_string(column.identity->seed) + ", " +
             std::to_string(column.identity->increment) + ")");
    }
    if (column.nullable) Text(*column.nullable ? " null" : " not null");
    for (const Constraint& constraint : column.constraints) {
        Text(" ");
        Put(constraint, true);
    }
}

void Printer::Put(const TableDefinition& definition) {
    Text("(");
    ++indent_;
    bool first = true;
    const auto separate = [&] {
        if (!first) Text(",");
        first = false;
        NewLine();
    };
    for (const ColumnDefinition& column : definition.columns) {
        separate();
        Put(column);
    }
    for (const Constraint& constraint : definition.constraints) {
        separate();
        Put(constraint, false);
    }
    --indent_;
    NewLine();
    Text(")");
}

void Printer::Put(const CreateTableStatement& create) {
    Text("create table ");
    Put(create.table);
    Text(" ");
    Put(create.definition);
}

void Printer::Put(const AlterTableStatement& alter) {
    Text("alter table ");
    Put(alter.table);
    if (alter.withCheck) Text(*alter.withCheck ? " with check" : " with nocheck");
    const auto names = [&] {
        if (alter.ifExists) Text("if exists ");
        PutNames(alter.names);
    };
    switch (alter.action) {
        case AlterTableAction::kAdd: {
            Text(" add ");
            bool first = true;
            for (const ColumnDefinition& column : alter.definition.columns) {
                if (!first) Text(", ");
                first = false;
                Put(column);
            }
            for (const Constraint& constraint : alter.definition.constraints) {
                if (!first) Text(", ");
                first = false;
                Put(constraint, false);
            }
            break;
        }
        case AlterTableAction::kAlterColumn:
            Text(" alter column ");
            Put(alter.definition.columns.front());
            break;
        case AlterTableAction::kDropColumn:
            Text(" drop column ");
            names();
            break;
        case AlterTableAction::kDropConstraint:
            Text(" drop constraint ");
            names();
            break;
        case AlterTableAction::kCheckConstraint:
        case AlterTableAction::kNoCheckConstraint:
            Text(alter.action == AlterTableAction::kCheckConstraint ? " check constraint "
                                                                    : " nocheck constraint ");
            if (alter.all) {
                Text("all");
            } else {
                names();
            }
            break;
    }
}

void Printer::Put(const CreateIndexStatement& create) {
    Text(create.unique ? "create unique" : "create");
    PutClustered(create.clustered);
    Text(" index ");
    Put(create.name);
    Text(" on ");
    Put(create.table);
    PutIndexColumns(create.columns);
    if (!create.include.empty()) {
        Text(" include");
        PutNameList(create.include);
    }
    if (create.where) {
        Text(" where ");
        Put(*create.where);
    }
}

void Printer::Put(const CreateViewStatement& create) {
    Text(create.alter ? "alter view " : create.createOrAlter ? "create or alter view " : "create view ");
    Put(create.name);
    PutNameList(create.columns);
    for (const std::string& option : create.options) {
        Text(&option == &create.options.front() ? " with " : ", ");
        Text(option);
    }
    Text(" as");
    NewLine();
    Put(*create.query);
    if (create.withCheckOption) Text(" with check option");
}

void Printer::Put(const CreateProcedureStatement& create) {
    Text(create.alter           ? "alter procedure "
         : create.createOrAlter ? "create or alter procedure "
                                : "create procedure ");
    Put(create.name);
    for (const ProcedureParameter& parameter : create.parameters) {
        Text(&parameter == &create.parameters.front() ? " " : ", ");
        Text(parameter.name + " ");
        if (parameter.cursor) {
            Text("cursor varying");
        } else {
            Put(parameter.type);
        }
        if (parameter.defaultValue) {
            Text(" = ");
            Put(*parameter.defaultValue);
        }
        if (parameter.output) Text(" output");
        if (parameter.readOnly) Text(" readonly");
    }
    for (const std::string& option : create.options) {
        Text(&option == &create.options.front() ? " with " : ", ");
        Text(option);
    }
    Text(" as");
    PutStatements(create.body);
}

void Printer::Put(const DropStatement& drop) {
    static constexpr std::string_view kObjects[] = {"table",     "index",    "view",
                                                    "procedure", "function", "trigger"};
    Text("drop ");
    Text(kObjects[static_cast<std::size_t>(drop.object)]);
    if (drop.ifExists) Text(" if exists");
    for (std::size_t i = 0; i < drop.names.size(); ++i) {
        Text(i == 0 ? " " : ", ");
        Put(drop.names[i]);
        if (i < drop.onTables.size() && !drop.onTables[i].IsEmpty()) {
            Text(" on ");
            Put(drop.onTables[i]);
        }
    }
}

}  // namespace vicenter::tsql
