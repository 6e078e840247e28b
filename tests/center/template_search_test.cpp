// The search over all templates and the replacement in one: what fits, where it leads, and what comes of a
// replaced text, on the demo set.

#include "center/search/template_search.h"

#include <gmock/gmock.h>

#include "center/search/grid_replace.h"
#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Search : public WindowOnSet {
  protected:
    SearchActions& Actions() { return window_->Search(); }
    // "template:row:column" of every hit.
    Texts Hits(const SearchWish& wish) {
        Actions().Find(wish);
        Texts hits;
        for (const SearchHit& hit : Actions().Hits())
            hits.push_back(hit.templateName + ":" + std::to_string(hit.row) + ":" +
                           std::to_string(hit.column));
        return hits;
    }
    void OpenNamed(const std::string& name) {
        for (const TreeNode& node : Window().Nodes()) {
            if (node.text == name) Window().Tree().NodeClick(node.key);
        }
        ASSERT_EQ(Window().TemplateName(), name);
    }
};

TEST_F(Search, FindsByEveryKindAndOnlyInTheUsersTemplates) {
    EXPECT_THAT(Hits({"手续费", "", "", ""}), ElementsAre("标准模板:3:2"));
    EXPECT_THAT(Hits({"", "", "d02", ""}), ElementsAre("日常费用:1:11", "日常费用:6:11"));
    EXPECT_THAT(Hits({"", "", "", "1,260"}), ElementsAre("日常费用:8:20", "日常费用:9:20"));
    EXPECT_THAT(Hits({"", "", "", "２３００－2380.5"}),
                ElementsAre("日常费用:3:20", "日常费用:4:20", "销售与收款:8:20"));
    EXPECT_THAT(Hits({"", "1001", "", "860"}), ElementsAre("日常费用:2:5"));
    EXPECT_THAT(Hits({"采购乌龙茶", "", "", ""}), IsEmpty());
    EXPECT_EQ(TakeMessages().back(), "没有查找到对应的分录，请重新录入查找条件！");
}

TEST_F(Search, AnAccountStandsForThoseBelowItAndNotForItsNeighbours) {
    for (const std::string& hit : Hits({"", "5602", "", ""}))
        EXPECT_THAT(hit, HasSubstr("日常费用:"));
    EXPECT_EQ(Actions().Hits().size(), 4U);
    EXPECT_THAT(Hits({"", "5602.0", "", ""}), IsEmpty());
    EXPECT_EQ(Hits({"", "库存现金", "", ""}).size(), Hits({"", "1001", "", ""}).size());
}

TEST_F(Search, WhatCannotBeSearchedForIsToldAndClearsTheList) {
    ASSERT_FALSE(Hits({"", "1001", "", ""}).empty());
    EXPECT_THAT(Hits({" ", "", "", ""}), IsEmpty());
    EXPECT_EQ(TakeMessages().back(), "请输入查找内容！");
    EXPECT_THAT(Hits({"", "", "", "many"}), IsEmpty());
    EXPECT_EQ(TakeMessages().back(), "金额应为数字或范围，例如 860 或 100-200！");
    EXPECT_THAT(Hits({"", "", "", "900-800"}), IsEmpty());
    EXPECT_EQ(TakeMessages().back(), "金额范围应从小到大，例如 100-200！");
    EXPECT_FALSE(Hits({"", "", "", "860-860"}).empty());
}

TEST_F(Search, AHitOpensItsTemplateAtTheLineAndShowsAHiddenColumn) {
    ASSERT_EQ(Hits({"", "", "E005", ""}).size(), 1U);
    ASSERT_TRUE(Window().Grid().Layout(column::kItems).hidden);
    Actions().Open(0);
    EXPECT_EQ(Window().TemplateName(), "日常费用");
    EXPECT_EQ(Window().Grid().ActiveCell(), (CellAddress{8, column::kItems}));
    EXPECT_FALSE(Window().Grid().Layout(column::kItems).hidden);
    EXPECT_EQ(view_.Count("focus grid"), 1);
    EXPECT_EQ(Actions().Note(), "共 1 个模板中的 1 行");
}

TEST_F(Search, WhatIsTypedAndNotSavedIsFoundAndStaysTyped) {
    OpenNamed("日常费用");
    Type(1, column::kExplanation, "typed here");
    Window().Cells().MoveActiveCell({5, 1});
    EXPECT_THAT(Hits({"TYPED", "", "", ""}), ElementsAre("日常费用:1:2"));
    Actions().Open(0);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(Window().Grid().ActiveCell(), (CellAddress{1, column::kExplanation}));
}

