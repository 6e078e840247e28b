// Texts that nobody should type, in every field that takes text: stored as they are, or refused in words, and
// nothing else in the account set is touched.

#include "platform/system/utf8.h"
#include "tests/host/cli_fixture.h"

namespace vicenter::host {
namespace {

using test::CliAnswer;
using test::JsonMemberOf;

std::string Repeated(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

const std::vector<std::string>& HostileTexts() {
    static const std::vector<std::string> texts = {
        "'",
        "''",
        "'''",
        "\"",
        "\\",
        "\\'",
        "');drop table t_VchTemplate--",
        "'); delete t_VchTemplateEntry; --",
        "' + (select FName from t_User where FUserID=1) + '",
        "1' or '1'='1",
        "--",
        "/*",
        "*/",
        "/* ' */",
        ";",
        "GO",
        "\r\nGO\r\n",
        "a\nb",
        "a\tb",
        std::string("a\0b", 3),
        "\x01",
        "\x1b[31mred",
        "\x7f",
        "😀",
        Repeated("😀", 40),
        Repeated("😀", 127),
        Repeated("😀", 128),
        Repeated("长", 30),
        Repeated("长", 80),
        Repeated("长", 255),
        Repeated("长", 256),
        Repeated("x", 5000),
        "é",
        "e\xCC\x81",
        "\xE2\x80\xAE"
        "abc",
        "\xEF\xBB\xBF"
        "bom",
        "%",
        "_",
        "[a-z]",
        "N'x'",
        "@@version",
        "@x",
        "0x41",
        "null",
        "NULL",
        "|",
        "a|b",
        "{fn now()}",
        "?",
        "$1",
        "￥",
        "＇",
        "’",
        "‘",
        "\xE2\x80\x8B",
        "ﾊﾝｶｸ",
        "ＡＢＣ",
        "ß",
        "İı",
        " a",
        "a ",
        "  ",
        ",",
        ",,,",
        "1,2,3",
        "=1+1",
        "@SUM(A1)",
        "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9",
    };
    return texts;
}

const std::vector<std::string>& TextFields() {
    static const std::vector<std::string> fields = {"FExp",          "FAccountNumber", "FAcctountName",
                                                    "FSettleName",   "FSettleNumber",  "FItemsInfo",
                                                    "FCurrencyName", "FUnitName",      "FRemark"};
    return fields;
}

class HostileText : public test::CliFixture {
  protected:
    static std::string Document(const std::string& field, const Variant& value) {
        const auto line = std::make_shared<scripting::Dictionary>();
        for (const auto& [name, text] : {std::pair<const char*, const char*>{"FNo", "1"},
                                         {"FExp", "摘要"},
                                         {"FDC", "借"},
                                         {"FAccountNumber", "1001"},
                                         {"FAcctountName", "库存现金"}})
            line->SetItem(name, text);
        line->SetItem(field, value);
        return EncodeJson(JsonObject({{"lines", VariantArray{line}}}));
    }
    Variant StoredLine() {
        const CliAnswer shown = Run({"--json", "show", "日常费用"});
        EXPECT_EQ(0, shown.exitCode) << shown.errors;
        return JsonMemberOf(DecodeJson(shown.output), "lines").AsArray().at(0);
    }
    void ExpectNothingElseTouched() {
        EXPECT_EQ(10, Number("select count(*) from t_VchTemplate"));
        EXPECT_EQ(before_, Number("select count(*) from t_VchTemplateEntry where FID <> 1"));
    }

    std::int32_t before_ = Number("select count(*) from t_VchTemplateEntry where FID <> 1");
};

TEST_F(HostileText, IsStoredAsTypedOrRefusedInEveryTextField) {
    int stored = 0;
    int refused = 0;
    for (const std::string& field : TextFields()) {
        Variant last;
        for (const std::string& text : HostileTexts()) {
            SCOPED_TRACE(field + ": " + text.substr(0, 40));
            const CliAnswer saved = Run({"--json", "save", "日常费用"}, Document(field, text));
            const Variant now = JsonMemberOf(StoredLine(), field);
            const std::string_view trimmed = system::TrimBlanks(text);
            if (saved.exitCode == 0) {
                ++stored;
                EXPECT_EQ(std::string(trimmed), now.ToText());
            } else {
                ++refused;
                // An empty account is refused by the message of the save, everything else by field.
                EXPECT_TRUE(!saved.errors.empty() || saved.output.find("不允许为空") != std::string::npos ||
                            saved.output.find("摘要为空") != std::string::npos)
                    << saved.output;
                EXPECT_TRUE(last.IsEmpty() || last == now);
            }
            last = now;
        }
    }
    ExpectNothingElseTouched();
    EXPECT_GT(stored, 300);
    EXPECT_GT(refused, 60);
}

TEST_F(HostileText, ControlCharactersAndTextsPastTheLimitNameLineAndField) {
    const CliAnswer control = Run({"save", "日常费用"}, Document("FRemark", "a\nb"));
    EXPECT_EQ(1, control.exitCode);
    EXPECT_EQ("vicenter: 第 1 行 FRemark：不允许含有控制字符。\n", control.errors);
    const CliAnswer tooLong = Run({"save", "日常费用"}, Document("FExp", Repeated("长", 256)));
    EXPECT_EQ("vicenter: 第 1 行 FExp：超过 255 个字符。\n", tooLong.errors);
    EXPECT_EQ(0, Run({"save", "日常费用"}, Document("FExp", Repeated("长", 255))).exitCode);
    // Two units each: 127 fit, 128 do not.
    EXPECT_EQ(0, Run({"save", "日常费用"}, Document("FExp", Repeated("😀", 127))).exitCode);
    EXPECT_EQ(1, Run({"save", "日常费用"}, Document("FExp", Repeated("😀", 128))).exitCode);
}

TEST_F(HostileText, IsRefusedInEveryNumberField) {
    for (const char* field : {"FNo", "FFileCount", "FRate", "FAmountFor", "FQty", "FPrice", "FAmount",
                              "FAccountID", "FSettleID", "FCurrencyID", "FUnitID"}) {
        for (const char* text :
             {"'", "1;drop table t_Log", "0x10", "1e5", "￥￥5", "10,00", "abc", "--1", "1 2", "٣", "1'"}) {
            const CliAnswer saved = Run({"save", "日常费用"}, Document(field, text));
            EXPECT_EQ(1, saved.exitCode) << field << " " << text;
            EXPECT_TRUE(saved.errors.starts_with("vicenter: 第 1 行 " + std::string(field) + "："))
                << saved.errors;
        }
    }
    ExpectNothingElseTouched();
}

TEST_F(HostileText, NumbersComeBackDigitForDigit) {
    struct Case {
        const char* field;
        const char* text;
    };
    for (const Case& each : {Case{"FRate", "7.1234567891"},
                             {"FPrice", "999999998.0000000001"},
                             {"FAmount", "123456789.1234"},
                             {"FQty", "0.0001"},
                             {"FAmountFor", "999999999"},
                             {"FPrice", "0.1"},
                             {"FNo", "2147483647"},
                             {"FFileCount", "999999999"}}) {
        const CliAnswer saved = Run({"save", "日常费用"}, Document(each.field, each.text));
        ASSERT_EQ(0, saved.exitCode) << saved.errors;
        const Variant stored = JsonMemberOf(StoredLine(), each.field);
        EXPECT_EQ(each.text, stored.IsText() ? stored.ToText() : std::to_string(stored.ToInt64()));
    }
}

TEST_F(HostileText, NumbersPastTheirLimitAreRefused) {
    for (const auto& [field, text] : {std::pair{"FAmount", "1000000000"},
                                      {"FAmount", "1.00001"},
                                      {"FRate", "0.00000000001"},
                                      {"FNo", "2147483648"},
                                      {"FFileCount", "1.5"},
                                      {"FAmount", "-1"},
                                      {"FNo", "-1"}}) {
        EXPECT_EQ(1, Run({"save", "日常费用"}, Document(field, text)).exitCode) << field << " " << text;
    }
}

TEST_F(HostileText, MayBeATemplatesName) {
    std::string name = "日常费用";
    int renamed = 0;
    for (const std::string& text : HostileTexts()) {
        const CliAnswer answer = Run({"rename", "--", name, text});
        if (answer.exitCode == 0) {
            ++renamed;
            name = std::string(text);
            const CliAnswer shown = Run({"--json", "show", "--", name});
            ASSERT_EQ(0, shown.exitCode) << name << shown.errors;
            EXPECT_EQ(
                std::string(system::TrimBlanks(text)),
                std::string(system::TrimBlanks(JsonMemberOf(DecodeJson(shown.output), "FName").ToText())));
        } else {
            EXPECT_FALSE(answer.errors.empty()) << text;
        }
    }
    EXPECT_GT(renamed, 40);
    ExpectNothingElseTouched();
}

}  // namespace
}  // namespace vicenter::host
