// Validation, the batch of a save to the character, its messages and log entries, and the question about
// unsaved changes.

#include "center/template/template_save.h"

#include "center/history/restore.h"
#include "center/template/save_as.h"
#include "entry/screen.h"
#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;

constexpr const char* kInsert =
    "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,"
    "FSettleID,FSettleName,FSettleNumber,FCurrencyID,FCurrencyName,FRate,FAmountFor,FAmount,"
    "FQty,FPrice,FUnitID,FUnitName,FRemark,FFileCount,FItemsInfo) values(";

// --- validation

class Validation : public testing::Test {
  protected:
    void Fill(int row, const char* no, const char* explanation, const char* direction = "借",
              const char* account = "1001", const char* name = "现金") {
        grid_.SetText(row, column::kNo, no);
        grid_.SetText(row, column::kExplanation, explanation);
        grid_.SetText(row, column::kDirection, direction);
        grid_.SetText(row, column::kAccountNumber, account);
        grid_.SetText(row, column::kAccountName, name);
    }
    void ExpectFinding(int rowCount, int row, int gridColumn, const std::string& text) {
        const std::optional<Finding> finding = ValidateLines(grid_, rowCount);
        ASSERT_TRUE(finding);
        EXPECT_EQ(finding->row, row);
        EXPECT_EQ(finding->column, gridColumn);
        EXPECT_EQ(finding->text, text);
    }
    EntryGrid grid_;
};

TEST_F(Validation, PassesCompleteRows) {
    Fill(1, "1", "收款");
    Fill(2, "1", "");
    EXPECT_FALSE(ValidateLines(grid_, 2));
}

TEST_F(Validation, NamesTheRowWithoutATemplateNumber) {
    Fill(1, "1", "收款");
    Fill(2, "", "");
    ExpectFinding(2, 2, column::kNo, "行2 模板编号(*) 不允许为空，请进行设置！");
}

TEST_F(Validation, WantsAnExplanationInTheFirstRowOfANumber) {
    Fill(1, "1", "收款");
    Fill(2, "3", "");
    ExpectFinding(2, 2, column::kExplanation, "行2 凭证模板 3 号第一行摘要为空，请录入摘要！");
}

TEST_F(Validation, LaterRowsOfANumberMayLeaveTheExplanationEmpty) {
    Fill(1, "3", "a");
    Fill(2, "1", "b");
    Fill(3, "3", "");
    Fill(4, "1", "");
    EXPECT_FALSE(ValidateLines(grid_, 4));
}

TEST_F(Validation, ANumberInsideAnotherOneIsNew) {
    Fill(1, "13", "a");
    Fill(2, "3", "");
    ExpectFinding(2, 2, column::kExplanation, "行2 凭证模板 3 号第一行摘要为空，请录入摘要！");
}

TEST_F(Validation, WantsADirection) {
    Fill(1, "1", "收款", "");
    ExpectFinding(1, 1, column::kDirection, "行1 借贷方向(*) 不允许为空，请进行设置！");
    Fill(1, "1", "收款", "  ");
    ExpectFinding(1, 1, column::kDirection, "行1 借贷方向(*) 不允许为空，请进行设置！");
}

TEST_F(Validation, TakesAnyOtherDirection) {
    Fill(1, "1", "收款", "平");
    EXPECT_FALSE(ValidateLines(grid_, 1));
}

TEST_F(Validation, WantsAnAccountCodeAndAName) {
    Fill(1, "1", "收款", "贷", "", "");
    ExpectFinding(1, 1, column::kAccountNumber, "行1 科目编码(*) 不允许为空，请进行设置！");
    Fill(1, "1", "收款", "贷", "1001", "");
    ExpectFinding(1, 1, column::kAccountName, "行1 科目名称(*) 不允许为空，请进行设置！");
}

