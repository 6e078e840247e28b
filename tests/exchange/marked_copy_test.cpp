// Copies of refused workbooks, marked, mended and imported; and what is tidied away on request.

#include "exchange/marked_copy.h"

#include "exchange/import_several.h"
#include "exchange/import_template.h"
#include "platform/office/xlsx_package.h"
#include "tests/exchange/exchange_fixture.h"

namespace vicenter::exchange {
namespace {

const Lines kHeaders = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "金额", "备注"};
constexpr std::uint8_t kRose = 38;

class MarkedCopyTest : public ExchangeTest {
  protected:
    void SetUp() override {
        ExchangeTest::SetUp();
        NoTemplateYet();
    }
    // From the first batch on the template can be found by its name.
    void NoTemplateYet() {
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}));
        set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
        set_.Respond("@Vch_cursor", [this](const std::string&) {
            set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{8}}));
            return Rows({});
        });
    }
    ImportOutcome Import(const std::string& file, bool tidily = false) {
        surroundings_.messageBoxes->shown.clear();
        set_.Forget();
        NoTemplateYet();
        return ImportTemplateFile(window_, file, tidily);
    }
    // The lines of the batch that an import has sent: what stands behind the line's id.
    Lines Inserted() const {
        Lines lines;
        for (const std::string& sql : set_.Statements()) {
            for (std::size_t at = sql.find("t_VchTemplateEntry(FID,"); at != sql.npos;
                 at = sql.find("t_VchTemplateEntry(FID,", at + 1)) {
                const std::size_t values = sql.find("values(@MaxFID,", at) + 15;
                lines.push_back(sql.substr(values, sql.find(") ", values) - values));
            }
        }
        return lines;
    }
    // A cell of the sheet in a file, changed in place.
    void Change(const std::string& file,
                const std::function<void(office::Workbook&, office::Sheet&)>& change) {
        const auto workbook = office::ReadWorkbook(file);
        change(*workbook, *workbook->FindSheet(kSheetName));
        office::WriteWorkbook(*workbook, file,
                              file.ends_with(".xls") ? office::FileKind::Xls : office::FileKind::Xlsx);
    }
    static void SetText(office::Workbook& workbook, office::Sheet& sheet, std::uint32_t row,
                        std::uint32_t column, const std::string& text) {
        office::Cell& cell = sheet.At(row, column);
        cell.kind = office::CellKind::Text;
        cell.text = workbook.Texts().Intern(text);
    }
    static std::string TextAt(const std::string& file, std::uint32_t row, std::uint32_t column) {
        const auto workbook = office::ReadWorkbook(file);
        const office::Cell* cell = workbook->FindSheet(kSheetName)->Find(row, column);
        return cell == nullptr ? "" : office::CellText(*workbook, *cell);
    }
    static std::string PartOf(const std::string& file, const std::string& name) {
        const office::XlsxPackage package(file);
        const auto part = package.Open(name);
        std::string text;
        std::string piece(4096, '\0');
        for (std::size_t read = part->Read(piece.data(), piece.size()); read > 0;
             read = part->Read(piece.data(), piece.size()))
            text.append(piece, 0, read);
        return text;
    }
    const std::vector<Lines> rows_ = {kHeaders,
                                      {"#1", "a", "借", "1001", "现金", "x", "留下"},
                                      {"#1", "", "贷", "", "银行", "#5"},
                                      {"#2", "b", "借", "1002", "银行", "#7"}};
};

TEST_F(MarkedCopyTest, HoldsTheWorkbookWithTheReasonsInAColumnBehindTheLast) {
    for (const char* name : {"坏的.xlsx", "坏的.xls"}) {
        const std::string file = MakeWorkbook(name, rows_);
        const ImportOutcome outcome = Import(file);
        ASSERT_EQ(outcome.faults.size(), 2U);
        const std::string copy = MarkedCopyName(file);
        EXPECT_EQ(WriteMarkedCopy(file, outcome.faults, copy), "");
        EXPECT_EQ(TextAt(copy, 0, 7), "原因");
        EXPECT_EQ(TextAt(copy, 1, 7), "金额 必须是数字");
        EXPECT_EQ(TextAt(copy, 2, 7), "科目代码(*) 不允许为空");
        EXPECT_EQ(TextAt(copy, 3, 7), "");
        EXPECT_EQ(TextAt(copy, 1, 6), "留下");
        EXPECT_EQ(TextAt(copy, 1, 5), "x");
        EXPECT_TRUE(TemporaryFiles().empty());
    }
}

