// Jobs in one template, counted: patterns typed, pasted, copied, looked at.

#include <array>

#include "tests/ui/jobs_fixture.h"

namespace vicenter::ui {
namespace {

struct Pattern {
    const char* code;  // of the explanation
    const char* explanation;
    const char* debit;
    const char* debitName;
    const char* items;
    const char* credit;
    const char* creditName;
    const char* settle;  // its code; empty for none
    const char* settleName;
    const char* amount;
};

constexpr std::array<Pattern, 12> kPatterns{{
    {"009", "报销办公费", "5602.03", "办公费", "D02", "1001", "库存现金", "", "", "860"},
    {"010", "报销差旅费", "5602.05", "差旅费", "D01,E001", "1001", "库存现金", "", "", "2380.5"},
    {"008", "支付房租水电费", "5602.04", "房租水电费", "D01", "1002.01", "工商银行基本户", "JF02", "转账支票",
     "18000"},
    {"012", "支付银行手续费", "5603.03", "手续费", "", "1002.01", "工商银行基本户", "JF07", "网上银行", "45"},
    {"007", "提取备用金", "1001", "库存现金", "", "1002.01", "工商银行基本户", "JF01", "现金支票", "5000"},
    {"011", "支付运输费", "5601.03", "运输费", "S005", "1001", "库存现金", "", "", "640"},
    {"005", "支付货款", "2202.01", "应付货款", "S001", "1002.05", "建设银行一般户", "JF03", "电汇", "40680"},
    {"006", "支付工资", "2211.01", "工资", "D02", "1002.01", "工商银行基本户", "JF07", "网上银行", "21000"},
    {"013", "缴纳增值税", "2221.02", "未交增值税", "", "1002.01", "工商银行基本户", "JF07", "网上银行",
     "8600"},
    {"001", "收到货款", "1002.01", "工商银行基本户", "", "1122.01", "国内客户", "", "", "33900"},
    {"003", "收到银行存款利息", "1002.01", "工商银行基本户", "", "5603.02", "利息收入", "", "", "128.4"},
    {"019", "计提折旧", "5602.02", "折旧费", "D01", "1602", "累计折旧", "", "", "5200"},
}};

class JobsOfEntryTest : public JobsTest {
  protected:
    void EnterPatterns() {
        int number = 0;
        for (const Pattern& pattern : kPatterns) {
            const std::string no = std::to_string(++number);
            Row debit{{column::kNo, {no, no}},
                      {column::kExplanation, {pattern.code, pattern.explanation}},
                      {column::kDirection, {"j", "借"}},
                      {column::kAccountNumber, {pattern.debit, pattern.debit}},
                      {column::kAmount, {pattern.amount, pattern.amount}}};
            if (*pattern.items != '\0') debit[column::kItems] = {pattern.items, pattern.items};
            Row credit{{column::kNo, {no, no}},
                       {column::kExplanation, {pattern.code, pattern.explanation}},
                       {column::kDirection, {"d", "贷"}},
                       {column::kAccountNumber, {pattern.credit, pattern.credit}},
                       {column::kAmount, {pattern.amount, pattern.amount}}};
            if (*pattern.settle != '\0') credit[column::kSettleName] = {pattern.settle, pattern.settleName};
            EnterRow(debit);
            EnterRow(credit);
        }
        Save();
    }
    void CheckPatterns() {
        ASSERT_EQ(window->Presenter().RowCount(), 24);
        for (int row = 1; row <= 24; ++row) {
            const Pattern& pattern = kPatterns[static_cast<std::size_t>((row - 1) / 2)];
            const bool debit = row % 2 == 1;
            EXPECT_EQ(Text(row, column::kNo), std::to_string((row + 1) / 2));
            EXPECT_EQ(Text(row, column::kExplanation), pattern.explanation);
            EXPECT_EQ(Text(row, column::kAccountName), debit ? pattern.debitName : pattern.creditName);
            EXPECT_EQ(Text(row, column::kItems), debit ? pattern.items : "");
            EXPECT_EQ(Text(row, column::kSettleName), debit ? "" : pattern.settleName);
            EXPECT_EQ(Text(row, column::kAmount), pattern.amount);
        }
    }
};

TEST_F(JobsOfEntryTest, TwelvePatternsFromNothing) {
    Show({1, 2, 3, 5, 6, 9, 11, 20});
    NewTemplate("Before");
    SetHelps(false);
    EnterPatterns();
    CheckPatterns();
    const int before = Counted();
    NewTemplate("After");
    SetHelps(true);
    EnterPatterns();
    CheckPatterns();
    IsInTable(1, before, Counted(), true);
}

struct PastedFault {
    int row;
    int column;
    const char* wrong;
    const char* right;
};

constexpr std::array<PastedFault, 6> kPastedFaults{{{21, column::kAccountNumber, "5602.93", "5602.03"},
                                                    {78, column::kAmount, "86o", "860"},
                                                    {141, column::kAccountNumber, "5602", "5602.03"},
                                                    {199, column::kItems, "D99", "D02"},
                                                    {234, column::kAmount, "8,6,0 yuan", "860"},
                                                    {291, column::kAccountNumber, "560203", "5602.03"}}};

QString ThreeHundredRows() {
    QString text;
    for (int row = 1; row <= 300; ++row) {
        std::map<int, QString> cells = {{1, QString::number((row + 1) / 2)},
                                        {2, row % 2 == 1 ? "报销办公费" : ""},
                                        {3, row % 2 == 1 ? "借" : "贷"},
                                        {5, row % 2 == 1 ? "5602.03" : "1001"},
                                        {6, row % 2 == 1 ? "办公费" : "库存现金"},
                                        {11, row % 2 == 1 ? "D02" : ""},
                                        {20, "860"}};
        for (const PastedFault& fault : kPastedFaults) {
            if (fault.row == row) cells[fault.column] = fault.wrong;
        }
        QStringList row_;
        for (const auto& cell : cells)
            row_ << cell.second;
        text += row_.join(u'\t') + "\r\n";
    }
    return text;
}

TEST_F(JobsOfEntryTest, ThreeHundredPastedRowsWithFaultsMended) {
    Show({1, 2, 3, 5, 6, 11, 20});
    QApplication::clipboard()->setText(ThreeHundredRows());
    const auto check = [this] {
        ASSERT_EQ(window->Presenter().RowCount(), 300);
        for (const center::CellAddress& cell : window->Presenter().Faults().Cells())
            EXPECT_TRUE(window->Presenter().Faults().Describe(cell).hint) << cell.row << "," << cell.column;
        EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FAmount = 860 and FID = " +
                         window->Presenter().TemplateId()),
                  300);
    };
    // Page by page, for what is red.
    NewTemplate("Before");
    Press(Qt::Key_V, Qt::ControlModifier);
    Boxes();
    Press(Qt::Key_Home, Qt::ControlModifier);
    for (const PastedFault& fault : kPastedFaults) {
        while (!InSight(fault.row, fault.column))
            Press(Qt::Key_PageDown);
        Cell(fault.row, fault.column);
        Write(fault.right);
        Press(Qt::Key_Tab);
    }
    Save();
    check();
    const int before = Counted();
    // From one to the next.
    NewTemplate("After");
    Press(Qt::Key_V, Qt::ControlModifier);
    Boxes();
    for (const PastedFault& fault : kPastedFaults) {
        Press(Qt::Key_F8);
        ASSERT_EQ(Active(), (center::CellAddress{fault.row, fault.column}));
        Write(fault.right);
        Press(Qt::Key_Tab);
    }
    Save();
    check();
    IsInTable(2, before, Counted());
}

