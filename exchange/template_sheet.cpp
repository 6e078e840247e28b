#include "exchange/template_sheet.h"

#include <algorithm>
#include <set>
#include <utility>

#include "automation/class_registry.h"
#include "automation/quietly.h"
#include "entry/message_box.h"
#include "entry/names.h"
#include "exchange/import_refusal.h"
#include "exchange/marked_copy.h"
#include "exchange/template_columns.h"
#include "platform/system/collation.h"
#include "store/number_text.h"

namespace vicenter::exchange {

namespace {

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";

// The file system, where the file is there.
ObjectRef FilesWith(const std::string& fileName) {
    ObjectRef files = automation::CreateObject(kFileSystemProgId);
    if (!files->Call("FileExists", {fileName}).ToBoolean()) {
        throw Refused{"引入模板失败！源文件不存在！", {{0, 0, "", "", "源文件不存在"}}, entry::kMessageTitle};
    }
    return files;
}

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

std::string TextOf(const automation::Variant& value) {
    return store::TrimmedOfAnyBlanks(store::WithoutInvisibleMarks(value.ToTextOrEmpty()));
}

}  // namespace

TemporaryCopy::TemporaryCopy(ObjectRef files, const std::string& fileName) : files_(std::move(files)) {
    name_ = entry::MakeTempName(true, files_->Call("GetExtensionName", {fileName}).ToText());
    unfinished_.emplace(name_);
    files_->Call("CopyFile", {fileName, name_, true});
}

TemporaryCopy::~TemporaryCopy() {
    // What cannot be removed is left to the next start.
    automation::Quietly([this] {
        if (files_->Call("FileExists", {name_}).ToBoolean()) files_->Call("DeleteFile", {name_, true});
    });
}

TemplateSheet::TemplateSheet(const std::string& fileName, bool tidily)
    : copy_(FilesWith(fileName), fileName), tidily_(tidily) {
    Application()->Put("DisplayAlerts", false);
    workbook_ = Application()->Get("Workbooks").AsObject()->Call("Open", {copy_.Name()}).AsObject();
    sheet_ = FindTemplateSheet(workbook_);
    sheet_->Call("Activate");
    ReadUsedRange();
    hasReasons_ = lastColumn_ > firstColumn_ && IsReasons(lastColumn_);
    if (hasReasons_) --lastColumn_;
    if (tidily_) {
        const std::int32_t found = FindHeaderRow();
        headerRow_ = found > 0 ? found : firstRow_;
    }
    ChooseColumns();
}

// It begins where the first cell in use stands, which need not be the sheet's first: counts alone are no
// places.
void TemplateSheet::ReadUsedRange() {
    const ObjectRef used = sheet_->Get("UsedRange").AsObject();
    firstColumn_ = used->Get("Column").ToInt32();
    firstRow_ = used->Get("Row").ToInt32();
    lastColumn_ = firstColumn_ + used->Get("Columns").AsObject()->Get("Count").ToInt32() - 1;
    lastRow_ = firstRow_ + used->Get("Rows").AsObject()->Get("Count").ToInt32() - 1;
}

void TemplateSheet::ChooseColumns() {
    // Where columns in front are blank the sheet is refused by the first of them, and no further one is told.
    const std::int32_t last = tidily_ ? lastColumn_ : lastColumn_ - firstColumn_ + 1;
    for (std::int32_t column = 1; column <= last; ++column) {
        if (!tidily_ || !IsBlankFrom(headerRow_, column)) columns_.push_back(column);
    }
}

bool TemplateSheet::IsBlankFrom(std::int32_t firstRow, std::int32_t column) const {
    if (column < firstColumn_) return true;
    // A sheet formatted to its last column is no table: every cell of it would be looked at.
    constexpr std::int64_t kMostCells = 4'000'000;
    if (std::int64_t{lastRow_} * lastColumn_ > kMostCells) return false;
    SheetCells cells(sheet_);
    for (std::int32_t row = firstRow; row <= lastRow_; ++row) {
        const automation::Variant value = cells.Value(row, column);
        if (value.IsError() || !TextOf(value).empty()) return false;
    }
    return true;
}

std::string TemplateSheet::HeaderAt(std::int32_t row, std::int32_t column) const {
    const automation::Variant value = SheetCells(sheet_).Value(row, column);
    return value.IsError() ? std::string() : TextOf(value);
}

bool TemplateSheet::IsReasons(std::int32_t column) const {
    if (!HeaderAt(1, column).starts_with(kReasonsHeader)) return false;
    return SheetCells(sheet_).At(1, column)->Get("NumberFormat").ToTextOrEmpty() == kReasonsFormat;
}

std::int32_t TemplateSheet::FindHeaderRow() const {
    constexpr std::int32_t kRowsToSearch = 20;
    const auto required = std::count_if(kColumns.begin(), kColumns.end(), [](const TemplateColumn& column) {
        return column.header.ends_with("(*)");
    });
    for (std::int32_t row = firstRow_; row <= lastRow_ && row < firstRow_ + kRowsToSearch; ++row) {
        std::set<std::size_t> found;
        for (std::int32_t column = firstColumn_; column <= lastColumn_; ++column) {
            const auto place = FindColumn(HeaderAt(row, column));
            if (place && kColumns[*place].header.ends_with("(*)")) found.insert(*place);
        }
        if (found.size() == static_cast<std::size_t>(required)) return row;
    }
    return 0;
}

}  // namespace vicenter::exchange
