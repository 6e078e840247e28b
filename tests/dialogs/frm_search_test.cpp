#include "dialogs/frm_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "center/grid/entry_grid.h"
#include "entry/screen.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::dialogs {

namespace {

using automation::ObjectRef;
using automation::Variant;
using center::CellAddress;
using center::EntryGrid;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNothingThere = "当前模板没有可查找的模板信息！";
constexpr const char* kNoFilter = "请输入过滤信息！";
constexpr const char* kNotFound = "没有查找到对应的数据，请重新录入查找条件！";

class BoxesOfTheDialog : public FrmSearchView {
  public:
    SearchFields Fields() const override { return fields; }
    void SetAccount(const std::string& number) override { fields.txtAcct = number; }
    void Unload() override { ++unloads; }
    SearchFields fields;
    int unloads = 0;
};

class FrmSearchTest : public testing::Test {
  protected:
    FrmSearchTest() {
        Line(1, "提取备用金", "1001", "库存现金", "");
        Line(2, "支付货款", "1002.01", "银行存款-工行", "合同甲");
        Line(3, "支付运费", "1002.02", "银行存款-建行", "合同乙");
        Line(4, "Paid in Cash", "5401", "主营业务成本", " 合同甲 ");
        dialog_.SetGrid(grid_);
        dialog_.SetEntryCount(4);
        dialog_.Load(view_);
    }
    void Line(int row, const char* explanation, const char* number, const char* name, const char* remark) {
        grid_->SetText(row, 2, explanation);
        grid_->SetText(row, 5, number);
        grid_->SetText(row, 6, name);
        grid_->SetText(row, 21, remark);
    }
    // Presses OK and gives the row that is active afterwards, 0 when none has become so.
    int Find() {
        dialog_.cmdOK_Click();
        return grid_->ActiveCell().row;
    }
    std::vector<int> FindTimes(int times) {
        std::vector<int> rows;
        for (int i = 0; i < times; ++i)
            rows.push_back(Find());
        return rows;
    }
    std::vector<int> PaleYellowRows() const {
        std::vector<int> rows;
        for (int row = 1; row <= grid_->RowTotal(); ++row) {
            bool whole = true;
            for (int c = 1; c <= center::kColumnCount; ++c)
                whole = whole && grid_->Look(row, c).backColor == entry::kPaleYellow;
            if (whole) rows.push_back(row);
        }
        return rows;
    }
    std::vector<std::string> Messages() const { return surroundings_.messageBoxes->Texts(); }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    std::shared_ptr<EntryGrid> grid_ = std::make_shared<EntryGrid>();
    BoxesOfTheDialog view_;
    FrmSearch dialog_;
};

}  // namespace

TEST_F(FrmSearchTest, ATemplateWithoutLinesHasNothingToFind) {
    dialog_.SetEntryCount(0);
    view_.fields.txtExp = "支付";
    dialog_.cmdOK_Click();
    ASSERT_EQ(surroundings_.messageBoxes->shown.size(), 1U);
    const fakes::ShownMessage& message = surroundings_.messageBoxes->shown.front();
    EXPECT_EQ(message.text, kNothingThere);
    EXPECT_EQ(message.title, "信息提示");
    EXPECT_EQ(message.icon, system::MessageIcon::Information);
    EXPECT_EQ(message.buttons, system::MessageButtons::Ok);
}

TEST_F(FrmSearchTest, NoLinesIsToldBeforeNoFilter) {
    dialog_.SetEntryCount(-1);
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNothingThere));
}

TEST_F(FrmSearchTest, ThreeEmptyBoxesAskForAFilter) {
    view_.fields = {" ", "  ", ""};
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNoFilter));
    EXPECT_EQ(grid_->ActiveCell().row, 0);
}

