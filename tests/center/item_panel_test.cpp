// The item panel of column 11.

#include "center/lookups/item_panel.h"

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

TEST(ItemTexts, SplitIntoAsManyPiecesAsThereAreClasses) {
    EXPECT_THAT(SplitItems("C1,D2,E3", 3), ElementsAre("C1", "D2", "E3"));
    EXPECT_THAT(SplitItems("C1", 3), ElementsAre("C1", "", ""));
    EXPECT_THAT(SplitItems(",D2", 2), ElementsAre("", "D2"));
    EXPECT_THAT(SplitItems("C1,D2,E3", 2), ElementsAre("C1", "D2"));
    EXPECT_THAT(SplitItems("", 0), IsEmpty());
}

TEST(ItemTexts, JoinWithoutASeparatorBehindAndToNothingWhenAllAreEmpty) {
    EXPECT_EQ(JoinItems({"C1", "D2"}), "C1,D2");
    EXPECT_EQ(JoinItems({"C1", ""}), "C1,");
    EXPECT_EQ(JoinItems({"", "D2", ""}), ",D2,");
    EXPECT_EQ(JoinItems({"", ""}), "");
    EXPECT_EQ(JoinItems({}), "");
}

class Panel : public CenterTest {
  protected:
    Panel() {
        set_.Respond("select a.FDetailID,isnull(b.FDetailCount,0)", [](const std::string& sql) {
            const bool carriesItems =
                sql.find("'1122'") != std::string::npos || sql.find("'6602'") != std::string::npos;
            auto rows = Rows({"FDetailID", "FDetailCount"});
            if (carriesItems) rows->AppendRow({sql.find("'1122'") != std::string::npos ? 11 : 66, 2});
            return rows;
        });
        set_.Respond("FItemID = -1 order by a.FItemClassID", [](const std::string& sql) {
            return sql.find("FDetailID = 11") != std::string::npos
                       ? Rows({"FItemClassID", "FName"}, {{1, "客户"}, {2, "部门"}})
                       : Rows({"FItemClassID", "FName"}, {{2, "部门"}});
        });
        set_.Respond("select a.FItemClassID,b.FSQLTableName", [](const std::string& sql) {
            return sql.find("'1122'") != std::string::npos
                       ? Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Customer"}, {2, "t_Department"}})
                       : Rows({"FItemClassID", "FSQLTableName"}, {{2, "t_Department"}});
        });
        set_.Answer("select FItemID from t_Customer where fnumber = 'C001'", Rows({"FItemID"}, {{1}}));
        set_.Answer("select FItemID from t_Department where fnumber = 'D01'", Rows({"FItemID"}, {{1}}));
        lines_["0"] = {Line(1, "收款", 1, "1122", "应收账款"), Line(1, "", 0, "6602", "费用"),
                       Line(1, "", 0, "1001", "现金")};
    }
    void SetUp() override {
        Open();
        Window().Cells().MoveActiveCell({1, column::kItems});
    }
    const ItemPanelState& Shown() const { return view_.itemPanel; }
    Texts ShownRows() const {
        Texts rows;
        for (const ItemPanelState::Row& row : Shown().rows) {
            rows.push_back(std::to_string(row.classId) + " " + row.className + " " + row.number +
                           (row.faulty ? " red" : ""));
        }
        return rows;
    }
    std::string Items(int row = 1) { return Cell(row, column::kItems); }
};

TEST_F(Panel, ShowsOneRowForEveryItemClassOfTheRowsAccount) {
    EXPECT_TRUE(Shown().visible);
    EXPECT_FALSE(Shown().expanded);
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 ", "2 部门 "));
}

TEST_F(Panel, IsThereInItsColumnAndUpToTheFirstBlankRowOnly) {
    Window().Cells().MoveActiveCell({1, 10});
    EXPECT_FALSE(Shown().visible);
    Window().Cells().MoveActiveCell({4, column::kItems});
    EXPECT_TRUE(Shown().visible);
    EXPECT_THAT(Shown().rows, IsEmpty());
    Window().Cells().MoveActiveCell({3, column::kItems});
    EXPECT_TRUE(Shown().visible);
    EXPECT_THAT(Shown().rows, IsEmpty());
}

