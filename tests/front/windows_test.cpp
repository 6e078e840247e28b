// ShowVICenter from a host that knows only the C interface: the window opens in its process, the call returns
// at once, several windows stand side by side, closing works, nothing is left.

#include "tests/front/front_testing.h"

#ifdef VICENTER_PROGRAM
#include <cstdlib>
#include <filesystem>

#include <unistd.h>
#endif

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

#ifdef VICENTER_PROGRAM

// The host's property manager, as a host in C supplies it: the instance is the property string.
vic_class PropertyManager(std::string& properties) {
    vic_class definition{};
    definition.size = sizeof definition;
    definition.type_name = "ShareProps";
    definition.data = &properties;
    definition.create = [](void* data, void** instance) -> vic_status {
        *instance = data;
        return 0;
    };
    definition.invoke = [](void* instance, vic_kind, const char*, vic_variant*, size_t,
                           vic_variant* result) -> vic_status {
        const auto& text = *static_cast<const std::string*>(instance);
        return vic_set_text(result, text.data(), text.size());
    };
    return definition;
}

// Trees, grids and recordsets in them: what several windows hold must be gone with them, which the leak check
// of an instrumented build sees to at the end.
TEST_F(FrontWindows, SeveralOnAnAccountSetLeaveNothing) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("vicenter-front-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const std::string file = (folder / "demo.vas").string();
    ASSERT_EQ(
        std::system(("'" VICENTER_PROGRAM "' account-set new '" + file + "' --demo > /dev/null").c_str()), 0);
    std::string properties = "UserID=1;ConnectString={Provider=VelaAccountSet;Data Source=" + file + "};";
    const vic_class manager = PropertyManager(properties);
    ASSERT_EQ(vic_register_class("VelaPropsMgr.ShareProps", &manager), 0);

    for (std::size_t opened = 1; opened <= 3; ++opened) {
        ASSERT_EQ(Show(), 0) << vic_error_description();
        EXPECT_EQ(OpenWindows(), opened);
        EXPECT_EQ(vic_process_events(1), 0);
    }
    {
        Handle data("VelaVICenter.clsVIData");
        const vic_variant user = Value::Int(1);
        Value templates;
        ASSERT_EQ(data.Call("GetVchTemplateByUserID", {user}, &templates), 0);
        ASSERT_EQ(templates.variant.type, VIC_OBJECT);
        Value count;
        ASSERT_EQ(vic_get(templates.variant.value.object, "RecordCount", &count.variant), 0);
        Value number;
        ASSERT_EQ(vic_convert(&count.variant, VIC_INT32, &number.variant), 0);
        EXPECT_GE(number.variant.value.int32, 4);
    }
    EXPECT_EQ(vic_close_windows(), 0);
    EXPECT_EQ(OpenWindows(), 0U);
    std::size_t live = 1;
    EXPECT_EQ(vic_live_objects(&live), 0);
    EXPECT_EQ(live, 0U);
    EXPECT_EQ(vic_unregister_class("VelaPropsMgr.ShareProps"), 0);
    EXPECT_EQ(vic_shutdown(), 0);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

#endif

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

// What a host that knows objects alone has in place of the functions.
TEST_F(FrontWindows, ObjectsPumpAndCloseThemAsTheFunctionsDo) {
    Handle host("VelaVICenter.Host");
    const auto opened = [&] {
        Value count;
        EXPECT_EQ(vic_get(host.object, "OpenWindows", &count.variant), 0) << vic_error_description();
        return count.variant.type == VIC_INT32 ? count.variant.value.int32 : -1;
    };
    EXPECT_EQ(opened(), 0);
    ASSERT_EQ(Show(), 0);
    ASSERT_EQ(Show(), 0);
    EXPECT_EQ(host.Call("ProcessEvents", {Value::Int(1)}), 0);
    EXPECT_EQ(opened(), 2);
    EXPECT_EQ(host.Call("CloseWindows"), 0);
    EXPECT_EQ(host.Call("RunWindows"), 0);
    EXPECT_EQ(opened(), 0);
    EXPECT_EQ(OpenWindows(), 0U);
    // One that is held beyond the end finds no windows any more.
    ASSERT_EQ(vic_shutdown(), 0) << vic_error_description();
    EXPECT_EQ(host.Call("CloseWindows"), VIC_ERROR_NO_WINDOWS);
    EXPECT_STREQ(vic_error_source(), "Host");
}

TEST_F(FrontWindows, RunReturnsWhenNoWindowIsOpen) {
    EXPECT_EQ(vic_run(), 0);
    ASSERT_EQ(Show(), 0);
    ASSERT_EQ(vic_close_windows(), 0);
    EXPECT_EQ(vic_run(), 0);
}

// Its rights are held as long as the window is: they are given back while the windows are closed.
TEST_F(FrontWindows, AShutdownWithinTheClosingOfTheWindowsIsRefused) {
    static std::vector<vic_status> answers;
    vic_class rights{};
    rights.size = sizeof rights;
    rights.type_name = "SecurityInfo";
    rights.create = [](void*, void**) -> vic_status { return 0; };
    rights.invoke = [](void*, vic_kind, const char*, vic_variant*, size_t,
                       vic_variant* result) -> vic_status {
        result->type = VIC_BOOLEAN;
        result->value.boolean = -1;
        return 0;
    };
    rights.release = [](void*) { answers.push_back(vic_shutdown()); };
    ASSERT_EQ(vic_register_class("VelaEBSBase.SecurityInfo", &rights), 0);
    ASSERT_EQ(Show(), 0);
    EXPECT_TRUE(answers.empty());
    ASSERT_EQ(vic_shutdown(), 0) << vic_error_description();
    EXPECT_EQ(answers, std::vector<vic_status>{VIC_ERROR_INVALID_ARGUMENT});
    AnswerMessages();
    EXPECT_EQ(OpenWindows(), 0U);
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
