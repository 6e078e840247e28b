// The command bar: which tools there are, what each does, in which order it logs, tests the right and asks.

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;

constexpr const char* kNoRight = "对不起，你没有相应的权限！";
constexpr const char* kGate = "当前凭证模板修改后未保存，您是否进行保存?";

TEST(ToolTable, NamesTheThirteenToolsInTheirOrder) {
    Texts tools;
    for (const ToolSpec& spec : Tools()) {
        tools.push_back(std::string(spec.key) + "/" + std::string(spec.caption) + "/" +
                        std::string(spec.tooltip));
    }
    EXPECT_THAT(tools,
                ElementsAre("mnuNew/新增/新增模板库", "mnuDel/删除/删除模板库", "mnuSave/保存/保存模板库",
                            "mnuShowCol/显示隐藏列/显示隐藏列", "mnuDelRow/删行/删除分录",
                            "mnuAddRow/添加/添加分录", "mnuPrcFind/查找/查找", "mnuImp/引入/凭证模板引入",
                            "mnuExp/引出/凭证模板引出", "mnuAutoVch/根据凭证生成/根据凭证生成",
                            "mnuCloudP/上传云盘/上传云盘", "mnuShare/分享/分享", "mnuQuit/退出/退出"));
    EXPECT_EQ(kBandName, "BandToolBar");
}

class Commands : public CenterTest {
  protected:
    void OpenAs(bool right) {
        right_ = right;
        Open();
        Forget();
    }
};

TEST_F(Commands, LogUnderTheWindowsFunctionCode) {
    OpenAs(true);
    Window().ToolClick("mnuExp");
    EXPECT_EQ(log_->Calls().back(), "WriteLog(K831000, 1, 凭证模板-引出模板)");
}

// --- a user without the right

struct RightlessCase {
    const char* key;
    Texts log;
    bool refused;
    Texts run;
};

class RightlessUser : public Commands, public testing::WithParamInterface<RightlessCase> {};

TEST_P(RightlessUser, IsRefusedWhatNeedsTheRightAfterTheRequestWasLogged) {
    OpenAs(false);
    Window().ToolClick(GetParam().key);
    EXPECT_EQ(Log(), GetParam().log);
    EXPECT_EQ(Messages(), GetParam().refused ? Texts{kNoRight} : Texts{});
    EXPECT_EQ(commands_.run, GetParam().run);
    if (GetParam().refused) {
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].title, "信息提示");
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].icon, system::MessageIcon::Information);
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].buttons, system::MessageButtons::Ok);
        EXPECT_THAT(set_.Statements(), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryTool, RightlessUser,
    testing::Values(RightlessCase{"mnuNew", {"log 1 凭证模板-新增模板"}, true, {}},
                    RightlessCase{"mnuDel", {"log 1 凭证模板-删除模板"}, true, {}},
                    RightlessCase{"mnuSave", {"log 1 凭证模板-保存模板 "}, true, {}},
                    RightlessCase{"mnuShowCol", {}, false, {}}, RightlessCase{"mnuDelRow", {}, true, {}},
                    RightlessCase{"mnuAddRow", {}, true, {}}, RightlessCase{"mnuPrcFind", {}, false, {}},
                    RightlessCase{"mnuImp", {"log 1 凭证模板-引入模板"}, true, {}},
                    RightlessCase{"mnuExp", {"log 1 凭证模板-引出模板"}, false, {"export"}},
                    RightlessCase{"mnuAutoVch", {"log 1 凭证模板-通过凭证生成模板"}, false, {"generate"}},
                    RightlessCase{"mnuCloudP", {"log 1 凭证模板-上传云盘"}, false, {"upload"}},
                    RightlessCase{"mnuShare", {}, false, {}}, RightlessCase{"mnuQuit", {}, false, {}}),
    [](const auto& test) { return std::string(test.param.key); });

TEST_F(Commands, AUserWithoutTheRightFindsAndChoosesColumns) {
    OpenAs(false);
    Window().ToolClick("mnuPrcFind");
    Window().ToolClick("mnuShowCol");
    EXPECT_EQ(view_.Count("find"), 1);
    EXPECT_EQ(view_.Count("columns"), 1);
}

// --- the unsaved-changes gate

struct GateCase {
    const char* key;
    bool asks;
    Texts log;
};

