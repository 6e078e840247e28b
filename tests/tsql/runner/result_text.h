#pragma once

// What a batch gave, as the lines of a text test.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/ado/connection.h"
#include "runner/test_file.h"

namespace vicenter::tsql_test {

// One value as a cell.
std::string CellText(const automation::Variant& value);

// All result sets of a batch.
std::vector<std::string> ResultLines(ado::RecordsetRef recordset);

// A header without the lengths of its types, which an answer may give in more than one way.
std::string WithoutLengths(const std::string& header);

// How much of an error is compared: a server that is not SQL Server has texts and lines of its own, and one
// number for all that has no number there.
struct ErrorDetail {
    bool textAndLine = true;
    std::int32_t anyNumber = 0;
};

// Runs one step. Empty when it gave what the file expects, else a readable difference.
std::string RunStep(ado::Connection& connection, const Step& step, const ErrorDetail& detail = {});

// The expected lines with those that the batch gave instead: "-" for missing, "+" for surplus lines. Types
// without a length in the expected header stand for any length. Empty when both say the same.
std::string Difference(const std::vector<std::string>& expected, const std::vector<std::string>& actual);

}  // namespace vicenter::tsql_test
