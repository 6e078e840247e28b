#include "tsql/syntax/keyword.h"

#include <array>
#include <cstddef>

#include "text/ascii.h"

namespace vicenter::tsql {
namespace {

// In the order of the enumeration.
constexpr std::string_view kWords[] = {
    "",
    "add",
    "all",
    "alter",
    "and",
    "any",
    "as",
    "asc",
    "authorization",
    "backup",
    "begin",
    "between",
    "break",
    "browse",
    "bulk",
    "by",
    "cascade",
    "case",
    "check",
    "checkpoint",
    "close",
    "clustered",
    "coalesce",
    "collate",
    "column",
    "commit",
    "compute",
    "constraint",
    "contains",
    "containstable",
    "continue",
    "convert",
    "create",
    "cross",
    "current",
    "current_date",
    "current_time",
    "current_timestamp",
    "current_user",
    "cursor",
    "database",
    "dbcc",
    "deallocate",
    "declare",
    "default",
    "delete",
    "deny",
    "desc",
    "disk",
    "distinct",
    "distributed",
    "double",
    "drop",
    "dump",
    "else",
    "end",
    "errlvl",
    "escape",
    "except",
    "exec",
    "execute",
    "exists",
    "exit",
    "external",
    "fetch",
    "file",
    "fillfactor",
    "for",
    "foreign",
    "freetext",
    "freetexttable",
    "from",
    "full",
    "function",
    "goto",
    "grant",
    "group",
    "having",
    "holdlock",
    "identity",
    "identity_insert",
    "identitycol",
    "if",
    "in",
    "index",
    "inner",
    "insert",
    "intersect",
    "into",
    "is",
    "join",
    "key",
    "kill",
    "left",
    "like",
    "lineno",
    "load",
    "merge",
    "national",
    "nocheck",
    "nonclustered",
    "not",
    "null",
    "nullif",
    "of",
    "off",
    "offsets",
    "on",
    "open",
    "opendatasource",
    "openquery",
    "openrowset",
    "openxml",
    "option",
    "or",
    "order",
    "outer",
    "over",
    "percent",
    "pivot",
    "plan",
    "precision",
    "primary",
    "print",
    "proc",
    "procedure",
    "public",
    "raiserror",
    "read",
    "readtext",
    "reconfigure",
    "references",
    "replication",
    "restore",
    "restrict",
    "return",
    "revert",
    "revoke",
    "right",
    "rollback",
    "rowcount",
    "rowguidcol",
    "rule",
    "save",
    "schema",
    "securityaudit",
    "select",
    "session_user",
    "set",
    "setuser",
    "shutdown",
    "some",
    "statistics",
    "system_user",
    "table",
    "tablesample",
    "textsize",
    "then",
    "to",
    "top",
    "tran",
    "transaction",
    "trigger",
    "truncate",
    "try_convert",
    "tsequal",
    "union",
    "unique",
    "unpivot",
    "update",
    "updatetext",
    "use",
    "user",
    "values",
    "varying",
    "view",
    "waitfor",
    "when",
    "where",
    "while",
    "with",
    "writetext",
};

constexpr std::size_t kLongestWord = 17;
constexpr std::size_t kSlots = 1024;  // a power of two, sparse enough for few collisions

constexpr unsigned char Fold(char c) {
    return static_cast<unsigned char>(c) | 0x20U;
}

// Length, first, second, middle and last letter tell the words apart well enough.
constexpr std::size_t Hash(std::string_view word) {
    const std::size_t n = word.size();
    const unsigned letters =
        Fold(word[0]) * 31U + Fold(word[1]) * 7U + Fold(word[n / 2]) * 61U + Fold(word[n - 1]) * 17U;
    return (n * 131U + letters) & (kSlots - 1);
}

constexpr std::array<Keyword, kSlots> MakeTable() {
    std::array<Keyword, kSlots> table{};
    for (std::size_t i = 1; i < std::size(kWords); ++i) {
        std::size_t slot = Hash(kWords[i]);
        while (table[slot] != Keyword::kNone)
            slot = (slot + 1) & (kSlots - 1);
        table[slot] = static_cast<Keyword>(i);
    }
    return table;
}

constexpr std::array<Keyword, kSlots> kTable = MakeTable();

}  // namespace

bool IsWord(std::string_view word, std::string_view lower) {
    if (word.size() != lower.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (text::LowerAscii(word[i]) != lower[i]) return false;
    }
    return true;
}

Keyword FindKeyword(std::string_view word) {
    if (word.size() < 2 || word.size() > kLongestWord) return Keyword::kNone;
    for (std::size_t slot = Hash(word);; slot = (slot + 1) & (kSlots - 1)) {
        const Keyword keyword = kTable[slot];
        if (keyword == Keyword::kNone) return keyword;
        if (IsWord(word, kWords[static_cast<std::size_t>(keyword)])) return keyword;
    }
}

}  // namespace vicenter::tsql
