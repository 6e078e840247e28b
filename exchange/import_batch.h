#pragma once

// The SQL batch of an import, piece by piece, each piece ended by CR LF. Pure functions over a text.

#include <cstdint>
#include <string>
#include <string_view>

#include "store/template_batches.h"

namespace vicenter::exchange {

using store::kNewTemplate;

void StartImportBatch(std::string& batch, std::int32_t existingId, std::string_view name,
                      std::string_view userId);
// The insert of the sheet row `row`, whose number becomes the line's FEntryID.
void AppendImportLine(std::string& batch, std::int32_t row, std::string_view fieldList,
                      std::string_view values);
// Control rows: one for each template number. A replaced template keeps those it has and loses those whose
// number is gone; a number new to it gets none.
void FinishImportBatch(std::string& batch, std::int32_t existingId);

}  // namespace vicenter::exchange
