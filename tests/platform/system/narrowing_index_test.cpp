#include "platform/system/narrowing_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vicenter::system {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NarrowingIndexTest : public testing::Test {
  protected:
    void SetUp() override {
        index_.Add("1001", "库存现金");
        index_.Add("1002", "银行存款");
        index_.Add("1002.01", "工商银行");
        index_.Add("2001", "Loan 1002");
    }
    NarrowingIndex index_;
};

TEST_F(NarrowingIndexTest, NarrowsByAPartOfTheCode) {
    EXPECT_THAT(index_.Narrow("002"), ElementsAre(1, 2, 3));
    EXPECT_THAT(index_.Narrow("002.0"), ElementsAre(2));
}

TEST_F(NarrowingIndexTest, NarrowsByAPartOfTheNameWithoutCase) {
    EXPECT_THAT(index_.Narrow("银行"), ElementsAre(1, 2));
    EXPECT_THAT(index_.Narrow("lOAN"), ElementsAre(3));
}

TEST_F(NarrowingIndexTest, NarrowsByPinyinInitials) {
    EXPECT_THAT(index_.Narrow("YHCK"), ElementsAre(1));
    EXPECT_THAT(index_.Narrow("xj"), ElementsAre(0));
}

TEST_F(NarrowingIndexTest, FindsFullWidthTypingAsPlainText) {
    EXPECT_THAT(index_.Narrow("１００２．"), ElementsAre(2));
}

TEST_F(NarrowingIndexTest, ATextThatIsTakenBackShowsWhatWasThereBefore) {
    EXPECT_THAT(index_.Narrow("1002.01"), ElementsAre(2));
    EXPECT_THAT(index_.Narrow("1002"), ElementsAre(1, 2, 3));
    EXPECT_THAT(index_.Narrow("1001"), ElementsAre(0));
}

TEST_F(NarrowingIndexTest, ABlankTextShowsEverything) {
    EXPECT_THAT(index_.Narrow("1001"), ElementsAre(0));
    EXPECT_THAT(index_.Narrow("  "), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(index_.Narrow("银行"), ElementsAre(1, 2));
}

TEST_F(NarrowingIndexTest, NeverMatchesAcrossCodeAndName) {
    EXPECT_THAT(index_.Narrow("1001库"), IsEmpty());
}

TEST_F(NarrowingIndexTest, PutsCodesThatBeginWithTheTextFirst) {
    NarrowingIndex index;
    index.Add("51002", "甲");
    index.Add("1002", "乙");
    index.Add("3", "1002 丙");
    EXPECT_THAT(index.Best("1002", 10), ElementsAre(1, 0, 2));
    EXPECT_THAT(index.Best("1002", 2), ElementsAre(1, 0));
}

TEST_F(NarrowingIndexTest, TakesNewEntriesInAfterItWasAsked) {
    EXPECT_THAT(index_.Narrow("9"), IsEmpty());
    index_.Add("9", "new");
    EXPECT_THAT(index_.Narrow("9"), ElementsAre(4));
    index_.Clear();
    EXPECT_THAT(index_.Narrow("9"), IsEmpty());
    EXPECT_EQ(index_.Count(), 0U);
}

}  // namespace
}  // namespace vicenter::system
