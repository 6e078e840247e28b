#include "exchange/import_preview.h"

#include <algorithm>
#include <map>

#include "automation/decimal.h"
#include "store/cls_vi_data.h"

namespace vicenter::exchange {

namespace {

using automation::Decimal;
using automation::Error;
using store::LineTexts;
namespace column = store::column;

const std::string& Text(const LineTexts& line, int gridColumn) {
    return line[static_cast<std::size_t>(gridColumn - 1)];
}

// The panel is gone with the scope, whichever way that ends.
class ShownProgress {
  public:
    ShownProgress(ExchangeTarget& window, const std::string& label) : window_(window) {
        window_.ShowProgress(label);
    }
    ShownProgress(const ShownProgress&) = delete;
    ShownProgress& operator=(const ShownProgress&) = delete;
    ~ShownProgress() { window_.HideProgress(); }

  private:
    ExchangeTarget& window_;
};

std::vector<LineTexts> LinesOfTemplate(std::int32_t id) {
    const auto records = store::clsVIData().GetVchTemplateEntryInfo(std::to_string(id));
    if (records == nullptr) {
        throw Error(automation::error_number::kObjectVariableNotSet, store::clsVIData::LastFailure());
    }
    return store::TextsOfLines(*records);
}

// --- totals by number

void Add(std::string& sum, const std::string& amount) {
    try {
        const auto a = Decimal::Parse(sum);
        const auto b = Decimal::Parse(amount);
        if (a && b) sum = Decimal::Add(*a, *b).ToShortText();
    } catch (const Error&) {
        // More digits than a sum has; what is no number is among the faults.
    }
}

// Numbers first, in their order; a faulty one by its text.
struct NumberOrder {
    static std::optional<std::int64_t> Of(const std::string& text) {
        const auto number = Decimal::Parse(text);
        return number ? number->ToInt64() : std::nullopt;
    }
    bool operator()(const std::string& a, const std::string& b) const {
        const auto x = Of(a);
        const auto y = Of(b);
        if (x && y) return *x != *y ? *x < *y : a < b;
        if (x || y) return x.has_value();
        return a < b;
    }
};

using Totals = std::map<std::string, NumberTotals, NumberOrder>;

void AddLines(Totals& totals, const std::vector<LineTexts>& lines, NumberTotals::Side NumberTotals::*which) {
    for (const LineTexts& line : lines) {
        NumberTotals& total = totals[Text(line, column::kNo)];
        total.number = Text(line, column::kNo);
        NumberTotals::Side& side = total.*which;
        ++side.lines;
        if (Text(line, column::kDirection) == store::kDebit) Add(side.debit, Text(line, column::kAmount));
        if (Text(line, column::kDirection) == store::kCredit) Add(side.credit, Text(line, column::kAmount));
    }
}

std::vector<NumberTotals> TotalsOf(const std::vector<LineTexts>& before,
                                   const std::vector<LineTexts>& after) {
    Totals totals;
    AddLines(totals, before, &NumberTotals::before);
    AddLines(totals, after, &NumberTotals::after);
    std::vector<NumberTotals> list;
    for (auto& [number, total] : totals)
        list.push_back(std::move(total));
    return list;
}

// --- what stands out

// A column that the template uses and of which nothing would be left.
std::vector<std::string> EmptiedColumns(const std::vector<LineTexts>& before,
                                        const std::vector<LineTexts>& after) {
    const auto filled = [](const std::vector<LineTexts>& lines, int c) {
        return std::count_if(lines.begin(), lines.end(),
                             [c](const LineTexts& line) { return !Text(line, c).empty(); });
    };
    std::vector<std::string> warnings;
    for (const store::ColumnSpec* spec : store::WorkbookColumns()) {
        const auto cells = filled(before, spec->column);
        if (cells == 0 || filled(after, spec->column) > 0) continue;
        warnings.push_back("“" + std::string(spec->header) + "”现有 " + std::to_string(cells) +
                           " 处内容，引入后全部为空！");
    }
    return warnings;
}

std::vector<std::string> WarningsOf(const std::vector<LineTexts>& before,
                                    const std::vector<LineTexts>& after) {
    if (before.empty()) return {};
    const std::string now = std::to_string(before.size());
    if (after.empty()) return {"工作簿中只有表头，没有分录，引入后现有的 " + now + " 行分录将全部删除！"};
    std::vector<std::string> warnings;
    if (after.size() * 2 <= before.size()) {
        warnings.push_back("工作簿只有 " + std::to_string(after.size()) + " 行分录，现有模板有 " + now +
                           " 行，请确认工作簿是否完整！");
    }
    for (std::string& warning : EmptiedColumns(before, after))
        warnings.push_back(std::move(warning));
    return warnings;
}

}  // namespace

std::string ImportPreview::Summary() const {
    const std::string& name = destination.name;
    const std::string lines = std::to_string(after.size());
    if (!refusal.empty() && after.empty()) return "工作簿不能引入。";
    const std::string refused =
        refusal.empty() ? "" : "工作簿有 " + std::to_string(faults.size()) + " 处错误，更正后才能引入。";
    if (!destination.Replaces()) return refused + "新模板 " + name + "，分录 " + lines + " 行。";
    std::string text = refused + "模板 " + name + " 现有分录 " + std::to_string(before.size()) +
                       " 行，引入后 " + lines + " 行";
    if (!compared) return text + "；分录过多，没有逐行比较。";
    if (differences.empty()) return text + "，内容相同。";
    const store::DifferenceCounts counts = store::CountsOf(differences);
    return text + "：新增 " + std::to_string(counts.added) + " 行，删除 " + std::to_string(counts.removed) +
           " 行，修改 " + std::to_string(counts.changed) + " 行。";
}

ImportPreview PreviewImport(ExchangeTarget& window, const std::string& fileName,
                            const ImportDestination& destination, bool tidily,
                            std::optional<ImportBatch>* batch) {
    ImportPreview preview;
    preview.file = fileName;
    preview.destination = destination;
    preview.refusal = destination.refusal;
    if (!preview.refusal.empty()) return preview;
    const ShownProgress progress(window, "正在与现有模板比较，请稍后...");
    WorkbookLines workbook = ReadWorkbookLines(window, fileName, tidily);
    preview.refusal = std::move(workbook.refusal);
    preview.reason = std::move(workbook.reason);
    preview.faults = std::move(workbook.faults);
    preview.after = std::move(workbook.lines);
    if (batch != nullptr && preview.refusal.empty())
        *batch =
            BatchOfRead(workbook.inserts, preview.after.size(), destination.existingId, destination.name);
    // As a template shows its lines.
    std::stable_sort(preview.after.begin(), preview.after.end(), [](const LineTexts& a, const LineTexts& b) {
        return NumberOrder()(Text(a, column::kNo), Text(b, column::kNo));
    });
    if (destination.Replaces()) preview.before = LinesOfTemplate(destination.existingId);
    // What could not be read changes nothing.
    if (!preview.refusal.empty() && preview.after.empty()) return preview;
    preview.compared = std::max(preview.before.size(), preview.after.size()) <= kMostComparedLines;
    if (preview.compared) preview.differences = store::Differences(preview.before, preview.after);
    preview.totals = TotalsOf(preview.before, preview.after);
    preview.warnings = WarningsOf(preview.before, preview.after);
    return preview;
}

}  // namespace vicenter::exchange
