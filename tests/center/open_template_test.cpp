#include "center/template/open_template.h"

#include "center/editing/grid_editing.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {
namespace {

class OpenTemplateTest : public GridTest {
  protected:
    // The account set holds that many lines, whichever template is asked for.
    void Hold(int lines) {
        set_.Respond("select * from t_VchTemplateEntry", [lines](const std::string&) {
            std::vector<std::string> fields;
            std::vector<Variant> line;
            for (const ColumnSpec& spec : Columns()) {
                fields.emplace_back(spec.field);
                line.emplace_back(spec.column == column::kExplanation ? Variant("收款") : Variant(1));
            }
            return Rows(fields, std::vector<std::vector<Variant>>(static_cast<std::size_t>(lines), line));
        });
    }
    void OpenWith(int lines) {
        Hold(lines);
        open_.Open("8", "自定义模板(2)");
        open_.ReadLines();
    }
    void Change() {
        const UndoStep step(open_);
        Grid().SetText(1, column::kRemark, "typed");
    }

    OpenTemplate& open_ = state_.open;
};

TEST_F(OpenTemplateTest, KnowsItsLinesOnceTheyHaveBeenRead) {
    Hold(3);
    open_.Open("8", "自定义模板(2)");
    EXPECT_FALSE(open_.LinesKnown());
    EXPECT_EQ(open_.RowCount(), 0);
    open_.ReadLines();
    EXPECT_TRUE(open_.LinesKnown());
    EXPECT_EQ(open_.RowCount(), 3);
    EXPECT_EQ(open_.EntryCount(), 3);
    EXPECT_EQ(open_.Loaded().lines, 3);
    EXPECT_FALSE(open_.IsDirty());
    EXPECT_FALSE(open_.Journal().CanUndo());
}

TEST_F(OpenTemplateTest, LinesThatCannotBeReadStayUnknownAndNoneOfThemStays) {
    OpenWith(3);
    set_.Respond("select * from t_VchTemplateEntry",
                 [](const std::string&) -> ado::RecordsetRef { throw automation::Error(5, "broken"); });
    open_.Open("8", "自定义模板(2)");
    open_.ReadLines();
    EXPECT_FALSE(open_.LinesKnown());
    EXPECT_EQ(open_.RowCount(), 0);
    EXPECT_TRUE(Grid().IsBlankRow(1));
}

TEST_F(OpenTemplateTest, WhatIsTypedMakesItDirtyUntilItIsStoredOrGivenUp) {
    OpenWith(2);
    Change();
    EXPECT_TRUE(open_.IsDirty());
    open_.Settle();
    EXPECT_FALSE(open_.IsDirty());
    EXPECT_TRUE(open_.Journal().CanUndo());
    open_.Undo();
    EXPECT_TRUE(open_.IsDirty()) << "what was stored is no longer what the grid holds";
}

TEST_F(OpenTemplateTest, AnotherOneTakesNothingAlong) {
    OpenWith(2);
    Change();
    open_.SetNotice("notice");
    Hold(0);
    open_.Open("5", "自定义模板(1)");
    open_.ReadLines();
    EXPECT_EQ(open_.Id(), "5");
    EXPECT_FALSE(open_.IsDirty());
    EXPECT_FALSE(open_.Journal().CanUndo());
    EXPECT_EQ(open_.Notice(), "");
    EXPECT_EQ(open_.RowCount(), 0);
    EXPECT_TRUE(Grid().IsBlankRow(1));
}

TEST_F(OpenTemplateTest, ClosedThereIsNothingThatIsNotKnown) {
    OpenWith(2);
    open_.Close();
    EXPECT_FALSE(open_.IsOpen());
    EXPECT_EQ(open_.Name(), "");
    EXPECT_EQ(open_.EntryCount(), 0);
    EXPECT_TRUE(open_.LinesKnown());
}

TEST_F(OpenTemplateTest, TheSameLinesAsAnotherTemplateStandOnNothingThatWasRead) {
    OpenWith(2);
    Change();
    open_.Become("9", "自定义模板(3)");
    EXPECT_EQ(open_.Id(), "9");
    EXPECT_EQ(open_.RowCount(), 2);
    EXPECT_EQ(open_.Loaded(), LinesDigest());
    EXPECT_TRUE(open_.IsDirty());
}

TEST_F(OpenTemplateTest, AStepOfUndoBringsTheNumberOfRowsBack) {
    OpenWith(2);
    {
        const UndoStep step(open_);
        Grid().SetText(5, column::kRemark, "further down");
        Grid().RemoveRows(1, 1);
    }
    EXPECT_EQ(open_.RowCount(), 4);
    open_.Undo();
    EXPECT_EQ(open_.RowCount(), 2);
    EXPECT_EQ(Text(1, column::kExplanation), "收款");
    open_.Redo();
    EXPECT_EQ(open_.RowCount(), 4);
}

}  // namespace
}  // namespace vicenter::center
