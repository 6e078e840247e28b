// A pattern of twenty lines entered by keyboard alone: every key counted, everything saved, read back and
// compared, beside the fewest keys that a spreadsheet could need for the same cells.

#include <algorithm>
#include <array>
#include <set>

#include "tests/ui/demo_set_fixture.h"
#include "ui/window/status_line.h"

namespace vicenter::ui {
namespace {

constexpr int kLines = 20;
constexpr const char* kExplanationCode = "017";
constexpr const char* kExplanation = "采购商品入库";

// What ends up in the cells. Codes are typed where the cell then shows a name.
struct Line {
    const char* direction;
    const char* account;
    const char* accountName;
    const char* items = "";
    const char* settlement = "";
    const char* settlementName = "";
    const char* settlementNumber = "";
    const char* currency = "";
    const char* currencyName = "";
    const char* rate = "";
    const char* amountFor = "";
    const char* unit = "";
    const char* unitName = "";
    const char* quantity = "";
    const char* price = "";
    const char* amount;
};

constexpr std::array<Line, kLines> kPattern{{
    {.direction = "借",
     .account = "1405.01",
     .accountName = "绿茶",
     .unit = "KG",
     .unitName = "千克",
     .quantity = "120",
     .price = "80",
     .amount = "9600"},
    {.direction = "借",
     .account = "1405.02",
     .accountName = "乌龙茶",
     .unit = "KG",
     .unitName = "千克",
     .quantity = "60",
     .price = "95",
     .amount = "5700"},
    {.direction = "借",
     .account = "1405.03",
     .accountName = "紫砂壶",
     .unit = "PCS",
     .unitName = "件",
     .quantity = "40",
     .price = "130",
     .amount = "5200"},
    {.direction = "借",
     .account = "1405.04",
     .accountName = "丝绸面料",
     .unit = "M",
     .unitName = "米",
     .quantity = "300",
     .price = "22.5",
     .amount = "6750"},
    {.direction = "借", .account = "2221.01.01", .accountName = "进项税额", .amount = "3542.5"},
    {.direction = "借", .account = "5601.03", .accountName = "运输费", .items = "S005", .amount = "860"},
    {.direction = "借",
     .account = "1411.01",
     .accountName = "包装物",
     .unit = "PCS",
     .unitName = "件",
     .quantity = "500",
     .price = "1.2",
     .amount = "600"},
    {.direction = "借", .account = "5602.03", .accountName = "办公费", .items = "D02", .amount = "320"},
    {.direction = "借", .account = "5603.03", .accountName = "手续费", .amount = "45"},
    {.direction = "借", .account = "1123", .accountName = "预付账款", .items = "S001", .amount = "2000"},
    {.direction = "借", .account = "5602.05", .accountName = "差旅费", .items = "D03,E004", .amount = "1280"},
    {.direction = "借", .account = "1221.01", .accountName = "职工备用金", .items = "E005", .amount = "500"},
    {.direction = "贷", .account = "2202.01", .accountName = "应付货款", .items = "S002", .amount = "12000"},
    {.direction = "贷", .account = "2202.01", .accountName = "应付货款", .items = "S003", .amount = "5200"},
    {.direction = "贷", .account = "2202.01", .accountName = "应付货款", .items = "S004", .amount = "6750"},
    {.direction = "贷",
     .account = "1002.01",
     .accountName = "工商银行基本户",
     .settlement = "JF03",
     .settlementName = "电汇",
     .settlementNumber = "DH7731",
     .amount = "5100"},
    {.direction = "贷",
     .account = "1002.02",
     .accountName = "中国银行美元户",
     .settlement = "JF03",
     .settlementName = "电汇",
     .settlementNumber = "DH7732",
     .currency = "USD",
     .currencyName = "美元",
     .rate = "7.1865",
     .amountFor = "500",
     .amount = "3593.25"},
    {.direction = "贷", .account = "1001", .accountName = "库存现金", .amount = "320"},
    {.direction = "贷",
     .account = "1002.05",
     .accountName = "建设银行一般户",
     .settlement = "JF02",
     .settlementName = "转账支票",
     .settlementNumber = "ZZ0915",
     .amount = "2834.25"},
    {.direction = "贷", .account = "2202.02", .accountName = "暂估应付款", .items = "S006", .amount = "600"},
}};

// The texts that the cells of a line hold in the end, by column.
std::vector<std::pair<int, std::string>> CellsOf(const Line& line) {
    return {{column::kNo, "1"},
            {column::kExplanation, kExplanation},
            {column::kDirection, line.direction},
            {column::kAccountNumber, line.account},
            {column::kAccountName, line.accountName},
            {column::kFileCount, ""},
            {column::kSettleName, line.settlementName},
            {column::kSettleNumber, line.settlementNumber},
            {column::kItems, line.items},
            {column::kCurrencyName, line.currencyName},
            {column::kRate, line.rate},
            {column::kAmountFor, line.amountFor},
            {column::kUnitName, line.unitName},
            {column::kQuantity, line.quantity},
            {column::kPrice, line.price},
            {column::kAmount, line.amount},
            {column::kRemark, ""}};
}

// The fewest keys that a spreadsheet could need for these cells, counted in its favour throughout: one key
// for every character, Chinese ones too; one to take a cell and be on the next that is wanted, wherever it
// stands; equal cells one below the other are typed once and cost one key more all together; account names
// come by themselves, from formulas that somebody has made beforehand.
int FewestOfASpreadsheet() {
    int keys = 0;
    std::vector<std::vector<std::pair<int, std::string>>> rows;
    for (const Line& line : kPattern)
        rows.push_back(CellsOf(line));
    for (std::size_t c = 0; c < rows.front().size(); ++c) {
        if (rows.front()[c].first == column::kAccountName) continue;
        for (std::size_t row = 0; row < rows.size();) {
            const std::string& text = rows[row][c].second;
            std::size_t end = row + 1;
            while (end < rows.size() && rows[end][c].second == text)
                ++end;
            if (!text.empty()) {
                keys += static_cast<int>(QString::fromStdString(text).size()) + 1 + (end - row > 1 ? 1 : 0);
            }
            row = end;
        }
    }
    return keys;
}

class KeyboardEntryTest : public DemoSetTest {
  protected:
    // A key with its modifiers counts once.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        QApplication::processEvents();
        ++keys;
    }
    void Write(const std::string& text) {
        for (const char c : text) {
            QTest::keyClick(QApplication::focusWidget(), c);
            ++keys;
        }
    }
    void PressTimes(Qt::Key key, int times) {
        for (int i = 0; i < times; ++i)
            Press(key);
    }
    int CurrentColumn() { return window->Grid().Model().AddressOf(window->Grid().currentIndex()).column; }
    std::string Proposed(int gridColumn) {
        const int row = window->Presenter().Grid().ActiveCell().row;
        return window->Presenter().Cells().ProposedText({row, gridColumn});
    }
    // To a column further right.
    void GoTo(int target) {
        while (CurrentColumn() < target)
            Press(Qt::Key_Tab);
        ASSERT_EQ(CurrentColumn(), target);
    }
    // Values of a line from left to right, each taken by the key that goes on to the next; the last one by
    // the key that ends the line, takes what is proposed of it and goes to the next account.
    void EnterCells(std::vector<std::pair<int, std::string>> cells) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (i > 0) GoTo(cells[i].first);
            Write(cells[i].second);
            if (i + 1 < cells.size()) Press(Qt::Key_Tab);
        }
    }
    // An amount that the line's other numbers make or that is proposed needs no typing.
    bool HasAmount(const Line& line) {
        const int row = window->Presenter().Grid().ActiveCell().row;
        return *line.price != '\0' || *line.amountFor != '\0' || Proposed(column::kAmount) == line.amount ||
               Text(row, column::kAmount) == line.amount;
    }
    void EnterLine(const Line& line, bool first) {
        if (first) {
            Write("1");
            Press(Qt::Key_Tab);
            Write(kExplanationCode);
            Press(Qt::Key_Tab);
            Write(std::string(line.direction) == "借" ? "j" : "d");
            Press(Qt::Key_Tab);
        }
        ASSERT_EQ(CurrentColumn(), column::kAccountNumber);
        Write(line.account);
        Press(Qt::Key_Tab);
        // Proposed rightly, or taken already because it was the one on the screen.
        const std::string taken = Text(window->Presenter().Grid().ActiveCell().row, column::kDirection);
        EXPECT_EQ(taken.empty() ? Proposed(column::kDirection) : taken, line.direction) << line.account;
        std::vector<std::pair<int, std::string>> cells;
        for (const auto& [gridColumn, text] : std::initializer_list<std::pair<int, std::string>>{
                 {column::kSettleName, line.settlement},
                 {column::kSettleNumber, line.settlementNumber},
                 {column::kItems, line.items},
                 {column::kCurrencyName, line.currency},
                 {column::kRate, line.rate},
                 {column::kAmountFor, line.amountFor},
                 {column::kUnitName, line.unit},
                 {column::kQuantity, line.quantity},
                 {column::kPrice, line.price},
                 {column::kAmount, HasAmount(line) ? "" : line.amount}}) {
            if (!text.empty()) cells.emplace_back(gridColumn, text);
        }
        if (!cells.empty()) GoTo(cells.front().first);
        EnterCells(cells);
        Press(Qt::Key_Return, Qt::ControlModifier);
    }
    std::string IdOf(const std::string& sql) {
        const ado::RecordsetRef rows = session->Execute(sql);
        return rows->RecordCount() == 1 ? rows->Value(0).ToText() : std::string();
    }
    void CheckLines() {
        ASSERT_EQ(window->Presenter().RowCount(), kLines);
        for (int row = 1; row <= kLines; ++row) {
            const Line& line = kPattern[static_cast<std::size_t>(row - 1)];
            for (const auto& [gridColumn, text] : CellsOf(line))
                EXPECT_EQ(Text(row, gridColumn), text) << "row " << row << " column " << gridColumn;
            EXPECT_EQ(Text(row, column::kAccountId), IdOf("select FAccountID from t_Account where FNumber='" +
                                                          std::string(line.account) + "'"));
            EXPECT_EQ(Text(row, column::kSettleId), IdOf("select FItemID from t_Settle where FNumber='" +
                                                         std::string(line.settlement) + "'"));
            EXPECT_EQ(Text(row, column::kCurrencyId),
                      IdOf("select FCurrencyID from t_Currency where FNumber='" + std::string(line.currency) +
                           "'"));
            EXPECT_EQ(Text(row, column::kUnitId),
                      IdOf("select FUnitGroupID from t_MeasureUnit where FNumber='" + std::string(line.unit) +
                           "'"));
            for (int check = 1; check <= 5; ++check) {
                for (int c = 1; c <= center::kColumnCount; ++c)
                    EXPECT_EQ(window->Presenter().Grid().FaultyCheck(row, c), 0) << row << ", " << c;
            }
        }
    }

    int keys = 0;
};

