// Held against the definition itself, pattern by pattern; and more patterns than could be held against each
// other.

#include "autovch/alike_patterns.h"

#include <algorithm>
#include <iterator>
#include <random>

#include <gtest/gtest.h>

namespace vicenter::autovch {
namespace {

using Texts = std::vector<std::string>;

std::size_t Beyond(Texts of, Texts other) {
    std::sort(of.begin(), of.end());
    std::sort(other.begin(), other.end());
    Texts beyond;
    std::set_difference(of.begin(), of.end(), other.begin(), other.end(), std::back_inserter(beyond));
    return beyond.size();
}

std::string ByDefinition(const Texts& lines, const std::vector<store::KnownPattern>& known) {
    std::string near;
    for (const store::KnownPattern& other : known) {
        const std::size_t here = Beyond(lines, other.lines);
        const std::size_t there = Beyond(other.lines, lines);
        const std::string place = "“" + other.templateName + "” " + other.number + " 号";
        if (here == 0 && there == 0) return "与" + place + "相同";
        const bool enough = std::min(lines.size(), other.lines.size()) >= 2 &&
                            std::max(lines.size(), other.lines.size()) >= 3;
        if (near.empty() && enough && here <= 1 && there <= 1) near = "与" + place + "相近";
    }
    return near;
}

TEST(AlikePatterns, AreTheSameLinesInAnyOrderOrAllButOne) {
    const std::vector<store::KnownPattern> known = {{"甲", "1", {"借1", "贷2"}},
                                                    {"甲", "2", {"借1", "贷2", "贷3"}},
                                                    {"乙", "1", {"贷2", "借1"}},
                                                    {"乙", "2", {"借1", "借1", "贷2", "贷3"}}};
    const AlikePatterns alike(known);
    EXPECT_EQ(alike.WordsFor({"贷2", "借1"}), "与“甲” 1 号相同");
    EXPECT_EQ(alike.WordsFor({"借1", "贷3"}), "与“甲” 2 号相近");
    EXPECT_EQ(alike.WordsFor({"借1", "贷2", "贷9"}), "与“甲” 1 号相近");
    EXPECT_EQ(alike.WordsFor({"贷3", "贷2", "借1", "借1"}), "与“乙” 2 号相同");
    EXPECT_EQ(alike.WordsFor({"借1", "借1", "借1", "贷3"}), "与“乙” 2 号相近");
    EXPECT_EQ(alike.WordsFor({"借1", "贷9"}), "");
    EXPECT_EQ(alike.WordsFor({"借1"}), "");
    EXPECT_EQ(alike.WordsFor({}), "");
}

TEST(AlikePatterns, AreThoseOfTheDefinition) {
    std::mt19937 random(7);
    const auto pattern = [&random] {
        Texts lines(random() % 6);
        for (std::string& line : lines)
            line = std::string(random() % 2 == 0 ? "借" : "贷") + std::to_string(random() % 4);
        return lines;
    };
    std::vector<store::KnownPattern> known;
    for (int i = 0; i < 60; ++i)
        known.push_back({"模板", std::to_string(i), pattern()});
    const AlikePatterns alike(known);
    for (int i = 0; i < 2000; ++i) {
        const Texts lines = pattern();
        ASSERT_EQ(alike.WordsFor(lines), ByDefinition(lines, known));
    }
}

TEST(AlikePatterns, AreFoundAmongAsManyAsALedgerOfYearsHas) {
    constexpr int kPatterns = 50'000;
    const auto lines = [](int i) {
        return Texts{"借" + std::to_string(i % 40), "借" + std::to_string(i / 40 % 40),
                     "贷" + std::to_string(i / 1600), "贷" + std::to_string(i)};
    };
    std::vector<store::KnownPattern> known;
    for (int i = 0; i < kPatterns; ++i)
        known.push_back({"模板", std::to_string(i), lines(i)});
    const AlikePatterns alike(known);
    for (int i = 0; i < kPatterns; ++i) {
        Texts wanted = lines(i);
        std::reverse(wanted.begin(), wanted.end());
        ASSERT_EQ(alike.WordsFor(wanted), "与“模板” " + std::to_string(i) + " 号相同");
    }
    EXPECT_EQ(alike.WordsFor({"借0", "借0", "贷0", "贷没有"}), "与“模板” 0 号相近");
}

}  // namespace
}  // namespace vicenter::autovch
