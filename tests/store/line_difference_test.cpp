#include "store/line_difference.h"

#include <random>

#include <gtest/gtest.h>

namespace vicenter::store {
namespace {

LineTexts Line(const std::string& number, const std::string& explanation, const std::string& amount = "") {
    LineTexts line;
    line[column::kNo - 1] = number;
    line[column::kExplanation - 1] = explanation;
    line[column::kAmount - 1] = amount;
    return line;
}

// "+1", "-1", "~1[2:a>b]" with the place in the earlier and the later reading where it has one.
std::string Told(const std::vector<LineTexts>& before, const std::vector<LineTexts>& after) {
    std::string text;
    for (const LineDifference& difference : Differences(before, after)) {
        if (!text.empty()) text += " ";
        text += difference.kind == LineDifference::Kind::Added     ? "+"
                : difference.kind == LineDifference::Kind::Removed ? "-"
                                                                   : "~";
        text += difference.number + "@";
        text += difference.before ? std::to_string(*difference.before) : "_";
        text += ":";
        text += difference.after ? std::to_string(*difference.after) : "_";
        for (const LineDifference::Cell& cell : difference.cells)
            text += "[" + std::to_string(cell.column) + ":" + cell.before + ">" + cell.after + "]";
    }
    return text;
}

TEST(LineDifference, ReadingsThatAreAlikeHaveNone) {
    EXPECT_EQ(Told({}, {}), "");
    EXPECT_EQ(Told({Line("1", "a"), Line("1", "a")}, {Line("1", "a"), Line("1", "a")}), "");
}

TEST(LineDifference, AChangedLineNamesItsCells) {
    EXPECT_EQ(
        Told({Line("1", "办公费", "860"), Line("2", "b")}, {Line("1", "办公费", "880"), Line("2", "b")}),
        "~1@0:0[20:860>880]");
}

TEST(LineDifference, IdsThatNobodySeesAreNoDifference) {
    LineTexts line = Line("1", "a");
    line[column::kAccountId - 1] = "1001";
    EXPECT_EQ(Told({Line("1", "a")}, {line}), "");
}

TEST(LineDifference, ALineInsertedAboveMovesTheOthersWithoutChangingThem) {
    EXPECT_EQ(Told({Line("1", "a"), Line("1", "b"), Line("1", "c")},
                   {Line("1", "new"), Line("1", "a"), Line("1", "b"), Line("1", "c")}),
              "+1@_:0");
    EXPECT_EQ(Told({Line("1", "a"), Line("1", "b"), Line("1", "c")}, {Line("1", "a"), Line("1", "c")}),
              "-1@1:_");
}

TEST(LineDifference, LinesOfANumberAreTakenInTurn) {
    EXPECT_EQ(Told({Line("1", "a"), Line("2", "x"), Line("2", "y")},
                   {Line("2", "X"), Line("2", "Y"), Line("3", "z")}),
              "-1@0:_ ~2@1:0[2:x>X] ~2@2:1[2:y>Y] +3@_:2");
}

TEST(LineDifference, RepeatedLinesAreCountedNotLost) {
    EXPECT_EQ(Told({Line("1", "a"), Line("1", "a"), Line("1", "a")}, {Line("1", "a"), Line("1", "a")}),
              "-1@2:_");
}

TEST(LineDifference, LinesThatWereMovedGoAndCome) {
    EXPECT_EQ(Told({Line("1", "a"), Line("2", "b"), Line("3", "c")},
                   {Line("3", "c"), Line("1", "a"), Line("2", "b")}),
              "+3@_:0 -3@2:_");
}

// Whoever takes the differences to the earlier reading gets the later one, whatever they are.
TEST(LineDifference, TheyLeadFromOneReadingToTheOther) {
    std::mt19937 random(20261122);
    const auto reading = [&] {
        std::vector<LineTexts> lines(random() % 12);
        for (LineTexts& line : lines)
            line =
                Line(std::to_string(1 + random() % 3), std::string(1, static_cast<char>('a' + random() % 4)));
        return lines;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::vector<LineTexts> before = reading();
        const std::vector<LineTexts> after = reading();
        std::vector<bool> goes(before.size(), false);
        std::vector<const LineTexts*> rest;
        std::vector<std::optional<LineTexts>> built(after.size());
        for (const LineDifference& difference : Differences(before, after)) {
            if (difference.before) goes[*difference.before] = true;
            if (!difference.after) continue;
            LineTexts line = difference.before ? before[*difference.before] : after[*difference.after];
            for (const LineDifference::Cell& cell : difference.cells) {
                EXPECT_EQ(line[static_cast<std::size_t>(cell.column - 1)], cell.before);
                line[static_cast<std::size_t>(cell.column - 1)] = cell.after;
            }
            built[*difference.after] = line;
        }
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (!goes[i]) rest.push_back(&before[i]);
        }
        std::size_t next = 0;
        for (std::size_t i = 0; i < after.size(); ++i) {
            if (!built[i] && next < rest.size()) built[i] = *rest[next++];
            ASSERT_TRUE(built[i].has_value()) << round;
            EXPECT_EQ(*built[i], after[i]) << round;
        }
        EXPECT_EQ(next, rest.size()) << round;
    }
}

TEST(LineDifference, ThousandsOfLinesWithoutOneInCommonAreComparedAtOnce) {
    std::vector<LineTexts> before;
    std::vector<LineTexts> after;
    for (int i = 0; i < 20000; ++i) {
        before.push_back(Line(std::to_string(i / 4), "a" + std::to_string(i)));
        after.push_back(Line(std::to_string(i / 4), "b" + std::to_string(i)));
    }
    EXPECT_EQ(Differences(before, after).size(), 20000u);
}

}  // namespace
}  // namespace vicenter::store
