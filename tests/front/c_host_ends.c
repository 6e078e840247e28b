/* Hosts that end in ways of their own, by the argument:
 *
 *   left              the process ends without vic_shutdown, a component and a connection service of its own
 *                     still registered: it is not called any more
 *   given_back        vic_shutdown gives a component back, which gives back an object of the library, calls
 *                     another one and makes a third
 *   shut_down_within  vic_shutdown gives a component back, which calls vic_shutdown
 *   thread            the thread that used the library has ended without vic_shutdown, another one goes on
 *   thread_of_windows the same, when windows could have been shown on that thread
 */

#define _POSIX_C_SOURCE 200809L

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "vicenter/vicenter.h"

enum { SECONDS_TO_END = 60, CALLED_WHEN_GONE = 3 };

static int failures = 0;
static int gone = 0;

static void check(int condition, const char* what) {
    if (!condition) {
        fprintf(stderr, "failed: %s (error %ld: %s)\n", what, (long)vic_error_number(),
                vic_error_description());
        ++failures;
    }
}

static vic_variant text_of(const char* text) {
    vic_variant variant;
    memset(&variant, 0, sizeof variant);
    variant.type = VIC_TEXT;
    variant.value.text.data = text;
    variant.value.text.length = strlen(text);
    return variant;
}

static vic_variant object_of(vic_object* object) {
    vic_variant variant;
    memset(&variant, 0, sizeof variant);
    variant.type = VIC_OBJECT;
    variant.value.object = object;
    return variant;
}

/* What a component keeps: an object of the library. */
static vic_object* kept = NULL;
static int released = 0;

static vic_status invoke_nothing(void* instance, vic_kind kind, const char* name, vic_variant* arguments,
                                 size_t count, vic_variant* result) {
    (void)instance;
    (void)kind;
    (void)name;
    (void)arguments;
    (void)count;
    (void)result;
    return 438;
}

static void release_counted(void* instance) {
    (void)instance;
    if (gone) _exit(CALLED_WHEN_GONE);
    ++released;
}

static void release_kept(void* instance) {
    vic_object* made = NULL;
    vic_variant word = text_of("last");
    release_counted(instance);
    check(vic_call(kept, "Append", &word, 1, NULL) == 0, "a call while the library is shut down");
    check(vic_create("Scripting.Dictionary", &made) == 0, "an object made while the library is shut down");
    check(vic_release(made) == 0 && vic_release(kept) == 0, "objects given back while it is shut down");
}

static void release_shutting_down(void* instance) {
    release_counted(instance);
    check(vic_shutdown() == VIC_ERROR_INVALID_ARGUMENT &&
              strcmp(vic_error_description(), "The template center is being shut down.") == 0,
          "a shutdown within another one is refused");
}

/* A component of the host's under a ProgID, as hosts that know objects alone give it. */
static vic_object* give_component(void (*release)(void*)) {
    static vic_class definition;
    vic_object* host = NULL;
    vic_object* component = NULL;
    vic_variant arguments[2];
    memset(&definition, 0, sizeof definition);
    definition.size = sizeof definition;
    definition.type_name = "Component";
    definition.invoke = invoke_nothing;
    definition.release = release;
    check(vic_new_object(&definition, NULL, &component) == 0, "an object of the host's");
    check(vic_create("VelaVICenter.Host", &host) == 0, "create Host");
    arguments[0] = text_of("VelaTest.Component");
    arguments[1] = object_of(component);
    check(vic_call(host, "Register", arguments, 2, NULL) == 0, "register a component");
    check(vic_release(host) == 0, "release Host");
    return component;
}

static void the_host_is_gone(void) {
    gone = 1;
}

static void leave(void) {
    vic_object* component = give_component(release_counted);
    check(vic_set_framework(component) == 0, "set a framework");
    check(vic_release(component) == 0, "release the component");
    atexit(the_host_is_gone);
}

static void give_back(void (*release)(void*)) {
    size_t live = 1;
    check(vic_create("VelaVICenter.StringBuilder", &kept) == 0, "create StringBuilder");
    check(vic_release(give_component(release)) == 0, "release the component");
    check(vic_shutdown() == 0, "shut down");
    check(released == 1, "the component was given back");
    if (release != release_kept) check(vic_release(kept) == 0, "release StringBuilder");
    check(vic_live_objects(&live) == 0 && live == 0, "nothing is held");
    check(vic_shutdown() == 0, "shut down again");
}

static void* use(void* with_windows) {
    check(vic_create("VelaVICenter.StringBuilder", &kept) == 0, "create on the thread");
    if (with_windows != NULL) check(vic_process_events(0) == 0, "events on the thread");
    return NULL;
}

static void* be_refused(void* unused) {
    vic_object* object = NULL;
    (void)unused;
    check(vic_create("VelaVICenter.StringBuilder", &object) == VIC_ERROR_WRONG_THREAD, "a third thread");
    return NULL;
}

static void run(void* (*work)(void*), void* argument) {
    pthread_t thread;
    check(pthread_create(&thread, NULL, work, argument) == 0 && pthread_join(thread, NULL) == 0, "a thread");
}

static void outlive_thread(int with_windows) {
    vic_object* object = NULL;
    vic_variant word = text_of("on");
    size_t open = 1;
    run(use, with_windows ? &failures : NULL);
    check(vic_create("Scripting.Dictionary", &object) == 0, "create behind the thread's end");
    check(vic_call(kept, "Append", &word, 1, NULL) == 0, "the thread's object goes on");
    run(be_refused, NULL);
    check(vic_open_windows(&open) == 0 && open == 0, "no window is open");
    if (with_windows) check(vic_process_events(0) == VIC_ERROR_NO_WINDOWS, "no windows behind its end");
    check(vic_release(object) == 0 && vic_release(kept) == 0, "release");
    check(vic_shutdown() == 0, "shut down");
    check(vic_create("Scripting.Dictionary", &object) == 0 && vic_release(object) == 0, "begin anew");
    check(vic_shutdown() == 0, "shut down again");
}

int main(int argc, char** argv) {
    const char* end = argc > 1 ? argv[1] : "";
    alarm(SECONDS_TO_END);
    if (strcmp(end, "left") == 0) {
        leave();
    } else if (strcmp(end, "given_back") == 0) {
        give_back(release_kept);
    } else if (strcmp(end, "shut_down_within") == 0) {
        give_back(release_shutting_down);
    } else if (strcmp(end, "thread") == 0) {
        outlive_thread(0);
    } else if (strcmp(end, "thread_of_windows") == 0) {
        outlive_thread(1);
    } else {
        fprintf(stderr, "unknown end: %s\n", end);
        return 2;
    }
    return failures == 0 ? 0 : 1;
}
