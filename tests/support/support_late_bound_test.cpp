// The support library as hosts see it: by ProgID and member names.

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "automation/object.h"
#include "support/support_classes.h"

namespace vicenter::support {
namespace {

using automation::CreateObject;
using automation::ObjectRef;
using automation::Variant;
using automation::VariantArray;

class SupportLateBound : public ::testing::Test {
  protected:
    SupportLateBound() { RegisterSupportClasses(); }

    template <class Action>
    static std::string ErrorOf(const Action& action) {
        try {
            action();
            return "none";
        } catch (const automation::Error& error) {
            return std::to_string(error.Number()) + " " + error.Text();
        }
    }

    automation::ClassRegistry::Restore restore_;
};

TEST_F(SupportLateBound, TheCodecGoesBothWays) {
    const ObjectRef json = CreateObject("velavicenter.vbsjson");
    const Variant value = json->Call("decode", {R"({"a":[1,true,null],"b":"凭证"})"});
    EXPECT_EQ(value.TypeName(), "Dictionary");
    EXPECT_EQ(value.AsObject()->Get("Item", {"b"}), Variant("凭证"));
    EXPECT_EQ(json->Call("ENCODE", {value}), Variant(R"({"a":[1,true,null],"b":"凭证"})"));
}

TEST_F(SupportLateBound, TheCodecsEdgeCasesAreThoseOfTheClass) {
    const ObjectRef json = CreateObject("VelaVICenter.VbsJson");
    const auto again = [&](const char* text) {
        return json->Call("Encode", {json->Call("Decode", {text})}).ToText();
    };
    EXPECT_EQ(again("[]"), "[]");
    EXPECT_EQ(again("{}"), "{}");
    EXPECT_EQ(again("01"), "0");         // the rest is left alone
    EXPECT_EQ(again("[x,5]"), "[5,5]");  // a number is searched for, and the place moves on by its length
    EXPECT_EQ(again("[] rest"), "[]");
    EXPECT_EQ(again(R"( { "a" : [ 1 , { "b" : null } ] } )"), R"({"a":[1,{"b":null}]})");
    EXPECT_EQ(again(R"("\u51ed\ud83d\ude00\/\b")"), R"("凭😀/\b")");
    const std::string deep(100'000, '[');
    EXPECT_EQ(ErrorOf([&] { json->Call("Decode", {deep}); }), "8732 Nesting too deep");
    for (const auto& faulty :
         {std::pair{"{1", "8732 Expecting property name"}, std::pair{"{\"a\"", "8732 Expecting : delimiter"},
          std::pair{"[1 2]", "8732 Expecting , delimiter"},
          std::pair{"\"abc", "8732 Unterminated string starting"},
          std::pair{"\"\\x\"", "8732 Invalid escape"}}) {
        EXPECT_EQ(ErrorOf([&] { json->Call("Decode", {faulty.first}); }), faulty.second) << faulty.first;
    }
}

TEST_F(SupportLateBound, TheCodecReadsTheTextOfAnyValue) {
    const ObjectRef json = CreateObject("VelaVICenter.VbsJson");
    EXPECT_EQ(json->Call("Decode", {12}), Variant(12.0));
    EXPECT_EQ(ErrorOf([&] { json->Call("Decode", {Variant::Null()}); }), "94 Invalid use of Null");
    EXPECT_EQ(ErrorOf([&] { json->Call("Decode", {VariantArray{}}); }), "13 Type mismatch");
}

TEST_F(SupportLateBound, TheCodecsErrorsKeepTheirNumberAndText) {
    const ObjectRef json = CreateObject("VelaVICenter.VbsJson");
    EXPECT_EQ(ErrorOf([&] { json->Call("Decode", {"TRUE"}); }), "8732 No JSON object could be ScanOnced");
    EXPECT_EQ(ErrorOf([&] { json->Call("Decode", {"\"\n\""}); }), "8732 Invalid control character");
    EXPECT_EQ(ErrorOf([&] { json->Call("Encode", {json}); }), "8732 None dictionary object");
    EXPECT_EQ(ErrorOf([&] { json->Call("Scan", {"1"}); }),
              "438 Object doesn't support this property or method");
}

TEST_F(SupportLateBound, TheBuilderHasAllItsMembers) {
    const ObjectRef builder = CreateObject("VelaVICenter.StringBuilder");
    EXPECT_EQ(builder->Call("ToString"), Variant(""));
    EXPECT_EQ(builder->Get("ChunkSize").ToInt32(), 8192);
    builder->Put("ChunkSize", 4);
    EXPECT_EQ(builder->Get("ChunkSize").ToInt32(), 4);
    builder->Call("Append", {"凭证"});
    builder->Call("AppendLine", {12});
    builder->Call("Insert", {0, "<"});
    builder->Call("Remove", {1, 1});
    EXPECT_EQ(builder->Call("Find", {"证"}).ToInt32(), 2);
    EXPECT_EQ(builder->Call("Find", {"证", 3}).ToInt32(), 0);
    EXPECT_EQ(builder->Call("Find", {"证", 1, 1}).ToInt32(), 2);
    EXPECT_EQ(builder->Call("ToString"), Variant("<证12\r\n"));
    EXPECT_EQ(Variant(builder).ToText(), "<证12\r\n");
    builder->Call("TrimToSize");
    builder->Call("Clear");
    EXPECT_EQ(builder->Call("ToString"), Variant(""));
}

TEST_F(SupportLateBound, TheBuildersErrorsKeepTheirNumber) {
    const ObjectRef builder = CreateObject("VelaVICenter.StringBuilder");
    builder->Call("Append", {"abc"});
    EXPECT_EQ(ErrorOf([&] { builder->Call("Remove", {4, 1}); }), "9 Subscript out of range");
    EXPECT_EQ(ErrorOf([&] { builder->Call("Insert", {5, "x"}); }), "9 Subscript out of range");
    EXPECT_EQ(ErrorOf([&] { builder->Put("ChunkSize", 0); }), "5 Invalid procedure call or argument");
    EXPECT_EQ(ErrorOf([&] { builder->Call("Remove", {1}); }), "449 Argument not optional");
    EXPECT_EQ(ErrorOf([&] { builder->Put("ToString", 0); }),
              "450 Wrong number of arguments or invalid property assignment");
    EXPECT_EQ(builder->Call("ToString"), Variant("abc"));
}

}  // namespace
}  // namespace vicenter::support
