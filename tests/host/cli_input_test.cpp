// What a script may hand over by mistake: broken JSON, texts of other encodings, folders for files, empty
// names; and output that nobody can take.

#include <fstream>

#include <gmock/gmock.h>

#include "automation/error.h"
#include "host/cli/json.h"
#include "tests/host/broken_input.h"
#include "tests/host/cli_fixture.h"

namespace vicenter::host {
namespace {

using test::CliAnswer;
using testing::HasSubstr;

std::string Refusal(const std::string& json) {
    try {
        DecodeJson(json);
    } catch (const automation::Error& error) {
        return error.Text();
    }
    return "taken";
}

TEST(JsonDocuments, AreRefusedWithThePlaceAndTheReason) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "（第 1 行第 1 列）：应为一个 JSON 对象"},
        {"\n []", "（第 2 行第 2 列）：应为一个 JSON 对象"},
        {"{", "（第 1 行第 2 列）：应为双引号括起的字段名，内容到此中断"},
        {"{\"a\":[1,\n 2", "（第 2 行第 3 列）：应为逗号或“]”，内容到此中断"},
        {"{\"a\":1,}", "（第 1 行第 8 列）：应为双引号括起的字段名"},
        {"{'a':1}", "（第 1 行第 2 列）：应为双引号括起的字段名"},
        {"{\"a\" 1}", "（第 1 行第 6 列）：应为冒号"},
        {"{\"a\":1 \"b\":2}", "（第 1 行第 8 列）：应为逗号或“}”"},
        {"{\"a\":[1 2]}", "（第 1 行第 9 列）：应为逗号或“]”"},
        {"{\"a\":1,\"a\":2}", "（第 1 行第 8 列）：字段名重复"},
        {"{\"摘要\":\"没有", "（第 1 行第 10 列）：文本没有结束的双引号，内容到此中断"},
        {"{\"摘要\":\"差旅\n费\"}", "（第 1 行第 10 列）：文本中的换行、制表符等控制字符应写作 \\n、\\t 等"},
        {"{\"a\":\"\\x\"}", "（第 1 行第 8 列）：无效的转义字符"},
        {"{\"a\":\"\\u12g4\"}", "（第 1 行第 11 列）：\\u 之后应为四位十六进制数字"},
        {"{\"a\":TRUE}", "（第 1 行第 6 列）：应为一个值（文本要用双引号括起）"},
        {"{\"a\":01}", "（第 1 行第 6 列）：无效的数字"},
        {"{\"a\":1.}", "（第 1 行第 6 列）：无效的数字"},
        {"{\"a\":1e}", "（第 1 行第 6 列）：无效的数字"},
        {"{\"a\":1} {}", "（第 1 行第 9 列）：JSON 对象之后不应再有内容"},
        {"{\"a\":1}\r\n\"", "（第 2 行第 1 列）：JSON 对象之后不应再有内容"},
    };
    for (const auto& [json, expected] : cases)
        EXPECT_EQ(Refusal(json), "输入不是有效的 JSON" + std::string(expected)) << json;
}

TEST(JsonDocuments, TakeNoNumberFromFurtherOnForAValueThatIsNone) {
    EXPECT_THAT(Refusal(R"({"FNo":x,"FFileCount":7})"), HasSubstr("第 8 列）：应为一个值"));
    EXPECT_THAT(Refusal(R"({"FNo":+5})"), HasSubstr("应为一个值"));
    EXPECT_THAT(Refusal(R"({"FNo":.5})"), HasSubstr("应为一个值"));
}

TEST(JsonDocuments, MayBeginWithAByteOrderMark) {
    EXPECT_EQ(Refusal("\xEF\xBB\xBF{\"a\":[true,false,null,-0.5e+3,\"\\\"\\u4e2d\",{}]}"), "taken");
}

TEST(JsonDocuments, AreRefusedWhenTheyAreNestedTooDeep) {
    const std::string deep = "{\"a\":" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
    EXPECT_THAT(Refusal(deep), HasSubstr("嵌套过深"));
}

