#pragma once

// The sources of the server's views, by what they are about. Internal to the catalog.
//
// Each view is a query of SQLite over the catalog's tables, whose rows have the columns that the server's
// view has, as far as an account set has anything to say in them.

#include <string>
#include <string_view>
#include <vector>

#include "tsql/catalog/system_views.h"

namespace vicenter::tsql::engine {

struct NamedView {
    std::string_view schema;  // "sys", "dbo" for the old names, "information_schema"
    std::string_view name;
    SystemView view;
};

// A column with the SQL that gives it.
struct ViewColumn {
    const char* name;
    SqlType type;
    std::string sql;
};

// SELECT column AS name, … FROM …
SystemView MakeView(const std::vector<ViewColumn>& columns, const std::string& from);
// The same columns from several sources, each with texts of its own.
SystemView MakeUnion(const std::vector<ViewColumn>& columns, const std::vector<std::string>& selects);

std::vector<NamedView> ObjectViews();
std::vector<NamedView> ColumnViews();
std::vector<NamedView> KeyViews();
std::vector<NamedView> ModuleViews();
std::vector<NamedView> SchemaViews();

// The type of sys.objects' kinds and of views' own columns.
inline SqlType NameType() {
    return SqlType::NVarChar(128);
}
inline SqlType KindType() {
    return SqlType::Of(TypeKind::kChar, 2);
}
inline SqlType BitType() {
    return SqlType::Of(TypeKind::kBit);
}
inline SqlType SmallType() {
    return SqlType::Of(TypeKind::kSmallInt);
}
inline SqlType ByteType() {
    return SqlType::Of(TypeKind::kTinyInt);
}

// What the server says of a column's type, with the row of ts$columns as c: bytes, precision and scale, and
// the numbers by which it knows types.
extern const char* const kColumnBytes;
extern const char* const kColumnPrecision;
extern const char* const kColumnScale;
extern const char* const kColumnTypeId;
extern const char* const kColumnCollation;

// A default as the server spells it: a number in two pairs of parentheses, anything else in one.
extern const char* const kDefaultDefinition;

// A key's list of columns taken apart: the members of ts$keys as rows (object, ordinal, kind, name, place,
// column, descending).
extern const char* const kKeyMembers;
// The same of the columns that a foreign key refers to: (object, ordinal, place, column).
extern const char* const kReferencedMembers;

}  // namespace vicenter::tsql::engine
