// Editing drawn by lot on a real account set: every step can be taken back and done again, the template
// counts as modified while it differs from what is stored, a draft brings everything back, and what is saved
// is read again as it was shown.

#include <algorithm>
#include <random>

#include "center/editing/cell_checks.h"
#include "tests/center/window_on_set.h"

namespace vicenter::center {

namespace {

constexpr int kRoundsOfATemplate = 4;
constexpr int kStepsOfARound = 12;

class RandomEditing : public test::WindowOnSet, public testing::WithParamInterface<unsigned> {
  protected:
    // --- lots

    int Lot(int count) { return static_cast<int>(generator_() % static_cast<unsigned>(count)); }
    bool Chance(int percent) { return Lot(100) < percent; }
    template <class Choice>
    Choice OneOf(const std::vector<Choice>& choices) {
        return choices[static_cast<std::size_t>(Lot(static_cast<int>(choices.size())))];
    }
    int AnyRow() { return 1 + Lot(Window().RowCount() + 1); }
    int AnyColumn() { return 1 + Lot(kColumnCount); }

    std::string TextFor(int gridColumn) {
        if (Chance(8)) return "";
        if (Chance(4)) return OneOf<std::string>({"'", "a|b", "x\ny", "９９", " 7 ", "-1", "1e3", "=1+2"});
        switch (gridColumn) {
            case column::kNo:
                return std::to_string(Lot(6));
            case column::kExplanation:
                return OneOf<std::string>({"007", "报销", "提取备用金", ".", "中 文", "a\"b"});
            case column::kDirection:
                return OneOf<std::string>({"借", "贷", "1", "J"});
            case column::kAccountNumber:
                return OneOf<std::string>(
                    {"1001", "1002.01", "1002.02", "5602.05", "1405.01", "1122.01", "1002", "9999"});
            case column::kAccountName:
                return OneOf<std::string>({"库存现金", "乱写", "绿茶"});
            case column::kFileCount:
                return OneOf<std::string>({"1", "2", "0", "99999999999"});
            case column::kSettleName:
                return OneOf<std::string>({"JF02", "电汇", "ZZZ"});
            case column::kItems:
                return OneOf<std::string>({"D01", "D01,E001", ",", "C001", "C999"});
            case column::kCurrencyName:
                return OneOf<std::string>({"USD", "人民币", "XYZ"});
            case column::kUnitName:
                return OneOf<std::string>({"千克", "米", "PCS"});
            default:
                return OneOf<std::string>({"1", "2.5", "1,234.50", "0.1", "1000000", "0", "abc"});
        }
    }
    CellSelection AnySelection() {
        if (Chance(30)) {
            std::vector<RowRun> runs;
            for (int left = 1 + Lot(3); left > 0; --left) {
                const int first = AnyRow();
                runs.push_back({first, first + Lot(3)});
            }
            std::sort(runs.begin(), runs.end(),
                      [](const RowRun& a, const RowRun& b) { return a.first < b.first; });
            return CellSelection::Rows(runs);
        }
        CellSelection selection;
        for (int left = Chance(70) ? 1 : 1 + Lot(3); left > 0; --left) {
            const int row = AnyRow();
            const int first = AnyColumn();
            selection.pieces.push_back({row, first, row + Lot(3), std::min(kColumnCount, first + Lot(6))});
        }
        return selection;
    }
    // As another program puts it on the clipboard, at times below a row of headers.
    std::string ForeignText() {
        std::vector<int> columns{column::kNo,        column::kExplanation,
                                 column::kDirection, column::kAccountNumber,
                                 column::kAmount,    column::kRemark};
        std::string text;
        if (Chance(70)) {
            columns.resize(static_cast<std::size_t>(1 + Lot(6)));
        } else {
            for (const int c : columns)
                text += std::string(Column(c).Title()) + (c == columns.back() ? "\r\n" : "\t");
        }
        for (int left = 1 + Lot(4); left > 0; --left) {
            for (const int c : columns)
                text += TextFor(c) + (c == columns.back() ? "\r\n" : "\t");
        }
        return text;
    }

    // --- what stands in the window

    Texts Lines() {
        Texts lines;
        for (int row = 1; row <= Window().RowCount(); ++row) {
            std::string line;
            for (int c = 1; c <= kColumnCount; ++c) {
                line += Cell(row, c);
                if (Window().Grid().Refusal(row, c) != TextVerdict::Taken) line += "!";
                if (IsRed(row, c)) line += "(red)";
                line += "|";
            }
            lines.push_back(line);
        }
        for (int row = Window().RowCount() + 1; row <= Window().Grid().RowTotal(); ++row) {
            if (!Window().Grid().IsBlankRow(row)) lines.push_back("below the lines: " + std::to_string(row));
        }
        return lines;
    }
    // The colours that the lines would have if they were read.
    void MarkAnew() {
        CellChecks checks;
        MarkRows(Window().Grid(), 1, Window().RowCount(), checks);
    }
    void LeaveCell() {
        Window().Cells().MoveActiveCell({1, column::kNo});
        Window().Cells().MoveActiveCell({1, column::kFileCount});
    }
    void UndoAll() {
        while (Window().Cells().CanUndo())
            Window().Cells().Undo();
    }
    void RedoAll() {
        while (Window().Cells().CanRedo())
            Window().Cells().Redo();
    }

    // --- steps