TEST_F(Panel, AUserWithoutTheRightSeesNone) {
    right_ = false;
    view_.itemPanel = {};
    Open();
    Window().Cells().MoveActiveCell({1, column::kItems});
    EXPECT_FALSE(Shown().visible);
}

TEST_F(Panel, ClassesOfZeroAndLessAreNoPartOfTheItems) {
    set_.Answer("FItemID = -1 order by",
                Rows({"FItemClassID", "FName"}, {{-1, "旧类别"}, {0, "无"}, {2, "部门"}}));
    Window().Cells().MoveActiveCell({1, column::kItems - 1});
    Window().Cells().MoveActiveCell({1, column::kItems});
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
}

TEST_F(Panel, FollowsTheActiveRow) {
    Window().Cells().MoveActiveCell({2, column::kItems});
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
}

TEST_F(Panel, ReadsTheClassesAnewWhenTheRowsAccountChanges) {
    Grid().SetText(1, column::kAccountNumber, "6602");
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
    Grid().SetText(1, column::kAccountNumber, "");
    EXPECT_THAT(Shown().rows, IsEmpty());
    Window().Cells().Undo();
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
    Window().Cells().Undo();
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 ", "2 部门 "));
}

TEST_F(Panel, DoesNotReadTheClassesAgainForTheSameAccount) {
    set_.Forget();
    Window().Items().CommitNumber(0, "C001");
    EXPECT_THAT(Sent("FItemID = -1 order by"), IsEmpty());
}

TEST_F(Panel, ANumberIsWrittenAtItsPlaceInTheItemsFormat) {
    Window().Items().CommitNumber(1, "D01");
    EXPECT_EQ(Items(), ",D01");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 ", "2 部门 D01"));
    Window().Items().CommitNumber(0, " C001 ");
    EXPECT_EQ(Items(), "C001,D01");
    EXPECT_EQ(Shown().text, "C001,D01");
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(Grid().Look(1, column::kItems).foreColor, color::kBlack);
}

TEST_F(Panel, KnowsTheNamesBehindTheNumbers) {
    set_.Answer("select b.FName,b.FSQLTableName",
                Rows({"FName", "FSQLTableName"}, {{"客户", "t_Customer"}, {"部门", "t_Department"}}));
    set_.Answer("select FName from t_Customer where FNumber = 'C001'", Rows({"FName"}, {{"甲公司"}}));
    set_.Answer("select FName from t_Department where FNumber = 'D01'", Rows({"FName"}, {{"财务部"}}));
    set_.Answer("select FName from t_Department where FNumber = 'D09'", Rows({"FName"}));
    EXPECT_THAT(Window().Items().Names(), ElementsAre("", ""));
    Window().Items().CommitNumber(1, "D01");
    EXPECT_THAT(Window().Items().Names(), ElementsAre("", "财务部"));
    Window().Items().CommitNumber(0, "C001");
    Window().Items().CommitNumber(1, "D09");
    EXPECT_THAT(Window().Items().Names(), ElementsAre("甲公司", ""));
    Window().Cells().MoveActiveCell({1, 10});
    EXPECT_THAT(Window().Items().Names(), IsEmpty());
}

TEST_F(Panel, TakingEveryNumberAwayEmptiesTheCell) {
    Window().Items().CommitNumber(0, "C001");
    Window().Items().CommitNumber(0, "");
    EXPECT_EQ(Items(), "");
}