TEST_F(MarkedCopyTest, ColoursTheFaultyCellsAndNoOther) {
    const std::string file = MakeWorkbook("坏的.xlsx", rows_);
    const std::string copy = folder_.File("copy.xlsx");
    ASSERT_EQ(WriteMarkedCopy(file, Import(file).faults, copy), "");
    std::string styles;
    std::string sheet;
    for (auto [part, text] :
         {std::pair("xl/styles.xml", &styles), std::pair("xl/worksheets/sheet1.xml", &sheet)})
        *text = PartOf(copy, part);
    const auto style = [&](const std::string& cell) {
        const std::size_t at = sheet.find("<c r=\"" + cell + "\"");
        const std::string tag = at == sheet.npos ? "" : sheet.substr(at, sheet.find('>', at) - at);
        const std::size_t s = tag.find("s=\"");
        return s == tag.npos ? "" : tag.substr(s + 3, tag.find('"', s + 3) - s - 3);
    };
    EXPECT_NE(styles.find("<fgColor indexed=\"" + std::to_string(kRose + 7) + "\"/>"), styles.npos);
    EXPECT_NE(style("F2"), "");
    EXPECT_EQ(style("F2"), style("D3")) << "an empty cell, too";
    for (const char* plain : {"F3", "D2", "F4", "A2"})
        EXPECT_NE(style(plain), style("F2")) << plain;
}

TEST_F(MarkedCopyTest, MendedItImportsUnderTheOriginalsName) {
    for (const char* name : {"坏的.xlsx", "坏的.xls"}) {
        const std::string file = MakeWorkbook(name, rows_);
        const std::string copy = MarkedCopyName(file);
        ASSERT_EQ(WriteMarkedCopy(file, Import(file).faults, copy), "");
        EXPECT_FALSE(Import(copy)) << "not mended yet";
        EXPECT_EQ(Messages(), Lines{"引入模板失败！模板文件数据存在以下错误: 第2行，第F列值存在错误，\r\n"
                                    "第3行，第D列值存在错误，\r\n"})
            << "in the words of the original";
        Change(copy, [](office::Workbook& workbook, office::Sheet& sheet) {
            SetText(workbook, sheet, 1, 5, "3.5");
            SetText(workbook, sheet, 2, 3, "1002");
        });
        const ImportOutcome outcome = Import(copy);
        EXPECT_TRUE(outcome.written) << outcome.refusal;
        EXPECT_EQ(outcome.templateName, "坏的");
        EXPECT_EQ(Inserted(), (Lines{"2,1,'a',1,'1001','现金',3.5,'留下'", "3,1,'',0,'1002','银行',5,''",
                                     "4,2,'b',1,'1002','银行',7,''"}));
    }
}

TEST_F(MarkedCopyTest, OfACopyForgetsWhatHasBeenMended) {
    const std::string file = MakeWorkbook("坏的.xlsx", rows_);
    const std::string copy = MarkedCopyName(file);
    ASSERT_EQ(WriteMarkedCopy(file, Import(file).faults, copy), "");
    Change(copy,
           [](office::Workbook& workbook, office::Sheet& sheet) { SetText(workbook, sheet, 1, 5, "3"); });
    const std::string again = folder_.File("again.xlsx");
    ASSERT_EQ(WriteMarkedCopy(copy, Import(copy).faults, again), "");
    EXPECT_EQ(TextAt(again, 0, 7), "原因");
    EXPECT_EQ(TextAt(again, 1, 7), "");
    EXPECT_EQ(TextAt(again, 2, 7), "科目代码(*) 不允许为空");
    EXPECT_EQ(TextAt(again, 0, 8), "") << "one column of reasons";
}

