#include "autovch/frm_auto_vch.h"

#include "tests/autovch/autovch_fixture.h"

namespace vicenter::autovch {
namespace {

class FakeView : public AutoVchView {
  public:
    void Show(const AutoVchState& state) override { shown = state; }
    bool ShowProgress(std::int64_t, std::int64_t) override {
        ++progress;
        return !cancel;
    }
    void HideProgress() override { ++hidden; }
    void ShowColumnDialog(dialogs::frmSetColume& dialog) override {
        ASSERT_NE(dialog.Selection(), nullptr);
        // What the dialog's OK does with a tick in the row of column 11.
        dialog.Selection()->Put("Item", {"11"}, 1);
    }
    bool ShowPatterns(const GenerationPreview& preview, LeftOut& without) override {
        patterns = preview.patterns;
        leftOutBefore = without;
        without = leaveOut;
        return keeps;
    }
    void Unload() override { ++unloaded; }

    std::vector<VoucherPattern> patterns;
    LeftOut leftOutBefore;
    LeftOut leaveOut;
    bool keeps = true;
    AutoVchState shown;
    int progress = 0;
    int hidden = 0;
    int unloaded = 0;
    bool cancel = false;
};

class FrmAutoVchTest : public AutoVchTest {
  protected:
    void SetUp() override {
        AutoVchTest::SetUp();
        const auto profile = fakes::RegisterScripted("VelaEBSBase.SystemProfile");
        profile->On("GetProfile", [](automation::Arguments& a) {
            const std::string key = a[2].Value().ToText();
            return key == "PeriodCount" ? Variant(12) : key == "CurrentYear" ? Variant(2024) : Variant(3);
        });
        set_.Answer("t_VoucherGroup order", Rows({"FGroupID", "FName"}, {{1, "记"}, {2, "收"}}));
        set_.Answer("FMinNum", Rows({"FMinNum", "FMaxNum"}, {{0, 0}}));
        set_.Answer(
            "FMinNum,isnull(MAX(FNumber),0) as FMaxNum from t_Voucher where FYear = 2024 and FPeriod = 3",
            Rows({"FMinNum", "FMaxNum"}, {{2, 31}}));
        set_.Answer("as FLines", Rows({"FNumbers", "FVouchers", "FLines", "FMissing"}, {{4, 6, 25, 0}}));
        dialog_.Load();
    }
    std::string Box(autovch::Box box) const { return dialog_.State().boxes[box]; }

