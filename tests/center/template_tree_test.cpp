// The template tree: building, opening, clicking, new, rename and delete.

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;

constexpr const char* kGate = "当前凭证模板修改后未保存，您是否进行保存?";
constexpr const char* kEmptyName = "名称不允许为空，修改失败！";
constexpr const char* kDuplicateName = "模板名称不允许重复，修改失败！";

class Tree : public CenterTest {
  protected:
    Texts Nodes() const {
        Texts nodes;
        for (const TreeNode& node : view_.tree)
            nodes.push_back(node.key + " " + node.text + " " + std::to_string(node.icon));
        return nodes;
    }
    void Click(const std::string& key) { Window().Tree().NodeClick(key); }
    void ExpectMessage(const std::string& text) {
        ASSERT_EQ(surroundings_.messageBoxes->shown.size(), 1U);
        const fakes::ShownMessage& shown = surroundings_.messageBoxes->shown[0];
        EXPECT_EQ(shown.text, text);
        EXPECT_EQ(shown.title, "信息提示");
        EXPECT_EQ(shown.icon, system::MessageIcon::Information);
        EXPECT_EQ(shown.buttons, system::MessageButtons::Ok);
    }
};

// --- building

TEST_F(Tree, ListsTheTemplatesUnderOneRootInTheOrderOfTheirRows) {
    templates_ = {{0, "标准模板"}, {12, "乙"}, {5, "甲"}};
    Open();
    EXPECT_THAT(Nodes(),
                ElementsAre("ROOT 凭证模板 7", "detail-0 标准模板 2", "detail-12 乙 2", "detail-5 甲 2"));
    EXPECT_EQ(view_.selected, "detail-0");
    EXPECT_THAT(Sent("where fid <> 0"), testing::SizeIs(1));
    EXPECT_THAT(Sent("where fid <> 0")[0], HasSubstr("FUserID = 7"));
}

TEST_F(Tree, AUserWithoutTemplatesSeesTheStandardTemplateSelected) {
    templates_ = {{0, "标准模板"}};
    Open();
    EXPECT_THAT(Nodes(), ElementsAre("ROOT 凭证模板 7", "detail-0 标准模板 2"));
    EXPECT_EQ(Window().SelectedNode(), "detail-0");
}

TEST_F(Tree, TheStandardTemplateShowsTheNameOfItsRowButOpensUnderItsOwn) {
    templates_ = {{0, "Standard"}};
    Open();
    EXPECT_EQ(view_.tree[1].text, "Standard");
    EXPECT_EQ(view_.name, "标准模板");
}

TEST_F(Tree, ShowsTheRootAloneWhenTheTemplatesCannotBeRead) {
    set_.Fail("select a.* from (select FID,FName from t_VchTemplate", "gone");
    Open();
    EXPECT_THAT(Nodes(), ElementsAre("ROOT 凭证模板 7"));
    EXPECT_EQ(Window().SelectedNode(), "ROOT");
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Tree, RebuildingSelectsAndOpensTheGivenTemplate) {
    Open();
    templates_.push_back({9, "引入"});
    lines_["9"] = {Line(1, "x")};
    Forget();
    Window().RebuildTreeAndSelect(9);
    EXPECT_EQ(view_.tree.size(), 5U);
    EXPECT_EQ(view_.selected, "detail-9");
    EXPECT_EQ(Window().TemplateId(), "9");
    EXPECT_EQ(view_.name, "引入");
    EXPECT_EQ(Window().RowCount(), 1);
}

