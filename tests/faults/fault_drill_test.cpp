// Every command that writes, with one of its calls to the system failing, halved or being its last.
//
// Whatever fails: the account set opens, is sound and holds exactly what it held or what the command makes of
// it, the flags of usable numbers included; the file that the command writes is the old one or the new one;
// success is told only of what is there; a refusal says something; nothing is left behind that a next start
// does not clear.
//
// A run takes a sample of the points; VICENTER_LONG=1 takes every one. VICENTER_SEED draws another sample,
// VICENTER_FAULT_LOG names a file that gets a line for each run.

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/faults/drill.h"

namespace vicenter::faults {
namespace {

constexpr std::size_t kSamplePerDrill = 12;
constexpr std::size_t kMemorySamplePerDrill = 4;
// There are thousands of allocations; the whole drill takes so many of them for each plan. A fault that only
// a few in a row show is found by more of them.
constexpr long kAllocationsPerPlan = 600;
constexpr std::size_t kToldPerDrill = 8;
// Closing and tidying up come last, when success has been decided: every run takes the last of these calls.
constexpr long kLastWrites = 5;
constexpr long kLastRemovals = 3;

constexpr const char* kChanges = "write+sync+truncate+rename+unlink+open";
constexpr const char* kEveryCall = "open+read+write+sync+truncate+rename+unlink+lock+map";
constexpr const char* kAllButLocks = "open+read+write+sync+truncate+rename+unlink+map";

struct Plan {
    const char* classes;
    const char* action;
    int code;
    long last = 0;  // so many from the end on are part of every sample
};

const std::vector<Plan>& Plans() {
    static const std::vector<Plan> plans = {
        {"write", "fail", ENOSPC, kLastWrites},
        {"write", "fail", EIO},
        {"write", "stuck", ENOSPC},
        {"write", "short", ENOSPC},
        {"sync", "fail", EIO},
        {"sync", "stuck", EIO},
        {"truncate", "fail", EIO},
        {"open", "fail", EACCES},
        {"open", "fail", EMFILE},
        {"read", "fail", EIO},
        {"rename", "fail", EACCES},
        {"rename", "fail", ENOSPC},
        {"unlink", "fail", EACCES, kLastRemovals},
        {"lock", "fail", EIO},
        {"lock", "fail", ENOLCK},
        {"map", "fail", ENOMEM},
        {kAllButLocks, "stuck", EIO},
        {kChanges, "stuck", ENOSPC},
        {kEveryCall, "kill", 0},
        {"write", "torn", 0},
        {kChanges, "cut", 0},
    };
    return plans;
}

const std::vector<Plan>& MemoryPlans() {
    static const std::vector<Plan> plans = {{"alloc", "fail", ENOMEM}, {"alloc", "stuck", ENOMEM}};
    return plans;
}

long CountOf(const std::string& classes, const std::map<std::string, long>& counts) {
    long sum = 0;
    std::istringstream names(classes);
    for (std::string name; std::getline(names, name, '+');)
        sum += counts.contains(name) ? counts.at(name) : 0;
    return sum;
}

std::vector<Fault> Points(std::vector<Plan> plans, std::size_t sample,
                          const std::map<std::string, long>& counts, std::mt19937& random) {
    std::vector<Fault> points;
    if (WholeDrill()) {
        for (const Plan& plan : plans) {
            const long count = CountOf(plan.classes, counts);
            const bool sampled = plan.classes == std::string("alloc") || count > 4 * kAllocationsPerPlan;
            const long step = sampled ? std::max(1L, count / kAllocationsPerPlan) : 1;
            for (long n = 1; n <= count; n += step)
                points.push_back({plan.classes, n + static_cast<long>(random() % static_cast<unsigned>(step)),
                                  plan.action, plan.code});
            if (plan.action == std::string("cut")) points.push_back({plan.classes, 0, plan.action, 0});
        }
        return points;
    }
    std::shuffle(plans.begin(), plans.end(), random);
    // What was told as done outlives the power that fails right afterwards.
    for (const Plan& plan : plans) {
        if (plan.action == std::string("cut")) points.push_back({plan.classes, 0, plan.action, 0});
        const long count = CountOf(plan.classes, counts);
        for (long n = std::max(1L, count - plan.last + 1); n <= count; ++n)
            points.push_back({plan.classes, n, plan.action, plan.code});
    }
    const std::size_t whole = points.size() + sample;
    for (std::size_t i = 0; points.size() < whole; ++i) {
        const Plan& plan = plans[i % plans.size()];
        const long count = CountOf(plan.classes, counts);
        if (count == 0) continue;
        points.push_back({plan.classes, 1 + static_cast<long>(random() % static_cast<unsigned long>(count)),
                          plan.action, plan.code});
    }
    return points;
}

struct Tally {
    int runs = 0;
    int struck = 0;
    int old = 0;
    int done = 0;
    int ended = 0;  // killed by the shim
    int refused = 0;
    int faults = 0;
    std::chrono::milliseconds longest{0};

