#include "automation/member_table.h"

#include <gtest/gtest.h>

#include "tests/fakes/error_number.h"

namespace vicenter::automation {
namespace {

class Point : public TableObject<Point> {
  public:
    static const MemberTable<Point>& Members() {
        static const MemberTable<Point> table{
            Property<Point>(
                "X", [](Point& self, Arguments&) { return Variant(self.x_); },
                [](Point& self, Arguments& a) { self.x_ = a[0].Value().ToInt32(); })
                .AsDefault(),
            Property<Point>("Fixed", [](Point&, Arguments&) { return Variant(7); }),
            IndexedProperty<Point>(
                "Item", {"index"},
                [](Point& self, Arguments& a) { return Variant(self.items_[a[0].Value().ToInt32()]); },
                [](Point& self, Arguments& a) {
                    self.items_[a[0].Value().ToInt32()] = a[1].Value().ToInt32();
                }),
            Method<Point>("Describe", {"first", "second?", "third?"},
                          [](Point&, Arguments& a) {
                              std::string text;
                              for (Argument& argument : a) {
                                  text += argument.Value().IsMissing() ? "-" : argument.Value().ToText();
                              }
                              return Variant(text);
                          }),
            Method<Point>("Increase", {"number"},
                          [](Point&, Arguments& a) {
                              a[0].Assign(a[0].Value().ToInt32() + 1);
                              return Variant();
                          }),
        };
        return table;
    }
    std::string TypeName() const override { return "Point"; }

  private:
    int x_ = 0;
    std::map<int, int> items_;
};

using fakes::NumberOfError;

class MemberTableTest : public testing::Test {
  protected:
    ObjectRef point_ = std::make_shared<Point>();
};

TEST_F(MemberTableTest, NamesAreFoundWithoutCase) {
    point_->Put("x", 5);
    EXPECT_EQ(point_->Get("X"), Variant(5));
    EXPECT_TRUE(point_->HasMember("DESCRIBE"));
    EXPECT_FALSE(point_->HasMember("Z"));
}

TEST_F(MemberTableTest, TheEmptyNameIsTheDefaultMember) {
    point_->Put("", 9);
    EXPECT_EQ(point_->Get(""), Variant(9));
}

TEST_F(MemberTableTest, IndexedPropertiesTakeTheValueLast) {
    point_->Put("Item", {3}, 33);
    EXPECT_EQ(point_->Get("Item", {3}), Variant(33));
}

TEST_F(MemberTableTest, MissingOptionalArgumentsArriveAsMissing) {
    EXPECT_EQ(point_->Call("Describe", {"a"}), Variant("a--"));
    EXPECT_EQ(point_->Call("Describe", {"a", "b", "c"}), Variant("abc"));
}

TEST_F(MemberTableTest, NamedArgumentsFindTheirPlace) {
    EXPECT_EQ(point_->Call("Describe", {"a", Argument::Named("THIRD", "c")}), Variant("a-c"));
    EXPECT_EQ(point_->Call("Describe", {Argument::Named("second", "b"), Argument::Named("first", "a")}),
              Variant("ab-"));
}

TEST_F(MemberTableTest, ReferencesAreWrittenBack) {
    Variant number(41);
    point_->Call("Increase", {Argument::ByReference(number)});
    EXPECT_EQ(number, Variant(42));
}

TEST_F(MemberTableTest, NamedReferencesAreWrittenBackAfterArranging) {
    Variant number(1);
    Arguments arguments;
    arguments.push_back(Argument::ByReference(number));
    point_->Invoke("increase", InvokeKind::Call, arguments);
    EXPECT_EQ(number, Variant(2));
}

TEST_F(MemberTableTest, WrongCallsRaiseTheUsualErrors) {
    EXPECT_EQ(NumberOfError([&] { point_->Get("Nothing"); }), 438);
    EXPECT_EQ(NumberOfError([&] { point_->Put("Fixed", 1); }), 450);
    EXPECT_EQ(NumberOfError([&] { point_->Call("Describe"); }), 449);
    EXPECT_EQ(NumberOfError([&] { point_->Call("Describe", {1, 2, 3, 4}); }), 450);
    EXPECT_EQ(NumberOfError([&] { point_->Call("Describe", {1, Argument::Named("nowhere", 2)}); }), 448);
    EXPECT_EQ(NumberOfError([&] { point_->Call("Describe", {1, Argument::Named("first", 2)}); }), 450);
    try {
        point_->Get("Nothing");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Source(), "Point");
    }
}

}  // namespace
}  // namespace vicenter::automation
