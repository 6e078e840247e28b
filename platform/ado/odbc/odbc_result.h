#pragma once

// Results of a driver as disconnected recordsets.

#include "platform/ado/odbc/odbc_handles.h"
#include "platform/ado/recordset.h"

namespace vicenter::ado {

// What became of reading a result.
struct OdbcRows {
    RecordsetRef recordset;
    SQLRETURN end = SQL_NO_DATA;          // SQL_ERROR when the rows ended so
    std::vector<DriverError> unreadable;  // why they did, when it was for a value that is none of its type
};

// Reads the open result of the statement. Numbers never pass through a double that they do not come from;
// texts of any length are read in pieces.
OdbcRows ReadOdbcResult(SQLHSTMT statement, SQLSMALLINT columnCount);

}  // namespace vicenter::ado
