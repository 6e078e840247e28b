// What functions ask of the catalog: OBJECT_ID, OBJECTPROPERTY and their kin.

#include <algorithm>
#include <span>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// Of a name in several parts the last one counts, without its brackets.
std::string_view LastPart(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    std::string_view object = dot == std::string_view::npos ? name : name.substr(dot + 1);
    const bool quoted = object.size() > 1 && ((object.front() == '[' && object.back() == ']') ||
                                              (object.front() == '"' && object.back() == '"'));
    return quoted ? object.substr(1, object.size() - 2) : object;
}

using Object = Catalog::Object;

bool IsTable(const Object& object) {
    return object.kind == "U";
}
bool IsModule(const Object& object) {
    return object.kind == "V" || object.kind == "P";
}
bool IsConstraint(const Object& object) {
    return !IsTable(object) && !IsModule(object);
}
bool HasKey(const Object& object, bool (*which)(const KeyInfo&)) {
    return std::any_of(object.table->keys.begin(), object.table->keys.end(), which);
}
bool HasColumn(const Object& object, bool (*which)(const ColumnInfo&)) {
    return std::any_of(object.table->columns.begin(), object.table->columns.end(), which);
}

// What is asked of any object.
struct Trait {
    std::string_view name;
    bool (*is)(const Object&);
};
constexpr Trait kTraits[] = {
    {"isconstraint", IsConstraint},
    {"ischeckcnst", [](const Object& object) { return object.kind == "C"; }},
    {"isdefault", [](const Object&) { return false; }},
    {"isdefaultcnst", [](const Object& object) { return object.kind == "D"; }},
    {"isforeignkey", [](const Object& object) { return object.kind == "F"; }},
    {"isinlinefunction", [](const Object&) { return false; }},
    {"ismsshipped", [](const Object&) { return false; }},
    {"isprimarykey", [](const Object& object) { return object.kind == "PK"; }},
    {"isprocedure", [](const Object& object) { return object.kind == "P"; }},
    {"isrule", [](const Object&) { return false; }},
    {"isscalarfunction", [](const Object&) { return false; }},
    {"issystemtable", [](const Object&) { return false; }},
    {"istable", IsTable},
    {"istablefunction", [](const Object&) { return false; }},
    {"istrigger", [](const Object&) { return false; }},
    {"isuniquecnst", [](const Object& object) { return object.kind == "UQ"; }},
    {"isusertable", IsTable},
    {"isview", [](const Object& object) { return object.kind == "V"; }},
    {"ownerid", [](const Object&) { return true; }},
    {"schemaid", [](const Object&) { return true; }},
};
// What is asked of tables alone; NULL for anything else.
constexpr Trait kTableTraits[] = {
    {"tablehascheckcnst", [](const Object& object) { return !object.table->checks.empty(); }},
    {"tablehasclustindex", [](const Object& object) { return object.table->PrimaryKey() != nullptr; }},
    {"tablehasdefaultcnst",
     [](const Object& object) {
         return HasColumn(object, [](const ColumnInfo& column) { return !column.defaultName.empty(); });
     }},
    {"tablehasdeletetrigger", [](const Object&) { return false; }},
    {"tablehasforeignkey", [](const Object& object) { return !object.table->foreignKeys.empty(); }},
    {"tablehasidentity", [](const Object& object) { return object.table->IdentityColumn() != nullptr; }},
    {"tablehasindex", [](const Object& object) { return !object.table->keys.empty(); }},
    {"tablehasinserttrigger", [](const Object&) { return false; }},
    {"tablehasnonclustindex",
     [](const Object& object) {
         return HasKey(object, [](const KeyInfo& key) { return key.kind != KeyKind::kPrimary; });
     }},
    {"tablehasprimarykey", [](const Object& object) { return object.table->PrimaryKey() != nullptr; }},
    {"tablehasrowguidcol", [](const Object&) { return false; }},
    {"tablehastextimage",
     [](const Object& object) {
         return HasColumn(object, [](const ColumnInfo& column) { return column.type.IsMax(); });
     }},
    {"tablehastimestamp", [](const Object&) { return false; }},
    {"tablehasuniquecnst",
     [](const Object& object) {
         return HasKey(object, [](const KeyInfo& key) { return key.kind == KeyKind::kUnique; });
     }},
    {"tablehasupdatetrigger", [](const Object&) { return false; }},
    {"tableistemporary", [](const Object& object) { return object.table->temporary; }},
};
constexpr Trait kModuleTraits[] = {
    {"execisansinullson", [](const Object&) { return true; }},
    {"execisquotedidenton", [](const Object&) { return true; }},
    {"execisstartup", [](const Object&) { return false; }},
    {"isencrypted", [](const Object&) { return false; }},
    {"isexecuted", [](const Object&) { return true; }},
    {"isschemabound", [](const Object&) { return false; }},
};

