// Values within values, as many as a host likes: what is too deep is refused, and nothing is too deep to be
// given back.

#include <string>
#include <vector>

#include "tests/fakes/own_folder.h"
#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

class DeepValues : public FrontTest {
  protected:
    static void PutItem(vic_object* dictionary, const vic_variant& key, const vic_variant& item) {
        const vic_variant arguments[] = {key, item};
        ASSERT_EQ(vic_invoke(dictionary, VIC_PUT, "Item", arguments, nullptr, 2, nullptr), 0)
            << vic_error_description();
    }

    // An array within an array, and so on.
    static void NestArrays(vic_variant& variant, std::size_t depth) {
        vic_variant* at = &variant;
        for (std::size_t i = 0; i < depth; ++i) {
            ASSERT_EQ(vic_set_array(at, 1), 0);
            at = &at->value.array.items[0];
        }
        ASSERT_EQ(vic_set_text(at, "x", 1), 0);
    }
};

TEST_F(DeepValues, DictionariesWithinDictionariesAreGivenBack) {
    vic_object* inner = nullptr;
    ASSERT_EQ(vic_create("Scripting.Dictionary", &inner), 0);
    for (int i = 0; i < 200'000; ++i) {
        vic_object* outer = nullptr;
        ASSERT_EQ(vic_create("Scripting.Dictionary", &outer), 0);
        PutItem(outer, Value::Text("in"), Value::Object(inner));
        ASSERT_EQ(vic_release(inner), 0);
        inner = outer;
    }
    EXPECT_EQ(vic_release(inner), 0);
}

TEST_F(DeepValues, DictionariesAsKeysOfDictionariesAreGivenBack) {
    vic_object* inner = nullptr;
    ASSERT_EQ(vic_create("Scripting.Dictionary", &inner), 0);
    for (int i = 0; i < 200'000; ++i) {
        vic_object* outer = nullptr;
        ASSERT_EQ(vic_create("Scripting.Dictionary", &outer), 0);
        PutItem(outer, Value::Object(inner), Value::Int(i));
        ASSERT_EQ(vic_release(inner), 0);
        inner = outer;
    }
    EXPECT_EQ(vic_release(inner), 0);
}

TEST_F(DeepValues, DictionariesAndArraysInTurnAreGivenBack) {
    vic_object* inner = nullptr;
    ASSERT_EQ(vic_create("Scripting.Dictionary", &inner), 0);
    for (int i = 0; i < 200'000; ++i) {
        vic_object* outer = nullptr;
        ASSERT_EQ(vic_create("Scripting.Dictionary", &outer), 0);
        Value array;
        ASSERT_EQ(vic_set_array(&array.variant, 2), 0);
        ASSERT_EQ(vic_set_object(&array.variant.value.array.items[0], inner), 0);
        PutItem(outer, Value::Int(1), array.variant);
        ASSERT_EQ(vic_release(inner), 0);
        inner = outer;
    }
    EXPECT_EQ(vic_release(inner), 0);
}

TEST_F(DeepValues, ManyLongChainsInOneDictionaryAreGivenBack) {
    Handle all("Scripting.Dictionary");
    for (int chain = 0; chain < 50; ++chain) {
        vic_object* inner = nullptr;
        ASSERT_EQ(vic_create("Scripting.Dictionary", &inner), 0);
        for (int i = 0; i < 5'000; ++i) {
            vic_object* outer = nullptr;
            ASSERT_EQ(vic_create("Scripting.Dictionary", &outer), 0);
            PutItem(outer, Value::Text("in"), Value::Object(inner));
            ASSERT_EQ(vic_release(inner), 0);
            inner = outer;
        }
        PutItem(all.object, Value::Int(chain), Value::Object(inner));
        ASSERT_EQ(vic_release(inner), 0);
    }
    ASSERT_EQ(all.Call("RemoveAll"), 0);
}

