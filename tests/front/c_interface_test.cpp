// Creating, calling, converting and giving back through the C interface.

#include <cmath>
#include <cstring>
#include <limits>

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

class CInterface : public FrontTest {};

TEST_F(CInterface, CreatesObjectsByProgIdWithoutCase) {
    Handle dictionary("scripting.DICTIONARY");
    Value name;
    ASSERT_EQ(vic_type_name(dictionary.object, &name.variant), 0);
    EXPECT_EQ(name.AsText(), "Dictionary");
}

TEST_F(CInterface, AnUnknownProgIdIsTheUsualError) {
    vic_object* object = nullptr;
    EXPECT_EQ(vic_create("No.Such", &object), 429);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(vic_error_number(), 429);
    EXPECT_STREQ(vic_error_description(), "ActiveX component can't create object");
    EXPECT_STREQ(vic_error_source(), "No.Such");
}

TEST_F(CInterface, TheComponentsClassesAreThere) {
    for (const char* progId : {"VelaVICenter.aplication", "VelaVICenter.clsVIData", "VelaVICenter.VbsJson",
                               "VelaVICenter.StringBuilder", "Scripting.Dictionary",
                               "Scripting.FileSystemObject", "ADODB.Connection"}) {
        Handle object(progId);
        EXPECT_NE(object.object, nullptr) << progId;
    }
}

TEST_F(CInterface, EveryTypeGoesThroughAnObjectAndBack) {
    Handle dictionary("Scripting.Dictionary");
    const auto roundTrip = [&](const vic_variant& in, Value& out) {
        const vic_variant key = Value::Text("key");
        const vic_variant arguments[] = {key, in};
        ASSERT_EQ(vic_invoke(dictionary.object, VIC_PUT, "Item", arguments, nullptr, 2, nullptr), 0);
        ASSERT_EQ(vic_invoke(dictionary.object, VIC_GET, "Item", &key, nullptr, 1, &out.variant), 0);
        EXPECT_EQ(out.variant.type, in.type);
    };
    const auto simple = [](vic_type type) {
        vic_variant variant{};
        variant.type = type;
        return variant;
    };
    {
        Value out;
        roundTrip(simple(VIC_EMPTY), out);
    }
    {
        Value out;
        roundTrip(simple(VIC_NULL), out);
    }
    for (const vic_int32 truth : {0, -1, 1}) {
        vic_variant in = simple(VIC_BOOLEAN);
        in.value.boolean = truth;
        Value out;
        roundTrip(in, out);
        EXPECT_EQ(out.variant.value.boolean, truth == 0 ? 0 : -1);
    }
    {
        vic_variant in = simple(VIC_INT16);
        in.value.int16 = -32768;
        Value out;
        roundTrip(in, out);
        EXPECT_EQ(out.variant.value.int16, -32768);
    }
    {
        Value out;
        roundTrip(Value::Int(std::numeric_limits<vic_int32>::min()), out);
        EXPECT_EQ(out.variant.value.int32, std::numeric_limits<vic_int32>::min());
    }
    {
        vic_variant in = simple(VIC_INT64);
        in.value.int64 = std::numeric_limits<vic_int64>::max();
        Value out;
        roundTrip(in, out);
        EXPECT_EQ(out.variant.value.int64, std::numeric_limits<vic_int64>::max());
    }
    {
        Value out;
        roundTrip(Value::Number(0.1), out);
        EXPECT_EQ(out.variant.value.number, 0.1);
    }
    {
        vic_variant in = simple(VIC_DECIMAL);
        in.value.text.data = "12345678901234567890.1200";
        in.value.text.length = std::strlen(in.value.text.data);
        Value out;
        roundTrip(in, out);
        EXPECT_EQ(out.AsText(), "12345678901234567890.1200");
    }
    {
        vic_variant in = simple(VIC_DATE);
        in.value.number = 46053.25;
        Value out;
        roundTrip(in, out);
        EXPECT_EQ(out.variant.value.number, 46053.25);
        Value text;
        ASSERT_EQ(vic_convert(&out.variant, VIC_TEXT, &text.variant), 0);
        EXPECT_EQ(text.AsText(), "2026-01-31 06:00:00");
    }
    {
        const std::string text("凭\0证😀", 11);
        Value out;
        roundTrip(Value::Text(text), out);
        EXPECT_EQ(out.AsText(), text);
    }
    {
        Value in;
        ASSERT_EQ(vic_set_array(&in.variant, 3), 0);
        vic_set_text(&in.variant.value.array.items[0], "a", 1);
        in.variant.value.array.items[1] = Value::Int(7);
        ASSERT_EQ(vic_set_array(&in.variant.value.array.items[2], 0), 0);
        Value out;
        roundTrip(in.variant, out);
        ASSERT_EQ(out.variant.value.array.count, 3U);
        const vic_variant* items = out.variant.value.array.items;
        EXPECT_STREQ(items[0].value.text.data, "a");
        EXPECT_EQ(items[1].value.int32, 7);
        EXPECT_EQ(items[2].type, VIC_ARRAY);
        EXPECT_EQ(items[2].value.array.count, 0U);
    }
    {
        Handle other("Scripting.Dictionary");
        Value out;
        roundTrip(Value::Object(other.object), out);
        vic_int32 same = 0;
        ASSERT_EQ(vic_same(out.variant.value.object, other.object, &same), 0);
        EXPECT_EQ(same, 1);
        ASSERT_EQ(vic_same(dictionary.object, other.object, &same), 0);
        EXPECT_EQ(same, 0);
    }
    {
        Value out;
        roundTrip(Value::Object(nullptr), out);
        EXPECT_EQ(out.variant.value.object, nullptr);
    }
    {
        vic_variant in = simple(VIC_ERROR);
        in.value.int32 = 2042;
        Value out;
        roundTrip(in, out);
        EXPECT_EQ(out.variant.value.int32, 2042);
    }
}