TEST_F(JobsOfEntryTest, ADeletedTemplateIsBack) {
    Show({1, 2, 3, 5, 6, 7, 9, 10, 11, 20, 21});
    OpenTemplate("日常费用");
    const std::vector<std::string> contents = Contents();
    std::vector<Row> rows;
    const std::map<std::string, std::string> settlements = {
        {"转账支票", "JF02"}, {"信用卡", "JF08"}, {"电汇", "JF03"}};
    for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
        Row cells;
        for (const int c : {1, 2, 3, 5, 7, 9, 10, 11, 20, 21}) {
            const std::string text = Text(row, c);
            std::string keys = text;
            if (c == column::kDirection) keys = text == "借" ? "j" : "d";
            if (c == column::kSettleName && !text.empty()) keys = settlements.at(text);
            if (!text.empty()) cells[c] = {keys, text};
        }
        rows.push_back(cells);
    }
    Answer(system::MessageResult::Yes);
    window->Tree().setFocus();
    Key(Qt::Key_Delete);
    TakeMessages();
    ASSERT_EQ(KeyOf("日常费用"), "");
    // From a printout.
    NewTemplate("Typed again");
    SetHelps(false);
    for (const Row& row : rows)
        EnterRow(row);
    Save();
    EXPECT_EQ(Contents(), contents);
    const int before = Counted();
    SetHelps(true);
    OfNode("ROOT", "mnuDeletedTemplates", "frmHistory",
           [&](QDialog& dialog) { Click(dialog, "cmdRestoreAsNew"); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(window->Presenter().TemplateName(), "日常费用");
    EXPECT_EQ(Contents(), contents);
    IsInTable(5, before, Counted());
}

TEST_F(JobsOfEntryTest, OneVoucherLookedAtAndOnPaper) {
    OpenTemplate("日常费用");
    // The workbook of the whole template; what has to be done with it elsewhere is reckoned: opened (2), the
    // rows above and below deleted (3 each), written as PDF (3).
    const std::string workbook = folder.Path("日常费用.xlsx");
    surroundings.fileDialogs->choices = {workbook};
    Tool("mnuExp");
    const int before = Counted() + 2 + 3 + 3 + 3;
    EXPECT_TRUE(QFile::exists(QString::fromStdString(workbook)));
    const std::string pdf = folder.Path("3.pdf");
    surroundings.fileDialogs->choices = {pdf};
    Cell(5, column::kExplanation);
    InDialog(
        "frmVoucher",
        [&](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "生成的凭证 - 日常费用 3 号");
            EXPECT_EQ(dialog.findChild<QTableWidget*>("voucherLines")->rowCount(), 4);
            Click(dialog, "cmdPdf");
            Click(dialog, "cmdClose");
        },
        [&] { Press(Qt::Key_F9); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_TRUE(QFile::exists(QString::fromStdString(pdf)));
    IsInTable(7, before, Counted());
}

TEST_F(JobsOfEntryTest, APatternCopiedAndChanged) {
    Show({1, 2, 3, 5, 6, 9, 11, 20});
    OpenTemplate("日常费用");
    const std::vector<std::string> contents = Contents();
    const auto check = [&] {
        ASSERT_EQ(window->Presenter().RowCount(), 13);
        for (const int row : {12, 13}) {
            EXPECT_EQ(Text(row, column::kNo), "6");
            EXPECT_EQ(Text(row, column::kAmount), "980");
            EXPECT_EQ(Text(row, column::kAccountNumber), Text(row - 4, column::kAccountNumber));
            EXPECT_EQ(Text(row, column::kItems), Text(row - 4, column::kItems));
        }
        EXPECT_EQ(Text(12, column::kExplanation), "业务招待费");
    };
    Rows(8, 9);
    Press(Qt::Key_C, Qt::ControlModifier);
    Cell(12, column::kNo);
    Press(Qt::Key_V, Qt::ControlModifier);
    for (const int row : {12, 13}) {
        Cell(row, column::kNo);
        Write("6");
        Press(Qt::Key_Tab);
        Press(Qt::Key_End);
        Write("980");
        Press(Qt::Key_Tab);
    }
    check();
    Save();
    const int before = Counted();
    Rows(12, 13);
    QTest::keyClick(&window->Grid(), Qt::Key_Minus, Qt::ControlModifier);
    ClickTool("mnuSave");
    TakeMessages();
    ASSERT_EQ(Contents(), contents);
    steps = 0;
    Cell(8, column::kAmount);
    Press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Active(), (center::CellAddress{12, column::kAmount}));
    Write("980");
    Press(Qt::Key_Tab);
    Press(Qt::Key_End);
    Write("980");
    Press(Qt::Key_Tab);
    check();
    Save();
    IsInTable(8, before, Counted());
}

TEST_F(JobsOfEntryTest, ATemplateUnderAnotherName) {
    OpenTemplate("日常费用");
    const std::vector<std::string> contents = Lines();
    // Out to a workbook of the new name and in again.
    const std::string workbook = folder.Path("Branch.xlsx");
    surroundings.fileDialogs->choices = {workbook, workbook};
    Tool("mnuExp");
    steps += 6;  // the file's name is typed
    Tool("mnuImp");
    EXPECT_EQ(window->Presenter().TemplateName(), "Branch");
    EXPECT_EQ(Lines(), contents);
    const int before = Counted();
    OpenTemplate("日常费用");
    window->Grid().setFocus();
    InDialog(
        "frmName",
        [&](QDialog&) {
            Write("Office");
            Press(Qt::Key_Return);
        },
        [&] { Press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(window->Presenter().TemplateName(), "Office");
    EXPECT_EQ(Lines(), contents);
    IsInTable(9, before, Counted());
}

}  // namespace
}  // namespace vicenter::ui
