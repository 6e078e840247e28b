#include "platform/ado/odbc/odbc_batch.h"

#include "platform/ado/odbc/odbc_result.h"

namespace vicenter::ado {

namespace {

constexpr std::int32_t kFirstErrorSeverity = 11;
constexpr int kMostErrorsOfDriver = 3;

}  // namespace

void OdbcOutcome::Take(std::vector<DriverError> records) {
    for (DriverError& record : records) {
        if (IsBrokenLine(record)) broken = true;
        if (record.sqlState == "HYT00" || record.sqlState == "HYT01") timedOut = true;
        if (record.sqlState == "HY008") cancelled = true;
        const bool isError = record.severity >= kFirstErrorSeverity;
        // The driver's own remark that there was an error adds nothing.
        if (isError && record.native == 0 && !errors.empty() && !IsBrokenLine(record)) continue;
        (isError ? errors : messages).push_back(std::move(record));
    }
}

OdbcBatch::OdbcBatch(std::shared_ptr<OdbcLink> link, std::string text, int seconds,
                     bool keepsResultsBehindErrors)
    : link_(std::move(link)),
      text_(std::move(text)),
      seconds_(seconds),
      keepsResultsBehindErrors_(keepsResultsBehindErrors) {}

// Before any other call, which would clear them.
void OdbcBatch::Note(SQLHSTMT statement, SQLRETURN code) {
    if (code == SQL_ERROR || code == SQL_SUCCESS_WITH_INFO)
        outcome_.Take(OdbcDiagnostics(SQL_HANDLE_STMT, statement));
}

void OdbcBatch::Run() {
    const OdbcStatement statement(link_->Line());
    if (!statement) {
        outcome_.Take(OdbcDiagnostics(SQL_HANDLE_DBC, link_->Line()));
        outcome_.broken = true;
        return;
    }
    if (seconds_ > 0) {
        SQLSetStmtAttrW(statement.Get(), SQL_ATTR_QUERY_TIMEOUT,
                        OdbcNumber(static_cast<std::uintptr_t>(seconds_)), 0);
    }
    std::u16string text = OdbcWide(text_);
    const OdbcRunning::Scope running(running_, statement.Get());
    Drain(statement.Get(), SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                                          static_cast<SQLINTEGER>(text.size())));
    // A line that was cut may come out as the mere end of the results.
    if (IsDead(link_->Line())) outcome_.broken = true;
}

void OdbcBatch::Drain(SQLHSTMT statement, SQLRETURN code) {
    RecordsetRef last;
    int ofDriverInRow = 0;
    for (bool more = false;; code = SQLMoreResults(statement), more = true) {
        if (code == SQL_INVALID_HANDLE) {
            outcome_.broken = true;
            return;
        }
        // Said of the next result it is the end of the batch. Said of the batch itself it is a first
        // statement that changed no row, and more may stand behind it.
        if (code == SQL_NO_DATA && more) return;
        const std::size_t known = outcome_.errors.size();
        Note(statement, code);
        if (outcome_.HasStopped()) return;
        if (code == SQL_ERROR) {
            // A driver may say so for ever of a line that was cut within a result.
            const bool fromServer = !outcome_.errors.empty() && outcome_.errors.back().native != 0 &&
                                    outcome_.errors.size() > known;
            ofDriverInRow = fromServer ? 0 : ofDriverInRow + 1;
            if (ofDriverInRow >= kMostErrorsOfDriver || IsDead(link_->Line())) {
                outcome_.broken = true;
                return;
            }
            continue;
        }
        ofDriverInRow = 0;
        const bool hadFailed = !outcome_.errors.empty();
        SQLSMALLINT columns = 0;
        SQLNumResultCols(statement, &columns);
        if (columns == 0) {
            SQLLEN rows = -1;
            if (SQL_SUCCEEDED(SQLRowCount(statement, &rows)) && rows >= 0) outcome_.counts.push_back(rows);
            continue;
        }
        OdbcRows read = ReadOdbcResult(statement, columns);
        Note(statement, read.end);
        outcome_.Take(std::move(read.unreadable));
        // The server goes on behind an error; what it gives from there on is undone with the rest.
        if (!hadFailed || keepsResultsBehindErrors_) {
            if (last) last->SetNext(read.recordset);
            if (!outcome_.first) outcome_.first = read.recordset;
            last = std::move(read.recordset);
        }
        if (outcome_.HasStopped()) return;
    }
}

}  // namespace vicenter::ado
