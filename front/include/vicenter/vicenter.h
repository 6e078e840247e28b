/*
 * The voucher template center for any host, as a C interface.
 *
 * Objects are created by ProgID and called by member names with variants. A host registers its own
 * components as classes made of C functions, and the component then finds them by their ProgIDs.
 *
 * Threads: the first call binds the interface to its thread, the host's user-interface thread, until
 * vic_shutdown() or that thread's end, behind which the next one that calls takes its place. A call from any
 * other thread does nothing but fail with VIC_ERROR_WRONG_THREAD. The functions that tell about an error and
 * the versions may be called from every thread, and so may vic_cancel().
 *
 * Results: every function of type vic_status answers 0, or the number of a run-time error whose particulars
 * vic_error_...() then tell.
 *
 * Texts are UTF-8 with a length, and those that the library makes also end with a zero byte. Malformed bytes
 * of a text become U+FFFD.
 *
 * Ownership: a variant that the library fills owns its content and is given back with vic_clear(). A variant
 * that a caller fills by hand (its flags 0) refers to the caller's memory and is only read. An object handle
 * is given back with vic_release(); from then on it answers VIC_ERROR_RELEASED, however often it is used or
 * given back again. Objects that hold each other (two dictionaries) are not given back while they do.
 */
#ifndef VICENTER_VICENTER_H
#define VICENTER_VICENTER_H

#include <stddef.h>

#if defined(_WIN32)
#if defined(VICENTER_BUILDING)
#define VIC_API __declspec(dllexport)
#else
#define VIC_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define VIC_API __attribute__((visibility("default")))
#else
#define VIC_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef short vic_int16;
typedef int vic_int32;
#if defined(_MSC_VER)
typedef __int64 vic_int64;
#elif defined(__GNUC__)
__extension__ typedef long long vic_int64;
#else
typedef long vic_int64;
#endif

typedef vic_int32 vic_status;

/* Makes an enumeration hold any int in C++ as it does in C: what a host passes may be no member of it. */
#ifdef __cplusplus
#define VIC_INT_ENUM : vic_int32
#else
#define VIC_INT_ENUM
#endif

/* Counts up with every change of this interface; what was there before stays as it is. */
#define VIC_ABI_VERSION 3

/* Run-time errors of the interface itself, beside the usual ones (13 type mismatch, 429, 438, ...). */
#define VIC_ERROR_INVALID_ARGUMENT 5
#define VIC_ERROR_OUT_OF_MEMORY 7
#define VIC_ERROR_OUT_OF_STACK 28 /* arrays within arrays, deeper than 1000 */
#define VIC_ERROR_INTERNAL 51
#define VIC_ERROR_NO_WINDOWS 429
#define VIC_ERROR_WRONG_THREAD (-2147417842) /* 0x8001010E */
#define VIC_ERROR_TIMEOUT (-2147217871)      /* 0x80040E31: a statement took longer than it may */
#define VIC_ERROR_CANCELLED (-2147217842)    /* 0x80040E4E: a statement was cancelled */
#define VIC_ERROR_RELEASED (-2147417848)     /* 0x80010108: the object's handle has been given back */

typedef enum vic_type VIC_INT_ENUM {
    VIC_EMPTY = 0,
    VIC_NULL = 1,
    VIC_BOOLEAN = 2, /* value.boolean: 0, or -1 for true */
    VIC_INT16 = 3,   /* value.int16 */
    VIC_INT32 = 4,   /* value.int32 */
    VIC_INT64 = 5,   /* value.int64 */
    VIC_DOUBLE = 6,  /* value.number */
    VIC_DECIMAL = 7, /* value.text: digits with a point, at most 38 of them */
    VIC_DATE = 8,    /* value.number: days since 1899-12-30, the time of day as the fraction, which counts
                        forward before that day too: -1.25 is 06:00 of 1899-12-29 */
    VIC_TEXT = 9,    /* value.text */
    VIC_ARRAY = 10,  /* value.array */
    VIC_OBJECT = 11, /* value.object, NULL for no object */
    VIC_ERROR = 12,  /* value.int32: an error as a value; VIC_MISSING for an argument left out */
    VIC_BYREF = 64   /* value.reference: the caller's variable; only as an argument */
} vic_type;