TEST_F(Tree, WhatWasTypedInTheTemplateBeforeIsNotResolvedInTheNextOne) {
    Open();
    Type(1, column::kAccountNumber, "1002");
    Window().RebuildTreeAndSelect(8);
    Forget();
    Window().ToolClick("mnuShare");
    EXPECT_THAT(set_.Statements(), IsEmpty());
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(Tree, RebuildingWithAnIdBelowOneSelectsTheLastRow) {
    for (const int id : {0, -1}) {
        Open();
        Window().RebuildTreeAndSelect(id);
        EXPECT_EQ(view_.selected, "detail-8");
        EXPECT_EQ(Window().TemplateName(), "自定义模板(2)");
    }
}

TEST_F(Tree, WhatHasBeenWrittenOverTheStandardTemplateIsShown) {
    Open();
    Window().Tree().NodeClick("detail-8");
    lines_["0"] = {Line(1, "引入的")};
    Forget();
    Window().ShowStoredTemplate(0);
    EXPECT_EQ(view_.selected, "detail-0");
    EXPECT_EQ(Window().TemplateId(), "0");
    EXPECT_EQ(Cell(1, column::kExplanation), "引入的");
    Window().ShowStoredTemplate(5);
    EXPECT_EQ(view_.selected, "detail-5");
    EXPECT_EQ(Window().TemplateId(), "5");
}

TEST_F(Tree, WhatHasBeenWrittenCanBeSavedAndExportedWhateverWasLitBefore) {
    for (const bool stored : {true, false}) {
        Open();
        Window().Tree().NodeClick("ROOT");
        ASSERT_FALSE(view_.Enabled(Tool::Save));
        ASSERT_FALSE(view_.Enabled(Tool::Exp));
        if (stored) {
            Window().ShowStoredTemplate(8);
        } else {
            Window().RebuildTreeAndSelect(8);
        }
        EXPECT_TRUE(view_.Enabled(Tool::Save));
        EXPECT_TRUE(view_.Enabled(Tool::Exp));
    }
}

TEST_F(Tree, RebuildingForATemplateThatIsNotThereEmptiesTheGrid) {
    Open();
    Window().RebuildTreeAndSelect(77);
    EXPECT_EQ(Window().SelectedNode(), "ROOT");
    EXPECT_EQ(Window().TemplateId(), "");
    EXPECT_EQ(view_.name, "");
}

// --- opening

TEST_F(Tree, AClickOpensTheTemplateUnderItsName) {
    lines_["5"] = {Line(1, "收款"), Line(1, ""), Line(2, "付款")};
    Open();
    Click("detail-5");
    EXPECT_EQ(view_.selected, "detail-5");
    EXPECT_EQ(view_.name, "自定义模板(1)");
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(Window().CurrentEntryCount(), 3);
    EXPECT_EQ(Window().RowCount(), 3);
    EXPECT_EQ(Cell(3, column::kExplanation), "付款");
    EXPECT_EQ(Cell(4, column::kExplanation), "");
}

TEST_F(Tree, OpeningEmptiesTheGridToNoRowsAndThenToAHundred) {
    lines_["0"] = std::vector<std::vector<Variant>>(150, Line(1, "x"));
    Open();
    ASSERT_EQ(Grid().RowTotal(), 152);
    struct Totals : GridObserver {
        explicit Totals(EntryGrid& theGrid) : grid(theGrid) { grid.AddObserver(*this); }
        ~Totals() override { grid.RemoveObserver(*this); }
        void WasReset() override { totals.push_back(grid.RowTotal()); }
        EntryGrid& grid;
        std::vector<int> totals;
    } seen(Grid());
    Click("detail-5");
    EXPECT_THAT(seen.totals, ElementsAre(0, 100));
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_EQ(Window().RowCount(), 0);
}

TEST_F(Tree, ManyLinesMakeTheGridTwoRowsLongerThanThey) {
    for (const auto& [count, total] : {std::pair(99, 100), std::pair(100, 102), std::pair(150, 152)}) {
        lines_["5"] = std::vector<std::vector<Variant>>(static_cast<std::size_t>(count), Line(1, "x"));
        Open();
        Click("detail-5");
        EXPECT_EQ(Grid().RowTotal(), total) << count;
        EXPECT_EQ(Window().RowCount(), count);
    }
}

TEST_F(Tree, TheEntryCountIsThatOfTheCountingStatementWhenNoLinesCanBeRead) {
    Open();
    set_.Answer("select count(*) as FCount", Rows({"FCount"}, {{4}}));
    set_.Fail("select * from t_VchTemplateEntry", "gone");
    Click("detail-5");
    EXPECT_EQ(Window().CurrentEntryCount(), 4);
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_EQ(view_.name, "自定义模板(1)");
}

TEST_F(Tree, TheNumberOfRowsReadBecomesTheEntryCount) {
    lines_["5"] = {Line(1, "x")};
    Open();
    set_.Answer("select count(*) as FCount", Rows({"FCount"}, {{4}}));
    Click("detail-5");
    EXPECT_EQ(Window().CurrentEntryCount(), 1);
}

TEST_F(Tree, OpeningLeavesNothingToUndoAndNothingUnsaved) {
    Open();
    MakeDirty();
    ASSERT_TRUE(Window().Cells().CanUndo());
    Answer(MessageResult::No);
    Click("detail-5");
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_FALSE(Window().Cells().CanUndo());
}

// --- clicking

TEST_F(Tree, AClickOnTheRootLeavesTheOpenTemplateInTheGrid) {
    lines_["0"] = {Line(1, "x")};
    Open();
    Click("ROOT");
    EXPECT_EQ(Window().SelectedNode(), "ROOT");
    EXPECT_EQ(Window().TemplateId(), "0");
    EXPECT_EQ(Window().RowCount(), 1);
}

TEST_F(Tree, ARefusedClickLeavesTheNodeSelectedAndTheGridAsItWas) {
    Open();
    MakeDirty();
    Forget();
    Answer(MessageResult::Yes);  // refused: the line has no number
    Click("detail-5");
    EXPECT_EQ(Window().SelectedNode(), "detail-5");
    EXPECT_EQ(Window().TemplateId(), "0");
    EXPECT_EQ(Cell(1, column::kRemark), "changed");
    EXPECT_EQ(view_.Count("tools"), 0);
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(Tree, AClickThatSavesWritesTheTemplateThatWasOpen) {
    Open();
    FillLine(1, "1", "收款");
    Answer(MessageResult::Yes);
    Click("detail-5");
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr("delete t_VchTemplateEntry where FID = 0 "));
    EXPECT_THAT(Messages(), ElementsAre(kGate, "模板 标准模板 保存成功！"));
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(view_.name, "自定义模板(1)");
}

TEST_F(Tree, AClickOnAnUnknownNodeDoesNothing) {
    Open();
    Forget();
    Click("detail-99");
    EXPECT_THAT(view_.calls, IsEmpty());
    EXPECT_EQ(Window().SelectedNode(), "detail-0");
}

// --- new

TEST_F(Tree, NewNamesTheTemplateByTheNumberThatComesBackPlusOne) {
    Open();
    Forget();
    set_.Answer("REPLACE(REPLACE(fname", Rows({"FNum"}, {{"1"}, {"2"}}));
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    lines_["9"] = {Line(4, "another user's")};
    Window().ToolClick("mnuNew");
    EXPECT_EQ(Nodes().back(), "detail-9 自定义模板(3) 2");
    EXPECT_THAT(Sent("declare @MaxFID")[0], HasSubstr("'自定义模板(3)',7,"));
    EXPECT_EQ(Window().SelectedNode(), "detail-9");
    EXPECT_EQ(Window().TemplateId(), "9");
    EXPECT_EQ(view_.name, "自定义模板(3)");
    EXPECT_EQ(Window().CurrentEntryCount(), 1);
}

TEST_F(Tree, NewSelectsTheNodeAndStartsRenamingItBeforeItIsOpened) {
    Open();
    Forget();
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    Window().ToolClick("mnuNew");
    Texts calls = view_.calls;
    std::erase(calls, "tools");
    EXPECT_THAT(calls, ElementsAre("add detail-9", "select detail-9", "edit label", "name 自定义模板(1)"));
    EXPECT_TRUE(Window().Tree().EditsLabels());
}

TEST_F(Tree, ANewTemplateThatIsNotMadeIsToldWithTheReason) {
    Open();
    Forget();
    set_.Fail("declare @MaxFID", "Lock request time out period exceeded.");
    Window().ToolClick("mnuNew");
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(Messages()[0], HasSubstr("新增模板失败！\r\n\r\n"));
    EXPECT_THAT(Messages()[0], HasSubstr("Lock request time out period exceeded."));
    EXPECT_EQ(view_.Count("edit label"), 0);
    EXPECT_EQ(Window().SelectedNode(), "detail-0");
}

TEST_F(Tree, NewAsksAboutUnsavedChangesOnce) {
    Open();
    MakeDirty();
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    Answer(MessageResult::No);
    Window().ToolClick("mnuNew");
    EXPECT_THAT(Messages(), ElementsAre(kGate));
    EXPECT_EQ(view_.Count("edit label"), 1);
    EXPECT_EQ(Window().TemplateId(), "9");
    EXPECT_FALSE(Window().IsDirty());
}

// --- rename

TEST_F(Tree, ADoubleClickStartsEditingTheSelectedLabel) {
    Open();
    Click("detail-5");
    EXPECT_FALSE(Window().Tree().EditsLabels());
    Window().Tree().DoubleClick();
    EXPECT_EQ(view_.Count("edit label"), 1);
    EXPECT_TRUE(Window().Tree().EditsLabels());
    EXPECT_TRUE(Window().Tree().BeforeLabelEdit());
}

TEST_F(Tree, AUserWithoutTheRightRenamesNothing) {
    right_ = false;
    Open();
    Click("detail-5");
    Window().Tree().DoubleClick();
    EXPECT_EQ(view_.Count("edit label"), 0);
    EXPECT_FALSE(Window().Tree().EditsLabels());
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Tree, ADoubleClickAsksAboutUnsavedChangesFirst) {
    Open();
    Click("detail-5");
    MakeDirty();
    Answer(MessageResult::Yes);  // refused
    Window().Tree().DoubleClick();
    EXPECT_EQ(Messages()[0], kGate);
    EXPECT_EQ(view_.Count("edit label"), 0);
}

TEST_F(Tree, ADoubleClickTakesWhatHasBeenTypedFirst) {
    Open();
    Click("detail-5");
    FillLine(1, "1", "收款");
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    Type(1, column::kAccountNumber, "1002");
    Answer(MessageResult::Yes);
    Window().Tree().DoubleClick();
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr(",1,1002,'1002','银行存款',"));
}

