#include "exchange/export_template.h"

#include "exchange/excel_access.h"
#include "platform/office/excel_objects.h"
#include "platform/office/xlsx_package.h"
#include "tests/exchange/exchange_fixture.h"
#include "tests/fakes/file_kinds.h"

namespace vicenter::exchange {
namespace {

class ExportTest : public ExchangeTest {
  protected:
    std::unique_ptr<office::Workbook> Exported(const std::string& name = "out.xlsx") {
        const std::string file = folder_.File(name);
        EXPECT_TRUE(WriteTemplateWorkbook(window_, file, true));
        return office::ReadWorkbook(file);
    }
    static Lines RowOf(const office::Workbook& workbook, std::uint32_t row) {
        Lines texts;
        const office::Sheet& sheet = *workbook.Sheets()[0];
        for (std::uint32_t c = 0; c < kWorkbookColumnCount; ++c) {
            const office::Cell* cell = sheet.Find(row, c);
            texts.push_back(cell == nullptr ? "" : office::CellText(workbook, *cell));
        }
        return texts;
    }
};

TEST_F(ExportTest, AsksForAnOpenTemplateFirst) {
    window_.templateId.clear();
    office::UnregisterExcelServer();
    ExportTemplate(window_);
    EXPECT_EQ(Messages(), Lines{"请选择要引出的模板！"});
    EXPECT_EQ(LastTitle(), "信息提示");
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].icon, system::MessageIcon::Information);
    EXPECT_TRUE(surroundings_.fileDialogs->requests.empty());
}

TEST_F(ExportTest, TellsThatExcelIsMissing) {
    office::UnregisterExcelServer();
    ExportTemplate(window_);
    EXPECT_EQ(Messages(), Lines{"检测当前系统未安装Excel，引出失败！"});
    EXPECT_EQ(LastTitle(), "信息提示");
}

TEST_F(ExportTest, OffersBothKindsFromVersion12OnAndProposesTheTemplatesName) {
    ExportTemplate(window_);
    ASSERT_EQ(surroundings_.fileDialogs->requests.size(), 1u);
    const system::FileRequest& request = surroundings_.fileDialogs->requests[0];
    EXPECT_EQ(request.title, "指定引出文件名");
    EXPECT_EQ(request.flags, 0x80806u);
    EXPECT_EQ(request.proposedName, "我的模板");
    ASSERT_EQ(request.filters.size(), 2u);
    EXPECT_EQ(request.filters[0].description, "Database File Excel File (*.xls)");
    EXPECT_EQ(request.filters[0].pattern, "*.xls");
    EXPECT_EQ(request.filters[1].description, "Database File Excel File (*.xlsx)");
    EXPECT_EQ(request.filters[1].pattern, "*.xlsx");
    EXPECT_EQ(request.selectedFilter, 1u);
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(window_.told.empty());
}

TEST_F(ExportTest, OffersOnlyTheOldKindBelowVersion12) {
    office::RegisterExcelServer("11.0");
    ExportTemplate(window_);
    EXPECT_EQ(surroundings_.fileDialogs->requests[0].filters.size(), 1u);
    EXPECT_EQ(surroundings_.fileDialogs->requests[0].selectedFilter, 0u);
}

TEST_F(ExportTest, TakesTheUnchangedNameForACancelledDialog) {
    surroundings_.fileDialogs->choices = {"我的模板", ""};
    ExportTemplate(window_);
    ExportTemplate(window_);
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(window_.told.empty());
    EXPECT_TRUE(log_->Calls().empty());
}

