// The program on an account set of a SQL Server: the test server, with a driver and a socket between. What
// the scripts of tests/host/cli/ say of a file they say of it, too.

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "host/account_set.h"
#include "host/account_set_setup.h"
#include "host/cli/cli.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/system/files.h"
#include "tests/host/cli_run.h"
#include "tests/host/cli_script.h"
#include "tests/host/demo_set.h"
#include "tests/lanes/odbc_patience.h"
#include "tests/lanes/real_server.h"
#include "tests/paths/source_folder.h"
#include "tests/tds_server/server.h"

namespace vicenter::host {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::filesystem::path& Folder() {
    static const std::filesystem::path folder = testing_paths::SourceFolder() / "tests" / "host" / "cli";
    return folder;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Those that work on an account set of the test's.
std::vector<std::string> ScriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
        if (entry.path().extension() != ".test") continue;
        const std::string text = ReadFile(entry.path());
        if (text.find("\nset: none") != std::string::npos) continue;
        if (text.find("of a file alone") != std::string::npos) continue;
        names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Serves files as the database "books"; a real server that is named has their rows in a database of its own.
class Served {
  public:
    Served() { ado::RegisterOdbcProviders(); }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;
    ~Served() { ado::CloseIdleOdbcConnections(); }
    std::string Serve(const std::string& file) {
        const std::filesystem::path path = system::PathFromUtf8(file);
        if (const auto real = lanes::RealServer()) {
            database_ = std::make_unique<lanes::ScratchDatabase>(*real);
            if (std::filesystem::exists(path)) database_->Take(file);
            return database_->ConnectText();
        }
        server_.AddDatabase("books", path);
        return server_.ConnectText("books");
    }
    std::string DatabaseName() const { return database_ ? database_->Name() : "books"; }
    tds_server::Server& Server() { return server_; }

  private:
    tds_server::Server server_;
    std::unique_ptr<lanes::ScratchDatabase> database_;
};

class CommandLineOverOdbc : public testing::TestWithParam<std::string> {};

TEST_P(CommandLineOverOdbc, AnswersAsOnAFile) {
    const test::CliScript expected = test::ReadCliScript(ReadFile(Folder() / (GetParam() + ".test")));
    Served served;
    const test::CliScript actual = test::RunCliScript(expected, [&](const std::string& file) {
        return std::vector<std::string>{"--connect", served.Serve(file)};
    });
    test::ExpectAlike(expected, actual, GetParam(), lanes::HasOwnErrors());
}

INSTANTIATE_TEST_SUITE_P(Scripts, CommandLineOverOdbc, testing::ValuesIn(ScriptNames()),
                         [](const auto& script) { return script.param; });

using Answer = test::CliAnswer;

Answer Vicenter(const std::vector<std::string>& arguments, const std::string& input = {}) {
    return test::RunVicenterApart(arguments, input);
}

class AccountSetOnServer : public testing::Test {
  protected:
    test::TestFolder folder_;
    Served served_;
};

// What asks the test server itself: how often it was asked, and what comes of its misbehaving.
class AccountSetOnTestServer : public AccountSetOnServer {
  protected:
    void SetUp() override {
        if (lanes::RealServer()) GTEST_SKIP() << "asks the test server itself";
    }
    // However slowly this machine runs, no kept connection is asked whether it still lives.
    const lanes::OdbcPatience patience_;
};

TEST_F(AccountSetOnServer, IsMadeOnceAndCompletedAfterwards) {
    const std::string connect = served_.Serve(folder_.Path("books.vas"));
    Answer answer = Vicenter({"--connect", connect, "account-set", "new", "--dry-run"});
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_THAT(answer.output, HasSubstr("create table t_VchTemplateEntry ("));
    EXPECT_THAT(answer.output, HasSubstr("create procedure pro_VchTpCanUsed"));
    EXPECT_EQ(Vicenter({"--connect", connect, "list"}).exitCode, 1);  // nothing has been made

    answer = Vicenter({"--connect", connect, "--json", "account-set", "new", "--demo"});
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_THAT(answer.output, HasSubstr("\"fresh\":true"));
    const Answer listed = Vicenter({"--connect", connect, "list"});
    EXPECT_THAT(listed.output, HasSubstr("日常费用"));

    ado::OpenConnection(connect)->Execute("drop table t_VchTpProfile");
    answer = Vicenter({"--connect", connect, "--json", "account-set", "new"});
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_THAT(answer.output, HasSubstr("\"made\":1,"));
    EXPECT_THAT(answer.output, HasSubstr("\"fresh\":false"));
    EXPECT_EQ(Vicenter({"--connect", connect, "list"}).output, listed.output);
    EXPECT_THAT(Vicenter({"--connect", connect, "account-set", "new", "--dry-run"}).output,
                testing::IsEmpty());
    EXPECT_THAT(Vicenter({"--connect", connect, "account-set", "new", "--demo"}).errors,
                HasSubstr("数据库中已有账套，不能再写入演示数据。"));
}

TEST_F(AccountSetOnServer, TravelsBothWaysWithEveryRow) {
    const std::string file = test::CopySet(folder_);
    const std::string connect = served_.Serve(folder_.Path("served.vas"));
    Answer answer = Vicenter({"account-set", "copy", file, connect});
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_THAT(answer.output, HasSubstr("内容一致"));
    const std::string back = folder_.Path("back.vas");
    answer = Vicenter({"account-set", "copy", connect, back});
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_EQ(Vicenter({"--account-set", back, "--json", "show", "日常费用"}).output,
              Vicenter({"--account-set", file, "--json", "show", "日常费用"}).output);
    EXPECT_EQ(Vicenter({"--account-set", back, "--json", "log"}).output,
              Vicenter({"--account-set", file, "--json", "log"}).output);
    // What holds rows is never written over.
    answer = Vicenter({"account-set", "copy", file, connect});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("目标账套中已有数据"));
    answer = Vicenter({"account-set", "copy", connect, back});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("文件已存在"));
}

