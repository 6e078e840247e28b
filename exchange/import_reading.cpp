#include "exchange/import_reading.h"

#include <algorithm>
#include <functional>

#include "entry/host_context.h"
#include "entry/sql_text.h"
#include "exchange/import_checks.h"
#include "exchange/import_rows.h"
#include "exchange/template_sheet.h"
#include "platform/system/collation.h"
#include "store/cls_vi_data.h"
#include "store/template_batches.h"

namespace vicenter::exchange {

namespace {

using automation::Error;

constexpr std::int32_t kRowsBetweenReports = 200;
// No message box shows more; the rows after them are not looked at any more.
constexpr std::size_t kMaxErrorBytes = 8u << 20;

// `last`: the header of the sheet's last column, which the check never sees.
std::vector<LineFault> MissingFaults(std::string_view missing, std::string_view last) {
    std::vector<LineFault> faults;
    while (!missing.empty()) {
        const std::string_view header = missing.substr(0, missing.find(','));
        const bool isLast = FindColumn(header) == FindColumn(last);
        faults.push_back({1, 0, std::string(header), "",
                          isLast ? "必录列不能是最后一列，请把它移到前面" : "缺少必录列，请补上这一列"});
        missing.remove_prefix(std::min(missing.size(), header.size() + 1));
    }
    return faults;
}

// What a header should have been, where that is plain: the text without its mark, with blanks, brackets of
// the other width or the message's own word for it.
std::string MeantHeader(const std::string& header) {
    const auto plain = [](std::string_view text) {
        std::string letters = system::Collator::Chinese().Fold(text);
        for (const std::string_view part : {"(*)", "*", " ", "\t", "/", "、", "(", ")"}) {
            for (std::size_t at = letters.find(part); at != letters.npos; at = letters.find(part))
                letters.erase(at, part.size());
        }
        return letters;
    };
    const std::string meant = header == "科目编码" || header == "科目编码(*)" ? "科目代码" : plain(header);
    for (const TemplateColumn& column : kColumns) {
        if (!meant.empty() && plain(column.header) == plain(meant)) return std::string(column.header);
    }
    return {};
}

// Why a header is refused, and what to do.
std::string WhyNotHeader(const TemplateSheet& opened, std::int32_t column, const std::string& header) {
    if (FindColumn(header)) return "存在同名列，请删除其中一列";
    if (header.empty()) {
        return opened.IsBlankFrom(opened.HeaderRow(), column) ? "整列为空，请删除这一列，或者整理后引入"
                                                              : "没有列名，请填写列名或删除这一列";
    }
    const std::string meant = MeantHeader(header);
    return meant.empty() ? "列名错误，请改为模板的列名或删除这一列" : "列名错误，应为“" + meant + "”";
}

// The headers are further down: one thing to mend instead of as many as there are columns.
std::vector<LineFault> TitleFaults(const TemplateSheet& opened, std::int32_t headerRow) {
    std::string title;
    for (std::int32_t column = 1; column <= opened.LastColumn() && title.empty(); ++column)
        title = opened.HeaderAt(1, column);
    const std::string rows = headerRow == 2 ? "第 1 行" : "第 1 至 " + std::to_string(headerRow - 1) + " 行";
    return {{1, 0, "", title,
             "表头在第 " + std::to_string(headerRow) + " 行，请删除它上面的" + rows + "，或者整理后引入"}};
}

// The field list of the sheet's columns; refuses a sheet whose headers do not do.
std::string ReadHeader(const TemplateSheet& opened) {
    std::string errorText;
    std::vector<LineFault> faults;
    std::string seen = "|";
    std::string fieldList;
    std::string header;
    for (const std::int32_t column : opened.Columns()) {
        // A header counts as seen when the next one comes: the last one never does.
        if (column != opened.Columns().front()) seen.append(header).append("|");
        header = opened.HeaderAt(opened.HeaderRow(), column);
        if (!MapImportHeader(header, errorText, seen, column, fieldList))
            faults.push_back(
                {opened.HeaderRow(), column, header, header, WhyNotHeader(opened, column, header)});
    }
    if (!errorText.empty()) {
        if (const std::int32_t row = opened.FindHeaderRow(); row > opened.HeaderRow())
            faults = TitleFaults(opened, row);
        throw Refused{std::string("引入模板失败！模板文件结构不正确: ") + entry::kCrLf + errorText,
                      std::move(faults)};
    }
    std::string missing;
    if (!CheckRequiredColumns(seen, missing)) {
        throw Refused{"引入模板失败！模板文件结构不正确,缺少必录列: " + missing,
                      MissingFaults(missing, header)};
    }
    return fieldList;
}

// Hands over every row that counts, read, until enough() of it; throws Cancelled.
void WalkRows(ExchangeTarget& window, const TemplateSheet& opened, ImportRows& rows,
              const std::function<bool()>& enough, const std::function<void(std::int32_t)>& take) {
    const std::int32_t header = opened.HeaderRow();
    std::int32_t firstBlank = 0;  // of the blank rows right above, 0 for none
    for (std::int32_t row = header + 1; row <= opened.LastRow() && !enough(); ++row) {
        if (rows.ReadRow(row)) {
            // Blank rows count as rows only when something follows them.
            if (firstBlank > 0 && !opened.Tidily()) {
                for (std::int32_t blank = firstBlank; blank < row && !enough(); ++blank) {
                    take(blank);
                    rows.FoldFaultsOf(blank, "整行为空，请删除这一行，或者整理后引入");
                }
            }
            firstBlank = 0;
            take(row);
        } else if (firstBlank == 0) {
            firstBlank = row;
        }
        if ((row % kRowsBetweenReports == 0 || row == opened.LastRow()) &&
            !window.ReportRows(row - header, opened.LastRow() - header)) {
            throw Cancelled();
        }
    }
}

std::string RowsRefusal(const std::string& errorText) {
    return "引入模板失败！模板文件数据存在以下错误: " + errorText;
}

// Checks every row and writes its insert, as long as nothing is wrong; read() looks at each that has been.
// What is wrong, as an import says it.
std::string ReadRows(ExchangeTarget& window, const TemplateSheet& opened, ImportRows& rows,
                     const std::string& fieldList, std::string& inserts, const std::function<void()>& read) {
    const store::LineInserts insert(fieldList);
    std::string values;
    std::string errorText;
    const auto take = [&](std::int32_t row) {
        rows.ValidateImportRow(row, values, errorText);
        read();
        if (!errorText.empty()) return;
        // The number of the sheet's row becomes the line's FEntryID.
        insert.Begin(inserts, row);
        inserts += values;
        store::LineInserts::End(inserts);
    };
    WalkRows(
        window, opened, rows, [&] { return errorText.size() >= kMaxErrorBytes; }, take);
    return errorText.empty() ? errorText : RowsRefusal(errorText);
}

void BeginBatch(ImportBatch& batch, std::int32_t existingId, const std::string& name) {
    // The standard template stays everybody's, whoever replaces it.
    store::BeginTemplate(batch.text, existingId, name,
                         existingId == store::kStandardTemplateId ? "0" : entry::CurrentUserId());
}

void EndBatch(ImportBatch& batch, std::int32_t existingId) {
    batch.text.append(store::ControlRows(existingId)).append(entry::kCrLf);
}

}  // namespace

ImportBatch ReadTemplateWorkbook(ExchangeTarget& window, const std::string& fileName, std::int32_t existingId,
                                 const std::string& name, bool tidily) {
    const TemplateSheet opened(fileName, tidily);
    const std::string fieldList = ReadHeader(opened);
    ImportBatch batch;
    BeginBatch(batch, existingId, name);
    ImportRows rows(opened.Sheet(), opened.Columns(), fieldList);
    const std::string refusal = ReadRows(window, opened, rows, fieldList, batch.text, [&] { ++batch.lines; });
    if (!refusal.empty()) throw Refused{refusal, rows.TakeFaults()};
    EndBatch(batch, existingId);
    return batch;
}

ImportBatch BatchOfRead(std::string_view inserts, std::size_t lines, std::int32_t existingId,
                        const std::string& name) {
    ImportBatch batch;
    BeginBatch(batch, existingId, name);
    batch.text += inserts;
    batch.lines = static_cast<std::int32_t>(lines);
    EndBatch(batch, existingId);
    return batch;
}

WorkbookLines ReadWorkbookLines(ExchangeTarget& window, const std::string& fileName, bool tidily) {
    WorkbookLines result;
    try {
        const TemplateSheet opened(fileName, tidily);
        const std::string fieldList = ReadHeader(opened);
        ImportRows rows(opened.Sheet(), opened.Columns(), fieldList);
        result.refusal = ReadRows(window, opened, rows, fieldList, result.inserts,
                                  [&] { result.lines.push_back(rows.TextsAsStored()); });
        result.faults = rows.TakeFaults();
    } catch (const Refused& refused) {
        result.refusal = refused.text;
        result.faults = refused.faults;
    } catch (const Error& error) {
        result.refusal = kImportFailed;
        result.reason = ReasonOf(error);
        result.faults = {{0, 0, "", "", result.reason}};
    }
    return result;
}

std::string ReasonOf(const Error& error) {
    namespace number = automation::error_number;
    if (error.Text() != automation::ErrorText(error.Number())) return error.Text();
    switch (error.Number()) {
        case number::kPermissionDenied:
            return "文件不能读取：没有权限，或者磁盘出错";
        case number::kFileNotFound:
        case number::kPathNotFound:
            return "找不到文件";
        case number::kOutOfMemory:
            return "内存不足";
        case number::kCannotCreateObject:
            return "无法启动 Excel";
        default:
            return "错误 " + std::to_string(error.Number()) + "：" + error.Text();
    }
}

}  // namespace vicenter::exchange
