// Selecting, cutting, pasting and typing in the demo ledger's templates, in the columns that a new user sees,
// by real keys and mouse events and with a clipboard as other programs fill it.

#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>

#include "tests/ui/demo_set_fixture.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class SelectionWayTest : public DemoSetTest {
  protected:
    SelectionWayTest() { Open(); }

    void OpenTemplate(const std::string& name) {
        for (const center::TreeNode& node : window->Presenter().Nodes()) {
            if (node.text == name) ClickNode(node.key);
        }
        ASSERT_EQ(window->Presenter().TemplateName(), name);
        window->Grid().setFocus();
    }
    void Press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
        QApplication::processEvents();
    }
    void Click(int row, int gridColumn, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(window->Grid().viewport(), Qt::LeftButton, modifiers, Middle(row, gridColumn));
    }
    QPoint Middle(int row, int gridColumn) {
        return window->Grid().visualRect(window->Grid().Model().IndexOf({row, gridColumn})).center();
    }
    void ClickRowHeader(int row, Qt::KeyboardModifiers modifiers = {}) {
        QHeaderView* header = window->Grid().verticalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers,
                          {header->width() / 2, header->sectionViewportPosition(row - 1) + 4});
    }
    // What another program puts there.
    void Copied(const QString& text) {
        auto* data = new QMimeData;
        data->setText(text);
        QApplication::clipboard()->setMimeData(data);
    }
    void ShowColumn(int gridColumn) { window->Presenter().Grid().SetColumnHidden(gridColumn, false); }
    std::string Hint() { return window->findChild<QLabel*>("lblHint")->text().toStdString(); }
    std::int32_t Color(int row, int gridColumn) {
        return window->Presenter().Grid().Look(row, gridColumn).foreColor;
    }
    // One cell of what the account set holds, by line.
    std::string Stored(const char* field, int line) {
        const ado::RecordsetRef rows =
            session->Execute("select " + std::string(field) + " from t_VchTemplateEntry where FID = " +
                             window->Presenter().TemplateId() + " and FEntryID = " + std::to_string(line));
        return rows->RecordCount() == 1 ? rows->Value(0).ToText() : "no line";
    }
    int Rows() { return window->Presenter().RowCount(); }
};

TEST_F(SelectionWayTest, CuttingShownCellsAndPastingThemBackLosesNothingThatIsHidden) {
    OpenTemplate("日常费用");
    ShowColumn(column::kAmount);
    const std::vector<std::string> before = Contents();
    ASSERT_NE(Text(1, column::kAmount), "");
    ASSERT_NE(Text(1, column::kItems), "");
    window->Presenter().Grid().SetColumnHidden(column::kAmount, true);
    Click(1, column::kNo);
    Press(Qt::Key_End, Qt::ShiftModifier);
    Press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Text(1, column::kNo), "");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), before);
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Contents(), before);
}

TEST_F(SelectionWayTest, WholeRowsMoveToAnotherTemplateWithTheirHiddenColumns) {
    OpenTemplate("日常费用");
    std::vector<std::string> line;
    for (int c = 1; c <= center::kColumnCount; ++c)
        line.push_back(Text(1, c));
    ASSERT_NE(Text(1, column::kAmount), "");
    ClickRowHeader(1);
    Press(Qt::Key_C, Qt::ControlModifier);
    const QString text = QApplication::clipboard()->text();
    EXPECT_TRUE(text.startsWith(QStringLiteral("模板编号(*)\t摘要(*)\t借/贷(*)\t科目代码(*)\t")));
    EXPECT_EQ(text.count(QStringLiteral("\r\n")), 2) << "the row below its headings";
    window->Tree().setFocus();
    ClickTool("mnuNew");
    Key(Qt::Key_Escape);
    window->Grid().setFocus();
    Click(1, column::kExplanation);
    Press(Qt::Key_V, Qt::ControlModifier);
    for (int c = 1; c <= center::kColumnCount; ++c)
        EXPECT_EQ(Text(1, c), line[static_cast<std::size_t>(c - 1)]) << c;
    ClickTool("mnuSave");
    EXPECT_EQ(Stored("FItemsInfo", 1), line[column::kItems - 1]);
    EXPECT_EQ(Text(1, column::kAmount), line[column::kAmount - 1]);
}