TEST_F(ExportTest, WritesShowsAndLogsInTheSpecifiedOrder) {
    const std::string file = folder_.File("引出.xlsx");
    surroundings_.fileDialogs->choices = {file};
    window_.AddLine({"1", "提现", "借", "1001", "现金"});
    ExportTemplate(window_);
    EXPECT_EQ(window_.told,
              (Lines{"show 正在执行凭证模板引出，请稍后...", "rows 1/1", "label 引出完毕...", "hide"}));
    EXPECT_EQ(Messages(), Lines{"模板引出成功！"});
    EXPECT_EQ(LastTitle(), "信息提示");
    EXPECT_EQ(log_->Calls(), Lines{"WriteLog(K831000, 3, 凭证模板-引出模板 我的模板 成功)"});
    EXPECT_EQ(surroundings_.screen->pointers,
              (std::vector{system::MousePointer::Hourglass, system::MousePointer::Default}));
    EXPECT_TRUE(Exists(file));
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ExportTest, WritesQuietlyWhenNotInteractive) {
    window_.AddLine({"1"});
    EXPECT_TRUE(WriteTemplateWorkbook(window_, folder_.File("a.xls"), false));
    EXPECT_TRUE(window_.told.empty());
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(surroundings_.screen->pointers.empty());
    EXPECT_EQ(log_->Calls().size(), 1u);
}

TEST_F(ExportTest, LeavesOneSheetWithTheSeventeenHeaders) {
    office::RegisterExcelServer("12.0");  // begins with three sheets
    for (const char* name : {"a.xls", "a.xlsx"}) {
        const auto workbook = Exported(name);
        ASSERT_EQ(workbook->Sheets().size(), 1u);
        EXPECT_EQ(workbook->Sheets()[0]->Name(), "凭证模板");
        EXPECT_EQ(RowOf(*workbook, 0),
                  (Lines{"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "附件数",
                         "结算方式", "结算号", "核算项目", "币别", "汇率", "原币金额", "计量单位", "数量",
                         "单价", "金额", "备注"}));
        EXPECT_EQ(workbook->Sheets()[0]->UsedArea().lastRow, 0u);
        EXPECT_EQ(workbook->Sheets()[0]->UsedArea().lastColumn, 16u);
    }
}

TEST_F(ExportTest, WritesEachColumnByItsRule) {
    window_.AddLine({"3", " 提现 ", "借", " 1001.10 ", "现金", "2", "支票", "0012", "01.01,02", "人民币",
                     "1.0", "12.50", "公斤", "3", "0.10", "1,234.56", " 备 注 "});
    window_.AddLine(
        {"4", "", "借方", "1002", "银行", "0", "", "", "", "", "0.00", "abc", "", "", "-0", "-5", "=1+1"});
    for (const char* name : {"a.xls", "a.xlsx"}) {
        const auto workbook = Exported(name);
        EXPECT_EQ(RowOf(*workbook, 1),
                  (Lines{"3", "提现", "借", "1001.10", "现金", "2", "支票", "0012", "01.01,02", "人民币", "1",
                         "12.5", "公斤", "3", "0.1", "1234.56", "备 注"}));
        EXPECT_EQ(RowOf(*workbook, 2),
                  (Lines{"4", "", "", "1002", "银行", "", "", "", "", "", "", "", "", "", "", "-5", "=1+1"}));
        const office::Sheet& sheet = *workbook->Sheets()[0];
        EXPECT_EQ(sheet.Find(1, 0)->kind, office::CellKind::Number);
        EXPECT_EQ(sheet.Find(1, 3)->kind, office::CellKind::Text);
        EXPECT_EQ(sheet.Find(2, 3)->kind, office::CellKind::Text);
        EXPECT_EQ(sheet.Find(1, 15)->kind, office::CellKind::Number);
        EXPECT_EQ(sheet.Find(2, 16)->kind, office::CellKind::Text);
        EXPECT_EQ(workbook->Formats().At(sheet.Find(1, 3)->format).numberFormat, "@");
    }
}

TEST_F(ExportTest, KeepsFiguresFormulaMarksAndDatesOfTextColumnsAsTexts) {
    const Lines texts = {"=A1", "+1",   "-1",    "@x",   "'q",  "2024-1-1",
                         "1/2", "TRUE", "false", "#N/A", "1e5", "12"};
    for (const std::string& text : texts)
        window_.AddLine({"1", text, "借", text, text});
    const auto workbook = Exported();
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        const office::Sheet& sheet = *workbook->Sheets()[0];
        EXPECT_EQ(sheet.Find(i + 1, 1)->kind, office::CellKind::Text) << texts[i];
        EXPECT_EQ(office::CellText(*workbook, *sheet.Find(i + 1, 1)), texts[i]);
        EXPECT_EQ(office::CellText(*workbook, *sheet.Find(i + 1, 3)), texts[i]);
        EXPECT_EQ(office::CellText(*workbook, *sheet.Find(i + 1, 4)), texts[i]);
    }
}

