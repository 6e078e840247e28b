// Writing values as JSON texts.

#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "platform/scripting/dictionary.h"
#include "support/vbs_json.h"
#include "tests/support/json_testing.h"

namespace vicenter::support {
namespace {

using automation::Argument;
using automation::Arguments;
using automation::DateTime;
using automation::Decimal;
using automation::Variant;
using automation::VariantArray;

std::string Encoded(const Variant& value) {
    return VbsJson().Encode(value);
}

std::string EncodeError(const Variant& value) {
    try {
        return Encoded(value);
    } catch (const automation::Error& error) {
        return std::to_string(error.Number()) + " " + error.Text();
    }
}

// A dictionary that is not the component's own.
class HostDictionary : public automation::Object {
  public:
    explicit HostDictionary(std::string typeName) : typeName_(std::move(typeName)) {}
    std::string TypeName() const override { return typeName_; }
    bool HasMember(std::string_view) const override { return true; }
    Variant Invoke(std::string_view name, automation::InvokeKind, Arguments& arguments) override {
        if (name == "Keys") return VariantArray{"甲", "乙"};
        return "of " + arguments.at(0).Value().AsText();
    }

  private:
    std::string typeName_;
};

TEST(VbsJsonEncode, WritesEveryKindOfValue) {
    EXPECT_EQ(Encoded(Variant::Null()), "null");
    EXPECT_EQ(Encoded(true), "true");
    EXPECT_EQ(Encoded(false), "false");
    EXPECT_EQ(Encoded(std::int16_t{-7}), "-7");
    EXPECT_EQ(Encoded(7), "7");
    EXPECT_EQ(Encoded(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(Encoded("凭证"), "\"凭证\"");
    EXPECT_EQ(Encoded(VariantArray{1, "a", VariantArray{}}), "[1,\"a\",[]]");
    EXPECT_EQ(Encoded(std::make_shared<scripting::Dictionary>()), "{}");
}

TEST(VbsJsonEncode, ValuesThatJsonDoesNotKnowStandInTheirText) {
    EXPECT_EQ(Encoded(Variant()), "null");
    EXPECT_EQ(Encoded(*DateTime::Parse("2026-01-31 08:00:00")), "\"2026-01-31 08:00:00\"");
    EXPECT_EQ(Encoded(*Decimal::Parse("1234567890123456789.10")), "1234567890123456789.1");
    EXPECT_EQ(EncodeError(Variant::Missing()), "13 Type mismatch");
}

TEST(VbsJsonEncode, NumbersTakeTheirShortestTextWithAPoint) {
    EXPECT_EQ(Encoded(0.1), "0.1");
    EXPECT_EQ(Encoded(100000.0), "100000");
    EXPECT_EQ(Encoded(-1234.5), "-1234.5");
    EXPECT_EQ(Encoded(999999999999999.0), "999999999999999");
    EXPECT_EQ(Encoded(1e15), "1e+15");
    EXPECT_EQ(Encoded(1e300), "1e+300");
    EXPECT_EQ(Encoded(0.00001), "0.00001");
    EXPECT_EQ(Encoded(1.5e-7), "1.5e-07");
    EXPECT_EQ(Encoded(-0.0), "0");
    EXPECT_EQ(Encoded(0.05), "0.05");
    EXPECT_EQ(Encoded(-0.0001), "-0.0001");
    EXPECT_EQ(Encoded(12345678901.1001), "12345678901.1001");
    EXPECT_EQ(Encoded(0.00015), "0.00015");
    for (const double value : {0.1 + 0.2, 1.0 / 3, 5e-324, 1.7976931348623157e308, 123456789.012345678})
        EXPECT_EQ(Decoded(Encoded(value)), Variant(value));
}

TEST(VbsJsonEncode, WhatIsNoNumberOverflows) {
    EXPECT_EQ(EncodeError(std::numeric_limits<double>::infinity()), "6 Overflow");
    EXPECT_EQ(EncodeError(std::nan("")), "6 Overflow");
}

TEST(VbsJsonEncode, EscapesQuotesBackslashesAndControlCharactersOnly) {
    EXPECT_EQ(Encoded("\"\\/\b\f\r\n\t"), R"("\"\\/\b\f\r\n\t")");
    EXPECT_EQ(Encoded(std::string("\x00\x01\x0B\x1F\x7F", 5)), "\"\\u0000\\u0001\\u000B\\u001F\x7F\"");
    EXPECT_EQ(Encoded("é😀"), "\"é😀\"");
}

TEST(VbsJsonEncode, EveryTextComesBack) {
    for (std::size_t length = 0; length < 40; ++length) {
        for (const char special : {'"', '\\', '\n', '\x1F', '\0'}) {
            const std::string text =
                std::string(length, 'x') + special + std::string(length % 9, special) + "凭😀";
            EXPECT_EQ(Decoded(Encoded(text)), Variant(text));
        }
    }
    const std::string escapesOnly(100'000, '\x01');
    EXPECT_EQ(Encoded(escapesOnly).size(), 600'002U);
    EXPECT_EQ(Decoded(Encoded(escapesOnly)), Variant(escapesOnly));
}

TEST(VbsJsonEncode, ObjectsAndArraysHaveNoBlanks) {
    auto dictionary = std::make_shared<scripting::Dictionary>();
    dictionary->Add("lines", VariantArray{1, VariantArray{"x"}});
    dictionary->Add("name", "标准模板");
    EXPECT_EQ(Encoded(dictionary), R"({"lines":[1,["x"]],"name":"标准模板"})");
}

TEST(VbsJsonEncode, KeysAreEncodedByTheirType) {
    auto dictionary = std::make_shared<scripting::Dictionary>();
    dictionary->Add("a\"b", 1);
    dictionary->Add(2, "two");
    EXPECT_EQ(Encoded(dictionary), R"({"a\"b":1,2:"two"})");
}

TEST(VbsJsonEncode, AnyObjectNamedDictionaryIsOne) {
    EXPECT_EQ(Encoded(std::make_shared<HostDictionary>("Dictionary")), R"({"甲":"of 甲","乙":"of 乙"})");
}

TEST(VbsJsonEncode, OtherObjectsAreRefused) {
    EXPECT_EQ(EncodeError(std::make_shared<HostDictionary>("Collection")), "8732 None dictionary object");
    EXPECT_EQ(EncodeError(std::make_shared<HostDictionary>("dictionary")), "8732 None dictionary object");
    EXPECT_EQ(EncodeError(automation::ObjectRef()), "8732 None dictionary object");
    EXPECT_EQ(EncodeError(VariantArray{1, automation::ObjectRef()}), "8732 None dictionary object");
}

TEST(VbsJsonEncode, ADictionaryWithinItselfIsRefused) {
    auto dictionary = std::make_shared<scripting::Dictionary>();
    dictionary->Add("self", dictionary);
    EXPECT_EQ(EncodeError(dictionary), "8732 Nesting too deep");
    dictionary->RemoveAll();
}

TEST(VbsJsonEncode, NestingIsBounded) {
    Variant value = VariantArray{};
    for (int i = 1; i < VbsJson::kMaxDepth; ++i)
        value = VariantArray{value};
    EXPECT_EQ(Encoded(value).size(), 2U * VbsJson::kMaxDepth);
    EXPECT_EQ(EncodeError(VariantArray{value}), "8732 Nesting too deep");
}

}  // namespace
}  // namespace vicenter::support