TEST_F(FrmSearchTest, TheNextMatchingLineBecomesActiveInColumnOneAndPaleYellow) {
    view_.fields.txtExp = " 支付 ";
    dialog_.cmdOK_Click();
    EXPECT_EQ(grid_->ActiveCell(), (CellAddress{2, 1}));
    EXPECT_THAT(PaleYellowRows(), ElementsAre(2));
    EXPECT_EQ(dialog_.LastRow(), 2);
    dialog_.cmdOK_Click();
    EXPECT_EQ(grid_->ActiveCell(), (CellAddress{3, 1}));
    EXPECT_THAT(PaleYellowRows(), ElementsAre(3));
    EXPECT_EQ(grid_->Look(2, 1).backColor, entry::kWhite);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(view_.unloads, 0);
}

TEST_F(FrmSearchTest, BehindTheLastMatchTheSearchWrapsRound) {
    view_.fields.txtExp = "支付";
    EXPECT_THAT(FindTimes(5), ElementsAre(2, 3, 2, 3, 2));
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(FrmSearchTest, OneMatchIsFoundAgainAndAgain) {
    view_.fields.txtExp = "备用金";
    EXPECT_THAT(FindTimes(3), ElementsAre(1, 1, 1));
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(FrmSearchTest, WithoutAMatchTheMessageComesOnce) {
    view_.fields.txtExp = "折旧";
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
    EXPECT_EQ(grid_->ActiveCell().row, 0);
    EXPECT_THAT(PaleYellowRows(), IsEmpty());
}

TEST_F(FrmSearchTest, AMatchThatIsGoneEndsInTheMessageAfterTheSecondPass) {
    view_.fields.txtExp = "备用金";
    EXPECT_EQ(Find(), 1);
    grid_->SetText(1, 2, "");
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
    EXPECT_EQ(dialog_.LastRow(), 0);
}

TEST_F(FrmSearchTest, AChangedFilterStartsAtTheTop) {
    view_.fields.txtExp = "支付";
    EXPECT_THAT(FindTimes(2), ElementsAre(2, 3));
    view_.fields.txtBZ = "合同";
    EXPECT_EQ(Find(), 2);
    view_.fields.txtBZ = "";
    EXPECT_EQ(Find(), 2);
}

TEST_F(FrmSearchTest, TheSameTextInAnotherBoxIsAnotherFilter) {
    view_.fields = {"", "", "合同"};
    EXPECT_EQ(Find(), 2);
    view_.fields = {"合同", "", ""};
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
}

TEST_F(FrmSearchTest, BlanksAroundAFilterChangeNothing) {
    view_.fields.txtExp = "支付";
    EXPECT_EQ(Find(), 2);
    view_.fields.txtExp = " 支付  ";
    EXPECT_EQ(Find(), 3);
}

TEST_F(FrmSearchTest, AnAccountMatchesByItsWholeCodeOrAPartOfItsName) {
    view_.fields.txtAcct = "1002.02";
    EXPECT_EQ(Find(), 3);
    view_.fields.txtAcct = "工行";
    EXPECT_EQ(Find(), 2);
    view_.fields.txtAcct = "银行存款";
    EXPECT_THAT(FindTimes(3), ElementsAre(2, 3, 2));
}

TEST_F(FrmSearchTest, APartOfACodeMatchesThroughTheNameOnly) {
    view_.fields.txtAcct = "1002";
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
    grid_->SetText(4, 6, "见1002");
    EXPECT_EQ(Find(), 4);
}

TEST_F(FrmSearchTest, RemarksMatchByAPartOfTheirTrimmedText) {
    view_.fields.txtBZ = "合同甲";
    EXPECT_THAT(FindTimes(3), ElementsAre(2, 4, 2));
}

TEST_F(FrmSearchTest, EveryFilterThatIsGivenMustMatch) {
    view_.fields = {"支付", "银行存款", "合同乙"};
    EXPECT_EQ(Find(), 3);
    view_.fields = {"支付", "库存现金", ""};
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
}

TEST_F(FrmSearchTest, CaseMatters) {
    view_.fields.txtExp = "cash";
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
    view_.fields.txtExp = "Cash";
    EXPECT_EQ(Find(), 4);
}

TEST_F(FrmSearchTest, RowsBeyondTheEntryCountAreNeverSearched) {
    Line(5, "支付工资", "", "", "");
    view_.fields.txtExp = "工资";
    dialog_.cmdOK_Click();
    EXPECT_THAT(Messages(), ElementsAre(kNotFound));
    dialog_.SetEntryCount(5);
    EXPECT_EQ(Find(), 5);
}

TEST_F(FrmSearchTest, LoadingForgetsTheLastSearch) {
    view_.fields.txtExp = "支付";
    FindTimes(2);
    dialog_.Load(view_);
    EXPECT_EQ(dialog_.LastRow(), 0);
    EXPECT_EQ(Find(), 2);
}

TEST_F(FrmSearchTest, CountsTheLinesThatFitAndMovesNothing) {
    EXPECT_EQ(dialog_.HitCount(), 0);
    view_.fields = {"", "", "合同甲"};
    Find();
    grid_->Put("Row", 3);
    grid_->Put("Col", 7);
    EXPECT_EQ(dialog_.HitCount(), 2);
    EXPECT_EQ(grid_->Get("Row").ToInt32(), 3);
    EXPECT_EQ(grid_->Get("Col").ToInt32(), 7);
    EXPECT_EQ(dialog_.LastRow(), 2);
    view_.fields = {" 支付 ", "1002.02", ""};
    EXPECT_EQ(dialog_.HitCount(), 1);
    dialog_.SetEntryCount(2);
    EXPECT_EQ(dialog_.HitCount(), 0);
}

TEST_F(FrmSearchTest, SearchingChangesNoText) {
    const std::string before(grid_->Text(2, 2));
    view_.fields.txtExp = "支付";
    FindTimes(3);
    EXPECT_EQ(grid_->Text(2, 2), before);
    EXPECT_TRUE(grid_->IsBlankRow(5));
}

TEST_F(FrmSearchTest, CancelUnloadsTheDialog) {
    dialog_.cmdCancel_Click();
    EXPECT_EQ(view_.unloads, 1);
}

// --- the account look-up

TEST_F(FrmSearchTest, TheChosenAccountsNumberGoesIntoTheBox) {
    const auto record = std::make_shared<fakes::ScriptedObject>("Account");
    record->Value("Number", "1002.01");
    const auto result = std::make_shared<fakes::ScriptedObject>("Result");
    result->Value("ReturnObject", Variant(record));
    const fakes::ScriptedRef lookUp = fakes::RegisterScripted("VelaEBCGLView.GLView");
    lookUp->Value("AccountLookup", Variant(result));
    view_.fields.txtAcct = " 10'02 ";
    dialog_.cmdAcct_Click();
    EXPECT_THAT(lookUp->Calls(), ElementsAre("AccountLookup(10''02)"));
    EXPECT_EQ(view_.fields.txtAcct, "1002.01");
}

TEST_F(FrmSearchTest, ARecordWithFieldsServesAsWell) {
    const auto record = std::make_shared<fakes::ScriptedObject>("Record");
    record->On("", [](automation::Arguments& a) {
        return a.at(0).Value().ToText() == "Number" ? Variant("1403") : Variant();
    });
    const auto result = std::make_shared<fakes::ScriptedObject>("Result");
    result->Value("ReturnObject", Variant(record));
    fakes::RegisterScripted("VelaEBCGLView.GLView")->Value("AccountLookup", Variant(result));
    dialog_.cmdAcct_Click();
    EXPECT_EQ(view_.fields.txtAcct, "1403");
}

TEST_F(FrmSearchTest, WithoutAChosenAccountTheBoxStays) {
    view_.fields.txtAcct = "1001";
    const auto result = std::make_shared<fakes::ScriptedObject>("Result");
    const fakes::ScriptedRef lookUp = fakes::RegisterScripted("VelaEBCGLView.GLView");
    lookUp->Value("AccountLookup", Variant(result));
    for (const Variant& nothing : {Variant(), Variant::Null(), Variant(ObjectRef()), Variant("1002")}) {
        result->Value("ReturnObject", nothing);
        dialog_.cmdAcct_Click();
        EXPECT_EQ(view_.fields.txtAcct, "1001");
    }
    lookUp->Value("AccountLookup", Variant(ObjectRef()));
    dialog_.cmdAcct_Click();
    EXPECT_EQ(view_.fields.txtAcct, "1001");
}

}  // namespace vicenter::dialogs