TEST_F(CInterface, MalformedBytesOfATextBecomeReplacementCharacters) {
    Handle builder("VelaVICenter.StringBuilder");
    EXPECT_EQ(builder.Call("Append", {Value::Text("a\xFF\xE5z")}), 0);
    EXPECT_EQ(builder.TextOf("ToString"), "a\xEF\xBF\xBD\xEF\xBF\xBDz");
}

TEST_F(CInterface, VariantsThatMakeNoSenseAreRefused) {
    Handle builder("VelaVICenter.StringBuilder");
    vic_variant strange{};
    strange.type = 99;
    EXPECT_EQ(builder.Call("Append", {strange}), 5);
    vic_variant noText{};
    noText.type = VIC_TEXT;
    noText.value.text.length = 3;
    EXPECT_EQ(builder.Call("Append", {noText}), 5);
    vic_variant decimal = Value::Text("1,5");
    decimal.type = VIC_DECIMAL;
    EXPECT_EQ(builder.Call("Append", {decimal}), 13);
    vic_variant variable = Value::Reference(nullptr);
    EXPECT_EQ(builder.Call("Append", {variable}), 5);
    vic_variant twice = Value::Reference(&variable);
    EXPECT_EQ(builder.Call("Append", {twice}), 5);
    EXPECT_EQ(builder.TextOf("ToString"), "");
}

