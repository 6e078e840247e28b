#pragma once

// Several workbooks imported one after the other, and what became of them in one report, also as a workbook.
// User-interface thread only.

#include <map>
#include <string>
#include <vector>

#include "exchange/exchange_target.h"
#include "exchange/import_outcome.h"

namespace vicenter::exchange {

// The import command: asks for files, then imports them. Of one file it tells what became of it; of several
// it asks its questions and leaves the telling to the report of what it returns. Empty when none was chosen.
// Never throws.
std::vector<ImportOutcome> ImportTemplates(ExchangeTarget& window);

// The same of files that are chosen already.
std::vector<ImportOutcome> ImportTemplateFiles(ExchangeTarget& window, std::vector<std::string> files);

// Two workbooks that would become one template ("a.xls", "a.xlsx"): the second must not replace what the
// first has just brought.
class NamesOnce {
  public:
    // Why the file is not imported; empty when no file of its name came before.
    std::string WhyNot(const std::string& file);

  private:
    std::map<std::string, std::string> files_;
};

// One sentence: how many files, templates, lines, and how many were not imported.
std::string ReportSummary(const std::vector<ImportOutcome>& outcomes, int skipped = 0);
// What became of one file, for its row of the report: 已引入, 未引入, 已取消.
std::string ReportState(const ImportOutcome& outcome);
// What was told of it, and why; one line.
std::string ReportText(const ImportOutcome& outcome);

// Why what an import writes, a report or a marked copy, must not be written there: it is a workbook that is
// imported. Empty when it may.
std::string WhyNotOverImported(const std::vector<std::string>& files, const std::string& target);

// The report as a workbook: a sheet of files, one of their faults. Why it was not written, for users, or the
// empty text. Never throws.
std::string WriteImportReport(const std::vector<ImportOutcome>& outcomes, const std::string& target);
// Asks for its name, writes it, and tells what came of it. Never throws.
void SaveImportReport(const std::vector<ImportOutcome>& outcomes);

}  // namespace vicenter::exchange