TEST_F(MarkedCopyTest, TellsFaultyHeadersInTheHeaderOfTheReasons) {
    const std::string file = MakeWorkbook("坏的.xlsx", {{"模板编号", "摘要(*)", "借/贷(*)", "x", "备注"}});
    const ImportOutcome outcome = Import(file);
    const std::string copy = MarkedCopyName(file);
    ASSERT_EQ(WriteMarkedCopy(file, outcome.faults, copy), "");
    EXPECT_EQ(TextAt(copy, 0, 5),
              "原因：模板编号 列名错误，应为“模板编号(*)”；x 列名错误，请改为模板的列名或删除这一列");
    Change(copy, [](office::Workbook& workbook, office::Sheet& sheet) {
        for (std::uint32_t column = 0; column < 5; ++column)
            SetText(workbook, sheet, 0, column, kHeaders[column]);
    });
    // The reasons are no column of the sheet: the quirk of the last required header is as without them.
    Import(copy);
    EXPECT_EQ(Messages(), Lines{"引入模板失败！模板文件结构不正确,缺少必录列: 科目名称(*)"});
}

TEST_F(MarkedCopyTest, AColumnOfThatNameThatIsNoCopysIsRefusedAsAnyOther) {
    std::vector<Lines> rows = {kHeaders, {"#1", "a", "借", "1001", "现金", "#1", "", "why"}};
    rows[0].emplace_back("原因");
    const std::string file = MakeWorkbook("坏的(标错).xlsx", rows);
    const ImportOutcome outcome = Import(file);
    EXPECT_EQ(Messages(), Lines{"引入模板失败！模板文件结构不正确: \r\n第H列[原因]列名错误！\r\n"});
    EXPECT_EQ(outcome.templateName, "坏的(标错)");
}

TEST_F(MarkedCopyTest, IsNeverWrittenOverItsOriginalOrOverWhatIsNoWorkbook) {
    const std::string file = MakeWorkbook("坏的.xlsx", rows_);
    const std::vector<LineFault> faults = Import(file).faults;
    EXPECT_EQ(WriteMarkedCopy(file, faults, file), "标错副本不能覆盖原工作簿，请另选文件名！");
    EXPECT_EQ(TextAt(file, 0, 7), "");
    const std::string text = folder_.File("notes.txt");
    std::ofstream(system::PathFromUtf8(text)) << "mine";
    EXPECT_NE(WriteMarkedCopy(file, faults, text), "");
    const std::string none = MakeWorkbook("无表.xlsx", {kHeaders}, "Sheet1");
    EXPECT_EQ(WriteMarkedCopy(none, {}, folder_.File("c.xlsx")),
              "没有名为“凭证模板”的工作表，没有可以标错的内容！");
}

TEST_F(MarkedCopyTest, TheCommandAsksForANameAndTellsWhatCameOfIt) {
    const std::string file = MakeWorkbook("坏的.xlsx", rows_);
    const std::string copy = folder_.File("b.xlsx");
    surroundings_.fileDialogs->choices = {copy, std::nullopt};
    SaveMarkedCopy(window_, file);
    const system::FileRequest& request = surroundings_.fileDialogs->requests.at(0);
    EXPECT_EQ(request.proposedName, folder_.File("坏的(标错).xlsx"));
    EXPECT_EQ(request.title, "指定标错副本文件名");
    EXPECT_EQ(
        Messages(),
        Lines{"标错副本已保存，有错误的单元格已着色，原因在最后一列。更正后可以直接引入！\r\n\r\n" + copy});
    EXPECT_EQ(TextAt(copy, 0, 7), "原因");
    SaveMarkedCopy(window_, file);  // cancelled
    EXPECT_EQ(Messages().size(), 1U);
    // Mended meanwhile.
    MakeWorkbook("坏的.xlsx", {kHeaders, {"#1", "a", "借", "1001", "现金", "#1", ""}});
    SaveMarkedCopy(window_, file);
    EXPECT_EQ(Messages().back(), "工作簿已经没有错误，可以直接引入！");
    EXPECT_EQ(window_.told.back(), "hide");
}

