// vicenter print NAME FILE: a template as a PDF file, or with --number one pattern as the voucher that it
// makes.

#include "center/frame/account_names.h"
#include "center/grid/number_bands.h"
#include "center/print/voucher_preview.h"
#include "host/cli/context.h"
#include "host/cli/templates.h"

namespace vicenter::host {

namespace {

// The first line with that number; 0 for none.
int FirstRowOf(const TemplateLines& lines, const std::string& number) {
    for (int row = 1; row <= lines.count; ++row) {
        if (center::NumberOfRow(lines.grid, row) == number) return row;
    }
    return 0;
}

}  // namespace

int RunPrint(const CliContext& context) {
    const CliOptions& options = context.options;
    const TemplateHead head = FindTemplate(context, options.name);
    TemplateLines lines;
    ReadLines(head, lines);
    context.session->ReadNames();
    const center::AccountNames whose = center::NamesOfAccount(context.session->PropsString());
    const center::SheetHead sheetHead{head.name, whose.accountSet, whose.user};
    center::PrintSheet sheet;
    if (options.number.empty()) {
        if (lines.count == 0) Refuse("当前没有可打印的分录！");
        sheet = center::TemplateSheet(lines.grid, lines.count, sheetHead);
    } else {
        const int row = FirstRowOf(lines, options.number);
        if (row == 0) Refuse("模板 " + head.name + " 没有编号 " + options.number + "。");
        sheet = center::VoucherPreview(lines.grid, lines.count, row, sheetHead).Sheet();
    }
    if (const std::string why = center::WhyNotPdfTarget(options.file); !why.empty())
        Refuse("PDF 文件未能写入：" + options.file + "\n  " + why);
    if (!context.hooks.writePdf) Refuse("此版本不含窗口，不能生成 PDF 文件。");
    if (!MayReplaceFile(options.file)) return FinishSpeaking(context, false, VariantArray());
    context.hooks.writePdf(sheet, options.file);
    return FinishSpeaking(
        context, true,
        JsonObject({{"file", options.file}, {"numbers", static_cast<int>(sheet.blocks.size())}}),
        "已写入 " + options.file + "\n");
}

}  // namespace vicenter::host