TEST_F(Validation, GoesThroughTheColumnsOfARowInTheirOrder) {
    Fill(1, "", "", "", "", "");
    ExpectFinding(1, 1, column::kNo, "行1 模板编号(*) 不允许为空，请进行设置！");
    Fill(1, "7", "", "", "", "");
    ExpectFinding(1, 1, column::kExplanation, "行1 凭证模板 7 号第一行摘要为空，请录入摘要！");
    Fill(1, "7", "x", "", "", "");
    ExpectFinding(1, 1, column::kDirection, "行1 借贷方向(*) 不允许为空，请进行设置！");
    Fill(1, "7", "x", "借", "", "");
    ExpectFinding(1, 1, column::kAccountNumber, "行1 科目编码(*) 不允许为空，请进行设置！");
}

TEST_F(Validation, TheFirstFaultyRowEndsIt) {
    Fill(1, "1", "x", "借", "1001", "");
    Fill(2, "", "");
    ExpectFinding(2, 1, column::kAccountName, "行1 科目名称(*) 不允许为空，请进行设置！");
}

TEST_F(Validation, LooksNoFurtherThanTheRowsInUse) {
    Fill(1, "1", "x");
    Fill(2, "", "left over");
    EXPECT_FALSE(ValidateLines(grid_, 1));
    EXPECT_FALSE(ValidateLines(grid_, 0));
}

// --- the batch

TEST(SaveBatch, WithoutRowsDeletesLinesAndControlRows) {
    EXPECT_EQ(BuildSaveBatch(EntryGrid(), 0, "5"),
              "delete t_VchTemplateEntry where FID = 5 \r\n"
              "Delete t_VchTpControl where FID = 5 and FNo not in (-1) "
              "exec pro_VchTpCanUsed 5 \r\n");
}

TEST(SaveBatch, TwoRowsOfANumberGetOneControlRowKeyedByTheFirst) {
    EntryGrid grid;
    const std::array<std::string, kColumnCount> first{
        "3", "收到'货款'", "借",  "1002",  "1002.01", "工行", "2",  "6",   "电汇",   "N'1",  "C001,D02",
        "2", "美元",       "7.1", "100.5", "4",       "千克", "12", "8.3", "713.55", "备'注"};
    const std::array<std::string, kColumnCount> second{
        "3", "", "贷", "", "9999", "旧科目", "", "", "", "", "", "", "", "", "", "", "", "", "", "", ""};
    grid.FillRow(1, first);
    grid.FillRow(2, second);
    EXPECT_EQ(BuildSaveBatch(grid, 2, "12"),
              "delete t_VchTemplateEntry where FID = 12 \r\n"
              "if Not exists(select 1 from t_VchTpControl where FID = 12 and FNo = 3) \r\n"
              "begin \r\n"
              "    insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) "
              "values(12,3,0,'收到''货款''',2,0) \r\n"
              "end \r\n"
              "else \r\n"
              "begin \r\n"
              "    update t_VchTpControl set FKey = '收到''货款''' where FID = 12 and FNo = 3\r\n"
              "end \r\n" +
                  std::string(kInsert) +
                  "12,1,3,'收到''货款''',1,1002,'1002.01','工行',6,'电汇','N''1',2,'美元',7.1,100.5,713.55,"
                  "12,8.3,4,'千克','备''注',2,'C001,D02') \r\n" +
                  kInsert +
                  "12,2,3,'',0,0,'9999','旧科目',0,'','',0,'',0,0,0,0,0,0,'','',0,'') \r\n"
                  "Delete t_VchTpControl where FID = 12 and FNo not in (3,-1) "
                  "exec pro_VchTpCanUsed 12 \r\n");
}

class BatchLine : public testing::Test {
  protected:
    BatchLine() { texts_.fill(""); }
    // The values of the only line's insert.
    std::string Values() {
        EntryGrid grid;
        grid.FillRow(1, texts_);
        const std::string batch = BuildSaveBatch(grid, 1, "1");
        const std::size_t at = batch.find(kInsert) + std::string(kInsert).size();
        return batch.substr(at, batch.find(") \r\n", at) - at);
    }
    std::string& Text(int gridColumn) { return texts_[static_cast<std::size_t>(gridColumn - 1)]; }
    std::array<std::string, kColumnCount> texts_;
};

