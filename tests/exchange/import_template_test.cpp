#include "exchange/import_template.h"

#include "exchange/export_template.h"
#include "exchange/import_several.h"
#include "tests/exchange/exchange_fixture.h"
#include "tests/fakes/template_answer.h"
#include "tests/paths/source_folder.h"
#include "tests/platform/office/package.h"

namespace vicenter::exchange {
namespace {

const Lines kHeaders = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "附件数",
                        "结算方式",    "结算号",  "核算项目", "币别",        "汇率",        "原币金额",
                        "计量单位",    "数量",    "单价",     "金额",        "备注"};
const Lines kShortHeaders = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "备注"};
const std::string kWayQuestion =
    "if exists(select 1 from t_VchTemplateEntry where FID > (select Max(FID) from t_VchTemplate)) delete "
    "t_VchTemplateEntry where FID > (select Max(FID) from t_VchTemplate)\r\n"
    "if exists(select 1 from t_VchTpControl where FID > (select Max(FID) from t_VchTemplate)) delete "
    "t_VchTpControl where FID > (select Max(FID) from t_VchTemplate)\r\n"
    "select count(*) as FNamed from t_VchTemplate with (updlock, holdlock) where FName = '甲''s'";
const std::string kControlHead =
    " declare @FNo int \r\n declare @Vch_cursor CURSOR \r\n Set @Vch_cursor = CURSOR FOR \r\n"
    "     select distinct FNo from t_VchTemplateEntry where FID = @MaxFID \r\n OPEN @Vch_cursor \r\n"
    " FETCH @Vch_cursor into @FNo \r\n while @@fetch_status=0 \r\n Begin \r\n     declare @FFileCount int "
    "\r\n"
    "     declare @Exp nvarchar(255) \r\n"
    "     select Top 1 @FFileCount=FFileCount,@Exp=FExp from t_VchTemplateEntry where FID = @MaxFID and FNo "
    "= @FNo "
    "order by FEntryID \r\n";
const std::string kControlTail =
    "     fetch next from @Vch_cursor into @FNo \r\n End \r\n close @Vch_cursor \r\n deallocate @Vch_cursor "
    "\r\n";

class ImportTest : public ExchangeTest {
  protected:
    void SetUp() override {
        ExchangeTest::SetUp();
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{8}}));
        set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
        set_.Answer("as FTemplateName", fakes::TemplateAnswer(16394, "旧模板"));
    }
    bool Import(const std::string& file, std::int32_t existing = -1) {
        outcome_ = ImportTemplateWorkbook(window_, file, existing, "甲's");
        return outcome_.written;
    }
    bool ImportRowsOf(const std::vector<Lines>& rows) { return Import(MakeWorkbook("a.xlsx", rows)); }
    // What is sent after the question about lines that lie in a new template's way.
    std::string Batch() const {
        for (const std::string& sql : set_.Statements()) {
            if (sql.find("@MaxFID") != std::string::npos) return sql;
        }
        return "";
    }
    void ExpectNothingWritten(const std::string& message, const std::string& title) {
        EXPECT_EQ(Messages(), Lines{message});
        EXPECT_EQ(LastTitle(), title);
        EXPECT_TRUE(set_.Statements().empty());
        EXPECT_EQ(window_.told.back(), "hide");
        EXPECT_TRUE(TemporaryFiles().empty());
        EXPECT_EQ(outcome_.refusal, message);
    }
    // The faults of the last import, one a line.
    Lines Faults() const {
        Lines lines;
        for (const LineFault& fault : outcome_.faults) {
            lines.push_back(std::to_string(fault.row) + "," + std::to_string(fault.column) + " " +
                            fault.header + " [" + fault.value + "] " + fault.reason);
        }
        return lines;
    }

    ImportOutcome outcome_;
};

TEST_F(ImportTest, TellsThatExcelIsMissing) {
    office::UnregisterExcelServer();
    ImportTemplates(window_);
    EXPECT_EQ(Messages(), Lines{"检测当前系统未安装Excel，引入失败！"});
    EXPECT_EQ(LastTitle(), "信息提示");
}

TEST_F(ImportTest, AsksForAFileOfBothKindsFromVersion12On) {
    ImportTemplates(window_);
    const system::FileRequest& request = surroundings_.fileDialogs->requests.at(0);
    EXPECT_EQ(request.title, "选择引入文件");
    EXPECT_EQ(request.flags, 0x81001u);
    EXPECT_EQ(request.proposedName, "");
    ASSERT_EQ(request.filters.size(), 2u);
    EXPECT_EQ(request.filters[0].description, "FormatIni File Excel File (*.xls)");
    EXPECT_EQ(request.filters[1].description, "FormatIni File Excel File (*.xlsx)");
    EXPECT_EQ(request.filters[1].pattern, "*.xlsx");
    EXPECT_EQ(request.selectedFilter, 1u);
    EXPECT_TRUE(Messages().empty());
    office::RegisterExcelServer("11.0");
    ImportTemplates(window_);
    EXPECT_EQ(surroundings_.fileDialogs->requests.at(1).filters.size(), 1u);
}

