#include "exchange/marked_copy.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <string_view>

#include "automation/class_registry.h"
#include "entry/message_box.h"
#include "exchange/import_reading.h"
#include "exchange/template_sheet.h"
#include "platform/system/file_dialog_flags.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"
#include "text/ascii.h"

namespace vicenter::exchange {

namespace {

using automation::Error;
using automation::Variant;

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";
constexpr std::int32_t kFaultColor = 38;  // of the standard palette: rose
constexpr std::int32_t kNoColor = -4142;
constexpr double kReasonsWidth = 48;
constexpr std::size_t kMostReasonBytes = 2000;  // of one row

// What servers leave out is no reason to write no copy.
void IfKnown(const std::function<void()>& step) {
    try {
        step();
    } catch (const Error&) {
        // As good without.
    }
}

struct FileParts {
    std::string folder;
    std::string base;
    std::string extension;
};

FileParts PartsOf(const std::string& fileName) {
    const ObjectRef files = automation::CreateObject(kFileSystemProgId);
    FileParts parts;
    parts.base = files->Call("GetBaseName", {fileName}).ToText();
    parts.extension = files->Call("GetExtensionName", {fileName}).ToText();
    const std::size_t tail = parts.base.size() + parts.extension.size() + (parts.extension.empty() ? 0 : 1);
    parts.folder = fileName.substr(0, fileName.size() - std::min(fileName.size(), tail));
    return parts;
}

// Colours and reasons of one sheet.
class Marker {
  public:
    explicit Marker(const TemplateSheet& opened)
        : sheet_(opened.Sheet()), cells_(opened.Sheet()), reasons_(opened.LastColumn() + 1) {
        if (opened.HasReasons()) ForgetMarks(opened.LastRow());
    }

    void Mark(const std::vector<LineFault>& faults) {
        std::map<std::int32_t, std::string> reasons;
        for (const LineFault& fault : faults) {
            const std::int32_t row = std::max(fault.row, 1);
            if (fault.row > 0 && fault.column > 0) Color(fault.row, fault.column, kFaultColor);
            Join(reasons[row], fault);
        }
        const std::string ofHeader = reasons.contains(1) ? "：" + reasons[1] : std::string();
        reasons[1] = kReasonsHeader + ofHeader;
        for (const auto& [row, text] : reasons)
            cells_.SetValue(row, reasons_, "'" + text);
        cells_.At(1, reasons_)->Put("NumberFormat", kReasonsFormat);
        Color(1, reasons_, kFaultColor);
        IfKnown([&] { sheet_->Get("Columns", {reasons_}).AsObject()->Put("ColumnWidth", kReasonsWidth); });
        cells_.At(1, 1)->Call("Select");
    }

  private:
    // A fault in a hidden column is nowhere to be seen.
    void Color(std::int32_t row, std::int32_t column, std::int32_t color) {
        const ObjectRef cell = cells_.At(row, column);
        cell->Get("Interior").AsObject()->Put("ColorIndex", color);
        IfKnown([&] {
            const ObjectRef whole = cell->Get("EntireColumn").AsObject();
            if (whole->Get("Hidden").ToBoolean()) whole->Put("Hidden", false);
        });
    }

    static void Join(std::string& text, const LineFault& fault) {
        if (text.size() >= kMostReasonBytes) return;
        if (!text.empty()) text += "；";
        if (!fault.header.empty()) text += fault.header + " ";
        text += fault.reason;
    }

    // What an earlier copy has marked, mended or not.
    void ForgetMarks(std::int32_t rows) {
        for (std::int32_t row = 1; row <= rows; ++row) {
            if (cells_.Value(row, reasons_).ToTextOrEmpty().empty()) continue;
            cells_.SetValue(row, reasons_, "");
            for (std::int32_t column = 1; column < reasons_; ++column) {
                const ObjectRef interior = cells_.At(row, column)->Get("Interior").AsObject();
                if (interior->Get("ColorIndex").ToInt32() == kFaultColor)
                    interior->Put("ColorIndex", kNoColor);
            }
        }
    }

    ObjectRef sheet_;
    SheetCells cells_;
    std::int32_t reasons_;
};

}  // namespace

std::string MarkedCopyName(const std::string& fileName) {
    const FileParts parts = PartsOf(fileName);
    const bool marked = parts.base.ends_with(kMarkedMark);
    return parts.folder + parts.base + (marked ? "" : kMarkedMark) + "." + parts.extension;
}

std::string TemplateNameOf(const std::string& fileName) {
    // As it is stored.
    std::string base(system::TrimBlanks(PartsOf(fileName).base));
    if (!base.ends_with(kMarkedMark) || base == kMarkedMark) return base;
    try {
        if (!TemplateSheet(fileName).HasReasons()) return base;
    } catch (const Refused&) {
        return base;
    } catch (const Error&) {
        return base;  // the import says why it cannot be read
    }
    const std::string_view original(base.data(), base.size() - std::string_view(kMarkedMark).size());
    return std::string(system::TrimBlanks(original));
}

std::string WriteMarkedCopy(const std::string& fileName, const std::vector<LineFault>& faults,
                            const std::string& target) {
    try {
        std::error_code failed;
        if (std::filesystem::equivalent(system::PathFromUtf8(fileName), system::PathFromUtf8(target), failed))
            return "标错副本不能覆盖原工作簿，请另选文件名！";
        if (std::string refusal = WhyNotWorkbookTarget(target); !refusal.empty()) return refusal;
        const TemplateSheet opened(fileName);
        Marker(opened).Mark(faults);
        std::string errorText;
        if (SaveWorkbookAs(opened.Application(), opened.Workbook(), target, errorText, false)) return {};
        return errorText.empty() ? "工作簿未能写入：" + target : errorText;
    } catch (const Refused& refused) {
        return refused.faults.empty() ? refused.text
                                      : refused.faults.front().reason + "，没有可以标错的内容！";
    } catch (const Error& error) {
        return ReasonOf(error);
    }
}

void SaveMarkedCopy(ExchangeTarget& window, const std::string& fileName) {
    try {
        IsExcelInstalled();
        window.ShowProgress("正在检查工作簿，请稍后...");
        WorkbookLines workbook;
        try {
            workbook = ReadWorkbookLines(window, fileName);
        } catch (const Cancelled&) {
            window.HideProgress();
            return;
        }
        window.HideProgress();
        if (workbook.refusal.empty()) {
            entry::Tell("工作簿已经没有错误，可以直接引入！");
            return;
        }
        system::FileRequest request;
        request.title = "指定标错副本文件名";
        request.flags = system::file_dialog::kForSaving;
        request.filters = {{"Excel File (*.xls)", "*.xls"}};
        if (ExcelVersion() >= kFirstXlsxVersion) {
            request.filters.push_back({"Excel File (*.xlsx)", "*.xlsx"});
            request.selectedFilter = text::LowerAscii(fileName).ends_with(".xls") ? 0 : 1;
        }
        request.proposedName = MarkedCopyName(fileName);
        const auto target = system::Surroundings::Current().fileDialogs->ChooseFileToSave(request);
        if (!target || target->empty()) return;
        const std::string why = WriteMarkedCopy(fileName, workbook.faults, *target);
        entry::Tell(
            why.empty()
                ? "标错副本已保存，有错误的单元格已着色，原因在最后一列。更正后可以直接引入！\r\n\r\n" +
                      *target
                : "标错副本保存失败！" + why);
    } catch (const Error& error) {
        entry::Tell("标错副本保存失败！" + ReasonOf(error));
    }
}

}  // namespace vicenter::exchange
