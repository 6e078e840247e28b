// The one list of faulty cells: what comes into it, how long it stays, and how one gets to a cell.

#include "center/faults/fault_list.h"

#include <filesystem>
#include <fstream>

#include "tests/center/center_fixture.h"
#include "tests/fakes/own_folder.h"

namespace vicenter::center::test {
namespace {

class Faults : public CenterTest {
  protected:
    void SetUp() override {
        set_.Answer("select * from t_Account where FNumber = '9999'", Rows({"FAccountID"}));
        set_.Answer("select FItemID from t_Settle where FName = '本票'", Rows({"FItemID"}));
        lines_["0"] = {Line(1, "收款"), Line(1, "收款"), Line(2, "付款")};
        Open();
        for (int c = 1; c <= kColumnCount; ++c)
            Grid().SetColumnHidden(c, Column(c).locked);
        Forget();
    }
    void Give(int row, int gridColumn, const std::string& text) {
        Window().Cells().MoveActiveCell({row, gridColumn});
        Window().Cells().CommitText({row, gridColumn}, text);
        Window().Cells().MoveActiveCell({row, gridColumn < 21 ? gridColumn + 1 : 1});
    }
    // Those that must be mended: "row,column value: reason"
    Texts Listed() { return Listed(false); }
    Texts Hints() { return Listed(true); }
    Texts Listed(bool hints) {
        Texts listed;
        for (const CellAddress& cell : Window().Faults().Cells()) {
            const Fault fault = Window().Faults().Describe(cell);
            if (fault.hint != hints) continue;
            listed.push_back(std::to_string(cell.row) + "," + std::to_string(cell.column) + " " +
                             fault.value + ": " + fault.reason + (fault.hidden ? " (hidden)" : ""));
        }
        return listed;
    }
};

TEST_F(Faults, AreEmptyAsLongAsEverythingIsSound) {
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_EQ(view_.status.faults, 0);
}

TEST_F(Faults, OfTypingStayUntilTheyAreMended) {
    Give(2, column::kAmount, "-9");
    EXPECT_THAT(Listed(), ElementsAre("2,20 -9: 不能小于0"));
    EXPECT_EQ(view_.status.faults, 1);
    Give(1, column::kAccountNumber, "9999");
    EXPECT_THAT(Listed(), ElementsAre("1,5 9999: 科目代码不存在", "2,20 -9: 不能小于0"))
        << "the name beside the code is no fault of its own";
    Give(2, column::kAmount, "9");
    Give(1, column::kAccountNumber, "1001");
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_EQ(view_.status.faults, 0);
}

TEST_F(Faults, OfAPasteAreAllThereHoweverMany) {
    Texts rows;
    std::string block;
    for (int i = 0; i < 40; ++i)
        block += "x" + std::to_string(i) + "\r\n";
    Window().Cells().PasteBlock({1, column::kAmount}, CopiedBlock(block));
    EXPECT_EQ(Window().Faults().Cells().size(), 40U);
    EXPECT_EQ(view_.status.faults, 40);
    EXPECT_EQ(Window().Faults().Describe({40, column::kAmount}).value, "x39");
    Window().Cells().Undo();
    EXPECT_THAT(Listed(), IsEmpty());
}

// What is too long for any cell stays outside; what is left out and what must be mended are two things.
TEST_F(Faults, ATextBeyondAllMeasureLeavesItsCellAsItWasAndIsToldOnce) {
    Window().Cells().PasteBlock({1, column::kRemark}, CopiedBlock(std::string(1U << 20U, 'x')));
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(Messages()[0],
                testing::StartsWith("以下 1 处内容没有取用，单元格保持原样：\r\n\r\n行1 备注：“xxx"));
    EXPECT_THAT(Messages()[0], testing::Not(HasSubstr("更正后才能保存")));
    EXPECT_THAT(Listed(), IsEmpty());
    surroundings_.messageBoxes->shown.clear();
    Window().Cells().PasteBlock({1, column::kAmount}, CopiedBlock("abc\t" + std::string(1U << 20U, 'x')));
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(
        Messages()[0],
        testing::AllOf(HasSubstr("以下 1 个单元格的内容不能使用，更正后才能保存：\r\n\r\n行1 金额：“abc”"),
                       HasSubstr("\r\n\r\n以下 1 处内容没有取用，单元格保持原样：\r\n\r\n行1 备注：“xxx")));
}

TEST_F(Faults, OfATemplateThatIsOpenedAreThere) {
    lines_["5"] = {Line(1, "收款", 1, "9999", "没有"), Line(1, "收款")};
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Listed(), ElementsAre("1,5 9999: 科目代码不存在"));
    Window().ShowStoredTemplate(0);
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Faults, OfARefusedSaveAreEverythingThatIsMissing) {
    Window().Cells().ClearCells({1, column::kExplanation});
    Window().Cells().ClearCells({2, column::kAccountName});
    Window().Cells().ClearCells({3, column::kDirection, 3, column::kDirection});
    EXPECT_THAT(Listed(), IsEmpty()) << "not yet: the user is at it";
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Listed(), ElementsAre("1,2 : 凭证模板 1 号第一行摘要为空，请录入摘要！",
                                      "2,5 : 科目编码(*) 不允许为空，请进行设置！",
                                      "2,6 : 科目名称(*) 不允许为空，请进行设置！",
                                      "3,3 : 借贷方向(*) 不允许为空，请进行设置！"));
    EXPECT_EQ(view_.status.faults, 4);
    Give(1, column::kExplanation, "收款");
    Give(3, column::kDirection, "借");
    EXPECT_THAT(Listed(), ElementsAre("2,5 : 科目编码(*) 不允许为空，请进行设置！",
                                      "2,6 : 科目名称(*) 不允许为空，请进行设置！"));
    Window().Cells().DeleteRows({2, 1});
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Faults, GoAlongWithTheirRows) {
    Give(2, column::kAmount, "-9");
    Window().Cells().InsertRows({1, 1, 2, 1});
    EXPECT_THAT(Listed(), ElementsAre("4,20 -9: 不能小于0"));
    Window().Cells().DeleteRows({1, 1});
    EXPECT_THAT(Listed(), ElementsAre("3,20 -9: 不能小于0"));
    Window().Cells().DeleteRows({3, 1});
    EXPECT_THAT(Listed(), IsEmpty());
    Window().Cells().Undo();
    EXPECT_THAT(Listed(), ElementsAre("3,20 -9: 不能小于0"));
}

