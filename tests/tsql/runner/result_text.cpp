#include "runner/result_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <regex>

namespace vicenter::tsql_test {
namespace {

using automation::Variant;
using automation::VariantType;

std::string TextCell(const std::string& text) {
    if (text.empty()) return "(empty)";
    std::string shown;
    for (const char c : text) {
        if (c == '\r') {
            shown += "\\r";
        } else if (c == '\n') {
            shown += "\\n";
        } else if (static_cast<unsigned char>(c) < ' ') {
            std::array<char, 8> hex{};
            std::snprintf(hex.data(), hex.size(), "\\x%02x", static_cast<unsigned>(c));
            shown += hex.data();
        } else {
            shown += c;
        }
    }
    const bool quote = text.front() == ' ' || text.back() == ' ' || text == "NULL" || text == "(empty)" ||
                       text.find(" | ") != std::string::npos || text.front() == '"';
    return quote ? '"' + shown + '"' : shown;
}

std::string TypeText(const ado::Column& column) {
    // Two words for one type: expected texts say decimal.
    if (column.serverType.starts_with("numeric"))
        return "decimal" + column.serverType.substr(std::string("numeric").size());
    if (!column.serverType.empty()) return column.serverType;
    static const std::map<ado::DataType, std::string> kNames = {
        {ado::DataType::kSmallInt, "smallint"}, {ado::DataType::kInteger, "int"},
        {ado::DataType::kDouble, "float"},      {ado::DataType::kCurrency, "money"},
        {ado::DataType::kBoolean, "bit"},       {ado::DataType::kTinyInt, "tinyint"},
        {ado::DataType::kBigInt, "bigint"},     {ado::DataType::kGuid, "uniqueidentifier"},
        {ado::DataType::kBinary, "varbinary"},  {ado::DataType::kChar, "char"},
        {ado::DataType::kNumeric, "decimal"},   {ado::DataType::kTimeStamp, "datetime"},
        {ado::DataType::kVarChar, "varchar"},   {ado::DataType::kLongVarChar, "varchar"},
        {ado::DataType::kVarWChar, "nvarchar"}, {ado::DataType::kLongVarWChar, "nvarchar"},
    };
    const auto found = kNames.find(column.type);
    return found == kNames.end() ? "?" : found->second;
}

std::vector<std::string> Cells(const std::string& line) {
    constexpr std::string_view kBetween = " | ";
    std::vector<std::string> cells;
    for (std::size_t from = 0;;) {
        const std::size_t end = line.find(kBetween, from);
        cells.push_back(line.substr(from, end - from));
        if (end == std::string::npos) return cells;
        from = end + kBetween.size();
    }
}

// A cell of a header may leave out the length: "a:decimal" for "a:decimal(18,2)". A value cannot, since it
// has no type's name before its parentheses.
bool CellMatches(const std::string& expected, const std::string& actual) {
    if (expected == actual) return true;
    return expected.find(':') != std::string::npos && !actual.empty() && actual.back() == ')' &&
           actual.starts_with(expected + "(");
}

bool Matches(const std::string& expected, const std::string& actual) {
    if (expected == actual) return true;
    const std::vector<std::string> wanted = Cells(expected);
    const std::vector<std::string> given = Cells(actual);
    return wanted.size() == given.size() &&
           std::equal(wanted.begin(), wanted.end(), given.begin(), CellMatches);
}

std::string Described(const ado::DriverError& error) {
    return "error " + std::to_string(error.native) + " line " + std::to_string(error.line) + ": " +
           error.text;
}

std::string Joined(const std::vector<std::string>& lines, const char* mark) {
    std::string text;
    for (const std::string& line : lines)
        text += mark + line + "\n";
    return text;
}

std::string CheckError(const Step& step, const std::vector<ado::DriverError>& errors, const std::string& what,
                       const ErrorDetail& detail) {
    if (errors.empty()) return "error without a diagnostic record: " + what + "\n";
    const ado::DriverError& error = errors.front();
    std::string difference;
    if (!step.errorNumber) return "unexpected " + Described(error) + "\n";
    if (error.native != *step.errorNumber && (detail.anyNumber == 0 || error.native != detail.anyNumber)) {
        difference += "- error " + std::to_string(*step.errorNumber) + "\n+ " + Described(error) + "\n";
    }
    if (!detail.textAndLine) return difference;
    if (step.errorLine && error.line != *step.errorLine) {
        difference +=
            "- line " + std::to_string(*step.errorLine) + "\n+ line " + std::to_string(error.line) + "\n";
    }
    if (step.expected.empty()) return difference;
    std::vector<std::string> actual;
    for (const ado::DriverError& record : errors) {
        if (actual.size() < step.expected.size()) actual.push_back(record.text);
    }
    return difference + Difference(step.expected, actual);
}

}  // namespace

std::string CellText(const Variant& value) {
    switch (value.Type()) {
        case VariantType::Empty:
        case VariantType::Null:
            return "NULL";
        case VariantType::Boolean:
            return value.ToBoolean() ? "1" : "0";
        case VariantType::Text:
            return TextCell(value.AsText());
        case VariantType::Decimal:
            return value.ToDecimal().ToText();
        case VariantType::Date:
            return value.ToDate().ToText();
        case VariantType::Array: {
            std::string hex = "0x";
            for (const Variant& byte : value.AsArray()) {
                std::array<char, 4> digits{};
                std::snprintf(digits.data(), digits.size(), "%02X",
                              static_cast<unsigned>(byte.ToInt32()) & 0xFFU);
                hex += digits.data();
            }
            return hex;
        }
        default:
            return value.ToText();
    }
}

std::vector<std::string> ResultLines(ado::RecordsetRef recordset) {
    std::vector<std::string> lines;
    for (; recordset; recordset = recordset->Next()) {
        if (!recordset->IsOpen()) continue;
        if (!lines.empty()) lines.emplace_back();
        std::string header;
        for (const ado::Column& column : recordset->Columns()) {
            if (!header.empty()) header += " | ";
            header += (column.name.empty() ? "(none)" : column.name) + ":" + TypeText(column);
        }
        lines.push_back(header);
        for (std::int64_t row = 0; row < recordset->RecordCount(); ++row) {
            std::string line;
            for (std::size_t column = 0; column < recordset->ColumnCount(); ++column) {
                if (column > 0) line += " | ";
                line += CellText(recordset->ValueAt(static_cast<std::size_t>(row), column));
            }
            lines.push_back(line);
        }
    }
    return lines;
}

std::string WithoutLengths(const std::string& header) {
    static const std::regex lengths("(:[a-z0-9]+)\\([^)]*\\)");
    return std::regex_replace(header, lengths, "$1");
}

// Longest common run of lines by dynamic programming; results are short.
std::string Difference(const std::vector<std::string>& expected, const std::vector<std::string>& actual) {
    const std::size_t n = expected.size();
    const std::size_t m = actual.size();
    std::vector<std::vector<std::size_t>> common(n + 1, std::vector<std::size_t>(m + 1, 0));
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t j = m; j-- > 0;) {
            common[i][j] = Matches(expected[i], actual[j]) ? common[i + 1][j + 1] + 1
                                                           : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    if (common[0][0] == n && n == m) return {};
    std::string text;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < n || j < m) {
        if (i < n && j < m && Matches(expected[i], actual[j])) {
            text += "  " + actual[j++] + "\n";
            ++i;
        } else if (i < n && (j >= m || common[i + 1][j] >= common[i][j + 1])) {
            text += "- " + expected[i++] + "\n";
        } else {
            text += "+ " + actual[j++] + "\n";
        }
    }
    return text;
}

std::string RunStep(ado::Connection& connection, const Step& step, const ErrorDetail& detail) {
    std::int64_t affected = -1;
    ado::RecordsetRef result;
    try {
        result = connection.Execute(step.batch, &affected);
    } catch (const automation::Error& error) {
        return CheckError(step, connection.Errors(), error.Text(), detail);
    }
    std::vector<std::string> actual = ResultLines(result);
    if (step.errorNumber) {
        return "- error " + std::to_string(*step.errorNumber) + "\n" + Joined(actual, "+ ");
    }
    if (!step.expected.empty() && step.expected.front().starts_with("affected: ")) {
        actual.insert(actual.begin(), "affected: " + std::to_string(affected));
    }
    return Difference(step.expected, actual);
}

}  // namespace vicenter::tsql_test
