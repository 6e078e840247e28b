#include "automation/variant.h"

#include <limits>

#include <gtest/gtest.h>

#include "automation/member_table.h"
#include "tests/fakes/error_number.h"

namespace vicenter::automation {
namespace {

using fakes::NumberOfError;

TEST(Variant, NamesItsType) {
    EXPECT_EQ(Variant().TypeName(), "Empty");
    EXPECT_EQ(Variant::Null().TypeName(), "Null");
    EXPECT_EQ(Variant(true).TypeName(), "Boolean");
    EXPECT_EQ(Variant(std::int16_t{1}).TypeName(), "Integer");
    EXPECT_EQ(Variant(1).TypeName(), "Long");
    EXPECT_EQ(Variant(std::int64_t{1}).TypeName(), "LongLong");
    EXPECT_EQ(Variant(1.5).TypeName(), "Double");
    EXPECT_EQ(Variant(Decimal(1)).TypeName(), "Decimal");
    EXPECT_EQ(Variant(DateTime()).TypeName(), "Date");
    EXPECT_EQ(Variant("a").TypeName(), "String");
    EXPECT_EQ(Variant(VariantArray{}).TypeName(), "Variant()");
    EXPECT_EQ(Variant(ObjectRef()).TypeName(), "Nothing");
    EXPECT_EQ(Variant::Missing().TypeName(), "Error");
}

TEST(Variant, TextReadsAsNumber) {
    EXPECT_EQ(Variant("12").ToInt32(), 12);
    EXPECT_EQ(Variant(" 12.5 ").ToDouble(), 12.5);
    EXPECT_EQ(Variant("1e2").ToInt16(), 100);
    EXPECT_EQ(Variant("9007199254740993").ToInt64(), 9007199254740993);  // beyond a double's whole numbers
    EXPECT_EQ(Variant("0.1").ToDecimal().ToText(), "0.1");
}

TEST(Variant, TextThatIsNoNumberIsATypeMismatch) {
    for (const char* text : {"", "abc", "12a", "0x10", "1,000", "inf", "nan", "$1"}) {
        EXPECT_EQ(NumberOfError([&] { Variant(text).ToDouble(); }), 13) << text;
        EXPECT_EQ(NumberOfError([&] { Variant(text).ToInt32(); }), 13) << text;
        EXPECT_FALSE(Variant(text).IsNumeric()) << text;
    }
}

TEST(Variant, NullIsRefusedWhereAValueIsNeeded) {
    const Variant null = Variant::Null();
    EXPECT_EQ(NumberOfError([&] { null.ToInt32(); }), 94);
    EXPECT_EQ(NumberOfError([&] { null.ToDouble(); }), 94);
    EXPECT_EQ(NumberOfError([&] { null.ToText(); }), 94);
    EXPECT_EQ(NumberOfError([&] { null.ToBoolean(); }), 94);
    EXPECT_EQ(null.ToTextOrEmpty(), "");
}

TEST(Variant, EmptyCountsAsZeroAndEmptyText) {
    EXPECT_EQ(Variant().ToInt32(), 0);
    EXPECT_EQ(Variant().ToText(), "");
    EXPECT_FALSE(Variant().ToBoolean());
}

TEST(Variant, TrueHasAllBitsSet) {
    EXPECT_EQ(Variant(true).ToInt16(), -1);
    EXPECT_EQ(Variant(true).ToDouble(), -1.0);
    EXPECT_EQ(Variant(true).ToText(), "True");
    EXPECT_TRUE(Variant(-1).ToBoolean());
    EXPECT_TRUE(Variant("TRUE").ToBoolean());
    EXPECT_FALSE(Variant("0").ToBoolean());
}

TEST(Variant, NumbersOutsideTheTypeOverflow) {
    EXPECT_EQ(NumberOfError([] { Variant(32768).ToInt16(); }), 6);
    EXPECT_EQ(NumberOfError([] { Variant(std::int64_t{1} << 31).ToInt32(); }), 6);
    EXPECT_EQ(NumberOfError([] { Variant(1e19).ToInt64(); }), 6);
    EXPECT_EQ(NumberOfError([] { Variant("1e999").ToDouble(); }), 6);
    EXPECT_EQ(NumberOfError([] { Variant(1e60).ToDecimal(); }), 6);
    EXPECT_EQ(Variant(-32768).ToInt16(), -32768);
}

TEST(Variant, HalvesRoundToEven) {
    EXPECT_EQ(Variant(0.5).ToInt32(), 0);
    EXPECT_EQ(Variant(1.5).ToInt32(), 2);
    EXPECT_EQ(Variant("2.5").ToInt32(), 2);
    EXPECT_EQ(Variant(*Decimal::Parse("-3.5")).ToInt32(), -4);
    EXPECT_EQ(Variant(*Decimal::Parse("-2.5")).ToInt32(), -2);
    EXPECT_EQ(Variant(*Decimal::Parse("2.51")).ToInt32(), 3);
}

TEST(Variant, DoublesPrintInTheirShortestForm) {
    EXPECT_EQ(Variant(0.1).ToText(), "0.1");
    EXPECT_EQ(Variant(100.0).ToText(), "100");
    EXPECT_EQ(Variant(-0.0).ToText(), "0");
    EXPECT_EQ(Variant(1.0 / 3).ToText(), "0.3333333333333333");
}

TEST(Variant, DatesReadAndPrint) {
    EXPECT_EQ(Variant("2026-01-31 08:00").ToDate().ToText(), "2026-01-31 08:00:00");
    EXPECT_EQ(Variant(45000.5).ToDate().ToText(), "2023-03-15 12:00:00");
    EXPECT_EQ(NumberOfError([] { Variant("later").ToDate(); }), 13);
    EXPECT_EQ(NumberOfError([] { Variant(1e9).ToDate(); }), 6);
}

TEST(Variant, ArraysAreValues) {
    Variant a(VariantArray{Variant(1), Variant("x")});
    const Variant b = a;
    a = Variant(VariantArray{Variant(2)});
    EXPECT_EQ(b.AsArray().size(), 2U);
    EXPECT_EQ(b, Variant(VariantArray{Variant(1), Variant("x")}));
    EXPECT_EQ(NumberOfError([&] { b.ToText(); }), 13);
    EXPECT_EQ(NumberOfError([&] { b.AsObject(); }), 424);
}

class Boxed : public TableObject<Boxed> {
  public:
    explicit Boxed(Variant value) : value_(std::move(value)) {}
    static const MemberTable<Boxed>& Members() {
        static const MemberTable<Boxed> table{
            Property<Boxed>("Value", [](Boxed& self, Arguments&) { return self.value_; }).AsDefault()};
        return table;
    }
    std::string TypeName() const override { return "Boxed"; }

  private:
    Variant value_;
};

TEST(Variant, AnObjectStandsForItsDefaultMember) {
    EXPECT_EQ(Variant(std::make_shared<Boxed>(Variant("12"))).ToInt32(), 12);
    EXPECT_EQ(Variant(std::make_shared<Boxed>(Variant::Null())).ToTextOrEmpty(), "");
    EXPECT_EQ(NumberOfError([] { Variant(ObjectRef()).ToText(); }), 91);
    EXPECT_EQ(NumberOfError([] { Variant(ObjectRef()).AsObject(); }), 91);
}

TEST(Error, CarriesNumberTextSourceAndChain) {
    Error error(13);
    EXPECT_EQ(error.Text(), "Type mismatch");
    error.SetSource("VelaVICenter");
    error.While("reading a cell").While("loading a template");
    EXPECT_EQ(error.Chain(), (std::vector<std::string>{"reading a cell", "loading a template"}));
    EXPECT_EQ(Error(8732, "Expecting property name").Text(), "Expecting property name");
    EXPECT_EQ(Error(8732).Text(), "Application-defined or object-defined error");
}

}  // namespace
}  // namespace vicenter::automation