TEST_F(Panel, AnUnresolvedPieceIsRedInThePanelAsInTheCell) {
    Window().Items().CommitNumber(0, "C999");
    Window().Items().CommitNumber(1, "D01");
    EXPECT_EQ(Items(), "C999,D01");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 C999 red", "2 部门 D01"));
    EXPECT_EQ(Grid().Look(1, column::kItems).foreColor, color::kRed);
    Window().Items().CommitNumber(0, "C001");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 C001", "2 部门 D01"));
    EXPECT_EQ(Grid().Look(1, column::kItems).foreColor, color::kBlack);
}

TEST_F(Panel, RefusesASeparatorInsideANumberAndWhatNoCellTakes) {
    Window().Items().CommitNumber(0, "C001,D01");
    Window().Items().CommitNumber(0, "C'1");
    Window().Items().CommitNumber(0, std::string(256, 'x'));
    Window().Items().CommitNumber(9, "C001");
    EXPECT_EQ(Items(), "");
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 ", "2 部门 "));
}

TEST_F(Panel, TheWholeTextIsTakenPieceByPiece) {
    Window().Items().CommitText("C001,D01");
    EXPECT_EQ(Items(), "C001,D01");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 C001", "2 部门 D01"));
}

TEST_F(Panel, TheWholeTextIsBroughtIntoTheItemsFormat) {
    Window().Items().CommitText(" C001 , D01 ");
    EXPECT_EQ(Items(), "C001,D01");
    Window().Items().CommitText("C001");
    EXPECT_EQ(Items(), "C001,");
    Window().Items().CommitText(",,");
    EXPECT_EQ(Items(), "");
    // More pieces than classes stay as typed and are red.
    Window().Items().CommitText("C001,D01,X");
    EXPECT_EQ(Items(), "C001,D01,X");
}

TEST_F(Panel, ATextOnARowWithoutClassesStaysAsTyped) {
    Window().Cells().MoveActiveCell({3, column::kItems});
    Window().Items().CommitText("C001");
    EXPECT_EQ(Items(3), "C001");
    EXPECT_EQ(Grid().Look(3, column::kItems).foreColor, color::kRed);
}

TEST_F(Panel, AChangeIsOneStepOfUndo) {
    Window().Items().CommitNumber(0, "C001");
    Window().Cells().Undo();
    EXPECT_EQ(Items(), "");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 ", "2 部门 "));
}

TEST_F(Panel, TheButtonOpensAndClosesThePicture) {
    Window().Items().Toggle();
    EXPECT_TRUE(Shown().expanded);
    Window().Items().Toggle();
    EXPECT_FALSE(Shown().expanded);
    Window().Cells().MoveActiveCell({1, 10});
    Window().Items().Toggle();
    EXPECT_FALSE(Shown().expanded);
}

// --- rows that come and go under the cursor

TEST_F(Panel, FollowsTheRowThatComesUnderTheCursor) {
    Window().Items().CommitNumber(0, "C001");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 C001", "2 部门 "));
    Window().Cells().InsertRows({1, 1});
    EXPECT_TRUE(Shown().visible);
    EXPECT_THAT(ShownRows(), IsEmpty());
    EXPECT_EQ(Shown().text, "");
    Window().Cells().DeleteRows({1, 1});
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 C001", "2 部门 "));
    Window().Cells().DeleteRows({1, 1});
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
    Window().Cells().Undo();
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 C001", "2 部门 "));
    Window().Cells().Redo();
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
}

TEST_F(Panel, FollowsTheRowCommandsOfTheBar) {
    Window().ToolClick("mnuAddRow");
    EXPECT_THAT(ShownRows(), IsEmpty());
    EXPECT_EQ(view_.status.lines, 4);
    Window().ToolClick("mnuDelRow");
    EXPECT_THAT(ShownRows(), ElementsAre("1 客户 ", "2 部门 "));
    EXPECT_EQ(view_.status.lines, 3);
    Window().ToolClick("mnuDelRow");
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
}

TEST_F(Panel, FollowsADuplicatedRow) {
    Window().Cells().MoveActiveCell({2, column::kItems});
    Window().Cells().DuplicateRows({2, column::kItems});
    EXPECT_EQ(Grid().ActiveCell().row, 3);
    EXPECT_THAT(ShownRows(), ElementsAre("2 部门 "));
}