TEST_F(CInterface, NullPointersAreRefused) {
    Handle object("Scripting.Dictionary");
    Value result;
    vic_int32 flag = 0;
    EXPECT_EQ(vic_create(nullptr, &object.object), 5);
    EXPECT_EQ(vic_create("Scripting.Dictionary", nullptr), 5);
    EXPECT_EQ(vic_retain(nullptr), 5);
    EXPECT_EQ(vic_release(nullptr), 0);
    EXPECT_EQ(vic_call(nullptr, "Count", nullptr, 0, &result.variant), 5);
    EXPECT_EQ(vic_call(object.object, nullptr, nullptr, 0, &result.variant), 5);
    EXPECT_EQ(vic_call(object.object, "Add", nullptr, 2, &result.variant), 5);
    EXPECT_EQ(vic_get(object.object, "Count", nullptr), 5);
    EXPECT_EQ(vic_put(object.object, "CompareMode", nullptr), 5);
    EXPECT_EQ(vic_invoke(object.object, VIC_PUT, "CompareMode", nullptr, nullptr, 0, nullptr), 449);
    EXPECT_EQ(vic_invoke(object.object, static_cast<vic_kind>(9), "Count", nullptr, nullptr, 0, nullptr), 5);
    EXPECT_EQ(vic_type_name(object.object, nullptr), 5);
    EXPECT_EQ(vic_has_member(object.object, nullptr, &flag), 5);
    EXPECT_EQ(vic_same(object.object, nullptr, &flag), 5);
    EXPECT_EQ(vic_clear(nullptr), 0);
    EXPECT_EQ(vic_copy(nullptr, &result.variant), 5);
    EXPECT_EQ(vic_set_text(nullptr, "a", 1), 5);
    EXPECT_EQ(vic_set_text(&result.variant, nullptr, 1), 5);
    EXPECT_EQ(vic_set_text(&result.variant, nullptr, 0), 0);
    EXPECT_EQ(vic_live_objects(nullptr), 5);
    EXPECT_EQ(vic_open_windows(nullptr), 5);
}

TEST_F(CInterface, GetsAndPutsPropertiesAndAsksForMembers) {
    Handle dictionary("Scripting.Dictionary");
    vic_variant mode = Value::Int(1);
    ASSERT_EQ(vic_put(dictionary.object, "comparemode", &mode), 0);
    Value got;
    ASSERT_EQ(vic_get(dictionary.object, "CompareMode", &got.variant), 0);
    EXPECT_EQ(got.variant.value.int32, 1);
    vic_int32 answer = -1;
    ASSERT_EQ(vic_has_member(dictionary.object, "EXISTS", &answer), 0);
    EXPECT_EQ(answer, 1);
    ASSERT_EQ(vic_has_member(dictionary.object, "Missing", &answer), 0);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(dictionary.Call("Missing"), 438);
}

TEST_F(CInterface, TheDefaultMemberHasTheEmptyName) {
    Handle builder("VelaVICenter.StringBuilder");
    EXPECT_EQ(builder.Call("Append", {Value::Text("abc")}), 0);
    EXPECT_EQ(builder.TextOf(""), "abc");
}

TEST_F(CInterface, PassesNamedArguments) {
    Handle builder("VelaVICenter.StringBuilder");
    const vic_variant arguments[] = {Value::Text("b"), Value::Int(0)};
    const char* names[] = {"TEXT", "index"};
    ASSERT_EQ(vic_invoke(builder.object, VIC_CALL, "Insert", arguments, names, 2, nullptr), 0);
    const char* wrong[] = {nullptr, "position"};
    EXPECT_EQ(vic_invoke(builder.object, VIC_CALL, "Insert", arguments, wrong, 2, nullptr), 448);
    EXPECT_EQ(builder.TextOf("ToString"), "b");
}

TEST_F(CInterface, ErrorsKeepNumberDescriptionAndSource) {
    Handle json("VelaVICenter.VbsJson");
    EXPECT_EQ(json.Call("Decode", {Value::Text("{")}), 8732);
    EXPECT_EQ(vic_error_number(), 8732);
    EXPECT_STREQ(vic_error_description(), "Expecting property name");
    EXPECT_STREQ(vic_error_source(), "VbsJson");
    // A call that succeeds leaves the last error.
    EXPECT_EQ(json.Call("Decode", {Value::Text("1")}), 0);
    EXPECT_EQ(vic_error_number(), 8732);
}