class CliInput : public test::CliFixture {
  protected:
    std::string Write(const std::string& name, const std::string& bytes) {
        std::string path = folder_.Path(name);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
};

TEST_F(CliInput, AScriptInAnotherEncodingIsRefusedByBatchAndLine) {
    const std::string script =
        Write("gbk.sql", "select 1 as a\ngo\nselect 2\nselect '\xB1\xEA\xD7\xBC'\ngo\nselect 3 as c\n");
    const CliAnswer table = Run({"sql", script});
    EXPECT_EQ(table.exitCode, 1);
    EXPECT_EQ(table.output, "a\n1\n(1)\n\nc\n3\n(1)\n\n");
    EXPECT_EQ(table.errors, "消息 5，第 2 行：脚本不是 UTF-8 文本，请另存为 UTF-8 后再执行。\n");
    const CliAnswer json = Run({"--json", "sql", script});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_THAT(json.output, HasSubstr(R"({"results":[],"error":{"number":5,"line":2,"text":")"));
}

TEST_F(CliInput, AScriptOfSixteenBitCharactersIsRefused) {
    using namespace std::string_literals;
    const CliAnswer answer = Run({"sql", Write("utf16.sql",
                                               "\xFF\xFEs\0e\0l\0e\0c\0t\0 \0"
                                               "1\0"s)});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("脚本不是 UTF-8 文本"));
}

TEST_F(CliInput, AFolderIsNoScript) {
    for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"--json"}}) {
        std::vector<std::string> arguments = options;
        arguments.insert(arguments.end(), {"sql", folder_.Path()});
        const CliAnswer answer = Run(arguments);
        EXPECT_EQ(answer.exitCode, 1);
        EXPECT_EQ(answer.output, "");
        EXPECT_EQ(answer.errors, "vicenter: 是文件夹，不是脚本文件：" + folder_.Path() + "\n");
    }
}

TEST_F(CliInput, AWorkbookThatCannotBeWrittenIsNamed) {
    const std::string file = folder_.Path("nowhere") + "/a.xlsx";
    const CliAnswer answer = Run({"export", "标准模板", file});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_EQ(answer.errors,
              "vicenter: 工作簿未能写入：" + file + "\n  文件夹不存在：" + folder_.Path("nowhere") + "\n");
    // Whoever has answered the question knows why.
    const std::string there = Write("there.xlsx", "x");
    EXPECT_THAT(Run({"--no", "export", "标准模板", there}).errors, testing::Not(HasSubstr("未能写入")));
}

// A script whose disk fails behind the first batch: what has been answered is a document all the same.
TEST_F(CliInput, AScriptThatBreaksOffLeavesAWholeDocument) {
    test::BrokenInput buffer("select 1 as a\ngo\ndelete t_VchTemplate\n");
    std::istream in(&buffer);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCli({"--account-set", file_, "--json", "sql"}, {in, out, err}), 1);
    EXPECT_EQ(out.str(), "[{\"results\":[{\"columns\":[\"a\"],\"rows\":[[1]]}],\"error\":null}]\n");
    EXPECT_THAT(err.str(), HasSubstr("脚本没有读完，其余部分没有执行！"));
    EXPECT_GT(Number("select count(*) as n from t_VchTemplate"), 1);
}

// Takes nothing, as a full disk does.
class FullBuffer : public std::streambuf {
  protected:
    int_type overflow(int_type) override { return traits_type::eof(); }
};

TEST_F(CliInput, AnAnswerThatCannotBeWrittenIsNoSuccess) {
    const std::vector<std::vector<std::string>> commands = {
        {"--help"}, {"--account-set", file_, "list"}, {"--account-set", file_, "--json", "show", "标准模板"}};
    for (const std::vector<std::string>& command : commands) {
        FullBuffer full;
        std::istringstream in;
        std::ostream out(&full);
        std::ostringstream err;
        EXPECT_EQ(RunCli(command, {in, out, err}), 1) << command.back();
        EXPECT_EQ(err.str(), "vicenter: 输出无法写入。\n");
    }
}

}  // namespace
}  // namespace vicenter::host
