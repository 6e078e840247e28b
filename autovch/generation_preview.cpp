#include "autovch/generation_preview.h"

#include <algorithm>
#include <map>

#include "autovch/alike_patterns.h"
#include "entry/host_context.h"
#include "store/statements.h"
#include "store/template_columns.h"
#include "store/template_patterns.h"

namespace vicenter::autovch {

namespace {

constexpr std::size_t kNumbersInALine = 8;

std::string Join(const std::vector<std::string>& texts, const char* between) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : between) + text;
    return joined;
}

// The vouchers of one template number, as the generation puts them together.
struct NumberLines {
    std::string explanation;
    std::vector<std::string> lines;
    std::vector<std::string> words;
};

std::map<std::int64_t, NumberLines> LinesByNumber(const ado::Recordset& vouchers) {
    const std::size_t number = vouchers.ColumnIndex("FNo");
    const std::size_t explanation = vouchers.ColumnIndex("FExp");
    const std::size_t side = vouchers.ColumnIndex("FDC");
    const std::size_t account = vouchers.ColumnIndex("FAccountNumber");
    const std::size_t name = vouchers.ColumnIndex("FAccountName");
    std::map<std::int64_t, NumberLines> found;
    for (std::size_t row = 0; row < static_cast<std::size_t>(vouchers.RecordCount()); ++row) {
        NumberLines& lines = found[vouchers.ValueAt(row, number).ToInt64()];
        if (lines.lines.empty()) lines.explanation = vouchers.ValueAt(row, explanation).ToTextOrEmpty();
        const bool debit = vouchers.ValueAt(row, side).ToTextOrEmpty() == "1";
        const std::string code = vouchers.ValueAt(row, account).ToTextOrEmpty();
        lines.lines.push_back(std::string(debit ? store::kDebit : store::kCredit) + code);
        lines.words.push_back(lines.lines.back() + " " + vouchers.ValueAt(row, name).ToTextOrEmpty());
    }
    return found;
}

}  // namespace

std::string ListOfNumbers(const std::vector<std::string>& numbers) {
    if (numbers.size() <= kNumbersInALine) return Join(numbers, "、");
    return Join({numbers.begin(), numbers.begin() + kNumbersInALine}, "、") + " 等 " +
           std::to_string(numbers.size()) + " 个";
}

GenerationPreview PreviewGeneration(const VoucherFilter& filter) {
    GenerationPreview preview;
    preview.problem = FilterProblem(filter);
    if (!preview.problem.empty()) return preview;
    const auto vouchers = store::GetRecordset(store::VoucherQuery(filter));
    if (!vouchers || vouchers->AtEnd()) {
        preview.problem = "没有查询到凭证信息，请重新设置过滤条件！";
        return preview;
    }
    std::map<std::vector<std::string>, std::size_t> places;
    for (auto& [number, lines] : LinesByNumber(*vouchers)) {
        const auto [place, isNew] = places.try_emplace(lines.lines, preview.patterns.size());
        if (isNew)
            preview.patterns.push_back(
                {{}, std::move(lines.explanation), lines.lines, Join(lines.words, "；"), {}});
        preview.patterns[place->second].numbers.push_back(std::to_string(number));
    }
    const std::vector<store::KnownPattern> known = store::ReadKnownPatterns(entry::CurrentUserId());
    const AlikePatterns alike(known);
    for (VoucherPattern& pattern : preview.patterns)
        pattern.alike = alike.WordsFor(pattern.lines);
    std::stable_sort(
        preview.patterns.begin(), preview.patterns.end(),
        [](const VoucherPattern& a, const VoucherPattern& b) { return a.Occurrences() > b.Occurrences(); });
    return preview;
}

MergedNumbers FindMergedNumbers(const VoucherFilter& filter) {
    MergedNumbers merged;
    if (!filter.group.empty() || !FilterProblem(filter).empty()) return merged;
    std::map<std::int64_t, std::set<std::string>> groupsOf;
    std::map<std::string, std::int64_t> vouchersOf;
    for (const store::GroupOfNumber& found : store::ReadGroupsOfNumbers(filter)) {
        groupsOf[found.number].insert(found.group);
        vouchersOf[found.group] += found.vouchers;
    }
    for (const auto& [number, groups] : groupsOf) {
        if (groups.size() > 1) merged.numbers.push_back(std::to_string(number));
    }
    for (const auto& [group, vouchers] : vouchersOf)
        merged.groups.push_back(group);
    std::stable_sort(
        merged.groups.begin(), merged.groups.end(),
        [&](const std::string& a, const std::string& b) { return vouchersOf[a] > vouchersOf[b]; });
    return merged;
}

store::MissingLines FindMissingLines(const VoucherFilter& filter) {
    return FilterProblem(filter).empty() ? store::ReadMissingLines(filter) : store::MissingLines();
}

std::string MissingLinesWarning(const store::MissingLines& missing) {
    if (missing.lines == 0) return {};
    return "凭证号 " + ListOfNumbers(missing.numbers) + " 的凭证中，有 " + std::to_string(missing.lines) +
           " 条分录的科目或币别已不在账套中，这些分录不会生成。";
}

std::string MergedNumbers::Warning() const {
    if (numbers.empty()) return {};
    return "不同类别的凭证有相同的凭证号（" + ListOfNumbers(numbers) +
           "），选择“全部”时它们会合并到同一个模板编号；如不需要合并，请只选一个凭证类别（" +
           Join(groups, "、") + "）。";
}

}  // namespace vicenter::autovch
