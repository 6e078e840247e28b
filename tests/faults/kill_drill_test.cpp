// Processes that are killed at any moment, over all commands and over the window's main job: the set is sound
// and holds the old or the new, the file that a command writes likewise, and a killed window leaves whole
// templates.
//
// Thirty kills; a thousand with VICENTER_LONG=1. Unlike the kills of the fault drill, which come at calls to
// the system, these come in between.

#include <algorithm>
#include <csignal>
#include <iostream>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "tests/faults/drill.h"

namespace vicenter::faults {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestRun{120};

// Runs it and kills it after that time; true when it had not ended by itself.
bool KillAfter(const Workshop& shop, const Call& call, std::chrono::microseconds delay) {
    const pid_t child = shop.Start(call);
    std::this_thread::sleep_for(delay);  // the moment of the kill is what is tested
    kill(child, SIGKILL);
    return WaitFor(child, kLongestRun).signal == SIGKILL;
}

std::chrono::microseconds TimeOf(const Workshop& shop, const Call& call) {
    const auto start = Clock::now();
    EXPECT_EQ(0, WaitFor(shop.Start(call), kLongestRun).exitCode);
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
}

int Kills(int few, int many) {
    return WholeDrill() ? many : few;
}

// The moments lie denser towards the end, where a command does its work.
std::chrono::microseconds Moment(std::chrono::microseconds whole, std::mt19937& random) {
    const double part = 0.3 + 0.75 * (random() % 1000) / 1000.0;
    return std::chrono::microseconds(static_cast<long>(static_cast<double>(whole.count()) * part));
}

TEST(KillDrill, EveryCommandLeavesTheOldOrTheNew) {
    DrillGround ground;
    std::mt19937 random(Seed());
    const int kills = Kills(28, 900);
    int killed = 0;
    int old = 0;
    int done = 0;
    const int drills = static_cast<int>(Drills().size());
    for (int d = 0; d < drills; ++d) {
        const Drill& drill = Drills()[static_cast<std::size_t>(d)];
        ground.Prepare(drill);
        const State before = ground.Look(drill);
        const Call call = ground.CallOf(drill);
        const auto whole = TimeOf(ground.Shop(), call);
        const State after = ground.Look(drill);
        for (int i = d; i < kills; i += drills) {
            ground.Prepare(drill);
            const auto delay = Moment(whole, random);
            killed += KillAfter(ground.Shop(), call, delay) ? 1 : 0;
            const State state = ground.Look(drill);
            if (!drill.makesSet) {
                EXPECT_TRUE(state.set.Sound()) << drill.name << ": " << state.set.fault;
            }
            EXPECT_EQ("", state.targetFault) << drill.name;
            EXPECT_TRUE(state.set.templates == before.set.templates ||
                        state.set.templates == after.set.templates)
                << drill.name << " after " << delay.count() << " us: neither the old nor the new";
            EXPECT_TRUE(!before.hasTarget || state.hasTarget) << drill.name << ": the old file is gone";
            EXPECT_TRUE(!state.hasTarget || state.target == before.target || state.target == after.target)
                << drill.name << ": half a file";
            old += state == before ? 1 : 0;
            done += state == after ? 1 : 0;
        }
    }
    std::cout << "seed " << Seed() << ": " << kills << " processes, " << killed
              << " killed before their end, " << old << " times the old, " << done << " times the new\n";
    EXPECT_GT(killed, kills / 4);
}

#ifdef VICENTER_HAS_WINDOWS

bool IsWholeWindowState(const std::string& templates, const std::string& before, const std::string& after) {
    if (templates == before || templates == after) return true;
    // In between there is the new template without lines: nothing but its row and, perhaps, the user's
    // profile.
    std::size_t entries = 0;
    std::istringstream rows(templates);
    for (std::string row; std::getline(rows, row);) {
        if (before.find(row + "\n") == std::string::npos && after.find(row + "\n") == std::string::npos)
            ++entries;
    }
    return entries == 0;
}

TEST(KillDrill, AKilledWindowLeavesWholeTemplates) {
    DrillGround ground;
    Drill drill{"window", {"window", "--offscreen-session", "@图片"}};
    std::mt19937 random(Seed());
    ground.Prepare(drill);
    const State before = ground.Look(drill);
    const Call call = ground.CallOf(drill);
    auto whole = TimeOf(ground.Shop(), call);
    const State after = ground.Look(drill);
    ASSERT_FALSE(before == after);
    const int kills = Kills(3, 100);
    constexpr int kFurtherTries = 20;
    int killed = 0;
    int saved = 0;
    int runs = 0;
    for (; runs < kills || (killed == 0 && runs < kills + kFurtherTries); ++runs) {
        ground.Prepare(drill);
        const auto delay = Moment(whole, random);
        const bool inTime = KillAfter(ground.Shop(), call, delay);
        killed += inTime ? 1 : 0;
        // The first run warmed the machine up: a later one may be over sooner.
        if (!inTime) whole = std::min(whole, delay);
        const State state = ground.Look(drill);
        EXPECT_TRUE(state.set.Sound()) << state.set.fault;
        EXPECT_TRUE(IsWholeWindowState(state.set.templates, before.set.templates, after.set.templates))
            << "after " << delay.count() << " us:\n"
            << state.set.templates;
        saved += state == after ? 1 : 0;
    }
    std::cout << runs << " windows, " << killed << " killed before their end, " << saved << " times saved\n";
    EXPECT_GT(killed, 0);
}

#endif

}  // namespace
}  // namespace vicenter::faults