TEST_F(ExportTest, ReplacesAnExistingFile) {
    const std::string file = folder_.File("a.xlsx");
    window_.AddLine({"1"});
    ASSERT_TRUE(ExportTemplateTo(window_, file));
    window_.AddLine({"2"});
    ASSERT_TRUE(ExportTemplateTo(window_, file));
    EXPECT_EQ(office::ReadWorkbook(file)->Sheets()[0]->UsedArea().lastRow, 2u);
}

TEST_F(ExportTest, AFailedExportLeavesTheOldWorkbook) {
    const std::string file = folder_.File("a.xlsx");
    window_.AddLine({"1"});
    ASSERT_TRUE(ExportTemplateTo(window_, file));
    const auto size = std::filesystem::file_size(file);
    window_.cancel = true;
    EXPECT_FALSE(ExportTemplateTo(window_, file));
    window_.cancel = false;
    window_.AddLine({"1", std::string(40000, 'x')});
    EXPECT_FALSE(ExportTemplateTo(window_, file));
    EXPECT_EQ(std::filesystem::file_size(file), size);
    office::RegisterExcelServer("11.0");
    window_.lines = 1;
    EXPECT_FALSE(ExportTemplateTo(window_, file));
    EXPECT_EQ(std::filesystem::file_size(file), size);
    EXPECT_EQ(office::ReadWorkbook(file)->Sheets()[0]->UsedArea().lastRow, 1u);
}

TEST_F(ExportTest, NeverWritesOverWhatIsNoWorkbook) {
    const std::string letter = folder_.File("letter");
    std::ofstream(letter) << "dear";
    const std::string books = folder_.File("books.xlsx");
    std::ofstream(books) << std::string("SQLite format 3\0", 16) << "books";
    std::vector<std::string> targets{letter, books, fakes::kDevice};
#ifndef _WIN32
    std::filesystem::create_symlink(books, folder_.File("link.xlsx"));
    targets.push_back(folder_.File("link.xlsx"));
#endif
    window_.AddLine({"1"});
    for (const std::string& target : targets) {
        surroundings_.fileDialogs->choices = {target};
        for (const ExportOutcome& outcome : {ExportTemplate(window_), ExportTemplateTo(window_, target)}) {
            EXPECT_FALSE(outcome);
            EXPECT_TRUE(
                outcome.untold.ends_with("不能覆盖：" + (target.ends_with("link.xlsx") ? books : target)))
                << outcome.untold;
        }
        EXPECT_FALSE(WriteTemplateWorkbook(window_, target, false)) << "through any other way";
    }
    EXPECT_EQ(std::filesystem::file_size(letter), 4u);
    EXPECT_EQ(std::filesystem::file_size(books), 21u);
    EXPECT_FALSE(std::filesystem::is_regular_file(fakes::kDevice));
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ExportTest, ProposesANameThatAFileCanHaveAndTakesItUnchangedForACancelledDialog) {
    window_.templateName = "应收/应付";
    surroundings_.fileDialogs->choices = {"应收_应付"};
    const ExportOutcome outcome = ExportTemplate(window_);
    EXPECT_EQ(surroundings_.fileDialogs->requests[0].proposedName, "应收_应付");
    EXPECT_EQ(outcome.untold, "");
    EXPECT_TRUE(window_.told.empty());
}

