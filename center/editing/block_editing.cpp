#include "center/editing/block_editing.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "automation/quietly.h"
#include "center/editing/cell_checks.h"
#include "center/editing/cell_rules.h"
#include "center/editing/row_order.h"
#include "center/grid/whole_column.h"
#include "center/lookups/cell_resolution.h"
#include "entry/host_context.h"
#include "platform/system/collation.h"
#include "store/number_text.h"

namespace vicenter::center {

namespace {

constexpr std::size_t kRowsPerReport = 500;         // rows between two steps of the progress panel
constexpr std::size_t kRowsAhead = kRowsPerReport;  // of which is asked at once what they will ask
constexpr std::string_view kLineEnd = "\r\n";
constexpr const char* kProgressText = "正在粘贴，请稍后...";
constexpr const char* kNoTableToCopyText = "所选单元格不是一个完整的区域，不能复制！";
constexpr const char* kNoBlockToPasteText = "所选单元格不是一个完整的区域，请只选定一个单元格再粘贴！";

std::vector<int> ShownColumns(const EntryGrid& grid, int first) {
    std::vector<int> columns;
    bool reached = first < 1;
    for (const int c : grid.Order()) {
        reached = reached || c == first;
        if (reached && !grid.Layout(c).hidden) columns.push_back(c);
    }
    return columns;
}

// The column that a text of a first row names, 0 for none. The mark of required columns may be missing.
int ColumnNamed(const std::string& text) {
    const auto& collator = system::Collator::Chinese();
    const std::string folded = collator.Fold(store::TrimmedOfAnyBlanks(text));
    for (const ColumnSpec& spec : Columns()) {
        if (folded == collator.Fold(spec.header)) return spec.column;
        if (spec.IsMarked() && folded == collator.Fold(spec.Title())) return spec.column;
    }
    return 0;
}

// The columns that a first row of headers names, one for each text of the block; empty when that row is none:
// every text must be a header of ours, and none may stand twice.
std::vector<int> ColumnsByHeaders(const TextBlock& block) {
    if (block.front().size() < 2) return {};
    std::vector<int> columns;
    for (const std::string& text : block.front()) {
        const int named = ColumnNamed(text);
        if (named == 0 || std::find(columns.begin(), columns.end(), named) != columns.end()) return {};
        columns.push_back(named);
    }
    return columns;
}

// The texts of a row up to the last that says something.
std::size_t WidthOf(const TextBlock& block) {
    std::size_t width = 0;
    for (const std::vector<std::string>& row : block) {
        const auto last =
            std::find_if(row.rbegin(), row.rend(), [](const std::string& cell) { return !cell.empty(); });
        width = std::max(width, static_cast<std::size_t>(row.rend() - last));
    }
    return width;
}

bool IsBlank(const std::vector<std::string>& row) {
    return std::all_of(row.begin(), row.end(), [](const std::string& cell) { return cell.empty(); });
}

// The progress panel of a long paste; gone at the end of the scope, however that comes.
class PasteProgress {
  public:
    PasteProgress(VICenterView& view, std::size_t rows) : view_(view), rows_(rows) {}
    PasteProgress(const PasteProgress&) = delete;
    PasteProgress& operator=(const PasteProgress&) = delete;
    ~PasteProgress() {
        if (IsLong()) automation::Quietly([this] { view_.SetProgress({}); });
    }
    void Report(std::size_t done) {
        if (!IsLong() || done % kRowsPerReport != 0) return;
        view_.SetProgress(
            {true, kProgressText, static_cast<std::int64_t>(done), static_cast<std::int64_t>(rows_)});
    }

  private:
    bool IsLong() const { return rows_ > kRowsPerReport; }