TEST_F(Tree, AClickTakesWhatHasBeenTypedFirst) {
    Open();
    FillLine(1, "1", "收款");
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    Type(1, column::kAccountNumber, "1002");
    Answer(MessageResult::Yes);
    Click("detail-5");
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr(",1,1002,'1002','银行存款',"));
}

TEST_F(Tree, TheRootAndTheStandardTemplateCannotBeRenamed) {
    Open();
    EXPECT_FALSE(Window().Tree().BeforeLabelEdit());
    Click("ROOT");
    EXPECT_FALSE(Window().Tree().BeforeLabelEdit());
    Click("detail-8");
    EXPECT_TRUE(Window().Tree().BeforeLabelEdit());
}

class Rename : public Tree {
  protected:
    void SetUp() override {
        Open();
        Click("detail-5");
        Window().Tree().DoubleClick();
        Forget();
    }
};

TEST_F(Rename, ABlankNameIsRefused) {
    for (const char* name : {"", "   ", "　　", " 　 ", "\u200B"}) {
        Forget();
        EXPECT_FALSE(Window().Tree().AfterLabelEdit(name));
        ExpectMessage(kEmptyName);
        EXPECT_THAT(set_.Statements(), IsEmpty());
        EXPECT_FALSE(Window().Tree().EditsLabels());
    }
}