const Trait* Find(std::span<const Trait> traits, std::string_view name) {
    const auto found = std::find_if(traits.begin(), traits.end(),
                                    [&](const Trait& trait) { return SameName(trait.name, name); });
    return found == traits.end() ? nullptr : &*found;
}

Value PropertyOf(const std::optional<Object>& object, std::string_view property) {
    const std::string_view name = WithoutTrailingBlanks(property);
    const auto answer = [&](const Trait* trait, bool (*applies)(const Object&)) {
        return object && applies(*object) ? Value(trait->is(*object) ? 1 : 0) : Value();
    };
    if (const Trait* trait = Find(kTraits, name)) return answer(trait, [](const Object&) { return true; });
    if (const Trait* trait = Find(kTableTraits, name)) return answer(trait, IsTable);
    if (const Trait* trait = Find(kModuleTraits, name)) return answer(trait, IsModule);
    throw MakeError(40510, {}, {"OBJECTPROPERTY " + std::string(name)});
}

Value ColumnPropertyOf(const ColumnInfo& column, int ordinal, std::string_view property) {
    const SqlType& type = column.type;
    const auto is = [&](std::string_view name) { return SameName(name, WithoutTrailingBlanks(property)); };
    if (is("allowsnull")) return Value(column.nullable ? 1 : 0);
    if (is("columnid")) return Value(ordinal);
    if (is("isidentity")) return Value(column.identity ? 1 : 0);
    if (is("iscomputed")) return Value(column.computedText.empty() ? 0 : 1);
    if (is("isrowguidcol") || is("isidnotforrepl") || is("isfulltextindexed") || is("isoutparam") ||
        is("issparse") || is("ishidden"))
        return Value(0);
    if (is("precision")) {
        if (type.IsText() || type.IsBinary()) return Value(type.length);
        if (type.IsExact()) return Value(type.precision);
        if (type.IsInteger()) return Value(type.kind == TypeKind::kBit ? 1 : AsDecimal(type).precision);
    }
    if (is("scale") && (type.IsExact() || type.IsInteger())) return Value(type.scale);
    throw MakeError(40510, {}, {"COLUMNPROPERTY " + std::string(property)});
}

}  // namespace

// Functions are asked where no table may be read beside them.
const Catalog& Executor::CatalogNow() {
    if (!transactions_.IsOpen() && !catalog_.IsHolding()) catalog_.Refresh();
    return catalog_;
}

void Executor::ServeFacts() {
    services_.objectId = [this](std::string_view name, std::string_view type) {
        const std::string_view object = LastPart(name);
        const Catalog& catalog = CatalogNow();
        auto id = catalog.ObjectId(object, type);
        if (!id) id = catalog.ConstraintId(object, type);
        return id ? Value(*id) : Value();
    };
    services_.columnLength = [this](std::string_view table, std::string_view column) {
        const TableInfo* found = frame_->FindTable(CatalogNow(), LastPart(table));
        const ColumnInfo* entry = found != nullptr ? found->FindColumn(column) : nullptr;
        return entry != nullptr ? Value(StoredBytes(entry->type)) : Value();
    };
    services_.objectName = [this](std::int64_t id) {
        const auto object = CatalogNow().FindObject(id);
        return object ? Value(object->name) : Value();
    };
    services_.objectText = [this](std::int64_t id) {
        const auto object = CatalogNow().FindObject(id);
        return object && !object->text.empty() ? Value(object->text) : Value();
    };
    services_.objectProperty = [this](std::int64_t id, std::string_view property) {
        return PropertyOf(CatalogNow().FindObject(id), property);
    };
    services_.columnProperty = [this](std::int64_t id, std::string_view name, std::string_view property) {
        const auto object = CatalogNow().FindObject(id);
        if (!object || object->kind != "U") return Value();
        int ordinal = 0;
        for (const ColumnInfo& column : object->table->columns) {
            ++ordinal;
            if (SameName(column.name, name)) return ColumnPropertyOf(column, ordinal, property);
        }
        return Value();
    };
    services_.columnName = [this](std::int64_t id, std::int64_t number) {
        const auto object = CatalogNow().FindObject(id);
        if (!object || object->kind != "U" || number < 1) return Value();
        const auto& columns = object->table->columns;
        if (number > static_cast<std::int64_t>(columns.size())) return Value();
        return Value(columns[static_cast<std::size_t>(number) - 1].name);
    };
}

}  // namespace vicenter::tsql::engine
