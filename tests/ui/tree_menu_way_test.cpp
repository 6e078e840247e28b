// What the tree's menu has beside the commands of the band, by real mouse events on the demo ledger: what a
// save and a deletion replaced is compared and brought back, and all templates are checked.

#include "tests/ui/tree_menu_fixture.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TreeMenuWayTest : public TreeMenuTest {};

TEST_F(TreeMenuWayTest, ASavedOverLineIsComparedAndComesBack) {
    OpenTemplate("日常费用");
    const std::vector<std::string> before = Contents();
    TypeInto(1, column::kExplanation, "typed over");
    ClickTool("mnuSave");
    ASSERT_NE(Contents(), before);
    TakeMessages();
    ChooseInMenu(KeyOf("日常费用"), "mnuHistory", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "历史版本 - 日常费用");
        EXPECT_EQ(Rows(dialog, "versions", 1), QStringList{"保存|1 林晓岚|11|日常费用"});
        EXPECT_EQ(Rows(dialog, "changes", 0), QStringList{"修改|1|1|摘要|报销办公费|typed over"});
        EXPECT_EQ(dialog.findChild<QLabel*>("note")->text(), "此版本之后：新增 0 行，删除 0 行，修改 1 行。");
        Answer(system::MessageResult::Yes);
        Press(dialog, "cmdRestore");
        EXPECT_FALSE(dialog.isVisible());
    });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(Contents(), before);
    EXPECT_FALSE(window->Presenter().IsDirty());
    EXPECT_EQ(TakeMessages().back(), "模板 日常费用 恢复成功！");
    // What was there is a version as well: nothing is lost by a restoration.
    ChooseInMenu(KeyOf("日常费用"), "mnuHistory", [&](QDialog& dialog) {
        EXPECT_EQ(Rows(dialog, "versions", 1),
                  (QStringList{"恢复|1 林晓岚|11|日常费用", "保存|1 林晓岚|11|日常费用"}));
        auto* versions = dialog.findChild<QTableWidget*>("versions");
        QTest::mouseClick(versions->viewport(), Qt::LeftButton, {},
                          versions->visualItemRect(versions->item(1, 1)).center());
        EXPECT_EQ(dialog.findChild<QLabel*>("note")->text(), "与现在的分录相同。");
        EXPECT_THAT(Rows(dialog, "changes", 0), IsEmpty());
    });
}

TEST_F(TreeMenuWayTest, AmountsOfAVersionReadAsInTheGrid) {
    OpenTemplate("日常费用");
    window->Presenter().Grid().SetColumnHidden(column::kAmount, false);
    TypeInto(3, column::kAmount, "12345.6");
    ClickTool("mnuSave");
    ChooseInMenu(KeyOf("日常费用"), "mnuHistory", [&](QDialog& dialog) {
        EXPECT_EQ(Rows(dialog, "changes", 0), QStringList{"修改|2|3|金额|2,380.50|12,345.60"});
    });
    EXPECT_TRUE(dialogShown_);
}

TEST_F(TreeMenuWayTest, AVersionBecomesANewTemplateUnderTheNameThatIsTyped) {
    OpenTemplate("日常费用");
    TypeInto(1, column::kExplanation, "typed over");
    ClickTool("mnuSave");
    ChooseInMenu(KeyOf("日常费用"), "mnuHistory", [&](QDialog& dialog) {
        auto* name = dialog.findChild<QLineEdit*>("newName");
        EXPECT_EQ(name->text(), "日常费用(恢复)");
        name->setText("日常费用");
        TakeMessages();
        Press(dialog, "cmdRestoreAsNew");
        EXPECT_THAT(TakeMessages(), ElementsAre("模板名称不允许重复，恢复失败！"));
        EXPECT_TRUE(dialog.isVisible());
        name->setText("旧的");
        Press(dialog, "cmdRestoreAsNew");
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(window->Presenter().TemplateName(), "旧的");
    EXPECT_EQ(Text(1, column::kExplanation), "报销办公费");
    EXPECT_EQ(window->Presenter().RowCount(), 11);
}

TEST_F(TreeMenuWayTest, ADeletedTemplateComesBackFromTheRootsMenu) {
    OpenTemplate("日常费用");
    const std::vector<std::string> before = Contents();
    Answer(system::MessageResult::Yes);
    window->Tree().setFocus();
    Key(Qt::Key_Delete);
    EXPECT_EQ(KeyOf("日常费用"), "");
    TakeMessages();
    ChooseInMenu("ROOT", "mnuDeletedTemplates", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "已删除的模板");
        EXPECT_EQ(Rows(dialog, "versions", 1), QStringList{"删除|1 林晓岚|11|日常费用"});
        EXPECT_EQ(dialog.findChild<QLabel*>("note")->text(), "删除时有 11 行分录。");
        EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdRestore")->isVisible());
        EXPECT_EQ(dialog.findChild<QLineEdit*>("newName")->text(), "日常费用");
        Press(dialog, "cmdRestoreAsNew");
    });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(window->Presenter().TemplateName(), "日常费用");
    EXPECT_EQ(Contents(), before);
}

