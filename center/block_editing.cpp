#include "center/block_editing.h"

#include <algorithm>
#include <optional>

#include "center/cell_checks.h"
#include "center/cell_resolution.h"
#include "center/cell_rules.h"

namespace vicenter::center {

namespace {

constexpr std::size_t kRowsPerReport = 500;  // rows between two steps of the progress panel
constexpr const char* kProgressText = "正在粘贴，请稍后...";
constexpr const char* kGapText = "请连续录入凭证模板分录！";

std::vector<int> ShownColumns(const EntryGrid& grid, int first, int last) {
    std::vector<int> columns;
    for (int c = std::max(1, first); c <= std::min(last, kColumnCount); ++c) {
        if (!grid.Layout(c).hidden) columns.push_back(c);
    }
    return columns;
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
        if (IsLong()) view_.SetProgress({});
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

// The hidden id column that belongs to a name column, 0 for none.
int IdColumnOf(int gridColumn) {
    switch (gridColumn) {
        case column::kAccountNumber:
        case column::kSettleName:
        case column::kCurrencyName:
        case column::kUnitName:
            return gridColumn - 1;
        default:
            return 0;
    }
}

}  // namespace

// Everything that one block operation needs: one step of undo, one repaint, one memory of master data.
class BlockEditing::Entering {
  public:
    explicit Entering(WindowState& state) : state_(state), step_(state) { state_.grid->SetReDraw(false); }
    Entering(const Entering&) = delete;
    Entering& operator=(const Entering&) = delete;
    ~Entering() { state_.grid->SetReDraw(true); }

    // As if the cells had been typed from left to right, each left by Tab.
    void EnterRow(int row, const std::vector<int>& columns, const std::vector<std::string>& texts) {
        EntryGrid& grid = *state_.grid;
        const std::size_t count = std::min(columns.size(), texts.size());
        bool accountGiven = false;
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
            const TextVerdict verdict = CheckTypedText(c, texts[i]);
            if (verdict != TextVerdict::Taken) {
                result.refused.push_back({{row, c}, texts[i], VerdictText(verdict, c)});
                continue;
            }
            accountGiven = accountGiven || (c == column::kAccountNumber && !texts[i].empty());
            grid.SetText(row, c, texts[i]);
            ResolveCell(grid, {row, c}, records_);
            ++result.cells;
        }
        // Ids follow from the codes; one that comes out otherwise than given has not been taken.
        for (const std::size_t i : locked) {
            if (grid.Text(row, columns[i]) == texts[i]) continue;
            result.refused.push_back(
                {{row, columns[i]}, texts[i], VerdictText(TextVerdict::Locked, columns[i])});
        }
        if (result.cells == before) return;
        ++result.rows;
        MarkRow(grid, row, checks_);
    }

    void CopyCell(const CellAddress& from, const CellAddress& to) {
        EntryGrid& grid = *state_.grid;
        grid.SetText(to.row, to.column, std::string(grid.Text(from.row, from.column)));
        if (const int id = IdColumnOf(to.column); id != 0) {
            grid.SetText(to.row, id, std::string(grid.Text(from.row, id)));
        }
        // A code without its name would be a line that cannot be saved.
        if (to.column == column::kAccountNumber) {
            grid.SetText(to.row, column::kAccountName,
                         std::string(grid.Text(from.row, column::kAccountName)));
        }
    }
    void Mark(int row) { MarkRow(*state_.grid, row, checks_); }

    PasteResult result;

  private:
    WindowState& state_;
    UndoStep step_;
    CellChecks checks_;
    MasterRecords records_;
};

BlockEditing::BlockEditing(WindowState& state, std::function<void()> edited)
    : state_(state), edited_(std::move(edited)) {}

std::string BlockEditing::Copy(const CellRange& range) const {
    const EntryGrid& grid = *state_.grid;
    const std::vector<int> columns = ShownColumns(grid, range.firstColumn, range.lastColumn);
    TextBlock block;
    for (int row = std::max(1, range.firstRow); row <= std::min(range.lastRow, grid.RowTotal()); ++row) {
        std::vector<std::string>& texts = block.emplace_back();
        for (const int c : columns)
            texts.emplace_back(grid.Text(row, c));
    }
    return FormatBlock(block);
}

PasteResult BlockEditing::Paste(const CellAddress& at, const std::string& text) {
    return Enter(at, ShownColumns(*state_.grid, at.column, kColumnCount), ParseBlock(text));
}

PasteResult BlockEditing::FillSelection(const CellRange& range, const std::string& text) {
    const std::vector<int> columns = ShownColumns(*state_.grid, range.firstColumn, range.lastColumn);
    const auto rows = static_cast<std::size_t>(std::max(0, range.lastRow - range.firstRow + 1));
    const TextBlock block(rows, std::vector<std::string>(columns.size(), text));
    return Enter({range.firstRow, range.firstColumn}, columns, block);
}

PasteResult BlockEditing::Enter(const CellAddress& at, const std::vector<int>& columns,
                                const TextBlock& block) {
    if (!state_.hasRight || block.empty() || at.row < 1) return {};
    if (at.row > state_.rowCount + 1) {
        Tell(kGapText);
        return {};
    }
    EntryGrid& grid = *state_.grid;
    PasteResult result;
    {
        PasteProgress progress(state_.view, block.size());
        Entering entering(state_);
        int row = at.row;
        for (std::size_t i = 0; i < block.size(); ++i) {
            progress.Report(i);
            // A blank line below the rows in use would leave a gap.
            if (IsBlank(block[i]) && row > state_.rowCount) continue;
            if (row + 1 > grid.RowTotal()) {
                grid.SetRowTotal(row + static_cast<int>(block.size() - i) + 1);
            }
            entering.EnterRow(row, columns, block[i]);
            // A line of which nothing could be taken leaves no row behind.
            if (row <= state_.rowCount) ++row;
        }
        result = std::move(entering.result);
    }
    edited_();
    return result;
}

void BlockEditing::FillDown(const CellRange& range) {
    if (!state_.hasRight) return;
    // One row alone takes what stands above it.
    const int source = range.firstRow == range.lastRow ? range.firstRow - 1 : range.firstRow;
    if (source < 1 || source > state_.rowCount) return;
    const int lastRow = std::min(range.lastRow, state_.grid->RowTotal());
    {
        Entering entering(state_);
        for (int row = source + 1; row <= lastRow; ++row) {
            for (int c = range.firstColumn; c <= range.lastColumn; ++c) {
                if (!Column(c).locked && !state_.grid->Layout(c).hidden) {
                    entering.CopyCell({source, c}, {row, c});
                }
            }
            entering.Mark(row);
        }
        // A blank row stays below the rows in use.
        if (state_.rowCount == state_.grid->RowTotal()) state_.grid->SetRowTotal(state_.rowCount + 1);
    }
    edited_();
}

void BlockEditing::DuplicateRow() {
    EntryGrid& grid = *state_.grid;
    const CellAddress active = grid.ActiveCell();
    if (!state_.hasRight || active.row < 1 || active.row > state_.rowCount) return;
    {
        Entering entering(state_);
        grid.InsertRows(active.row + 1, 1);
        for (int c = 1; c <= kColumnCount; ++c)
            entering.CopyCell({active.row, c}, {active.row + 1, c});
        entering.Mark(active.row + 1);
    }
    grid.SetActiveCell({active.row + 1, active.column});
    grid.ScrollIntoView(grid.ActiveCell());
    edited_();
}

}  // namespace vicenter::center
