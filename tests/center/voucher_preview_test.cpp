// What the window that shows a pattern as a voucher says of it, and what is printed of it.

#include "center/print/voucher_preview.h"

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

class VoucherPreviewTest : public CenterTest {
  protected:
    void SetUp() override {
        lines_["0"] = {Line(1, "购茶叶"), Line(1, "购茶叶")};
        Open();
        Give(1, kDebit, "999");
        Give(2, kCredit, "4321");
    }
    void Give(int row, std::string_view side, std::string_view amount) {
        Grid().SetText(row, column::kDirection, side);
        Grid().SetText(row, column::kAmount, amount);
    }
    VoucherPreview Preview() { return {Grid(), Window().RowCount(), 1, {"日常费用", "账套", "用户"}}; }
};

TEST_F(VoucherPreviewTest, ThatItsSumsDifferIsOpenAndIsPrintedOnce) {
    const VoucherPreview preview = Preview();
    ASSERT_FALSE(preview.Questions().empty());
    EXPECT_EQ(preview.Questions().front(), "借贷不平，差额 -3,322.00");
    EXPECT_EQ(preview.Sheet().blocks.front().notes, preview.Questions());
}

TEST_F(VoucherPreviewTest, SumsThatAgreeLeaveNothingOpenOfThem) {
    Give(1, kDebit, "4321");
    EXPECT_THAT(Preview().Questions(), testing::Each(testing::Not(HasSubstr("借贷不平"))));
}

}  // namespace
}  // namespace vicenter::center::test
