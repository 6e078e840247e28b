// A template under a new name, and rows of one template behind those of another, on the demo set.

#include <gmock/gmock.h>

#include "center/tree/tree_filter.h"
#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SaveAs : public WindowOnSet {
  protected:
    void SetUp() override {
        WindowOnSet::SetUp();
        OpenNamed("日常费用");
    }
    void OpenNamed(const std::string& name) { Window().Tree().NodeClick(KeyOf(name)); }
    std::string KeyOf(const std::string& name) {
        for (const TreeNode& node : Window().Nodes()) {
            if (node.text == name) return node.key;
        }
        return {};
    }
    void Choose(const std::string& item) {
        for (const TreeMenuItem& offered : Window().Tree().MenuItems()) {
            if (offered.name == item) return offered.run();
        }
        ADD_FAILURE() << item;
    }
    std::string LinesOf(const std::string& name) {
        return Value(
            "select count(*) as n from t_VchTemplateEntry e inner join t_VchTemplate t on t.FID = e.FID "
            "where t.FName = '" +
            name + "' and t.FUserID = 1");
    }
    Texts Contents() {
        Texts texts;
        for (int row = 1; row <= Window().RowCount(); ++row) {
            for (int c = 1; c <= kColumnCount; ++c)
                texts.push_back(Cell(row, c));
        }
        return texts;
    }
};

TEST_F(SaveAs, ACopyHoldsEveryColumnAndItsNumbersCanBeUsed) {
    const Texts before = Contents();
    const std::string usable = Value("select sum(FIsCanUsed) as n from t_VchTpControl where FID = 1");
    Choose("mnuDuplicate");
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("模板 日常费用(副本) 保存成功！")));
    EXPECT_EQ(Window().TemplateName(), "日常费用(副本)");
    EXPECT_EQ(Contents(), before);
    EXPECT_EQ(Value("select sum(FIsCanUsed) as n from t_VchTpControl where FID = " + Window().TemplateId()),
              usable);
    EXPECT_EQ(LinesOf("日常费用"), "11");
    OpenNamed("日常费用");
    Choose("mnuDuplicate");
    EXPECT_EQ(Window().TemplateName(), "日常费用(副本2)");
    EXPECT_EQ(Value("select FDescription from t_Log where FDescription like '凭证模板-另存%2) 成功'"),
              "凭证模板-另存模板 日常费用(副本2) 成功");
}

TEST_F(SaveAs, WhatIsTypedGoesIntoTheNewTemplateAlone) {
    Type(1, column::kExplanation, "typed");
    view_.onAskName = [&](const std::string& caption, const std::string& proposed) {
        EXPECT_EQ(caption, "另存为");
        EXPECT_EQ(proposed, "日常费用(副本)");
        return std::optional<std::string>(" 新的 ");
    };
    Window().Tree().SaveAs();
    EXPECT_EQ(Window().TemplateName(), "新的");
    EXPECT_EQ(Cell(1, column::kExplanation), "typed");
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Value("select FExp from t_VchTemplateEntry where FID = 1 and FEntryID = 1"), "报销办公费");
    // And nothing is left to be asked about.
    OpenNamed("日常费用");
    EXPECT_EQ(Cell(1, column::kExplanation), "报销办公费");
}

TEST_F(SaveAs, ANameThatIsTakenOrNoneLeavesEverythingAsItIs) {
    Type(1, column::kExplanation, "typed");
    view_.onAskName = [](auto&, auto&) { return std::optional<std::string>("销售与收款"); };
    Window().Tree().SaveAs();
    EXPECT_EQ(TakeMessages().back(), "模板名称不允许重复，保存失败！");
    view_.onAskName = [](auto&, auto&) { return std::optional<std::string>(); };
    Window().Tree().SaveAs();
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(Window().TemplateName(), "日常费用");
    EXPECT_TRUE(Window().IsDirty());
    // Lines that cannot be saved are saved under no name.
    view_.onAskName = [](auto&, auto&) { return std::optional<std::string>("新的"); };
    Type(1, column::kExplanation, "");
    Window().Tree().SaveAs();
    EXPECT_THAT(TakeMessages().back(), HasSubstr("号第一行摘要为空，请录入摘要！"));
    EXPECT_EQ(LinesOf("新的"), "0");
}

TEST_F(SaveAs, DroppedRowsComeBehindTheOthersUnderFreeNumbersWithAllColumns) {
    const auto rows = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}, {10, 11}}));
    ASSERT_TRUE(rows.has_value());
    ASSERT_EQ(LinesOf("销售与收款"), "8");
    Answer(MessageResult::Yes);
    TakeMessages();
    Window().Tree().DropRows(KeyOf("销售与收款"), *rows);
    const Texts told = TakeMessages();
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told.front(), "将 4 行分录复制到模板 销售与收款 的末尾（编号 1→4），请确认？");
    EXPECT_EQ(LinesOf("销售与收款"), "12");
    EXPECT_EQ(Window().TemplateName(), "日常费用");
    OpenNamed("销售与收款");
    EXPECT_EQ(Cell(9, column::kNo), "4");
    EXPECT_EQ(Cell(9, column::kItems), "D02");
    EXPECT_EQ(Cell(9, column::kRemark), "附发票");
    EXPECT_EQ(Cell(11, column::kNo), "5");
    EXPECT_EQ(Cell(12, column::kSettleName), "电汇");
    EXPECT_NE(Cell(12, column::kSettleId), "");
    // The version before is kept.
    EXPECT_EQ(Value("select FLines from t_VchTpHistory where FID = 2"), "8");
}