    void Add(const Tally& other) {
        runs += other.runs;
        struck += other.struck;
        old += other.old;
        done += other.done;
        ended += other.ended;
        refused += other.refused;
        faults += other.faults;
        longest = std::max(longest, other.longest);
    }
};

std::ostream& operator<<(std::ostream& out, const Tally& tally) {
    return out << tally.runs << " runs, " << tally.struck << " struck; " << tally.refused << " refused, "
               << tally.ended << " killed; afterwards " << tally.old << " old, " << tally.done << " new, "
               << tally.faults << " wrong; longest " << tally.longest.count() << " ms";
}

DrillGround& Ground() {
    static DrillGround ground;
    return ground;
}

Tally& Total() {
    static Tally total;
    return total;
}

// Words by which a library's own text, unfit for a user, has come through.
bool SaysNothingUseful(const std::string& said) {
    if (said.empty()) return true;
    for (const char* raw :
         {"not an error", "filesystem error", "bad_alloc", "std::", "basic_", "terminate called"}) {
        if (said.find(raw) != std::string::npos) return true;
    }
    return false;
}

class FaultDrill : public testing::TestWithParam<Drill> {
  protected:
    void Run(const std::vector<Plan>& plans, std::size_t sample);

  private:
    // What is wrong after a run; empty when nothing is.
    std::string Judge(const Fault& fault, const Outcome& outcome, const State& state) const {
        const bool mayDie = fault.action == "kill" || fault.action == "torn" || fault.action == "cut";
        if (outcome.timedOut) return "it hung";
        if (outcome.signal != 0 && !(mayDie && outcome.signal == SIGKILL)) return "it crashed";
        if (!GetParam().makesSet && !state.set.Sound()) return "the set is damaged: " + state.set.fault;
        if (!state.targetFault.empty()) return "the new set is damaged: " + state.targetFault;
        if (state.set.templates != before_.set.templates && state.set.templates != after_.set.templates)
            return "the set holds neither the old nor the new";
        if (before_.hasTarget && !state.hasTarget) return "the old file is gone";
        if (state.hasTarget && state.target != before_.target && state.target != after_.target)
            return "half a file";
        if (outcome.exitCode == 0 && !(state == after_)) return "told as done, and it is not";
        if (outcome.signal == 0 && outcome.exitCode != 0 && SaysNothingUseful(outcome.Said()))
            return "its message says nothing";
        if (fault.code == EIO && outcome.Said().find("没有相应的权限") != std::string::npos)
            return "a fault of the disk is told as a right that is missing";
        return {};
    }

    // What a next start leaves standing that was not there before and is not the command's work.
    std::string LeftBehind() const {
        const auto strange = [this] {
            for (const std::string& name : Ground().Shop().Listing()) {
                if (name.starts_with("home/") || name == GetParam().target) continue;
                if (std::find(listing_.begin(), listing_.end(), name) == listing_.end()) return name;
            }
            return std::string();
        };
        std::string left = strange();
        if (left.empty()) return left;
        Ground().Shop().Run(NextStart());
        // What stands beside another account set is cleared by whoever opens that one.
        for (const auto& [from, to] : GetParam().files) {
            if (to.ends_with(".vas"))
                Ground().Shop().Run({{"account-set", "verify", Ground().Shop().File(to).string()}, {}, {}});
        }
        return strange();
    }

