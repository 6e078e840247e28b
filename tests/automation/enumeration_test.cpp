#include "automation/enumeration.h"

#include <gtest/gtest.h>

#include "automation/member_table.h"

namespace vicenter::automation {
namespace {

// A collection of numbers, the first of which is item 1.
class Numbers : public TableObject<Numbers> {
  public:
    static const MemberTable<Numbers>& Members() {
        static const MemberTable<Numbers> table{
            Property<Numbers>("Count",
                              [](Numbers& self, Arguments&) {
                                  return Variant(static_cast<std::int32_t>(self.numbers.size()));
                              }),
            IndexedProperty<Numbers>("Item", {"index"},
                                     [](Numbers& self, Arguments& a) {
                                         const auto at = static_cast<std::size_t>(a[0].Value().ToInt32());
                                         return Variant(self.numbers.at(at - 1));
                                     }),
        };
        return table;
    }
    std::string TypeName() const override { return "Numbers"; }
    std::unique_ptr<Enumerator> NewEnumerator() override { return OverItems(*this, 1); }

    std::vector<std::int32_t> numbers{3, 1, 2};
};

class Single : public TableObject<Single> {
  public:
    static const MemberTable<Single>& Members() {
        static const MemberTable<Single> table{};
        return table;
    }
    std::string TypeName() const override { return "Single"; }
};

VariantArray All(Enumerator& enumerator) {
    VariantArray all;
    while (auto value = enumerator.Next())
        all.push_back(*value);
    return all;
}

TEST(Enumeration, GoesThroughTheItemsOfACollection) {
    const auto numbers = std::make_shared<Numbers>();
    EXPECT_EQ(All(*numbers->NewEnumerator()), (VariantArray{3, 1, 2}));
    const auto first = numbers->NewEnumerator();
    first->Next();
    EXPECT_EQ(All(*numbers->NewEnumerator()), (VariantArray{3, 1, 2})) << "each begins anew";
    EXPECT_EQ(All(*first), (VariantArray{1, 2}));
}

TEST(Enumeration, EndsEarlierWhenItemsGo) {
    const auto numbers = std::make_shared<Numbers>();
    const auto enumerator = numbers->NewEnumerator();
    EXPECT_EQ(enumerator->Next(), Variant(3));
    numbers->numbers.resize(1);
    EXPECT_EQ(enumerator->Next(), std::nullopt);
}

TEST(Enumeration, KeepsItsCollectionAlive) {
    auto numbers = std::make_shared<Numbers>();
    const auto enumerator = numbers->NewEnumerator();
    numbers.reset();
    EXPECT_EQ(All(*enumerator), (VariantArray{3, 1, 2}));
}

TEST(Enumeration, OfValuesGivesThemInOrderAndNothingAfterwards) {
    const auto enumerator = OverValues({"a", Variant::Null()});
    EXPECT_EQ(enumerator->Next(), Variant("a"));
    EXPECT_EQ(enumerator->Next(), Variant::Null());
    EXPECT_EQ(enumerator->Next(), std::nullopt);
    EXPECT_EQ(enumerator->Next(), std::nullopt);
}

TEST(Enumeration, WhatIsNoCollectionHasNone) {
    EXPECT_EQ(std::make_shared<Single>()->NewEnumerator(), nullptr);
}

}  // namespace
}  // namespace vicenter::automation