TEST_F(ImportTest, RefusesOtherExtensions) {
    for (const char* name : {"a.csv", "a", "xls", "a.xlsm"}) {
        surroundings_.messageBoxes->shown.clear();
        EXPECT_FALSE(ImportTemplateFile(window_, folder_.File(name)));
        EXPECT_EQ(Messages(), Lines{"选择导入文件类型不正确，请确认是Excel文件！"});
        EXPECT_EQ(LastTitle(), "信息提示");
    }
}

TEST_F(ImportTest, AsksBeforeItReplacesATemplate) {
    const std::string file = MakeWorkbook("旧模板.XLSX", {kShortHeaders, {"#1", "a", "借", "1001", "b"}});
    set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{5}}));
    set_.Answer("as FTemplateName", fakes::TemplateAnswer(16394, "旧模板"));
    surroundings_.fileDialogs->choices = {file, file};
    ImportTemplates(window_);
    const std::string question =
        "模板[旧模板]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。请确认是否引入？";
    EXPECT_EQ(Messages(), Lines{question});
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].buttons, system::MessageButtons::OkCancel);
    EXPECT_EQ(LastTitle(), "信息提示");
    EXPECT_TRUE(window_.told.empty());
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    ImportTemplates(window_);
    EXPECT_EQ(Messages().back(), "引入模板 旧模板 成功！");
    bool replaced = false;
    for (const std::string& sql : set_.Statements())
        replaced |= sql.find(" set @MaxFID = 5") != std::string::npos;
    EXPECT_TRUE(replaced);
}

class NameOfAnother : public ImportTest {
  protected:
    bool ImportNamed(const std::string& name) {
        outcome_ =
            ImportTemplateFile(window_, MakeWorkbook(name, {kShortHeaders, {"#1", "a", "借", "1001", "b"}}));
        return outcome_.written;
    }
    void Owned(int id, int owner) {
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{id}}));
        set_.Answer("as FTemplateName", fakes::TemplateAnswer(owner, "旧模板"));
    }
};

TEST_F(NameOfAnother, IsRefusedWithTheOwnerTold) {
    Owned(5, 2);
    EXPECT_FALSE(ImportNamed("旧模板.xlsx"));
    EXPECT_EQ(Messages(), Lines{"模板[旧模板]属于其他用户（用户编号 2），不允许覆盖，引入失败！"});
    EXPECT_EQ(Batch(), "");
}

TEST_F(NameOfAnother, IsRefusedWhenNobodySaysWhoseItIs) {
    set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{5}}));
    set_.Fail("as FTemplateName", "gone");
    EXPECT_FALSE(ImportNamed("旧模板.xlsx"));
    EXPECT_EQ(Messages(), Lines{"引入模板失败！"});
    set_.Fail("select FID from t_VchTemplate where FName", "gone");
    EXPECT_FALSE(ImportNamed("旧模板.xlsx"));
    EXPECT_EQ(Batch(), "");
}

TEST_F(NameOfAnother, ComesAfterTheUsersOwn) {
    set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{5}, {9}}));
    set_.Answer("and (FUserID = 16394 or FID = 0)", Rows({"FID"}, {{9}}));
    set_.Answer("as FTemplateName", fakes::TemplateAnswer(16394, "旧模板"));
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    EXPECT_TRUE(ImportNamed("旧模板.xlsx"));
    EXPECT_NE(Batch().find(" set @MaxFID = 9"), std::string::npos);
    EXPECT_NE(window_.told.end(), std::find(window_.told.begin(), window_.told.end(), "rebuild 9"));
}

TEST_F(NameOfAnother, TheStandardTemplateStaysEverybodys) {
    Owned(0, 0);
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    EXPECT_TRUE(ImportNamed("标准模板.xlsx"));
    EXPECT_NE(Batch().find("values(@MaxFID,'标准模板',0,'',GetDate())"), std::string::npos);
}

TEST_F(ImportTest, ClearsTheWayOfANewTemplateAndOfNoOther) {
    const std::string file = MakeWorkbook("a.xlsx", {kShortHeaders, {"#1", "a", "借", "1001", "b"}});
    const auto deletions = [this] {
        int count = 0;
        for (const std::string& sql : set_.Statements())
            count += sql.find(" delete t_VchTemplateEntry where FID > ") != std::string::npos ? 1 : 0;
        return count;
    };
    EXPECT_TRUE(Import(file, 5));
    EXPECT_EQ(deletions(), 0);
    EXPECT_TRUE(Import(file));
    EXPECT_EQ(deletions(), 1);
}

TEST_F(ImportTest, MakesNoSecondTemplateOfAName) {
    set_.Answer("as FNamed", Rows({"FNamed"}, {{1}}));
    EXPECT_FALSE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1001", "b"}}));
    EXPECT_EQ(Messages(), Lines{"引入模板失败！名为 甲's 的模板已在别处建立，没有引入，账套保持原样！"});
    EXPECT_EQ(Batch(), "");
    set_.Fail("as FNamed", "Lock request time out period exceeded.");
    EXPECT_FALSE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1001", "b"}}));
    EXPECT_NE(Messages().back().find("账套正被其他用户锁定，请稍后再试！"), std::string::npos);
    EXPECT_EQ(Batch(), "");
}

