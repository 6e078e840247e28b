#include "platform/scripting/dictionary.h"

#include <gtest/gtest.h>

#include "tests/fakes/error_number.h"

namespace vicenter::scripting {
namespace {

using automation::ObjectRef;
using automation::VariantArray;
using fakes::NumberOfError;

class DictionaryTest : public testing::Test {
  protected:
    ObjectRef dictionary_ = std::make_shared<Dictionary>();
};

TEST_F(DictionaryTest, KeepsTheOrderOfAdding) {
    for (const char* key : {"z", "a", "m"})
        dictionary_->Call("Add", {key, std::string(key) + "!"});
    EXPECT_EQ(dictionary_->Call("Keys").AsArray(), (VariantArray{"z", "a", "m"}));
    EXPECT_EQ(dictionary_->Call("Items").AsArray(), (VariantArray{"z!", "a!", "m!"}));
    EXPECT_EQ(dictionary_->Get("Count"), Variant(3));
}

TEST_F(DictionaryTest, ForEachGoesThroughTheKeysThatAreThereAtItsBeginning) {
    for (const char* key : {"z", "a", "m"})
        dictionary_->Call("Add", {key, 1});
    const auto each = dictionary_->NewEnumerator();
    VariantArray keys;
    while (const auto key = each->Next()) {
        keys.push_back(*key);
        dictionary_->Call("Remove", {*key});
    }
    EXPECT_EQ(keys, (VariantArray{"z", "a", "m"}));
    EXPECT_EQ(dictionary_->NewEnumerator()->Next(), std::nullopt);
}

TEST_F(DictionaryTest, AddingAnExistingKeyFailsWith457) {
    dictionary_->Call("Add", {"a", 1});
    EXPECT_EQ(NumberOfError([&] { dictionary_->Call("Add", {"a", 2}); }), 457);
    EXPECT_EQ(dictionary_->Get("Item", {"a"}), Variant(1));
}

TEST_F(DictionaryTest, PuttingAnItemAddsOrReplaces) {
    dictionary_->Put("Item", {"a"}, 1);
    dictionary_->Put("", {"a"}, 2);
    EXPECT_EQ(dictionary_->Get("", {"a"}), Variant(2));
    EXPECT_EQ(dictionary_->Get("Count"), Variant(1));
}

TEST_F(DictionaryTest, ReadingAnUnknownKeyAddsItEmpty) {
    EXPECT_TRUE(dictionary_->Get("Item", {"new"}).IsEmpty());
    EXPECT_EQ(dictionary_->Call("Exists", {"new"}), Variant(true));
}

TEST_F(DictionaryTest, NumbersAreOneKeyAcrossTypesAndTextsAreNot) {
    dictionary_->Call("Add", {1, "one"});
    EXPECT_EQ(dictionary_->Get("Item", {1.0}), Variant("one"));
    EXPECT_EQ(dictionary_->Get("Item", {std::int16_t{1}}), Variant("one"));
    EXPECT_EQ(dictionary_->Call("Exists", {"1"}), Variant(false));
}

TEST_F(DictionaryTest, CompareModeTextIgnoresCase) {
    EXPECT_EQ(dictionary_->Get("CompareMode"), Variant(0));
    dictionary_->Put("CompareMode", 1);
    dictionary_->Call("Add", {"Key", 1});
    EXPECT_EQ(dictionary_->Call("Exists", {"KEY"}), Variant(true));
    EXPECT_EQ(dictionary_->Call("Keys").AsArray(), (VariantArray{"Key"}));
    EXPECT_EQ(NumberOfError([&] { dictionary_->Put("CompareMode", 0); }), 5);
    EXPECT_EQ(NumberOfError([] { Dictionary().Put("CompareMode", 7); }), 5);
}

TEST_F(DictionaryTest, BinaryModeTellsCaseApart) {
    dictionary_->Call("Add", {"a", 1});
    dictionary_->Call("Add", {"A", 2});
    EXPECT_EQ(dictionary_->Get("Count"), Variant(2));
}

TEST_F(DictionaryTest, RemovingKeepsTheOthersInOrder) {
    for (int i = 0; i < 20; ++i)
        dictionary_->Call("Add", {i, i * 10});
    dictionary_->Call("Remove", {5});
    EXPECT_EQ(dictionary_->Get("Count"), Variant(19));
    EXPECT_EQ(dictionary_->Get("Item", {19}), Variant(190));
    EXPECT_EQ(dictionary_->Call("Items").AsArray()[5], Variant(60));
    EXPECT_EQ(NumberOfError([&] { dictionary_->Call("Remove", {5}); }), 32811);
    dictionary_->Call("RemoveAll");
    EXPECT_EQ(dictionary_->Get("Count"), Variant(0));
    dictionary_->Call("Add", {3, 1});
}

TEST_F(DictionaryTest, KeysCanBeRenamed) {
    dictionary_->Call("Add", {"a", 1});
    dictionary_->Call("Add", {"b", 2});
    dictionary_->Put("Key", {"a"}, "c");
    EXPECT_EQ(dictionary_->Call("Keys").AsArray(), (VariantArray{"c", "b"}));
    EXPECT_EQ(NumberOfError([&] { dictionary_->Put("Key", {"c"}, "b"); }), 457);
    EXPECT_EQ(NumberOfError([&] { dictionary_->Put("Key", {"x"}, "y"); }), 32811);
}

TEST_F(DictionaryTest, ObjectsAreKeysByIdentityAndArraysAreNone) {
    const ObjectRef object = std::make_shared<Dictionary>();
    dictionary_->Call("Add", {object, 1});
    EXPECT_EQ(dictionary_->Call("Exists", {object}), Variant(true));
    EXPECT_EQ(dictionary_->Call("Exists", {std::make_shared<Dictionary>()}), Variant(false));
    EXPECT_EQ(NumberOfError([&] { dictionary_->Call("Add", {VariantArray{}, 1}); }), 5);
}

}  // namespace
}  // namespace vicenter::scripting