class DirtyGrid : public Commands, public testing::WithParamInterface<GateCase> {};

TEST_P(DirtyGrid, GuardsTheCommandsThatWouldLoseChanges) {
    OpenAs(true);
    MakeDirty();
    // Saving is tried and refused: the row has no template number.
    Answer(MessageResult::Yes);
    Window().ToolClick(GetParam().key);
    if (GetParam().asks) {
        ASSERT_FALSE(Messages().empty());
        EXPECT_EQ(Messages()[0], kGate);
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].buttons, system::MessageButtons::YesNo);
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].icon, system::MessageIcon::Information);
        EXPECT_EQ(surroundings_.messageBoxes->shown[0].title, "信息提示");
        EXPECT_EQ(Messages()[1], "行1 模板编号(*) 不允许为空，请进行设置！");
        EXPECT_EQ(Messages().size(), 2U);
        EXPECT_THAT(commands_.run, IsEmpty());
        for (const char* call : {"close", "find", "edit label"})
            EXPECT_EQ(view_.Count(call), 0) << call;
    } else {
        EXPECT_EQ(testing::Matches(testing::Contains(kGate))(Messages()), false);
    }
    // A request is logged before anything is asked.
    EXPECT_EQ(Log(), GetParam().log);
    EXPECT_TRUE(Window().IsDirty());
}

INSTANTIATE_TEST_SUITE_P(EveryTool, DirtyGrid,
                         testing::Values(GateCase{"mnuNew", true, {"log 1 凭证模板-新增模板"}},
                                         GateCase{"mnuDel", true, {"log 1 凭证模板-删除模板"}},
                                         GateCase{"mnuSave", false, {"log 1 凭证模板-保存模板 "}},
                                         GateCase{"mnuShowCol", false, {}}, GateCase{"mnuDelRow", false, {}},
                                         GateCase{"mnuAddRow", false, {}}, GateCase{"mnuPrcFind", true, {}},
                                         GateCase{"mnuImp", true, {"log 1 凭证模板-引入模板"}},
                                         GateCase{"mnuExp", true, {"log 1 凭证模板-引出模板"}},
                                         GateCase{"mnuAutoVch", true, {"log 1 凭证模板-通过凭证生成模板"}},
                                         GateCase{"mnuCloudP", true, {"log 1 凭证模板-上传云盘"}},
                                         GateCase{"mnuShare", false, {}}, GateCase{"mnuQuit", true, {}}),
                         [](const auto& test) { return std::string(test.param.key); });