TEST_F(Faults, OneGoesFromOneToTheNextRoundTheEnds) {
    Give(1, column::kAmount, "-1");
    Give(3, column::kAmount, "-3");
    Give(3, column::kQuantity, "x");
    Window().Cells().MoveActiveCell({1, 1});
    const auto at = [this](bool back) {
        view_.calls.clear();
        Window().Faults().GoToNext(back);
        EXPECT_THAT(view_.calls, testing::Contains("focus grid"));
        return Grid().ActiveCell();
    };
    EXPECT_EQ(at(false), (CellAddress{1, column::kAmount}));
    EXPECT_EQ(at(false), (CellAddress{3, column::kQuantity}));
    EXPECT_EQ(at(false), (CellAddress{3, column::kAmount}));
    EXPECT_EQ(at(false), (CellAddress{1, column::kAmount}));
    EXPECT_EQ(at(true), (CellAddress{3, column::kAmount}));
    EXPECT_EQ(at(true), (CellAddress{3, column::kQuantity}));
}

TEST_F(Faults, WithoutOneTheCursorStaysWhereItIs) {
    Window().Cells().MoveActiveCell({2, 2});
    Window().Faults().GoToNext(false);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, 2}));
}

TEST_F(Faults, InAHiddenColumnAreNamedAndShownWhenTheyAreGoneTo) {
    Give(2, column::kSettleName, "本票");
    Grid().SetColumnHidden(column::kSettleName, true);
    EXPECT_THAT(Listed(), ElementsAre("2,9 本票: 结算方式不存在 (hidden)"));
    Window().Cells().MoveActiveCell({2, 2});
    EXPECT_EQ(view_.status.hint, "隐藏列“结算方式”：结算方式不存在");
    Window().Cells().MoveActiveCell({1, 2});
    EXPECT_EQ(view_.status.hint, "");
    Window().Faults().GoTo({2, column::kSettleName});
    EXPECT_FALSE(Grid().Layout(column::kSettleName).hidden);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, column::kSettleName}));
}

// --- of lines that are in no grid