    VICenterView& view_;
    std::size_t rows_;
};

CellSelection Meant(const CellSelection& selection, const WindowState& state) {
    return MeantCells(selection, *state.grid, state.open.RowCount());
}

// Verdicts travel with whole rows as one character each.
constexpr char kFirstVerdict = 'a';

}  // namespace

std::optional<TextBlock> WholeRows(const CopiedBlock& block, const std::string& propsString) {
    TextBlock rows = ParseBlock(block.rows);
    if (rows.empty() || rows.front() != std::vector<std::string>{entry::AccountSetOf(propsString)})
        return std::nullopt;
    rows.erase(rows.begin());
    const bool sound = std::all_of(rows.begin(), rows.end(), [](const std::vector<std::string>& row) {
        return row.size() == kColumnCount + 1 && row.back().size() == kColumnCount;
    });
    if (!sound) return std::nullopt;
    return rows;
}

// Everything that one block operation needs: one step of undo, one repaint, one memory of master data.
class BlockEditing::Entering {
  public:
    explicit Entering(WindowState& state) : state_(state), step_(state.open) {
        state_.grid->SetReDraw(false);
    }
    Entering(const Entering&) = delete;
    Entering& operator=(const Entering&) = delete;
    ~Entering() { state_.grid->SetReDraw(true); }

    // Asks about the codes of so many rows from that one on before they are entered.
    void AskAhead(const std::vector<int>& columns, const TextBlock& block, std::size_t first) {
        std::vector<TypedCode> codes;
        const std::size_t end = std::min(block.size(), first + kRowsAhead);
        for (std::size_t row = first; row < end; ++row) {
            for (std::size_t i = 0; i < std::min(columns.size(), block[row].size()); ++i) {
                const int c = columns[i];
                if (block[row][i].empty() || !IsLookUpColumn(c)) continue;
                const TextReading reading = ReadCellText(c, block[row][i], TextOrigin::Given);
                if (reading.verdict != TextVerdict::Taken) continue;
                if (std::optional<TypedCode> code = CodeIn(c, reading.text))
                    codes.push_back(std::move(*code));
            }
        }
        records_.AskAhead(codes);
    }
    // Colours the rows that were entered since the last time.
    void MarkEntered() {
        MarkRows(*state_.grid, entered_, checks_);
        entered_.clear();
    }

    // As if the cells had been typed from left to right, each left by Tab; names stand for codes, too.
    void EnterRow(int row, const std::vector<int>& columns, const std::vector<std::string>& texts) {
        EntryGrid& grid = *state_.grid;
        const std::size_t count = std::min(columns.size(), texts.size());
        bool accountGiven = false;
        bool anyKept = false;
        std::vector<std::size_t> locked;
        std::array<bool, kColumnCount + 1> hadText{};
        for (std::size_t i = 0; i < count; ++i) {
            hadText[static_cast<std::size_t>(columns[i])] = !grid.Text(row, columns[i]).empty();
        }
        const int before = result.cells;
        for (std::size_t i = 0; i < count; ++i) {
            const int c = columns[i];
            // An empty text clears what was there before; it does not undo what a code beside it has just
            // filled.
            if (texts[i].empty() &&
                (!hadText[static_cast<std::size_t>(c)] || (c == column::kAccountName && accountGiven))) {
                continue;
            }
            if (Column(c).locked) {
                locked.push_back(i);
                continue;
            }
            const TextReading reading = ReadCellText(c, texts[i], TextOrigin::Given);
            const bool kept = grid.PutReading(row, c, reading);
            anyKept = anyKept || kept;
            if (reading.verdict != TextVerdict::Taken) {
                result.refused.push_back({{row, c}, texts[i], VerdictText(reading.verdict, c), kept});
                continue;
            }
            accountGiven = accountGiven || (c == column::kAccountNumber && !texts[i].empty());
            if (ResolveNew(grid, {row, c}, records_, TextOrigin::Given) == Resolution::Unreadable)
                result.refused.push_back({{row, c}, texts[i], UnreadableText(texts[i]), true});
            ++result.cells;
        }
        // Ids follow from the codes; one that comes out otherwise than given has not been taken.
        for (const std::size_t i : locked) {
            if (grid.Text(row, columns[i]) == texts[i]) continue;
            result.refused.push_back(
                {{row, columns[i]}, texts[i], VerdictText(TextVerdict::Locked, columns[i]), false});
        }
        if (!anyKept) return;
        if (result.cells != before) ++result.rows;
        entered_.push_back(row);
    }

