// What is exported comes back under another name with every field as it was: the demo ledger's templates and
// generated ones that hold every edge value, through files of both kinds.

#include <array>
#include <filesystem>
#include <fstream>
#include <random>

#include "exchange/template_columns.h"
#include "store/number_text.h"
#include "tests/host/cli_fixture.h"

namespace vicenter::host {
namespace {

using test::CliAnswer;

std::string Repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

// Texts that a sheet, a package, a record or a statement could take for something else.
const std::vector<std::string>& EdgeTexts() {
    static const std::vector<std::string> texts = {
        "",
        "提取备用金",
        "'",
        "''",
        "it's",
        "'quoted'",
        "\"",
        "\\",
        "=1+1",
        "=SUM(A1:A2)",
        "+1",
        "-1",
        "@x",
        "{=1}",
        "0012",
        "1001.10",
        "1.0",
        "000",
        "1e5",
        "1E+20",
        "0x10",
        "12,345",
        "12%",
        "￥12",
        "$1",
        "1/2",
        "2024-01-02",
        "2024/1/2 3:04:05",
        "13:30",
        "1月2日",
        "TRUE",
        "false",
        "真",
        "#N/A",
        "#DIV/0!",
        "NULL",
        "<&>",
        "&amp;",
        "&#65;",
        "]]>",
        "<t xml:space='preserve'> </t>",
        "_x000D_",
        "_x005F_x000D_",
        "_x",
        "a\nb",
        "a\r\nb",
        "a\tb",
        "\x01\x02\x1f",
        "\x1b[31m",
        "\x7f",
        "a  b   c",
        "　全角空格　",
        "１２３",
        "（＊）",
        "é e\xCC\x81",
        "\xEF\xBB\xBF"
        "bom",
        "\xE2\x80\xAE"
        "rtl",
        "\xC2\xA0nbsp\xC2\xA0",
        "😀",
        "𠮷野家",
        "👨‍👩‍👧‍👦",
        "\xF4\x8F\xBF\xBF",
        "\xEF\xBF\xBD",
        "|",
        ",",
        ";",
        "');drop table t_VchTemplate--",
        "GO",
        "%",
    };
    return texts;
}

// A text of the most UTF-16 units that the field takes.
std::string Longest(const std::string& piece, int units, int room) {
    return Repeated(piece, room / units) + std::string(static_cast<std::size_t>(room % units), 'z');
}

struct TextField {
    const char* name;
    int room;
};
constexpr std::array kTextFields = {
    TextField{"FExp", 255},         TextField{"FAccountNumber", 80}, TextField{"FAcctountName", 160},
    TextField{"FSettleName", 80},   TextField{"FSettleNumber", 100}, TextField{"FItemsInfo", 255},
    TextField{"FCurrencyName", 30}, TextField{"FUnitName", 80},      TextField{"FRemark", 80}};

constexpr std::size_t kCurrency = 6;

// Rates and prices have ten decimals, amounts and quantities four.
const std::vector<std::string> kRates = {"0",      "1",         "0.0000000001",     "0.1",
                                         "7.1234", "999999999", "99999.0123456789", "123456.7890123",
                                         "-1",     "-0.5"};
const std::vector<std::string> kAmounts = {"0",     "1",         "0.0001",          "0.1",
                                           "0.3",   "1234.5678", "999999999.9999",  "100000000000.0001",
                                           "-0.01", "1234.50",   "-999999999.9999", "1e0"};

class ExchangeRoundTrip : public test::CliFixture {
  protected:
    void SetUp() override { set_ = ado::OpenConnection(FileConnectString(file_)); }

    using Line = std::vector<std::string>;

    // Every field that a workbook carries, line by line in their order.
    std::vector<Line> LinesOf(const std::string& id) {
        std::string fields;
        for (const auto& column : exchange::kColumns)
            fields += (fields.empty() ? "" : ",") + std::string(column.field);
        const ado::RecordsetRef rows = set_->Execute(
            "select " + fields + " from t_VchTemplateEntry where FID = " + id + " order by FEntryID");
        std::vector<Line> lines;
        for (; !rows->AtEnd(); rows->MoveNext()) {
            Line& line = lines.emplace_back();
            for (const auto& column : exchange::kColumns)
                line.push_back(rows->Value(std::string(column.field)).ToText());
        }
        return lines;
    }

    static void ExpectEqual(const std::vector<Line>& before, const std::vector<Line>& after) {
        ASSERT_EQ(before.size(), after.size());
        for (std::size_t row = 0; row < before.size(); ++row) {
            for (std::size_t i = 0; i < exchange::kWorkbookColumnCount; ++i) {
                // Codes and names come back without what nobody sees in them.
                const bool isProse = i == exchange::kExplanationColumn || i == exchange::kRemarkColumn;
                const std::string expected =
                    isProse ? before[row][i]
                            : store::TrimmedOfAnyBlanks(store::WithoutInvisibleMarks(before[row][i]));
                EXPECT_EQ(expected, after[row][i]) << row + 1 << " " << exchange::kColumns[i].field;
            }
        }
    }

