#include "exchange/import_reading.h"

#include <algorithm>
#include <optional>

#include "automation/class_registry.h"
#include "automation/quietly.h"
#include "entry/host_context.h"
#include "entry/names.h"
#include "exchange/cell_reading.h"
#include "exchange/excel_access.h"
#include "exchange/import_checks.h"
#include "exchange/import_rows.h"
#include "platform/system/collation.h"
#include "platform/system/unfinished_file.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/template_batches.h"

namespace vicenter::exchange {

namespace {

using automation::Error;
using automation::Variant;

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";
constexpr std::int32_t kRowsBetweenReports = 200;
// No message box shows more; the rows after them are not looked at any more.
constexpr std::size_t kMaxErrorBytes = 8u << 20;

// A copy of the file that goes with the scope, so that a workbook that somebody has open can still be read.
class TemporaryCopy {
  public:
    TemporaryCopy(ObjectRef files, const std::string& fileName) : files_(std::move(files)) {
        name_ = entry::MakeTempName(true, files_->Call("GetExtensionName", {fileName}).ToText());
        unfinished_.emplace(name_);
        files_->Call("CopyFile", {fileName, name_, true});
    }
    TemporaryCopy(const TemporaryCopy&) = delete;
    TemporaryCopy& operator=(const TemporaryCopy&) = delete;
    ~TemporaryCopy() {
        // What cannot be removed is left to the next start.
        automation::Quietly([this] {
            if (files_->Call("FileExists", {name_}).ToBoolean()) files_->Call("DeleteFile", {name_, true});
        });
    }
    const std::string& Name() const { return name_; }

  private:
    ObjectRef files_;
    std::string name_;
    std::optional<system::UnfinishedFile> unfinished_;
};

ObjectRef FindTemplateSheet(const ObjectRef& workbook) {
    const ObjectRef sheets = workbook->Get("Worksheets").AsObject();
    const std::int32_t count = sheets->Get("Count").ToInt32();
    for (std::int32_t i = 1; i <= count; ++i) {
        ObjectRef sheet = sheets->Get("Item", {i}).AsObject();
        if (system::Collator::Chinese().Compare(sheet->Get("Name").ToText(), kSheetName) == 0) return sheet;
    }
    throw Refused{"引入模板失败！模板文件结构不正确，无法找到[凭证模板]sheet页！",
                  {{0, 0, "", "", "没有名为“凭证模板”的工作表"}}};
}

// `last`: the header of the sheet's last column, which the check never sees.
std::vector<LineFault> MissingFaults(std::string_view missing, std::string_view last) {
    std::vector<LineFault> faults;
    while (!missing.empty()) {
        const std::string_view header = missing.substr(0, missing.find(','));
        const bool isLast = FindColumn(header) == FindColumn(last);
        faults.push_back({1, 0, std::string(header), "", isLast ? "必录列不能是最后一列" : "缺少必录列"});
        missing.remove_prefix(std::min(missing.size(), header.size() + 1));
    }
    return faults;
}

// The field list of the sheet's columns; refuses a sheet whose headers do not do.
std::string ReadHeader(const ObjectRef& sheet, std::int32_t columnCount) {
    SheetCells cells(sheet);
    std::string errorText;
    std::vector<LineFault> faults;
    std::string seen = "|";
    std::string fieldList;
    std::string header;
    for (std::int32_t column = 1; column <= columnCount; ++column) {
        // A header counts as seen when the next one comes: the last one never does.
        if (column > 1) seen.append(header).append("|");
        const Variant value = cells.Value(1, column);
        header = value.IsError()
                     ? ""
                     : std::string(system::TrimBlanks(WithoutInvisibleMarks(value.ToTextOrEmpty())));
        if (!MapImportHeader(header, errorText, seen, column, fieldList)) {
            faults.push_back({1, column, header, header, FindColumn(header) ? "存在同名列" : "列名错误"});
        }
    }
    if (!errorText.empty()) {
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

// The insert of every row, and how many; refuses a sheet with faulty rows.
std::int32_t AppendRows(ExchangeTarget& window, const ObjectRef& sheet, std::int32_t columnCount,
                        std::int32_t rowCount, const std::string& fieldList, std::string& batch) {
    ImportRows rows(sheet, columnCount, fieldList);
    const store::LineInserts inserts(fieldList);
    std::string values;
    std::string errorText;
    std::int32_t lines = 0;
    const auto take = [&](std::int32_t row) {
        rows.ValidateImportRow(row, values, errorText);
        ++lines;
        if (!errorText.empty()) return;
        // The number of the sheet's row becomes the line's FEntryID.
        inserts.Begin(batch, row);
        batch += values;
        store::LineInserts::End(batch);
    };
    std::int32_t firstBlank = 0;  // of the blank rows right above, 0 for none
    for (std::int32_t row = 2; row <= rowCount && errorText.size() < kMaxErrorBytes; ++row) {
        if (rows.ReadRow(row)) {
            // Blank rows count as rows only when something follows them.
            if (firstBlank > 0) {
                for (std::int32_t blank = firstBlank; blank < row && errorText.size() < kMaxErrorBytes;
                     ++blank) {
                    take(blank);
                }
                firstBlank = 0;
            }
            take(row);
        } else if (firstBlank == 0) {
            firstBlank = row;
        }
        if ((row % kRowsBetweenReports == 0 || row == rowCount) &&
            !window.ReportRows(row - 1, rowCount - 1)) {
            throw Cancelled();
        }
    }
    if (!errorText.empty())
        throw Refused{"引入模板失败！模板文件数据存在以下错误: " + errorText, rows.TakeFaults()};
    return lines;
}

}  // namespace

ImportBatch ReadTemplateWorkbook(ExchangeTarget& window, const std::string& fileName, std::int32_t existingId,
                                 const std::string& name) {
    const ObjectRef files = automation::CreateObject(kFileSystemProgId);
    if (!files->Call("FileExists", {fileName}).ToBoolean()) {
        throw Refused{"引入模板失败！源文件不存在！", {{0, 0, "", "", "源文件不存在"}}, entry::kMessageTitle};
    }
    const TemporaryCopy copy(files, fileName);
    const ExcelSession session;
    session.Application()->Put("DisplayAlerts", false);
    const ObjectRef workbook =
        session.Application()->Get("Workbooks").AsObject()->Call("Open", {copy.Name()}).AsObject();
    const ObjectRef sheet = FindTemplateSheet(workbook);
    sheet->Call("Activate");
    const ObjectRef used = sheet->Get("UsedRange").AsObject();
    const std::int32_t columnCount = used->Get("Columns").AsObject()->Get("Count").ToInt32();
    const std::int32_t rowCount = used->Get("Rows").AsObject()->Get("Count").ToInt32();

    const std::string fieldList = ReadHeader(sheet, columnCount);
    ImportBatch batch;
    const std::string userId = entry::CurrentUserId();
    // The standard template stays everybody's, whoever replaces it.
    store::BeginTemplate(batch.text, existingId, name,
                         existingId == store::kStandardTemplateId ? "0" : userId);
    batch.lines = AppendRows(window, sheet, columnCount, rowCount, fieldList, batch.text);
    batch.text.append(store::ControlRows(existingId)).append(entry::kCrLf);
    return batch;
}

}  // namespace vicenter::exchange
