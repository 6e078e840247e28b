#include "tsql/run/value_check.h"

#include <string_view>

#include "text/utf8.h"

namespace vicenter::tsql::engine {

namespace {

bool IsUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const text::CodePoint next = text::ReadUtf8(text, at);
        if (!next.valid) return false;
        at += next.length;
    }
    return true;
}

std::string_view RangeOf(TypeKind kind) {
    switch (kind) {
        case TypeKind::kBit:
            return "0 AND 1";
        case TypeKind::kTinyInt:
            return "0 AND 255";
        case TypeKind::kSmallInt:
            return "-32768 AND 32767";
        case TypeKind::kInt:
            return "-2147483648 AND 2147483647";
        default:
            return "-9223372036854775807 - 1 AND 9223372036854775807";
    }
}

// True for a value that the column's type has not: a condition of SQLite's.
std::string FaultCondition(const ColumnInfo& column) {
    const std::string name = Quoted(column.name);
    const auto notOf = [&name](const char* types) {
        return "typeof(" + name + ") NOT IN (" + types + ",'null')";
    };
    std::string fault;
    switch (column.type.Storage()) {
        case StorageClass::kInteger:
            fault =
                notOf("'integer'") + " OR " + name + " NOT BETWEEN " + std::string(RangeOf(column.type.kind));
            break;
        case StorageClass::kReal:
            fault = notOf("'real','integer'");
            break;
        case StorageClass::kDecimal:
            fault = notOf("'text'") + " OR " + name + " GLOB '*[^-0-9.]*' OR length(" + name + ") = 0 OR " +
                    name + " GLOB '?*-*'";
            break;
        case StorageClass::kText:
            fault = notOf("'text'");
            if (!column.type.IsMax() && column.type.length > 0)
                fault += " OR length(" + name + ") > " + std::to_string(column.type.length);
            break;
        case StorageClass::kDate:
            fault = notOf("'text'");
            if (column.type.kind != TypeKind::kTime)
                fault += " OR " + name + " NOT GLOB '[0-9][0-9][0-9][0-9]-[01][0-9]-[0-3][0-9]*'";
            break;
        case StorageClass::kBinary:
            fault = notOf("'blob'");
            break;
    }
    if (!column.nullable) fault += " OR " + name + " IS NULL";
    return fault;
}

void CheckTexts(Database& database, const TableInfo& table, const ColumnInfo& column,
                std::vector<std::string>& findings) {
    PreparedStatement rows =
        database.Prepare("SELECT rowid, CAST(" + Quoted(column.name) + " AS TEXT) FROM " + table.Sql());
    while (database.Step(rows)) {
        if (IsUtf8(rows.Text(1))) continue;
        findings.push_back("数据：表 " + table.name + " 的列 " + column.name + " 第 " +
                           std::to_string(rows.Int(0)) + " 行不是有效的文本");
        return;
    }
}

}  // namespace

void CheckValues(Database& database, const TableInfo& table, std::vector<std::string>& findings) {
    for (const ColumnInfo& column : table.columns) {
        if (!column.computedText.empty()) continue;
        PreparedStatement faults = database.Prepare("SELECT count(*), min(rowid) FROM " + table.Sql() +
                                                    " WHERE " + FaultCondition(column));
        if (database.Step(faults) && faults.Int(0) > 0) {
            findings.push_back("数据：表 " + table.name + " 的列 " + column.name + " 有 " +
                               std::to_string(faults.Int(0)) + " 个值不符合 " + column.type.FullName() +
                               "，首先是第 " + std::to_string(faults.Int(1)) + " 行");
        } else if (column.type.Storage() == StorageClass::kText) {
            CheckTexts(database, table, column, findings);
        }
    }
}

}  // namespace vicenter::tsql::engine