    // All texts as they were, ids and what had been refused among them; `refusals` holds a verdict for each.
    void PutRow(int row, const std::vector<std::string>& texts, const std::string& refusals) {
        EntryGrid& grid = *state_.grid;
        for (int c = 1; c <= kColumnCount; ++c) {
            const auto index = static_cast<std::size_t>(c - 1);
            const auto verdict = static_cast<TextVerdict>(refusals[index] - kFirstVerdict);
            if (verdict == TextVerdict::Taken) {
                grid.SetText(row, c, texts[index]);
            } else {
                grid.PutReading(row, c, {verdict, texts[index]});
            }
            ++result.cells;
        }
        ++result.rows;
        entered_.push_back(row);
    }

    void CopyCell(const CellAddress& from, const CellAddress& to) {
        EntryGrid& grid = *state_.grid;
        const std::string text(grid.Text(from.row, from.column));
        const TextVerdict refusal = grid.Refusal(from.row, from.column);
        if (refusal == TextVerdict::Taken) {
            grid.SetText(to.row, to.column, text);
        } else {
            grid.PutReading(to.row, to.column, {refusal, text});
        }
        if (const int id = Column(to.column).idColumn; id != 0) {
            grid.SetText(to.row, id, std::string(grid.Text(from.row, id)));
        }
        // A code without its name would be a line that cannot be saved.
        if (to.column == column::kAccountNumber) {
            grid.SetText(to.row, column::kAccountName,
                         std::string(grid.Text(from.row, column::kAccountName)));
        }
    }
    void Entered(int row) { entered_.push_back(row); }

    PasteResult result;

