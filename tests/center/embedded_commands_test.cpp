// The window's commands on a real demo set, in a file and on a server: what is saved comes back, and what is
// red is what cannot be used.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/components/look_up_dialog.h"
#include "tests/center/window_on_set.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

class DemoSet : public WindowOnSet {
  protected:
    void SetUp() override { OpenOn(lanes::ConnectTextOf(set_)); }
    void TearDown() override {
        host::LookUpDialog::SetProcess(nullptr);
        WindowOnSet::TearDown();
    }
    Texts Row(int row) {
        Texts texts;
        for (int c = 1; c <= kColumnCount; ++c)
            texts.push_back(Cell(row, c));
        return texts;
    }
    std::string LastMessage() const { return surroundings_.messageBoxes->shown.back().text; }
};

TEST_F(DemoSet, OpensOnTheStandardTemplateWithTheUsersOwnBesideIt) {
    EXPECT_EQ(view_.tree[0].key, "ROOT");
    EXPECT_EQ(view_.tree[1].key, "detail-0");
    EXPECT_EQ(std::to_string(view_.tree.size() - 2),
              Value("select count(*) as n from t_VchTemplate where FID <> 0 and FUserID = 1"));
    EXPECT_EQ(view_.name, "标准模板");
    EXPECT_EQ(Value("select FDescription from t_Log where FKind = 1"), "凭证模板-打开");
}

TEST_F(DemoSet, NewRenameTypeSaveAndReopenFindsEverythingAsLeft) {
    const std::string id = NewTemplate("月末'结转");
    EXPECT_EQ(Value("select FName from t_VchTemplate where FID = " + id), "月末'结转");
    TypeLine(1, "1", "收到美元货款", "借", "1002.02");
    Type(1, column::kFileCount, "3");
    Type(1, column::kSettleName, "JF03");
    Type(1, column::kSettleNumber, "No. 0007");
    Type(1, column::kCurrencyName, "USD");
    Type(1, column::kRate, "7.1865000001");
    Type(1, column::kAmountFor, "100.5");
    Type(1, column::kAmount, "722.2433");
    Type(1, column::kQuantity, "0.0001");
    Type(1, column::kPrice, "12345.6789012345");
    Type(1, column::kRemark, "备注");
    TypeLine(2, "1", "", "贷", "1001");
    Window().Cells().MoveActiveCell({1, 1});
    ASSERT_NE(Cell(1, column::kAccountId), "");
    EXPECT_EQ(Cell(1, column::kSettleName), "电汇");
    EXPECT_EQ(Cell(1, column::kCurrencyId), "2");
    const Texts first = Row(1);
    const Texts second = Row(2);

    Window().ToolClick("mnuSave");
    EXPECT_EQ(LastMessage(), "模板 月末'结转 保存成功！");
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Row(1), first);
    EXPECT_EQ(Row(2), second);

    Window().Unload();
    Open();
    Window().Tree().NodeClick("detail-" + id);
    EXPECT_EQ(view_.name, "月末'结转");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_EQ(Row(1), first);
    EXPECT_EQ(Row(2), second);
    EXPECT_EQ(Value("select FIsCanUsed from t_VchTpControl where FID = " + id), "1");
}

TEST_F(DemoSet, EveryAmountReadsTheSameDigitForDigit) {
    const std::string id = NewTemplate("数字");
    const Texts amounts{"0.0001", "999999999", "999999999.0000", "1.5", "100", "0.1", "123456789.1234", "7"};
    int row = 0;
    for (const std::string& amount : amounts) {
        TypeLine(++row, "1", "x", "借", "1001");
        Type(row, column::kAmount, amount);
    }
    Window().Cells().MoveActiveCell({1, 1});
    Window().ToolClick("mnuSave");
    row = 0;
    for (const std::string& amount : amounts) {
        // Zeros behind the point are the column type's, not the user's.
        const std::string expected = amount == "999999999.0000" ? "999999999" : amount;
        EXPECT_EQ(Cell(++row, column::kAmount), expected);
    }
}