TEST_F(ImportTest, WritesANewTemplateInOneBatch) {
    EXPECT_TRUE(ImportRowsOf({kHeaders,
                              {"#1", "提'现", "借", "1001.10", "现金", "#2", "支票", "0012", "01", "人民币",
                               "#1", "#12.5", "公斤", "#3", "#0.1", "1,234.50", "备注"},
                              {"#1", "", "贷", "#1002", "银行"}}));
    EXPECT_EQ(
        Batch(),
        " declare @MaxFID int \r\n select @MaxFID = Max(FID)+1 from t_VchTemplate \r\n"
        " insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
        "values(@MaxFID,'甲''s',16394,'',GetDate()) \r\n"
        " insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountNumber,FAcctountName,FFileCount,"
        "FSettleName,FSettleNumber,FItemsInfo,FCurrencyName,FRate,FAmountFor,FUnitName,FQty,FPrice,FAmount,"
        "FRemark) "
        "values(@MaxFID,2,1,'提''现',1,'1001.10','现金',2,'支票','0012','01','人民币',1,12.5,'公斤',3,"
        "0.1,1234.5,'备注') \r\n"
        " insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountNumber,FAcctountName,FFileCount,"
        "FSettleName,FSettleNumber,FItemsInfo,FCurrencyName,FRate,FAmountFor,FUnitName,FQty,FPrice,FAmount,"
        "FRemark) values(@MaxFID,3,1,'',0,'1002','银行',0,'','','','',0,0,'',0,0,0,'') \r\n" +
            kControlHead +
            "     insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) "
            "values(@MaxFID,@FNo,0,@Exp,@FFileCount) \r\n" +
            kControlTail);
    EXPECT_EQ(set_.Statements(),
              (Lines{kWayQuestion, Batch(), "select FID from t_VchTemplate where FName = '甲''s'",
                     "exec pro_VchTpCanUsed 8",
                     "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = 8 order by fno"}));
    EXPECT_EQ(window_.told, (Lines{"show 正在执行凭证模板引入，请稍后...", "rows 2/2", "label 引入完毕...",
                                   "rebuild 8", "hide"}));
    EXPECT_EQ(Messages(), Lines{"引入模板 甲's 成功！"});
    EXPECT_EQ(LastTitle(), "信息提示");
    EXPECT_EQ(log_->Calls(), Lines{"WriteLog(K831000, 3, 凭证模板-引入模板 甲's 成功)"});
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ImportTest, ReplacesATemplateAndKeepsItsControlRows) {
    EXPECT_TRUE(Import(MakeWorkbook("a.xls", {kShortHeaders, {"#3", "x", "贷", "1", "n"}}), 5));
    EXPECT_EQ(
        Batch(),
        " delete t_VchTemplateEntry where FID = 5\r\n delete t_VchTemplate where FID = 5\r\n"
        " declare @MaxFID int \r\n set @MaxFID = 5\r\n"
        " insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
        "values(@MaxFID,'甲''s',16394,'',GetDate()) \r\n"
        " insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountNumber,FAcctountName,FRemark) "
        "values(@MaxFID,2,3,'x',0,'1','n','') \r\n" +
            kControlHead +
            "     update t_VchTpControl set FFileCount = @FFileCount,FKey = @Exp where FID = @MaxFID and FNo "
            "= "
            "@FNo \r\n" +
            kControlTail +
            " delete t_VchTpControl where FID = @MaxFID and FNo not in (select FNo from t_VchTemplateEntry "
            "where FID = @MaxFID) \r\n");
}

TEST_F(ImportTest, NotesTheNumbersThatCannotBeUsed) {
    set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}, {{1}, {3}}));
    EXPECT_TRUE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1", "n"}}));
    EXPECT_EQ(Messages(), Lines{"引入模板 甲's 成功！\r\n\r\n注：编号为 1、3 的凭证模板存在异常(标红)，"
                                "无法在当前账套中使用！"});
}

TEST_F(ImportTest, NumbersThatCannotBeReadAreNotPassedForUsable) {
    set_.Fail("from t_VchTpControl where FIsCanUsed", "no answer");
    EXPECT_TRUE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1", "n"}}));
    EXPECT_EQ(Messages().back(),
              "引入模板 甲's 成功！\r\n\r\n注：哪些编号无法在当前账套中使用未能读取，"
              "请重新打开凭证模板查看！");
}

TEST_F(ImportTest, TakesTheColumnsInAnyOrder) {
    EXPECT_TRUE(
        ImportRowsOf({{"科目名称(*)", "借／贷（*）", " 摘要(*) ", "模板编号(*)", "科目代码(*)", "金额"},
                      {"现金", "借", "a", "#7", "#1001", "#2.25"}}));
    EXPECT_NE(Batch().find("(FID,FEntryID,FAcctountName,FDC,FExp,FNo,FAccountNumber,FAmount) "
                           "values(@MaxFID,2,'现金',1,'a',7,'1001',2.25) "),
              std::string::npos)
        << Batch();
}

TEST_F(ImportTest, RefusesAMissingFile) {
    EXPECT_FALSE(Import(folder_.File("none.xls")));
    ExpectNothingWritten("引入模板失败！源文件不存在！", "信息提示");
}

