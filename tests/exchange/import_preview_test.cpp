#include "exchange/import_preview.h"

#include "exchange/import_refusal.h"
#include "exchange/import_template.h"
#include "tests/exchange/exchange_fixture.h"
#include "tests/fakes/template_answer.h"

namespace vicenter::exchange {
namespace {

const Lines kHeaders = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "金额", "备注"};

// A window in which somebody looks.
class LookingWindow : public FakeWindow {
  public:
    bool LookBeforeImport(const std::function<ImportPreview()>& read) override {
        seen.push_back(read());
        return goesOn;
    }
    bool goesOn = true;
    std::vector<ImportPreview> seen;
};

// Somebody else saves the workbook anew while it is looked at.
class SlowWindow : public LookingWindow {
  public:
    bool LookBeforeImport(const std::function<ImportPreview()>& read) override {
        const bool answer = LookingWindow::LookBeforeImport(read);
        meanwhile();
        return answer;
    }
    std::function<void()> meanwhile;
};

class PreviewTest : public ExchangeTest {
  protected:
    // What the account set holds of the template 5, named 旧模板: number, explanation, side, account, amount,
    // remark.
    void Holds(const std::vector<std::vector<Variant>>& lines) {
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{5}}));
        set_.Answer("as FTemplateName", fakes::TemplateAnswer(16394, "旧模板"));
        std::vector<std::string> fields;
        for (const store::ColumnSpec& spec : store::Columns())
            fields.emplace_back(spec.field);
        fields.emplace_back("FEntryID");
        std::vector<std::vector<Variant>> records;
        for (const auto& line : lines) {
            std::vector<Variant> record(fields.size());
            const int columns[] = {1, 2, 3, 5, 20, 21};
            for (std::size_t i = 0; i < line.size(); ++i)
                record[static_cast<std::size_t>(columns[i] - 1)] = line[i];
            record[5] = "名称";
            record.back() = static_cast<std::int32_t>(records.size() + 1);
            records.push_back(record);
        }
        set_.Answer("select * from t_VchTemplateEntry where FID = 5", Rows(fields, records));
    }
    ImportPreview Preview(const std::vector<Lines>& rows) {
        const std::string file = MakeWorkbook("旧模板.xlsx", rows);
        return PreviewImport(window_, file, FindImportDestination(file));
    }
    static Lines Changes(const ImportPreview& preview) {
        Lines lines;
        for (const store::LineChange& change : preview.Changes()) {
            lines.push_back(change.kind + " " + change.number + "," + std::to_string(change.row) + "," +
                            std::to_string(change.column) + " [" + change.before + "][" + change.after + "]");
        }
        return lines;
    }
    static Lines Totals(const ImportPreview& preview) {
        const auto side = [](const NumberTotals::Side& s) {
            return std::to_string(s.lines) + "/" + s.debit + "/" + s.credit;
        };
        Lines lines;
        for (const NumberTotals& total : preview.totals)
            lines.push_back(total.number + " " + side(total.before) + " " + side(total.after));
        return lines;
    }
};