TEST_F(Faults, OfAWorkbookStayUntilItComesInOrBringsOthers) {
    const auto report = [this](const std::string& file, std::vector<store::LineFault> faults) {
        Window().ReportFaults({FaultSource::Workbook, file, std::move(faults)});
    };
    const auto reported = [this] {
        Texts texts;
        for (const ReportedFault& fault : Window().Faults().Reported())
            texts.push_back(fault.source + " " + std::to_string(fault.fault.row) + ": " + fault.fault.reason);
        return texts;
    };
    Give(2, column::kAmount, "-9");
    report("/a.xlsx", {{5, 6, "金额", "x", "必须是数字"}, {7, 0, "", "", "缺少必录列"}});
    report("/b.xls", {{0, 0, "", "", "文件已加密，无法打开！"}});
    EXPECT_THAT(reported(), ElementsAre("/a.xlsx 5: 必须是数字", "/a.xlsx 7: 缺少必录列",
                                        "/b.xls 0: 文件已加密，无法打开！"));
    EXPECT_EQ(view_.status.faults, 4) << "one of them is in a cell";
    EXPECT_EQ(view_.Count("show faults"), 2);
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(reported().size(), 3U) << "whatever is open";
    report("/a.xlsx", {{6, 6, "金额", "x", "必须是数字"}});
    EXPECT_THAT(reported(), ElementsAre("/b.xls 0: 文件已加密，无法打开！", "/a.xlsx 6: 必须是数字"));
    report("/a.xlsx", {});
    EXPECT_THAT(reported(), ElementsAre("/b.xls 0: 文件已加密，无法打开！"));
    EXPECT_EQ(view_.Count("show faults"), 3) << "nothing to be seen of a file without a fault";
    Window().Faults().DropReported({0});
    EXPECT_THAT(reported(), IsEmpty());
    EXPECT_EQ(view_.status.faults, 0);
}

TEST_F(Faults, OfAWorkbookAreMendedThere) {
    const fakes::OwnFolder folder;
    const ReportedFault fault{FaultSource::Workbook, (folder.Path() / "book.xlsx").string(), {}};
    std::ofstream(fault.source) << "x";
    Window().Faults().OpenReported(fault);
    EXPECT_THAT(surroundings_.processes->opened, ElementsAre(fault.source));
    EXPECT_THAT(Messages(), IsEmpty());
    surroundings_.processes->openError = 53;
    Window().Faults().OpenReported(fault);
    std::filesystem::remove(fault.source);
    Window().Faults().OpenReported(fault);
    EXPECT_EQ(surroundings_.processes->opened.size(), 2U);
    EXPECT_THAT(Messages(), ElementsAre("没有可以打开工作簿的程序，请自行打开后更正！\r\n\r\n" + fault.source,
                                        "工作簿已不存在，请更正后重新引入！\r\n\r\n" + fault.source));
}

TEST_F(Faults, OfVouchersLeadToTheTemplateThatWasToBeMade) {
    Window().Faults().OpenReported({FaultSource::Vouchers, "自定义模板(2)", {}});
    EXPECT_EQ(Window().TemplateId(), "8");
    EXPECT_EQ(Window().SelectedNode(), "detail-8");
    Window().Faults().OpenReported({FaultSource::Vouchers, "十月", {}});
    EXPECT_EQ(Window().TemplateId(), "8");
    EXPECT_THAT(Messages(), ElementsAre("模板“十月”没有生成，请更正凭证后重新生成！"));
}

// --- of templates that were checked

class CheckedTemplate : public Faults {
  protected:
    void SetUp() override {
        Faults::SetUp();
        name_ = TextOfNode("detail-5");
        lines_["5"] = {Line(1, "收款", 1, "9999", "没有"), Line(1, "收款")};
        Window().ReportFaults({FaultSource::Template,
                               name_,
                               {{1, column::kNo, "1 号", "", "提示：借贷金额不平", true},
                                {1, column::kAccountNumber, "科目代码(*)", "9999", "科目代码不存在"}}});
    }
    std::string TextOfNode(const std::string& key) {
        for (const TreeNode& node : view_.tree) {
            if (node.key == key) return node.text;
        }
        return {};
    }
    // Of its lines as they are stored.
    Texts Left(const std::string& source) {
        Texts reasons;
        for (const ReportedFault& fault : Window().Faults().Reported()) {
            if (fault.source == source && !fault.fault.hint) reasons.push_back(fault.fault.reason);
        }
        return reasons;
    }
    std::string name_;
};

TEST_F(CheckedTemplate, CountsItsHintsAsHints) {
    EXPECT_EQ(view_.status.faults, 1);
    EXPECT_EQ(view_.status.hints, 1);
}

TEST_F(CheckedTemplate, HasItsFaultsBackWhenItIsLeftAsItWas) {
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Left(name_), IsEmpty()) << "its cells tell them";
    EXPECT_THAT(Listed(), ElementsAre("1,5 9999: 科目代码不存在"));
    EXPECT_EQ(view_.status.faults, 1);
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_THAT(Left(name_), ElementsAre("科目代码不存在"));
    EXPECT_EQ(view_.status.faults, 1);
    EXPECT_EQ(view_.status.hints, 0) << "its numbers balance as they are stored now";
}