TEST_F(Search, ALineThatMovedIsFoundAndOneThatIsGoneIsTold) {
    Hits({"", "", "E005", ""});
    session_->Execute("update t_VchTemplateEntry set FNo = 9 where FID = 1 and FNo = 4");
    Actions().Open(0);
    EXPECT_EQ(TakeMessages().back(), "该分录已被修改或删除，请重新查找！");
    Hits({"", "", "E005", ""});
    Window().Grid().RemoveRows(1, 2);
    Actions().Open(0);
    EXPECT_EQ(Window().Grid().ActiveCell(), (CellAddress{8, column::kItems}));
    session_->Execute("delete from t_VchTemplate where FID = 2");
    Answer(MessageResult::No);
    Hits({"", "", "", "3900"});
    OpenNamed("标准模板");
    Window().RebuildTreeAndSelect(0);
    TakeMessages();
    Actions().Open(0);
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

// --- replaced in the grid

class InGrid : public Search {
  protected:
    void SetUp() override {
        Search::SetUp();
        OpenNamed("日常费用");
    }
};

TEST_F(InGrid, TheNumberOfCellsIsToldAndAllOfThemAreOneStepOfUndo) {
    bool shown = false;
    view_.onGridReplace = [&](GridReplace& replace) {
        shown = true;
        EXPECT_EQ(replace.Note(), "");
        replace.Wish({0, "报销", "支付", false});
        EXPECT_EQ(replace.Note(), "共 2 处");
        replace.ReplaceAll();
        EXPECT_EQ(replace.Note(), "共 0 处");
    };
    Actions().ReplaceInGrid();
    ASSERT_TRUE(shown);
    EXPECT_EQ(TakeMessages().back(), "已替换 2 处，按 Ctrl+Z 可以一次撤消。");
    EXPECT_EQ(Cell(1, column::kExplanation), "支付办公费");
    EXPECT_EQ(Cell(3, column::kExplanation), "支付差旅费");
    Window().Cells().Undo();
    EXPECT_EQ(Cell(1, column::kExplanation), "报销办公费");
    EXPECT_EQ(Cell(3, column::kExplanation), "报销差旅费");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(InGrid, AReplacedCodeBringsItsNameAndAFaultTurnsRed) {
    view_.onGridReplace = [&](GridReplace& replace) {
        replace.Wish({column::kAccountNumber, "1001", "1002.05", true});
        replace.ReplaceAll();
        replace.Wish({column::kAccountNumber, "1002.01", "1002", true});
        replace.ReplaceAll();
    };
    Actions().ReplaceInGrid();
    EXPECT_EQ(Cell(2, column::kAccountName), "建设银行一般户");
    EXPECT_EQ(Cell(2, column::kAccountId),
              Value("select FAccountID from t_Account where FNumber = '1002.05'"));
    EXPECT_FALSE(IsRed(2, column::kAccountNumber));
    EXPECT_TRUE(IsRed(7, column::kAccountNumber));
}

TEST_F(InGrid, OneAfterTheOtherRoundTheEndAndOnlyWhatTheColumnTakes) {
    std::vector<CellAddress> places;
    view_.onGridReplace = [&](GridReplace& replace) {
        replace.Wish({0, "费", "款", false});
        const int all = replace.Count();
        for (int i = 0; i <= all; ++i) {
            replace.Next();
            places.push_back(Window().Grid().ActiveCell());
        }
        EXPECT_EQ(places.front(), places.back());
        replace.ReplaceOne();
        EXPECT_EQ(replace.Count(), all - 1);
        EXPECT_EQ(Window().Grid().ActiveCell(), places[1]);
        TakeMessages();
        replace.Wish({column::kFileCount, "3", "many", true});
        replace.ReplaceAll();
    };
    Actions().ReplaceInGrid();
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("以下 1 处没有替换，保持原样：\r\n\r\n行1 附件数：")));
    EXPECT_EQ(Cell(1, column::kFileCount), "3");
    EXPECT_EQ(Window().Grid().Refusal(1, column::kFileCount), TextVerdict::Taken);
}

}  // namespace
}  // namespace vicenter::center::test
