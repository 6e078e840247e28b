// Account sets that were cut short or had bits turned: the program answers with a clear message and a code,
// or from what it reads; it never crashes, hangs or speaks of "not an error". What it reads may be another
// text where a text was: a set at work has nothing to tell that by. A backup has, and is held to it: where
// its check finds nothing, every row of it is what was backed up, and what it refuses is not restored.
//
// Forty damages each; five hundred with VICENTER_LONG=1.

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

int Damages() {
    return WholeDrill() ? 500 : 40;
}

TEST(DamageDrill, ADamagedSetIsToldOrAnswered) {
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
    const int damages = Damages();
    int told = 0;
    int same = 0;
    int other = 0;
    int found = 0;
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
        if (differs) {
            WriteFile(ground.SetFile(), bytes);
            found += ground.Shop().Run({{"account-set", "verify", set}, {}, {}}).exitCode != 0 ? 1 : 0;
        }
        same += !refused && !differs ? 1 : 0;
    }
    std::cout << "seed " << Seed() << ": " << damages << " damaged sets, " << told << " told, " << same
              << " answered rightly, " << other << " answered with other content, of them " << found
              << " found by verify; longest " << longest.count() << " ms\n";
}

// A text of some row becomes another one that could be as well; what no row holds any more is passed over.
std::string DamageText(std::string& bytes, const std::filesystem::path& scratch, const std::string& content) {
    const std::string text = "支付";
    for (std::size_t at = bytes.find(text); at != std::string::npos; at = bytes.find(text, at + 1)) {
        std::string other = bytes;
        char& last = other[at + text.size() - 1];
        last = static_cast<char>(last ^ 1);
        WriteFile(scratch, other);
        if (ReadEverything(scratch) == content) continue;
        bytes = other;
        return "another character at byte " + std::to_string(at);
    }
    return "no text to damage";
}

TEST(DamageDrill, ABackupWhoseCheckFindsNothingHoldsWhatWasBackedUp) {
    DrillGround ground;
    const Workshop& shop = ground.Shop();
    ground.Prepare(Drills().front());
    const std::filesystem::path backup = shop.File("备份.vas");
    const std::filesystem::path restored = shop.File("恢复.vas");
    ASSERT_EQ(
        0,
        shop.Run({{"account-set", "backup", ground.SetFile().string(), backup.string()}, {}, {}}).exitCode);
    const std::string whole = ReadFile(backup);
    const std::string content = ReadEverything(backup);
    ASSERT_EQ(std::string::npos, content.find("unreadable")) << content.substr(content.find("unreadable"));

    std::mt19937 random(Seed());
    int told = 0;
    int changed = 0;
    for (int i = 0; i < Damages(); ++i) {
        std::string bytes = whole;
        const std::string how = i == 0 ? DamageText(bytes, backup, content) : Damage(bytes, random);
        shop.Clear();
        WriteFile(backup, bytes);
        const Outcome verify = shop.Run({{"account-set", "verify", backup.string()}, {}, {}});
        EXPECT_TRUE(!verify.timedOut && verify.signal == 0) << how << ": " << verify.Said();
        const Outcome restore =
            shop.Run({{"account-set", "restore", backup.string(), restored.string()}, {}, {}});
        EXPECT_TRUE(!restore.timedOut && restore.signal == 0) << how << ": " << restore.Said();
        EXPECT_EQ(restore.exitCode == 0, std::filesystem::exists(restored)) << how;
        const bool same = ReadEverything(backup) == content;
        changed += same ? 0 : 1;
        told += verify.exitCode != 0 ? 1 : 0;
        if (i == 0) {
            EXPECT_FALSE(same) << how;
        }
        if (!same) {
            EXPECT_NE(0, verify.exitCode) << how << " changed the content: " << verify.Said();
            EXPECT_NE(0, restore.exitCode) << how << " changed the content";
        }
        if (restore.exitCode == 0) {
            EXPECT_TRUE(content == ReadEverything(restored)) << how;
        }
    }
    std::cout << "seed " << Seed() << ": " << Damages() << " damaged backups, " << changed
              << " with other content or none, " << told << " told by verify\n";
    EXPECT_GT(changed, 0);
}

}  // namespace
}  // namespace vicenter::faults
