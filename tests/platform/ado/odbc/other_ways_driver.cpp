// A driver for the tests: FreeTDS, but for two answers. A batch whose first statement changes no row gives
// SQL_NO_DATA, as ODBC 3 has it and the vendor's own drivers do; FreeTDS says SQL_SUCCESS. Exact numbers and
// times as texts have a comma for their point, as drivers have it that were told to write as the country
// does. All other calls go to FreeTDS, which this library depends on: the driver manager finds them there.

#include <algorithm>

#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace {

template <class Function>
Function* OfFreeTds(const char* name) {
    static void* const library = dlopen(VICENTER_FREETDS, RTLD_LAZY | RTLD_NOLOAD);
    return library == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(library, name));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT statement,
                                                                                   SQLWCHAR* text,
                                                                                   SQLINTEGER length) {
    static auto* const execute = OfFreeTds<decltype(SQLExecDirectW)>("SQLExecDirectW");
    static auto* const columnsOf = OfFreeTds<decltype(SQLNumResultCols)>("SQLNumResultCols");
    static auto* const rowsOf = OfFreeTds<decltype(SQLRowCount)>("SQLRowCount");
    if (execute == nullptr || columnsOf == nullptr || rowsOf == nullptr) return SQL_ERROR;
    const SQLRETURN code = execute(statement, text, length);
    SQLSMALLINT columns = 0;
    SQLLEN rows = -1;
    if (code != SQL_SUCCESS || columnsOf(statement, &columns) != SQL_SUCCESS || columns != 0) return code;
    return rowsOf(statement, &rows) == SQL_SUCCESS && rows == 0 ? SQL_NO_DATA : code;
}

extern "C" __attribute__((visibility("default"))) SQLRETURN SQL_API SQLGetData(SQLHSTMT statement,
                                                                               SQLUSMALLINT column,
                                                                               SQLSMALLINT type,
                                                                               SQLPOINTER target, SQLLEN size,
                                                                               SQLLEN* length) {
    static auto* const get = OfFreeTds<decltype(SQLGetData)>("SQLGetData");
    if (get == nullptr) return SQL_ERROR;
    const SQLRETURN code = get(statement, column, type, target, size, length);
    if (code != SQL_SUCCESS || type != SQL_C_CHAR || *length <= 0) return code;
    auto* text = static_cast<char*>(target);
    std::replace(text, text + *length, '.', ',');
    return code;
}