TEST_F(BatchLine, AnyOtherDirectionIsMinusOne) {
    Text(1) = "1";
    for (const auto& [shown, code] : {std::pair("借", "1"), std::pair("贷", "0"), std::pair("平", "-1"),
                                      std::pair(" 借", "-1"), std::pair("", "-1")}) {
        Text(column::kDirection) = shown;
        EXPECT_EQ(Values(), std::string("1,1,1,'',") + code + ",0,'','',0,'','',0,'',0,0,0,0,0,0,'','',0,''")
            << shown;
    }
}

TEST_F(BatchLine, TextsAreTrimmedAndDoubleTheirApostrophes) {
    Text(1) = "1";
    for (const int c : {2, 5, 6, 9, 10, 11, 13, 17, 21})
        Text(c) = "  it's ";
    EXPECT_EQ(Values(),
              "1,1,1,'it''s',-1,0,'it''s','it''s',0,'it''s','it''s',0,'it''s',0,0,0,0,0,0,'it''s','it''s',0,"
              "'it''s'");
}

TEST_F(BatchLine, WhatIsNoPlainNumberIsZero) {
    Text(1) = "1";
    for (const char* text : {"abc", "1,000", "0x10", "1e3", "￥5", "-", ".", "1.2.3", "1 2", "1);drop"}) {
        for (const int c : {7, 14, 15, 18, 19, 20})
            Text(c) = text;
        EXPECT_EQ(Values(), "1,1,1,'',-1,0,'','',0,'','',0,'',0,0,0,0,0,0,'','',0,''") << text;
    }
}

TEST_F(BatchLine, PlainNumbersGoInDigitForDigit) {
    Text(1) = "1";
    Text(7) = "999999999";
    Text(14) = "7.1865000001";
    Text(15) = "0.0001";
    Text(18) = "1.50";
    Text(19) = "-3";
    Text(20) = "999999999.0000";
    EXPECT_EQ(Values(),
              "1,1,1,'',-1,0,'','',0,'','',0,'',7.1865000001,0.0001,999999999.0000,1.50,-3,0,'','',999999999,"
              "''");
}

TEST_F(BatchLine, IdsAreBareAndZeroWhenEmpty) {
    Text(1) = "1";
    Text(column::kAccountId) = "1001";
    Text(column::kSettleId) = "2";
    Text(column::kCurrencyId) = "3";
    Text(column::kUnitId) = "-4";
    EXPECT_EQ(Values(), "1,1,1,'',-1,1001,'','',2,'','',3,'',0,0,0,0,0,-4,'','',0,''");
}

TEST_F(BatchLine, AControlRowsAttachmentsAreZeroWhenTheCellIsNoNumber) {
    EntryGrid grid;
    Text(1) = "4";
    Text(2) = "x";
    Text(7) = "many";
    grid.FillRow(1, texts_);
    EXPECT_THAT(BuildSaveBatch(grid, 1, "1"), HasSubstr("values(1,4,0,'x',0,0) \r\n"));
}

TEST(SaveBatchLists, NamesEveryNumberOnceInItsOrder) {
    EntryGrid grid;
    int row = 0;
    for (const char* no : {"13", "3", "13", "1", "3"})
        grid.SetText(++row, column::kNo, no);
    const std::string batch = BuildSaveBatch(grid, row, "9");
    EXPECT_THAT(batch, HasSubstr("and FNo not in (13,3,1,-1) exec"));
    EXPECT_THAT(batch, HasSubstr("values(9,5,3,"));
    std::size_t blocks = 0;
    for (std::size_t at = 0; (at = batch.find("if Not exists", at)) != std::string::npos; ++at)
        ++blocks;
    EXPECT_EQ(blocks, 3U);
}

// --- saving

