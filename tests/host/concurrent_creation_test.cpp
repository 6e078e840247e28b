// by hand
// Several programs that make templates in one account set at once: every one gets a number of its own.

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/host/demo_set.h"
#include "tests/host/program_run.h"

namespace vicenter::host {
namespace {

TEST(ConcurrentCreation, GivesEachTemplateANumberOfItsOwn) {
    const int rounds = std::getenv("VICENTER_LONG") != nullptr ? 50 : 3;
    constexpr int kPrograms = 6;
    test::TestFolder folder;
    const std::string set = test::CopySet(folder);
    const auto count = [&] {
        const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(set));
        const ado::RecordsetRef numbers =
            connection->Execute("select count(*) as n, count(distinct FID) as ids from t_VchTemplate");
        EXPECT_EQ(numbers->Value("n").ToInt32(), numbers->Value("ids").ToInt32());
        return numbers->Value("n").ToInt32();
    };
    const int before = count();
    for (int round = 0; round < rounds; ++round) {
        std::vector<test::RunningProgram> programs;
        for (int i = 0; i < kPrograms; ++i)
            programs.emplace_back(VICENTER_PROGRAM, std::vector<std::string>{"--account-set", set, "new"});
        for (test::RunningProgram& program : programs)
            EXPECT_EQ(0, program.Wait().code);
    }
    EXPECT_EQ(count(), before + rounds * kPrograms);
}

TEST(ConcurrentUpgrade, MakesEachTableOnceAndTellsNobodyOfAnError) {
    constexpr int kPrograms = 4;
    test::TestFolder folder;
    const std::string set = test::CopySet(folder);
    ado::OpenConnection(FileConnectString(set))
        ->Execute(
            "drop table t_VchTpHistoryEntry drop table t_VchTpHistoryControl drop table t_VchTpHistoryRule "
            "drop table t_VchTpHistory");
    std::vector<test::RunningProgram> programs;
    for (int i = 0; i < kPrograms; ++i)
        programs.emplace_back(VICENTER_PROGRAM, std::vector<std::string>{"account-set", "upgrade", set});
    for (test::RunningProgram& program : programs)
        EXPECT_EQ(0, program.Wait().code);
    EXPECT_EQ(0, test::RunningProgram(VICENTER_PROGRAM, {"account-set", "verify", set}).Wait().code);
}

}  // namespace
}  // namespace vicenter::host