#define VIC_MISSING (-2147352572) /* 0x80020004 */

/* Flag of a variant that owns its content. */
#define VIC_OWNED 1

typedef struct vic_object vic_object;
typedef struct vic_variant vic_variant;

typedef struct vic_text {
    const char* data;
    size_t length; /* in bytes */
} vic_text;

typedef struct vic_array {
    vic_variant* items;
    size_t count;
} vic_array;

struct vic_variant {
    vic_int32 type;  /* a vic_type */
    vic_int32 flags; /* 0 or VIC_OWNED */
    union {
        vic_int32 boolean;
        vic_int16 int16;
        vic_int32 int32;
        vic_int64 int64;
        double number;
        vic_text text;
        vic_array array;
        vic_object* object;
        vic_variant* reference;
    } value;
};

/* ---- the library */

VIC_API const char* vic_version(void);
VIC_API vic_int32 vic_abi_version(void);
/* Closes the windows, gives the host's classes and components back, which may call the library meanwhile, and
 * frees the thread. Fails with 5, and the rest is not done, while a call, of the host's or of a window that
 * asks the host, or another shutdown is under way, or when a window stays open. Handles still held must not
 * be used. */
VIC_API vic_status vic_shutdown(void);

/* Ends the statements that run, as if they had failed: the call that waits for them answers
 * VIC_ERROR_CANCELLED, or does what its member does after a failure. May be called from every thread; does
 * nothing when none runs. */
VIC_API void vic_cancel(void);

/* ---- the last error of the calling thread; the texts stay until its next failing call. Members that answer
 * no object or false where something failed leave its error here too, though their call answers 0. */

VIC_API vic_int32 vic_error_number(void);
VIC_API const char* vic_error_description(void);
VIC_API const char* vic_error_source(void);
/* For the functions of host classes: sets the error and answers its number, to be returned. A description
 * or source that is NULL stands for the usual one. */
VIC_API vic_status vic_raise(vic_int32 number, const char* description, const char* source);

/* ---- objects */

VIC_API vic_status vic_create(const char* prog_id, vic_object** object);
VIC_API vic_status vic_retain(vic_object* object);
VIC_API vic_status vic_release(vic_object* object); /* NULL is allowed */
/* 1 in *same when both handles stand for one object. */
VIC_API vic_status vic_same(const vic_object* a, const vic_object* b, vic_int32* same);
/* name is written to without being cleared before, as the result of a call is. */
VIC_API vic_status vic_type_name(vic_object* object, vic_variant* name);
VIC_API vic_status vic_has_member(vic_object* object, const char* name, vic_int32* answer);
/* Handles and instances of host classes that are still held: 0 when nothing leaks. */
VIC_API vic_status vic_live_objects(size_t* count);

typedef enum vic_kind VIC_INT_ENUM { VIC_GET = 0, VIC_PUT = 1, VIC_CALL = 2 } vic_kind;

/* Calls a member; name "" is the default member. Arguments are values, or VIC_BYREF to variables that the
 * member may change. names is NULL, or one name or NULL for each argument. The value of a VIC_PUT is the last
 * argument. result may be NULL; it is written to without being cleared before. */
VIC_API vic_status vic_invoke(vic_object* object, vic_kind kind, const char* name,
                              const vic_variant* arguments, const char* const* names, size_t count,
                              vic_variant* result);
VIC_API vic_status vic_call(vic_object* object, const char* name, const vic_variant* arguments, size_t count,
                            vic_variant* result);
VIC_API vic_status vic_get(vic_object* object, const char* name, vic_variant* result);
VIC_API vic_status vic_put(vic_object* object, const char* name, const vic_variant* value);

