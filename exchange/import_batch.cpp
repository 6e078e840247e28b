#include "exchange/import_batch.h"

#include "entry/sql_text.h"

namespace vicenter::exchange {

void StartImportBatch(std::string& batch, std::int32_t existingId, std::string_view name,
                      std::string_view userId) {
    store::BeginTemplate(batch, existingId, name, userId);
}

void AppendImportLine(std::string& batch, std::int32_t row, std::string_view fieldList,
                      std::string_view values) {
    const store::LineInserts lines(fieldList);
    lines.Begin(batch, row);
    batch += values;
    store::LineInserts::End(batch);
}

void FinishImportBatch(std::string& batch, std::int32_t existingId) {
    batch.append(store::ControlRows(existingId)).append(entry::kCrLf);
}

}  // namespace vicenter::exchange