  private:
    WindowState& state_;
    UndoStep step_;
    CellChecks checks_;
    MasterRecords records_;
    std::vector<int> entered_;  // not coloured yet
};

BlockEditing::BlockEditing(WindowState& state, std::function<void()> edited)
    : state_(state), edited_(std::move(edited)) {}

std::optional<CopiedBlock> BlockEditing::Copy(const CellSelection& selected) const {
    const EntryGrid& grid = *state_.grid;
    const CellSelection selection = Meant(selected, state_);
    const SelectedTable table = TableOf(selection, grid);
    if (table.IsEmpty()) {
        if (!selection.IsEmpty()) Tell(kNoTableToCopyText);
        return std::nullopt;
    }
    TextBlock block;
    TextBlock rows;
    rows.push_back({entry::AccountSetOf(state_.propsString)});
    std::vector<int> told = table.columns;
    if (selection.wholeRows) {
        // For others, and for us in another process: hidden columns find their places by the headings, and
        // the ids of one account set mean nothing in another.
        std::erase_if(told, [](int c) { return Column(c).locked; });
        std::vector<std::string>& headings = block.emplace_back();
        for (const int c : told)
            headings.emplace_back(Column(c).header);
    }
    for (const int row : table.rows) {
        std::vector<std::string>& texts = block.emplace_back();
        for (const int c : told)
            texts.emplace_back(grid.Text(row, c));
        if (!selection.wholeRows) continue;
        std::string refusals;
        for (int c = 1; c <= kColumnCount; ++c)
            refusals += static_cast<char>(kFirstVerdict + static_cast<int>(grid.Refusal(row, c)));
        std::vector<std::string>& whole = rows.emplace_back();
        for (const int c : table.columns)
            whole.emplace_back(grid.Text(row, c));
        whole.push_back(std::move(refusals));
    }
    // One cell goes into fields of other programs as well: it ends without a line end.
    const bool one = block.size() == 1 && told.size() == 1 && !block[0][0].empty();
    std::string text = FormatBlock(block);
    if (one) text.resize(text.size() - kLineEnd.size());
    return CopiedBlock{std::move(text), selection.wholeRows ? FormatBlock(rows) : std::string()};
}

PasteResult BlockEditing::Paste(const CellSelection& selected, const CopiedBlock& block) {
    if (!state_.hasRight || selected.IsEmpty() || selected.Bounds().firstRow < 1) return {};
    const CellSelection selection = Meant(selected, state_);
    const CellRange bounds = selection.Bounds();
    if (const std::optional<TextBlock> rows = WholeRows(block, state_.propsString))
        return PasteRows(bounds.firstRow, *rows);
    TextBlock texts = ParseBlock(block.text);
    if (texts.empty()) return {};
    const SelectedTable table = TableOf(selection, *state_.grid);
    const bool oneCell = table.rows.size() == 1 && table.columns.size() == 1;
    if (texts.size() == 1 && texts[0].size() == 1 && !oneCell) return FillSelection(selection, texts[0][0]);
    if (table.IsEmpty() || RowRuns(selection, *state_.grid).size() > 1) {
        Tell(kNoBlockToPasteText);
        return {};
    }
    return PasteTable({bounds.firstRow, table.columns.front()}, std::move(texts));
}

PasteResult BlockEditing::PasteTable(const CellAddress& at, TextBlock block) {
    std::vector<int> columns = ColumnsByHeaders(block);
    if (!columns.empty()) {
        // As typing goes: from the left, so that a code does not undo the name beside it.
        std::vector<std::size_t> order(columns.size());
        for (std::size_t i = 0; i < order.size(); ++i)
            order[i] = i;
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return columns[a] < columns[b]; });
        block.erase(block.begin());
        for (std::vector<std::string>& row : block) {
            row.resize(order.size());
            std::vector<std::string> sorted;
            sorted.reserve(order.size());
            for (const std::size_t i : order)
                sorted.push_back(std::move(row[i]));
            row = std::move(sorted);
        }
        std::sort(columns.begin(), columns.end());
    } else {
        columns = ShownColumns(*state_.grid, at.column);
        if (const std::size_t width = WidthOf(block); width > columns.size()) {
            Tell("所粘贴的内容有 " + std::to_string(width) + " 列，从此处起只显示 " +
                 std::to_string(columns.size()) + " 列，有 " + std::to_string(width - columns.size()) +
                 " 列没有位置，没有粘贴！\r\n\r\n请先显示所需的列，或者连同标题行一起复制，各列将按标题对应"
                 "。");
            return {};
        }
    }
    if (block.empty() || LeavesGap(state_, at.row)) return {};
    EntryGrid& grid = *state_.grid;
    PasteResult result;
    {
        PasteProgress progress(state_.view, block.size());
        Entering entering(state_);
        int row = at.row;
        for (std::size_t i = 0; i < block.size(); ++i) {
            progress.Report(i);
            if (i % kRowsAhead == 0) {
                entering.MarkEntered();
                entering.AskAhead(columns, block, i);
            }
            // A blank line below the rows in use would leave a gap.
            if (IsBlank(block[i]) && row > state_.open.RowCount()) continue;
            if (row + 1 > grid.RowTotal()) {
                grid.SetRowTotal(row + static_cast<int>(block.size() - i) + 1);
            }
            entering.EnterRow(row, columns, block[i]);
            // A line of which nothing could be taken leaves no row behind.
            if (row <= state_.open.RowCount()) ++row;
        }
        entering.MarkEntered();
        result = std::move(entering.result);
    }
    edited_();
    return result;
}

PasteResult BlockEditing::PasteRows(int firstRow, const TextBlock& rows) {
    if (LeavesGap(state_, firstRow)) return {};
    EntryGrid& grid = *state_.grid;
    PasteResult result;
    {
        PasteProgress progress(state_.view, rows.size());
        Entering entering(state_);
        const int lastRow = firstRow + static_cast<int>(rows.size()) - 1;
        if (lastRow + 1 > grid.RowTotal()) grid.SetRowTotal(lastRow + 1);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            progress.Report(i);
            if (i % kRowsAhead == 0) entering.MarkEntered();
            entering.PutRow(firstRow + static_cast<int>(i), rows[i], rows[i].back());
        }
        entering.MarkEntered();
        result = std::move(entering.result);
    }
    edited_();
    return result;
}