    Call NextStart() const {
        if (GetParam().makesSet) {
            return {{"account-set", "new", Ground().Shop().File(GetParam().target).string()}, {}, {}};
        }
        return {{"--account-set", Ground().SetFile().string(), "list"}, {}, {}};
    }

    State before_;
    State after_;
    std::vector<std::string> listing_;
};

void FaultDrill::Run(const std::vector<Plan>& plans, std::size_t sample) {
    const Drill& drill = GetParam();
    DrillGround& ground = Ground();
    ground.Prepare(drill);
    listing_ = ground.Shop().Listing();
    before_ = ground.Look(drill);
    const Call call = ground.CallOf(drill);
    const Outcome whole = ground.Shop().Run(call);
    ASSERT_EQ(0, whole.exitCode) << whole.Said();
    after_ = ground.Look(drill);
    ASSERT_FALSE(before_ == after_);
    ASSERT_EQ("", LeftBehind());

    std::mt19937 random(Seed());
    std::ofstream log;
    if (const char* name = std::getenv("VICENTER_FAULT_LOG")) log.open(name, std::ios::app);
    Tally tally;
    for (const Fault& fault : Points(plans, sample, whole.counts, random)) {
        ground.Prepare(drill);
        const Outcome outcome = ground.Shop().Run(call, fault);
        const State state = ground.Look(drill);
        std::string wrong = Judge(fault, outcome, state);
        if (wrong.empty()) {
            if (const std::string left = LeftBehind(); !left.empty()) wrong = "left behind: " + left;
        }
        ++tally.runs;
        tally.struck += outcome.fired.empty() ? 0 : 1;
        tally.old += state == before_ ? 1 : 0;
        tally.done += state == after_ ? 1 : 0;
        tally.ended += outcome.signal != 0 ? 1 : 0;
        tally.refused += outcome.signal == 0 && outcome.exitCode != 0 ? 1 : 0;
        tally.longest = std::max(tally.longest, outcome.took);
        if (log.is_open()) {
            std::string said = outcome.Said();
            std::replace(said.begin(), said.end(), '\n', '~');
            log << drill.name << "\t" << fault.Plan() << "\t" << outcome.fired << "\t" << outcome.Ended()
                << "\t"
                << (state == before_  ? "old"
                    : state == after_ ? "new"
                                      : "OTHER")
                << "\t" << wrong << "\t" << said << std::endl;
        }
        if (wrong.empty()) continue;
        if (++tally.faults <= static_cast<int>(kToldPerDrill)) {
            ADD_FAILURE() << wrong << "\n  " << drill.name << " with VICENTER_FAULT=" << fault.Plan() << " ("
                          << outcome.fired << ")\n  " << outcome.Ended() << " after " << outcome.took.count()
                          << " ms: " << outcome.Said();
        }
    }
    std::cout << drill.name << ": " << tally << std::endl;
    Total().Add(tally);
}

TEST_P(FaultDrill, LeavesTheOldOrTheNewWhenACallFails) {
    Run(Plans(), kSamplePerDrill);
}

TEST_P(FaultDrill, LeavesTheOldOrTheNewWhenMemoryIsRefused) {
    Run(MemoryPlans(), kMemorySamplePerDrill);
}

INSTANTIATE_TEST_SUITE_P(Commands, FaultDrill, testing::ValuesIn(Drills()),
                         [](const testing::TestParamInfo<Drill>& drill) { return drill.param.name; });

class Summary : public testing::Environment {
  public:
    void SetUp() override {
        std::cout << "seed " << Seed() << (WholeDrill() ? ", every point\n" : ", a sample\n");
    }
    void TearDown() override {
        if (Total().runs > 0) std::cout << "all commands: " << Total() << std::endl;
    }
};

const auto* const kSummary = testing::AddGlobalTestEnvironment(new Summary);

}  // namespace
}  // namespace vicenter::faults