class Save : public CenterTest {
  protected:
    void SetUp() override {
        Open();
        Window().Tree().NodeClick("detail-5");
        Forget();
    }
    Texts Batches() const { return Sent("exec pro_VchTpCanUsed"); }
    void ExpectInformation(std::size_t index, system::MessageButtons buttons) {
        const fakes::ShownMessage& shown = surroundings_.messageBoxes->shown.at(index);
        EXPECT_EQ(shown.title, "信息提示");
        EXPECT_EQ(shown.icon, system::MessageIcon::Information);
        EXPECT_EQ(shown.buttons, buttons);
    }
};

// The rows that the grid was asked to show.
class Shown : public GridObserver {
  public:
    explicit Shown(EntryGrid& grid) : grid_(grid) { grid_.AddObserver(*this); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;
    ~Shown() override { grid_.RemoveObserver(*this); }
    void ScrolledIntoView(const CellAddress& cell) override { rows.push_back(cell.row); }

    std::vector<int> rows;

  private:
    EntryGrid& grid_;
};

TEST_F(Save, DoesNothingWithACleanGrid) {
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(Save, DoesNothingWithoutAnOpenTemplate) {
    Window().RebuildTreeAndSelect(77);
    FillLine(1, "1", "收款");
    ASSERT_TRUE(Window().IsDirty());
    Forget();
    EXPECT_FALSE(Window().Save());
    EXPECT_TRUE(Window().ConfirmUnsavedChanges());
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Save, SendsOneBatchAsksForUnusableNumbersTellsLogsAndReloads) {
    FillLine(1, "1", "收款");
    Forget();
    EXPECT_TRUE(Window().Save());
    ASSERT_GE(set_.Statements().size(), 4U);
    // In one batch what it held is kept, and the one question whether the template is still what was loaded.
    EXPECT_THAT(set_.Statements()[0], HasSubstr("FID,FName,FUserID,1,7,GetDate()"));
    EXPECT_THAT(set_.Statements()[0],
                HasSubstr("select a.FUserID,a.FName as FTemplateName,@kept as FHistoryID,b.*"));
    EXPECT_THAT(set_.Statements()[1], HasSubstr("exec pro_VchTpCanUsed 5 \r\n"));
    EXPECT_EQ(set_.Statements()[2],
              "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = 5 order by fno");
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存成功！"));
    ExpectInformation(0, system::MessageButtons::Ok);
    EXPECT_THAT(Log(), ElementsAre("log 3 凭证模板-保存模板 自定义模板(1) 成功"));
    EXPECT_EQ(Sent("select * from t_VchTemplateEntry"),
              Texts{"select * from t_VchTemplateEntry where FID = 5 order by FNo,FEntryID "});
    EXPECT_EQ(view_.name, "自定义模板(1)");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(Save, TellsThenLogsThenReloads) {
    FillLine(1, "1", "收款");
    Forget();
    std::size_t toldBefore = 0;
    bool reloadedBefore = true;
    log_->On("WriteLog", [&](Arguments&) {
        toldBefore = Messages().size();
        reloadedBefore = !Sent("select * from t_VchTemplateEntry").empty();
        return Variant();
    });
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(toldBefore, 1U);
    EXPECT_FALSE(reloadedBefore);
    EXPECT_FALSE(Sent("select * from t_VchTemplateEntry").empty());
}

TEST_F(Save, NamesTheNumbersThatCannotBeUsed) {
    FillLine(1, "1", "收款");
    set_.Answer("select FNo from t_VchTpControl", Rows({"FNo"}, {{1}, {4}, {12}}));
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存成功！\r\n\r\n注：编号为 1、4、12 "
                                        "的凭证模板存在异常(标红)，无法在当前账套中使用！"));
    ExpectInformation(0, system::MessageButtons::Ok);
}

TEST_F(Save, ShowsTheLinesThatTheAccountSetHoldsAfterwards) {
    FillLine(1, "1", "收款");
    set_.Respond("exec pro_VchTpCanUsed", [this](const std::string&) {
        lines_["5"] = {Line(1, "as stored"), Line(2, "second")};
        return Rows({});
    });
    Window().Cells().MoveActiveCell({2, 5});
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Cell(1, column::kExplanation), "as stored");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_EQ(Window().CurrentEntryCount(), 2);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, 5}));
    EXPECT_FALSE(Window().Cells().CanUndo());
}

