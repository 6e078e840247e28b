#include "exchange/import_several.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

#include "entry/message_box.h"
#include "exchange/excel_access.h"
#include "exchange/import_reading.h"
#include "exchange/import_template.h"
#include "exchange/marked_copy.h"
#include "exchange/template_columns.h"
#include "platform/system/collation.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"

namespace vicenter::exchange {

namespace {

using automation::Error;
using automation::Variant;
using system::PathFromUtf8;
using system::PathToUtf8;

constexpr const char* kReportName = "引入报告.xlsx";

// Questions are asked; what only tells goes into the report.
class QuestionsOnly : public system::MessageBoxes {
  public:
    explicit QuestionsOnly(system::Surroundings outside) : outside_(std::move(outside)) {}
    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override {
        if (buttons == system::MessageButtons::Ok) return system::MessageResult::Ok;
        const system::SurroundingsScope scope(outside_);
        return outside_.messageBoxes->Show(text, buttons, icon, title);
    }

  private:
    system::Surroundings outside_;
};

// The window of an import that is quiet. While it lets events in, other windows of the process may be worked
// in: what they tell is none of the import's.
class QuietWindow : public ExchangeTarget {
  public:
    QuietWindow(ExchangeTarget& window, system::Surroundings outside)
        : window_(window), outside_(std::move(outside)) {}
    std::string CurrentTemplateId() const override { return window_.CurrentTemplateId(); }
    std::string TemplateName() const override { return window_.TemplateName(); }
    std::int32_t EntryLineCount() const override { return window_.EntryLineCount(); }
    std::string EntryText(std::int32_t column, std::int32_t row) const override {
        return window_.EntryText(column, row);
    }
    void ShowProgress(const std::string& label) override { window_.ShowProgress(label); }
    void SetProgressLabel(const std::string& label) override { window_.SetProgressLabel(label); }
    bool ReportRows(std::int64_t done, std::int64_t all) override {
        const system::SurroundingsScope scope(outside_);
        return window_.ReportRows(done, all);
    }
    void HideProgress() override { window_.HideProgress(); }
    bool LookBeforeImport(const std::function<ImportPreview()>& read) override {
        return window_.LookBeforeImport(read);
    }
    void RebuildTreeAndSelect(std::int32_t id) override { window_.RebuildTreeAndSelect(id); }

  private:
    ExchangeTarget& window_;
    system::Surroundings outside_;
};

std::string NameOfFile(const std::string& file) {
    return PathToUtf8(PathFromUtf8(file).filename());
}

std::string OneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c == '\r' || c == '\n') {
            if (!line.empty() && line.back() != ' ') line += ' ';
        } else {
            line += c;
        }
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

// --- the report's workbook

// What a cell has no room for is cut off; every fault has a row of its own besides.
std::string InACell(const std::string& text) {
    constexpr std::size_t kMostUnits = 32'767;
    constexpr std::size_t kMostCharacters = kMostUnits / 2;  // of two units at most
    if (system::CodeUnitCount(text) <= kMostUnits) return text;
    return std::string(system::Head(text, kMostCharacters - 2)) + "……";
}

class ReportSheet {
  public:
    ReportSheet(const ObjectRef& sheet, const std::string& name, const std::vector<const char*>& headers)
        : sheet_(sheet), cells_(sheet) {
        sheet->Put("Name", name);
        std::int32_t column = 0;
        for (const char* header : headers) {
            cells_.SetValue(1, ++column, header);
            cells_.At(1, column)->Get("Interior").AsObject()->Put("ColorIndex", kHeaderColor);
        }
        columns_ = column;
    }
    void Add(const std::vector<Variant>& values) {
        ++row_;
        std::int32_t column = 0;
        for (const Variant& value : values) {
            ++column;
            // Texts stay texts, whatever they look like.
            if (value.IsText() && !value.AsText().empty()) {
                cells_.SetValue(row_, column, "'" + InACell(value.AsText()));
            } else if (!value.IsText()) {
                cells_.SetValue(row_, column, value);
            }
        }
    }
    // The header among them.
    std::int32_t Rows() const { return row_; }
    void Finish() {
        const std::string columns = "A:" + ColumnLetter(columns_);
        sheet_->Get("Columns", {columns}).AsObject()->Call("AutoFit");
    }

  private:
    ObjectRef sheet_;
    SheetCells cells_;
    std::int32_t row_ = 1;
    std::int32_t columns_ = 0;
};

// More than anybody reads, and as many as a workbook of either kind has room for.
constexpr std::int32_t kMostFaultRows = 60'000;

void FillReport(const ObjectRef& workbook, const std::vector<ImportOutcome>& outcomes) {
    const ObjectRef sheets = workbook->Get("Worksheets").AsObject();
    while (sheets->Get("Count").ToInt32() < 2)
        sheets->Call("Add");
    ReportSheet files(sheets->Get("Item", {1}).AsObject(), "引入结果",
                      {"文件", "模板", "结果", "分录", "异常", "说明"});
    ReportSheet faults(sheets->Get("Item", {2}).AsObject(), "异常",
                       {"文件", "行", "列", "列名", "内容", "原因"});
    std::size_t untold = 0;
    for (const ImportOutcome& outcome : outcomes) {
        const std::string file = NameOfFile(outcome.file);
        files.Add({file, outcome.templateName, ReportState(outcome), outcome.lines,
                   static_cast<std::int32_t>(outcome.faults.size()), ReportText(outcome)});
        for (const LineFault& fault : outcome.faults) {
            if (faults.Rows() >= kMostFaultRows) {
                ++untold;
                continue;
            }
            const Variant row = fault.row > 0 ? Variant(fault.row) : Variant("");
            const std::string column = fault.column > 0 ? ColumnLetter(fault.column) : std::string();
            faults.Add({file, row, column, fault.header, fault.value, fault.reason});
        }
    }
    if (untold > 0) faults.Add({"", "", "", "", "", "其余 " + std::to_string(untold) + " 处没有列出"});
    files.Finish();
    faults.Finish();
    sheets->Get("Item", {1}).AsObject()->Call("Select");
}

}  // namespace

