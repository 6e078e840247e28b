#pragma once

// From a workbook's file to the batch of its import, or to the lines that it would make: the copy, the sheet,
// the header and the rows, every one of them checked before anything is written. Late bound throughout.
// User-interface thread only.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/exchange_target.h"
#include "exchange/import_refusal.h"
#include "store/template_reading.h"

namespace vicenter::exchange {

struct ImportBatch {
    std::string text;
    std::int32_t lines = 0;
};

// tidily: rows above the header and blank rows between lines are passed over.
// Throws Refused, Cancelled, or automation::Error for a file that cannot be read, its reason as the text.
ImportBatch ReadTemplateWorkbook(ExchangeTarget& window, const std::string& fileName, std::int32_t existingId,
                                 const std::string& name, bool tidily = false);

// The batch of a workbook that has been read already: the inserts of its lines.
ImportBatch BatchOfRead(std::string_view inserts, std::size_t lines, std::int32_t existingId,
                        const std::string& name);

// What a workbook holds, faulty or not.
struct WorkbookLines {
    // As the account set would hold them; of a faulty cell what is typed there.
    std::vector<store::LineTexts> lines = {};
    std::string refusal = {};  // what an import would say; empty when it would take them
    std::string reason = {};   // where the fixed words do not say why
    std::vector<LineFault> faults = {};
    std::string inserts = {};  // of an import, as long as nothing is wrong
};
// Throws Cancelled.
WorkbookLines ReadWorkbookLines(ExchangeTarget& window, const std::string& fileName, bool tidily = false);

// What an error says for users: a server's or an account set's own text as it stands.
std::string ReasonOf(const automation::Error& error);
// What an import says when it fails for no reason that its words name.
inline constexpr const char* kImportFailed = "引入模板失败！";

}  // namespace vicenter::exchange