TEST_F(ImportTest, RefusesAWorkbookWithoutTheSheet) {
    EXPECT_FALSE(Import(MakeWorkbook("a.xls", {kShortHeaders}, "Sheet1")));
    ExpectNothingWritten("引入模板失败！模板文件结构不正确，无法找到[凭证模板]sheet页！", "Orbis提示");
}

TEST_F(ImportTest, TellsEveryFaultyHeader) {
    EXPECT_FALSE(ImportRowsOf({{"模板编号(*)", "备注", "备注", "x", "", "摘要(*)"}}));
    ExpectNothingWritten(
        "引入模板失败！模板文件结构不正确: "
        "\r\n第C列[备注]存在同名列！\r\n第D列[x]列名错误！\r\n第E列[]列名错误！\r\n",
        "Orbis提示");
    EXPECT_EQ(Faults(), (Lines{"1,3 备注 [备注] 存在同名列，请删除其中一列",
                               "1,4 x [x] 列名错误，请改为模板的列名或删除这一列",
                               "1,5  [] 整列为空，请删除这一列，或者整理后引入"}));
}

TEST_F(ImportTest, NeverSeesTheLastHeaderAmongTheRequired) {
    EXPECT_FALSE(ImportRowsOf({{"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)"}}));
    ExpectNothingWritten("引入模板失败！模板文件结构不正确,缺少必录列: 科目名称(*)", "Orbis提示");
    EXPECT_EQ(Faults(), Lines{"1,0 科目名称(*) [] 必录列不能是最后一列，请把它移到前面"});
}

TEST_F(ImportTest, ListsEveryMissingColumn) {
    EXPECT_FALSE(ImportRowsOf({{"摘要(*)", "科目代码(*)", "备注"}}));
    ExpectNothingWritten("引入模板失败！模板文件结构不正确,缺少必录列: 模板编号(*),借/贷(*),科目名称(*)",
                         "Orbis提示");
}

TEST_F(ImportTest, ReportsEveryFaultyCellAtOnce) {
    EXPECT_FALSE(ImportRowsOf(
        {kHeaders,
         {"#1", "", "借", "1001", "现金"},
         {"x", "a", "借方", "", " ", "40000", "", "", "", "", "abc", "#1", "", "2024-01-02", "", "#5"},
         {"#1", "", "贷", "1", "n"}}));
    ExpectNothingWritten(
        "引入模板失败！模板文件数据存在以下错误: "
        "第2行，第B列值存在错误(相同凭证模板编号首行摘要不允许为空)，\r\n"
        "第3行，第A列值存在错误，\r\n第3行，第C列值存在错误，\r\n第3行，第D列值存在错误，\r\n"
        "第3行，第E列值存在错误，\r\n第3行，第F列值存在错误，\r\n第3行，第K列值存在错误，\r\n"
        "第3行，第N列值存在错误，\r\n",
        "Orbis提示");
    EXPECT_TRUE(log_->Calls().empty());
    EXPECT_EQ(Faults(),
              (Lines{"2,2 摘要(*) [] 相同凭证模板编号首行摘要不允许为空", "3,1 模板编号(*) [x] 必须是整数",
                     "3,3 借/贷(*) [借方] 必须是“借”或“贷”", "3,4 科目代码(*) [] 不允许为空",
                     "3,5 科目名称(*) [] 不允许为空", "3,6 附件数 [40000] 必须是-32768到32767之间的整数",
                     "3,11 汇率 [abc] 必须是数字", "3,14 数量 [2024-01-02] 必须是数字"}));
}

TEST_F(ImportTest, TakesDatesBooleansAndErrorsInNumberColumnsForErrors) {
    office::Workbook workbook;
    office::Sheet& sheet = workbook.AddSheet(kSheetName);
    const auto setText = [&](std::uint32_t row, std::uint32_t column, const std::string& text) {
        office::Cell& cell = sheet.At(row, column);
        cell.kind = office::CellKind::Text;
        cell.text = workbook.Texts().Intern(text);
    };
    const Lines headers = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)",
                           "科目名称(*)", "数量",    "单价",     "金额"};
    const Lines texts = {"1", "a", "借", "1001", "n"};
    for (std::uint32_t c = 0; c < headers.size(); ++c)
        setText(0, c, headers[c]);
    for (std::uint32_t c = 0; c < texts.size(); ++c)
        setText(1, c, texts[c]);
    office::CellFormat date;
    date.numberFormat = "yyyy-mm-dd";
    sheet.At(1, 5).kind = office::CellKind::Number;
    sheet.At(1, 5).number = 45292;
    sheet.At(1, 5).format = workbook.Formats().Intern(date);
    sheet.At(1, 6).kind = office::CellKind::Boolean;
    sheet.At(1, 6).boolean = true;
    sheet.At(1, 7).kind = office::CellKind::Error;
    sheet.At(1, 7).error = office::CellError::Div0;
    for (const auto kind : {office::FileKind::Xls, office::FileKind::Xlsx}) {
        surroundings_.messageBoxes->shown.clear();
        office::WriteWorkbook(workbook, folder_.File("d"), kind);
        EXPECT_FALSE(Import(folder_.File("d")));
        EXPECT_EQ(Messages(), Lines{"引入模板失败！模板文件数据存在以下错误: 第2行，第F列值存在错误，\r\n"
                                    "第2行，第G列值存在错误，\r\n第2行，第H列值存在错误，\r\n"});
    }
}

