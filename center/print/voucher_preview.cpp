#include "center/print/voucher_preview.h"

#include <map>
#include <utility>

#include "automation/error.h"
#include "center/frame/vicenter_view.h"
#include "center/frame/window_state.h"
#include "center/grid/line_texts.h"
#include "center/health/template_check.h"
#include "center/print/voucher_sheet.h"
#include "platform/system/file_dialog_flags.h"
#include "platform/system/file_names.h"
#include "platform/system/file_replacement.h"
#include "platform/system/surroundings.h"
#include "store/engine_text.h"
#include "store/item_names.h"
#include "text/ascii.h"

namespace vicenter::center {

namespace {

constexpr const char* kPdfEnd = ".pdf";

std::string TwoDigits(int value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

std::string Today() {
    const automation::DateTimeParts now = system::Surroundings::Current().clock->Now().Parts();
    return std::to_string(now.year) + "-" + TwoDigits(now.month) + "-" + TwoDigits(now.day);
}

PrintSheet EmptySheet(const SheetHead& head) {
    return {head.templateName, head.accountSet, head.user, Today(), SheetColumns(), {}};
}

// The rows of the pattern alone, with what the checks have said of them.
int CopyRows(const EntryGrid& from, const std::vector<int>& rows, EntryGrid& to) {
    to.SetRowTotal(static_cast<int>(rows.size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int target = static_cast<int>(i) + 1;
        std::array<std::string, kColumnCount> texts;
        for (int c = 1; c <= kColumnCount; ++c)
            texts[static_cast<std::size_t>(c - 1)] = std::string(from.Text(rows[i], c));
        to.FillRow(target, texts);
        for (int c = 1; c <= kColumnCount; ++c) {
            if (const int check = from.FaultyCheck(rows[i], c); check > 0)
                to.SetFaultyCheck(target, check, true);
        }
    }
    return static_cast<int>(rows.size());
}

std::string InLine(int line, const std::string& what) {
    return "第 " + std::to_string(line) + " 行：" + what;
}

std::vector<std::string> QuestionsOf(const EntryGrid& pattern, int rows) {
    std::vector<std::string> questions;
    TemplateCheck check;
    for (const TemplateFinding& finding : check.Check(pattern, rows)) {
        // Of the number as a whole the sheet says itself that it does not balance.
        if (finding.column == 0) continue;
        const std::string column(Column(finding.column).Title());
        questions.push_back(InLine(finding.row, column + (finding.value.empty() ? "" : " " + finding.value) +
                                                    "，" + finding.reason));
    }
    for (int row = 1; row <= rows; ++row) {
        if (pattern.Text(row, column::kDirection).empty()) questions.push_back(InLine(row, "借贷方向待定"));
        if (pattern.Text(row, column::kAccountNumber).empty()) questions.push_back(InLine(row, "科目待定"));
        if (pattern.Text(row, column::kAmount).empty()) questions.push_back(InLine(row, "金额待填"));
    }
    return questions;
}

// Codes with their names, asked for once for an account and its items.
class KnownItems {
  public:
    std::string Of(const EntryGrid& grid, int row) {
        const std::string codes(grid.Text(row, column::kItems));
        if (codes.empty()) return {};
        const std::string account(grid.Text(row, column::kAccountNumber));
        const auto [known, isNew] = texts_.try_emplace({account, codes}, codes);
        if (isNew) known->second = Named(account, codes);
        return known->second;
    }

  private:
    // The codes alone where the account has no such items.
    static std::string Named(const std::string& account, const std::string& codes) {
        std::string text;
        std::string found;
        for (const store::NamedItem& item : store::NamedItems(account, codes)) {
            found += (found.empty() ? "" : ",") + item.code;
            if (item.code.empty()) continue;
            text += (text.empty() ? "" : "、") + item.code + (item.name.empty() ? "" : " " + item.name);
        }
        return found == codes ? text : codes;
    }

    std::map<std::pair<std::string, std::string>, std::string> texts_;
};

}  // namespace

PrintSheet TemplateSheet(const EntryGrid& grid, int rowCount, const SheetHead& head) {
    PrintSheet sheet = EmptySheet(head);
    KnownItems items;
    sheet.blocks =
        VoucherBlocks(grid, rowCount, [&](const EntryGrid& from, int at) { return items.Of(from, at); });
    return sheet;
}

std::string WhyNotPdfTarget(const std::string& file) {
    return system::WhyNotWritable(file, {"PDF 文件", {"%PDF-"}, {"pdf"}});
}

bool SaveAsPdf(VICenterView& view, const PrintSheet& sheet, const std::string& proposedName) {
    system::FileRequest request;
    request.title = "另存为 PDF";
    request.flags = system::file_dialog::kForSaving;
    request.filters = {{"PDF 文件 (*.pdf)", "*.pdf"}};
    request.proposedName = system::SafeFileName(proposedName) + kPdfEnd;
    auto file = system::Surroundings::Current().fileDialogs->ChooseFileToSave(request);
    if (!file || file->empty()) return false;
    if (!text::LowerAscii(*file).ends_with(kPdfEnd)) *file += kPdfEnd;
    try {
        view.WritePdf(sheet, *file);
    } catch (const automation::Error& error) {
        Tell("PDF 文件未能写入！\r\n\r\n" + store::EngineTextInChinese(error.Text()));
        return false;
    }
    view.TellDone("已另存为 PDF", *file);
    return true;
}

bool PrintOut(VICenterView& view, const PrintSheet& sheet) {
    try {
        if (!view.Print(sheet)) return false;
    } catch (const automation::Error& error) {
        Tell("打印失败！\r\n\r\n" + store::EngineTextInChinese(error.Text()));
        return false;
    }
    view.TellDone("已送打印：" + sheet.title, "");
    return true;
}

VoucherPreview::VoucherPreview(const EntryGrid& grid, int rowCount, int row, const SheetHead& head)
    : sheet_(EmptySheet(head)), number_(NumberOfRow(grid, row)) {
    const std::vector<int> rows = RowsOfNumber(grid, rowCount, number_);
    EntryGrid pattern;
    const int count = CopyRows(grid, rows, pattern);
    KnownItems items;
    sheet_.blocks.push_back(
        VoucherBlock(grid, rows, number_, [&](const EntryGrid& from, int at) { return items.Of(from, at); }));
    std::vector<std::string>& notes = sheet_.blocks.front().notes;
    for (std::string& question : QuestionsOf(pattern, count))
        notes.push_back(std::move(question));
}

std::string VoucherPreview::Caption() const {
    return "生成的凭证 - " + sheet_.title + " " + number_ + " 号";
}

std::string VoucherPreview::ProposedName() const {
    return sheet_.title + "-" + number_ + "号";
}

}  // namespace vicenter::center
