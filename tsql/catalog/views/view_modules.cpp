// The texts of views, procedures, defaults and checks.

#include "tsql/catalog/views/view_list.h"

namespace vicenter::tsql::engine {

namespace {

const SqlType kInt = SqlType::Int();

SystemView Modules() {
    return MakeView({{"object_id", kInt, "o.id"},
                     {"definition", SqlType::NVarChar(kMaxLength), "o.text"},
                     {"uses_ansi_nulls", BitType(), "1"},
                     {"uses_quoted_identifier", BitType(), "1"},
                     {"is_schema_bound", BitType(), "0"},
                     {"uses_database_collation", BitType(), "1"},
                     {"is_recompiled", BitType(), "0"},
                     {"null_on_null_input", BitType(), "0"},
                     {"execute_as_principal_id", kInt, "NULL"}},
                    "main.\"ts$objects\" AS o WHERE o.kind IN ('V', 'P')");
}

// A text in stretches of 4000 characters.
constexpr const char* kComments = R"((
WITH RECURSIVE piece(id, colid, text, rest) AS (
  SELECT id, 0, '', text FROM (
    SELECT id, text FROM main."ts$objects" WHERE kind IN ('V', 'P')
    UNION ALL SELECT -(object * 4000 + ordinal), '(' || text || ')' FROM main."ts$keys" WHERE kind = 'CK'
    UNION ALL SELECT -(object * 4000 + 2000 + ordinal), '(' || default_text || ')' FROM main."ts$columns"
    WHERE default_name <> '')
  UNION ALL
  SELECT id, colid + 1, substr(rest, 1, 4000), substr(rest, 4001) FROM piece WHERE rest <> '')
SELECT id, colid, text FROM piece WHERE colid > 0) AS p)";

SystemView Syscomments() {
    return MakeView({{"id", kInt, "p.id"},
                     {"number", SmallType(), "CASE WHEN p.id > 0 THEN 1 ELSE 0 END"},
                     {"colid", SmallType(), "p.colid"},
                     {"status", SmallType(), "0"},
                     {"texttype", SmallType(), "2"},
                     {"language", SmallType(), "0"},
                     {"encrypted", BitType(), "0"},
                     {"compressed", BitType(), "0"},
                     {"text", SqlType::NVarChar(4000), "p.text"}},
                    kComments);
}

}  // namespace

std::vector<NamedView> ModuleViews() {
    return {
        {"sys", "sql_modules", Modules()},
        {"sys", "all_sql_modules", Modules()},
        {"dbo", "syscomments", Syscomments()},
    };
}

}  // namespace vicenter::tsql::engine