TEST_F(TreeMenuWayTest, UnsavedTypingIsAskedAboutBeforeAVersionTakesItsPlace) {
    OpenTemplate("日常费用");
    TypeInto(1, column::kExplanation, "first");
    ClickTool("mnuSave");
    TypeInto(1, column::kExplanation, "second");
    TakeMessages();
    Answer(system::MessageResult::Yes);
    ChooseInMenu(KeyOf("日常费用"), "mnuHistory", [&](QDialog& dialog) {
        EXPECT_EQ(Rows(dialog, "versions", 1),
                  (QStringList{"保存|1 林晓岚|11|日常费用", "保存|1 林晓岚|11|日常费用"}));
        EXPECT_EQ(Rows(dialog, "changes", 0), QStringList{"修改|1|1|摘要|first|second"});
    });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(TakeMessages().front(), "当前凭证模板修改后未保存，您是否进行保存?");
    EXPECT_EQ(Text(1, column::kExplanation), "second");
}

TEST_F(TreeMenuWayTest, WithoutVersionsOrTablesThereIsAMessageAndNoDialog) {
    OpenTemplate("销售与收款");
    ChooseInMenu(KeyOf("销售与收款"), "mnuHistory", [](QDialog&) {});
    EXPECT_THAT(TakeMessages(), ElementsAre("模板 销售与收款 还没有历史版本。"));
    ChooseInMenu("ROOT", "mnuDeletedTemplates", [](QDialog&) {});
    EXPECT_THAT(TakeMessages(), ElementsAre("没有可以恢复的已删除模板。"));
    session->Execute("drop table t_VchTpHistory");
    ClickNode(KeyOf("销售与收款"));
    ChooseInMenu(KeyOf("销售与收款"), "mnuHistory", [](QDialog&) {});
    EXPECT_THAT(TakeMessages(), ElementsAre("当前账套没有开启模板历史。请由管理员执行 vicenter account-set "
                                            "upgrade 开启！"));
    EXPECT_FALSE(dialogShown_);
}

TEST_F(TreeMenuWayTest, WhoMayOnlyLookSeesVersionsAndCannotRestore) {
    OpenTemplate("标准模板");
    TypeInto(1, column::kExplanation, "typed over");
    ClickTool("mnuSave");
    Close();
    Enter(3);
    Open();
    ClickNode("detail-0");
    ChooseInMenu("detail-0", "mnuHistory", [&](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QTableWidget*>("versions")->rowCount(), 1);
        EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdRestore")->isEnabled());
        EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdRestoreAsNew")->isEnabled());
    });
    EXPECT_TRUE(dialogShown_);
}

TEST_F(TreeMenuWayTest, AllTemplatesAreCheckedAndAFaultLeadsToItsCell) {
    session->Execute("update t_Account set FDetail = 0 where FNumber = '1001'");
    session->Execute("update t_VchTemplateEntry set FAmount = 7 where FID = 2 and FEntryID = 1");
    OpenTemplate("标准模板");
    TakeMessages();
    ChooseInMenu("ROOT", "mnuCheckTemplates", [](QDialog&) {});
    const std::vector<std::string> told = TakeMessages();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told.front(), ::testing::StartsWith("检查了 4 个模板：异常 "));
    EXPECT_THAT(told.front(), ::testing::EndsWith("处。详见异常列表。"));
    center::FaultActions& list = window->Presenter().Faults();
    const auto find = [&](const std::string& source, const std::string& reason) {
        for (const center::ReportedFault& fault : list.Reported()) {
            if (fault.source == source && fault.fault.reason == reason) return fault;
        }
        ADD_FAILURE() << source << " " << reason;
        return center::ReportedFault{};
    };
    const center::ReportedFault fault = find("日常费用", "不是明细科目，请选择明细科目");
    EXPECT_EQ(fault.fault.header, "科目代码(*)");
    EXPECT_EQ(find("销售与收款", "提示：借贷金额不平").fault.header, "模板编号(*)");
    EXPECT_EQ(find("销售与收款", "提示：借贷金额不平").fault.value, "1");
    EXPECT_TRUE(window->findChild<QWidget*>("faultPanel")->isVisible());
    list.OpenReported(fault);
    EXPECT_EQ(window->Presenter().TemplateName(), "日常费用");
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kAccountNumber}));
    // The cells of the open template tell their faults themselves: none stands there twice.
    for (const center::ReportedFault& left : list.Reported())
        EXPECT_NE(left.source, "日常费用") << left.fault.reason;
    EXPECT_FALSE(list.Cells().empty());
    // What has been mended since goes with the next check.
    session->Execute("update t_Account set FDetail = 1 where FNumber = '1001'");
    const std::size_t before = list.Reported().size();
    ChooseInMenu("ROOT", "mnuCheckTemplates", [](QDialog&) {});
    EXPECT_LT(list.Reported().size(), before);
    session->Execute("delete from t_VchTemplate where FID = 2");
    TakeMessages();
    window->Presenter().RebuildTreeAndSelect(0);
    list.OpenReported(find("销售与收款", "提示：借贷金额不平"));
    EXPECT_EQ(TakeMessages().back(), "模板“销售与收款”已不存在！");
}

}  // namespace
}  // namespace vicenter::ui