TEST_F(Save, LeavesTheCursorOnTheFirstBlankRowAndShowsIt) {
    FillLine(1, "1", "收款");
    StoreOnSave("5", {Line(1, "收款")});
    Window().Cells().MoveActiveCell({2, 5});
    const Shown shown(Grid());
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, 5}));
    EXPECT_THAT(shown.rows, ElementsAre(2));
}

TEST_F(Save, PutsTheCursorNowhereBelowTheFirstBlankRow) {
    FillLine(1, "1", "收款");
    FillLine(2, "1", "付款");
    StoreOnSave("5", {Line(1, "收款")});
    Window().Cells().MoveActiveCell({3, 5});
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{1, 1}));
}

TEST_F(Save, TakesWhatHasBeenTypedFirst) {
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    FillLine(1, "1", "收款");
    Type(1, column::kAccountNumber, "1002");
    EXPECT_TRUE(Window().Save());
    ASSERT_EQ(Batches().size(), 1U);
    EXPECT_THAT(Batches()[0], HasSubstr(",1,1002,'1002','银行存款',"));
}

TEST_F(Save, TakesWhatHasBeenTypedBeforeItIsOfferedToo) {
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    FillLine(1, "1", "收款");
    Type(1, column::kAccountNumber, "1002");
    Answer(system::MessageResult::Yes);
    EXPECT_TRUE(Window().ConfirmUnsavedChanges());
    ASSERT_EQ(Batches().size(), 1U);
    EXPECT_THAT(Batches()[0], HasSubstr(",1,1002,'1002','银行存款',"));
}

TEST_F(Save, MarksWhatNoLongerResolvesWhenItReloads) {
    FillLine(1, "1", "收款");
    StoreOnSave("5", {Line(1, "收款", 1, "9999", "旧科目")});
    set_.Answer("select * from t_Account where FNumber = '9999'", Rows({"FAccountID"}));
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Grid().Look(1, column::kAccountNumber).foreColor, color::kRed);
    EXPECT_EQ(Grid().Look(1, column::kAccountName).foreColor, color::kRed);
    EXPECT_EQ(Grid().Look(1, column::kRemark).foreColor, color::kBlack);
}

TEST_F(Save, ARejectedBatchIsShownAndTheSuccessMessageAllTheSame) {
    FillLine(1, "1", "收款");
    set_.Fail("delete t_VchTemplateEntry", "Arithmetic overflow");
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("Arithmetic overflow", "模板 自定义模板(1) 保存成功！"));
    EXPECT_THAT(Log(), ElementsAre("log 3 凭证模板-保存模板 自定义模板(1) 成功"));
    // Nothing has been stored: the template is still modified.
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(Save, AnErrorWhileReadingTheUnusableNumbersIsAFailure) {
    FillLine(1, "1", "收款");
    set_.Fail("select FNo from t_VchTpControl", "gone");
    Forget();
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存失败！"));
    ExpectInformation(0, system::MessageButtons::Ok);
    // The same kind as a success: kept so.
    EXPECT_THAT(Log(), ElementsAre("log 3 凭证模板-保存模板 自定义模板(1) 失败"));
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(Cell(1, column::kExplanation), "收款");
    EXPECT_THAT(Sent("select * from t_VchTemplateEntry"), IsEmpty());
}

TEST_F(Save, CanBeTriedAgainAfterAFailure) {
    FillLine(1, "1", "收款");
    set_.Fail("select FNo from t_VchTpControl", "gone");
    EXPECT_FALSE(Window().Save());
    set_.Answer("select FNo from t_VchTpControl", Rows({"FNo"}));
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Batches().size(), 2U);
    EXPECT_EQ(Batches()[0], Batches()[1]);
}