TEST_F(MarkedCopyTest, IsOfferedAsTheKindOfItsWorkbookHoweverThatIsWritten) {
    for (const std::string name : {"旧的.xls", "旧的.XLS"}) {
        std::string file = MakeWorkbook("旧的.xls", rows_);
        if (file != folder_.File(name)) {
            std::filesystem::rename(system::PathFromUtf8(file), system::PathFromUtf8(folder_.File(name)));
            file = folder_.File(name);
        }
        SaveMarkedCopy(window_, file);
        const system::FileRequest& request = surroundings_.fileDialogs->requests.back();
        EXPECT_EQ(request.filters.at(request.selectedFilter).pattern, "*.xls") << name;
    }
}

// --- what people do to workbooks

TEST_F(MarkedCopyTest, IsOfTheKindThatItsNameSaysWhateverItsWorkbookIs) {
    for (const bool older : {true, false}) {
        const std::string source = MakeWorkbook(older ? "旧.xls" : "新.xlsx", rows_);
        for (const char* name : {"甲.xls", "乙.xlsx"}) {
            const std::string target = folder_.File(name);
            ASSERT_EQ(WriteMarkedCopy(source, {{2, 6, "金额", "x", "必须是数字"}}, target), "");
            office::FileKind kind{};
            office::ReadWorkbook(target, &kind);
            EXPECT_EQ(kind == office::FileKind::Xls, std::string_view(name).ends_with(".xls"))
                << source << name;
            EXPECT_EQ(TextAt(target, 1, 7), "金额 必须是数字");
        }
    }
}

TEST_F(MarkedCopyTest, KeepsTheWidthsOfTheColumns) {
    for (const char* name : {"宽.xls", "宽.xlsx"}) {
        const std::string source = MakeWorkbook(name, rows_);
        Change(source, [](office::Workbook&, office::Sheet& sheet) {
            sheet.ColumnAt(1).width = 40;
            sheet.ColumnAt(5).width = 22.5;
            sheet.ColumnAt(5).hidden = true;
        });
        const std::string target = folder_.File(std::string("标") + name);
        ASSERT_EQ(WriteMarkedCopy(source, {{2, 6, "金额", "x", "必须是数字"}}, target), "");
        const auto workbook = office::ReadWorkbook(target);
        const auto& columns = workbook->FindSheet(kSheetName)->Columns();
        EXPECT_EQ(columns.at(1).width, 40) << name;
        EXPECT_EQ(columns.at(5).width, 22.5) << name;
        EXPECT_FALSE(columns.at(5).hidden);
        EXPECT_EQ(columns.at(7).width, 48) << "of the reasons";
    }
}

TEST_F(MarkedCopyTest, ATitleAboveIsRefusedWithItsTextAndTheListSaysWhatToDo) {
    const std::string file = MakeWorkbook(
        "坏的.xlsx", {{"某某公司凭证模板"}, {}, kHeaders, {"#1", "a", "借", "1001", "现金", "#1", ""}});
    const ImportOutcome outcome = Import(file);
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_TRUE(Messages()[0].starts_with(
        "引入模板失败！模板文件结构不正确: \r\n第A列[某某公司凭证模板]列名错误！\r\n第B列[]列名错误！\r\n"));
    ASSERT_EQ(outcome.faults.size(), 1U);
    EXPECT_EQ(outcome.faults[0].reason, "表头在第 3 行，请删除它上面的第 1 至 2 行，或者整理后引入");
    EXPECT_EQ(outcome.faults[0].value, "某某公司凭证模板");
    EXPECT_TRUE(Inserted().empty());
    // Tidied it comes in; a line's number is that of its row all the same.
    EXPECT_TRUE(Import(file, true));
    EXPECT_EQ(Inserted(), Lines{"4,1,'a',1,'1001','现金',1,''"});
}

TEST_F(MarkedCopyTest, BlankRowsBetweenAreOneFaultEachAndTidiedAway) {
    const std::string file = MakeWorkbook(
        "坏的.xlsx",
        {kHeaders, {"#1", "a", "借", "1001", "现金", "#1"}, {}, {"#1", "", "贷", "1002", "银行", "#1"}});
    const ImportOutcome outcome = Import(file);
    EXPECT_EQ(Messages()[0],
              "引入模板失败！模板文件数据存在以下错误: 第3行，第A列值存在错误，\r\n"
              "第3行，第B列值存在错误(相同凭证模板编号首行摘要不允许为空)，\r\n第3行，第C列值存在错误，\r\n"
              "第3行，第D列值存在错误，\r\n第3行，第E列值存在错误，\r\n");
    ASSERT_EQ(outcome.faults.size(), 1U);
    EXPECT_EQ(outcome.faults[0].row, 3);
    EXPECT_EQ(outcome.faults[0].reason, "整行为空，请删除这一行，或者整理后引入");
    EXPECT_TRUE(Import(file, true));
    EXPECT_EQ(Inserted(), (Lines{"2,1,'a',1,'1001','现金',1,''", "4,1,'',0,'1002','银行',1,''"}));
}

