#include "store/template_batches.h"

#include <unordered_set>

#include "entry/sql_text.h"
#include "store/number_text.h"

namespace vicenter::store {

using entry::kCrLf;
using entry::SqlQuote;

namespace {

// The order in which the insert of a whole line names its columns.
constexpr std::array<int, kColumnCount> kLineOrder{
    column::kNo,         column::kExplanation,   column::kDirection,
    column::kAccountId,  column::kAccountNumber, column::kAccountName,
    column::kSettleId,   column::kSettleName,    column::kSettleNumber,
    column::kCurrencyId, column::kCurrencyName,  column::kRate,
    column::kAmountFor,  column::kAmount,        column::kQuantity,
    column::kPrice,      column::kUnitId,        column::kUnitName,
    column::kRemark,     column::kFileCount,     column::kItems};

const std::string& WholeLineHead() {
    static const std::string head = [] {
        std::string text = "insert into t_VchTemplateEntry(FID,FEntryID";
        for (const int c : kLineOrder)
            text.append(",").append(Column(c).field);
        return text + ") values(";
    }();
    return head;
}

// A cell's text on its way into SQL, by its column's kind.
std::string SqlOf(int gridColumn, std::string_view text) {
    switch (Column(gridColumn).kind) {
        case CellKind::TemplateNumber:
            return std::string(text);
        case CellKind::Direction:
            if (text == kDebit) return "1";
            return text == kCredit ? "0" : "-1";
        case CellKind::Id:
            return text.empty() ? "0" : std::string(text);
        case CellKind::Whole:
        case CellKind::Decimal:
            return IsPlainNumber(text) ? std::string(text) : "0";
        case CellKind::Text:
            break;
    }
    return SqlQuote(text, true, true);
}

void AppendLine(std::string& batch, std::string_view text) {
    batch.append(text).append(kCrLf);
}

void AppendControlRow(std::string& batch, const std::string& id, const std::string& number,
                      const LineValues& line) {
    const std::string& explanation = line[column::kExplanation - 1];
    const std::string& files = line[column::kFileCount - 1];
    const std::string which = " where FID = " + id + " and FNo = " + number;
    AppendLine(batch, "if Not exists(select 1 from t_VchTpControl" + which + ") ");
    AppendLine(batch, "begin ");
    AppendLine(batch, "    " + std::string(kControlInsert) + id + "," + number + ",0," + explanation + "," +
                          files + ",0) ");
    AppendLine(batch, "end ");
    AppendLine(batch, "else ");
    AppendLine(batch, "begin ");
    AppendLine(batch, "    update t_VchTpControl set FKey = " + explanation + which);
    AppendLine(batch, "end ");
}

}  // namespace

std::string LineInsert(std::string_view templateId, std::size_t entryId, const LineValues& values) {
    std::string statement = WholeLineHead();
    statement.append(templateId).append(",").append(std::to_string(entryId));
    for (const int c : kLineOrder)
        statement.append(",").append(values[static_cast<std::size_t>(c - 1)]);
    return statement + ")";
}

std::string MarkUsable(std::string_view templateId) {
    return "exec pro_VchTpCanUsed " + std::string(templateId);
}

std::string SaveBatch(const std::string& templateId, int rowCount, const CellTexts& textOf) {
    std::string batch = "delete t_VchTemplateEntry where FID = " + templateId + " " + kCrLf;
    std::string list;
    std::unordered_set<std::string> handled;
    LineValues line;
    for (int row = 1; row <= rowCount; ++row) {
        for (int c = 1; c <= kColumnCount; ++c)
            line[static_cast<std::size_t>(c - 1)] = SqlOf(c, textOf(row, c));
        const std::string& number = line[column::kNo - 1];
        // The first row of a number gives its control row.
        if (handled.insert(number).second) {
            list += number + ",";
            AppendControlRow(batch, templateId, number, line);
        }
        AppendLine(batch, LineInsert(templateId, static_cast<std::size_t>(row), line) + " ");
    }
    // The list's last comma is completed by the -1.
    batch += "Delete t_VchTpControl where FID = " + templateId + " and FNo not in (" + list + "-1) ";
    AppendLine(batch, MarkUsable(templateId) + " ");
    return batch;
}

void BeginTemplate(std::string& batch, std::int32_t existingId, std::string_view name,
                   std::string_view ownerId) {
    const std::string id = std::to_string(existingId);
    if (existingId != kNewTemplate) {
        AppendLine(batch, " delete t_VchTemplateEntry where FID = " + id);
        AppendLine(batch, " delete t_VchTemplate where FID = " + id);
    }
    AppendLine(batch, " declare @MaxFID int ");
    AppendLine(batch, existingId == kNewTemplate ? " select @MaxFID = Max(FID)+1 from t_VchTemplate "
                                                 : " set @MaxFID = " + id);
    AppendTemplateRow(batch, name, ownerId);
}

void AppendTemplateRow(std::string& batch, std::string_view name, std::string_view ownerId) {
    batch.append(" ").append(kTemplateInsert).append("@MaxFID,").append(SqlQuote(name, true, true));
    AppendLine(batch.append(",").append(ownerId), ",'',GetDate()) ");
}

LineInserts::LineInserts(std::string_view fields) : head_(" insert into t_VchTemplateEntry(FID,FEntryID,") {
    head_.append(fields).append(") values(@MaxFID,");
}

void LineInserts::Begin(std::string& batch, std::int64_t entryId) const {
    batch.append(head_).append(std::to_string(entryId)).append(",");
}

void LineInserts::End(std::string& batch) {
    AppendLine(batch, ") ");
}

std::string ControlRows(std::int32_t existingId) {
    const bool isNew = existingId == kNewTemplate;
    std::string sql;
    for (const char* line :
         {" declare @FNo int ", " declare @Vch_cursor CURSOR ", " Set @Vch_cursor = CURSOR FOR ",
          "     select distinct FNo from t_VchTemplateEntry where FID = @MaxFID ", " OPEN @Vch_cursor ",
          " FETCH @Vch_cursor into @FNo ", " while @@fetch_status=0 ", " Begin ",
          "     declare @FFileCount int ", "     declare @Exp nvarchar(255) ",
          "     select Top 1 @FFileCount=FFileCount,@Exp=FExp from t_VchTemplateEntry where FID = @MaxFID "
          "and FNo = @FNo order by FEntryID ",
          isNew ? "     insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) "
                  "values(@MaxFID,@FNo,0,@Exp,@FFileCount) "
                : "     update t_VchTpControl set FFileCount = @FFileCount,FKey = @Exp where FID = @MaxFID "
                  "and FNo = @FNo ",
          "     fetch next from @Vch_cursor into @FNo ", " End ", " close @Vch_cursor "}) {
        AppendLine(sql, line);
    }
    sql += " deallocate @Vch_cursor ";
    if (isNew) return sql;
    return sql + kCrLf +
           " delete t_VchTpControl where FID = @MaxFID and FNo not in (select FNo from t_VchTemplateEntry "
           "where FID = @MaxFID) ";
}

}  // namespace vicenter::store
