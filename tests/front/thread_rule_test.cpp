// One user-interface thread: the first caller's.

#include <thread>

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

class ThreadRule : public FrontTest {};

TEST_F(ThreadRule, AnotherThreadIsRefusedAndChangesNothing) {
    Handle builder("VelaVICenter.StringBuilder");
    std::thread([&] {
        vic_object* object = nullptr;
        EXPECT_EQ(vic_create("Scripting.Dictionary", &object), VIC_ERROR_WRONG_THREAD);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(vic_error_number(), VIC_ERROR_WRONG_THREAD);
        EXPECT_STREQ(vic_error_description(),
                     "The template center belongs to the thread that called it first; "
                     "call it from that thread only.");
        EXPECT_STREQ(vic_error_source(), "VelaVICenter");
        const vic_variant text = Value::Text("x");
        EXPECT_EQ(vic_call(builder.object, "Append", &text, 1, nullptr), VIC_ERROR_WRONG_THREAD);
        EXPECT_EQ(vic_release(builder.object), VIC_ERROR_WRONG_THREAD);
        EXPECT_EQ(vic_process_events(0), VIC_ERROR_WRONG_THREAD);
        EXPECT_EQ(vic_shutdown(), VIC_ERROR_WRONG_THREAD);
        EXPECT_EQ(vic_abi_version(), VIC_ABI_VERSION);
    }).join();
    EXPECT_EQ(builder.TextOf("ToString"), "");
}

TEST_F(ThreadRule, EachThreadHasItsOwnLastError) {
    vic_object* object = nullptr;
    EXPECT_EQ(vic_create("No.Such", &object), 429);
    std::thread([] {
        EXPECT_EQ(vic_error_number(), 0);
        EXPECT_STREQ(vic_error_description(), "");
    }).join();
    EXPECT_EQ(vic_error_number(), 429);
}

TEST(ThreadRuleAfterShutdown, AnotherThreadMayBegin) {
    EXPECT_EQ(vic_shutdown(), 0);
    std::thread([] {
        {
            Handle dictionary("Scripting.Dictionary");
            EXPECT_NE(dictionary.object, nullptr);
        }
        EXPECT_EQ(vic_shutdown(), 0);
    }).join();
    std::size_t count = 1;
    EXPECT_EQ(vic_live_objects(&count), 0);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(vic_shutdown(), 0);
}

}  // namespace
}  // namespace vicenter::front