TEST_F(DeepValues, ArraysWithinArraysAreRefusedPastTheLimitAndGivenBack) {
    Handle dictionary("Scripting.Dictionary");
    Value deep;
    NestArrays(deep.variant, 50'000);
    const vic_variant arguments[] = {Value::Text("key"), deep.variant};
    EXPECT_EQ(vic_invoke(dictionary.object, VIC_PUT, "Item", arguments, nullptr, 2, nullptr),
              VIC_ERROR_OUT_OF_STACK);
    EXPECT_STREQ(vic_error_description(), "Arrays are nested too deeply");
    Value copy;
    EXPECT_EQ(vic_copy(&copy.variant, &deep.variant), VIC_ERROR_OUT_OF_STACK);
    EXPECT_EQ(copy.variant.type, VIC_EMPTY);
    EXPECT_EQ(vic_convert(&deep.variant, VIC_TEXT, &copy.variant), VIC_ERROR_OUT_OF_STACK);
    EXPECT_EQ(vic_clear(&deep.variant), 0);
    EXPECT_EQ(deep.variant.type, VIC_EMPTY);
}

TEST_F(DeepValues, ArraysUpToTheLimitComeBack) {
    Handle dictionary("Scripting.Dictionary");
    Value deep;
    NestArrays(deep.variant, 1000);
    PutItem(dictionary.object, Value::Text("key"), deep.variant);
    Value back;
    ASSERT_EQ(dictionary.Call("Item", {Value::Text("key")}, &back), 0);
    const vic_variant* at = &back.variant;
    for (; at->type == VIC_ARRAY; at = &at->value.array.items[0])
        ASSERT_EQ(at->value.array.count, 1U);
    EXPECT_EQ(at->type, VIC_TEXT);

    // Within one more array, that of all items, they are too deep to be handed out.
    EXPECT_EQ(dictionary.Call("Items", {}, &back), VIC_ERROR_OUT_OF_STACK);
}

TEST_F(DeepValues, ArraysOfManyKindsAreGivenBack) {
    Value tree;
    ASSERT_EQ(vic_set_array(&tree.variant, 3), 0);
    vic_variant* items = tree.variant.value.array.items;
    NestArrays(items[0], 10);
    ASSERT_EQ(vic_set_array(&items[1], 0), 0);
    ASSERT_EQ(vic_set_array(&items[2], 4), 0);
    Handle object("Scripting.Dictionary");
    ASSERT_EQ(vic_set_object(&items[2].value.array.items[0], object.object), 0);
    NestArrays(items[2].value.array.items[1], 3);
    ASSERT_EQ(vic_set_text(&items[2].value.array.items[3], "end", 3), 0);
    EXPECT_EQ(vic_clear(&tree.variant), 0);
}

TEST_F(DeepValues, JsonOfADictionaryThatHoldsItselfIsRefused) {
    Handle dictionary("Scripting.Dictionary");
    Handle json("VelaVICenter.VbsJson");
    PutItem(dictionary.object, Value::Text("self"), Value::Object(dictionary.object));
    EXPECT_EQ(json.Call("Encode", {Value::Object(dictionary.object)}), 8732);
    EXPECT_STREQ(vic_error_description(), "Nesting too deep");
    ASSERT_EQ(dictionary.Call("RemoveAll"), 0);
}

TEST_F(DeepValues, ThousandsOfResultsOfOneBatchAreGivenBack) {
    const fakes::OwnFolder folder;
    {
        Handle connection("ADODB.Connection");
        const vic_variant endless = Value::Int(0);
        ASSERT_EQ(vic_put(connection.object, "CommandTimeout", &endless), 0);
        const std::string connect = "Provider=VelaAccountSet;Create=yes;Pooling=no;Data Source=" +
                                    (folder.Path() / "set.vas").string();
        ASSERT_EQ(connection.Call("Open", {Value::Text(connect)}), 0) << vic_error_description();
        std::string batch;
        for (int i = 0; i < 120'000; ++i)
            batch += "select 1 ";
        Value first;
        ASSERT_EQ(connection.Call("Execute", {Value::Text(batch)}, &first), 0) << vic_error_description();
        Value second;
        ASSERT_EQ(vic_call(first.variant.value.object, "NextRecordset", nullptr, 0, &second.variant), 0);
        EXPECT_EQ(second.variant.type, VIC_OBJECT);
        EXPECT_EQ(vic_clear(&first.variant), 0);
        EXPECT_EQ(vic_clear(&second.variant), 0);
        ASSERT_EQ(connection.Call("Close"), 0);
    }
}

}  // namespace
}  // namespace vicenter::front
