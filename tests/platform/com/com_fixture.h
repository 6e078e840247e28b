#pragma once

// COM on the test's thread, and an object with every kind of member.

#include <gtest/gtest.h>

#include "automation/enumeration.h"
#include "automation/member_table.h"
#include "platform/com/com_pointer.h"
#include "platform/com/com_value.h"
#include "platform/com/dispatch_object.h"

namespace vicenter::com {

class ComTest : public testing::Test {
  protected:
    ComTest() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~ComTest() override { CoUninitialize(); }
};

// A cash box: a default property with an index, one without, a method that writes to its arguments, failures,
// a collection of its coins.
class CashBox final : public automation::TableObject<CashBox> {
  public:
    static const automation::MemberTable<CashBox>& Members() {
        using automation::Arguments;
        using automation::IndexedProperty;
        using automation::Method;
        using automation::Property;
        using automation::Variant;
        static const automation::MemberTable<CashBox> table{
            IndexedProperty<CashBox>(
                "Item", {"index"},
                [](CashBox& self, Arguments& a) { return Variant(self.coins.at(At(a[0].Value()))); },
                [](CashBox& self, Arguments& a) { self.coins.at(At(a[0].Value())) = a[1].Value().ToInt32(); })
                .AsDefault(),
            Property<CashBox>("Count",
                              [](CashBox& self, Arguments&) {
                                  return Variant(static_cast<std::int32_t>(self.coins.size()));
                              }),
            Property<CashBox>(
                "Owner", [](CashBox& self, Arguments&) { return self.owner; },
                [](CashBox& self, Arguments& a) { self.owner = a[0].Value(); }),
            Property<CashBox>("Self",
                              [](CashBox& self, Arguments&) { return Variant(self.shared_from_this()); }),
            Method<CashBox>("Echo", {"value"}, [](CashBox&, Arguments& a) { return a[0].Value(); }),
            Method<CashBox>("Take", {"amount", "from?", "left?"},
                            [](CashBox&, Arguments& a) {
                                std::string seen;
                                for (const automation::Argument& argument : a)
                                    seen += (argument.Value().IsMissing() ? "-" : argument.Value().ToText()) +
                                            ";";
                                a[0].Assign(a[0].Value().ToInt32() + 1);
                                return Variant(seen);
                            }),
            Method<CashBox>(
                "Break", {},
                [](CashBox&, Arguments&) -> Variant { throw automation::Error(9, "钱箱坏了", "CashBox"); }),
        };
        return table;
    }
    std::string TypeName() const override { return "CashBox"; }
    std::unique_ptr<automation::Enumerator> NewEnumerator() override {
        return automation::OverItems(*this, 0);
    }

    std::vector<std::int32_t> coins{5, 10, 50};
    automation::Variant owner;

  private:
    static std::size_t At(const automation::Variant& index) {
        return static_cast<std::size_t>(index.ToInt32());
    }
};

inline ComPointer<IDispatch> DispatchOf(const automation::ObjectRef& object) {
    return ComPointer<IDispatch>(NewDispatch(object));
}

}  // namespace vicenter::com
