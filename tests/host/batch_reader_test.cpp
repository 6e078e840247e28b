#include "host/batch_reader.h"

#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "tests/host/broken_input.h"

namespace vicenter::host {
namespace {

std::vector<ScriptBatch> Read(const std::string& script) {
    std::istringstream stream(script);
    BatchReader reader(stream);
    std::vector<ScriptBatch> batches;
    while (std::optional<ScriptBatch> batch = reader.Next())
        batches.push_back(std::move(*batch));
    return batches;
}

TEST(BatchReader, EndsABatchAtALineThatHoldsOnlyGo) {
    const auto batches = Read("select 1\nGO\nselect 2\r\n  go  \r\nselect 3");
    ASSERT_EQ(3U, batches.size());
    EXPECT_EQ("select 1\n", batches[0].text);
    EXPECT_EQ("select 2\r\n", batches[1].text);
    EXPECT_EQ("select 3\n", batches[2].text);
    EXPECT_EQ(1, batches[0].firstLine);
    EXPECT_EQ(3, batches[1].firstLine);
    EXPECT_EQ(5, batches[2].firstLine);
}

TEST(BatchReader, KeepsBlankLinesInsideABatch) {
    EXPECT_EQ("select 1\n\nselect 2\n", Read("select 1\n\nselect 2\ngo\n")[0].text);
}

TEST(BatchReader, LeavesOutBatchesOfNothingButBlanks) {
    EXPECT_TRUE(Read("").empty());
    EXPECT_TRUE(Read("go\n \ngo\n\n").empty());
    EXPECT_EQ(1U, Read("go\nselect 1\ngo\ngo\n").size());
}

TEST(BatchReader, TakesNoOtherLineForGo) {
    EXPECT_EQ(1U, Read("select 1 as goal\ngoto x\ngoo\nselect 2 go\n").size());
}

TEST(BatchReader, ReadsARepeatCountAndAComment) {
    EXPECT_EQ(3, Read("select 1\ngo 3\n")[0].repeat);
    EXPECT_EQ(1, Read("select 1\ngo -- the end\n")[0].repeat);
    EXPECT_EQ(2, Read("select 1\ngo 2 -- twice\n")[0].repeat);
    EXPECT_TRUE(Read("select 1\ngo 0\n").empty());
}

TEST(BatchReader, GoInsideATextACommentOrAQuotedNameIsNoEnd) {
    EXPECT_EQ(1U, Read("select 'a\ngo\nb'\n").size());
    EXPECT_EQ(1U, Read("select 'it''s\ngo\nb'\n").size());
    EXPECT_EQ(1U, Read("/* a\ngo\n/* b */\ngo\n*/ select 1\n").size());
    EXPECT_EQ(1U, Read("select 1 as [a\ngo\n]\n").size());
    EXPECT_EQ(1U, Read("select 1 as \"a\ngo\n\"\n").size());
}

TEST(BatchReader, AnApostropheInALineCommentOpensNoText) {
    EXPECT_EQ(2U, Read("select 1 -- don't\ngo\nselect 2\n").size());
}

TEST(BatchReader, HalfABatchIsNone) {
    test::BrokenInput buffer("select 1\ngo\ndelete t where a = 1\n");
    std::istream stream(&buffer);
    BatchReader reader(stream);
    EXPECT_EQ(reader.Next()->text, "select 1\n");
    try {
        reader.Next();
        ADD_FAILURE() << "half a batch was given";
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Text(), "脚本没有读完，其余部分没有执行！");
    }
}

TEST(BatchReader, SkipsAByteOrderMark) {
    EXPECT_EQ("select 1\n", Read("\xEF\xBB\xBFselect 1\n")[0].text);
}

}  // namespace
}  // namespace vicenter::host
