// Every operation of the component on account sets, with values at the edges of what may be typed, on a file
// and on a server that hold the same rows: what the one answers the other answers, value by value and type by
// type, and refuses with the same words. Rows stand in the order that the statement gives and, where it gives
// none, in any.

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "host/components/components.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"
#include "store/template_batches.h"
#include "store/template_columns.h"
#include "store/template_guard.h"
#include "store/template_rows.h"
#include "store/vouchers.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"
#include "tests/lanes/real_server.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::lanes {
namespace {

using store::clsVIData;

const std::string& LongText() {
    static const std::string text = [] {
        std::string built;
        for (int i = 0; i < 1500; ++i)
            built += "长a";
        return built;
    }();
    return text;
}

// What somebody may type or paste where a code or a name is asked for.
std::vector<std::string> EdgeTexts() {
    return {"",      " ",         "'",    "''",         "%",        "_",        "[",        "1001", "1001 ",
            " 1001", "１００１",  "现金", "库存现金",   "人民币",   "日常费用", "标准模板", "a;b",  "--",
            "/*",    "N'x'",      "a\tb", "a\r\nb",     "\u00A0",   "RMB",      "rmb",      "支票", "公里",
            "01,02", "a'b,c%,[d", "𠮷",   "库存\u200B", LongText(), "1002.01",  ",",        "9"};
}

// Ids go into the statements as they are.
std::vector<std::string> EdgeIds() {
    return {"0",   "1", "2",        "-1", "900", "2147483647", "2147483648", "99999999999999999999",
            "1.5", "x", "1 or 1=1", "''"};
}

// A failure; of a server that has words of its own, that there is one.
std::string Said() {
    if (!HasOwnErrors()) return clsVIData::LastFailure();
    return clsVIData::LastFailure().empty() ? "" : "refused";
}

int TypeOf(const ado::Column& column) {
    const bool isLongText = HasOwnErrors() && column.type == ado::DataType::kLongVarChar;
    return static_cast<int>(isLongText ? ado::DataType::kVarChar : column.type);
}

// The columns by which a statement sorts its rows.
using Order = std::vector<std::string>;

// A row with what stands in the columns that sort it.
struct Line {
    std::string key;
    std::string text;
};

std::vector<Line> LinesOf(const ado::Recordset& rows, const Order& order) {
    std::vector<Line> lines;
    for (std::size_t row = 0; row < static_cast<std::size_t>(rows.RecordCount()); ++row) {
        Line& line = lines.emplace_back();
        for (std::size_t column = 0; column < rows.ColumnCount(); ++column) {
            const automation::Variant& value = rows.ValueAt(row, column);
            const std::string text =
                std::to_string(static_cast<int>(value.Type())) + ":" + value.ToTextOrEmpty() + "|";
            line.text += text;
            if (std::find(order.begin(), order.end(), rows.Columns()[column].name) != order.end())
                line.key += text;
        }
    }
    return lines;
}

// Rows that nothing sorts stand here by their texts, each kind of key where the answer has it.
void SortEquals(std::vector<Line>& lines) {
    for (auto first = lines.begin(); first != lines.end();) {
        const auto last =
            std::find_if(first, lines.end(), [&](const Line& line) { return line.key != first->key; });
        std::sort(first, last, [](const Line& a, const Line& b) { return a.text < b.text; });
        first = last;
    }
}

// Without an order every row stands in the one place that its statement gives it.
std::string Dump(const ado::RecordsetRef& rows, const std::optional<Order>& order = {}) {
    if (!rows) return "no rows: " + Said();
    if (!rows->IsOpen()) return "closed";
    std::string text;
    for (const ado::Column& column : rows->Columns())
        text += column.name + ":" + std::to_string(TypeOf(column)) + "|";
    std::vector<Line> lines = LinesOf(*rows, order.value_or(Order()));
    if (order) SortEquals(lines);
    for (const Line& line : lines)
        text += "\n" + line.text;
    return text;
}

std::string Dump(bool answer) {
    return (answer ? "yes " : "no ") + Said();
}

// Whose the first row is; nothing where the statement puts none of several before the others.
std::string FirstOf(const store::TemplateRow& row, const Order& order) {
    const std::vector<Line> lines = LinesOf(*row.lines, order);
    if (lines.size() > 1 && lines[0].key == lines[1].key) return {};
    return row.name + std::to_string(row.ownerId);
}

class SameAnswers : public testing::Test {
  protected:
    void TearDown() override { entry::SetCurrentUserId(""); }