TEST_F(CInterface, ConvertsAsAutomationDoes) {
    const vic_variant text = Value::Text(" 12.5 ");
    Value out;
    ASSERT_EQ(vic_convert(&text, VIC_DOUBLE, &out.variant), 0);
    EXPECT_EQ(out.variant.value.number, 12.5);
    ASSERT_EQ(vic_convert(&text, VIC_INT32, &out.variant), 0);
    EXPECT_EQ(out.variant.value.int32, 12);
    ASSERT_EQ(vic_convert(&text, VIC_DECIMAL, &out.variant), 0);
    EXPECT_EQ(out.AsText(), "12.5");
    ASSERT_EQ(vic_convert(&out.variant, VIC_TEXT, &out.variant), 0);
    EXPECT_EQ(out.AsText(), "12.5");
    const vic_variant word = Value::Text("abc");
    EXPECT_EQ(vic_convert(&word, VIC_INT64, &out.variant), 13);
    EXPECT_EQ(out.AsText(), "12.5");
    const vic_variant large = Value::Number(1e6);
    EXPECT_EQ(vic_convert(&large, VIC_INT16, &out.variant), 6);
    vic_variant null{};
    null.type = VIC_NULL;
    EXPECT_EQ(vic_convert(&null, VIC_TEXT, &out.variant), 94);
    EXPECT_EQ(vic_convert(&text, VIC_ARRAY, &out.variant), 13);
    EXPECT_EQ(vic_convert(&text, static_cast<vic_type>(999), &out.variant), 13);
}

TEST_F(CInterface, CopiesAndClearsWhatVariantsOwn) {
    Value first;
    Value second;
    ASSERT_EQ(vic_set_text(&first.variant, "凭证", static_cast<std::size_t>(-1)), 0);
    ASSERT_EQ(vic_copy(&second.variant, &first.variant), 0);
    EXPECT_NE(first.variant.value.text.data, second.variant.value.text.data);
    ASSERT_EQ(vic_clear(&first.variant), 0);
    EXPECT_EQ(first.variant.type, VIC_EMPTY);
    EXPECT_EQ(second.AsText(), "凭证");
    ASSERT_EQ(vic_copy(&second.variant, &second.variant), 0);
    EXPECT_EQ(second.AsText(), "凭证");
    ASSERT_EQ(vic_set_decimal(&second.variant, "1.50"), 0);
    EXPECT_EQ(second.AsText(), "1.50");
    EXPECT_EQ(vic_set_decimal(&second.variant, "x"), 13);
    EXPECT_EQ(second.AsText(), "1.50");
}

TEST_F(CInterface, ABorrowedVariantIsNeverFreed) {
    char text[] = "abc";
    vic_variant borrowed = Value::Text(text);
    EXPECT_EQ(vic_clear(&borrowed), 0);
    EXPECT_EQ(borrowed.type, VIC_EMPTY);
    EXPECT_STREQ(text, "abc");
}

TEST_F(CInterface, CountsTheHandlesThatAreHeld) {
    std::size_t count = 99;
    ASSERT_EQ(vic_live_objects(&count), 0);
    EXPECT_EQ(count, 0U);
    {
        Handle object("Scripting.Dictionary");
        ASSERT_EQ(vic_retain(object.object), 0);
        ASSERT_EQ(vic_live_objects(&count), 0);
        EXPECT_EQ(count, 1U);
        Value value;
        ASSERT_EQ(vic_set_object(&value.variant, object.object), 0);
        ASSERT_EQ(vic_release(object.object), 0);
        ASSERT_EQ(vic_live_objects(&count), 0);
        EXPECT_EQ(count, 1U);
    }
    ASSERT_EQ(vic_live_objects(&count), 0);
    EXPECT_EQ(count, 0U);
}

TEST_F(CInterface, AnUnknownProviderIsTheUsualError) {
    Handle connection("ADODB.Connection");
    EXPECT_EQ(connection.Call("Open", {Value::Text("Provider=Nobody;Data Source=x")}), 3706);
    EXPECT_STREQ(vic_error_description(), "Provider cannot be found. It may not be properly installed.");
    EXPECT_EQ(connection.Call("Execute", {Value::Text("select 1")}), 3704);
    Value state;
    ASSERT_EQ(vic_get(connection.object, "State", &state.variant), 0);
    EXPECT_EQ(state.variant.value.int32, 0);
}

}  // namespace
}  // namespace vicenter::front
