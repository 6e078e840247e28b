// What the window asks of a server: each question once, side by side where they do not wait for each other,
// and name lists as long as they may be old.

#include <algorithm>
#include <fstream>
#include <functional>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "autovch/generation.h"
#include "center/frame/frm_vi_center.h"
#include "center/template/line_loader.h"
#include "entry/host_context.h"
#include "host/components/components.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/ado/side_by_side.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"
#include "tests/center/fake_view.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_lines.h"
#include "tests/host/demo_set.h"
#include "tests/lanes/odbc_patience.h"
#include "tests/paths/source_folder.h"
#include "tests/tds_server/server.h"

namespace vicenter::center::test {
namespace {

using tds_server::DropAtPacket;
using tds_server::Slow;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kLines = 1000;
constexpr const char* kTemplateId = "900";

class ServerTrips : public testing::Test {
  protected:
    void SetUp() override {
        ado::RegisterOdbcProviders();
        StoreThousandLines();
        server_.AddDatabase("books", system::PathFromUtf8(file_));
        Use(server_.ConnectText("books"));
    }
    void TearDown() override {
        session_.reset();
        entry::SetCurrentUserId("");
        ado::CloseIdleOdbcConnections();
    }
    void Use(const std::string& connectString) {
        session_ = host::RegisterHostComponents({connectString, 1});
    }
    void StoreThousandLines() {
        const ado::ConnectionRef connection = ado::OpenConnection(host::FileConnectString(file_));
        connection->Execute(
            "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(900,'k',1,'0',getdate())");
        host::test::StoreDemoLines(*connection, kTemplateId, kLines);
        // Some that do not resolve.
        connection->Execute(
            "update t_VchTemplateEntry set FAccountNumber = '9' where FID = 900 and FEntryID % 50 = 0");
    }
    // Which checks have failed, row by row.
    static std::string Faults(const EntryGrid& grid) {
        std::string faults;
        for (int row = 1; row <= kLines; ++row) {
            for (const int c : {column::kAccountNumber, column::kSettleName, column::kCurrencyName,
                                column::kUnitName, column::kItems})
                faults += static_cast<char>('0' + grid.FaultyCheck(row, c));
        }
        return faults;
    }
    std::string FaultsOfFile() {
        Use(host::FileConnectString(file_));
        EntryGrid grid;
        EXPECT_EQ(LoadLines(grid, kTemplateId), kLines);
        Use(server_.ConnectText("books"));
        return Faults(grid);
    }