// --- look-up

class PanelLookUp : public Panel {
  protected:
    void SetUp() override {
        Panel::SetUp();
        record_->Value("Number", "C001");
        result_->Value("ReturnOK", true).Value("ReturnObject", Variant(record_));
        ledger_->On("ItemLookUp", [this](Arguments&) {
            for (const char* property : {"BeShortNumber", "GetDataType", "Refresh", "Search"})
                EXPECT_FALSE(ledger_->PutValue(property).IsEmpty()) << property;
            return Variant(result_);
        });
    }
    fakes::ScriptedRef ledger_ = fakes::RegisterScripted("VelaEBCGLView.GLView");
    fakes::ScriptedRef record_ = std::make_shared<fakes::ScriptedObject>("Record");
    fakes::ScriptedRef result_ = std::make_shared<fakes::ScriptedObject>("Result");
};

TEST_F(PanelLookUp, SetsFourPropertiesAndAsksForTheRowsClass) {
    Window().Items().CommitNumber(1, "D01");
    Window().Items().LookUp(0);
    EXPECT_EQ(ledger_->Calls().back(), "ItemLookUp(1, )");
    EXPECT_EQ(Items(), "C001,D01");
    record_->Value("Number", "D02");
    Window().Items().LookUp(1);
    EXPECT_EQ(ledger_->Calls().back(), "ItemLookUp(2, D01)");
    EXPECT_EQ(Items(), "C001,D02");
}

TEST_F(PanelLookUp, AChosenItemThatTheTextCannotHoldIsTold) {
    Window().Items().CommitNumber(1, "D01");
    for (const char* number : {"C'1", "C|1", "C,1", "C\t1"}) {
        Forget();
        record_->Value("Number", number);
        Window().Items().LookUp(0);
        EXPECT_THAT(Messages(), ElementsAre("所选核算项目“" + std::string(number) +
                                            "”没有取用：代码不能包含单引号、竖线、逗号或控制字符！"));
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].title, "信息提示");
        EXPECT_EQ(Items(), ",D01");
    }
    Forget();
    record_->Value("Number", std::string(300, 'C'));
    Window().Items().LookUp(0);
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(Messages()[0], HasSubstr("没有取用：核算项目长度不能超过255个字符！"));
    EXPECT_EQ(Items(), ",D01");
}

TEST_F(PanelLookUp, ACancelledOneChangesNothing) {
    result_->Value("ReturnOK", false);
    Window().Items().LookUp(0);
    EXPECT_EQ(Items(), "");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(PanelLookUp, AFailingOneIsToldAndChangesNothing) {
    ledger_->On("ItemLookUp", [](Arguments&) -> Variant { throw automation::Error(5, "组件出错"); });
    Window().Items().LookUp(0);
    EXPECT_THAT(Messages(), ElementsAre("组件出错"));
    EXPECT_EQ(Items(), "");
    Window().Items().LookUp(7);
    EXPECT_EQ(Messages().size(), 1U);
}

// --- why a cell is red

TEST_F(Panel, TheStatusLineSaysWhatTheActiveFaultyCellExpects) {
    Grid().SetColumnHidden(column::kItems, false);
    Window().Items().CommitNumber(0, "C999");
    EXPECT_EQ(view_.status.hint, "核算项目代码不存在或个数不符，应依次为：客户、部门") << "at once";
    Window().Cells().MoveActiveCell({1, 10});
    EXPECT_EQ(view_.status.hint, "");
    Window().Cells().MoveActiveCell({1, column::kItems});
    EXPECT_EQ(view_.status.hint, "核算项目代码不存在或个数不符，应依次为：客户、部门");
    EXPECT_EQ(view_.status.hint, Window().Cells().DescribeFault({1, column::kItems}));
}

}  // namespace
}  // namespace vicenter::center::test
