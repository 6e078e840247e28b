// Account sets that were cut short or had bits turned: the program answers with a clear message and a code,
// or with the right content; it never crashes, hangs or speaks of "not an error".
//
// Forty damages; five hundred with VICENTER_LONG=1.

#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "tests/faults/drill.h"

namespace vicenter::faults {
namespace {

constexpr std::size_t kPage = 4096;

// Damages bytes and tells how.
std::string Damage(std::string& bytes, std::mt19937& random) {
    const auto below = [&random](std::size_t bound) { return static_cast<std::size_t>(random()) % bound; };
    const auto turn = [&](std::size_t at) { bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8))); };
    switch (below(5)) {
        case 0: {
            bytes.resize(below(bytes.size()));
            return "cut to " + std::to_string(bytes.size()) + " bytes";
        }
        case 1: {
            const std::size_t at = below(100);
            turn(at);
            return "a bit of byte " + std::to_string(at);
        }
        case 2: {
            const std::size_t at = below(bytes.size());
            turn(at);
            return "a bit of byte " + std::to_string(at);
        }
        case 3: {
            const std::size_t page = below(bytes.size() / kPage);
            for (int i = 0; i < 16; ++i)
                turn(page * kPage + below(kPage));
            return "16 bits of page " + std::to_string(page + 1);
        }
        default: {
            const std::size_t page = below(bytes.size() / kPage);
            bytes.replace(page * kPage, kPage, kPage, '\0');
            return "page " + std::to_string(page + 1) + " of zeros";
        }
    }
}

TEST(DamageDrill, ADamagedSetIsToldOrAnswersRightly) {
    DrillGround ground;
    const Drill& drill = Drills().front();
    ground.Prepare(drill);
    const std::string whole = ReadFile(ground.SetFile());
    const std::string set = ground.SetFile().string();
    const std::vector<std::vector<std::string>> commands = {
        {"--account-set", set, "list"},
        {"--account-set", set, "--json", "show", "日常费用"},
        {"--account-set", set, "--yes", "generate", "--name", "生成", "--year", "2026", "--period", "1"}};
    std::vector<std::string> right;
    for (const auto& command : commands)
        right.push_back(ground.Shop().Run({command, {}, {}}).output);

    std::mt19937 random(Seed());
    const int damages = WholeDrill() ? 500 : 40;
    int told = 0;
    int same = 0;
    int other = 0;
    std::chrono::milliseconds longest{0};
    for (int i = 0; i < damages; ++i) {
        std::string bytes = whole;
        const std::string how = Damage(bytes, random);
        bool refused = false;
        bool differs = false;
        for (std::size_t c = 0; c < commands.size(); ++c) {
            WriteFile(ground.SetFile(), bytes);
            std::filesystem::remove(set + "-wal");
            std::filesystem::remove(set + "-shm");
            const Outcome outcome = ground.Shop().Run({commands[c], {}, {}});
            longest = std::max(longest, outcome.took);
            EXPECT_FALSE(outcome.timedOut) << how;
            EXPECT_EQ(0, outcome.signal) << how << ": " << outcome.Said();
            if (outcome.exitCode != 0) {
                refused = true;
                EXPECT_NE("", outcome.Said()) << how;
                EXPECT_EQ(std::string::npos, outcome.Said().find("not an error"))
                    << how << ": " << outcome.Said();
            } else if (outcome.output != right[c]) {
                differs = true;
            }
        }
        told += refused ? 1 : 0;
        other += differs ? 1 : 0;
        same += !refused && !differs ? 1 : 0;
    }
    std::cout << "seed " << Seed() << ": " << damages << " damaged sets, " << told << " told, " << same
              << " answered rightly, " << other << " answered with other content; longest " << longest.count()
              << " ms\n";
}

}  // namespace
}  // namespace vicenter::faults
