// Objects by their numbers and names; constraints among them.

#include "automation/object.h"

#include <functional>

#include "tsql/base/text_units.h"
#include "tsql/catalog/catalog.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// As the server's views spell them out in SQL: see catalog/views.
constexpr std::int64_t kOfOneTable = 4000;
constexpr std::int64_t kDefaults = 2000;

struct Constraint {
    std::int64_t id = 0;
    std::string_view kind;
    std::string name;
    std::string text;
};

// In the order in which the catalog's table of keys has them.
std::vector<Constraint> ConstraintsOf(const TableInfo& table) {
    std::vector<Constraint> all;
    const std::int64_t base = table.id * kOfOneTable;
    std::int64_t ordinal = 0;
    for (const KeyInfo& key : table.keys) {
        ++ordinal;
        if (key.IsConstraint())
            all.push_back({-(base + ordinal), key.kind == KeyKind::kPrimary ? "PK" : "UQ", key.name, {}});
    }
    for (const ForeignKeyInfo& key : table.foreignKeys)
        all.push_back({-(base + ++ordinal), "F", key.name, {}});
    for (const CheckInfo& check : table.checks)
        all.push_back({-(base + ++ordinal), "C", check.name, "(" + check.text + ")"});
    std::int64_t place = 0;
    for (const ColumnInfo& column : table.columns) {
        ++place;
        if (column.defaultName.empty()) continue;
        all.push_back({-(base + kDefaults + place), "D", column.defaultName, "(" + column.defaultText + ")"});
    }
    return all;
}

}  // namespace

std::optional<std::int64_t> Catalog::ConstraintId(std::string_view name, std::string_view type) const {
    const std::string wanted = LowerAscii(WithoutTrailingBlanks(type));
    for (const auto& [key, table] : tables_) {
        for (const Constraint& constraint : ConstraintsOf(*table)) {
            if (!SameName(constraint.name, name)) continue;
            if (wanted.empty() || SameName(constraint.kind, wanted)) return constraint.id;
        }
    }
    return std::nullopt;
}

std::optional<Catalog::Object> Catalog::FindObject(std::int64_t id) const {
    const auto module = [id](const auto& modules, std::string_view kind) -> std::optional<Object> {
        for (const auto& [key, entry] : modules) {
            if (entry.id == id) return Object{nullptr, &entry, kind, entry.name, entry.text};
        }
        return std::nullopt;
    };
    const auto found = [id](const auto& tables) -> std::optional<Object> {
        for (const auto& [key, table] : tables) {
            if (table->id == id) return Object{table.get(), nullptr, "U", table->name, {}};
        }
        return std::nullopt;
    };
    if (auto table = found(tables_)) return table;
    if (auto table = found(temporary_)) return table;
    if (auto view = module(views_, "V")) return view;
    if (auto procedure = module(procedures_, "P")) return procedure;
    for (const auto& [key, table] : tables_) {
        if (id >= 0 || -id / kOfOneTable != table->id) continue;
        for (const Constraint& constraint : ConstraintsOf(*table)) {
            if (constraint.id == id)
                return Object{table.get(), nullptr, constraint.kind, constraint.name, constraint.text};
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> Catalog::ObjectId(std::string_view name, std::string_view type) const {
    const std::string wanted = LowerAscii(WithoutTrailingBlanks(type));
    const std::string key = LowerAscii(name);
    if (wanted.empty() || wanted == "u") {
        if (const TableInfo* table = FindTable(key)) return table->id;
    }
    if (wanted.empty() || wanted == "v") {
        if (const ModuleInfo* view = FindView(key)) return view->id;
    }
    if (wanted.empty() || wanted == "p") {
        if (const ModuleInfo* procedure = FindProcedure(key)) return procedure->id;
    }
    return std::nullopt;
}

}  // namespace vicenter::tsql::engine
