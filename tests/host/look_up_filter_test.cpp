#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/components/look_up_dialog.h"

namespace vicenter::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

LookUpRecord Record(std::string number, std::string name, int level = 0, bool selectable = true) {
    return {std::move(number), std::move(name), {}, level, selectable};
}

class LookUpFilterTest : public testing::Test {
  protected:
    std::vector<std::size_t> Shown(std::string_view text) {
        std::vector<std::size_t> shown;
        for (const LookUpFilter::Shown& entry : filter_.Narrow(text))
            shown.push_back(entry.record);
        return shown;
    }

    const std::vector<LookUpRecord> records_{
        Record("1001", "库存现金"),
        Record("1002", "银行存款", 0, false),
        Record("1002.01", "工商银行", 1, false),
        Record("1002.01.01", "基本户", 2),
        Record("1002.02", "中国银行", 1),
        Record("2001", "短期借款"),
    };
    LookUpFilter filter_{records_};
};

TEST_F(LookUpFilterTest, ABlankTextShowsEverything) {
    EXPECT_THAT(Shown(""), ElementsAre(0, 1, 2, 3, 4, 5));
    EXPECT_THAT(Shown("  "), ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST_F(LookUpFilterTest, ParentsOfWhatMatchesComeAlong) {
    EXPECT_THAT(Shown("基本"), ElementsAre(1, 2, 3));
    const std::vector<LookUpFilter::Shown> shown = filter_.Narrow("基本");
    EXPECT_FALSE(shown[0].matches);
    EXPECT_FALSE(shown[1].matches);
    EXPECT_TRUE(shown[2].matches);
}

TEST_F(LookUpFilterTest, ARecordOfAnotherBranchIsNoParent) {
    EXPECT_THAT(Shown("zgyh"), ElementsAre(1, 4));
    EXPECT_THAT(Shown("短期"), ElementsAre(5));
}

TEST_F(LookUpFilterTest, NothingMatchingShowsNothing) {
    EXPECT_THAT(Shown("没有"), IsEmpty());
    EXPECT_EQ(filter_.Best("没有"), std::nullopt);
}

TEST_F(LookUpFilterTest, EnterTakesTheFirstThatCanBeChosen) {
    EXPECT_EQ(filter_.Best("1002"), std::optional<std::size_t>(3));
    EXPECT_EQ(filter_.Best("jbh"), std::optional<std::size_t>(3));
    EXPECT_EQ(filter_.Best(""), std::optional<std::size_t>(0));
}

TEST_F(LookUpFilterTest, GroupsAloneGiveNothingToTake) {
    EXPECT_EQ(filter_.Best("工商"), std::nullopt);
}

TEST(LookUpDialogTest, ThereIsNoneUntilAWindowSystemBringsOne) {
    class Dialog : public LookUpDialog {
        std::optional<std::size_t> Choose(const LookUpRequest&) override { return 0; }
    };
    EXPECT_EQ(LookUpDialog::Process(), nullptr);
    const auto dialog = std::make_shared<Dialog>();
    LookUpDialog::SetProcess(dialog);
    EXPECT_EQ(LookUpDialog::Process(), dialog);
    LookUpDialog::SetProcess(nullptr);
    EXPECT_EQ(LookUpDialog::Process(), nullptr);
}

}  // namespace
}  // namespace vicenter::host