TEST_F(ExportTest, WhatTheSaveRoutineKeepsToItselfIsToldAndLoggedAfterwards) {
    const std::string file = folder_.File("应收/应付.xlsx");
    surroundings_.fileDialogs->choices = {file};
    const ExportOutcome outcome = ExportTemplate(window_);
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(log_->Calls().empty());
    TellUnwritten(window_, outcome);
    EXPECT_EQ(Messages(), Lines{"模板引出失败！文件夹不存在：" + folder_.File("应收")});
    EXPECT_EQ(LastTitle(), "信息提示");
    EXPECT_EQ(log_->Calls(), Lines{"WriteLog(K831000, 4, 凭证模板-引出模板 我的模板 失败)"});
    // What has been told is not told twice, nor is success.
    window_.AddLine({"1", std::string(40000, 'x')});
    TellUnwritten(window_, ExportTemplateTo(window_, folder_.File("b.xlsx")));
    EXPECT_EQ(Messages().size(), 2u);
    window_.lines = 0;
    TellUnwritten(window_, ExportTemplateTo(window_, folder_.File("b.xlsx")));
    EXPECT_EQ(Messages().back(), "模板引出成功！");
    EXPECT_EQ(Messages().size(), 3u);
}

TEST_F(ExportTest, LeavesNoFileWhenCancelled) {
    window_.AddLine({"1"});
    window_.cancel = true;
    EXPECT_FALSE(ExportTemplateTo(window_, folder_.File("a.xlsx")));
    EXPECT_FALSE(Exists(folder_.File("a.xlsx")));
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(log_->Calls().empty());
    EXPECT_EQ(window_.told.back(), "hide");
    EXPECT_EQ(surroundings_.screen->pointers.back(), system::MousePointer::Default);
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ExportTest, SaysNothingWhenAnOldVersionRefusesANewName) {
    office::RegisterExcelServer("11.0");
    EXPECT_FALSE(ExportTemplateTo(window_, folder_.File("a.xlsx")));
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(log_->Calls().empty());
    EXPECT_EQ(window_.told.back(), "hide");
}

TEST_F(ExportTest, TellsAndLogsWhatWentWrongWhileBuilding) {
    window_.AddLine({"1", std::string(40000, 'x')});
    EXPECT_FALSE(ExportTemplateTo(window_, folder_.File("a.xlsx")));
    EXPECT_EQ(Messages(), Lines{"模板引出失败！单元格内容超过 32767 个字符！"});
    EXPECT_EQ(LastTitle(), "信息提示");
    EXPECT_EQ(log_->Calls(), Lines{"WriteLog(K831000, 4, 凭证模板-引出模板 我的模板 失败)"});
    EXPECT_EQ(window_.told.back(), "hide");
    EXPECT_EQ(surroundings_.screen->pointers.back(), system::MousePointer::Default);
}

TEST_F(ExportTest, AdvisesToCloseTheFileWhenItCannotBeAccessed) {
    const auto excel = fakes::RegisterScripted("Excel.Application");
    excel->Value("Version", "16.0").Value("Quit", {});
    excel->On("Workbooks",
              [](Arguments&) -> Variant { throw automation::Error(1004, "不能访问文件“a.xlsx”。"); });
    EXPECT_FALSE(ExportTemplateTo(window_, folder_.File("a.xlsx")));
    EXPECT_EQ(Messages(), Lines{"模板引出失败！不能访问文件“a.xlsx”。请先关闭已经打开的模板文件(Excel)。"});
    EXPECT_EQ(excel->Calls().back(), "Quit()");
}

TEST_F(ExportTest, ReportsLinesDoneOfLinesInAll) {
    for (int i = 0; i < 450; ++i)
        window_.AddLine({"1"});
    ASSERT_TRUE(ExportTemplateTo(window_, folder_.File("a.xls")));
    EXPECT_EQ(window_.told[1], "rows 200/450");
    EXPECT_EQ(window_.told[2], "rows 400/450");
    EXPECT_EQ(window_.told[3], "rows 450/450");
}

// A server that knows nothing of pages, windows and number formats, as an old or a foreign one: everything
// else goes to the built-in one.
class Lacking : public automation::Object {
  public:
    explicit Lacking(automation::ObjectRef inner) : inner_(std::move(inner)) {}
    std::string TypeName() const override { return inner_->TypeName(); }
    bool HasMember(std::string_view name) const override { return inner_->HasMember(name); }
    Variant Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) override {
        for (const char* unknown : {"PageSetup", "ActiveWindow", "NumberFormat"}) {
            if (name == unknown) throw automation::Error(automation::error_number::kNoSuchMember);
        }
        Arguments inner;
        for (const automation::Argument& argument : arguments) {
            const Variant& value = argument.Value();
            const auto wrapped =
                value.IsObject() ? std::dynamic_pointer_cast<Lacking>(value.AsObject()) : nullptr;
            const Variant plain = wrapped ? Variant(wrapped->inner_) : value;
            inner.push_back(argument.Name().empty() ? automation::Argument(plain)
                                                    : automation::Argument::Named(argument.Name(), plain));
        }
        const Variant result = inner_->Invoke(name, kind, inner);
        if (!result.IsObject() || !result.AsObject()) return result;
        return std::make_shared<Lacking>(result.AsObject());
    }

  private:
    automation::ObjectRef inner_;
};

