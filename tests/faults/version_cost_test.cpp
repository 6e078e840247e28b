// What the version before a command costs: it goes to the disk with what the command writes.

#include <gtest/gtest.h>

#include "tests/faults/drill.h"

namespace vicenter::faults {
namespace {

class VersionCost : public testing::TestWithParam<Drill> {
  protected:
    // How often the command has the disk synchronized.
    long Syncs(bool keepsVersions) {
        ground_.Prepare(GetParam());
        if (!keepsVersions) {
            const std::string script = ground_.Shop().Kept("without.sql").string();
            WriteFile(script,
                      "drop table t_VchTpHistoryControl drop table t_VchTpHistoryEntry drop table "
                      "t_VchTpHistory drop table t_VchTpHistoryRule\n");
            const Outcome dropped =
                ground_.Shop().Run({{"--account-set", ground_.SetFile().string(), "sql"}, script, {}});
            EXPECT_EQ(dropped.exitCode, 0) << dropped.Said();
        }
        Outcome outcome = ground_.Shop().Run(ground_.CallOf(GetParam()));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.Said();
        return outcome.counts["sync"];
    }

    DrillGround ground_;
};

TEST_P(VersionCost, IsNoSyncOfItsOwn) {
    const long without = Syncs(false);
    EXPECT_GT(without, 0);
    EXPECT_EQ(Syncs(true), without);
}

std::vector<Drill> Replacing() {
    std::vector<Drill> drills;
    for (const Drill& drill : Drills()) {
        for (const char* name : {"save", "import_over", "generate_over", "rename", "delete"}) {
            if (drill.name == name) drills.push_back(drill);
        }
    }
    return drills;
}

INSTANTIATE_TEST_SUITE_P(Commands, VersionCost, testing::ValuesIn(Replacing()),
                         [](const testing::TestParamInfo<Drill>& drill) { return drill.param.name; });

}  // namespace
}  // namespace vicenter::faults