// Programs that lay out a report leave rows and columns free in front: the used range begins further in.
std::vector<Lines> FurtherIn(std::size_t rows, std::size_t columns, std::vector<Lines> table) {
    for (Lines& row : table)
        row.insert(row.begin(), row.empty() ? 0 : columns, "");
    table.insert(table.begin(), rows, Lines());
    return table;
}

TEST_F(MarkedCopyTest, TidiedNoLineIsLostWhereverTheTableBegins) {
    const std::vector<Lines> table = {kHeaders,
                                      {"#1", "a", "借", "1001", "现金", "#1", "甲"},
                                      {"#1", "", "贷", "1002", "银行", "#1", "乙"},
                                      {},
                                      {"#2", "b", "借", "1001", "现金", "#2", "丙"},
                                      {"#2", "", "贷", "1002", "银行", "#2", "丁"}};
    for (const char* name : {"坏的.xlsx", "坏的.xls"}) {
        for (const std::size_t rows : {0U, 1U, 3U, 30U}) {
            for (const std::size_t columns : {0U, 1U, 2U}) {
                SCOPED_TRACE(std::string(name) + " " + std::to_string(rows) + " " + std::to_string(columns));
                const std::string file = MakeWorkbook(name, FurtherIn(rows, columns, table));
                EXPECT_TRUE(Import(file, true));
                const auto at = [rows](std::size_t row) { return std::to_string(rows + row); };
                EXPECT_EQ(
                    Inserted(),
                    (Lines{at(2) + ",1,'a',1,'1001','现金',1,'甲'", at(3) + ",1,'',0,'1002','银行',1,'乙'",
                           at(5) + ",2,'b',1,'1001','现金',2,'丙'", at(6) + ",2,'',0,'1002','银行',2,'丁'"}));
            }
        }
    }
}

TEST_F(MarkedCopyTest, ABlankColumnIsOneFaultAndTidiedAway) {
    // A title stands above the blank column in front; another blank one is within the table.
    const std::string file = MakeWorkbook(
        "坏的.xlsx", {{"某某公司凭证模板"},
                      {"", "模板编号(*)", "摘要(*)", "借/贷(*)", "", "科目代码(*)", "科目名称(*)", "金额"},
                      {"", "#1", "a", "借", "", "1001", "现金", "#1"}});
    EXPECT_TRUE(Import(file, true));
    EXPECT_EQ(Inserted(), Lines{"3,1,'a',1,'1001','现金',1"});
    // A column without a header that holds something is none to be passed over.
    const std::string filled = MakeWorkbook(
        "坏的.xlsx",
        FurtherIn(1, 1,
                  {{"模板编号(*)", "摘要(*)", "借/贷(*)", "", "科目代码(*)", "科目名称(*)", "金额"},
                   {"#1", "a", "借", "?", "1001", "现金", "#1"}}));
    const ImportOutcome refused = Import(filled, true);
    EXPECT_EQ(Messages()[0], "引入模板失败！模板文件结构不正确: \r\n第E列[]列名错误！\r\n");
    ASSERT_EQ(refused.faults.size(), 1U);
    EXPECT_EQ(refused.faults[0].column, 5);
    EXPECT_EQ(refused.faults[0].reason, "没有列名，请填写列名或删除这一列");
    // By itself an import refuses both, in the words that it has always had.
    const std::string plain = MakeWorkbook("坏的.xlsx", FurtherIn(0, 1, rows_));
    const ImportOutcome outcome = Import(plain);
    EXPECT_EQ(Messages()[0], "引入模板失败！模板文件结构不正确: \r\n第A列[]列名错误！\r\n");
    ASSERT_EQ(outcome.faults.size(), 1U);
    EXPECT_EQ(outcome.faults[0].reason, "整列为空，请删除这一列，或者整理后引入");
}