TEST_F(AccountSetOnTestServer, NothingIsLeftOfACopyThatFailed) {
    const std::string file = test::CopySet(folder_);
    const std::string connect = served_.Serve(folder_.Path("served.vas"));
    served_.Server().Behave(std::make_shared<tds_server::FailBatch>(120, 1205));
    EXPECT_EQ(Vicenter({"account-set", "copy", file, connect}).exitCode, 1);
    served_.Server().BehaveWell();
    EXPECT_EQ(ado::OpenConnection(connect)->Execute("select name from sys.tables")->RecordCount(), 0);
    EXPECT_EQ(Vicenter({"account-set", "copy", file, connect}).exitCode, 0);
}

TEST_F(AccountSetOnServer, IsVerifiedAsAFileIs) {
    const std::string connect = served_.Serve(test::CopySet(folder_));
    const auto verify = [&] { return Vicenter({"--connect", connect, "--json", "account-set", "verify"}); };
    Answer answer = verify();
    EXPECT_EQ(answer.exitCode, 0) << answer.errors << answer.output;
    EXPECT_THAT(answer.output, HasSubstr("\"findings\":[]"));
    EXPECT_THAT(answer.output, HasSubstr("\"database\":\"" + served_.DatabaseName() + "\""));
    const ado::ConnectionRef connection = ado::OpenConnection(connect);
    connection->Execute(
        "insert into t_VchTemplateEntry(FID,FEntryID,FNo) values(777,1,1) "
        "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(778,'日常费用',1,'0',getdate()) "
        "drop index IX_t_VchTemplateEntry_No on t_VchTemplateEntry drop procedure pro_VchTpCanUsed");
    answer = verify();
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.output, HasSubstr("凭证模板分录没有模板：FID 777，1 处"));
    EXPECT_THAT(answer.output, HasSubstr("凭证模板名称重复"));
    EXPECT_THAT(answer.output, HasSubstr("缺少索引：IX_t_VchTemplateEntry_No"));
    EXPECT_THAT(answer.output, HasSubstr("缺少存储过程：pro_VchTpCanUsed"));
    connection->Execute("drop table t_VchTpProfile");
    EXPECT_THAT(verify().output, HasSubstr("缺少表：t_VchTpProfile"));
    // What is missing is made again, and only that.
    EXPECT_THAT(Vicenter({"--connect", connect, "--json", "account-set", "new"}).output,
                HasSubstr("\"made\":3,"));
    EXPECT_THAT(verify().output, Not(HasSubstr("缺少")));
    connection->Close();
}

