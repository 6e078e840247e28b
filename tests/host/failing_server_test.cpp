// Every command that writes, on a server that fails at its n-th packet or batch, for every n: all of it is
// stored or nothing, what happened is said once, and the next command works.

#include <functional>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "host/account_set.h"
#include "host/cli/cli.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/system/files.h"
#include "tests/host/cli_run.h"
#include "tests/host/demo_set.h"
#include "tests/tds_server/server.h"

namespace vicenter::host {
namespace {

using tds_server::DropAtPacket;
using tds_server::FailBatch;
using tds_server::Misbehaviour;

struct Command {
    std::string name;
    std::vector<std::string> arguments;
    std::string input;
};

void PrintTo(const Command& command, std::ostream* out) {
    *out << command.name;
}

using Answer = test::CliAnswer;

class FailingServer : public testing::TestWithParam<Command> {
  protected:
    FailingServer() { ado::RegisterOdbcProviders(); }
    ~FailingServer() override { ado::CloseIdleOdbcConnections(); }

    // Another copy of the demo set each time.
    void Begin() {
        ado::CloseIdleOdbcConnections();
        ado::CloseIdleAccountSets();
        const std::string name = "books" + std::to_string(++count_);
        file_ = folder_.Path(name + ".vas");
        std::filesystem::copy_file(system::PathFromUtf8(original_), system::PathFromUtf8(file_));
        server_.AddDatabase(name, system::PathFromUtf8(file_));
        connect_ = server_.ConnectText(name);
    }
    Answer Run(std::vector<std::string> arguments, const std::string& input = {}) {
        for (std::string& argument : arguments) {
            if (argument.starts_with("$")) argument = folder_.Path(argument.substr(1));
        }
        arguments.insert(arguments.begin(), {"--connect", connect_, "--yes"});
        return test::RunVicenterApart(arguments, input);
    }
    // What is stored, dates and log apart.
    std::string Content() const {
        const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(file_) + ";Pooling=no");
        std::string content;
        for (const char* query : {"select FID,FName,FUserID from t_VchTemplate order by FID",
                                  "select * from t_VchTemplateEntry order by FID,FEntryID",
                                  "select FID,FNo,FKey,FIsCanUsed from t_VchTpControl order by FID,FNo"}) {
            const ado::RecordsetRef rows = connection->Execute(query);
            for (std::size_t row = 0; row < static_cast<std::size_t>(rows->RecordCount()); ++row) {
                for (std::size_t column = 0; column < rows->ColumnCount(); ++column)
                    content += rows->ValueAt(row, column).ToTextOrEmpty() + "|";
                content += "\n";
            }
        }
        return content;
    }
    // How often the misbehaviour came to pass.
    int RunWithEach(const std::function<std::shared_ptr<Misbehaviour>(int)>& misbehaviour,
                    const std::function<bool()>& cameToPass) {
        const Command& command = GetParam();
        Begin();
        EXPECT_EQ(Run({"export", "销售与收款", "$book.xlsx"}).exitCode, 0);
        const std::string input =
            command.input.empty() ? command.input : Run({"--json", "show", command.input}).output;
        const std::string before = Content();
        const Answer well = Run(command.arguments, input);
        EXPECT_EQ(well.exitCode, 0) << well.errors;
        const std::string done = Content();
        int passed = 0;
        bool asBefore = false;
        for (int n = 1; !HasFailure(); n += n < 16 ? 1 : 7) {
            SCOPED_TRACE(n);
            if (asBefore) {
                ado::CloseIdleOdbcConnections();
            } else {
                Begin();
            }
            server_.Behave(misbehaviour(n));
            const Answer answer = Run(command.arguments, input);
            server_.BehaveWell();
            if (!cameToPass()) {
                EXPECT_EQ(answer.output, well.output);
                return passed;
            }
            ++passed;
            const std::string content = Content();
            asBefore = content == before;
            EXPECT_TRUE(asBefore || content == done) << answer.output << answer.errors;
            if (answer.exitCode == 0) {
                EXPECT_TRUE(content == done) << answer.output << answer.errors;
            } else {
                EXPECT_NE(answer.errors + answer.output, "");
                EXPECT_EQ(answer.errors.find(tds_server::Server::kPassword), std::string::npos);
            }
            EXPECT_EQ(Run({"list"}).exitCode, 0);
        }
        return passed;
    }

    test::TestFolder folder_;
    std::string original_ = test::CopySet(folder_);
    tds_server::Server server_;
    std::string file_;
    std::string connect_;
    int count_ = 0;
};

TEST_P(FailingServer, ALineThatIsCutAtAnyPacketLeavesAllOrNothing) {
    std::shared_ptr<DropAtPacket> drop;
    EXPECT_GE(RunWithEach([&](int n) { return drop = std::make_shared<DropAtPacket>(n); },
                          [&] { return drop->HasDropped(); }),
              10);
}

TEST_P(FailingServer, AnErrorOfTheServerAtAnyBatchLeavesAllOrNothing) {
    constexpr std::int32_t kNumbers[] = {1205, 1222, 3960};
    std::shared_ptr<FailBatch> fail;
    const auto failing = [&](int n) { return fail = std::make_shared<FailBatch>(n, kNumbers[n % 3]); };
    EXPECT_GE(RunWithEach(failing, [&] { return fail->HasFailed(); }), 4);
}

TEST_P(FailingServer, BytesOneByOneAndASlowLineChangeNothing) {
    Begin();
    EXPECT_EQ(Run({"export", "销售与收款", "$book.xlsx"}).exitCode, 0);
    const std::string input =
        GetParam().input.empty() ? std::string() : Run({"--json", "show", GetParam().input}).output;
    const Answer well = Run(GetParam().arguments, input);
    for (const std::shared_ptr<Misbehaviour>& misbehaviour :
         {std::shared_ptr<Misbehaviour>(std::make_shared<tds_server::ByteByByte>()),
          std::shared_ptr<Misbehaviour>(std::make_shared<tds_server::Slow>(5))}) {
        Begin();
        server_.Behave(misbehaviour);
        const Answer answer = Run(GetParam().arguments, input);
        server_.BehaveWell();
        EXPECT_EQ(answer.exitCode, 0) << answer.errors;
        EXPECT_EQ(answer.output, well.output);
    }
}

TEST_P(FailingServer, ARefusedLoginIsToldAndNothingElseHappens) {
    Begin();
    const std::string before = Content();
    server_.Behave(std::make_shared<tds_server::RefuseLogin>());
    const Answer answer = Run(GetParam().arguments, "[]");
    server_.BehaveWell();
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_NE(answer.errors + answer.output, "");
    EXPECT_EQ(Content(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, FailingServer,
    testing::Values(Command{"show", {"show", "日常费用"}, {}},
                    Command{"save", {"save", "日常费用"}, "外币业务（待核对）"},
                    Command{"rename", {"rename", "日常费用", "别的名称"}, {}},
                    Command{"delete", {"delete", "日常费用"}, {}}, Command{"new", {"new"}, {}},
                    Command{"import", {"import", "$book.xlsx"}, {}},
                    Command{
                        "generate", {"generate", "--name", "生成", "--year", "2026", "--period", "10"}, {}}),
    [](const testing::TestParamInfo<Command>& command) { return command.param.name; });

}  // namespace
}  // namespace vicenter::host
