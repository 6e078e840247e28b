// sp_rename: tables, columns, indexes, constraints, views and procedures.

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/dependents.h"
#include "tsql/run/executor.h"
#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

using automation::SameName;

const SystemProcedure kSpRename = {"sp_rename", R"(create procedure sp_rename
    @objname nvarchar(1035), @newname sysname, @objtype varchar(13) = null
as
return 0)",
                                   true};

namespace {

// "dbo.table.column", [a].[b]: the parts without their brackets.
std::vector<std::string> PartsOf(const std::string& name) {
    std::vector<std::string> parts(1);
    char close = 0;
    for (const char c : name) {
        if (close != 0) {
            if (c == close) {
                close = 0;
            } else {
                parts.back() += c;
            }
        } else if (c == '[' || c == '"') {
            close = c == '[' ? ']' : '"';
        } else if (c == '.') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

}  // namespace

void Executor::Rename() {
    const auto given = [&](const char* name) {
        const Value& value = frame_->variables.at(name).value;
        return value.IsNull() ? std::string() : value.Text();
    };
    const std::string name = given("@objname");
    const std::string fresh = given("@newname");
    const std::string kind = LowerAscii(given("@objtype"));
    if (fresh.empty() || name.empty()) throw MakeError(15225, {}, {name, "accountset", kind});
    if (kind == "database" || kind == "userdatatype") throw MakeError(40510, {}, {"sp_rename of a " + kind});
    std::vector<std::string> parts = PartsOf(name);
    const std::string last = parts.back();
    const std::string before = parts.size() > 1 ? parts[parts.size() - 2] : std::string();
    // What a view WITH SCHEMABINDING names.
    const auto refuseBound = [&](std::string_view object, std::string_view column) {
        if (BoundView(catalog_, programs_, object, column) != nullptr) throw MakeError(15336, {}, {name});
    };
    transactions_.Define(false, [&] {
        const TableInfo* owner = before.empty() ? nullptr : catalog_.FindTable(before);
        const bool isColumn = owner != nullptr && owner->FindColumn(last) != nullptr;
        const auto isIndex = [&](const TableInfo& table) {
            for (const KeyInfo& key : table.keys) {
                if (SameName(key.name, last)) return true;
            }
            return false;
        };
        if (owner != nullptr && owner->temporary)
            throw MakeError(40510, {}, {"sp_rename of a temporary table"});
        if (kind == "column" || (kind.empty() && isColumn)) {
            if (!isColumn) throw MakeError(15248, {}, {kind.empty() ? "(null)" : kind});
            refuseBound(owner->name, last);
            return RenameColumn(*owner, last, fresh);
        }
        if (kind == "index" || (kind.empty() && owner != nullptr && isIndex(*owner))) {
            if (owner == nullptr || !isIndex(*owner))
                throw MakeError(15248, {}, {kind.empty() ? "(null)" : kind});
            return catalog_.RenameConstraint(*owner, last, fresh);
        }
        if (!kind.empty() && kind != "object") throw MakeError(15248, {}, {kind});
        const auto id = catalog_.ObjectId(last, "");
        const auto constraint = id ? id : catalog_.ConstraintId(last, "");
        const auto object = constraint ? catalog_.FindObject(*constraint) : std::nullopt;
        if (!object || (object->table != nullptr && object->table->temporary))
            throw MakeError(15225, {}, {name, "accountset", kind.empty() ? "(null)" : kind});
        // Its own name in other letters is free.
        auto taken = catalog_.ObjectId(fresh, "");
        if (!taken) taken = catalog_.ConstraintId(fresh, "");
        if (taken && taken != constraint) throw MakeError(15335, {}, {fresh, "OBJECT"});
        if (id) refuseBound(object->name, {});
        if (object->module != nullptr) return catalog_.RenameModule(object->name, fresh);
        if (id) return catalog_.RenameTable(*object->table, fresh);
        catalog_.RenameConstraint(*object->table, last, fresh);
    });
    Diagnostic caution;
    caution.number = 15477;
    caution.severity = 10;
    caution.text = "Caution: Changing any part of an object name could break scripts and stored procedures.";
    caution.procedure = frame_->procedure;
    sink_->Message(caution);
}

// What is computed from the column or checked by it holds its name.
void Executor::RenameColumn(const TableInfo& table, const std::string& name, const std::string& fresh) {
    if (table.FindColumn(fresh) != nullptr && !SameName(name, fresh))
        throw MakeError(15335, {}, {fresh, "COLUMN"});
    for (const CheckInfo& check : table.checks) {
        if (Mentions(check.text, name)) throw MakeError(15336, {}, {table.name + "." + name});
    }
    for (const ColumnInfo& column : table.columns) {
        if (Mentions(column.computedText, name)) throw MakeError(15336, {}, {table.name + "." + name});
    }
    catalog_.RenameColumn(table, name, fresh);
}

}  // namespace vicenter::tsql::engine