    void ExpectSameAfterRoundTrip(const std::string& id, const std::string& name, const std::string& user) {
        const std::vector<Line> before = LinesOf(id);
        for (const std::string kind : {"xlsx", "xls"}) {
            SCOPED_TRACE(name + " " + kind);
            const std::string otherName = name + " 另存 " + kind;
            const std::string file = folder_.Path(otherName + "." + kind);
            const CliAnswer exported = Run({"--user", user, "export", name, file});
            EXPECT_EQ(kExitDone, exported.exitCode) << exported.errors;
            const CliAnswer imported = Run({"import", file});
            ASSERT_EQ(kExitDone, imported.exitCode) << imported.errors;
            const std::string copy =
                std::to_string(Number("select FID from t_VchTemplate where FName = '" + otherName + "'"));
            ExpectEqual(before, LinesOf(copy));
            EXPECT_EQ(Number("select count(distinct FNo) from t_VchTemplateEntry where FID = " + id),
                      Number("select count(*) from t_VchTpControl where FID = " + copy));
        }
    }

    void AddTemplate(const std::string& id, const std::string& name) {
        set_->Execute("insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(" + id + ",'" +
                      name + "',1,'',getdate())");
    }

    // One line; texts by field, the explanation of its own when none is given.
    void AddLine(const std::string& id, int row, int number, const std::vector<std::string>& texts,
                 std::size_t seed) {
        const auto quoted = [](std::string text) {
            for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 2)
                text.insert(at, 1, '\'');
            return "N'" + text + "'";
        };
        std::string fields = "FID,FEntryID,FNo,FDC,FFileCount,FRate,FPrice,FAmountFor,FQty,FAmount";
        std::string values = id + "," + std::to_string(row) + "," + std::to_string(number) + "," +
                             std::to_string(seed % 2) + "," +
                             std::array{"0", "1", "32767", "-32768"}[seed % 4];
        // The grid shows no rate without a currency.
        values += "," + (texts[kCurrency].empty() ? "0" : kRates[seed % kRates.size()]);
        values += "," + kRates[(seed + 3) % kRates.size()];
        for (std::size_t i = 0; i < 3; ++i)
            values += "," + kAmounts[(seed + 5 * i) % kAmounts.size()];
        for (std::size_t i = 0; i < kTextFields.size(); ++i) {
            fields += std::string(",") + kTextFields[i].name;
            values += "," + quoted(texts[i]);
        }
        set_->Execute("insert into t_VchTemplateEntry(" + fields + ") values(" + values + ")");
    }

    ado::ConnectionRef set_;
};

TEST_F(ExchangeRoundTrip, EveryTemplateOfTheDemoLedgerComesBackAsItWas) {
    const ado::RecordsetRef heads = set_->Execute("select FID,FName,FUserID from t_VchTemplate order by FID");
    ASSERT_GE(heads->RecordCount(), 5);
    int lines = 0;
    for (; !heads->AtEnd(); heads->MoveNext()) {
        const std::string id = heads->Value("FID").ToText();
        // Everybody has the standard template.
        const std::string user = id == "0" ? "1" : heads->Value("FUserID").ToText();
        lines += Number("select count(*) from t_VchTemplateEntry where FID = " + id);
        ExpectSameAfterRoundTrip(id, heads->Value("FName").ToText(), user);
    }
    EXPECT_GE(lines, 20);
}

TEST_F(ExchangeRoundTrip, EveryEdgeTextComesBackInEveryField) {
    AddTemplate("900", "边界");
    const std::vector<std::string>& edges = EdgeTexts();
    int row = 0;
    for (std::size_t at = 0; at < edges.size(); ++at) {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < kTextFields.size(); ++i) {
            std::string text = edges[(at + 7 * i) % edges.size()];
            // What an import wants filled; and ends where trimming would begin.
            if (text.empty() && (i == 1 || i == 2)) text = "1001";
            texts.push_back(text);
        }
        AddLine("900", ++row, 5, texts, at);
    }
    // The first line of a number has an explanation.
    set_->Execute("update t_VchTemplateEntry set FExp = N'首行' where FID = 900 and FEntryID = 1");
    ExpectSameAfterRoundTrip("900", "边界", "1");
}

TEST_F(ExchangeRoundTrip, TheLongestTextsComeBack) {
    AddTemplate("901", "最长");
    int row = 0;
    for (const auto& [piece, units] :
         {std::pair{"x", 1}, {"长", 1}, {"😀", 2}, {"&", 1}, {"'", 1}, {"=", 1}}) {
        std::vector<std::string> texts;
        for (const TextField& field : kTextFields)
            texts.push_back(Longest(piece, units, field.room));
        ++row;
        AddLine("901", row, row * 1000, texts, static_cast<std::size_t>(row));
    }
    ExpectSameAfterRoundTrip("901", "最长", "1");
}