TEST_F(MarkedCopyTest, FaultsOfATableFurtherInAreToldByTheirPlaces) {
    const std::string file = MakeWorkbook("坏的.xlsx", FurtherIn(2, 1, rows_));
    const ImportOutcome outcome = Import(file, true);
    EXPECT_EQ(Messages()[0],
              "引入模板失败！模板文件数据存在以下错误: 第4行，第G列值存在错误，\r\n"
              "第5行，第E列值存在错误，\r\n");
    // A header that lacks a column is looked at where the table begins.
    Lines lacking = kHeaders;
    lacking[4] = "币别";
    Import(MakeWorkbook("坏的.xlsx", FurtherIn(2, 1, {lacking, rows_[3]})), true);
    EXPECT_EQ(Messages()[0], "引入模板失败！模板文件结构不正确,缺少必录列: 科目名称(*)");
}

TEST_F(MarkedCopyTest, TheReasonsStandBehindTheLastColumnWhereverTheTableBegins) {
    for (const char* name : {"坏的.xlsx", "坏的.xls"}) {
        for (const auto& [rows, columns] : {std::pair{0U, 1U}, {1U, 0U}, {2U, 2U}}) {
            SCOPED_TRACE(std::string(name) + " " + std::to_string(rows) + " " + std::to_string(columns));
            const std::string file = MakeWorkbook(name, FurtherIn(rows, columns, rows_));
            const std::string copy = folder_.File(std::string("坏的(标错)") + (name + 6));
            ASSERT_EQ(WriteMarkedCopy(file, Import(file, true).faults, copy), "");
            // Every cell of the table is as it was, the reasons stand behind.
            const auto last = static_cast<std::uint32_t>(columns + kHeaders.size());
            for (std::uint32_t c = 0; c < kHeaders.size(); ++c)
                EXPECT_EQ(TextAt(copy, rows, columns + c), kHeaders[c]);
            EXPECT_EQ(TextAt(copy, rows + 1, last - 1), "留下");
            EXPECT_EQ(TextAt(copy, 0, last), "原因");
            EXPECT_EQ(TextAt(copy, rows + 1, last), "金额 必须是数字");
            EXPECT_EQ(TextAt(copy, rows + 2, last), "科目代码(*) 不允许为空");
            // Mended it comes in whole, as a copy of a copy does.
            Change(copy, [&, r = rows, c = columns](office::Workbook& workbook, office::Sheet& sheet) {
                SetText(workbook, sheet, r + 1, c + 5, "12");
                SetText(workbook, sheet, r + 2, c + 3, "1002");
            });
            EXPECT_TRUE(Import(copy, true));
            const auto at = [r = rows](std::size_t row) { return std::to_string(r + row); };
            EXPECT_EQ(Inserted(),
                      (Lines{at(2) + ",1,'a',1,'1001','现金',12,'留下'", at(3) + ",1,'',0,'1002','银行',5,''",
                             at(4) + ",2,'b',1,'1002','银行',7,''"}));
        }
    }
}

TEST_F(MarkedCopyTest, ACopyOfATableBehindABlankColumnForgetsWhatIsMended) {
    const std::string file = MakeWorkbook("坏的.xlsx", FurtherIn(0, 1, rows_));
    const std::string copy = folder_.File("坏的(标错).xlsx");
    // Refused without tidying, for the blank column.
    ASSERT_EQ(WriteMarkedCopy(file, Import(file).faults, copy), "");
    EXPECT_EQ(TextAt(copy, 0, 7), "备注");
    EXPECT_EQ(TextAt(copy, 0, 8), "原因：整列为空，请删除这一列，或者整理后引入");
    const std::string again = folder_.File("再来(标错).xlsx");
    ASSERT_EQ(WriteMarkedCopy(copy, Import(copy, true).faults, again), "");
    EXPECT_EQ(TextAt(again, 0, 7), "备注");
    EXPECT_EQ(TextAt(again, 0, 8), "原因");
    EXPECT_EQ(TextAt(again, 1, 8), "金额 必须是数字");
    EXPECT_EQ(TextAt(again, 0, 9), "");
}