TEST_F(Save, NeverReplacesLinesThatCouldNotBeRead) {
    lines_["5"] = {Line(1, "stored"), Line(2, "stored too")};
    set_.Fail("select * from t_VchTemplateEntry", "connection lost");
    Window().Tree().NodeClick("detail-5");
    FillLine(1, "1", "收款");
    Forget();
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Batches(), IsEmpty());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存失败！"));
    EXPECT_THAT(Log(), ElementsAre("log 3 凭证模板-保存模板 自定义模板(1) 失败"));
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(Cell(1, column::kExplanation), "收款");

    // Once they have been read, everything is as usual.
    set_.Respond("select * from t_VchTemplateEntry",
                 [this](const std::string&) { return Rows(LineFields(), lines_["5"]); });
    Answer(system::MessageResult::No);
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Window().RowCount(), 2);
    MakeDirty();
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Batches().size(), 1U);
}

TEST_F(Save, AsksNothingAboutAnEmptyGridThatIsOnlyUnread) {
    set_.Fail("select * from t_VchTemplateEntry", "connection lost");
    Window().Tree().NodeClick("detail-5");
    Window().Cells().OpenLookUp();  // marks the template as changed
    ASSERT_TRUE(Window().IsDirty());
    Forget();
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存失败！"));
}

// Notes where the window stood when it spoke.
class WatchingBoxes : public fakes::RecordingMessageBoxes {
  public:
    explicit WatchingBoxes(std::function<void()> watch) : watch_(std::move(watch)) {}
    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override {
        watch_();
        return RecordingMessageBoxes::Show(text, buttons, icon, title);
    }

  private:
    std::function<void()> watch_;
};

TEST_F(Save, TellsOfAFaultyCellBeforeItGoesThere) {
    FillLine(1, "1", "收款");
    FillLine(2, "1", "");
    Grid().SetText(2, column::kAccountName, "");
    Window().Cells().MoveActiveCell({1, 3});
    std::vector<CellAddress> stood;
    system::Surroundings watched = system::Surroundings::Current();
    watched.messageBoxes = std::make_shared<WatchingBoxes>([&] { stood.push_back(Grid().ActiveCell()); });
    const system::SurroundingsScope scope(watched);
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(stood, ElementsAre(CellAddress{1, 3}));
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, column::kAccountName}));
}

TEST_F(Save, GoesToTheFaultyCellWithoutRedrawingOnTheWay) {
    FillLine(1, "1", "");
    Window().Cells().MoveActiveCell({1, 3});
    struct Redrawing : GridObserver {
        explicit Redrawing(EntryGrid& theGrid) : grid(theGrid) {}
        void ActiveCellChanged(const CellAddress&) override { states.push_back(grid.ReDraw()); }
        EntryGrid& grid;
        std::vector<bool> states;
    } redrawing(Grid());
    Grid().AddObserver(redrawing);
    EXPECT_FALSE(Window().Save());
    Grid().RemoveObserver(redrawing);
    EXPECT_THAT(redrawing.states, ElementsAre(false));
    EXPECT_TRUE(Grid().ReDraw());
}

TEST_F(Save, AFailureIsToldAndThenLogged) {
    FillLine(1, "1", "收款");
    set_.Fail("select FNo from t_VchTpControl", "gone");
    std::size_t toldBefore = 0;
    log_->On("WriteLog", [&](Arguments&) {
        toldBefore = Messages().size();
        return Variant();
    });
    EXPECT_FALSE(Window().Save());
    EXPECT_EQ(toldBefore, 1U);
}

TEST_F(Save, AnEmptyTemplateIsSavedOnOkAlone) {
    lines_["5"] = {Line(1, "x")};
    Window().Tree().NodeClick("detail-5");
    Window().Cells().DeleteRows({1, 1});
    for (const MessageResult answer : {MessageResult::No, MessageResult::Yes, MessageResult::Cancel}) {
        Answer(answer);
        EXPECT_FALSE(Window().Save()) << static_cast<int>(answer);
    }
    EXPECT_THAT(Batches(), IsEmpty());
    Answer(MessageResult::Ok);
    EXPECT_TRUE(Window().Save());
}