// Somebody else saves the template while the question stands on the screen.
TEST_F(SaveAs, DroppedRowsNeverCoverWhatWasSavedMeanwhile) {
    class Slow : public system::MessageBoxes {
      public:
        explicit Slow(host::HostSession& other) : other_(other) {}
        MessageResult Show(const std::string& text, system::MessageButtons buttons, system::MessageIcon,
                           const std::string&) override {
            told.push_back(text);
            if (buttons != system::MessageButtons::YesNo) return MessageResult::Ok;
            other_.Execute(
                "update t_VchTemplateEntry set FExp = 'by another' where FID = 2 and FEntryID = 1");
            return MessageResult::Yes;
        }
        Texts told;

      private:
        host::HostSession& other_;
    };
    const auto rows = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}}));
    const auto boxes = std::make_shared<Slow>(*session_);
    system::Surroundings replaced = system::Surroundings::Current();
    replaced.messageBoxes = boxes;
    const system::SurroundingsScope scope(replaced);
    Window().Tree().DropRows(KeyOf("销售与收款"), *rows);
    EXPECT_EQ(boxes->told.back(), "模板 销售与收款 已在别处被修改，没有复制，账套保持原样！");
    EXPECT_EQ(LinesOf("销售与收款"), "8");
    EXPECT_EQ(Value("select FExp from t_VchTemplateEntry where FID = 2 and FEntryID = 1"), "by another");
}

// An id is given again: another template of the user's stands behind the node by then.
TEST_F(SaveAs, DroppedRowsReachNoOtherTemplateOfThatId) {
    const auto rows = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}}));
    session_->Execute("update t_VchTemplate set FName = 'another' where FID = 2");
    Answer(MessageResult::Yes);
    Window().Tree().DropRows(KeyOf("销售与收款"), *rows);
    EXPECT_THAT(TakeMessages(),
                ElementsAre("模板 销售与收款 已在别处被删除或改名，没有复制，账套保持原样！"));
    EXPECT_EQ(LinesOf("another"), "8");
}

TEST_F(SaveAs, RowsThatAreRefusedOrDeclinedChangeNothing) {
    const auto rows = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}}));
    Answer(MessageResult::No);
    Window().Tree().DropRows(KeyOf("销售与收款"), *rows);
    EXPECT_EQ(LinesOf("销售与收款"), "8");
    TakeMessages();
    Window().Tree().DropRows("ROOT", *rows);
    Window().Tree().DropRows(KeyOf("日常费用"), *rows);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    // A text that its column has refused.
    Window().Cells().CommitText({1, column::kFileCount}, "many");
    const auto refused = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}}));
    Window().Tree().DropRows(KeyOf("销售与收款"), *refused);
    EXPECT_EQ(TakeMessages().back(), "所选的行中有未更正的内容，没有复制！");
    session_->Execute("delete from t_VchTemplate where FID = 2");
    Window().Tree().DropRows(KeyOf("销售与收款"), *rows);
    EXPECT_EQ(TakeMessages().back(), "模板 销售与收款 已在别处被删除，没有复制，账套保持原样！");
}

// The second line of its number has no explanation, and is the first of its number there.
TEST_F(SaveAs, RowsThatCannotBeSavedThereAreRefusedBeforeAnythingIsAsked) {
    const auto rows = Window().Cells().CopyBlock(CellSelection::Rows({{2, 2}}));
    Window().Tree().DropRows(KeyOf("销售与收款"), *rows);
    const Texts told = TakeMessages();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0],
                HasSubstr("模板 销售与收款 不能保存，没有复制：\r\n\r\n行9 凭证模板 4 号第一行摘要为空"));
    EXPECT_EQ(LinesOf("销售与收款"), "8");
}

TEST_F(SaveAs, TheFilterIsOfferedFromTenTemplatesOnAndFitsByNameAndInitials) {
    EXPECT_FALSE(Window().Tree().OffersFilter());
    while (Window().Nodes().size() < 10) {
        OpenNamed("日常费用");
        Choose("mnuDuplicate");
        EXPECT_FALSE(Window().Tree().OffersFilter());
    }
    OpenNamed("日常费用");
    Choose("mnuDuplicate");
    EXPECT_TRUE(Window().Tree().OffersFilter());
    OpenNamed("标准模板");
    EXPECT_THAT(Window().Tree().Fitting("销售"), ElementsAre("ROOT", "detail-0", KeyOf("销售与收款")));
    EXPECT_THAT(Window().Tree().Fitting(" XSYSK"), ElementsAre("ROOT", "detail-0", KeyOf("销售与收款")));
    EXPECT_THAT(Window().Tree().Fitting("没有"), ElementsAre("ROOT", "detail-0"));
}

}  // namespace
}  // namespace vicenter::center::test