std::string NamesOnce::WhyNot(const std::string& file) {
    const std::string name = TemplateNameOf(file);
    const auto [place, isNew] = files_.try_emplace(system::Collator::Chinese().Fold(name), file);
    if (isNew) return {};
    return "引入模板失败！文件夹中有同名的工作簿“" + NameOfFile(place->second) + "”，请分别引入或改名！";
}

std::vector<ImportOutcome> ImportTemplates(ExchangeTarget& window) {
    ImportOutcome refused;
    std::optional<std::vector<std::string>> files;
    try {
        files = ChooseWorkbooks(refused);
    } catch (const Error& error) {
        entry::Tell(kImportFailed);
        refused.refusal = kImportFailed;
        refused.reason = ReasonOf(error);
        refused.faults.push_back({0, 0, "", "", refused.reason});
    }
    if (!files) return {refused};
    return ImportTemplateFiles(window, std::move(*files));
}

std::vector<ImportOutcome> ImportTemplateFiles(ExchangeTarget& window, std::vector<std::string> files) {
    if (files.size() == 1) return {ImportTemplateFile(window, files.front())};
    std::sort(files.begin(), files.end());
    const system::Surroundings outside = system::Surroundings::Current();
    QuietWindow quiet(window, outside);
    system::Surroundings surroundings = outside;
    surroundings.messageBoxes = std::make_shared<QuestionsOnly>(outside);
    const system::SurroundingsScope scope(surroundings);
    NamesOnce names;
    std::vector<ImportOutcome> outcomes;
    for (const std::string& file : files) {
        ImportOutcome outcome;
        outcome.file = file;
        outcome.refusal = names.WhyNot(file);
        if (outcome.refusal.empty()) outcome = ImportTemplateFile(quiet, file);
        outcomes.push_back(std::move(outcome));
    }
    return outcomes;
}

std::string ReportSummary(const std::vector<ImportOutcome>& outcomes, int skipped) {
    int templates = 0;
    std::int32_t lines = 0;
    for (const ImportOutcome& outcome : outcomes) {
        templates += outcome.written ? 1 : 0;
        lines += outcome.lines;
    }
    std::string text = "共 " + std::to_string(outcomes.size()) + " 个文件：引入模板 " +
                       std::to_string(templates) + " 个、分录 " + std::to_string(lines) + " 行，未引入 " +
                       std::to_string(outcomes.size() - static_cast<std::size_t>(templates)) + " 个";
    if (skipped > 0) text += "，跳过锁定文件 " + std::to_string(skipped) + " 个";
    return text;
}

std::string ReportState(const ImportOutcome& outcome) {
    if (outcome.written) return "已引入";
    return outcome.refusal.empty() ? "已取消" : "未引入";
}

std::string ReportText(const ImportOutcome& outcome) {
    if (outcome.written) return OneLine(outcome.told);
    std::string text = outcome.refusal.empty() ? "没有确认，未引入。" : OneLine(outcome.refusal);
    if (!outcome.reason.empty()) text += " " + OneLine(outcome.reason);
    return text;
}

std::string WhyNotOverImported(const std::vector<std::string>& files, const std::string& target) {
    const bool isOne = std::any_of(files.begin(), files.end(), [&](const std::string& file) {
        std::error_code failed;
        return std::filesystem::equivalent(PathFromUtf8(file), PathFromUtf8(target), failed);
    });
    return isOne ? "目标是引入的工作簿，不能覆盖，请另选文件名：" + target : std::string();
}

std::string WriteImportReport(const std::vector<ImportOutcome>& outcomes, const std::string& target) {
    try {
        std::vector<std::string> files;
        files.reserve(outcomes.size());
        for (const ImportOutcome& outcome : outcomes)
            files.push_back(outcome.file);
        if (std::string refusal = WhyNotOverImported(files, target); !refusal.empty()) return refusal;
        if (std::string refusal = WhyNotWorkbookTarget(target); !refusal.empty()) return refusal;
        const ExcelSession session;
        const ObjectRef workbook = session.Application()->Get("Workbooks").AsObject()->Call("Add").AsObject();
        FillReport(workbook, outcomes);
        std::string errorText;
        if (SaveWorkbookAs(session.Application(), workbook, target, errorText, false)) return {};
        return errorText.empty() ? "工作簿未能写入：" + target : errorText;
    } catch (const Error& error) {
        return ReasonOf(error);
    }
}

void SaveImportReport(const std::vector<ImportOutcome>& outcomes) {
    try {
        constexpr std::uint32_t kFlags = 0x80000 | 0x800 | 0x4 | 0x2;
        system::FileRequest request;
        request.title = "指定引入报告文件名";
        request.flags = kFlags;
        request.filters = {{"Excel File (*.xlsx)", "*.xlsx"}};
        request.proposedName = kReportName;
        const auto target = system::Surroundings::Current().fileDialogs->ChooseFileToSave(request);
        if (!target || target->empty()) return;
        const std::string why = WriteImportReport(outcomes, *target);
        entry::Tell(why.empty() ? "引入报告已保存！\r\n\r\n" + *target : "引入报告保存失败！" + why);
    } catch (const Error& error) {
        entry::Tell("引入报告保存失败！" + ReasonOf(error));
    }
}

}  // namespace vicenter::exchange