TEST_F(CheckedTemplate, SaysEachHintOnceWhetherItIsOpenOrNot) {
    lines_["5"][1][19] = 12;  // its amount, on one side alone
    const Texts unbalanced{"1,1 1: 提示：借贷金额不平"};
    EXPECT_EQ(view_.status.hints, 1) << "as it was checked";
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Hints(), unbalanced);
    EXPECT_TRUE(Window().Cells().IsHint({1, column::kNo}));
    EXPECT_EQ(Window().Cells().DescribeHint({1, column::kNo}), "借贷金额不平");
    EXPECT_EQ(view_.status.hints, 1);
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Hints(), unbalanced) << "read again";
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(Hints(), IsEmpty());
    EXPECT_EQ(view_.status.hints, 1);
    Window().Tree().NodeClick("detail-5");
    Give(1, column::kAmount, "12");
    Give(1, column::kDirection, "贷");
    EXPECT_THAT(Hints(), IsEmpty());
    EXPECT_EQ(view_.status.hints, 0);
    EXPECT_FALSE(Window().Cells().IsHint({1, column::kNo}));
}

TEST_F(Faults, OfWhatIsStoredAreWhatItLacks) {
    lines_["5"] = {Line(1, "")};
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Listed(), ElementsAre("1,2 : 凭证模板 1 号第一行摘要为空，请录入摘要！"));
}

TEST_F(CheckedTemplate, HasThemBackWhenWhatWasMendedIsNotSaved) {
    Window().Tree().NodeClick("detail-5");
    Give(1, column::kAccountNumber, "1001");
    EXPECT_THAT(Listed(), IsEmpty());
    surroundings_.messageBoxes->answers = {system::MessageResult::No};
    Window().Tree().NodeClick("detail-8");
    EXPECT_EQ(Window().TemplateId(), "8");
    EXPECT_THAT(Left(name_), ElementsAre("科目代码不存在"));
}

TEST_F(CheckedTemplate, HasThoseThatAreStoredWhenItIsReadAgain) {
    Window().Tree().NodeClick("detail-5");
    lines_["5"] = {Line(1, "收款"), Line(1, "收款", 1, "9999", "没有"), Line(2, "收款", 1, "9999", "没有")};
    Window().Tree().NodeClick("detail-5");
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(Left(name_), ElementsAre("科目代码不存在", "科目代码不存在"));
    lines_["5"] = {Line(1, "收款"), Line(1, "收款")};
    Window().Tree().NodeClick("detail-5");
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(Left(name_), IsEmpty()) << "mended meanwhile";
}

TEST_F(CheckedTemplate, TakesItsFaultsAlongWhenItIsDeleted) {
    Window().Tree().NodeClick("detail-5");
    surroundings_.messageBoxes->answers = {system::MessageResult::Yes};
    Window().Tree().DeleteSelected();
    ASSERT_EQ(TextOfNode("detail-5"), "") << "it is gone";
    EXPECT_THAT(Left(name_), IsEmpty());
}

TEST_F(CheckedTemplate, KeepsItsFaultsUnderANewName) {
    Window().Tree().NodeClick("detail-5");
    ASSERT_TRUE(Window().Tree().AfterLabelEdit("新名称"));
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(Left(name_), IsEmpty());
    EXPECT_THAT(Left("新名称"), ElementsAre("科目代码不存在"));
}

// --- the tree

TEST_F(Faults, TemplatesWithNumbersThatCannotBeUsedAreMarkedInTheTree) {
    set_.Answer("select distinct a.FID from t_VchTpControl", Rows({"FID"}, {{0}, {8}}));
    EXPECT_THAT(view_.unusable, IsEmpty());
    Window().Shown();
    EXPECT_THAT(view_.unusable, ElementsAre("detail-0", "detail-8"));
    EXPECT_THAT(Sent("select distinct a.FID"), ElementsAre(HasSubstr("b.FUserID = 7 or b.FID = 0")));
    set_.Answer("select distinct a.FID from t_VchTpControl", Rows({"FID"}, {{8}}));
    MakeDirty();
    Window().ToolClick("mnuSave");
    EXPECT_THAT(view_.unusable, ElementsAre("detail-8"));
    set_.Fail("select distinct a.FID from t_VchTpControl", "gone");
    Window().ToolClick("mnuImp");
    EXPECT_THAT(view_.unusable, ElementsAre("detail-8")) << "what is not known is not said";
}

}  // namespace
}  // namespace vicenter::center::test
