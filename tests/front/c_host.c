/* A host in plain C: gives the component a property manager, opens two windows, pumps their events and closes
 * them. The argument says what to expect of them: "shown", "unreachable" (no display answers) or
 * "none" (the library was built without). */

#include <stdio.h>
#include <string.h>

#include "vicenter/vicenter.h"

static int failures = 0;

static void check(int condition, const char* what) {
    if (!condition) {
        fprintf(stderr, "failed: %s (error %ld: %s)\n", what, (long)vic_error_number(),
                vic_error_description());
        ++failures;
    }
}

static vic_status create_props(void* data, void** instance) {
    *instance = data;
    return 0;
}

static vic_status invoke_props(void* instance, vic_kind kind, const char* name, vic_variant* arguments,
                               size_t count, vic_variant* result) {
    int* calls = (int*)instance;
    (void)kind;
    if (strcmp(name, "GetProperty") != 0 || count != 2) return 438;
    if (arguments[1].type != VIC_TEXT) return 13;
    ++*calls;
    return vic_set_text(result, "UserID=16394;ConnectString={Provider=Nobody;Data Source=x};", (size_t)-1);
}

static vic_int32 no_messages(void* data, const char* text, vic_int32 buttons, vic_int32 icon,
                             const char* title) {
    (void)data;
    (void)text;
    (void)buttons;
    (void)icon;
    (void)title;
    return 1;
}

static void show_windows(const char* windows) {
    vic_object* application = NULL;
    size_t open = 0;
    check(vic_create("VelaVICenter.aplication", &application) == 0, "create aplication");
    if (strcmp(windows, "none") == 0) {
        check(vic_call(application, "ShowVICenter", NULL, 0, NULL) == VIC_ERROR_NO_WINDOWS, "no windows");
        vic_release(application);
        return;
    }
    if (strcmp(windows, "unreachable") == 0) {
        check(
            vic_call(application, "ShowVICenter", NULL, 0, NULL) == VIC_ERROR_NO_WINDOWS &&
                strcmp(vic_error_description(), "No display is available to show the template center.") == 0,
            "a display that does not answer is an error");
        check(vic_process_events(0) == VIC_ERROR_NO_WINDOWS, "events without a display are an error");
        vic_release(application);
        return;
    }
    check(vic_call(application, "ShowVICenter", NULL, 0, NULL) == 0, "first window");
    check(vic_call(application, "ShowVICenter", NULL, 0, NULL) == 0, "second window");
    check(vic_release(application) == 0, "release aplication");
    check(vic_process_events(0) == 0, "process events");
    check(vic_open_windows(&open) == 0 && open == 2, "two windows are open");
    check(vic_close_windows() == 0, "close windows");
    check(vic_run() == 0, "run returns without windows");
    check(vic_open_windows(&open) == 0 && open == 0, "no window is open");
}

int main(int argc, char** argv) {
    int calls = 0;
    size_t live = 1;
    vic_class props;
    vic_object* data = NULL;
    vic_variant argument;
    vic_variant result;

    memset(&props, 0, sizeof props);
    memset(&argument, 0, sizeof argument);
    memset(&result, 0, sizeof result);
    props.size = sizeof props;
    props.type_name = "ShareProps";
    props.data = &calls;
    props.create = create_props;
    props.invoke = invoke_props;
    check(vic_abi_version() == VIC_ABI_VERSION, "version of the interface");
    check(vic_register_class("VelaPropsMgr.ShareProps", &props) == 0, "register class");
    check(vic_set_message_handler(no_messages, NULL) == 0, "set message handler");

    check(vic_create("VelaVICenter.clsVIData", &data) == 0, "create clsVIData");
    check(vic_get(data, "mTransMode", &result) == 0 && result.type == VIC_INT32 && result.value.int32 == 2,
          "mTransMode");
    vic_clear(&result);
    argument.type = VIC_INT32;
    argument.value.int32 = 0;
    check(vic_call(data, "GetVchEntryCount", &argument, 1, &result) == 0 && result.value.int32 == 0,
          "GetVchEntryCount without an account set");
    check(calls > 0, "the property manager was asked");
    vic_clear(&result);
    vic_release(data);

    show_windows(argc > 1 ? argv[1] : "none");

    check(vic_live_objects(&live) == 0 && live == 0, "nothing is held");
    check(vic_shutdown() == 0, "shut down");
    if (failures == 0) puts("ok");
    return failures == 0 ? 0 : 1;
}
