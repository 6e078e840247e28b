#include "front/lazy_message_boxes.h"

#include <gtest/gtest.h>

#include "tests/fakes/fake_surroundings.h"

namespace vicenter::front {
namespace {

using system::MessageButtons;
using system::MessageIcon;
using system::MessageResult;

MessageResult Ask(system::MessageBoxes& boxes) {
    return boxes.Show("text", MessageButtons::YesNo, MessageIcon::Question, "信息提示");
}

TEST(LazyMessageBoxes, ShowTheFirstMessageInTheBoxesThatAreMadeForIt) {
    auto made = std::make_shared<fakes::RecordingMessageBoxes>();
    auto behind = std::make_shared<fakes::RecordingMessageBoxes>();
    made->answers = {MessageResult::Yes};
    LazyMessageBoxes boxes([&] { return made; }, behind);
    EXPECT_EQ(Ask(boxes), MessageResult::Yes);
    ASSERT_EQ(made->shown.size(), 1U);
    EXPECT_EQ(made->shown[0].text, "text");
    EXPECT_EQ(made->shown[0].buttons, MessageButtons::YesNo);
    EXPECT_EQ(made->shown[0].icon, MessageIcon::Question);
    EXPECT_EQ(made->shown[0].title, "信息提示");
    EXPECT_TRUE(behind->shown.empty());
}

TEST(LazyMessageBoxes, LeaveItToThoseBehindWhereNobodyWouldSeeIt) {
    auto behind = std::make_shared<fakes::RecordingMessageBoxes>();
    LazyMessageBoxes boxes([] { return nullptr; }, behind);
    EXPECT_EQ(Ask(boxes), MessageResult::No);
    EXPECT_EQ(behind->shown.size(), 1U);
}

TEST(LazyMessageBoxes, MayBeReplacedWhileTheyLook) {
    auto made = std::make_shared<fakes::RecordingMessageBoxes>();
    std::shared_ptr<system::MessageBoxes> current;
    current = std::make_shared<LazyMessageBoxes>(
        [&]() -> std::shared_ptr<system::MessageBoxes> {
            current = made;
            return made;
        },
        nullptr);
    EXPECT_EQ(Ask(*current), MessageResult::No);
    EXPECT_EQ(made->shown.size(), 1U);
}

}  // namespace
}  // namespace vicenter::front
