#include "center/tree/dropped_rows.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "automation/error.h"
#include "center/editing/block_editing.h"
#include "center/template/template_fate.h"
#include "center/template/template_save.h"
#include "store/line_difference.h"
#include "store/stoppable_command.h"
#include "store/template_guard.h"

namespace vicenter::center {

using store::LineTexts;

namespace {

constexpr const char* kNotCopied = "没有复制";

// The rows as they were copied; nothing when a text among them had been refused.
std::optional<std::vector<LineTexts>> LinesOf(const TextBlock& rows) {
    std::vector<LineTexts> lines;
    for (const std::vector<std::string>& row : rows) {
        const std::string sound(kColumnCount, 'a');
        if (row.back() != sound) return std::nullopt;
        LineTexts line;
        std::copy_n(row.begin(), kColumnCount, line.begin());
        const bool blank =
            std::all_of(line.begin(), line.end(), [](const std::string& text) { return text.empty(); });
        if (!blank) lines.push_back(std::move(line));
    }
    return lines;
}

std::int64_t NumberOf(const LineTexts& line) {
    return std::strtoll(line[column::kNo - 1].c_str(), nullptr, 10);
}

// The lines with numbers that are free among the others; what became of which number, for users.
std::string Renumber(std::vector<LineTexts>& lines, const std::vector<LineTexts>& others) {
    std::set<std::int64_t> taken;
    for (const LineTexts& line : others)
        taken.insert(NumberOf(line));
    std::map<std::int64_t, std::int64_t> become;
    for (const LineTexts& line : lines) {
        const std::int64_t number = NumberOf(line);
        if (become.contains(number) || line[column::kNo - 1].empty()) continue;
        const std::int64_t free = taken.contains(number) ? *taken.rbegin() + 1 : number;
        taken.insert(free);
        become[number] = free;
    }
    std::string changes;
    for (const auto& [number, free] : become) {
        if (number == free) continue;
        changes += (changes.empty() ? "" : "、") + std::to_string(number) + "→" + std::to_string(free);
    }
    for (LineTexts& line : lines) {
        if (!line[column::kNo - 1].empty()) line[column::kNo - 1] = std::to_string(become[NumberOf(line)]);
    }
    return changes;
}

struct Stored {
    std::vector<LineTexts> lines;
    SeenTemplate seen;
};

std::optional<Stored> StoredLines(const SeenTemplate& node) {
    const auto row = store::AskTemplateWithLines(node.id);
    const FoundTemplate found = store::Compare(node, row);
    if (found.fate != TemplateFate::AsSeen) {
        Tell(store::WhyNotWritten(node, found, kNotCopied));
        return std::nullopt;
    }
    Stored stored{store::TextsOfLines(*row->lines), found.now};
    // A template without lines answers one record with nothing in it.
    if (found.now.lines->lines == 0) stored.lines.clear();
    return stored;
}

void FillGrid(EntryGrid& grid, const std::vector<LineTexts>& lines) {
    grid.SetRowTotal(static_cast<int>(lines.size()) + 1);
    int row = 0;
    for (const LineTexts& line : lines)
        grid.FillRow(++row, line);
}

}  // namespace

bool AppendRows(const CopiedBlock& rows, const std::string& templateId, const std::string& name,
                const WindowState& window) {
    const std::optional<TextBlock> whole = WholeRows(rows, window.propsString);
    if (!whole) {
        Tell("所选的行来自另一个账套，没有复制！\r\n\r\n请复制这些行，打开模板 " + name +
             " 后粘贴，各代码按这个账套的基础资料对应。");
        return false;
    }
    std::optional<std::vector<LineTexts>> added = LinesOf(*whole);
    if (!added || added->empty()) {
        Tell(added ? "所选的行中没有分录，没有复制！" : "所选的行中有未更正的内容，没有复制！");
        return false;
    }
    const std::optional<Stored> stored = StoredLines(store::SeenAs(templateId, window.userId, name));
    if (!stored) return false;
    std::vector<LineTexts> lines = stored->lines;
    const std::string changes = Renumber(*added, lines);
    const std::string count = std::to_string(added->size());
    lines.insert(lines.end(), added->begin(), added->end());
    EntryGrid grid;
    FillGrid(grid, lines);
    // What cannot be is not asked about.
    if (const auto finding = ValidateLines(grid, static_cast<int>(lines.size()))) {
        Tell("模板 " + name + " 不能保存，没有复制：\r\n\r\n" + finding->text);
        return false;
    }
    if (Ask("将 " + count + " 行分录复制到模板 " + name + " 的末尾" +
                (changes.empty() ? "" : "（编号 " + changes + "）") + "，请确认？",
            system::MessageButtons::YesNo) != system::MessageResult::Yes) {
        return false;
    }
    const store::StoppableCommand command;
    const store::TemplateOutcome sent = SendTemplate(grid, static_cast<int>(lines.size()), stored->seen);
    if (sent && store::StoppableCommand::IsStopped())
        Tell("模板 " + name + " 已保存，但未能重新读取，请重新打开该模板！");
    // Somebody may have saved it while the question stood there.
    if (sent.state == store::TemplateOutcome::State::NotAsSeen)
        Tell(store::WhyNotWritten(stored->seen, sent.found, kNotCopied));
    return static_cast<bool>(sent);
}

}  // namespace vicenter::center