TEST_F(PreviewTest, TellsNewChangedAndMissingLinesCellByCell) {
    Holds({{1, "a", 1, "1001", 10.5, "r"}, {1, "", 0, "1002", 10.5, ""}, {3, "gone", 1, "1001", 1, ""}});
    // In the workbook the numbers stand in another order, and amounts are written as people write them.
    const ImportPreview preview = Preview({kHeaders,
                                           {"#2", "new", "借", "2001", "名称", "#7"},
                                           {"#1", "a", "借", "1001", "名称", "10.50", "r"},
                                           {"#1", "", "贷", "1002", "名称", "1,234.50"}});
    EXPECT_EQ(Changes(preview),
              (Lines{"修改 1,2,20 [10.50][1,234.50]", "删除 3,3,0 [gone 借 1001 名称 1.00][]",
                     "新增 2,3,0 [][new 借 2001 名称 7.00]"}));
    EXPECT_EQ(Totals(preview), (Lines{"1 2/10.5/10.5 2/10.5/1234.5", "2 0/0/0 1/7/0", "3 1/1/0 0/0/0"}));
    EXPECT_EQ(preview.Summary(), "模板 旧模板 现有分录 3 行，引入后 3 行：新增 1 行，删除 1 行，修改 1 行。");
    EXPECT_TRUE(preview.totals[0].Unbalanced());
    EXPECT_FALSE(preview.totals[2].Unbalanced());
    // It has looked and written nothing, and its panel is gone.
    for (const std::string& sql : set_.Statements())
        EXPECT_EQ(sql.find("insert"), std::string::npos) << sql;
    EXPECT_EQ(window_.told.back(), "hide");
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(PreviewTest, ReadTidilyItShowsEveryLineWhereverTheTableBegins) {
    Holds({{1, "a", 1, "1001", 5}, {1, "b", 0, "1002", 5}});
    const std::string file = MakeWorkbook(
        "旧模板.xlsx",
        {{},
         {},
         {"", "模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "金额", "备注"},
         {"", "#1", "a", "借", "1001", "名称", "#5", ""},
         {"", "#1", "b", "贷", "1002", "名称", "#5", ""},
         {"", "#2", "c", "借", "1001", "名称", "#9", "新的"}});
    const ImportPreview preview = PreviewImport(window_, file, FindImportDestination(file), true);
    EXPECT_EQ(preview.after.size(), 3U);
    EXPECT_EQ(Totals(preview), (Lines{"1 2/5/5 2/5/5", "2 0/0/0 1/9/0"}));
}

TEST_F(PreviewTest, FindsNothingInWhatItself) {
    Holds({{1, "a", 1, "1001", 0.25, ""}});
    const ImportPreview preview = Preview({kHeaders, {"#1", " a ", "借", "#1001", "名称", "#0.25"}});
    EXPECT_TRUE(preview.differences.empty());
    EXPECT_TRUE(preview.warnings.empty());
    EXPECT_EQ(preview.Summary(), "模板 旧模板 现有分录 1 行，引入后 1 行，内容相同。");
}

TEST_F(PreviewTest, AHeaderAloneStandsOut) {
    Holds({{1, "a", 1, "1001", 1, ""}, {1, "b", 0, "1001", 1, ""}});
    EXPECT_EQ(Preview({kHeaders}).warnings,
              Lines{"工作簿中只有表头，没有分录，引入后现有的 2 行分录将全部删除！"});
}

TEST_F(PreviewTest, AMuchSmallerWorkbookAndAnEmptiedColumnStandOut) {
    Holds({{1, "a", 1, "1001", 1, "r"}, {1, "b", 0, "1001", 1, ""}, {2, "c", 1, "1", 1, "s"}});
    EXPECT_EQ(Preview({kHeaders, {"#1", "a", "借", "1001", "名称", "#1"}}).warnings,
              (Lines{"工作簿只有 1 行分录，现有模板有 3 行，请确认工作簿是否完整！",
                     "“备注”现有 2 处内容，引入后全部为空！"}));
    EXPECT_TRUE(
        Preview(
            {kHeaders, {"#1", "a", "借", "1001", "名称", "#1", "r"}, {"#1", "b", "贷", "1001", "名称", "#1"}})
            .warnings.empty());
}

TEST_F(PreviewTest, TellsFaultsAndAllTheSameWhatWouldChange) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    const ImportPreview preview = Preview({kHeaders, {"#1", "a", "x", "1001", "名称", "y"}});
    EXPECT_EQ(
        preview.refusal,
        "引入模板失败！模板文件数据存在以下错误: 第2行，第C列值存在错误，\r\n第2行，第F列值存在错误，\r\n");
    ASSERT_EQ(preview.faults.size(), 2U);
    EXPECT_EQ(preview.faults[1].value, "y");
    EXPECT_EQ(Changes(preview), (Lines{"修改 1,1,3 [借][x]", "修改 1,1,20 [1.00][y]"}));
    EXPECT_EQ(preview.Summary(),
              "工作簿有 2 处错误，更正后才能引入。模板 旧模板 现有分录 1 行，引入后 1 "
              "行：新增 0 行，删除 0 行，修改 1 行。");
}

TEST_F(PreviewTest, WhatCannotBeReadChangesNothing) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    const ImportPreview preview = Preview({{"x", "备注"}, {"1", "2"}});
    EXPECT_TRUE(preview.differences.empty());
    EXPECT_EQ(preview.Summary(), "工作簿不能引入。");
    EXPECT_EQ(preview.faults.size(), 1U);
}