TEST_F(Save, GoesToTheFaultyCellAndWritesNothing) {
    FillLine(1, "1", "收款");
    FillLine(2, "1", "");
    Grid().SetText(2, column::kAccountName, "");
    struct Scrolls : GridObserver {
        void ScrolledIntoView(const CellAddress& cell) override { cells.push_back(cell); }
        std::vector<CellAddress> cells;
    } scrolls;
    Grid().AddObserver(scrolls);
    Forget();
    EXPECT_FALSE(Window().Save());
    Grid().RemoveObserver(scrolls);
    EXPECT_THAT(Messages(), ElementsAre("行2 科目名称(*) 不允许为空，请进行设置！"));
    ExpectInformation(0, system::MessageButtons::Ok);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, column::kAccountName}));
    EXPECT_TRUE(Grid().ReDraw());
    ASSERT_FALSE(scrolls.cells.empty());
    EXPECT_EQ(scrolls.cells.back(), (CellAddress{2, column::kAccountName}));
    EXPECT_EQ(Grid().Look(2, 1).backColor, entry::kPaleYellow);
    EXPECT_EQ(Grid().Look(1, 1).backColor, entry::kWhite);
    EXPECT_THAT(Batches(), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
    EXPECT_TRUE(Window().IsDirty());
}

class RefusedRow : public Save {
  protected:
    void SetUp() override {
        Save::SetUp();
        for (int row = 1; row <= 4; ++row)
            FillLine(row, "1", "收款");
        Grid().SetText(2, column::kAccountName, "");
        EXPECT_FALSE(Window().Save());
        ASSERT_THAT(Yellow(), ElementsAre(2));
    }
    std::vector<int> Yellow() {
        std::vector<int> rows;
        for (int row = 1; row <= Grid().RowTotal(); ++row) {
            if (Grid().Look(row, kColumnCount).backColor == entry::kPaleYellow) rows.push_back(row);
        }
        return rows;
    }
};

TEST_F(RefusedRow, IsNoLongerColouredOnceItIsMended) {
    Grid().SetText(3, column::kRemark, "another line");
    EXPECT_THAT(Yellow(), ElementsAre(2));
    Grid().SetText(2, column::kRemark, "another cell");
    EXPECT_THAT(Yellow(), ElementsAre(2));
    Type(2, column::kAccountName, "现金");
    EXPECT_THAT(Yellow(), IsEmpty());
}

TEST_F(RefusedRow, MovesWithItsLine) {
    Window().Cells().InsertRows({1, 1, 2, 1});
    EXPECT_THAT(Yellow(), ElementsAre(4));
    Window().Cells().DeleteRows({1, 1});
    EXPECT_THAT(Yellow(), ElementsAre(3));
    Type(3, column::kAccountName, "现金");
    EXPECT_THAT(Yellow(), IsEmpty());
}

TEST_F(RefusedRow, GoesWithItsLineAndComesBackWithIt) {
    Window().Cells().DeleteRows({2, 1});
    EXPECT_THAT(Yellow(), IsEmpty());
    Window().Cells().Undo();
    EXPECT_THAT(Yellow(), ElementsAre(2));
    Type(2, column::kAccountName, "现金");
    EXPECT_THAT(Yellow(), IsEmpty());
}

TEST_F(RefusedRow, GoesWhenTheLineIsNoLineAnyMore) {
    Window().Cells().DeleteRows({3, 1, 4, 1});
    Window().Cells().ClearCells({2, 1, 2, kColumnCount});
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_THAT(Yellow(), IsEmpty());
}