class PrintedExport : public ExportTest {
  protected:
    void SetUp() override {
        ExportTest::SetUp();
        window_.AddLine({"1", "a", "借", "1001", "n", "2", "", "", "", "", "7.1234", "12.5", "", "3", "0.1",
                         "1234567.89"});
        window_.AddLine(
            {"1", "b", "贷", "1002", "m", "", "", "", "", "", "", "1e20", "", "1.25", "0.12345678901", "-5"});
    }
    static std::string FormatAt(const office::Workbook& workbook, std::uint32_t column) {
        return workbook.Formats().At(workbook.Sheets()[0]->Find(1, column)->format).numberFormat;
    }
    std::string SheetXml() {
        const office::XlsxPackage package(folder_.File("a.xlsx"));
        const auto part = package.Open("xl/worksheets/sheet1.xml");
        std::string text(1 << 16, '\0');
        text.resize(part->Read(text.data(), text.size()));
        return text;
    }
};

TEST_F(PrintedExport, ShowsAmountsWithSeparatorsAndKeepsTheirValues) {
    for (const char* name : {"a.xls", "a.xlsx"}) {
        const auto workbook = Exported(name);
        EXPECT_EQ(FormatAt(*workbook, 0), "");
        EXPECT_EQ(FormatAt(*workbook, 3), "@");
        EXPECT_EQ(FormatAt(*workbook, 10), "");
        EXPECT_EQ(FormatAt(*workbook, 11), "#,##0.00");
        EXPECT_EQ(FormatAt(*workbook, 13), "#,##0.00");
        EXPECT_EQ(FormatAt(*workbook, 14), "#,##0.0000000000");
        EXPECT_EQ(FormatAt(*workbook, 15), "#,##0.00");
        EXPECT_EQ(workbook->Sheets()[0]->Find(1, 15)->number, 1234567.89);
        EXPECT_EQ(workbook->Sheets()[0]->Find(2, 14)->number, 0.12345678901);
        // "1,234,567.89" in the smaller letters, and the margin.
    }
    // "1,234,567.89" in the smaller letters, and the margin.
    EXPECT_NE(SheetXml().find("<col min=\"16\" max=\"16\" width=\"12.4"), std::string::npos) << SheetXml();
}

TEST_F(PrintedExport, IsLandscapeOnePageWideWithItsHeaderOnEveryPageAndInSight) {
    Exported("a.xlsx");
    const std::string xml = SheetXml();
    for (const char* part :
         {"<pageSetUpPr fitToPage=\"1\"/>", "<pane ySplit=\"1\" topLeftCell=\"A2\"",
          "<pageSetup paperSize=\"9\" fitToWidth=\"1\" fitToHeight=\"0\" orientation=\"landscape\"/>"}) {
        EXPECT_NE(xml.find(part), std::string::npos) << part;
    }
}

TEST_F(PrintedExport, ComesAboutOnAServerThatKnowsNothingOfPages) {
    automation::ClassRegistry::Process().Register("Excel.Application", []() -> automation::ObjectRef {
        return std::make_shared<Lacking>(std::make_shared<office::ExcelApplication>("11.0"));
    });
    const auto workbook = Exported("a.xls");
    EXPECT_EQ(FormatAt(*workbook, 15), "");
    EXPECT_EQ(RowOf(*workbook, 1)[15], "1234567.89");
    EXPECT_EQ(Messages(), Lines{"模板引出成功！"});
}

}  // namespace
}  // namespace vicenter::exchange