    // The answer of each by its question.
    using Questions = std::map<std::string, std::function<std::string()>>;
    void Expect(const Questions& questions) {
        std::map<std::string, std::string> ofFile;
        for (const bool onServer : {false, true}) {
            const host::HostSessionRef session =
                host::RegisterHostComponents({onServer ? server_ : host::FileConnectString(file_), 1});
            entry::SetCurrentUserId("1");
            for (const auto& [question, ask] : questions) {
                clsVIData::ForgetFailure();
                const std::string answer = ask();
                if (onServer) {
                    EXPECT_EQ(answer, ofFile[question]) << question;
                } else {
                    ofFile[question] = answer;
                }
            }
        }
        EXPECT_FALSE(ofFile.empty());
    }

    host::test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    std::string file_ = host::test::CopySet(folder_);
    std::string server_ = [this] {
        const std::string other = folder_.Path("served.vas");
        std::filesystem::copy_file(system::PathFromUtf8(file_), system::PathFromUtf8(other));
        return ConnectTextOf(other);
    }();
};

TEST_F(SameAnswers, ToWhateverIsTypedAsACodeOrAName) {
    Questions questions;
    for (const std::string& text : EdgeTexts()) {
        const std::string name = "“" + text.substr(0, 40) + "” ";
        for (const int column : {2, 5, 9, 13, 17, 21})
            questions[name + "column " + std::to_string(column)] = [text, column] {
                return Dump(clsVIData().GetItemInfoByNumber(column, text), Order());
            };
        for (const std::string account : {"1001", "1002.01", "1122", text.c_str()}) {
            for (int check = 1; check <= 5; ++check)
                questions[name + account.substr(0, 40) + " check " + std::to_string(check)] = [text, account,
                                                                                               check] {
                    return Dump(clsVIData().CheckErrorCell(check, account, text, text, text, text));
                };
        }
        questions[name + "exists"] = [text] { return Dump(clsVIData().CheckVchTemplateIsExist(text)); };
        questions[name + "found"] = [text] { return std::to_string(clsVIData().FindVchTemplate(text, "1")); };
        questions[name + "to replace"] = [text] {
            const store::NamedTemplate named = store::FindTemplateToReplace(text, "1");
            return std::to_string(static_cast<int>(named.state)) + ":" + std::to_string(named.id);
        };
        questions[name + "items"] = [text] { return Dump(clsVIData().GetItems(text), Order()); };
    }
    Expect(questions);
}

TEST_F(SameAnswers, ToWhateverStandsForAnId) {
    const Order ofLines = {"FNo", "FEntryID"};
    Questions questions;
    for (const std::string& id : EdgeIds()) {
        questions[id + " lines"] = [id, ofLines] {
            return Dump(clsVIData().GetVchTemplateEntryInfo(id), ofLines);
        };
        questions[id + " count"] = [id] { return std::to_string(clsVIData().GetVchEntryCount(id)) + Said(); };
        questions[id + " templates"] = [id] {
            return Dump(clsVIData().GetVchTemplateByUserID(id), Order{"FID"});
        };
        questions[id + " merged"] = [id] {
            return clsVIData().ItemsInfo(id).value_or("unreadable " + Said());
        };
        questions[id + " classes"] = [id] {
            return Dump(clsVIData().GetItemClassIDs(id), Order{"FItemClassID"});
        };
        questions[id + " control"] = [id] { return Dump(store::ReadControlRows(id), Order{"FNo"}); };
        questions[id + " account"] = [id] { return Dump(store::ReadAccount(id), Order()); };
        questions[id + " unit"] = [id] { return Dump(store::ReadUnitGroup(id), Order()); };
        questions[id + " guard"] = [id, ofLines] {
            const auto row = store::AskTemplateWithLines(id);
            return row ? FirstOf(*row, ofLines) + Dump(row->lines, ofLines) : "none " + Said();
        };
    }
    questions["vouchers"] = [] {
        return Dump(store::GetRecordset(store::VoucherQuery({"2026", "10", "1", "999999999", "", true})));
    };
    Expect(questions);
}

// Each saved by itself: what is too much is refused with the same words and leaves the line before it.
TEST_F(SameAnswers, ToWhateverIsSaved) {
    const std::vector<std::pair<int, std::vector<std::string>>> values = {
        {store::column::kExplanation, EdgeTexts()},
        {store::column::kRemark, {"", "'", "a\r\nb", "𠮷", std::string(4000, 'x'), LongText()}},
        {store::column::kAmount,
         {"", "0", "12.50", "-0.01", "99999999999999.99", "0.00000000000001",
          "123456789012345678901234567890", "1e5", "-1"}},
        {store::column::kFileCount, {"", "0", "-1", "2147483647", "2147483648"}},
        {store::column::kNo, {"1", "0", "-1", "2147483647", "2147483648"}},
    };
    Questions questions;
    int order = 1000;
    for (const auto& [column, texts] : values) {
        for (const std::string& text : texts) {
            questions[std::to_string(++order) + " column " + std::to_string(column) + " “" +
                      text.substr(0, 40) + "”"] = [this, column = column, text] {
                const bool saved =
                    store::RunSql(store::SaveBatch("1", 1, [&](int, int c) -> std::string_view {
                        if (c == column) return text;
                        if (c == store::column::kNo) return "1";
                        return "";
                    }));
                std::string answer = (saved ? "saved " : "refused ") + Said();
                for (const std::string& said : surroundings_.messageBoxes->Texts())
                    answer += "\n" + (HasOwnErrors() ? std::string("told") : said);
                surroundings_.messageBoxes->shown.clear();
                return answer + "\n" + Dump(clsVIData().GetVchTemplateEntryInfo("1"));
            };
        }
    }
    Expect(questions);
}

TEST_F(SameAnswers, ToTemplatesThatComeAndGo) {
    Questions questions;
    questions["1 profile"] = [] { return clsVIData().GetVchTpProfileByUserID("1"); };
    questions["2 new"] = [] {
        std::int32_t number = 0;
        const std::int32_t id = clsVIData().InsertVchTemplateInfo(number);
        return std::to_string(id) + "," + std::to_string(number);
    };
    questions["3 renamed"] = [] {
        std::string answers;
        for (const std::string& name : EdgeTexts())
            answers += Dump(store::RenameTemplate("1", name)) +
                       Dump(clsVIData().CheckVchTemplateIsExist(name)) + "\n";
        return answers;
    };
    questions["4 deleted"] = [] { return Dump(clsVIData().DeleteVchTemplateInfo("1")); };
    questions["5 deleted again"] = [] { return Dump(clsVIData().DeleteVchTemplateInfo("1")); };
    questions["6 no id"] = [] { return Dump(clsVIData().DeleteVchTemplateInfo("x")); };
    questions["7 templates"] = [] { return Dump(clsVIData().GetVchTemplateByUserID("1")); };
    for (const std::int32_t column : {2, 5, 9, 13, 17})
        questions["8 list of " + std::to_string(column)] = [column] {
            const automation::ObjectRef names = automation::CreateObject("VelaGLNameListLib.GLNameList");
            return Dump(std::dynamic_pointer_cast<ado::Recordset>(
                names->Call("GetNameList", {column, std::string("1")}).AsObject()));
        };
    Expect(questions);
}

}  // namespace
}  // namespace vicenter::lanes