TEST_F(DemoSet, TheNumbersReportedAsUnusableAreThoseWithRedCells) {
    NewTemplate("异常");
    TypeLine(1, "1", "好", "借", "1001");
    TypeLine(2, "2", "坏", "借", "1001");
    TypeLine(3, "2", "", "贷", "1001");
    Type(3, column::kSettleName, "电汇");  // cash is no bank account
    TypeLine(4, "3", "好", "借", "1001");
    TypeLine(5, "7", "坏", "借", "1001");
    Type(5, column::kCurrencyName, "没有的币别");
    Window().Cells().MoveActiveCell({1, 1});
    Window().ToolClick("mnuSave");
    EXPECT_EQ(LastMessage(),
              "模板 异常 保存成功！\r\n\r\n注：编号为 2、7 "
              "的凭证模板存在异常(标红)，无法在当前账套中使用！");
    for (int row = 1; row <= 5; ++row) {
        EXPECT_EQ(IsRed(row, column::kSettleName), row == 3) << row;
        EXPECT_EQ(IsRed(row, column::kCurrencyName), row == 5) << row;
        EXPECT_FALSE(IsRed(row, column::kAccountNumber)) << row;
    }
}

TEST_F(DemoSet, SavingAgainKeepsTheUsageOfANumberAndDropsNumbersThatAreGone) {
    const std::string id = NewTemplate("再存");
    TypeLine(1, "1", "甲", "借", "1001");
    Type(1, column::kFileCount, "4");
    TypeLine(2, "2", "乙", "借", "1001");
    Window().Cells().MoveActiveCell({1, 1});
    Window().ToolClick("mnuSave");
    session_->Execute("update t_VchTpControl set FUseFrequency = 9 where FID = " + id + " and FNo = 1");
    Window().Cells().DeleteRows({2, 1});
    Type(1, column::kExplanation, "丙");
    Type(1, column::kFileCount, "5");
    Window().Cells().MoveActiveCell({1, 1});
    Window().ToolClick("mnuSave");
    EXPECT_EQ(Value("select count(*) as n from t_VchTpControl where FID = " + id), "1");
    EXPECT_EQ(Value("select FKey from t_VchTpControl where FID = " + id), "丙");
    EXPECT_EQ(Value("select FUseFrequency from t_VchTpControl where FID = " + id), "9");
    EXPECT_EQ(Value("select FFileCount from t_VchTpControl where FID = " + id), "4");
}

TEST_F(DemoSet, AnEmptiedTemplateIsSavedEmpty) {
    const std::string id = NewTemplate("空");
    TypeLine(1, "1", "甲", "借", "1001");
    Window().ToolClick("mnuSave");
    Window().Cells().DeleteRows({1, 1});
    surroundings_.messageBoxes->answers.push_back(MessageResult::Ok);
    Window().ToolClick("mnuSave");
    EXPECT_EQ(LastMessage(), "模板 空 保存成功！");
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = " + id), "0");
    EXPECT_EQ(Value("select count(*) as n from t_VchTpControl where FID = " + id), "0");
}

TEST_F(DemoSet, DeletingTakesHeaderLinesAndControlRows) {
    const std::string id = NewTemplate("删除我");
    TypeLine(1, "1", "甲", "借", "1001");
    Window().ToolClick("mnuSave");
    surroundings_.messageBoxes->answers.push_back(MessageResult::Yes);
    Window().ToolClick("mnuDel");
    for (const char* table : {"t_VchTemplate", "t_VchTemplateEntry", "t_VchTpControl"})
        EXPECT_EQ(Value(std::string("select count(*) as n from ") + table + " where FID = " + id), "0");
    EXPECT_EQ(Value("select FDescription from t_Log where FKind = 3 and FDescription like '%删除模板%'"),
              "凭证模板-删除模板 删除我 成功");
    EXPECT_NE(Window().TemplateId(), id);
}

TEST_F(DemoSet, ARenameToAnotherTemplatesNameIsRefused) {
    const std::string id = NewTemplate("甲");
    NewTemplate("乙");
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("甲"));
    EXPECT_EQ(LastMessage(), "模板名称不允许重复，修改失败！");
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplate where FName = '甲'"), "1");
}

TEST_F(DemoSet, ANameThatIsTooLongIsToldAndTheOldOneStays) {
    const std::string id = NewTemplate("甲");
    EXPECT_FALSE(Window().Tree().AfterLabelEdit(std::string(5000, 'x')));
    EXPECT_THAT(LastMessage(), HasSubstr("名称长度不能超过255个字符，修改失败！"));
    EXPECT_EQ(Value("select FName from t_VchTemplate where FID = " + id), "甲");
}