// A chat program's copy: what looks like 借 is 借, in the check as in what is written.
TEST_F(ImportTest, InvisibleMarksAreNoPartOfCodesAndNames) {
    for (const char* mark : {"\u200B", "\uFEFF", "\u00AD", "\u200D", "\u200E"}) {
        set_.Forget();
        const std::string m = mark;
        EXPECT_TRUE(
            ImportRowsOf({{m + "模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "备注"},
                          {"1" + m, "a" + m + "b", "借" + m, m + "10" + m + "01 ", "现" + m + "金", "r"},
                          {"1", "c", m + "贷", "1002", "银行", "r"}}));
        EXPECT_NE(Batch().find("values(@MaxFID,2,1,'a" + m + "b',1,'1001','现金','r') "), std::string::npos)
            << Batch();
        EXPECT_NE(Batch().find("values(@MaxFID,3,1,'c',0,'1002','银行','r') "), std::string::npos) << Batch();
    }
}

TEST_F(ImportTest, RefusesErrorsLostDigitsAndFormulasWithoutAResultByTheirPlace) {
    office::Package package;
    const auto text = [](const std::string& place, const std::string& content) {
        return "<c r='" + place + "' t='inlineStr'><is><t>" + content + "</t></is></c>";
    };
    package.workbook = "<workbook><sheets><sheet name='凭证模板' sheetId='1' r:id='r1'/></sheets></workbook>";
    std::string header;
    const Lines headers = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)",
                           "科目名称(*)", "金额",    "备注"};
    for (std::size_t c = 0; c < headers.size(); ++c)
        header += text(std::string(1, static_cast<char>('A' + c)) + "1", headers[c]);
    package.sheet = "<worksheet><sheetData><row r='1'>" + header + "</row><row r='2'><c r='A2'><v>1</v></c>" +
                    "<c r='B2' t='e'><v>#N/A</v></c>" + text("C2", "借") +
                    "<c r='D2'><v>6222021234567890123</v></c>" + text("E2", "现金") +
                    "<c r='F2'><f>VLOOKUP(A2,H:I,2)</f></c><c r='G2'><f>NOW()</f></c></row>" +
                    "<row r='3'><c r='A3'><v>1</v></c>" + text("B3", "b") + text("C3", "贷") +
                    "<c r='D3'><v>1002</v></c>" + text("E3", "银行") +
                    "<c r='F3'><f>SUM(1,2)*10</f></c></row>" + "</sheetData></worksheet>";
    package.Save(folder_.File("f.xlsx"));
    EXPECT_FALSE(Import(folder_.File("f.xlsx")));
    ExpectNothingWritten(
        "引入模板失败！模板文件数据存在以下错误: 第2行，第B列值存在错误(公式结果为错误值)，\r\n"
        "第2行，第D列值存在错误(数字超过15位，请将单元格设为文本格式后重新录入)，\r\n"
        "第2行，第F列值存在错误(公式没有计算结果，请用 Excel 打开并保存后再引入)，\r\n"
        "第2行，第G列值存在错误(公式没有计算结果，请用 Excel 打开并保存后再引入)，\r\n",
        "Orbis提示");
}

TEST_F(ImportTest, ReadsCodesAsTheyAreShown) {
    office::Workbook workbook;
    office::Sheet& sheet = workbook.AddSheet(kSheetName);
    for (std::uint32_t c = 0; c < kShortHeaders.size(); ++c) {
        office::Cell& cell = sheet.At(0, c);
        cell.kind = office::CellKind::Text;
        cell.text = workbook.Texts().Intern(kShortHeaders[c]);
        sheet.At(1, c).kind = office::CellKind::Number;
        sheet.At(1, c).number = 12;
    }
    sheet.At(1, 2).kind = office::CellKind::Text;
    sheet.At(1, 2).text = workbook.Texts().Intern("借");
    office::CellFormat padded;
    padded.numberFormat = "0000";
    sheet.At(1, 0).format = sheet.At(1, 3).format = workbook.Formats().Intern(padded);
    office::WriteWorkbook(workbook, folder_.File("d.xls"), office::FileKind::Xls);
    EXPECT_TRUE(Import(folder_.File("d.xls")));
    EXPECT_NE(Batch().find("values(@MaxFID,2,12,'12',1,'0012','12','12') "), std::string::npos) << Batch();
}