TEST_F(ExchangeRoundTrip, GeneratedTemplatesComeBack) {
    std::mt19937 random(20240102);
    for (int t = 0; t < 3; ++t) {
        const std::string id = std::to_string(910 + 10 * t);
        AddTemplate(id, "生成 " + id);
        int number = 1;
        for (int row = 1; row <= 120; ++row) {
            const bool first = row == 1 || random() % 4 == 0;
            if (first && row > 1) number += 1 + static_cast<int>(random() % 200);
            std::vector<std::string> texts;
            for (std::size_t i = 0; i < kTextFields.size(); ++i) {
                std::string text = EdgeTexts()[random() % EdgeTexts().size()];
                if (text.empty() && (i == 1 || i == 2 || (i == 0 && first))) text = "0";
                texts.push_back(text);
            }
            AddLine(id, row, number, texts, random());
        }
        ExpectSameAfterRoundTrip(id, "生成 " + id, "1");
    }
}

TEST_F(ExchangeRoundTrip, ATemplateWithoutLinesComesBackEmpty) {
    AddTemplate("990", "空");
    ExpectSameAfterRoundTrip("990", "空", "1");
}

TEST_F(ExchangeRoundTrip, AFolderIsImportedFileByFileInTheOrderOfNames) {
    namespace fs = std::filesystem;
    const fs::path in = system::PathFromUtf8(folder_.Path("in"));
    fs::create_directories(in / "deeper");
    for (const char* file : {"in/b.XLSX", "in/a.xls", "in/deeper/c.xls"})
        ASSERT_EQ(kExitDone, Run({"export", "日常费用", folder_.Path(file)}).exitCode);
    std::ofstream(in / "notes.txt") << "no workbook";
    const CliAnswer answer = Run({"import", folder_.Path("in")});
    EXPECT_EQ(kExitDone, answer.exitCode);
    EXPECT_EQ(
        "a.xls：引入模板 a 成功！\nb.XLSX：引入模板 b 成功！\n"
        "共 2 个文件：引入模板 2 个、分录 22 行，未引入 0 个\n",
        answer.output);
    EXPECT_EQ(0, Number("select count(*) from t_VchTemplate where FName = 'c'"));
}

TEST_F(ExchangeRoundTrip, AFaultyFileOfAFolderKeepsTheOthersFromNothing) {
    const auto in = system::PathFromUtf8(folder_.Path("in"));
    std::filesystem::create_directories(in);
    ASSERT_EQ(kExitDone, Run({"export", "日常费用", folder_.Path("in/b.xls")}).exitCode);
    std::ofstream(in / "a.xls") << "no workbook";
    const CliAnswer answer = Run({"import", folder_.Path("in")});
    EXPECT_EQ(kExitFailed, answer.exitCode);
    EXPECT_EQ(
        "a.xls：引入模板失败！\n"
        "  文件实际上是文本，不是 Excel 工作簿，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！\n"
        "b.xls：引入模板 b 成功！\n共 2 个文件：引入模板 1 个、分录 11 行，未引入 1 个\n",
        answer.output + answer.errors);
}

TEST_F(ExchangeRoundTrip, AFolderWithoutWorkbooksIsSaidToBeOne) {
    const std::string empty = folder_.Path("empty");
    std::filesystem::create_directories(system::PathFromUtf8(empty));
    const CliAnswer answer = Run({"import", empty});
    EXPECT_EQ(kExitFailed, answer.exitCode);
    EXPECT_NE(std::string::npos, answer.errors.find("文件夹中没有工作簿：" + empty)) << answer.errors;
}

// A workbook holds doubles: seventeen digits are one too many for some of them.
TEST_F(ExchangeRoundTrip, NumbersOfMoreDigitsThanADoubleHoldsComeBackAsTheNearestDouble) {
    AddTemplate("991", "长数字");
    AddLine("991", 1, 1, {"a", "1001", "b", "", "", "", "美元", "", ""}, 0);
    set_->Execute("update t_VchTemplateEntry set FRate = 999999999.0123456789 where FID = 991");
    ASSERT_EQ(kExitDone, Run({"export", "长数字", folder_.Path("d.xlsx")}).exitCode);
    ASSERT_EQ(kExitDone, Run({"import", folder_.Path("d.xlsx")}).exitCode);
    EXPECT_EQ("999999999.0123457", set_->Execute("select FRate from t_VchTemplateEntry where FID = 992")
                                       ->Value("FRate")
                                       .ToText()
                                       .substr(0, 17));
}

}  // namespace
}  // namespace vicenter::host