PasteResult BlockEditing::FillSelection(const CellSelection& selection, const std::string& text) {
    // One value is none of the columns that nobody sees.
    CellSelection shown = Meant(selection, state_);
    shown.wholeRows = false;
    const std::vector<ColumnRuns> cells = SelectedCells(shown, *state_.grid);
    const std::vector<RowRun> runs = RowRuns(shown, *state_.grid);
    if (!state_.hasRight || cells.empty()) return {};
    // Below the rows in use a value may only follow them without a gap.
    int reach = state_.open.RowCount();
    for (const RowRun& run : runs)
        reach = run.first <= reach + 1 ? std::max(reach, run.last) : reach;
    if (runs.back().last > reach) {
        TellGap();
        return {};
    }
    PasteResult result;
    {
        Entering entering(state_);
        for (const RowRun& run : runs) {
            for (int row = run.first; row <= run.last; ++row) {
                std::vector<int> columns;
                for (const ColumnRuns& column : cells) {
                    const bool selected = std::any_of(
                        column.rows.begin(), column.rows.end(),
                        [row](const RowRun& rows) { return rows.first <= row && row <= rows.last; });
                    if (selected) columns.push_back(column.column);
                }
                entering.EnterRow(row, columns, std::vector<std::string>(columns.size(), text));
            }
        }
        entering.MarkEntered();
        KeepBlankRows(state_, 1);
        result = std::move(entering.result);
    }
    edited_();
    return result;
}

void BlockEditing::FillDown(const CellSelection& selection) {
    if (!state_.hasRight) return;
    struct Fill {
        int column;
        int source;
        int last;
    };
    CellSelection shown = Meant(selection, state_);
    shown.wholeRows = false;
    std::vector<Fill> fills;
    for (const ColumnRuns& column : SelectedCells(shown, *state_.grid)) {
        if (Column(column.column).locked) continue;
        for (const RowRun& run : column.rows) {
            // One row alone takes what stands above it.
            const int source = run.Count() == 1 ? run.first - 1 : run.first;
            if (source >= 1 && source <= state_.open.RowCount())
                fills.push_back({column.column, source, run.last});
        }
    }
    if (fills.empty()) return;
    {
        Entering entering(state_);
        for (const Fill& fill : fills) {
            for (int row = fill.source + 1; row <= fill.last; ++row)
                entering.CopyCell({fill.source, fill.column}, {row, fill.column});
        }
        for (const RowRun& run : RowRuns(shown, *state_.grid)) {
            for (int row = run.first; row <= run.last; ++row)
                entering.Entered(row);
        }
        entering.MarkEntered();
        KeepBlankRows(state_, 1);
    }
    edited_();
}

void BlockEditing::DuplicateRows(const CellSelection& selection) {
    EntryGrid& grid = *state_.grid;
    std::vector<RowRun> runs = RowRuns(selection, grid);
    for (RowRun& run : runs)
        run.last = std::min(run.last, state_.open.RowCount());
    std::erase_if(runs, [](const RowRun& run) { return run.Count() < 1; });
    if (!state_.hasRight || runs.empty()) return;
    {
        Entering entering(state_);
        // From the bottom, so that the rows above stay where they are.
        for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
            grid.InsertRows(run->last + 1, run->Count());
            for (int row = run->first; row <= run->last; ++row) {
                for (int c = 1; c <= kColumnCount; ++c)
                    entering.CopyCell({row, c}, {row + run->Count(), c});
                entering.Entered(row + run->Count());
            }
            // Before the rows move again.
            entering.MarkEntered();
        }
    }
    grid.SetActiveCell({runs.front().last + 1, std::max(1, grid.ActiveCell().column)});
    grid.ScrollIntoView(grid.ActiveCell());
    edited_();
}

}  // namespace vicenter::center