TEST_F(SelectionWayTest, RowsPickedWithCtrlAreDeletedAndNoneBetweenThem) {
    OpenTemplate("日常费用");
    const int lines = Rows();
    const std::string third = Text(3, column::kExplanation);
    const std::string fourth = Text(4, column::kAccountNumber);
    const std::string sixth = Text(6, column::kAccountNumber);
    Click(2, column::kExplanation);
    Click(5, column::kExplanation, Qt::ControlModifier);
    Press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(Rows(), lines - 2);
    EXPECT_EQ(Text(2, column::kExplanation), third);
    EXPECT_EQ(Text(3, column::kAccountNumber), fourth);
    EXPECT_EQ(Text(4, column::kAccountNumber), sixth);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Rows(), lines);
}

TEST_F(SelectionWayTest, PastingOneValueFillsThePickedCellsOnly) {
    OpenTemplate("日常费用");
    Click(1, column::kRemark);
    Click(3, column::kRemark, Qt::ControlModifier);
    Copied("同一个备注\r\n");
    const std::string between = Text(2, column::kRemark);
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Text(1, column::kRemark), "同一个备注");
    EXPECT_EQ(Text(2, column::kRemark), between);
    EXPECT_EQ(Text(3, column::kRemark), "同一个备注");
}

TEST_F(SelectionWayTest, ABlockThatHasNoPlaceIsRefusedAndOneWithHeadersFindsItsColumns) {
    OpenTemplate("日常费用");
    const int lines = Rows();
    const std::vector<std::string> before = Contents();
    QStringList row(QStringList(20, "1"));
    Click(lines + 1, column::kNo);
    Copied(row.join('\t') + "\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), before);
    EXPECT_THAT(
        TakeMessages(),
        ElementsAre(StartsWith("所粘贴的内容有 20 列，从此处起只显示 8 列，有 12 列没有位置，没有粘贴！")));
    Copied("模板编号\t摘要\t借/贷\t科目代码\t金额\r\n9\tx\t借\t1001\t1,234.50\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Rows(), lines + 1);
    EXPECT_EQ(Text(lines + 1, column::kAmount), "1234.50");
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

TEST_F(SelectionWayTest, NamesThatArePastedHaveTheirIdsBehindThem) {
    OpenTemplate("日常费用");
    const int line = Rows() + 1;
    Click(line, column::kNo);
    Copied(
        "模板编号\t摘要\t借/贷\t科目代码\t结算方式\t币别\t计量单位\r\n"
        "9\tx\t借\t1405.01\t\t\t千克\r\n"
        "9\t\t贷\t1002.02\t电汇\t美元\t\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    // Over another name, whose id would be the wrong one; and one that nobody knows.
    ShowColumn(column::kSettleName);
    ASSERT_EQ(Text(7, column::kSettleName), "转账支票");
    Click(7, column::kSettleName);
    Copied("电汇\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(Text(9, column::kSettleName), "信用卡");
    Click(9, column::kSettleName);
    Copied("以物易物\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    TakeMessages();
    ClickTool("mnuSave");
    EXPECT_EQ(Stored("FUnitID", line), "1");
    EXPECT_EQ(Stored("FSettleID", line + 1), "3");
    EXPECT_EQ(Stored("FCurrencyID", line + 1), "2");
    EXPECT_EQ(Stored("FSettleID", 7), "3");
    EXPECT_EQ(Stored("FSettleName", 9), "以物易物");
    EXPECT_EQ(Stored("FSettleID", 9), "0");
}

TEST_F(SelectionWayTest, AmountsOfASpreadsheetComeInAndRefusedOnesStayUntilTheyAreMended) {
    OpenTemplate("日常费用");
    ShowColumn(column::kAmount);
    Click(1, column::kNo);
    Press(Qt::Key_End);
    Press(Qt::Key_Backtab, Qt::ShiftModifier);
    ASSERT_EQ(window->Grid().Model().AddressOf(window->Grid().currentIndex()).column, column::kAmount);
    Copied("1,234.50\r\n ¥ 860.00 \r\n(5.00)\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Text(1, column::kAmount), "1234.50");
    EXPECT_EQ(Text(2, column::kAmount), "860.00");
    EXPECT_EQ(Text(3, column::kAmount), "(5.00)");
    EXPECT_EQ(Color(3, column::kAmount), center::color::kRed);
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("行3 金额：“(5.00)” 不能小于0")));
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(TakeMessages(), ElementsAre("行3 金额 不能小于0，请进行更正！"));
    EXPECT_TRUE(window->Presenter().IsDirty());
    Type("5");
    Key(Qt::Key_Return);
    EXPECT_EQ(Color(3, column::kAmount), center::color::kBlack);
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(window->Presenter().IsDirty());
}

TEST_F(SelectionWayTest, ATypedNumberIsTakenOrRefusedAsAWholeWithItsReasonAtTheCell) {
    OpenTemplate("日常费用");
    ShowColumn(column::kAmount);
    Click(1, column::kFileCount);
    Type("5e3");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(1, column::kFileCount), "5e3");
    EXPECT_EQ(Color(1, column::kFileCount), center::color::kRed);
    EXPECT_EQ(Hint(), "");
    Key(Qt::Key_Left);
    EXPECT_EQ(Hint(), "必须是不小于0的整数");
    EXPECT_EQ(window->Grid().Model().IndexOf({1, column::kFileCount}).data(Qt::ToolTipRole).toString(),
              "必须是不小于0的整数");
    Type("53");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(1, column::kFileCount), "53");
    EXPECT_EQ(Color(1, column::kFileCount), center::color::kBlack);
    Press(Qt::Key_End);
    Press(Qt::Key_Backtab, Qt::ShiftModifier);
    Type("=100+200");
    Key(Qt::Key_Down);
    EXPECT_EQ(Text(1, column::kAmount), "300");
    Type("-9");
    Key(Qt::Key_Down);
    EXPECT_EQ(Text(2, column::kAmount), "-9");
    Key(Qt::Key_Up);
    EXPECT_EQ(Hint(), "不能小于0");
    Type("860*3");
    Key(Qt::Key_Up);
    EXPECT_EQ(Text(2, column::kAmount), "2580");
    EXPECT_EQ(Hint(), "");
}

TEST_F(SelectionWayTest, ADroppedKeyIsToldUntilTypingGoesOn) {
    OpenTemplate("日常费用");
    Click(1, column::kExplanation);
    Type("a'");
    EXPECT_EQ(Hint(), "不能包含单引号、竖线或控制字符");
    Type("b");
    EXPECT_EQ(Hint(), "");
    Type("|");
    EXPECT_NE(Hint(), "");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Hint(), "") << "another cell has nothing to do with it";
}

TEST_F(SelectionWayTest, NoMessageStandsInTheWayOfASelection) {
    OpenTemplate("日常费用");
    const int below = Rows() + 4;
    Click(2, column::kExplanation);
    for (int row = 2; row < below; ++row)
        Press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(window->Grid().SelectedBlock(), (center::CellRange{2, 2, below, 2}));
    Click(2, column::kExplanation);
    QTest::mousePress(window->Grid().viewport(), Qt::LeftButton, {}, Middle(2, column::kExplanation));
    for (int row = 3; row <= below; ++row) {
        const QPoint at = Middle(row, column::kExplanation);
        QMouseEvent move(QEvent::MouseMove, at, window->Grid().viewport()->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(window->Grid().viewport(), &move);
    }
    QTest::mouseRelease(window->Grid().viewport(), Qt::LeftButton, {}, Middle(below, column::kExplanation));
    EXPECT_EQ(window->Grid().SelectedBlock(), (center::CellRange{2, 2, below, 2}));
    ClickRowHeader(below);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    const std::vector<std::string> before = Contents();
    Type("7");
    EXPECT_THAT(TakeMessages(), ElementsAre("请连续录入凭证模板分录！"));
    EXPECT_EQ(window->Grid().Model().AddressOf(window->Grid().currentIndex()).row, Rows() + 1);
    Click(below, column::kExplanation);
    EXPECT_THAT(TakeMessages(), ElementsAre("请连续录入凭证模板分录！"));
    Click(3, column::kExplanation);
    EXPECT_EQ(window->Grid().SelectedBlock(), (center::CellRange{3, 2, 3, 2}));
    EXPECT_EQ(Contents(), before);
}

TEST_F(SelectionWayTest, TheCursorFollowsItsLineThroughASave) {
    OpenTemplate("日常费用");
    const int last = Rows();
    const std::string account = Text(last, column::kAccountNumber);
    Click(last, column::kNo);
    Type("0");
    Key(Qt::Key_Return);
    Click(last, column::kExplanation);
    Type("moved");
    Key(Qt::Key_Tab);
    Press(Qt::Key_S, Qt::ControlModifier);
    const center::CellAddress at = window->Grid().Model().AddressOf(window->Grid().currentIndex());
    EXPECT_EQ(at.row, 1);
    EXPECT_EQ(Text(at.row, column::kExplanation), "moved");
    EXPECT_EQ(Text(at.row, column::kAccountNumber), account);
}

TEST_F(SelectionWayTest, ATemplateThatWasEmptiedAsksBeforeItIsSaved) {
    OpenTemplate("日常费用");
    Click(1, column::kNo);
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    EXPECT_EQ(Rows(), 0);
    surroundings.messageBoxes->answers = {system::MessageResult::Cancel};
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(TakeMessages(), ElementsAre("当前模板模板信息为空，您确认要保存么？"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_GT(Rows(), 0);
}

TEST_F(SelectionWayTest, SelectedAmountsAreSummedWithoutThoseBetween) {
    OpenTemplate("日常费用");
    ShowColumn(column::kAmount);
    const auto type = [this](int row, const char* amount) {
        window->Presenter().Cells().CommitText({row, column::kAmount}, amount);
    };
    type(1, "30000");
    type(2, "1900");
    type(3, "33900");
    window->Presenter().Cells().CommitText({1, column::kDirection}, "借");
    window->Presenter().Cells().CommitText({3, column::kDirection}, "借");
    Click(1, column::kNo);
    Press(Qt::Key_End);
    window->Grid().scrollTo(window->Grid().Model().IndexOf({1, column::kAmount}));
    Click(1, column::kAmount);
    Click(3, column::kAmount, Qt::ControlModifier);
    EXPECT_EQ(window->findChild<QLabel*>("lblSelection")->text(), "选中合计 63,900.00");
    window->Presenter().Cells().CommitText({3, column::kDirection}, "贷");
    Click(3, column::kAmount, Qt::ControlModifier);
    Click(3, column::kAmount, Qt::ControlModifier);
    EXPECT_EQ(window->findChild<QLabel*>("lblSelection")->text(), "选中合计 借 30,000.00　贷 33,900.00");
}

TEST_F(SelectionWayTest, AClickOnAHeaderSelectsItsColumnAsFarAsThereAreLines) {
    OpenTemplate("日常费用");
    const int lines = Rows();
    QHeaderView* header = window->Grid().horizontalHeader();
    const auto clickHeader = [&](int gridColumn, Qt::KeyboardModifiers modifiers) {
        const int section = gridColumn - 1;
        QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers,
                          {header->sectionViewportPosition(section) + header->sectionSize(section) / 2,
                           header->height() / 2});
    };
    clickHeader(column::kExplanation, {});
    const center::CellRange one = window->Grid().SelectedBlock();
    EXPECT_EQ(one.firstColumn, column::kExplanation);
    EXPECT_EQ(one.lastColumn, column::kExplanation);
    EXPECT_EQ(one.firstRow, 1);
    EXPECT_FALSE(window->Grid().Selected().wholeRows);
    EXPECT_THAT(TakeMessages(), IsEmpty()) << "nobody goes to a row below the lines";
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().count(QStringLiteral("\r\n")), lines);
    clickHeader(column::kAccountNumber, Qt::ShiftModifier);
    EXPECT_EQ(window->Grid().SelectedBlock().lastColumn, column::kAccountNumber);
    clickHeader(column::kRemark, {});
    Copied("同一个备注");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Rows(), lines);
    for (int row = 1; row <= lines; ++row)
        EXPECT_EQ(Text(row, column::kRemark), "同一个备注") << row;
    Press(Qt::Key_Delete);
    EXPECT_EQ(Text(lines, column::kRemark), "");
    EXPECT_EQ(Rows(), lines);
}

// A key that is held with another makes a command of it: known or not, it types nothing.
TEST_F(SelectionWayTest, AltAndCtrlTypeNothingInTheGridAndInItsEditor) {
    OpenTemplate("日常费用");
    const std::vector<std::string> before = Contents();
    const auto hold = [](char key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        QApplication::processEvents();
    };
    const auto editor = [this] { return window->Grid().findChild<QLineEdit*>("cellEditor"); };
    for (const int c : {column::kNo, column::kExplanation, column::kDirection, column::kAccountNumber}) {
        Click(1, c);
        for (const char key : {'x', 'j', '7', '\'', '|'}) {
            hold(key, Qt::AltModifier);
            hold(key, Qt::MetaModifier);
        }
        for (const char key : {'g', 'm', '7'})
            hold(key, Qt::ControlModifier);
        EXPECT_FALSE(window->Grid().IsEditing()) << c;
    }
    EXPECT_EQ(Contents(), before);
    for (const int c : {column::kNo, column::kExplanation, column::kAccountNumber}) {
        SCOPED_TRACE(c);
        Click(1, c);
        Type("12");
        ASSERT_NE(editor(), nullptr);
        for (const char key : {'x', '7', '\'', '|'}) {
            hold(key, Qt::AltModifier);
            hold(key, Qt::MetaModifier);
        }
        EXPECT_EQ(editor()->text(), "12");
        Press(Qt::Key_A, Qt::ControlModifier);
        EXPECT_EQ(editor()->selectedText(), "12");
        Press(Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), "12");
        Press(Qt::Key_End);
        Press(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(editor()->text(), "1212");
        // As AltGr comes from some systems: it types, and the column's rule holds.
        for (const char key : {'\'', '|'})
            hold(key, Qt::ControlModifier | Qt::AltModifier);
        EXPECT_EQ(editor()->text(), "1212");
        hold('3', Qt::ControlModifier | Qt::AltModifier);
        EXPECT_EQ(editor()->text(), "12123");
        Press(Qt::Key_Escape);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_EQ(Contents(), before);
}

TEST_F(SelectionWayTest, ALabelTakesACopiedCellWithoutItsLineEnd) {
    window->Tree().setFocus();
    ClickTool("mnuNew");
    Copied("报销办公费\r\n");
    Press(Qt::Key_V, Qt::ControlModifier);
    Key(Qt::Key_Return);
    EXPECT_EQ(window->Presenter().TemplateName(), "报销办公费");
    EXPECT_EQ(Number("select count(*) from t_VchTemplate where FName = '报销办公费'"), 1);
}

}  // namespace
}  // namespace vicenter::ui
