#include "center/search/template_search.h"

#include <algorithm>
#include <cstdlib>
#include <functional>

#include "automation/decimal.h"
#include "platform/system/collation.h"
#include "platform/system/utf8.h"
#include "store/cell_rules.h"

namespace vicenter::center {

namespace {

using automation::Decimal;
using store::LineTexts;
namespace column = store::column;

std::string Folded(std::string_view text) {
    return system::Collator::Chinese().Fold(system::TrimBlanks(text));
}

bool Contains(std::string_view text, const std::string& foldedPart) {
    return !text.empty() && Folded(text).find(foldedPart) != std::string::npos;
}

std::optional<Decimal> NumberOf(std::string_view text) {
    const store::TextReading reading =
        store::ReadCellText(column::kAmount, system::TrimBlanks(text), store::TextOrigin::Given);
    if (reading.verdict != store::TextVerdict::Taken || reading.text.empty()) return std::nullopt;
    return Decimal::Parse(reading.text);
}

struct AmountRange {
    Decimal least;
    Decimal most;
};

std::optional<AmountRange> RangeOf(const std::string& text) {
    for (const std::string_view dash : {"-", "~", "－", "～"}) {
        const std::size_t at = text.find(dash);
        if (at == std::string::npos || at == 0) continue;
        const auto least = NumberOf(std::string_view(text).substr(0, at));
        const auto most = NumberOf(std::string_view(text).substr(at + dash.size()));
        if (!least || !most) return std::nullopt;
        return AmountRange{*least, *most};
    }
    const auto number = NumberOf(text);
    return number ? std::optional(AmountRange{*number, *number}) : std::nullopt;
}

// One condition: the first column that fits, 0 for none.
using Condition = std::function<int(const LineTexts&)>;

const std::string& Text(const LineTexts& line, int gridColumn) {
    return line[static_cast<std::size_t>(gridColumn - 1)];
}

Condition TextCondition(const std::string& part) {
    return [part = Folded(part)](const LineTexts& line) {
        for (const int c :
             {column::kExplanation, column::kAccountName, column::kSettleName, column::kSettleNumber,
              column::kItems, column::kCurrencyName, column::kUnitName, column::kRemark}) {
            if (Contains(Text(line, c), part)) return c;
        }
        return 0;
    };
}

Condition AccountCondition(const std::string& account) {
    return [part = Folded(account)](const LineTexts& line) {
        const std::string code = Folded(Text(line, column::kAccountNumber));
        if (code == part || code.starts_with(part + ".")) return column::kAccountNumber;
        return Contains(Text(line, column::kAccountName), part) ? column::kAccountName : 0;
    };
}

Condition ItemCondition(const std::string& item) {
    return [wanted = "," + Folded(item) + ","](const LineTexts& line) {
        const std::string items = "," + Folded(Text(line, column::kItems)) + ",";
        return items.find(wanted) != std::string::npos ? column::kItems : 0;
    };
}

Condition AmountCondition(const AmountRange& range) {
    return [range](const LineTexts& line) {
        for (const int c : {column::kAmount, column::kAmountFor}) {
            const auto number = NumberOf(Text(line, c));
            if (number && Decimal::Compare(range.least, *number) <= 0 &&
                Decimal::Compare(*number, range.most) <= 0)
                return c;
        }
        return 0;
    };
}

bool IsGiven(const std::string& text) {
    return !system::TrimBlanks(text).empty();
}

std::vector<Condition> ConditionsOf(const SearchWish& wish) {
    std::vector<Condition> conditions;
    if (IsGiven(wish.text)) conditions.push_back(TextCondition(wish.text));
    if (IsGiven(wish.account)) conditions.push_back(AccountCondition(wish.account));
    if (IsGiven(wish.item)) conditions.push_back(ItemCondition(wish.item));
    if (IsGiven(wish.amount)) {
        if (const auto range = RangeOf(wish.amount)) conditions.push_back(AmountCondition(*range));
    }
    return conditions;
}

// The column of the first condition, when the line fits them all.
int ColumnThatFits(const std::vector<Condition>& conditions, const LineTexts& line) {
    int first = 0;
    for (const Condition& condition : conditions) {
        const int fits = condition(line);
        if (fits == 0) return 0;
        if (first == 0) first = fits;
    }
    return first;
}

}  // namespace

std::string WhyNotSearched(const SearchWish& wish) {
    if (!IsGiven(wish.text) && !IsGiven(wish.account) && !IsGiven(wish.item) && !IsGiven(wish.amount))
        return "请输入查找内容！";
    if (!IsGiven(wish.amount)) return {};
    const std::optional<AmountRange> range = RangeOf(wish.amount);
    if (!range) return "金额应为数字或范围，例如 860 或 100-200！";
    if (Decimal::Compare(range->most, range->least) < 0) return "金额范围应从小到大，例如 100-200！";
    return {};
}

std::vector<SearchHit> SearchTemplates(const std::vector<store::StoredTemplate>& templates,
                                       const SearchWish& wish) {
    const std::vector<Condition> conditions = ConditionsOf(wish);
    std::vector<SearchHit> hits;
    for (const store::StoredTemplate& stored : templates) {
        for (std::size_t i = 0; i < stored.lines.size(); ++i) {
            const int fits = ColumnThatFits(conditions, stored.lines[i]);
            if (fits != 0)
                hits.push_back({stored.id, stored.name, static_cast<int>(i) + 1, fits, stored.lines[i]});
        }
    }
    return hits;
}

std::optional<int> RowOfLine(const std::vector<LineTexts>& lines, const LineTexts& line, int before) {
    std::optional<int> nearest;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const int row = static_cast<int>(i) + 1;
        if (lines[i] != line) continue;
        if (!nearest || std::abs(row - before) < std::abs(*nearest - before)) nearest = row;
    }
    return nearest;
}

}  // namespace vicenter::center