TEST_F(Rename, ANameWithATabOrALineEndInItIsRefused) {
    for (const char* name : {"a\tb", "a\nb", "\x01"}) {
        Forget();
        EXPECT_FALSE(Window().Tree().AfterLabelEdit(name));
        ExpectMessage("名称不能包含制表符、换行等控制字符，修改失败！");
        EXPECT_THAT(set_.Statements(), IsEmpty());
    }
}

TEST_F(Rename, ANameLongerThanTheAccountSetTakesIsRefusedInWords) {
    std::string name;
    for (int i = 0; i < 255; ++i)
        name += "账";
    EXPECT_FALSE(Window().Tree().AfterLabelEdit(name + "账"));
    ExpectMessage("名称长度不能超过255个字符，修改失败！");
    EXPECT_THAT(set_.Statements(), IsEmpty());
    EXPECT_TRUE(Window().Tree().AfterLabelEdit(name));
}

TEST_F(Rename, TheLineEndOfACopiedNameIsNoPartOfIt) {
    EXPECT_TRUE(Window().Tree().AfterLabelEdit("月末结转\r\n"));
    EXPECT_THAT(set_.Statements(),
                testing::Contains("update t_VchTemplate set FName = '月末结转' where FID = 5"));
}

TEST_F(Rename, TheStandardTemplatesNameIsRefusedWithoutAQuestionToTheAccountSet) {
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("标准模板"));
    ExpectMessage(kDuplicateName);
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Rename, ANameThatTheUserAlreadyHasIsRefused) {
    set_.Answer("select FID from t_VchTemplate where FName = ", Rows({"FID"}, {{8}}));
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("自定义模板(2)"));
    ExpectMessage(kDuplicateName);
    EXPECT_THAT(set_.Statements(),
                ElementsAre("select FID from t_VchTemplate where FName = '自定义模板(2)' and FUserID = 7"));
    EXPECT_EQ(view_.tree[2].text, "自定义模板(1)");
}