TEST_F(KeyboardEntryTest, TwentyLinesAreEnteredSavedAndReadBackByKeyboardAlone) {
    Open();
    // The columns of this pattern, as the column dialog would show them.
    const std::set<int> shown{1, 2, 3, 5, 6, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20};
    for (int c = 1; c <= center::kColumnCount; ++c)
        window->Presenter().Grid().SetColumnHidden(c, shown.count(c) == 0);

    Press(Qt::Key_N, Qt::ControlModifier);
    const std::string node = window->Presenter().SelectedNode();
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Write("Purchase");
    Press(Qt::Key_Return);
    ASSERT_TRUE(window->Grid().HasFocusWithin());
    ASSERT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{1, 1}));

    keys = 0;
    for (const Line& line : kPattern)
        EnterLine(line, &line == kPattern.data());
    const int entered = keys;
    CheckLines();

    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(surroundings.messageBoxes->Texts(), std::vector<std::string>{"模板 Purchase 保存成功！"});
    EXPECT_FALSE(window->Presenter().IsDirty());
    Close();
    Open();
    ClickNode(node);
    EXPECT_EQ(window->Presenter().TemplateName(), "Purchase");
    CheckLines();

    // docs/benchmarks.md names these.
    EXPECT_EQ(entered, 382);
    EXPECT_EQ(FewestOfASpreadsheet(), 399);
}

}  // namespace
}  // namespace vicenter::ui
