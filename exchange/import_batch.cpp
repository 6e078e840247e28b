#include "exchange/import_batch.h"

#include "entry/sql_text.h"

namespace vicenter::exchange {

namespace {

void AppendLine(std::string& batch, std::string_view text) {
    batch.append(text).append(entry::kCrLf);
}

}  // namespace

void StartImportBatch(std::string& batch, std::int32_t existingId, std::string_view name,
                      std::string_view userId) {
    if (existingId == kNewTemplate) {
        AppendLine(batch, " declare @MaxFID int ");
        AppendLine(batch, " select @MaxFID = Max(FID)+1 from t_VchTemplate ");
    } else {
        const std::string id = std::to_string(existingId);
        AppendLine(batch, " delete t_VchTemplateEntry where FID = " + id);
        AppendLine(batch, " delete t_VchTemplate where FID = " + id);
        AppendLine(batch, " declare @MaxFID int ");
        AppendLine(batch, " set @MaxFID = " + id);
    }
    batch += " insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(@MaxFID,";
    batch.append(entry::SqlQuote(name, true, true)).append(",").append(userId);
    AppendLine(batch, ",'',GetDate()) ");
}

void AppendImportLine(std::string& batch, std::int32_t row, std::string_view fieldList,
                      std::string_view values) {
    batch += " insert into t_VchTemplateEntry(FID,FEntryID,";
    batch.append(fieldList)
        .append(") values(@MaxFID,")
        .append(std::to_string(row))
        .append(",")
        .append(values);
    AppendLine(batch, ") ");
}

void FinishImportBatch(std::string& batch, std::int32_t existingId) {
    for (const char* line :
         {" declare @FNo int ", " declare @Vch_cursor CURSOR ", " Set @Vch_cursor = CURSOR FOR ",
          "     select distinct FNo from t_VchTemplateEntry where FID = @MaxFID ", " OPEN @Vch_cursor ",
          " FETCH @Vch_cursor into @FNo ", " while @@fetch_status=0 ", " Begin ",
          "     declare @FFileCount int ", "     declare @Exp nvarchar(255) ",
          ("     select Top 1 @FFileCount=FFileCount,@Exp=FExp from t_VchTemplateEntry where FID = @MaxFID "
           "and FNo = @FNo order by FEntryID ")}) {
        AppendLine(batch, line);
    }
    if (existingId == kNewTemplate) {
        AppendLine(batch,
                   "     insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) "
                   "values(@MaxFID,@FNo,0,@Exp,@FFileCount) ");
    } else {
        AppendLine(batch,
                   "     update t_VchTpControl set FFileCount = @FFileCount,FKey = @Exp where FID = @MaxFID "
                   "and FNo = "
                   "@FNo ");
    }
    for (const char* line : {"     fetch next from @Vch_cursor into @FNo ", " End ", " close @Vch_cursor ",
                             " deallocate @Vch_cursor "}) {
        AppendLine(batch, line);
    }
    if (existingId != kNewTemplate) {
        AppendLine(
            batch,
            " delete t_VchTpControl where FID = @MaxFID and FNo not in (select FNo from t_VchTemplateEntry "
            "where FID = @MaxFID) ");
    }
}

}  // namespace vicenter::exchange