TEST_F(ImportTest, ReadsCodesWithTheDecimalsThatTheyAreShownWith) {
    office::Workbook workbook;
    office::Sheet& sheet = workbook.AddSheet(kSheetName);
    struct Shown {
        const char* format;
        double number;
        const char* code;
    };
    const std::vector<Shown> shown = {
        {"0.00", 1001.1, "1001.10"},
        {"0.00", 1001, "1001.00"},
        {"0.0", 1001.25, "1001.25"},
        {"00000.00", 12.5, "00012.50"},
        {"#,##0.00", 1001.1, "1001.1"},
        {"0.00", -1, "-1"},
        // Room for a bracket or a sign of the other numbers, colours, languages, further sections.
        {"0.00_ ", 1001.1, "1001.10"},
        {"0.00_);[Red]\\(0.00\\)", 1001.1, "1001.10"},
        {"0000_ ;[红色]-0000\\ ", 12, "0012"},
        {"0.00;-0.00;;@", 1001.1, "1001.10"},
        {"[$-804]0.00\" \"", 1001.1, "1001.10"},
        {"[Blue]* 0.00", 1001.1, "1001.10"},
        {"#0.00", 1001.1, "1001.10"},
        {"?0.0#", 1001, "1001.0"},
        // What shows more than the digits or other ones, or depends on the number.
        {"0.0#", 1001.125, "1001.125"},
        {"0000\"号\"", 12, "12"},
        {"[DBNum1]0000", 12, "12"},
        {"[$￥-804]0.00", 1001.1, "1001.1"},
        {"[>5]0.00;0", 1001.1, "1001.1"},
        {"0.00;-0.00;-", 0, "0"},
    };
    const auto setText = [&](std::uint32_t row, std::uint32_t column, const std::string& text) {
        office::Cell& cell = sheet.At(row, column);
        cell.kind = office::CellKind::Text;
        cell.text = workbook.Texts().Intern(text);
    };
    for (std::uint32_t c = 0; c < kShortHeaders.size(); ++c)
        setText(0, c, kShortHeaders[c]);
    for (std::uint32_t i = 0; i < shown.size(); ++i) {
        for (const auto& [column, text] :
             std::vector<std::pair<std::uint32_t, const char*>>{{0, "1"}, {1, "a"}, {2, "借"}, {4, "n"}}) {
            setText(i + 1, column, text);
        }
        office::CellFormat format;
        format.numberFormat = shown[i].format;
        office::Cell& cell = sheet.At(i + 1, 3);
        cell.kind = office::CellKind::Number;
        cell.number = shown[i].number;
        cell.format = workbook.Formats().Intern(format);
    }
    for (const auto kind : {office::FileKind::Xls, office::FileKind::Xlsx}) {
        set_.Forget();
        office::WriteWorkbook(workbook, folder_.File("d"), kind);
        EXPECT_TRUE(Import(folder_.File("d")));
        for (std::size_t i = 0; i < shown.size(); ++i) {
            EXPECT_NE(Batch().find("," + std::to_string(i + 2) + ",1,'a',1,'" + shown[i].code + "','n'"),
                      std::string::npos)
                << shown[i].format << " " << shown[i].code;
        }
    }
}

TEST_F(ImportTest, LeavesOutBlankRowsBehindTheLastFilledOne) {
    EXPECT_TRUE(
        ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1", "n"}, {" ", " "}, {"", "", "", "", "", "  "}}));
    EXPECT_NE(Batch().find("@MaxFID,2,"), std::string::npos);
    EXPECT_EQ(Batch().find("@MaxFID,3,"), std::string::npos);
}

TEST_F(ImportTest, TakesABlankRowInTheMiddleForARowWithErrors) {
    EXPECT_FALSE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1", "n"}, {}, {"#1", "", "贷", "2", "m"}}));
    ExpectNothingWritten(
        "引入模板失败！模板文件数据存在以下错误: 第3行，第A列值存在错误，\r\n"
        "第3行，第B列值存在错误(相同凭证模板编号首行摘要不允许为空)，\r\n第3行，第C列值存在错误，\r\n"
        "第3行，第D列值存在错误，\r\n第3行，第E列值存在错误，\r\n",
        "Orbis提示");
}

TEST_F(ImportTest, WritesNothingWhenCancelled) {
    window_.cancel = true;
    EXPECT_FALSE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1", "n"}}));
    EXPECT_TRUE(set_.Statements().empty());
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(window_.told.back(), "hide");
    EXPECT_TRUE(TemporaryFiles().empty());
}

// The box keeps its fixed words; why stands in the list of faults and in the log.
TEST_F(ImportTest, FailsPlainlyOnFilesThatAreNoWorkbooksAndKeepsTheReason) {
    const std::vector<std::pair<std::string, std::string>> files = {
        {"no workbook",
         "文件实际上是文本，不是 Excel 工作簿，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！"},
        {"\xEF\xBB\xBF\r\n<HTML><table><tr><td>1</td></tr></table></html>",
         "文件实际上是网页（HTML），不是 Excel 工作簿，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！"},
        {"", "文件是空的，没有任何内容！"},
    };
    for (const auto& [content, reason] : files) {
        surroundings_.messageBoxes->shown.clear();
        log_->ForgetCalls();
        std::ofstream(folder_.File("bad.xls"), std::ios::trunc) << content;
        EXPECT_FALSE(Import(folder_.File("bad.xls")));
        ExpectNothingWritten("引入模板失败！", "信息提示");
        EXPECT_EQ(outcome_.reason, reason);
        EXPECT_EQ(Faults(), Lines{"0,0  [] " + reason});
        EXPECT_EQ(log_->Calls(),
                  (Lines{"WriteLog(K831000, 4, 凭证模板-引入模板 甲's 失败)",
                         "WriteLog(K831000, 4, 凭证模板-引入模板 甲's 失败原因：" + reason + ")"}));
    }
}

// Found before anything is written, and told by row and column: what the account set has no room for.
TEST_F(ImportTest, RefusesTextsTooLongAndNumbersTooLarge) {
    const auto repeated = [](const char* piece, int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += piece;
        return text;
    };
    const Lines headers = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)",
                           "科目名称(*)", "汇率",    "金额",     "备注"};
    // The most that fits: blanks at the ends are no part of it, a character beyond the first plane counts
    // two.
    EXPECT_TRUE(
        ImportRowsOf({headers,
                      {"#1", repeated("长", 255), "借", repeated("1", 80), repeated("𠮷", 80),
                       "99999999999999999", "99999999999999999999999", " " + repeated("备", 80) + " "}}))
        << Messages().back();
    surroundings_.messageBoxes->shown.clear();
    set_.Forget();
    EXPECT_FALSE(ImportRowsOf({headers,
                               {"#1", repeated("长", 256), "借", repeated("1", 81), repeated("𠮷", 81),
                                "1000000000000000000", "#1e24", repeated("备", 81)},
                               {"#1", "", "贷", "1", "n", "-1e300", "99999999999999999999999.9999", ""}}));
    ExpectNothingWritten(
        "引入模板失败！模板文件数据存在以下错误: 第2行，第B列值存在错误(长度不能超过255个字符)，\r\n"
        "第2行，第D列值存在错误(长度不能超过80个字符)，\r\n第2行，第E列值存在错误(长度不能超过160个字符)"
        "，\r\n"
        "第2行，第F列值存在错误(数字过大，整数部分不能超过18位)，\r\n"
        "第2行，第G列值存在错误(数字过大，整数部分不能超过24位)，\r\n"
        "第2行，第H列值存在错误(长度不能超过80个字符)，\r\n"
        "第3行，第F列值存在错误(数字过大，整数部分不能超过18位)，\r\n",
        "Orbis提示");
    ASSERT_FALSE(Faults().empty());
    EXPECT_EQ(Faults().back(), "3,6 汇率 [-1e300] 数字过大，整数部分不能超过18位");
}