TEST_F(MarkedCopyTest, HiddenColumnsAreReadAndShownAgainWhereTheyAreFaulty) {
    const std::string file = MakeWorkbook("坏的.xlsx", rows_);
    Change(file, [](office::Workbook&, office::Sheet& sheet) {
        sheet.ColumnAt(5).hidden = true;
        sheet.ColumnAt(6).hidden = true;
    });
    const ImportOutcome outcome = Import(file);
    EXPECT_EQ(outcome.faults.size(), 2U);
    const std::string copy = MarkedCopyName(file);
    ASSERT_EQ(WriteMarkedCopy(file, outcome.faults, copy), "");
    const auto workbook = office::ReadWorkbook(copy);
    EXPECT_FALSE(workbook->FindSheet(kSheetName)->ColumnAt(5).hidden);
    EXPECT_TRUE(workbook->FindSheet(kSheetName)->ColumnAt(6).hidden) << "nothing is wrong there";
}

// --- several at once

class SeveralDialogs : public fakes::ScriptedFileDialogs {
  public:
    std::vector<std::string> ChooseFilesToOpen(const system::FileRequest& request) override {
        requests.push_back(request);
        return several;
    }
    std::vector<std::string> several;
};

TEST_F(MarkedCopyTest, SeveralChosenFilesGiveOneReport) {
    const std::string good = MakeWorkbook("坏的.xlsx", {kHeaders, {"#1", "a", "借", "1", "n", "#1", ""}});
    const std::string bad = MakeWorkbook("丙.xlsx", rows_);
    const std::string twin = MakeWorkbook("坏的.xls", {kHeaders, {"#1", "b", "借", "1", "n", "#1", ""}});
    const auto dialogs = std::make_shared<SeveralDialogs>();
    dialogs->several = {twin, good, bad};
    system::Surroundings surroundings = system::Surroundings::Current();
    surroundings.fileDialogs = dialogs;
    const system::SurroundingsScope scope(surroundings);
    const std::vector<ImportOutcome> outcomes = ImportTemplates(window_);
    EXPECT_EQ(dialogs->requests.at(0).flags, 0x81001U);
    EXPECT_TRUE(Messages().empty()) << "the report tells it";
    ASSERT_EQ(outcomes.size(), 3U);
    EXPECT_EQ(ReportSummary(outcomes), "共 3 个文件：引入模板 1 个、分录 1 行，未引入 2 个");
    Lines texts;
    for (const ImportOutcome& outcome : outcomes)
        texts.push_back(ReportState(outcome) + " " + ReportText(outcome));
    EXPECT_EQ(texts, (Lines{"未引入 引入模板失败！模板文件数据存在以下错误: 第2行，第F列值存在错误， "
                            "第3行，第D列值存在错误，",
                            "已引入 引入模板 坏的 成功！",
                            "未引入 引入模板失败！文件夹中有同名的工作簿“坏的.xls”，请分别引入或改名！"}));
    const std::string report = folder_.File("report.xlsx");
    EXPECT_EQ(WriteImportReport(outcomes, report), "");
    const auto workbook = office::ReadWorkbook(report);
    ASSERT_EQ(workbook->Sheets().size(), 2U);
    const auto text = [&](const char* sheet, std::uint32_t row, std::uint32_t column) {
        const office::Cell* cell = workbook->FindSheet(sheet)->Find(row, column);
        return cell == nullptr ? std::string() : office::CellText(*workbook, *cell);
    };
    EXPECT_EQ(text("引入结果", 1, 0), "丙.xlsx");
    EXPECT_EQ(text("引入结果", 1, 2), "未引入");
    EXPECT_EQ(text("引入结果", 2, 3), "1");
    EXPECT_EQ(text("异常", 1, 5), "必须是数字");
    EXPECT_EQ(text("异常", 2, 2), "D");
}

