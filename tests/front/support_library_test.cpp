// The support library through the third door: the edge cases of both classes over the C interface.

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

class SupportThroughC : public FrontTest {
  protected:
    // The text that comes back from decoding and encoding, or the error's number and text.
    static std::string RoundTrip(std::string_view text) {
        Handle json("VelaVICenter.VbsJson");
        Value value;
        Value encoded;
        if (json.Call("Decode", {Value::Text(text)}, &value) != 0 ||
            json.Call("Encode", {value.variant}, &encoded) != 0) {
            return std::to_string(vic_error_number()) + " " + vic_error_description();
        }
        return encoded.AsText();
    }
};

TEST_F(SupportThroughC, DecodesAndEncodes) {
    EXPECT_EQ(RoundTrip("[]"), "[]");
    EXPECT_EQ(RoundTrip("{}"), "{}");
    EXPECT_EQ(RoundTrip(R"( { "a" : [ 1 , true , null ] , "b" : "\u51ed\ud83d\ude00" } )"),
              R"({"a":[1,true,null],"b":"凭😀"})");
    EXPECT_EQ(RoundTrip("01"), "0");
    EXPECT_EQ(RoundTrip("[x,5]"), "[5,5]");
    EXPECT_EQ(RoundTrip("[] rest"), "[]");
    EXPECT_EQ(RoundTrip(R"("\ud83d")"), "\"\xEF\xBF\xBD\"");
    EXPECT_EQ(RoundTrip(std::string_view("\"a\\u0000b\"")), R"("a\u0000b")");
}

TEST_F(SupportThroughC, DecodedObjectsAreDictionaries) {
    Handle json("VelaVICenter.VbsJson");
    Value value;
    ASSERT_EQ(json.Call("Decode", {Value::Text(R"({"b":1,"a":[true]})")}, &value), 0);
    ASSERT_EQ(value.variant.type, VIC_OBJECT);
    Value name;
    ASSERT_EQ(vic_type_name(value.variant.value.object, &name.variant), 0);
    EXPECT_EQ(name.AsText(), "Dictionary");
    Value keys;
    ASSERT_EQ(vic_call(value.variant.value.object, "Keys", nullptr, 0, &keys.variant), 0);
    ASSERT_EQ(keys.variant.value.array.count, 2U);
    EXPECT_STREQ(keys.variant.value.array.items[0].value.text.data, "b");
    const vic_variant key = Value::Text("a");
    Value item;
    ASSERT_EQ(vic_call(value.variant.value.object, "Item", &key, 1, &item.variant), 0);
    ASSERT_EQ(item.variant.type, VIC_ARRAY);
    EXPECT_EQ(item.variant.value.array.items[0].type, VIC_BOOLEAN);
    EXPECT_EQ(item.variant.value.array.items[0].value.boolean, -1);
}

TEST_F(SupportThroughC, KeepsEveryErrorText) {
    EXPECT_EQ(RoundTrip("TRUE"), "8732 No JSON object could be ScanOnced");
    EXPECT_EQ(RoundTrip("{1"), "8732 Expecting property name");
    EXPECT_EQ(RoundTrip("{\"a\""), "8732 Expecting : delimiter");
    EXPECT_EQ(RoundTrip("[1 2]"), "8732 Expecting , delimiter");
    EXPECT_EQ(RoundTrip("\"abc"), "8732 Unterminated string starting");
    EXPECT_EQ(RoundTrip("\"a\nb\""), "8732 Invalid control character");
    EXPECT_EQ(RoundTrip("\"\\x\""), "8732 Invalid escape");
    EXPECT_EQ(RoundTrip(std::string(100'000, '[')), "8732 Nesting too deep");
    EXPECT_EQ(RoundTrip("{\"a\":1,\"a\":2}"),
              "457 This key is already associated with an element of this collection");
    Handle json("VelaVICenter.VbsJson");
    EXPECT_EQ(json.Call("Encode", {Value::Object(json.object)}), 8732);
    EXPECT_STREQ(vic_error_description(), "None dictionary object");
    EXPECT_EQ(json.Call("Encode", {Value::Object(nullptr)}), 8732);
}

TEST_F(SupportThroughC, BuildsTexts) {
    Handle builder("VelaVICenter.StringBuilder");
    EXPECT_EQ(builder.TextOf("ToString"), "");
    EXPECT_EQ(builder.Call("Append", {Value::Text("凭证")}), 0);
    EXPECT_EQ(builder.Call("Append", {Value::Text("")}), 0);
    EXPECT_EQ(builder.Call("AppendLine", {Value::Text("模板")}), 0);
    EXPECT_EQ(builder.Call("Insert", {Value::Int(0), Value::Text("<")}), 0);
    EXPECT_EQ(builder.Call("Remove", {Value::Int(1), Value::Int(1)}), 0);
    EXPECT_EQ(builder.TextOf("ToString"), "<证模板\r\n");
    Value found;
    EXPECT_EQ(builder.Call("Find", {Value::Text("模板")}, &found), 0);
    EXPECT_EQ(found.variant.value.int64, 3);
    EXPECT_EQ(builder.Call("Remove", {Value::Int(7), Value::Int(0)}), 9);
    EXPECT_EQ(builder.Call("Insert", {Value::Int(-1), Value::Text("x")}), 9);
    EXPECT_STREQ(vic_error_description(), "Subscript out of range");
    EXPECT_EQ(builder.TextOf("ToString"), "<证模板\r\n");
    EXPECT_EQ(builder.Call("Clear"), 0);
    EXPECT_EQ(builder.Call("TrimToSize"), 0);
    EXPECT_EQ(builder.TextOf("ToString"), "");
}

TEST_F(SupportThroughC, SetsTheChunkSizeInCharacters) {
    Handle builder("VelaVICenter.StringBuilder");
    Value size;
    ASSERT_EQ(vic_get(builder.object, "ChunkSize", &size.variant), 0);
    EXPECT_EQ(size.variant.value.int64, 8192);
    const vic_variant small = Value::Int(2);
    ASSERT_EQ(vic_put(builder.object, "ChunkSize", &small), 0);
    EXPECT_EQ(builder.Call("Append", {Value::Text("12345")}), 0);
    EXPECT_EQ(builder.TextOf("ToString"), "12345");
    const vic_variant none = Value::Int(0);
    EXPECT_EQ(vic_put(builder.object, "ChunkSize", &none), 5);
}

}  // namespace
}  // namespace vicenter::front