class HeaderOnly : public ImportTest {
  protected:
    static constexpr const char* kQuestion =
        "模板[甲's]现有 3 行分录，而引入文件中没有分录，引入后该模板将被清空。请确认是否引入？";
    void Present(int lines) {
        set_.Answer("as FCount from t_VchTemplateEntry where FID = 5", Rows({"FCount"}, {{lines}}));
    }
    bool ImportEmpty(int existing) {
        return Import(MakeWorkbook("a.xlsx", {kShortHeaders, {" ", ""}}), existing);
    }
};

TEST_F(HeaderOnly, NeverEmptiesAFilledTemplateWithoutAsking) {
    Present(3);
    EXPECT_FALSE(ImportEmpty(5));
    EXPECT_EQ(Messages(), Lines{kQuestion});
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].buttons, system::MessageButtons::OkCancel);
    EXPECT_EQ(Batch(), "");
    EXPECT_TRUE(log_->Calls().empty());
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    EXPECT_TRUE(ImportEmpty(5));
    EXPECT_EQ(Messages().back(), "引入模板 甲's 成功！");
    EXPECT_EQ(outcome_.lines, 0);
}

TEST_F(HeaderOnly, IsNotAskedAboutWhereNothingIsLost) {
    Present(0);
    EXPECT_TRUE(ImportEmpty(5));
    EXPECT_TRUE(ImportEmpty(-1));
    Present(3);
    EXPECT_TRUE(Import(MakeWorkbook("a.xlsx", {kShortHeaders, {"#1", "a", "借", "1001", "b"}}), 5));
    EXPECT_EQ(Messages(), (Lines{"引入模板 甲's 成功！", "引入模板 甲's 成功！", "引入模板 甲's 成功！"}));
}

TEST_F(HeaderOnly, WritesNothingWhenNobodySaysWhatWouldBeLost) {
    set_.Fail("as FCount from t_VchTemplateEntry", "gone");
    EXPECT_FALSE(ImportEmpty(5));
    EXPECT_EQ(Messages(), Lines{"引入模板失败！"});
    EXPECT_EQ(Batch(), "");
}

TEST_F(ImportTest, RefusesFilesWhoseNamesNoTemplateCanBear) {
    const std::vector<Lines> rows = {kShortHeaders, {"#1", "a", "借", "1001", "b"}};
    for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
#ifndef _WIN32  // which has no such names of files
             {"a\tb.xlsx", "凭证模板名称不能包含制表符、换行等控制字符！"},
#endif
             {"　.xlsx", "凭证模板名称不允许为空！"}}) {
        surroundings_.messageBoxes->shown.clear();
        EXPECT_FALSE(ImportTemplateFile(window_, MakeWorkbook(name, rows)));
        EXPECT_EQ(Messages(), Lines{"引入模板失败！" + reason});
        EXPECT_EQ(Batch(), "");
    }
    // No folder holds a file of such a name here; other systems' do.
    std::string name;
    for (int i = 0; i < 256; ++i)
        name += "长";
    surroundings_.messageBoxes->shown.clear();
    EXPECT_FALSE(ImportTemplateFile(window_, folder_.File(name + ".xlsx")));
    EXPECT_EQ(Messages(), Lines{"引入模板失败！凭证模板名称长度不能超过255个字符！"});
}