TEST_F(RefusedRow, GoesWhenUndoTakesTheLineBack) {
    Type(2, column::kAccountName, "现金");
    Type(5, column::kNo, "6");
    EXPECT_FALSE(Window().Save());
    ASSERT_THAT(Yellow(), ElementsAre(5));
    Window().Cells().Undo();
    EXPECT_EQ(Window().RowCount(), 4);
    EXPECT_THAT(Yellow(), IsEmpty());
    EXPECT_THAT(Window().Faults().Cells(), IsEmpty());
}

TEST_F(Save, AnEmptyTemplateIsSavedOnlyWhenTheUserAgrees) {
    lines_["5"] = {Line(1, "x")};
    Window().Tree().NodeClick("detail-5");
    Window().Cells().DeleteRows({1, 1});
    ASSERT_EQ(Window().RowCount(), 0);
    Forget();

    Answer(MessageResult::Cancel);
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("当前模板模板信息为空，您确认要保存么？"));
    ExpectInformation(0, system::MessageButtons::OkCancel);
    EXPECT_THAT(Batches(), IsEmpty());

    Answer(MessageResult::Ok);
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Batches(), ElementsAre("delete t_VchTemplateEntry where FID = 5 \r\n"
                                       "Delete t_VchTpControl where FID = 5 and FNo not in (-1) "
                                       "exec pro_VchTpCanUsed 5 \r\n"));
}

// --- the question about unsaved changes

class Confirm : public Save {};

TEST_F(Confirm, ACleanGridIsNotAskedAbout) {
    EXPECT_TRUE(Window().ConfirmUnsavedChanges());
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Confirm, AsksWithYesAndNo) {
    FillLine(1, "1", "收款");
    Answer(MessageResult::No);
    EXPECT_TRUE(Window().ConfirmUnsavedChanges());
    EXPECT_THAT(Messages(), ElementsAre("当前凭证模板修改后未保存，您是否进行保存?"));
    ExpectInformation(0, system::MessageButtons::YesNo);
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_THAT(Batches(), IsEmpty());
}

TEST_F(Confirm, YesSavesAndGoesOn) {
    FillLine(1, "1", "收款");
    Answer(MessageResult::Yes);
    EXPECT_TRUE(Window().ConfirmUnsavedChanges());
    EXPECT_EQ(Batches().size(), 1U);
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(Confirm, ASaveThatIsRefusedOrFailsStopsTheCaller) {
    FillLine(1, "", "收款");
    Answer(MessageResult::Yes);
    EXPECT_FALSE(Window().ConfirmUnsavedChanges());
    FillLine(1, "1", "收款");
    set_.Fail("select FNo from t_VchTpControl", "gone");
    Answer(MessageResult::Yes);
    EXPECT_FALSE(Window().ConfirmUnsavedChanges());
    EXPECT_TRUE(Window().IsDirty());
}

// The batch has run, and the account set answers no more.
TEST_F(Save, ATemplateThatIsThereIsNeverToldAsFailed) {
    using State = store::TemplateOutcome::State;
    const auto falls = [this] {
        set_.Respond("declare @MaxFID", [this](const std::string&) {
            set_.Fail("select FID from t_VchTemplate where FName", "down");
            return Rows({});
        });
    };
    FillLine(1, "1", "收款");
    falls();
    EXPECT_EQ(SaveLinesAs(Window().Grid(), 1, "另一个", "7").state, State::SavedUntold);
    EXPECT_THAT(Messages(), ElementsAre("模板 另一个 已另存，但未能重新读取，请重新打开凭证模板查看！"));
    EXPECT_EQ(Log().back(), "log 3 凭证模板-另存模板 另一个 成功");
    set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}));
    Forget();
    falls();
    store::HistoryVersion version;
    version.id = "41";
    EXPECT_EQ(RestoreAsNew(version, "第三个", "7").state, State::SavedUntold);
    EXPECT_THAT(Messages(), ElementsAre("模板 第三个 已恢复，但未能重新读取，请重新打开凭证模板查看！"));
}

}  // namespace
}  // namespace vicenter::center::test
