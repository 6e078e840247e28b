#include "center/search/code_replacement.h"

#include <algorithm>
#include <set>

#include "center/editing/fault_text.h"
#include "center/frame/window_state.h"
#include "center/grid/quiet_grid.h"
#include "center/template/template_save.h"
#include "platform/system/collation.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"
#include "store/template_guard.h"

namespace vicenter::center {

namespace {

using State = ReplacementLine::State;
using store::LineTexts;

// As the account set compares codes and names.
bool SameText(std::string_view a, std::string_view b) {
    return system::Collator::Chinese().Compare(a, b) == 0;
}

bool IsOneOf(std::string_view text, const std::vector<std::string>& former) {
    return std::any_of(former.begin(), former.end(),
                       [&](const std::string& one) { return SameText(text, one); });
}

// The text of the items with every piece replaced that is the former code.
std::string ItemsReplaced(std::string_view items, const std::vector<std::string>& former,
                          const std::string& to) {
    std::string replaced;
    for (std::size_t start = 0; start <= items.size();) {
        const std::size_t comma = std::min(items.find(',', start), items.size());
        const std::string_view piece = items.substr(start, comma - start);
        if (start > 0) replaced += ',';
        replaced += IsOneOf(system::TrimBlanks(piece), former) ? to : std::string(piece);
        start = comma + 1;
    }
    return replaced;
}

// The cell's text with the former code replaced; the same text where it does not stand.
std::string Replaced(int gridColumn, std::string_view text, const std::vector<std::string>& former,
                     const std::string& to) {
    if (gridColumn == column::kItems) return ItemsReplaced(text, former, to);
    return IsOneOf(system::TrimBlanks(text), former) ? to : std::string(text);
}

LineTexts TextsOf(const EntryGrid& grid, int row) {
    LineTexts texts;
    for (int c = 1; c <= kColumnCount; ++c)
        texts[static_cast<std::size_t>(c - 1)] = grid.Text(row, c);
    return texts;
}

// What stands in the cell, for users: an account with its name.
std::string CellWords(const LineTexts& line, int gridColumn) {
    const std::string& text = line[static_cast<std::size_t>(gridColumn - 1)];
    if (gridColumn != column::kAccountNumber) return text;
    const std::string& name = line[column::kAccountName - 1];
    return name.empty() ? text : text + " " + name;
}

std::set<int> RedColumns(const EntryGrid& grid, int row) {
    std::set<int> red;
    for (int c = 1; c <= kColumnCount; ++c) {
        if (grid.Look(row, c).foreColor == color::kRed) red.insert(c);
    }
    return red;
}

// Of a line that has been replaced and checked.
void Judge(ReplacementLine& line, const EntryGrid& grid, int gridColumn, const std::set<int>& redBefore,
           const std::optional<Finding>& unsaveable) {
    line.state = State::Impossible;
    if (grid.FaultyCheck(line.row, gridColumn) != 0) {
        line.note = FaultText(grid, {line.row, gridColumn});
        return;
    }
    if (unsaveable) {
        line.note = "模板不能保存：" + unsaveable->text;
        return;
    }
    line.state = State::Ready;
    for (const int c : RedColumns(grid, line.row)) {
        if (redBefore.contains(c)) continue;
        line.state = State::Doubtful;
        line.note = std::string(Column(c).Title()) + "：" + FaultText(grid, {line.row, c});
        return;
    }
}

// All lines of a template, not yet checked.
void Fill(EntryGrid& grid, const std::vector<LineTexts>& lines) {
    grid.SetRowTotal(static_cast<int>(lines.size()) + 1);
    for (std::size_t i = 0; i < lines.size(); ++i)
        grid.FillRow(static_cast<int>(i) + 1, lines[i]);
}

}  // namespace

const std::vector<int>& CodeColumns() {
    static const std::vector<int> columns = {column::kAccountNumber, column::kItems, column::kSettleName,
                                             column::kCurrencyName, column::kUnitName};
    return columns;
}

bool CodeReplacement::FindCode(const ReplacementWish& wish) {
    to_ = wish.to;
    former_ = {wish.from};
    // Which class an item belongs to, each line's account says.
    if (wish.column == column::kItems) return true;
    const MasterAnswer& next = records_.Find(wish.column, wish.to);
    if (!next.wasRead) {
        Tell(UnreadableText(wish.to));
        return false;
    }
    const std::string title(Column(wish.column).Title());
    if (next.record == nullptr) {
        Tell("账套中没有" + title + "“" + wish.to + "”，没有替换！");
        return false;
    }
    if (wish.column == column::kAccountNumber) {
        to_ = next.record->Value("FNumber").ToTextOrEmpty();
        return true;
    }
    // Cells hold the names that codes have become.
    const MasterAnswer& before = records_.Find(wish.column, wish.from);
    if (before.record != nullptr) former_.push_back(before.record->Value("FName").ToTextOrEmpty());
    return true;
}

bool CodeReplacement::List(const ReplacementWish& given) {
    lines_.clear();
    targets_.clear();
    templates_.clear();
    const auto trimmed = [](const std::string& text) { return std::string(system::TrimBlanks(text)); };
    const ReplacementWish wish{given.column, trimmed(given.from), trimmed(given.to)};
    if (wish.from.empty() || wish.to.empty()) {
        Tell("请录入原代码和新代码！");
        return false;
    }
    if (SameText(wish.from, wish.to)) {
        Tell("原代码和新代码相同，没有替换！");
        return false;
    }
    records_ = {};
    checks_ = {};
    if (!FindCode(wish)) return false;
    store::clsVIData::ForgetFailure();
    auto stored = store::ReadStoredTemplates(userId_);
    if (!stored) {
        Tell(store::WithReason("凭证模板无法读取，请检查账套连接！"));
        return false;
    }
    templates_ = std::move(*stored);
    for (std::size_t index = 0; index < templates_.size(); ++index) {
        if (!ListTemplate(index, wish)) return false;
    }
    if (!lines_.empty()) return true;
    Tell("没有模板用到" + std::string(Column(wish.column).Title()) + "“" + wish.from + "”。");
    return false;
}

bool CodeReplacement::ListTemplate(std::size_t index, const ReplacementWish& wish) {
    const store::StoredTemplate& stored = templates_[index];
    const auto holds = [&](const LineTexts& line) {
        const std::string& text = line[static_cast<std::size_t>(wish.column - 1)];
        return Replaced(wish.column, text, former_, to_) != text;
    };
    std::vector<int> rows;
    for (std::size_t i = 0; i < stored.lines.size(); ++i) {
        if (holds(stored.lines[i])) rows.push_back(static_cast<int>(i) + 1);
    }
    if (rows.empty()) return true;
    EntryGrid grid;
    const Unpainted quiet(grid);
    Fill(grid, stored.lines);
    MarkRows(grid, rows, checks_);
    std::vector<std::set<int>> redBefore;
    for (const int row : rows) {
        redBefore.push_back(RedColumns(grid, row));
        grid.SetText(row, wish.column, Replaced(wish.column, grid.Text(row, wish.column), former_, to_));
        // A name of the new code comes of it as of a code that is typed.
        if (ResolveCell(grid, {row, wish.column}, records_) == Resolution::Unreadable) {
            Tell(UnreadableText(to_));
            return false;
        }
    }
    MarkRows(grid, rows, checks_);
    const std::optional<Finding> unsaveable = ValidateLines(grid, static_cast<int>(stored.lines.size()));
    Target target{index, {}};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int row = rows[i];
        const LineTexts before = stored.lines[static_cast<std::size_t>(row - 1)];
        const LineTexts after = TextsOf(grid, row);
        if (before == after) continue;
        ReplacementLine line{stored.id,
                             stored.name,
                             row,
                             before[column::kNo - 1],
                             before[column::kExplanation - 1],
                             CellWords(before, wish.column),
                             CellWords(after, wish.column),
                             State::Ready,
                             {},
                             false};
        Judge(line, grid, wish.column, redBefore[i], unsaveable);
        line.chosen = line.state == State::Ready && !store::IsStandard(stored.id);
        target.rows.push_back({lines_.size(), after});
        lines_.push_back(std::move(line));
    }
    if (!target.rows.empty()) targets_.push_back(std::move(target));
    return true;
}

void CodeReplacement::Choose(std::size_t index, bool chosen) {
    if (index >= lines_.size() || lines_[index].state == State::Impossible) return;
    lines_[index].chosen = chosen;
}

void CodeReplacement::ChooseAll(bool chosen) {
    for (ReplacementLine& line : lines_)
        line.chosen = chosen && line.state == State::Ready;
}

std::string CodeReplacement::Note() const {
    std::size_t chosen = 0;
    std::set<std::string> names;
    for (const ReplacementLine& line : lines_) {
        if (!line.chosen) continue;
        ++chosen;
        names.insert(line.templateId);
    }
    return "共 " + std::to_string(lines_.size()) + " 行，已选 " + std::to_string(names.size()) +
           " 个模板中的 " + std::to_string(chosen) + " 行。";
}

}  // namespace vicenter::center