TEST_F(ImportTest, FailsWhenTheServerRefusesTheBatch) {
    set_.Fail("insert into t_VchTemplate", "no room");
    EXPECT_FALSE(ImportRowsOf({kShortHeaders, {"#1", "a", "借", "1", "n"}}));
    EXPECT_EQ(Messages(), (Lines{"no room", "引入模板失败！"}));
    EXPECT_EQ(log_->Calls(), (Lines{"WriteLog(K831000, 4, 凭证模板-引入模板 甲's 失败)",
                                    "WriteLog(K831000, 4, 凭证模板-引入模板 甲's 失败原因：no room)"}));
    EXPECT_EQ(set_.Statements().size(), 2u);  // the question about what is in the way, and the batch
}

TEST_F(ImportTest, QuitsTheServerWhateverHappens) {
    const auto excel = fakes::RegisterScripted("Excel.Application");
    excel->Value("Quit", {});
    EXPECT_FALSE(Import(MakeWorkbook("a.xls", {kShortHeaders})));
    EXPECT_EQ(excel->Calls().front(), "DisplayAlerts=False");
    EXPECT_EQ(excel->Calls().back(), "Quit()");
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ImportTest, TakesTemplatesOfEveryProgram) {
    const Lines samples = {"openpyxl.xlsx",
                           "xlsxwriter-inline.xlsx",
                           "xlwt.xls",
                           "exceljs.xlsx",
                           "sheetjs.xls",
                           "sheetjs.xlsx",
                           "sheetjs-features.xls",
                           "sheetjs-features.xlsx",
                           "libreoffice.xls",
                           "libreoffice.xlsx",
                           "libreoffice-features.xls",
                           "libreoffice-features.xlsx",
                           "gnumeric.xls",
                           "gnumeric.xlsx",
                           "gnumeric-features.xls",
                           "gnumeric-features.xlsx"};
    for (const std::string& name : samples) {
        set_.Forget();
        EXPECT_TRUE(Import((testing_paths::SourceFolder() / "tests/data/workbooks" / name).string())) << name;
        EXPECT_NE(
            Batch().find(
                "values(@MaxFID,2,1,'提取现金',1,'1001.10','现金',2,'支票','0012','01.01,02','人民币',1,"
                "12.5,'公斤',3,0.1,1234.56,'备注𠮷') "),
            std::string::npos)
            << name;
        EXPECT_NE(Batch().find("values(@MaxFID,3,1,'',0,'1002','银行存款',0,'','','','美元',7.1234,"),
                  std::string::npos)
            << name;
        EXPECT_EQ(Batch().find("values(@MaxFID,4,"), std::string::npos) << name;
    }
}

TEST_F(ImportTest, NumbersTypedAsTextsKeepEveryDigit) {
    Lines line = {"1", "a", "借", "1", "n", "", "", "", "", "", "1234567.0123456789"};
    line.insert(line.end(), {"12345678901234567890123.4567", "", "1234567890123456.7891",
                             "￥ 1,234,567,890.0123456789", "(99999999999999999.99)", ""});
    EXPECT_TRUE(ImportRowsOf({kHeaders, line}));
    EXPECT_NE(Batch().find("1234567.0123456789,12345678901234567890123.4567,'',1234567890123456.7891,"
                           "1234567890.0123456789,-99999999999999999.99,'') "),
              std::string::npos)
        << Batch();
    // The room of a column, too, is that of the digits as they are typed.
    set_.Forget();
    line[11] = "999999999999999999999999.9999";
    EXPECT_TRUE(ImportRowsOf({kHeaders, line}));
    EXPECT_NE(Batch().find(",999999999999999999999999.9999,"), std::string::npos) << Batch();
    line[11] = "999999999999999999999999.99996";
    EXPECT_FALSE(ImportRowsOf({kHeaders, line}));
}

TEST_F(ImportTest, ComesBackFromAnExportFieldByField) {
    window_.AddLine({"1", "提现 'x'", "借", "1001.10", "现金 01", "2", "支票", "0012", "01.01,02", "人民币",
                     "7.1234", "0.30000000000000004", "公斤", "3", "0.1", "-1234567.89", "=1+1"});
    window_.AddLine(
        {"32767", "_x000D_", "贷", "0000", "𠮷", "", "", "1/2", "", "", "", "", "", "", "", "1e20", "<&>"});
    for (const char* name : {"r.xls", "r.xlsx"}) {
        set_.Forget();
        ASSERT_TRUE(WriteTemplateWorkbook(window_, folder_.File(name), false));
        EXPECT_TRUE(Import(folder_.File(name)));
        EXPECT_NE(
            Batch().find("values(@MaxFID,2,1,'提现 ''x''',1,'1001.10','现金 01',2,'支票','0012','01.01,02',"
                         "'人民币',7.1234,0.30000000000000004,'公斤',3,0.1,-1234567.89,'=1+1') "),
            std::string::npos)
            << Batch();
        EXPECT_NE(Batch().find("values(@MaxFID,3,32767,'_x000D_',0,'0000','𠮷',0,'','1/2','','',0,0,'',0,0,"
                               "100000000000000000000,'<&>') "),
                  std::string::npos)
            << Batch();
    }
}

}  // namespace
}  // namespace vicenter::exchange