/* ---- variants; each of these first gives back what the variant owns, so start from a zeroed one */

VIC_API vic_status vic_clear(vic_variant* variant);
VIC_API vic_status vic_copy(vic_variant* to, const vic_variant* from);
/* A length of (size_t)-1 stands for the bytes before the first zero. */
VIC_API vic_status vic_set_text(vic_variant* variant, const char* data, size_t length);
VIC_API vic_status vic_set_decimal(vic_variant* variant, const char* digits);
VIC_API vic_status vic_set_object(vic_variant* variant, vic_object* object); /* takes a share of its own */
/* An array of empty items, to be filled by the functions of this group. */
VIC_API vic_status vic_set_array(vic_variant* variant, size_t count);
/* The value as another type, as automation converts it (13, 6 or 94 when it cannot); VIC_TEXT of any value,
 * VIC_BOOLEAN, VIC_INT16, VIC_INT32, VIC_INT64, VIC_DOUBLE, VIC_DECIMAL, VIC_DATE. */
VIC_API vic_status vic_convert(const vic_variant* from, vic_type type, vic_variant* to);

/* ---- classes of the host */

typedef struct vic_class {
    size_t size;           /* sizeof(vic_class) */
    const char* type_name; /* what clients see as the class name */
    void* data;            /* handed to create */
    /* Makes an instance. NULL when all objects come from vic_new_object(). */
    vic_status (*create)(void* data, void** instance);
    /* Calls a member. Arguments that arrive as VIC_BYREF refer to variables that may be set by the functions
     * above; result is empty and may be left so. Answers 0, or what vic_raise() or a failed call answered. */
    vic_status (*invoke)(void* instance, vic_kind kind, const char* name, vic_variant* arguments,
                         size_t count, vic_variant* result);
    /* 1 for a member that exists; NULL when invoke answers 438 for those that do not. */
    vic_int32 (*has_member)(void* instance, const char* name);
    /* The last share of the instance is gone; may be NULL. */
    void (*release)(void* instance);
} vic_class;

/* The definition is copied. A later registration of the ProgID replaces the earlier one. */
VIC_API vic_status vic_register_class(const char* prog_id, const vic_class* definition);
VIC_API vic_status vic_unregister_class(const char* prog_id);
/* An object around an instance that exists already. */
VIC_API vic_status vic_new_object(const vic_class* definition, void* instance, vic_object** object);

/* ---- the host's data connections */

/* Puts the host's own connection service in place of plain connections opened from the property string's
 * ConnectString; NULL puts those back. The object gives brokers, brokers give connections and those
 * recordsets, all called by the member names that docs/hosting.md lists. The library keeps a share of the
 * object until another one comes or vic_shutdown(). */
VIC_API vic_status vic_set_framework(vic_object* framework);

/* ---- messages to the user */

/* Answers a message box: buttons 0 OK, 1 OK and Cancel, 4 Yes and No; icon 0, 16, 32, 48 or 64; the answer
 * is 1 OK, 2 Cancel, 6 Yes or 7 No. */
typedef vic_int32 (*vic_message_handler)(void* data, const char* text, vic_int32 buttons, vic_int32 icon,
                                         const char* title);
/* Puts a function in place of the message boxes; NULL puts them back. */
VIC_API vic_status vic_set_message_handler(vic_message_handler handler, void* data);

/* ---- the windows, for hosts without a window loop of their own */

/* Handles what is due and answers; with milliseconds above 0 waits so long for something to come. */
VIC_API vic_status vic_process_events(vic_int32 milliseconds);
/* Handles events until no template center window is open. */
VIC_API vic_status vic_run(void);
VIC_API vic_status vic_open_windows(size_t* count);
/* Closes the windows as their frames would; one that its user keeps stays open. While a window asks the host
 * they are out of sight at once, and end when what asks has ended. */
VIC_API vic_status vic_close_windows(void);

#ifdef __cplusplus
}
#endif

#endif
