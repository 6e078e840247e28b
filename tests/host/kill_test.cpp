// A process that is killed in the middle of a save leaves an account set that opens and holds either the old
// lines or the new ones. VICENTER_KILLS in the environment sets how many processes are killed; 20 without it.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "tests/host/demo_set.h"
#include "tests/host/program_run.h"

namespace vicenter::host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kTemplate = "日常费用";

// Lines whose remark and number of rows tell which save they are of.
struct Version {
    std::string mark;
    int lines;
    std::string file;
};

void WriteDocument(const Version& version) {
    std::ofstream out(system::PathFromUtf8(version.file), std::ios::binary);
    out << "{\"lines\":[";
    for (int i = 0; i < version.lines; ++i) {
        out << (i > 0 ? "," : "") << "{\"FNo\":" << i / 2 + 1 << ",\"FExp\":\"" << version.mark
            << "\",\"FDC\":\"" << (i % 2 == 0 ? "借" : "贷")
            << "\",\"FAccountNumber\":\"1001\",\"FAcctountName\":\"库存现金\",\"FAmount\":\"" << i
            << "\",\"FRemark\":\"" << version.mark << "\"}";
    }
    out << "]}";
}

test::RunningProgram StartSave(const std::string& set, const std::string& document) {
    return {VICENTER_PROGRAM, {"--account-set", set, "save", kTemplate}, document};
}

// The mark of the version that the set holds; a mixture or a half-made one is none.
std::string StoredVersion(const std::string& set, const std::vector<Version>& versions) {
    const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(set));
    const ado::RecordsetRef lines = connection->Execute(
        "select count(*) as FLines,count(distinct FRemark) as FMarks,min(FRemark) as FMark,max(FEntryID) as "
        "FLast,"
        "count(distinct FNo) as FNumbers from t_VchTemplateEntry where FID = 1");
    const ado::RecordsetRef control = connection->Execute(
        "select count(*) as FRows,count(distinct FKey) as FKeys,min(FKey) as FKey,sum(FIsCanUsed) as FUsable "
        "from "
        "t_VchTpControl where FID = 1");
    for (const Version& version : versions) {
        if (lines->Value("FLines").ToInt32() == version.lines && lines->Value("FMarks").ToInt32() == 1 &&
            lines->Value("FMark").ToText() == version.mark &&
            lines->Value("FLast").ToInt32() == version.lines &&
            control->Value("FRows").ToInt32() == lines->Value("FNumbers").ToInt32() &&
            control->Value("FKeys").ToInt32() == 1 && control->Value("FKey").ToText() == version.mark &&
            control->Value("FUsable").ToInt32() == control->Value("FRows").ToInt32())
            return version.mark;
    }
    return {};
}

TEST(KilledSave, LeavesEitherTheOldOrTheNewLines) {
    const char* asked = std::getenv("VICENTER_KILLS");
    const int kills = asked ? std::atoi(asked) : 20;
    test::TestFolder folder;
    const std::string set = test::CopySet(folder);
    const std::vector<Version> versions = {{"甲", 1200, folder.Path("a.json")},
                                           {"乙", 1800, folder.Path("b.json")}};
    for (const Version& version : versions)
        WriteDocument(version);

    // A whole run of each first, for the time that it takes.
    std::chrono::microseconds whole{0};
    for (const Version& version : versions) {
        const auto start = Clock::now();
        ASSERT_EQ(0, StartSave(set, version.file).Wait().code);
        whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
        ASSERT_EQ(version.mark, StoredVersion(set, versions));
    }

    int runs = 0;
    int killed = 0;
    int replaced = 0;
    std::string before = versions[1].mark;
    for (; runs < 10 * kills && killed < kills; ++runs) {
        const Version& next = before == versions[0].mark ? versions[1] : versions[0];
        test::RunningProgram save = StartSave(set, next.file);
        // The moments cover the run evenly, in an order that jumps.
        const auto delay = whole * ((runs * 37) % 100 + 1) / 100;
        std::this_thread::sleep_for(delay);  // the moment of the kill is what is tested
        save.Kill();
        const bool wasKilled = save.Wait().killed;
        killed += wasKilled ? 1 : 0;
        if (!wasKilled) whole = std::min(whole, delay);  // the machine has become faster
        const std::string after = StoredVersion(set, versions);
        ASSERT_FALSE(after.empty()) << "a mixture after kill " << runs << " at " << delay.count() << " us";
        replaced += after != before ? 1 : 0;
        before = after;
    }
    EXPECT_EQ(killed, kills);
    std::cout << runs << " processes, " << killed << " killed before their end, " << replaced
              << " times the new lines were there, " << runs - replaced << " times the old ones\n";
}

}  // namespace
}  // namespace vicenter::host