    FakeView view_;
    frmAutoVch dialog_{view_};
};

TEST_F(FrmAutoVchTest, OpensWithTheLedgersCurrentPeriodAndItsNumbers) {
    EXPECT_EQ(view_.shown.boxes, (std::array<std::string, 4>{"2024", "3", "2", "31"}));
    EXPECT_EQ(view_.shown.maxLengths, (std::array<std::size_t, 4>{4, 2, 9, 9}));
    EXPECT_EQ(view_.shown.groups, (Texts{"全部", "记", "收"}));
    EXPECT_EQ(view_.shown.group, 0U);
    EXPECT_FALSE(view_.shown.includeSystem);
    EXPECT_EQ(dialog_.Bounds(kPeriod).upper, 12);
}

TEST_F(FrmAutoVchTest, NoOptionalFieldIsChosenAtFirst) {
    EXPECT_EQ(dialog_.OptionalFields()->Keys(),
              (automation::VariantArray{"7", "9", "10", "11", "13", "14", "15", "17", "18", "19", "20"}));
    for (const Variant& item : dialog_.OptionalFields()->Items())
        EXPECT_EQ(item, Variant(0));
}

TEST_F(FrmAutoVchTest, SaysWhatTheFilterSelects) {
    EXPECT_EQ(view_.shown.selected, "将生成 4 个凭证模板编号（6 张凭证，25 条分录）");
    dialog_.SetBox(kLastNumber, "1");
    dialog_.FilterSettled();
    EXPECT_EQ(view_.shown.selected, "请正确设置凭证号范围！");
}

TEST_F(FrmAutoVchTest, APeriodWithoutVouchersShowsZeros) {
    dialog_.SetBox(kPeriod, "4");
    EXPECT_EQ(Box(kFirstNumber), "0");
    EXPECT_EQ(Box(kLastNumber), "0");
}

TEST_F(FrmAutoVchTest, ARangeOfTheUsersOwnStaysWhenThePeriodChanges) {
    dialog_.SetBox(kFirstNumber, "5");
    dialog_.SetBox(kPeriod, "4");
    EXPECT_EQ(Box(kFirstNumber), "5");
    EXPECT_EQ(Box(kLastNumber), "31");
}

TEST_F(FrmAutoVchTest, BoxesTakeDigitsUpToTheirLength) {
    EXPECT_TRUE(frmAutoVch::AcceptsCharacter(U'0'));
    EXPECT_TRUE(frmAutoVch::AcceptsCharacter(8));
    for (const char32_t refused : {U'a', U'-', U'.', U' ', U'０'})
        EXPECT_FALSE(frmAutoVch::AcceptsCharacter(refused));
    EXPECT_FALSE(dialog_.SetBox(kYear, "20245"));
    EXPECT_FALSE(dialog_.SetBox(kYear, "-1"));
    EXPECT_FALSE(dialog_.SetBox(kPeriod, "x"));
    EXPECT_EQ(Box(kYear), "2024");
    EXPECT_TRUE(dialog_.SetBox(kYear, ""));
}

TEST_F(FrmAutoVchTest, UpAndDownStayWithinTheBounds) {
    struct Case {
        const char* text;
        bool up;
        const char* expected;
    };
    for (const Case& c : {Case{"12", true, "12"},
                          {"13", true, "12"},
                          {"0", true, "1"},
                          {"3", true, "4"},
                          {"1", false, "1"},
                          {"0", false, "1"},
                          {"99", false, "12"},
                          {"12", false, "11"},
                          {"", true, "1"},
                          {"", false, "1"}}) {
        dialog_.SetBox(kPeriod, c.text);
        dialog_.Spin(kPeriod, c.up);
        EXPECT_EQ(Box(kPeriod), c.expected) << c.text << (c.up ? " up" : " down");
    }
}

TEST_F(FrmAutoVchTest, CancelClosesWithoutGenerating) {
    set_.Forget();
    dialog_.Command(2);
    EXPECT_EQ(view_.unloaded, 1);
    EXPECT_FALSE(dialog_.Result().outcome);
    EXPECT_TRUE(set_.Statements().empty());
}

TEST_F(FrmAutoVchTest, GeneratesWithTheChosenFieldsAndCloses) {
    set_.Answer(
        "from t_Voucher a\r\n inner join t_VoucherEntry b on a.FVoucherID = b.FVoucherID\r\n inner join "
        "t_Account c on b.FAccountID = c.FAccountID\r\n left",
        Rows(VoucherColumns(), {VoucherRow(2, "提现", 0)}));
    std::string batch;
    set_.Respond("@Vch_cursor", [&](const std::string& sql) {
        batch = sql;
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{9}}));
        return Rows({});
    });
    dialog_.SelectGroup(2);
    dialog_.SetIncludeSystem(true);
    dialog_.SetTemplateName("三月");
    dialog_.ChooseColumns();
    dialog_.Command(0);
    EXPECT_TRUE(dialog_.Result().outcome);
    EXPECT_EQ(dialog_.Result().outcome.id, 9);
    EXPECT_EQ(view_.unloaded, 1);
    EXPECT_EQ(view_.hidden, 1);
    EXPECT_NE(batch.find("FAcctountName,FItemsInfo)"), std::string::npos);
    const auto& sent = set_.Statements();
    EXPECT_TRUE(std::any_of(sent.begin(), sent.end(), [](const std::string& sql) {
        return sql.find("FName = '收'") != std::string::npos && sql.find("FTranType") == std::string::npos;
    }));
}

TEST_F(FrmAutoVchTest, AFailureLeavesTheDialogOpen) {
    dialog_.SetTemplateName("");
    dialog_.Command(0);
    EXPECT_EQ(view_.unloaded, 0);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), Texts{"凭证模板名称不允许为空！"});
}

class MergingTest : public FrmAutoVchTest {
  protected:
    void Merges() {
        set_.Answer("as FGroup",
                    Rows({"FNo", "FGroup", "FVouchers"},
                         {{2, "收", 1}, {2, "记", 1}, {3, "记", 3}, {5, "收", 1}, {5, "记", 1}}));
    }
};

TEST_F(MergingTest, WarnsOfNumbersThatSeveralGroupsShareAndOffersTheOneWithTheMostVouchers) {
    EXPECT_EQ(view_.shown.warning, "");
    Merges();
    dialog_.FilterSettled();
    EXPECT_EQ(view_.shown.warning,
              "不同类别的凭证有相同的凭证号（2、5），选择“全部”时它们会合并到同一个模板编号；"
              "如不需要合并，请只选一个凭证类别（记、收）。");
    EXPECT_EQ(view_.shown.oneGroup, "记");
    dialog_.TakeOneGroup();
    EXPECT_EQ(view_.shown.group, 1U);
    EXPECT_EQ(view_.shown.warning, "");
    EXPECT_EQ(view_.shown.oneGroup, "");
}

TEST_F(MergingTest, AsksNothingMoreWhereEveryVoucherHasANumberOfItsOwn) {
    set_.Answer("as FLines", Rows({"FNumbers", "FVouchers", "FLines", "FMissing"}, {{6, 6, 25, 0}}));
    set_.Forget();
    dialog_.FilterSettled();
    EXPECT_EQ(set_.Statements().size(), 1U);
    EXPECT_EQ(view_.shown.warning, "");
}