    static std::string Page() {
        std::ifstream file(testing_paths::SourceFolder() / "docs" / "sql-server.md", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    // However slowly this machine runs, no kept connection is asked whether it still lives.
    const lanes::OdbcPatience patience_;
    host::test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    std::string file_ = host::test::CopySet(folder_);
    tds_server::Server server_;
    host::HostSessionRef session_;
};

TEST_F(ServerTrips, AThousandLinesCostOneTripAndOneForEachDistinctQuestion) {
    const std::string expected = FaultsOfFile();
    EXPECT_THAT(expected, HasSubstr("1"));
    store::RunSql("update t_Settle set FName = FName");  // a line is there, and the code page is known
    store::GetRecordset("select 1 as n where N'中' = N'中'");
    server_.ForgetBatches();
    EntryGrid grid;
    ASSERT_EQ(LoadLines(grid, kTemplateId), kLines);
    const std::vector<std::string> sent = server_.Batches();
    const std::set<std::string> distinct(sent.begin(), sent.end());
    EXPECT_EQ(sent.size(), distinct.size());
    EXPECT_EQ(server_.RoundTrips(), static_cast<int>(sent.size()));
    EXPECT_EQ(
        std::count_if(sent.begin(), sent.end(),
                      [](const std::string& text) { return text.find("t_VchTemplateEntry") != text.npos; }),
        1);
    const std::string row = "| 打开 1,000 行分录 | " + std::to_string(sent.size()) + " |";
    EXPECT_NE(Page().find(row), std::string::npos) << row;
    EXPECT_EQ(Faults(grid), expected);
    // Even one after the other they would not take three seconds at five milliseconds each.
    EXPECT_LT(server_.RoundTrips() * 5, 3000);
}

// A thousand lines with codes, as a spreadsheet has them: number, explanation, side, account, settlement
// type, currency and unit. The first, which the status line speaks of afterwards, is without a fault.
std::string Sheet() {
    const char* accounts[] = {"1001", "1002.01", "1002.02", "1122", "2202", "4711", "6602.01", "6602.02"};
    const char* settles[] = {"", "JF01", "JF02", "99"};
    const char* currencies[] = {"RMB", "USD", "nobody's"};
    std::string text = "模板编号\t摘要\t借/贷\t科目代码\t结算方式\t币别\t计量单位\r\n";
    for (int i = 0; i < kLines; ++i) {
        text += std::to_string(i / 4 + 1) + "\t摘要 " + std::to_string(i % 3) + "\t借\t" + accounts[i % 8] +
                "\t" + settles[i % 4] + "\t" + currencies[i % 3] + "\t" + (i % 5 == 4 ? "01" : "") + "\r\n";
    }
    return text;
}

// The sheet pasted into an empty template: every cell with its colour, and what was refused.
std::string PastedSheet(const std::function<void()>& beforehand = [] {}) {
    FakeVICenterView view;
    frmVICenter window(view, nullptr);
    window.Load();
    window.ToolClick("mnuNew");
    EXPECT_TRUE(window.Tree().AfterLabelEdit("粘贴"));
    beforehand();
    const PasteResult result = window.Cells().PasteBlock(CellSelection(1, 1), CopiedBlock(Sheet()));
    EXPECT_EQ(result.rows, kLines);
    std::string texts;
    for (int row = 1; row <= kLines; ++row) {
        for (int c = 1; c <= kColumnCount; ++c) {
            texts += window.Grid().Text(row, c);
            texts += window.Grid().Look(row, c).foreColor == color::kRed ? "!|" : "|";
        }
        texts += "\n";
    }
    for (const RefusedCell& refused : result.refused)
        texts += refused.text + refused.reason + "\n";
    return texts;
}

TEST_F(ServerTrips, AThousandPastedLinesCostOneTripForEachDistinctQuestion) {
    Use(host::FileConnectString(file_));
    const std::string expected = PastedSheet();
    EXPECT_THAT(expected, HasSubstr("!"));
    EXPECT_THAT(expected, HasSubstr("库存现金"));
    store::RunSql("delete t_VchTemplate where FName = '粘贴'");
    Use(server_.ConnectText("books"));
    store::GetRecordset("select 1 as n where N'中' = N'中'");
    server_.Behave(std::make_shared<Slow>(5));
    EXPECT_EQ(PastedSheet([&] { server_.ForgetBatches(); }), expected);
    const std::vector<std::string> sent = server_.Batches();
    EXPECT_GT(server_.MostAtOnce(), 2);
    std::set<std::string> distinct;
    for (const std::string& text : sent)
        EXPECT_TRUE(distinct.insert(text).second) << text;
    const std::string row = "| 粘贴 1,000 行分录 | " + std::to_string(server_.RoundTrips()) + " |";
    EXPECT_NE(Page().find(row), std::string::npos) << row;
}

TEST_F(ServerTrips, AGenerationAsksForItsItemsSideBySide) {
    autovch::GenerationRequest request;
    request.filter = {"2026", "10", "1", "999999", "", true};
    request.columns = {column::kItems};
    const auto lines = [&](const std::string& name) {
        request.templateName = name;
        const autovch::GenerationResult result =
            autovch::Generate(request, [](std::int64_t, std::int64_t) { return true; });
        EXPECT_EQ(result.outcome.state, store::TemplateOutcome::State::Saved);
        std::string items;
        const ado::RecordsetRef rows = store::GetRecordset(
            "select FItemsInfo from t_VchTemplateEntry where FID = " + std::to_string(result.outcome.id) +
            " order by FEntryID");
        for (; !rows->AtEnd(); rows->MoveNext())
            items += rows->Value("FItemsInfo").ToTextOrEmpty() + "\n";
        return items;
    };
    Use(host::FileConnectString(file_));
    const std::string expected = lines("甲");
    EXPECT_GT(std::count(expected.begin(), expected.end(), '\n'), 20);
    Use(server_.ConnectText("books"));
    server_.Behave(std::make_shared<Slow>(5));
    server_.ForgetBatches();
    EXPECT_EQ(lines("乙"), expected);
    EXPECT_GT(server_.MostAtOnce(), 1);
    const std::vector<std::string> sent = server_.Batches();
    std::set<std::string> merged;
    for (const std::string& text : sent) {
        if (text.find("FItemsInfo from t_ItemDetail") == text.npos) continue;
        EXPECT_TRUE(merged.insert(text).second) << text;
    }
    EXPECT_GT(merged.size(), 2U);
}

TEST_F(ServerTrips, ATypedCodeAndANameListCostWhatThePageSays) {
    store::GetRecordset("select 1 as n where N'中' = N'中'");
    const auto trips = [&](const std::function<void()>& work) {
        server_.ForgetBatches();
        work();
        return std::to_string(server_.RoundTrips());
    };
    const std::string typed =
        trips([] { store::clsVIData().GetItemInfoByNumber(column::kAccountNumber, std::string("1001")); });
    const std::string checked =
        trips([] { store::clsVIData().CheckErrorCell(1, std::string("1001"), "", "", "", ""); });
    const std::string list = trips([&] {
        automation::CreateObject("VelaGLNameListLib.GLNameList")
            ->Call("GetNameList", {std::int32_t{5}, std::string()});
    });
    const std::string page = Page();
    for (const std::string& row :
         {"| 录入科目代码：查询 | " + typed + " |", "| 录入科目代码：检查 | " + checked + " |",
          "| 读取一个名称列表 | " + list + " |"})
        EXPECT_NE(page.find(row), std::string::npos) << row;
}

TEST_F(ServerTrips, QuestionsWaitSideBySide) {
    const std::string expected = FaultsOfFile();
    server_.ForgetBatches();
    server_.Behave(std::make_shared<Slow>(5));
    EntryGrid grid;
    ASSERT_EQ(LoadLines(grid, kTemplateId), kLines);
    EXPECT_GT(server_.MostAtOnce(), 2);
    EXPECT_LE(server_.Connections(), static_cast<int>(ado::CurrentOdbcPooling().most) + 2);
    EXPECT_EQ(Faults(grid), expected);
}

TEST_F(ServerTrips, ALineThatIsCutAmongManyCostsNoAnswer) {
    const std::string expected = FaultsOfFile();
    int cuts = 0;
    for (int n = 4; n < 400; n += 13) {
        const auto drop = std::make_shared<DropAtPacket>(n);
        EntryGrid grid;
        // The lines themselves are read in peace.
        store::GetRecordset("select 1 as n");
        server_.Behave(drop);
        const bool known = LoadLines(grid, kTemplateId).has_value();
        server_.BehaveWell();
        if (!drop->HasDropped()) break;
        ++cuts;
        if (known) {
            EXPECT_EQ(Faults(grid), expected) << n;
        }
    }
    EXPECT_GT(cuts, 5);
}

TEST_F(ServerTrips, WhatFailsAmongManyQuestionsFailsAsItDoesAlone) {
    std::vector<std::string> results(3);
    const auto ask = [&](std::size_t i, const std::string& text) {
        return [&results, i, text] {
            const ado::RecordsetRef answer = store::GetRecordset(text);
            results[i] = answer ? answer->Value(std::size_t{0}).ToText() : "none";
        };
    };
    EXPECT_TRUE(ado::PaysToAskSideBySide(entry::GetPropsString()));
    ado::AskSideBySide(entry::GetPropsString(),
                       {ask(0, "select 7 as a"), ask(1, "select * from nowhere"), ask(2, "select 'x' as a")});
    EXPECT_THAT(results, testing::ElementsAre("7", "none", "x"));
    // Elsewhere they are asked one after the other.
    Use(host::FileConnectString(file_));
    EXPECT_FALSE(ado::PaysToAskSideBySide(entry::GetPropsString()));
    ado::AskSideBySide(entry::GetPropsString(), {ask(0, "select 8 as a")});
    EXPECT_EQ(results[0], "8");
}

// ---- name lists

class ServerLists : public ServerTrips {
  protected:
    // What the lists of columns 2 to 17 would be read for.
    std::string Version() { return session_->DataVersion(); }
    // What the server says of its change tracking.
    void Track(unsigned version, unsigned tables) {
        constexpr char kIntType[] = {0x26, 4};
        const auto value = [](unsigned number) {
            std::string bytes;
            tds_server::PutByte(bytes, 4);
            tds_server::Put32(bytes, number);
            return bytes;
        };
        const std::string type(kIntType, sizeof kIntType);
        server_.Answer(
            "select change_tracking_current_version() as FVersion,(select count(*) from "
            "sys.change_tracking_tables where object_id in (object_id('t_VoucherExp'),object_id('t_Account'),"
            "object_id('t_Settle'),object_id('t_Currency'),object_id('t_MeasureUnit'))) as FTables",
            {{{"FVersion", type}, {"FTables", type}}, {{value(version), value(tables)}}});
    }
};

TEST_F(ServerLists, ACheapQuestionTellsWhetherTheyHaveChanged) {
    Track(40, 5);
    const std::string first = Version();
    server_.ForgetBatches();
    EXPECT_EQ(Version(), first);
    EXPECT_EQ(server_.RoundTrips(), 1);
    Track(41, 5);
    EXPECT_NE(Version(), first);
    EXPECT_NE(Version(), "");
}

TEST_F(ServerLists, WhereNobodyTracksThemTheyAreKeptForATime) {
    Track(40, 4);
    const std::string first = Version();
    server_.ForgetBatches();
    EXPECT_NE(first, "");
    EXPECT_EQ(Version(), first);
    EXPECT_EQ(server_.RoundTrips(), 0);
    Use(server_.ConnectText("books") + ";Lists Kept=0");
    EXPECT_EQ(Version(), "");
}

TEST_F(ServerLists, AServerThatKnowsNoTrackingIsAskedOnce) {
    const std::string first = Version();
    server_.ForgetBatches();
    EXPECT_EQ(Version(), first);
    EXPECT_THAT(server_.Batches(), IsEmpty());
}

}  // namespace
}  // namespace vicenter::center::test
