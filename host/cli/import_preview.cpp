#include "host/cli/import_preview.h"

#include <ostream>

#include "exchange/excel_access.h"
#include "exchange/import_preview.h"
#include "exchange/import_several.h"
#include "host/cli/differences.h"
#include "host/cli/windowless_template.h"
#include "platform/system/files.h"

namespace vicenter::host {

using exchange::ImportPreview;
using exchange::NumberTotals;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

ImportPreview Preview(const std::string& file, const std::string& whyNot, bool tidily) {
    ImportPreview preview;
    preview.file = file;
    if (!whyNot.empty()) {
        preview.refusal = whyNot;
        return preview;
    }
    WindowlessTemplate window;
    return exchange::PreviewImport(window, file, exchange::FindImportDestination(file), tidily);
}

Variant SideObject(const NumberTotals::Side& side) {
    return JsonObject({{"lines", side.lines}, {"debit", side.debit}, {"credit", side.credit}});
}

Variant PreviewObject(const ImportPreview& preview) {
    VariantArray totals;
    for (const NumberTotals& total : preview.totals) {
        totals.push_back(JsonObject({{"FNo", total.number},
                                     {"before", SideObject(total.before)},
                                     {"after", SideObject(total.after)}}));
    }
    VariantArray warnings(preview.warnings.begin(), preview.warnings.end());
    const bool replaces = preview.destination.Replaces();
    return JsonObject({{"file", preview.file},
                       {"FName", preview.destination.name},
                       {"FID", replaces ? Variant(preview.destination.existingId) : Variant::Null()},
                       {"linesBefore", static_cast<std::int32_t>(preview.before.size())},
                       {"linesAfter", static_cast<std::int32_t>(preview.after.size())},
                       {"warnings", warnings},
                       {"differences", DifferenceObjects(preview.differences)},
                       {"totals", totals},
                       {"refusal", preview.refusal},
                       {"reason", preview.reason},
                       {"faults", FaultObjects(preview.faults)}});
}

void PrintTotals(std::ostream& out, const ImportPreview& preview) {
    for (const NumberTotals& total : preview.totals) {
        if (!total.Changed()) continue;
        out << "合计\t" << total.number << " 号\t" << total.before.lines << " → " << total.after.lines
            << " 行\t借方 " << total.before.debit << " → " << total.after.debit << "\t贷方 "
            << total.before.credit << " → " << total.after.credit;
        if (total.Unbalanced()) out << "\t借贷不平";
        out << "\n";
    }
}

void PrintFaults(std::ostream& out, const ImportPreview& preview) {
    if (preview.refusal.empty()) return;
    // The fixed words, without the places that follow one by one.
    out << "不能引入：" << preview.refusal.substr(0, preview.refusal.find_first_of(":\r\n")) << "\n";
    if (!preview.reason.empty()) out << "  " << preview.reason << "\n";
    for (const store::LineFault& fault : preview.faults) {
        if (fault.row > 0) out << "  " << FaultSentence(fault) << "\n";
    }
}

void Print(std::ostream& out, const ImportPreview& preview) {
    out << PathToUtf8(PathFromUtf8(preview.file).filename()) << "：" << preview.Summary() << "\n";
    for (const std::string& warning : preview.warnings)
        out << "注意：" << warning << "\n";
    PrintFaults(out, preview);
    // Of a new template all is new.
    if (preview.destination.Replaces())
        PrintDifferences(out, preview.differences, preview.before, preview.after);
    PrintTotals(out, preview);
}

}  // namespace

int RunImportPreview(const CliContext& context, const FilesToImport& files) {
    if (!exchange::IsExcelInstalled()) Refuse("检测当前系统未安装Excel，引入失败！");
    VariantArray previews;
    exchange::NamesOnce names;
    bool ok = true;
    for (const std::string& file : files.files) {
        const ImportPreview preview = Preview(file, names.WhyNot(file), context.options.tidy);
        ok = ok && preview.refusal.empty();
        if (context.options.json) {
            previews.push_back(PreviewObject(preview));
        } else {
            Print(context.streams.out, preview);
        }
    }
    if (!context.options.json) return ok ? kExitDone : kExitFailed;
    return FinishSpeaking(context, ok, previews);
}

}  // namespace vicenter::host
