#pragma once

// The batches that write templates: a save replaces the lines of a template that is there; an import and a
// generation write a template whole, as a new one or in the place of one. Head, lines and control rows of all
// of them stand here, each statement's text once. Pure functions of texts: nothing is sent.
//
// Values go into the text by concatenation. Texts are quoted here; whatever goes in bare (ids, numbers) has
// been checked where it came into the grid, the sheet or the voucher.

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "store/template_columns.h"

namespace vicenter::store {

// The heads of the inserts, up to the first value.
inline constexpr const char* kTemplateInsert =
    "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(";
inline constexpr const char* kControlInsert =
    "insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) values(";

// The insert of a line with all its columns. The values are SQL, by column from 1 (index 0 is column 1).
using LineValues = std::array<std::string, kColumnCount>;
std::string LineInsert(std::string_view templateId, std::size_t entryId, const LineValues& values);

// Has the account set mark the template's numbers that can be used.
std::string MarkUsable(std::string_view templateId);

// --- a save

using CellTexts = std::function<std::string_view(int row, int column)>;
// Replaces the template's lines by the rows 1 to rowCount and brings its control rows up to date: numbers
// that stay keep their history, those that are gone lose theirs.
std::string SaveBatch(const std::string& templateId, int rowCount, const CellTexts& textOf);

// --- a template as a whole

// The existing id that stands for a new template.
inline constexpr std::int32_t kNewTemplate = -1;

// The statements up to the template's own row. Behind them @MaxFID is its id.
void BeginTemplate(std::string& batch, std::int32_t existingId, std::string_view name,
                   std::string_view ownerId);
// That row alone, of the id in @MaxFID.
void AppendTemplateRow(std::string& batch, std::string_view name, std::string_view ownerId);

// The inserts of its lines, all of the same fields (names joined by ",").
class LineInserts {
  public:
    explicit LineInserts(std::string_view fields);
    // The values follow, joined by ",".
    void Begin(std::string& batch, std::int64_t entryId) const;
    static void End(std::string& batch);
    std::size_t HeadLength() const { return head_.size(); }

  private:
    std::string head_;
};

// Control rows: one for each template number. A replaced template keeps those that it has and loses those
// whose number is gone; a number new to it gets none. Without a line end behind.
std::string ControlRows(std::int32_t existingId);

}  // namespace vicenter::store