TEST_F(Rename, ItsOwnNameCountsAsADuplicate) {
    set_.Answer("select FID from t_VchTemplate where FName = ", Rows({"FID"}, {{5}}));
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("自定义模板(1)"));
    ExpectMessage(kDuplicateName);
}

TEST_F(Rename, WritesTheNameAndOpensTheTemplateUnderIt) {
    lines_["5"] = {Line(1, "x")};
    EXPECT_TRUE(Window().Tree().AfterLabelEdit("月末结转"));
    ASSERT_GE(set_.Statements().size(), 4U);
    EXPECT_EQ(set_.Statements()[0], "select FID from t_VchTemplate where FName = '月末结转' and FUserID = 7");
    // The one question whether the node still stands for this template.
    EXPECT_EQ(set_.Statements()[1], "select FUserID,FName as FTemplateName from t_VchTemplate where FID = 5");
    EXPECT_THAT(set_.Statements()[2], HasSubstr("FID,FName,FUserID,4,7,GetDate()"));
    EXPECT_EQ(set_.Statements()[3], "update t_VchTemplate set FName = '月末结转' where FID = 5");
    EXPECT_EQ(view_.tree[2].text, "月末结转");
    EXPECT_EQ(view_.name, "月末结转");
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Rename, TheNewNameIsTheOneThatALaterClickAndDeleteUse) {
    EXPECT_TRUE(Window().Tree().AfterLabelEdit("月末结转"));
    Click("detail-0");
    Click("detail-5");
    EXPECT_EQ(view_.name, "月末结转");
}

TEST_F(Rename, TheLiteralDoublesApostrophesAndKeepsBlanks) {
    EXPECT_TRUE(Window().Tree().AfterLabelEdit(" a'b "));
    EXPECT_EQ(set_.Statements()[0], "select FID from t_VchTemplate where FName = ' a''b ' and FUserID = 7");
    EXPECT_EQ(set_.Statements()[3], "update t_VchTemplate set FName = ' a''b ' where FID = 5");
}

TEST_F(Rename, AFailedUpdateIsToldAndTheOldLabelStays) {
    set_.Fail("update t_VchTemplate set FName", "too long");
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("月末结转"));
    ExpectMessage("too long");
    EXPECT_EQ(view_.tree[2].text, "自定义模板(1)");
    EXPECT_EQ(Window().TemplateName(), "自定义模板(1)");
}

TEST_F(Rename, AFailedQuestionLeavesTheOldLabel) {
    set_.Fail("select FID from t_VchTemplate where FName = ", "gone");
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("月末结转"));
    EXPECT_THAT(Sent("update t_VchTemplate"), IsEmpty());
}

TEST_F(Rename, TheRootIsNeverRenamed) {
    Click("ROOT");
    Forget();
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("新名称"));
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

// --- delete

class Delete : public Tree {
  protected:
    void SetUp() override { Open(); }
    void Remove() { Window().ToolClick("mnuDel"); }
};

