#pragma once

// Whether statements may write into the account set, judged before any of them runs. Temporary tables and
// table variables do not count. In doubt (a text that is put together at run time) they may.

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/catalog/catalog.h"
#include "tsql/run/literal_run.h"
#include "tsql/run/program.h"

namespace vicenter::tsql::engine {

class WriteForecast {
  public:
    // literals: those with which the statements will run.
    WriteForecast(const Catalog& catalog, ProgramStore& programs, const LiteralRun& literals)
        : catalog_(catalog), programs_(programs), literals_(literals) {}

    bool MayWrite(const std::vector<StatementPtr>& statements);
    bool MayWrite(const Statement& statement);

  private:
    bool CallMayWrite(const ExecuteStatement& call);
    bool TextMayWrite(const Expr* text);

    const Catalog& catalog_;
    ProgramStore& programs_;
    LiteralRun literals_;
    std::set<std::string, std::less<>> procedures_;  // looked at already
};

}  // namespace vicenter::tsql::engine