    void TypeSomewhere() {
        const CellAddress cell{AnyRow(), AnyColumn()};
        Window().Cells().MoveActiveCell(cell);
        Window().Cells().CommitText(cell, TextFor(cell.column));
    }
    void CopySomething() {
        const auto copied = Window().Cells().CopyBlock(AnySelection());
        if (!copied) return;
        copied_ = *copied;
        if (Chance(30)) copied_.rows.clear();  // by way of another program
        if (Chance(40)) Window().Cells().ClearCells(AnySelection());
    }
    void EditSomePattern() {
        Window().Cells().MoveActiveCell({AnyRow(), AnyColumn()});
        Window().Cells().EditPatterns(
            OneOf<PatternCommand>({PatternCommand::Copy, PatternCommand::MoveUp, PatternCommand::MoveDown,
                                   PatternCommand::Renumber, PatternCommand::Sort}));
    }
    const char* Step() {
        GridActions& cells = Window().Cells();
        switch (Lot(16)) {
            default:
                return TypeSomewhere(), "type";
            case 4:
                return cells.ClearCells(AnySelection()), "clear";
            case 5:
                return CopySomething(), "copy";
            case 6:
            case 7:
                return cells.PasteBlock(AnySelection(), copied_), "paste";
            case 8:
                return cells.PasteBlock(AnySelection(), ForeignText()), "paste foreign";
            case 9:
                return cells.FillDown(AnySelection()), "fill";
            case 10:
                return cells.DuplicateRows(AnySelection()), "duplicate";
            case 11:
                return cells.InsertRows(AnySelection()), "insert";
            case 12:
                return cells.DeleteRows(AnySelection()), "delete";
            case 13:
                return EditSomePattern(), "pattern";
            case 14:
                return cells.Undo(), "undo";
            case 15:
                return cells.TakeRow(), "take proposals";
        }
    }
    // A round of steps, each taken back and done again.
    void EditAtRandom() {
        for (int left = kStepsOfARound; left > 0; --left) {
            const Texts before = Lines();
            const std::string step = Step();
            steps_ += step + "\n";
            LeaveCell();
            const Texts after = Lines();
            MarkAnew();
            ASSERT_EQ(Lines(), after) << "colours\n" << steps_;
            if (step == "undo" || after == before) continue;
            ASSERT_TRUE(Window().IsDirty()) << steps_;
            Window().Cells().Undo();
            if (Lines() != before) Window().Cells().Undo();  // what the cell of before was resolved to
            ASSERT_EQ(Lines(), before) << steps_;
            RedoAll();
            ASSERT_EQ(Lines(), after) << steps_;
        }
        RedoAll();
    }
    void IsTakenBackWhole(const Texts& stored) {
        const Texts now = Lines();
        UndoAll();
        ASSERT_EQ(Lines(), stored) << steps_;
        EXPECT_FALSE(Window().IsDirty()) << steps_;
        RedoAll();
        ASSERT_EQ(Lines(), now) << steps_;
        EXPECT_EQ(Window().IsDirty(), now != stored) << steps_;
    }
    // The window is gone with its process; the next one is asked to restore.
    void LoseTheWindow() {
        const std::string node = Window().SelectedNode();
        Window().KeepDraft();
        window_.reset();
        Answer(system::MessageResult::Yes);
        Open();
        Window().Shown();
        if (Window().SelectedNode() != node) Window().Tree().NodeClick(node);
        surroundings_.messageBoxes->answers.clear();
    }

    std::mt19937 generator_{GetParam()};
    CopiedBlock copied_;
    std::string steps_;
};

}  // namespace

TEST_P(RandomEditing, IsTakenBackAndDoneAgainRestoredAndSavedAsItWasSeen) {
    for (int c = 1; c <= kColumnCount; ++c) {
        if (Column(c).kind != CellKind::Id) Window().Grid().SetColumnHidden(c, Chance(40));
    }
    Window().Tree().NodeClick("detail-" + std::to_string(1 + Lot(3)));
    for (int round = 0; round < kRoundsOfATemplate; ++round) {
        steps_.clear();
        const Texts stored = Lines();
        ASSERT_NO_FATAL_FAILURE(EditAtRandom());
        const Texts edited = Lines();
        ASSERT_NO_FATAL_FAILURE(IsTakenBackWhole(stored));
        if (Chance(50)) {
            LoseTheWindow();
            ASSERT_EQ(Lines(), edited) << steps_;
            ASSERT_NO_FATAL_FAILURE(IsTakenBackWhole(stored));
        }
        if (!Window().Save()) {
            UndoAll();
            continue;
        }
        const Texts saved = Lines();
        const std::string node = Window().SelectedNode();
        Window().Tree().NodeClick("detail-0");
        Window().Tree().NodeClick(node);
        ASSERT_EQ(Lines(), saved) << steps_;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEditing, testing::Range(1U, 13U));

class RestoredDraft : public test::WindowOnSet {};

TEST_F(RestoredDraft, OfABlankLineAloneIsTakenBack) {
    const std::string id = NewTemplate("空白");
    Type(1, column::kRemark, "写错了");
    Window().Cells().InsertRows({1, 1});
    Window().Cells().DeleteRows({2, 1});
    ASSERT_EQ(Window().RowCount(), 1);
    Window().KeepDraft();
    window_.reset();
    Answer(system::MessageResult::Yes);
    Open();
    Window().Shown();
    if (Window().TemplateId() != id) Window().Tree().NodeClick("detail-" + id);
    ASSERT_EQ(Window().RowCount(), 1);
    Window().Cells().Undo();
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_FALSE(Window().IsDirty());
}

}  // namespace vicenter::center
