// ShowVICenter from a host that knows only the C interface: the window opens in its process, the call returns
// at once, several windows stand side by side, closing works, nothing is left.

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

class FrontWindows : public FrontTest {
  protected:
    // There is no account set, and nobody to read what the component says about it.
    FrontWindows() { AnswerMessages(); }
    static void AnswerMessages() {
        EXPECT_EQ(
            vic_set_message_handler(
                [](void*, const char*, vic_int32, vic_int32, const char*) { return vic_int32{1}; }, nullptr),
            0);
    }
    static std::size_t OpenWindows() {
        std::size_t count = 99;
        EXPECT_EQ(vic_open_windows(&count), 0);
        return count;
    }
    static vic_status Show() {
        Handle application("VelaVICenter.aplication");
        return application.Call("ShowVICenter");
    }
};

TEST_F(FrontWindows, NoneIsOpenAtFirst) {
    EXPECT_EQ(OpenWindows(), 0U);
    EXPECT_EQ(vic_close_windows(), 0);
}

#if VICENTER_FRONT_HAS_WINDOWS

TEST_F(FrontWindows, OpensIndependentWindowsAndClosesThem) {
    ASSERT_EQ(Show(), 0) << vic_error_description();
    EXPECT_EQ(OpenWindows(), 1U);
    ASSERT_EQ(Show(), 0) << vic_error_description();
    EXPECT_EQ(OpenWindows(), 2U);
    EXPECT_EQ(vic_process_events(0), 0);
    EXPECT_EQ(vic_process_events(1), 0);
    EXPECT_EQ(OpenWindows(), 2U);
    EXPECT_EQ(vic_close_windows(), 0);
    EXPECT_EQ(OpenWindows(), 0U);
}

TEST_F(FrontWindows, RunReturnsWhenNoWindowIsOpen) {
    EXPECT_EQ(vic_run(), 0);
    ASSERT_EQ(Show(), 0);
    ASSERT_EQ(vic_close_windows(), 0);
    EXPECT_EQ(vic_run(), 0);
}

TEST_F(FrontWindows, ShutdownClosesTheWindows) {
    ASSERT_EQ(Show(), 0);
    ASSERT_EQ(Show(), 0);
    ASSERT_EQ(vic_shutdown(), 0) << vic_error_description();
    EXPECT_EQ(OpenWindows(), 0U);
    AnswerMessages();
    ASSERT_EQ(Show(), 0) << vic_error_description();
    EXPECT_EQ(OpenWindows(), 1U);
}

#else

TEST_F(FrontWindows, WithoutAWindowSystemTheAnswerIsAClearError) {
    EXPECT_EQ(Show(), VIC_ERROR_NO_WINDOWS);
    EXPECT_STREQ(vic_error_description(), "No window system is available to show the template center.");
    EXPECT_STREQ(vic_error_source(), "VelaVICenter");
    EXPECT_EQ(vic_process_events(0), VIC_ERROR_NO_WINDOWS);
    EXPECT_EQ(vic_run(), VIC_ERROR_NO_WINDOWS);
}

#endif

}  // namespace
}  // namespace vicenter::front