TEST_F(Delete, TheRootIsRefusedInWords) {
    Click("ROOT");
    Forget();
    Remove();
    ExpectMessage("不允许删除！");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-删除模板"));
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Delete, TheStandardTemplateIsProtectedSilently) {
    Forget();
    Remove();
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-删除模板"));
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Delete, AsksWithTheTemplatesName) {
    Click("detail-5");
    Forget();
    Answer(MessageResult::No);
    Remove();
    ASSERT_EQ(surroundings_.messageBoxes->shown.size(), 1U);
    const fakes::ShownMessage& question = surroundings_.messageBoxes->shown[0];
    EXPECT_EQ(question.text, "模板删除将无法还原，是否删除？\r\n\r\n凭证模板：自定义模板(1)");
    EXPECT_EQ(question.buttons, system::MessageButtons::YesNo);
    EXPECT_EQ(question.icon, system::MessageIcon::Information);
    EXPECT_EQ(question.title, "信息提示");
    EXPECT_THAT(set_.Statements(), IsEmpty());
    EXPECT_EQ(view_.tree.size(), 4U);
}

TEST_F(Delete, SelectsTheNextTemplateAndOpensIt) {
    lines_["8"] = {Line(1, "x")};
    Click("detail-5");
    Forget();
    Answer(MessageResult::Yes);
    Remove();
    // The one question whether the template is still what was loaded comes first.
    EXPECT_THAT(set_.Statements()[0], HasSubstr("select a.FUserID,a.FName as FTemplateName,b.*"));
    EXPECT_THAT(set_.Statements()[1], HasSubstr("FID,FName,FUserID,5,7,GetDate()"));
    EXPECT_EQ(set_.Statements()[2],
              " delete t_VchTemplate where FID = 5\r\n"
              " delete t_VchTemplateEntry where FID = 5\r\n"
              " delete t_VchTpControl where FID = 5");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-删除模板", "log 3 凭证模板-删除模板 自定义模板(1) 成功"));
    EXPECT_EQ(Nodes(), (Texts{"ROOT 凭证模板 7", "detail-0 标准模板 2", "detail-8 自定义模板(2) 2"}));
    EXPECT_EQ(view_.selected, "detail-8");
    EXPECT_EQ(Window().TemplateId(), "8");
    EXPECT_EQ(Window().RowCount(), 1);
}

TEST_F(Delete, TheLastTemplateGivesWayToTheOneAboveIt) {
    Click("detail-8");
    Answer(MessageResult::Yes);
    Remove();
    EXPECT_EQ(view_.selected, "detail-5");
    EXPECT_EQ(Window().TemplateName(), "自定义模板(1)");
    Answer(MessageResult::Yes);
    Remove();
    EXPECT_EQ(view_.selected, "detail-0");
    EXPECT_EQ(Window().TemplateName(), "标准模板");
}

TEST_F(Delete, WithoutANeighbourTheGridAndTheNameAreEmptied) {
    templates_ = {{5, "唯一"}};
    lines_["5"] = {Line(1, "x")};
    Open();
    Click("detail-5");
    Answer(MessageResult::Yes);
    Remove();
    EXPECT_EQ(Nodes(), Texts{"ROOT 凭证模板 7"});
    EXPECT_EQ(view_.name, "");
    EXPECT_EQ(Window().TemplateId(), "");
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_EQ(Window().CurrentEntryCount(), 0);
}

TEST_F(Delete, AFailureIsToldAndLoggedAndTheNodeStays) {
    Click("detail-5");
    Forget();
    set_.Fail(" delete t_VchTemplate where", "locked");
    Answer(MessageResult::Yes);
    Remove();
    EXPECT_EQ(Messages()[1], "删除失败！");
    EXPECT_EQ(Messages().size(), 2U);
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-删除模板", "log 4 凭证模板-删除模板 自定义模板(1) 失败"));
    EXPECT_EQ(view_.tree.size(), 4U);
    EXPECT_EQ(Window().SelectedNode(), "detail-5");
}

TEST_F(Delete, ChangesOfADeletedTemplateAreNotAskedAboutAgain) {
    Click("detail-5");
    MakeDirty();
    Forget();
    Answer(MessageResult::No);   // the gate
    Answer(MessageResult::Yes);  // the deletion
    Remove();
    EXPECT_EQ(Messages().size(), 2U);
    EXPECT_THAT(Sent("insert into t_VchTemplateEntry"), IsEmpty());
    EXPECT_EQ(Window().TemplateId(), "8");
    EXPECT_FALSE(Window().IsDirty());
}

}  // namespace
}  // namespace vicenter::center::test
