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
    void Unload() override { ++unloaded; }

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
        set_.Answer("as FLines", Rows({"FNumbers", "FVouchers", "FLines"}, {{4, 6, 25}}));
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

}  // namespace
}  // namespace vicenter::autovch