TEST_F(PreviewTest, AWindowLooksBeforeTheQuestionAndOnlyWhereATemplateExists) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
    LookingWindow window;
    const std::string file = MakeWorkbook("旧模板.xlsx", {kHeaders, {"#1", "b", "借", "1001", "名称", "#1"}});
    window.goesOn = false;
    EXPECT_FALSE(ImportTemplateFile(window, file));
    ASSERT_EQ(window.seen.size(), 1U);
    EXPECT_EQ(Changes(window.seen[0]), Lines{"修改 1,1,2 [a][b]"});
    EXPECT_TRUE(Messages().empty());
    window.goesOn = true;
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    EXPECT_TRUE(ImportTemplateFile(window, file));
    EXPECT_EQ(Messages().front(),
              "模板[旧模板]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。请确认是否引入？");
    set_.Answer("select FID from t_VchTemplate where FName = '新的'", Rows({"FID"}));
    const std::size_t looks = window.seen.size();
    ImportTemplateFile(window, MakeWorkbook("新的.xlsx", {kHeaders, {"#1", "b", "借", "1", "n", "#1", ""}}));
    EXPECT_EQ(window.seen.size(), looks);
}

TEST_F(PreviewTest, WhatHasBeenLookedAtIsWhatIsImported) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
    const auto make = [this](const std::string& explanation, const std::string& amount) {
        return MakeWorkbook("旧模板.xlsx", {kHeaders,
                                            {"#1", explanation, "借", "1001", "名称", amount},
                                            {"#1", "", "贷", "1002", "名称", amount}});
    };
    SlowWindow window;
    const std::string file = make("seen", "#7");
    window.meanwhile = [&] { make("not seen", "#9"); };
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    const ImportOutcome outcome = ImportTemplateFile(window, file);
    EXPECT_TRUE(outcome.written);
    EXPECT_EQ(outcome.lines, 2);
    std::string batch;
    for (const std::string& sql : set_.Statements()) {
        if (sql.find(" set @MaxFID = 5") != std::string::npos) batch = sql;
    }
    EXPECT_NE(batch.find("(@MaxFID,2,1,'seen',1,"), std::string::npos) << batch;
    EXPECT_NE(batch.find("(@MaxFID,3,1,'',0,"), std::string::npos) << batch;
    EXPECT_EQ(batch.find("not seen"), std::string::npos);
}

TEST_F(PreviewTest, AWorkbookThatWasFaultyIsReadAnewAndMayHaveBeenMended) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
    SlowWindow window;
    const std::string file = MakeWorkbook("旧模板.xlsx", {kHeaders, {"#1", "b", "x", "1001", "名称", "#1"}});
    window.meanwhile = [&] {
        MakeWorkbook("旧模板.xlsx", {kHeaders, {"#1", "mended", "借", "1001", "名称", "#1"}});
    };
    surroundings_.messageBoxes->answers = {system::MessageResult::Ok};
    EXPECT_TRUE(ImportTemplateFile(window, file).written);
}

TEST_F(PreviewTest, WhoCancelsTheReadingIsAskedNothing) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    LookingWindow window;
    window.cancel = true;
    const std::string file = MakeWorkbook("旧模板.xlsx", {kHeaders, {"#1", "b", "借", "1001", "名称", "#1"}});
    EXPECT_FALSE(ImportTemplateFile(window, file));
    EXPECT_TRUE(window.seen.empty());
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(window.told.back(), "hide");
}

TEST_F(PreviewTest, AnAccountSetThatDoesNotAnswerEndsItAsAnImport) {
    Holds({{1, "a", 1, "1001", 1, ""}});
    set_.Fail("select * from t_VchTemplateEntry where FID = 5", "gone");
    LookingWindow window;
    const std::string file = MakeWorkbook("旧模板.xlsx", {kHeaders, {"#1", "b", "借", "1001", "名称", "#1"}});
    EXPECT_FALSE(ImportTemplateFile(window, file));
    EXPECT_EQ(Messages(), Lines{"引入模板失败！"});
}

}  // namespace
}  // namespace vicenter::exchange