// --- hostile texts

class HostileTexts : public DemoSet, public testing::WithParamInterface<std::string> {};

TEST_P(HostileTexts, AreStoredAsTheyAreInEveryTextColumn) {
    const std::string id = NewTemplate("敌意");
    const std::string templates = Value("select count(*) as n from t_VchTemplate");
    TypeLine(1, "1", "甲", "借", "1001");
    const std::vector<int> columns{2, 5, 6, 9, 10, 11, 13, 17, 21};
    for (const int c : columns)
        ASSERT_TRUE(Window().Grid().SetText(1, c, GetParam()));
    Window().Save();
    EXPECT_THAT(LastMessage(), HasSubstr("保存成功"));
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplate"), templates);
    for (const int c : columns)
        EXPECT_EQ(Cell(1, c), GetParam()) << c;
}

INSTANTIATE_TEST_SUITE_P(Each, HostileTexts,
                         testing::Values("it's", "');drop table t_VchTemplate--", "''", "'", "a\r\nb",
                                         "\ttab", "😀", "[x]%_", "--", "/* */", "N'x'", "@MaxFID", "\x01"));

TEST_F(DemoSet, ATextBeyondItsColumnIsRefusedInWordsAndTheOldLinesStay) {
    const std::string id = NewTemplate("太长");
    TypeLine(1, "1", "甲", "借", "1001");
    Window().ToolClick("mnuSave");
    EXPECT_EQ(Window().Cells().CommitText({1, 2}, std::string(256, 'x')), TextVerdict::TooLong);
    Window().Grid().SetText(1, column::kExplanation, std::string(256, 'x'));
    surroundings_.messageBoxes->shown.clear();
    Window().ToolClick("mnuSave");
    EXPECT_THAT(surroundings_.messageBoxes->shown[0].text,
                HasSubstr(lanes::RefusesInOwnWords() ? "too long" : "truncated"));
    EXPECT_EQ(Value("select FExp from t_VchTemplateEntry where FID = " + id), "甲");
    EXPECT_EQ(Cell(1, column::kExplanation), "甲");
}

// --- look-ups and name lists on the host's own components

class ByNumber : public host::LookUpDialog {
  public:
    std::optional<std::size_t> Choose(const host::LookUpRequest& request) override {
        for (std::size_t i = 0; i < request.records.size(); ++i) {
            if (request.records[i].number == number) return i;
        }
        return std::nullopt;
    }
    std::string number;
};

TEST_F(DemoSet, LookUpsFillTheRowFromTheHostsComponents) {
    const auto dialog = std::make_shared<ByNumber>();
    host::LookUpDialog::SetProcess(dialog);
    NewTemplate("查找");
    const auto lookUp = [&](int gridColumn, const char* number) {
        dialog->number = number;
        Window().Cells().MoveActiveCell({1, gridColumn});
        Window().Cells().OpenLookUp();
    };
    lookUp(2, "001");
    EXPECT_EQ(Cell(1, 2), "收到货款");
    EXPECT_EQ(Cell(1, 5), "1122.01");
    EXPECT_EQ(Cell(1, 4), Value("select FAccountID from t_Account where FNumber = '1122.01'"));
    lookUp(5, "1002.02");
    EXPECT_EQ(Cell(1, 6), "中国银行美元户");
    lookUp(9, "JF03");
    EXPECT_EQ(Cell(1, 9), "电汇");
    lookUp(13, "USD");
    EXPECT_EQ(Cell(1, 13), "美元");
    EXPECT_EQ(Cell(1, 12), "2");
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(DemoSet, NameListsNarrowTheDemoLedgersAccounts) {
    NewTemplate("名称");
    Window().Cells().MoveActiveCell({1, column::kAccountNumber});
    Window().Names().TextTyped("zgyh");
    ASSERT_TRUE(view_.nameList.open);
    EXPECT_EQ(view_.nameList.entries[0].number, "1002.02");
    Window().Names().Move(1);
    EXPECT_TRUE(Window().Names().Take());
    EXPECT_EQ(Cell(1, column::kAccountName), "中国银行美元户");
    EXPECT_EQ(Cell(1, column::kAccountId),
              Value("select FAccountID from t_Account where FNumber = '1002.02'"));
}

}  // namespace
}  // namespace vicenter::center::test
