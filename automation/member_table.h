#pragma once

// Exposes the members of a C++ class once, by a table:
//
//     class Point : public TableObject<Point> {
//       public:
//         static const MemberTable<Point>& Members();
//         std::string TypeName() const override { return "Point"; }
//         double X() const; void SetX(double);
//     };
//     const MemberTable<Point>& Point::Members() {
//         static const MemberTable<Point> table{
//             Property<Point>("X", [](Point& self, Arguments&) { return Variant(self.X()); },
//                             [](Point& self, Arguments& a) { self.SetX(a[0].Value().ToDouble()); }),
//             Method<Point>("MoveBy", {"dx", "dy"}, [](Point& self, Arguments& a) { ...; return Variant();
//             }),
//         };
//         return table;
//     }
//
// Declared argument names serve named arguments; a name that ends in "?" is optional and arrives as
// Variant::Missing(). A table's members arrive in the declared order whatever way the caller named them, so a
// handler indexes freely up to the number of declared arguments. For a Put the value follows the indexes.

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "automation/object.h"

namespace vicenter::automation {

struct ArgumentNames {
    ArgumentNames() = default;
    ArgumentNames(std::initializer_list<std::string> list) : names(list) {}
    std::vector<std::string> names;
};

// What documentation and checks need to know of a member, without its class.
struct MemberInfo {
    std::string name;
    std::vector<std::string> arguments;  // "?" behind optional ones
    bool readable = false;
    bool writable = false;
    bool method = false;
    bool isDefault = false;
};

// Puts the caller's arguments in the declared order, fills missing optional ones and checks the count.
// `values` is the number of trailing values that are not declared (1 for a Put, else 0).
void ArrangeArguments(const MemberInfo& member, Arguments& arguments, std::size_t values);

template <class T>
struct Member {
    using Reader = std::function<Variant(T&, Arguments&)>;
    using Writer = std::function<void(T&, Arguments&)>;

    MemberInfo info;
    Reader read;
    Writer write;

    Member AsDefault() && {
        info.isDefault = true;
        return std::move(*this);
    }
};

template <class T>
Member<T> Method(std::string name, ArgumentNames arguments, typename Member<T>::Reader call) {
    return {
        {std::move(name), std::move(arguments.names), false, false, true, false}, std::move(call), nullptr};
}

template <class T>
Member<T> Property(std::string name, typename Member<T>::Reader read,
                   typename Member<T>::Writer write = nullptr) {
    MemberInfo info{std::move(name), {}, read != nullptr, write != nullptr, false, false};
    return {std::move(info), std::move(read), std::move(write)};
}

template <class T>
Member<T> IndexedProperty(std::string name, ArgumentNames indexes, typename Member<T>::Reader read,
                          typename Member<T>::Writer write = nullptr) {
    MemberInfo info{
        std::move(name), std::move(indexes.names), read != nullptr, write != nullptr, false, false};
    return {std::move(info), std::move(read), std::move(write)};
}

template <class T>
class MemberTable {
  public:
    MemberTable(std::initializer_list<Member<T>> members) : members_(members) {}

    const Member<T>* Find(std::string_view name) const {
        for (const Member<T>& member : members_) {
            if (name.empty() ? member.info.isDefault : SameName(member.info.name, name)) return &member;
        }
        return nullptr;
    }
    const std::vector<Member<T>>& All() const { return members_; }

  private:
    std::vector<Member<T>> members_;
};

// Base of classes with a table: T::Members() gives it.
template <class T, class Base = Object>
class TableObject : public Base {
  public:
    using Base::Base;

    bool HasMember(std::string_view name) const override { return T::Members().Find(name) != nullptr; }

    Variant Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) override {
        const Member<T>* member = T::Members().Find(name);
        if (member == nullptr) throw Error(error_number::kNoSuchMember, {}, this->TypeName());
        auto& self = static_cast<T&>(*this);
        if (kind == InvokeKind::Put) {
            if (!member->write) throw Error(error_number::kWrongArgumentCount, {}, this->TypeName());
            ArrangeArguments(member->info, arguments, 1);
            member->write(self, arguments);
            return {};
        }
        if (!member->read) throw Error(error_number::kWrongArgumentCount, {}, this->TypeName());
        ArrangeArguments(member->info, arguments, 0);
        return member->read(self, arguments);
    }
};

}  // namespace vicenter::automation