// What an administrator has made under another name serves as well, and is not made twice.
TEST_F(AccountSetOnServer, AnIndexIsKnownByItsColumns) {
    const std::string connect = served_.Serve(folder_.Path("served.vas"));
    ASSERT_EQ(Vicenter({"--connect", connect, "account-set", "new"}).exitCode, 0);
    const ado::ConnectionRef connection = ado::OpenConnection(connect + ";Pooling=no");
    connection->Execute("drop index IX_t_VchTemplateEntry_No on t_VchTemplateEntry");
    connection->Execute("create index by_number on t_VchTemplateEntry (FID, FNo)");
    connection->Close();
    EXPECT_THAT(Vicenter({"--connect", connect, "--json", "account-set", "verify"}).output,
                HasSubstr("缺少索引：IX_t_VchTemplateEntry_No"));
    const ado::ConnectionRef again = ado::OpenConnection(connect + ";Pooling=no");
    again->Execute("create index by_line on t_VchTemplateEntry (FID, FNo, FEntryID, FDC)");
    again->Close();
    EXPECT_THAT(Vicenter({"--connect", connect, "--json", "account-set", "verify"}).output,
                HasSubstr("\"findings\":[]"));
    EXPECT_THAT(Vicenter({"--connect", connect, "--json", "account-set", "new"}).output,
                HasSubstr("\"made\":0,"));
}

TEST_F(AccountSetOnServer, AColumnThatIsMissingIsNamed) {
    const std::string connect = served_.Serve(folder_.Path("books.vas"));
    ado::OpenConnection(connect)->Execute(
        "create table t_VchTemplate (FID int not null, FName nvarchar(80) null)");
    const Answer answer = Vicenter({"--connect", connect, "account-set", "verify"});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors + answer.output, HasSubstr("表 t_VchTemplate 缺少字段：FUserID"));
    EXPECT_EQ(Vicenter({"account-set", "verify"}).exitCode, 2);
}

TEST_F(AccountSetOnTestServer, ThePasswordComesFromWhereItIsSaid) {
    served_.Serve(test::CopySet(folder_));
    const std::string connect =
        "Provider=SQLOLEDB;User ID=sa;Initial Catalog=books;Data Source=" + served_.Server().Address();
    const std::string password = tds_server::Server::kPassword;
    EXPECT_THAT(Vicenter({"--connect", connect, "list"}).errors, HasSubstr("Login failed"));

    setenv("VICENTER_PASSWORD_OF_A_TEST", password.c_str(), 1);
    EXPECT_EQ(
        Vicenter({"--connect", connect, "--password-env", "VICENTER_PASSWORD_OF_A_TEST", "list"}).exitCode,
        0);
    unsetenv("VICENTER_PASSWORD_OF_A_TEST");
    EXPECT_THAT(
        Vicenter({"--connect", connect, "--password-env", "VICENTER_PASSWORD_OF_A_TEST", "list"}).errors,
        HasSubstr("没有环境变量：VICENTER_PASSWORD_OF_A_TEST"));

    std::ofstream(system::PathFromUtf8(folder_.Path("secret"))) << password << "\nsecond line\n";
    EXPECT_EQ(Vicenter({"--connect", connect, "--password-file", folder_.Path("secret"), "list"}).exitCode,
              0);

    const Answer asked = Vicenter({"--connect", connect, "--ask-password", "list"}, password + "\n");
    EXPECT_EQ(asked.exitCode, 0);
    EXPECT_THAT(asked.errors, HasSubstr("密码"));
    EXPECT_THAT(asked.errors + asked.output, Not(HasSubstr(password)));

    const Answer wrong =
        Vicenter({"--connect", connect + ";Password=Geheim1", "--json", "check", "日常费用"});
    EXPECT_EQ(wrong.exitCode, 1);
    EXPECT_THAT(wrong.errors + wrong.output, Not(HasSubstr("Geheim1")));
}

