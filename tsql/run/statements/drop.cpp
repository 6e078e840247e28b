#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/dependents.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

const char* Word(DropKind kind) {
    switch (kind) {
        case DropKind::kTable:
            return "table";
        case DropKind::kIndex:
            return "index";
        case DropKind::kView:
            return "view";
        case DropKind::kProcedure:
            return "procedure";
        case DropKind::kFunction:
            return "function";
        case DropKind::kTrigger:
            return "trigger";
    }
    return "";
}

// The constraint that an index stands for; null where it may go.
const char* UseOf(const Catalog& catalog, const TableInfo& table, const KeyInfo& key) {
    if (key.kind == KeyKind::kPrimary) return "PRIMARY KEY";
    if (key.kind == KeyKind::kUnique) return "UNIQUE KEY";
    return ReferenceTo(catalog, table, key).table != nullptr ? "FOREIGN KEY" : nullptr;
}

}  // namespace

void Executor::Drop(const DropStatement& statement) {
    for (std::size_t i = 0; i < statement.names.size(); ++i) {
        const ObjectName& name = statement.names[i];
        const bool temporary = name.Object().front() == '#';
        const auto missing = [&] {
            if (statement.ifExists) return;
            throw MakeError(3701, name.Where(), {"drop", Word(statement.object), name.Text()});
        };
        const auto refuseBound = [&](const char* operation) {
            if (const ModuleInfo* view = BoundView(catalog_, programs_, name.Object()))
                throw MakeError(3729, name.Where(), {operation, name.Object(), view->name});
        };
        transactions_.Define(temporary, [&] {
            switch (statement.object) {
                case DropKind::kTable: {
                    const TableInfo* table = FindTable(name.Object());
                    if (table == nullptr) return missing();
                    for (const TableInfo* other : catalog_.Tables()) {
                        for (const ForeignKeyInfo& key : other->foreignKeys) {
                            if (other != table && SameName(key.referencedTable, table->name)) {
                                throw MakeError(3726, name.Where(), {table->name});
                            }
                        }
                    }
                    if (!temporary) refuseBound("DROP TABLE");
                    catalog_.DropTable(*table);
                    const auto outer = frame_->shadowed.find(LowerAscii(name.Object()));
                    if (outer != frame_->shadowed.end()) BringBack(outer->second);
                    break;
                }
                case DropKind::kIndex: {
                    const bool onTable = i < statement.onTables.size();
                    const std::string owner = onTable ? statement.onTables[i].Object() : name.Schema();
                    const TableInfo* table = FindTable(owner);
                    if (table == nullptr) return missing();
                    for (const KeyInfo& key : table->keys) {
                        if (!SameName(key.name, name.Object())) continue;
                        if (const char* use = UseOf(catalog_, *table, key))
                            throw MakeError(3723, name.Where(), {table->name + "." + key.name, use});
                        return catalog_.DropIndex(*table, key.name);
                    }
                    return missing();
                }
                case DropKind::kView:
                    if (catalog_.FindView(name.Object()) == nullptr) return missing();
                    refuseBound("DROP VIEW");
                    catalog_.DropModule('V', name.Object());
                    break;
                case DropKind::kProcedure:
                    if (catalog_.FindProcedure(name.Object()) == nullptr) return missing();
                    catalog_.DropModule('P', name.Object());
                    break;
                case DropKind::kFunction:
                case DropKind::kTrigger:
                    return missing();
            }
        });
    }
}

}  // namespace vicenter::tsql::engine