TEST_F(Commands, ADeclinedQuestionLetsTheCommandGoOn) {
    OpenAs(true);
    MakeDirty();
    Answer(MessageResult::No);
    Window().ToolClick("mnuExp");
    EXPECT_THAT(Messages(), ElementsAre(kGate));
    EXPECT_THAT(commands_.run, ElementsAre("export"));
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(Commands, AnAgreedQuestionSavesBeforeTheCommandGoesOn) {
    OpenAs(true);
    FillLine(1, "1", "收款");
    Answer(MessageResult::Yes);
    bool savedFirst = false;
    set_.Respond("exec pro_VchTpCanUsed", [&](const std::string&) {
        savedFirst = commands_.run.empty();
        return Rows({});
    });
    Window().ToolClick("mnuImp");
    EXPECT_TRUE(savedFirst);
    EXPECT_THAT(commands_.run, ElementsAre("import"));
}

// --- one by one

TEST_F(Commands, QuitClosesTheWindowWithoutALogEntryOfItsOwn) {
    OpenAs(true);
    Window().ToolClick("mnuQuit");
    EXPECT_EQ(view_.Count("close"), 1);
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(Commands, NewCreatesATemplateAndLogsThatItDid) {
    OpenAs(true);
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    Window().ToolClick("mnuNew");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-新增模板", "log 3 凭证模板-新增模板成功"));
    EXPECT_EQ(Window().SelectedNode(), "detail-9");
}

TEST_F(Commands, ANewTemplateThatFailsIsNotLoggedAsDone) {
    OpenAs(true);
    set_.Fail("declare @MaxFID", "no");
    Window().ToolClick("mnuNew");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-新增模板"));
    EXPECT_EQ(view_.tree.size(), 4U);
}

TEST_F(Commands, SaveWritesAndReportsItself) {
    OpenAs(true);
    FillLine(1, "1", "收款");
    Window().ToolClick("mnuSave");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-保存模板 ", "log 3 凭证模板-保存模板 标准模板 成功"));
}

TEST_F(Commands, TypingThatHasNotBeenLeftCountsBeforeTheCommand) {
    OpenAs(true);
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    FillLine(1, "1", "收款");
    Type(1, column::kAccountNumber, "1002");
    Window().ToolClick("mnuSave");
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr(",1,1002,'1002','银行存款',"));
}

class TypedCode : public Commands {
  protected:
    void SetUp() override {
        OpenAs(true);
        set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                    Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
        FillLine(1, "1", "收款");
        FillLine(2, "1", "付款");
        Type(2, column::kAccountNumber, "1002");
    }
    Texts Names() {
        Texts names;
        for (int row = 1; row <= Window().RowCount(); ++row)
            names.push_back(Cell(row, column::kAccountName));
        return names;
    }
};

TEST_F(TypedCode, IsResolvedBeforeRowsAreInsertedAboveIt) {
    Window().Cells().InsertRows({1, 1});
    EXPECT_THAT(Names(), ElementsAre("", "现金", "银行存款"));
}

TEST_F(TypedCode, IsResolvedBeforeRowsAboveItAreDeleted) {
    Window().Cells().DeleteRows({1, 1});
    EXPECT_THAT(Names(), ElementsAre("银行存款"));
}

TEST_F(TypedCode, IsResolvedBeforeItsRowIsDuplicated) {
    Window().Cells().DuplicateRows({2, 1});
    EXPECT_THAT(Names(), ElementsAre("现金", "银行存款", "银行存款"));
}

TEST_F(TypedCode, IsResolvedBeforeOtherCellsAreFilledOrPastedInto) {
    Window().Cells().FillDown({1, column::kExplanation, 2, column::kExplanation});
    EXPECT_THAT(Names(), ElementsAre("现金", "银行存款"));
    Type(2, column::kAccountNumber, "1001");
    Type(2, column::kAccountNumber, "1002");
    Grid().SetText(2, column::kAccountName, "");
    Window().Cells().PasteBlock({1, column::kRemark}, "备注");
    EXPECT_THAT(Names(), ElementsAre("现金", "银行存款"));
    Type(2, column::kAccountNumber, "1001");
    Type(2, column::kAccountNumber, "1002");
    Grid().SetText(2, column::kAccountName, "");
    Window().Cells().PasteBlock({1, column::kRemark, 2, column::kRemark}, "别的备注");
    EXPECT_THAT(Names(), ElementsAre("现金", "银行存款"));
}

// --- what an editor still holds: every command asks for it first, nothing else does

struct Request {
    const char* name;
    bool command;
    std::function<void(frmVICenter&)> make;
};

class OpenEditor : public Commands, public testing::WithParamInterface<Request> {};

TEST_P(OpenEditor, HandsItsTextInBeforeACommandAndToNothingElse) {
    OpenAs(true);
    bool handedIn = false;
    view_.onCommitTyping = [this, &handedIn] {
        if (std::exchange(handedIn, true)) return;
        EXPECT_THAT(set_.Statements(), IsEmpty());
        Window().Cells().CommitText({1, column::kRemark}, "typed");
    };
    Answer(MessageResult::No);
    GetParam().make(Window());
    EXPECT_EQ(handedIn, GetParam().command);
}

const CellSelection kCell{1, column::kRemark};

INSTANTIATE_TEST_SUITE_P(
    Requests, OpenEditor,
    testing::Values(
        Request{"tool", true, [](frmVICenter& window) { window.ToolClick("mnuShowCol"); }},
        Request{"drop", true, [](frmVICenter& window) { window.FilesDropped({"a.xlsx"}); }},
        Request{"save", true, [](frmVICenter& window) { window.Save(); }},
        Request{"question", true, [](frmVICenter& window) { window.ConfirmUnsavedChanges(); }},
        Request{"close", true, [](frmVICenter& window) { window.Unload(); }},
        Request{"frame", true, [](frmVICenter& window) { window.StaysOpen(); }},
        Request{"node", true, [](frmVICenter& window) { window.Tree().NodeClick("detail-5"); }},
        Request{"rename", true, [](frmVICenter& window) { window.Tree().DoubleClick(); }},
        Request{"deletekey", true,
                [](frmVICenter& window) {
                    window.Tree().GotFocus();
                    window.Tree().DeleteSelected();
                }},
        Request{"saveas", true, [](frmVICenter& window) { window.Tree().SaveAs(); }},
        Request{"droprows", true, [](frmVICenter& window) { window.Tree().DropRows("detail-5", "x"); }},
        Request{"search", true,
                [](frmVICenter& window) {
                    window.Search().Find({"x", "", "", ""});
                }},
        Request{"replace", true, [](frmVICenter& window) { window.Search().ReplaceInGrid(); }},
        Request{"replacecodes", true, [](frmVICenter& window) { window.Search().ReplaceCodes(); }},
        Request{"paste", true, [](frmVICenter& window) { window.Cells().PasteBlock(kCell, "x"); }},
        Request{"fill", true, [](frmVICenter& window) { window.Cells().FillDown(kCell); }},
        Request{"duplicate", true, [](frmVICenter& window) { window.Cells().DuplicateRows(kCell); }},
        Request{"insert", true, [](frmVICenter& window) { window.Cells().InsertRows(kCell); }},
        Request{"delete", true, [](frmVICenter& window) { window.Cells().DeleteRows(kCell); }},
        Request{"patterns", true,
                [](frmVICenter& window) { window.Cells().EditPatterns(PatternCommand::Sort); }},
        Request{"move", false,
                [](frmVICenter& window) {
                    window.Cells().MoveActiveCell({1, 2});
                }},
        Request{"fault", false,
                [](frmVICenter& window) {
                    window.Cells().DescribeFault({1, 2});
                }},
        Request{"copy", false, [](frmVICenter& window) { window.Cells().CopyBlock(kCell); }},
        Request{"draft", false, [](frmVICenter& window) { window.KeepDraft(); }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(Commands, RowCommandsWorkOnTheActiveRow) {
    lines_["0"] = {Line(1, "a"), Line(1, "b"), Line(1, "c")};
    OpenAs(true);
    Window().Cells().MoveActiveCell({2, 2});
    Window().ToolClick("mnuAddRow");
    EXPECT_EQ(Window().RowCount(), 4);
    EXPECT_EQ(Cell(2, column::kExplanation), "");
    EXPECT_EQ(Cell(3, column::kExplanation), "b");
    Window().ToolClick("mnuDelRow");
    Window().ToolClick("mnuDelRow");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_EQ(Cell(2, column::kExplanation), "c");
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(Commands, FindGetsTheGridAndTheEntryCount) {
    lines_["0"] = {Line(1, "收款"), Line(1, "付款"), Line(1, "收款")};
    OpenAs(true);
    class View : public dialogs::FrmSearchView {
        dialogs::SearchFields Fields() const override { return {"收款", "", ""}; }
        void SetAccount(const std::string&) override {}
        void Unload() override {}
    } boxes;
    std::vector<int> found;
    view_.onFind = [&](dialogs::FrmSearch& dialog) {
        dialog.Load(boxes);
        dialog.cmdOK_Click();
        found.push_back(dialog.LastRow());
        dialog.cmdOK_Click();
        found.push_back(dialog.LastRow());
    };
    Window().ToolClick("mnuPrcFind");
    EXPECT_THAT(found, ElementsAre(1, 3));
    EXPECT_EQ(Grid().ActiveCell().row, 3);
}

TEST_F(Commands, TheColumnDialogWorksOnTheGridAndTheProfileIsSavedWhenItCloses) {
    OpenAs(true);
    class View : public dialogs::frmSetColumeView {
        void Unload() override {}
    } list;
    view_.onColumns = [&](dialogs::frmSetColume& dialog) {
        dialog.Load(list);
        for (std::size_t row = 0; row < dialog.ColList().size(); ++row) {
            if (dialog.ColList()[row].column == column::kItems) dialog.SetTick(row, true);
        }
        dialog.Command(1);
        EXPECT_FALSE(Grid().Layout(column::kItems).hidden);
        EXPECT_THAT(Sent("update t_VchTpProfile"), IsEmpty());
    };
    Window().ToolClick("mnuShowCol");
    ASSERT_EQ(Sent("update t_VchTpProfile").size(), 1U);
    EXPECT_THAT(Sent("update t_VchTpProfile")[0], HasSubstr(",11|0|"));
}

TEST_F(Commands, FourCommandsOfOtherFoldersDoNothingWithoutThem) {
    window_ = std::make_unique<frmVICenter>(view_, nullptr);
    window_->Load();
    for (const char* key : {"mnuImp", "mnuExp", "mnuCloudP", "mnuAutoVch"})
        Window().ToolClick(key);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Commands, ADroppedWorkbookIsImportedUnderTheSameRules) {
    OpenAs(true);
    Window().FilesDropped({"a.xlsx"});
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-引入模板"));
    EXPECT_THAT(commands_.run, ElementsAre("import a.xlsx"));
    commands_.run.clear();
    Forget();
    Window().FilesDropped({"b.xls", "a.xlsx"});
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-引入模板")) << "one command";
    EXPECT_THAT(commands_.run, ElementsAre("import b.xls a.xlsx"));
    Window().FilesDropped({});
    EXPECT_EQ(commands_.run.size(), 1U);
    MakeDirty();
    Answer(MessageResult::Yes);  // refused: the line has no number
    Window().FilesDropped({"b.xlsx"});
    EXPECT_EQ(commands_.run.size(), 1U);
    OpenAs(false);
    Window().FilesDropped({"c.xlsx"});
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-引入模板"));
    EXPECT_THAT(Messages(), ElementsAre(kNoRight));
    EXPECT_EQ(commands_.run.size(), 1U);
}

TEST_F(Commands, TypingCountsBeforeADroppedWorkbookToo) {
    OpenAs(true);
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    FillLine(1, "1", "收款");
    Type(1, column::kAccountNumber, "1002");
    Answer(MessageResult::Yes);
    Window().FilesDropped({"a.xlsx"});
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr(",1,1002,'1002','银行存款',"));
}

TEST_F(Commands, OtherFoldersSeeAndShowProgressThroughTheWindow) {
    OpenAs(true);
    Window().ShowProgress({true, "正在引出", 3, 10});
    EXPECT_TRUE(view_.progress.visible);
    EXPECT_EQ(view_.progress.label, "正在引出");
    EXPECT_EQ(view_.progress.done, 3);
    EXPECT_FALSE(Window().ProgressCancelled());
    view_.cancelled = true;
    EXPECT_TRUE(Window().ProgressCancelled());
}

TEST_F(Commands, ToolKeysCompareWithoutCase) {
    OpenAs(true);
    Window().ToolClick("MNUEXP");
    Window().ToolClick("mnucloudp");
    EXPECT_THAT(commands_.run, ElementsAre("export", "upload"));
}

TEST_F(Commands, AnyOtherKeyIsIgnored) {
    OpenAs(true);
    for (const char* key : {"", "mnu", "mnuNewX", "BandToolBar"})
        Window().ToolClick(key);
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_THAT(view_.calls, IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Commands, ShareIsKnownAndDoesNothing) {
    OpenAs(true);
    MakeDirty();
    Forget();
    Window().ToolClick("mnuShare");
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(view_.calls, IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Commands, AnErrorInsideACommandEndsItAndIsTold) {
    class Failing : public RecordingCommands {
        void Export(CommandTarget&) override { throw automation::Error(429, "没有 Excel"); }
    } failing;
    window_ = std::make_unique<frmVICenter>(view_, &failing);
    window_->Load();
    Window().ToolClick("mnuExp");
    EXPECT_THAT(Messages(), ElementsAre("没有 Excel"));
}

// --- enabling

class ToolStatesTest : public Commands {
  protected:
    // The keys that are enabled among the seven whose state ever changes.
    Texts On() const {
        Texts on;
        for (const ToolSpec& spec : Tools()) {
            switch (spec.tool) {
                case Tool::New:
                case Tool::Del:
                case Tool::Save:
                case Tool::Exp:
                case Tool::AddRow:
                case Tool::DelRow:
                case Tool::Share:
                    if (view_.Enabled(spec.tool)) on.emplace_back(spec.key);
                    break;
                default:
                    EXPECT_TRUE(view_.Enabled(spec.tool)) << spec.key;
            }
        }
        return on;
    }
};

TEST_F(ToolStatesTest, FollowTheFocusOfTheTree) {
    OpenAs(true);
    EXPECT_THAT(On(), ElementsAre("mnuNew", "mnuSave", "mnuExp"));
    Window().Tree().GotFocus();
    EXPECT_THAT(On(), ElementsAre("mnuNew", "mnuDel", "mnuSave", "mnuExp"));
    Window().Tree().LostFocus();
    EXPECT_THAT(On(), ElementsAre("mnuSave", "mnuExp"));
}

TEST_F(ToolStatesTest, FollowTheFocusOfTheGrid) {
    OpenAs(true);
    Window().Cells().GotFocus();
    EXPECT_THAT(On(), ElementsAre("mnuNew", "mnuSave", "mnuDelRow", "mnuAddRow", "mnuExp"));
    Window().Cells().LostFocus();
    EXPECT_THAT(On(), ElementsAre("mnuNew", "mnuSave", "mnuExp"));
}

TEST_F(ToolStatesTest, AClickOnTheRootTurnsFiveOff) {
    OpenAs(true);
    Window().Tree().GotFocus();
    Window().Cells().GotFocus();
    Window().Tree().NodeClick("ROOT");
    EXPECT_THAT(On(), ElementsAre("mnuNew"));
}

TEST_F(ToolStatesTest, AClickOnATemplateTurnsThreeOnAndTwoOff) {
    OpenAs(true);
    Window().Tree().NodeClick("ROOT");
    Window().Cells().GotFocus();
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(On(), ElementsAre("mnuNew", "mnuDel", "mnuSave", "mnuExp"));
}

TEST_F(ToolStatesTest, EveryNodeClickLaysTheBarOutAnew) {
    OpenAs(true);
    Window().Tree().NodeClick("ROOT");
    EXPECT_GE(view_.Count("tools"), 1);
    Forget();
    Window().Tree().NodeClick("detail-0");
    EXPECT_GE(view_.Count("tools"), 1);
}

TEST_F(ToolStatesTest, ANewTemplateTurnsDeleteAndSaveOn) {
    OpenAs(true);
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    Window().Tree().NodeClick("ROOT");
    Window().Tree().LostFocus();
    Window().ToolClick("mnuNew");
    EXPECT_THAT(On(), ElementsAre("mnuDel", "mnuSave"));
}

TEST_F(ToolStatesTest, ShareIsNeverEnabled) {
    OpenAs(true);
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    const auto step = [&](const std::function<void()>& work) {
        work();
        EXPECT_FALSE(view_.Enabled(Tool::Share));
    };
    step([&] { Window().Tree().GotFocus(); });
    step([&] { Window().Cells().GotFocus(); });
    step([&] { Window().Tree().NodeClick("detail-5"); });
    step([&] { Window().Tree().NodeClick("ROOT"); });
    step([&] { Window().ToolClick("mnuNew"); });
    step([&] { Window().ToolClick("mnuShare"); });
    step([&] { Window().Cells().LostFocus(); });
    step([&] { Window().Tree().LostFocus(); });
}

// --- status line

TEST_F(CenterTest, TheStatusLineFollowsEveryChangeOfTheGrid) {
    lines_["0"] = {Line(1, "收款"), Line(1, "", 0)};
    Open();
    Grid().SetColumnHidden(column::kAmount, false);
    Type(1, column::kAmount, "5");
    EXPECT_THAT(view_.status.unbalanced, ElementsAre("1"));
    EXPECT_EQ(view_.status.difference, "5.00");
    Type(2, column::kAmount, "5");
    EXPECT_THAT(view_.status.unbalanced, IsEmpty());
    Window().Cells().ClearCells({2, column::kAmount, 2, column::kAmount});
    EXPECT_THAT(view_.status.unbalanced, ElementsAre("1"));
    Window().Cells().Undo();
    EXPECT_THAT(view_.status.unbalanced, IsEmpty());
    Window().Cells().DeleteRows({2, 1});
    EXPECT_EQ(view_.status.lines, 1);
    EXPECT_THAT(view_.status.unbalanced, ElementsAre("1"));
    Window().Cells().InsertRows({1, 1});
    EXPECT_EQ(view_.status.lines, 2);
    Window().Cells().PasteBlock({3, 1}, "7\r\n8");
    EXPECT_EQ(view_.status.lines, 4);
    EXPECT_EQ(view_.status.numbers, 3);
    Answer(system::MessageResult::No);
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(view_.status.lines, 0);
    EXPECT_EQ(view_.status.numbers, 0);
}

}  // namespace
}  // namespace vicenter::center::test