// What docs/sql-server.md says of round trips. A command line opens its own connection: the question for the
// code page is among them.
TEST_F(AccountSetOnTestServer, ACommandCostsFewTrips) {
    const std::string connect = served_.Serve(test::CopySet(folder_));
    const auto trips = [&](std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), {"--connect", connect, "--yes"});
        Vicenter({"--connect", connect, "list"});
        served_.Server().ForgetBatches();
        const Answer answer = Vicenter(arguments, input);
        EXPECT_EQ(answer.exitCode, 0) << answer.errors;
        return served_.Server().RoundTrips();
    };
    const int list = trips({"list"});
    const int show = trips({"show", "日常费用"});
    std::string lines = Vicenter({"--connect", connect, "--json", "show", "日常费用"}).output;
    const std::string_view explanation = "报销办公费";
    lines.replace(lines.find(explanation), explanation.size(), "报销");
    const int save = trips({"save", "日常费用"}, lines);
    const int generate = trips({"generate", "--name", "生成", "--year", "2026", "--period", "10"});
    const int exporting = trips({"export", "日常费用", folder_.Path("a.xlsx")});
    const int import = trips({"import", folder_.Path("a.xlsx")});
    const std::string page = ReadFile(testing_paths::SourceFolder() / "docs" / "sql-server.md");
    for (const auto& [name, count] :
         {std::pair{"list", list}, std::pair{"show", show}, std::pair{"save", save},
          std::pair{"generate", generate}, std::pair{"export", exporting}, std::pair{"import", import}}) {
        const std::string row = "| `" + std::string(name) + "` | " + std::to_string(count) + " |";
        EXPECT_NE(page.find(row), std::string::npos) << row;
    }
}

// The tables that a batch writes to, each with how: "insert t_Log".
std::set<std::string> WrittenBy(const std::vector<std::string>& batches) {
    static const std::regex kWrites(R"(\b(insert|update|delete)\s+(?:into\s+|from\s+)?([A-Za-z_]\w*))",
                                    std::regex::icase);
    std::set<std::string> written;
    for (const std::string& batch : batches) {
        for (std::sregex_iterator at(batch.begin(), batch.end(), kWrites), end; at != end; ++at) {
            std::string verb = (*at)[1];
            std::transform(verb.begin(), verb.end(), verb.begin(),
                           [](char c) { return static_cast<char>(c | 0x20); });
            if ((*at)[2].str().starts_with("t_")) written.insert(verb + " " + (*at)[2].str());
        }
    }
    return written;
}

TEST_F(AccountSetOnTestServer, NothingIsWrittenBeyondTheRightsOfThePage) {
    const std::string connect = served_.Serve(test::CopySet(folder_));
    const std::string book = folder_.Path("a.xlsx");
    const auto run = [&](std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), {"--connect", connect, "--yes"});
        const Answer answer = Vicenter(arguments, input);
        EXPECT_EQ(answer.exitCode, 0) << answer.errors;
        return answer.output;
    };
    served_.Server().ForgetBatches();
    const std::string lines = run({"--json", "show", "日常费用"});
    run({"new"});
    run({"rename", "自定义模板(1)", "权限二"});
    run({"save", "权限二"}, lines);
    run({"export", "权限二", book});
    run({"import", book});
    run({"generate", "--name", "生成", "--year", "2026", "--period", "10"});
    run({"generate", "--name", "生成", "--year", "2026", "--period", "9"});
    run({"delete", "权限二"});
    run({"log"});
    const std::set<std::string> written = WrittenBy(served_.Server().Batches());
    EXPECT_GE(written.size(), 8U);
    const std::string page = ReadFile(testing_paths::SourceFolder() / "docs" / "sql-server.md");
    for (const std::string& right : written) {
        const std::string verb = right.substr(0, right.find(' '));
        const std::string table = right.substr(verb.size() + 1);
        const std::size_t end = page.find(" on " + table + " to vicenter_role");
        ASSERT_NE(end, std::string::npos) << right;
        const std::size_t begin = page.rfind("grant ", end);
        EXPECT_NE(page.substr(begin, end - begin).find(verb), std::string::npos) << right;
    }
}

TEST(RealServer, IsAskedWhereOneIsNamed) {
    if (!lanes::RealServer())
        GTEST_SKIP() << "VICENTER_TEST_CONNECT is not set: no real SQL Server was asked.";
    EXPECT_TRUE(ado::OpenConnection(*lanes::RealServer())->IsOpen());
}

TEST(DriversCommand, MarksTheOneThatIsTaken) {
    EXPECT_THAT(Vicenter({"drivers"}).output, testing::StartsWith("* "));
    EXPECT_THAT(Vicenter({"--json", "drivers"}).output, HasSubstr("\"chosen\":true"));
}

}  // namespace
}  // namespace vicenter::host
