#pragma once

// Late-bound objects: named members called with variants.
//
// Objects are owned through ObjectRef and live on the user-interface thread. A member name is compared
// without regard to case. The empty name stands for the default member. Failures are thrown as Error:
//   438 no such member, 448 unknown named argument, 449 missing argument, 450 too many arguments.

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/variant.h"

namespace vicenter::automation {

// How a member is addressed. Get and Call are alike for methods; Put assigns, its value is the last argument.
enum class InvokeKind { Get, Put, Call };

// One argument: a value, or a reference to the caller's variable; optionally named.
class Argument {
  public:
    // Arguments read like values at the call; copies and moves are other constructors, since an argument
    // converts to no value.
    template <class T>
    requires std::convertible_to<T, Variant>
    // NOLINTNEXTLINE(bugprone-forwarding-reference-overload,google-explicit-constructor)
    Argument(T&& value) : value_(std::forward<T>(value)) {}

    static Argument ByReference(Variant& variable) {
        Argument argument{Variant()};
        argument.variable_ = &variable;
        return argument;
    }
    static Argument Named(std::string name, Variant value) {
        Argument argument{std::move(value)};
        argument.name_ = std::move(name);
        return argument;
    }

    const Variant& Value() const { return variable_ ? *variable_ : value_; }
    bool IsByReference() const { return variable_ != nullptr; }
    const std::string& Name() const { return name_; }
    // Writes to the caller's variable; without one only to the argument itself.
    void Assign(Variant value) { (variable_ ? *variable_ : value_) = std::move(value); }

  private:
    Variant value_;
    Variant* variable_ = nullptr;
    std::string name_;
};

using Arguments = std::vector<Argument>;

// What a client's For Each goes through, value by value.
class Enumerator {
  public:
    Enumerator() = default;
    Enumerator(const Enumerator&) = delete;
    Enumerator& operator=(const Enumerator&) = delete;
    virtual ~Enumerator() = default;
    // Nothing behind the last one.
    virtual std::optional<Variant> Next() = 0;
};

class Object : public std::enable_shared_from_this<Object> {
  public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    // The class name that clients see, for instance "Dictionary".
    virtual std::string TypeName() const = 0;
    virtual bool HasMember(std::string_view name) const = 0;
    virtual Variant Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) = 0;
    // The values of a collection, from the first one on; none for an object that is no collection.
    virtual std::unique_ptr<Enumerator> NewEnumerator() { return nullptr; }

    Variant Get(std::string_view name, Arguments arguments = {}) {
        return Invoke(name, InvokeKind::Get, arguments);
    }
    Variant Call(std::string_view name, Arguments arguments = {}) {
        return Invoke(name, InvokeKind::Call, arguments);
    }
    void Put(std::string_view name, Variant value) {
        Arguments arguments{Argument(std::move(value))};
        Invoke(name, InvokeKind::Put, arguments);
    }
    // Indexed property: Put("Item", {key}, value).
    void Put(std::string_view name, Arguments indexes, Variant value) {
        indexes.emplace_back(std::move(value));
        Invoke(name, InvokeKind::Put, indexes);
    }
};

// Member names compare so: ASCII letters without case, all other bytes as they are.
bool SameName(std::string_view a, std::string_view b);

}  // namespace vicenter::automation
