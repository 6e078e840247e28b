#include <QClipboard>

#include "platform/system/collation.h"
#include "tests/ui/rest.h"
#include "tests/ui/window_fixture.h"
#include "ui/grid/cell_editor.h"
#include "ui/look/twips.h"
#include "ui/window/window_factory.h"

namespace vicenter::ui {
namespace {

TEST_F(WindowTest, HasItsControlsByTheirNames) {
    Open();
    EXPECT_EQ(window->objectName(), "frmVICenter");
    EXPECT_EQ(window->parentWidget(), nullptr);
    EXPECT_FALSE(window->isModal());
    for (const char* name : {"BandToolBar", "trv", "picGrid", "itName", "vsEntrys", "progress", "lblprogress",
                             "txtItem", "cmdItem", "picItem"}) {
        EXPECT_NE(window->findChild<QWidget*>(name), nullptr) << name;
    }
    EXPECT_FALSE(window->findChild<QWidget*>("progress")->isVisible());
}

TEST_F(WindowTest, OpensOnTheStandardTemplateWithTheToolsOfTheBeginning) {
    Open();
    EXPECT_EQ(window->Tree().SelectedKey(), "detail-0");
    EXPECT_EQ(window->findChild<QLineEdit*>("itName")->text(), "标准模板");
    EXPECT_EQ(Text(1, 2), "收到货款");
    EXPECT_EQ(Text(2, 3), "贷");
    EXPECT_EQ(Grid().model()->rowCount(), 100);
    EXPECT_FALSE(Enabled("mnuDel"));
    EXPECT_FALSE(Enabled("mnuShare"));
    EXPECT_TRUE(Enabled("mnuQuit"));
    EXPECT_THAT(ledger->log->Calls(), Contains("WriteLog(K831000, 1, 凭证模板-打开)"));
}

TEST_F(WindowTest, LaysTreeAndPanelOutByTheRules) {
    Open();
    window->resize(1000, 600);
    QApplication::processEvents();
    const QSize inner = window->centralWidget()->size();
    const QRect tree = window->Tree().geometry();
    const QRect panel = window->findChild<QWidget*>("picGrid")->geometry();
    const auto px = [this](double twips) { return TwipsToPixels(twips, *window); };
    EXPECT_EQ(tree.left(), px(40));
    EXPECT_EQ(tree.top(), px(60));
    EXPECT_NEAR(tree.height(), inner.height() - px(60) - px(40), 1);
    EXPECT_NEAR(panel.left(), tree.left() + tree.width() + px(40), 1);
    EXPECT_NEAR(panel.right() + 1, inner.width() - px(40), 1);
    const QRect grid = Grid().geometry();
    const QRect name = window->findChild<QWidget*>("itName")->geometry();
    EXPECT_NEAR(grid.left(), px(20), 1);
    EXPECT_NEAR(grid.top(), name.bottom() + 1 + px(60), 1);
    EXPECT_NEAR(grid.bottom() + 1, panel.height() - px(20), 1);
    const int width = tree.width();
    window->resize(700, 400);
    QApplication::processEvents();
    EXPECT_EQ(window->Tree().width(), width);
}

TEST_F(WindowTest, SurvivesATinySize) {
    Open();
    for (const QSize size : {QSize(300, 6), QSize(1, 1), QSize(60, 40), QSize(900, 500)}) {
        window->resize(size);
        QApplication::processEvents();
        EXPECT_GE(window->Tree().height(), 0);
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(WindowTest, AClickOnANodeOpensItsTemplateAndReddensWhatIsFaulty) {
    Open();
    ClickNode("detail-5");
    EXPECT_EQ(window->findChild<QLineEdit*>("itName")->text(), "自定义模板(1)");
    EXPECT_EQ(Text(2, 5), "9999");
    const QModelIndex faulty = Grid().Model().IndexOf({2, 5});
    EXPECT_EQ(faulty.data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
    EXPECT_FALSE(faulty.data(Qt::ToolTipRole).toString().isEmpty());
    EXPECT_FALSE(Grid().Model().IndexOf({1, 5}).data(Qt::ForegroundRole).isValid());
    EXPECT_TRUE(Enabled("mnuDel"));
    EXPECT_TRUE(Enabled("mnuSave"));
    EXPECT_FALSE(Enabled("mnuAddRow"));
    ClickCell(2, 5);
    EXPECT_FALSE(window->findChild<QLabel*>("lblHint")->text().isEmpty());
}

TEST_F(WindowTest, AClickOnTheRootTurnsDeleteSaveAndExportOff) {
    Open();
    ClickNode("ROOT");
    EXPECT_FALSE(Enabled("mnuDel"));
    EXPECT_FALSE(Enabled("mnuSave"));
    EXPECT_FALSE(Enabled("mnuExp"));
}

TEST_F(WindowTest, RowCommandsFollowTheGridsFocusAndTreeCommandsTheTrees) {
    Open();
    ClickNode("detail-0");
    EXPECT_TRUE(Enabled("mnuNew"));
    EXPECT_TRUE(Enabled("mnuDel"));
    ClickCell(1, 2);
    EXPECT_TRUE(Enabled("mnuAddRow"));
    EXPECT_TRUE(Enabled("mnuDelRow"));
    EXPECT_FALSE(Enabled("mnuNew"));
    EXPECT_FALSE(Enabled("mnuDel"));
    Key(Qt::Key_F2);
    EXPECT_TRUE(Enabled("mnuAddRow")) << "an editor in the grid is the grid";
    Key(Qt::Key_Escape);
    window->Tree().setFocus();
    EXPECT_FALSE(Enabled("mnuAddRow"));
    EXPECT_TRUE(Enabled("mnuNew"));
}

TEST_F(WindowTest, ATypedLineIsResolvedAndSavedAndClean) {
    Open();
    ClickCell(5, 1);
    Type("3");
    Key(Qt::Key_Tab);
    Type("rent");
    Key(Qt::Key_Tab);
    Type("j");
    Key(Qt::Key_Tab);
    Type("1001");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(5, 6), "库存现金");
    EXPECT_TRUE(window->Presenter().IsDirty());
    EXPECT_EQ(window->Presenter().RowCount(), 5);
    ClickTool("mnuSave");
    const std::string batch = ledger->Sent("delete t_VchTemplateEntry");
    EXPECT_THAT(batch, HasSubstr("values(0,5,3,'rent',1,7,'1001','库存现金'"));
    EXPECT_THAT(Messages(), ElementsAre("模板 标准模板 保存成功！"));
    EXPECT_FALSE(window->Presenter().IsDirty());
}

TEST_F(WindowTest, SavingTakesWhatIsStillBeingTyped) {
    Open();
    ClickCell(1, 2);
    Type("typed");
    EXPECT_NE(qobject_cast<CellEditor*>(Focused()), nullptr);
    ClickTool("mnuSave");
    EXPECT_THAT(ledger->Sent("delete t_VchTemplateEntry"), HasSubstr("'typed'"));
}

TEST_F(WindowTest, AFaultyLineIsToldAndTheCursorGoesThere) {
    Open();
    ClickCell(3, 5);
    Key(Qt::Key_Delete);
    ClickTool("mnuSave");
    EXPECT_THAT(Messages(), ElementsAre("行3 科目编码(*) 不允许为空，请进行设置！"));
    EXPECT_EQ(Grid().Model().AddressOf(Grid().currentIndex()), (center::CellAddress{3, 5}));
    EXPECT_TRUE(ledger->Sent("delete t_VchTemplateEntry").empty());
}

TEST_F(WindowTest, RowsAreInsertedAndDeletedAtTheCursor) {
    Open();
    ClickCell(2, 2);
    ClickTool("mnuAddRow");
    EXPECT_EQ(window->Presenter().RowCount(), 5);
    EXPECT_EQ(Text(2, 2), "");
    EXPECT_EQ(Text(3, 2), "收到货款");
    EXPECT_EQ(Grid().Model().AddressOf(Grid().currentIndex()).row, 2);
    ClickTool("mnuDelRow");
    EXPECT_EQ(window->Presenter().RowCount(), 4);
    EXPECT_EQ(Text(2, 2), "收到货款");
}

TEST_F(WindowTest, AGapIsRefusedAndTheCursorGoesToTheFirstBlankRow) {
    Open();
    ClickCell(12, 2);
    EXPECT_THAT(Messages(), ElementsAre("请连续录入凭证模板分录！"));
    EXPECT_EQ(Grid().Model().AddressOf(Grid().currentIndex()).row, 5);
}

TEST_F(WindowTest, ADoubleClickRenamesATemplate) {
    Open();
    DoubleClickNode("detail-5");
    RenameTo("Rent", "5");
    EXPECT_EQ(window->findChild<QLineEdit*>("itName")->text(), "Rent");
}

TEST_F(WindowTest, ARefusedNameIsToldOnceAndTheLabelGoesBack) {
    Open();
    DoubleClickNode("detail-5");
    qobject_cast<QLineEdit*>(Focused())->clear();
    Key(Qt::Key_Return);
    EXPECT_THAT(Messages(), ElementsAre("名称不允许为空，修改失败！"));
    EXPECT_EQ(window->Tree().FindNode("detail-5")->text(0), "自定义模板(1)");
    EXPECT_TRUE(ledger->Sent("update t_VchTemplate set").empty());
}

TEST_F(WindowTest, TheStandardTemplateAndTheRootAreNotRenamed) {
    Open();
    DoubleClickNode("detail-0");
    EXPECT_FALSE(window->Tree().IsEditingLabel());
    DoubleClickNode("ROOT");
    EXPECT_FALSE(window->Tree().IsEditingLabel());
    EXPECT_TRUE(Messages().empty());
}

TEST_F(WindowTest, NewAddsASelectedNodeWhoseLabelIsBeingEdited) {
    Open();
    window->Tree().setFocus();
    ClickTool("mnuNew");
    EXPECT_EQ(window->Tree().SelectedKey(), "detail-9");
    EXPECT_EQ(window->Tree().FindNode("detail-9")->text(0), "自定义模板(1)");
    EXPECT_TRUE(window->Tree().IsEditingLabel());
    EXPECT_EQ(window->Presenter().TemplateId(), "9");
    EXPECT_THAT(ledger->log->Calls(), Contains("WriteLog(K831000, 3, 凭证模板-新增模板成功)"));
}

TEST_F(WindowTest, DeleteAsksAndRemovesTheNodeAndOpensItsNeighbour) {
    Open();
    ClickNode("detail-5");
    ledger->surroundings.messageBoxes->answers = {MessageResult::Yes};
    ClickTool("mnuDel");
    EXPECT_THAT(Messages(), ElementsAre("模板删除将无法还原，是否删除？\r\n\r\n凭证模板：自定义模板(1)"));
    EXPECT_EQ(window->Tree().FindNode("detail-5"), nullptr);
    EXPECT_EQ(window->Tree().SelectedKey(), "detail-6");
    EXPECT_EQ(window->Presenter().TemplateId(), "6");
}

TEST_F(WindowTest, LeavingAChangedTemplateAsksAndNoDropsTheChanges) {
    Open();
    ClickCell(1, 2);
    Type("x");
    Key(Qt::Key_Return);
    ledger->surroundings.messageBoxes->answers = {MessageResult::No};
    ClickNode("detail-5");
    EXPECT_THAT(Messages(), ElementsAre("当前凭证模板修改后未保存，您是否进行保存?"));
    EXPECT_EQ(window->Presenter().TemplateId(), "5");
    EXPECT_FALSE(window->Presenter().IsDirty());
}

TEST_F(WindowTest, WithoutTheRightNothingCanBeChanged) {
    ledger = nullptr;
    ledger = std::make_unique<ScriptedLedger>(false);
    Open();
    ClickCell(1, 2);
    Type("x");
    Key(Qt::Key_F2);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Text(1, 2), "收到货款");
    window->Tree().setFocus();
    ClickTool("mnuNew");
    EXPECT_THAT(Messages(), ElementsAre("对不起，你没有相应的权限！"));
    EXPECT_THAT(ledger->log->Calls(), Contains("WriteLog(K831000, 1, 凭证模板-新增模板)"));
    EXPECT_TRUE(ledger->Sent("insert into t_VchTemplate(").find("@MaxFID") == std::string::npos);
    DoubleClickNode("detail-5");
    EXPECT_FALSE(window->Tree().IsEditingLabel());
}

TEST_F(WindowTest, F1OpensHelpEvenWhileACellIsEditedAndDoesNotReachIt) {
    Open();
    ClickCell(1, 2);
    Type("ab");
    const QPointer<QWidget> editor = Focused();
    Key(Qt::Key_F1);
    ASSERT_EQ(ledger->surroundings.processes->started.size(), 1U);
    EXPECT_THAT(ledger->surroundings.processes->started[0], HasSubstr("hh.exe "));
    EXPECT_THAT(ledger->surroundings.processes->started[0], HasSubstr("VelaV12.chm::/凭证模板.htm"));
    ASSERT_FALSE(editor.isNull());
    EXPECT_EQ(qobject_cast<CellEditor*>(editor)->text(), "ab");
    window->Tree().setFocus();
    Key(Qt::Key_F1);
    EXPECT_EQ(ledger->surroundings.processes->started.size(), 2U);
}

TEST_F(WindowTest, ClosingByTheFrameAsksNothingAndStoresTheLayoutAsLeft) {
    Open();
    ClickCell(1, 2);
    Type("lost");
    Key(Qt::Key_Return);
    Grid().horizontalHeader()->resizeSection(1, 250);
    ledger->set.Forget();
    Close();
    EXPECT_TRUE(window.isNull()) << "a closed window deletes itself";
    EXPECT_TRUE(Messages().empty());
    const std::string saved = ledger->Sent("update t_VchTpProfile");
    EXPECT_THAT(saved, HasSubstr("1|0|1170,2|0|3750,3|0|1150,4|1|800"));
    EXPECT_THAT(saved, HasSubstr(" where FUserID = 16394"));
    EXPECT_EQ(ledger->log->Calls().back(), "WriteLog(K831000, 2, 凭证模板-关闭)");
}

TEST_F(WindowTest, QuitAsksFirstAndStaysWhenSavingFails) {
    Open();
    ClickCell(1, 5);
    Key(Qt::Key_Delete);
    ledger->surroundings.messageBoxes->answers = {MessageResult::Yes};
    ClickTool("mnuQuit");
    ASSERT_FALSE(window.isNull());
    EXPECT_TRUE(window->isVisible());
    ledger->surroundings.messageBoxes->answers = {MessageResult::No};
    ClickTool("mnuQuit");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
}

TEST_F(WindowTest, AppliesTheStoredColumnsOnOpening) {
    ledger->profile =
        "1|0|1500,2|0|2820,3|0|1150,4|1|800,5|0|1455,6|0|1455,7|1|850,8|1|800,9|0|1400,10|1|1250,11|1|1800,"
        "12|1|800,13|1|1000,14|1|1600,15|1|1700,16|1|800,17|1|1250,18|1|1600,19|1|1700,20|0|1700,21|0|4005";
    Open();
    EXPECT_EQ(Grid().columnWidth(0), TwipsToPixels(1500, *window));
    EXPECT_TRUE(Grid().isColumnHidden(6));
    EXPECT_FALSE(Grid().isColumnHidden(8));
    EXPECT_TRUE(Grid().isColumnHidden(3));
}

TEST_F(WindowTest, ALargerBillFontMakesTextAndRowsTaller) {
    Open();
    const int rows = Grid().rowHeight(0);
    const int header = Grid().horizontalHeader()->height();
    Close();
    ledger->fontSize = "14";
    Open();
    EXPECT_DOUBLE_EQ(Grid().font().pointSizeF(), 14);
    EXPECT_DOUBLE_EQ(window->Tree().font().pointSizeF(), 14);
    EXPECT_DOUBLE_EQ(window->findChild<QLineEdit*>("itName")->font().pointSizeF(), 14);
    EXPECT_GT(Grid().rowHeight(0), rows);
    EXPECT_GT(Grid().horizontalHeader()->height(), header);
    EXPECT_GE(Grid().rowHeight(0), QFontInfo(Grid().font()).pixelSize());
}

TEST_F(WindowTest, TwoWindowsLiveSideBySideAndApart) {
    Open();
    const QPointer<VICenterWindow> first = window;
    Open();
    ClickNode("detail-5");
    EXPECT_EQ(first->Presenter().TemplateId(), "0");
    EXPECT_EQ(window->Presenter().TemplateId(), "5");
    first->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(WindowTest, TheFactoryOpensAWindowThatOwnsItself) {
    QtWindowFactory factory;
    factory.OpenVICenter();
    QPointer<VICenterWindow> opened;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* candidate = qobject_cast<VICenterWindow*>(widget)) opened = candidate;
    }
    ASSERT_FALSE(opened.isNull());
    EXPECT_TRUE(opened->isVisible());
    opened->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(opened.isNull());
}

TEST_F(WindowTest, PastedCellsThatCannotBeTakenAreListed) {
    Open();
    ClickCell(5, 1);
    QApplication::clipboard()->setText("x\trent\n7\tA'B\n");
    Key(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(Messages()[0], HasSubstr("行5 模板编号(*)"));
    EXPECT_THAT(Messages()[0], HasSubstr("行6 摘要(*)"));
    EXPECT_EQ(Text(5, 2), "rent");
    EXPECT_EQ(Text(6, 1), "7");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Text(5, 2), "");
    EXPECT_EQ(Text(6, 1), "");
}

// Says which commands were run.
class RecordingCommands : public center::TemplateCommands {
  public:
    void Import(center::CommandTarget&) override { run.emplace_back("import"); }
    void ImportFiles(center::CommandTarget&, const std::vector<std::string>&) override {
        run.emplace_back("file");
    }
    void ImportTidily(center::CommandTarget&, const std::string& fileName) override {
        run.push_back("tidily " + fileName);
    }
    void SaveMarkedCopy(center::CommandTarget&, const std::string& fileName) override {
        run.push_back("marked " + fileName);
    }
    void Export(center::CommandTarget&) override { run.emplace_back("export"); }
    void UploadToCloud(center::CommandTarget&) override { run.emplace_back("upload"); }
    void GenerateFromVouchers(center::CommandTarget&) override { run.emplace_back("generate"); }
    std::vector<std::string> run;
};

TEST_F(WindowTest, F5GeneratesFromVouchersAndTakesWhatIsBeingTypedFirst) {
    const auto commands = std::make_shared<RecordingCommands>();
    window = new VICenterWindow(commands);
    window->Open();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    ClickCell(1, 2);
    Key(Qt::Key_F5);
    EXPECT_THAT(commands->run, ElementsAre("generate"));
    EXPECT_THAT(ledger->log->Calls(), Contains("WriteLog(K831000, 1, 凭证模板-通过凭证生成模板)"));
    EXPECT_THAT(Messages(), ::testing::IsEmpty());
    Type("typed");
    ledger->surroundings.messageBoxes->answers = {MessageResult::No};
    Key(Qt::Key_F5);
    EXPECT_THAT(Messages(), ElementsAre("当前凭证模板修改后未保存，您是否进行保存?"));
    EXPECT_EQ(commands->run.size(), 2U);
    window->Tree().setFocus();
    Key(Qt::Key_F5);
    EXPECT_EQ(commands->run.size(), 3U);
}

TEST_F(WindowTest, ReadsTheNameListsWhileTheUserRestsOnACell) {
    int read = 0;
    std::string version = "1";
    const auto list = fakes::RegisterScripted("VelaGLNameListLib.GLNameList");
    list->On("ListVersion", [&](automation::Arguments&) { return automation::Variant(version); });
    list->On("GetNameList", [&](automation::Arguments&) {
        ++read;
        return automation::Variant(fakes::Rows({"FID", "FNumber", "FName", "FDetail"}));
    });
    Open();
    // Read again while the initials' table comes from the disk.
    const auto restUntil = [&](int lists) {
        return QTest::qWaitFor([&] {
            if (read < lists) Rest(*window, "listTimer");
            return read == lists;
        });
    };
    EXPECT_TRUE(restUntil(2)) << "explanations and accounts";
    EXPECT_TRUE(system::PinyinLoading::IsOver()) << "so that the lists' initials keep nobody waiting";
    version = "2";
    ClickCell(2, 5);
    EXPECT_TRUE(restUntil(4));
    Close();
    automation::ClassRegistry::Process().Unregister("VelaGLNameListLib.GLNameList");
}

TEST_F(WindowTest, CtrlSSavesAndCtrlNMakesATemplateWhereverTheirToolsAreOn) {
    Open();
    ClickNode("detail-0");
    ClickCell(1, 2);
    Type("typed");
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(ledger->Sent("delete t_VchTemplateEntry"), HasSubstr("'typed'"));
    Key(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(window->Tree().FindNode("detail-9"), nullptr) << "the tool is off once the tree is left";
    window->Tree().setFocus();
    Key(Qt::Key_N, Qt::ControlModifier);
    EXPECT_NE(window->Tree().FindNode("detail-9"), nullptr);
}

TEST_F(WindowTest, ANewTemplateThatHasBeenNamedIsReadyForItsLines) {
    Open();
    window->Tree().setFocus();
    Key(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Type("Rent");
    Key(Qt::Key_Return);
    EXPECT_EQ(Focused(), &Grid());
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{1, center::column::kNo}));
    Type("7");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(1, center::column::kNo), "7");
}

TEST_F(WindowTest, AnotherNameForATemplateLeavesTheKeyboardInTheTree) {
    Open();
    ClickNode("detail-5");
    Key(Qt::Key_F2);
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Type("Rent");
    Key(Qt::Key_Return);
    EXPECT_EQ(window->Tree().FindNode("detail-5")->text(0), "Rent");
    EXPECT_EQ(Focused(), &window->Tree());
}

TEST_F(WindowTest, ProgressIsShownInItsFrame) {
    Open();
    window->Presenter().ShowProgress({true, "正在执行凭证模板引出，请稍后..."});
    EXPECT_TRUE(window->findChild<QWidget*>("progress")->isVisible());
    EXPECT_EQ(window->findChild<QLabel*>("lblprogress")->text(), "正在执行凭证模板引出，请稍后...");
    window->Presenter().ShowProgress({false, ""});
    EXPECT_FALSE(window->findChild<QWidget*>("progress")->isVisible());
}

}  // namespace
}  // namespace vicenter::ui