TEST_F(MergingTest, TellsOfLinesWhoseAccountOrCurrencyIsGone) {
    Merges();
    set_.Answer("as FLines", Rows({"FNumbers", "FVouchers", "FLines", "FMissing"}, {{4, 6, 25, 3}}));
    set_.Answer("as FMissing from", Rows({"FNo", "FMissing"}, {{2, 1}, {5, 2}}));
    dialog_.FilterSettled();
    const std::string gone = "凭证号 2、5 的凭证中，有 3 条分录的科目或币别已不在账套中，这些分录不会生成。";
    EXPECT_TRUE(view_.shown.warning.starts_with(gone + "\n不同类别的凭证有相同的凭证号"))
        << view_.shown.warning;
    EXPECT_EQ(view_.shown.oneGroup, "记");
    dialog_.TakeOneGroup();
    EXPECT_EQ(view_.shown.warning, gone);
    EXPECT_EQ(view_.shown.oneGroup, "");
}

class PatternsTest : public FrmAutoVchTest {
  protected:
    void SetUp() override {
        FrmAutoVchTest::SetUp();
        std::vector<std::vector<Variant>> rows;
        for (const int number : {2, 2, 3, 3, 7}) {
            rows.push_back(VoucherRow(number, "摘要" + std::to_string(number), 0));
            if (rows.size() % 2 == 0) {
                rows.back()[2] = 0;
                rows.back()[4] = "1001";
            }
        }
        set_.Answer("a.FNumber as FNo,b.FExplanation", Rows(VoucherColumns(), rows));
        set_.Answer("t_VchTemplateEntry e on e.FID = t.FID",
                    Rows({"FID", "FName", "FNo", "FDC", "FAccountNumber"},
                         {{4, "日常", 8, 0, "1001"}, {4, "日常", 8, 1, "1002.01"}, {4, "日常", 9, 1, "5"}}));
    }
};

TEST_F(PatternsTest, AreListedByHowOftenTheyOccurredWithWhatIsThereAlready) {
    dialog_.ChoosePatterns();
    ASSERT_EQ(view_.patterns.size(), 2U);
    EXPECT_EQ(view_.patterns[0].numbers, (Texts{"2", "3"}));
    EXPECT_EQ(view_.patterns[0].explanation, "摘要2");
    EXPECT_EQ(view_.patterns[0].lines, (Texts{"借1002.01", "贷1001"}));
    EXPECT_EQ(view_.patterns[0].words, "借1002.01 工行；贷1001 工行");
    EXPECT_EQ(view_.patterns[0].alike, "与“日常” 8 号相同");
    EXPECT_EQ(view_.patterns[1].numbers, Texts{"7"});
    EXPECT_EQ(view_.patterns[1].alike, "");
}

TEST_F(PatternsTest, WhatIsNotTickedIsLeftOutOfTheBatchAndNothingElseChanges) {
    view_.leaveOut = {"2", "7"};
    dialog_.ChoosePatterns();
    EXPECT_EQ(view_.shown.selected, "将生成 4 个凭证模板编号（6 张凭证，25 条分录），其中 2 个不生成");
    dialog_.SetTemplateName("三月");
    dialog_.Command(0);
    std::string batch;
    for (const std::string& sql : set_.Statements()) {
        if (sql.find("@Vch_cursor") != std::string::npos) batch = sql;
    }
    EXPECT_NE(batch.find("values(@MaxFID,1,3,"), std::string::npos) << batch;
    EXPECT_NE(batch.find("values(@MaxFID,2,3,"), std::string::npos);
    EXPECT_EQ(batch.find("values(@MaxFID,3,"), std::string::npos);
    // A filter that settles late has not changed.
    dialog_.FilterSettled();
    dialog_.ChoosePatterns();
    EXPECT_EQ(view_.leftOutBefore, (LeftOut{"2", "7"}));
}

TEST_F(PatternsTest, AreForgottenWithTheFilterAndWhereTheUserThinksBetterOfIt) {
    view_.leaveOut = {"2"};
    view_.keeps = false;
    dialog_.ChoosePatterns();
    view_.keeps = true;
    dialog_.ChoosePatterns();
    EXPECT_TRUE(view_.leftOutBefore.empty());
    dialog_.SelectGroup(1);
    dialog_.ChoosePatterns();
    EXPECT_TRUE(view_.leftOutBefore.empty());
}

TEST_F(PatternsTest, WithNothingLeftNothingIsGenerated) {
    view_.leaveOut = {"2", "3", "7"};
    dialog_.ChoosePatterns();
    dialog_.SetTemplateName("三月");
    dialog_.Command(0);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), Texts{"没有选择要生成的凭证，凭证模板生成失败！"});
    EXPECT_EQ(view_.unloaded, 0);
}

}  // namespace
}  // namespace vicenter::autovch