TEST_F(MarkedCopyTest, AReportTellsAWorkbookWithMoreFaultsThanACellHasRoomFor) {
    std::vector<Lines> rows = {kHeaders};
    constexpr std::size_t kFaults = 3000;
    for (std::size_t i = 0; i < kFaults; ++i)
        rows.push_back({"#1", "a", "借方", "1", "n", "#1", ""});
    const ImportOutcome refused = ImportTemplateFile(window_, MakeWorkbook("多.xlsx", rows));
    ASSERT_EQ(refused.faults.size(), kFaults);
    for (const char* name : {"report.xlsx", "report.xls"}) {
        const std::string report = folder_.File(name);
        ASSERT_EQ(WriteImportReport({refused}, report), "");
        const auto workbook = office::ReadWorkbook(report);
        const office::Sheet& faults = *workbook->FindSheet("异常");
        EXPECT_EQ(faults.Rows().size(), kFaults + 1);
        const office::Sheet& files = *workbook->FindSheet("引入结果");
        const std::string words = office::CellText(*workbook, *files.Find(1, 5));
        EXPECT_TRUE(words.starts_with("引入模板失败！模板文件数据存在以下错误: 第2行，"))
            << words.substr(0, 80);
        EXPECT_TRUE(words.ends_with("……")) << words.substr(words.size() - 80);
    }
    ImportOutcome broken = refused;
    broken.faults.assign(70'000, refused.faults.front());
    const std::string report = folder_.File("long.xls");
    ASSERT_EQ(WriteImportReport({broken}, report), "");
    const auto workbook = office::ReadWorkbook(report);
    const office::Sheet& faults = *workbook->FindSheet("异常");
    const auto last = static_cast<std::uint32_t>(faults.Rows().size() - 1);
    EXPECT_EQ(office::CellText(*workbook, *faults.Find(last, 5)), "其余 10001 处没有列出");
}

// While a row is reported, somebody works in another window of the process.
class BesideAnother : public FakeWindow {
  public:
    bool ReportRows(std::int64_t done, std::int64_t all) override {
        const auto& boxes = system::Surroundings::Current().messageBoxes;
        boxes->Show("另一窗口的消息", system::MessageButtons::Ok, system::MessageIcon::Information,
                    "信息提示");
        return FakeWindow::ReportRows(done, all);
    }
};

TEST_F(MarkedCopyTest, WhatAnotherWindowTellsWhileSeveralComeInIsShown) {
    BesideAnother window;
    const std::string first = MakeWorkbook("甲.xlsx", {kHeaders, {"#1", "a", "借", "1", "n", "#1", ""}});
    const std::string second = MakeWorkbook("乙.xlsx", rows_);
    EXPECT_EQ(ImportTemplateFiles(window, {first, second}).size(), 2U);
    EXPECT_EQ(Messages(), (Lines{"另一窗口的消息", "另一窗口的消息"})) << "and nothing of the import's";
}

TEST_F(MarkedCopyTest, BlanksAroundAFilesNameAreNoPartOfTheTemplates) {
    const std::vector<Lines> rows = {kHeaders, {"#1", "a", "借", "1", "n", "#1", ""}};
    const std::string blank = MakeWorkbook("  空白 .xlsx", rows);
    EXPECT_EQ(TemplateNameOf(blank), "空白");
    const ImportOutcome outcome = Import(blank);
    EXPECT_EQ(outcome.templateName, "空白");
    EXPECT_EQ(Messages(), Lines{"引入模板 空白 成功！"});
    // Both would be one template.
    NoTemplateYet();
    const std::vector<ImportOutcome> both =
        ImportTemplateFiles(window_, {blank, MakeWorkbook("空白.xlsx", rows)});
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(ReportText(both[1]), "引入模板失败！文件夹中有同名的工作簿“  空白 .xlsx”，请分别引入或改名！");
}

TEST_F(MarkedCopyTest, OneChosenFileIsToldAsEver) {
    const auto dialogs = std::make_shared<SeveralDialogs>();
    dialogs->several = {MakeWorkbook("丙.xlsx", rows_)};
    system::Surroundings surroundings = system::Surroundings::Current();
    surroundings.fileDialogs = dialogs;
    const system::SurroundingsScope scope(surroundings);
    EXPECT_EQ(ImportTemplates(window_).size(), 1U);
    EXPECT_EQ(Messages().size(), 1U);
    dialogs->several.clear();
    EXPECT_TRUE(ImportTemplates(window_).empty());
}

}  // namespace
}  // namespace vicenter::exchange
