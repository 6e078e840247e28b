#pragma once

// A late-bound object made of lambdas, for tests that stand in for a component of the host.
//
//     auto security = std::make_shared<ScriptedObject>("SecurityInfo");
//     security->On("AccessCheck", [](Arguments& a) { return Variant(true); });
//
// Every use is recorded in Calls() as text: "Name(arg, arg)" or "Name=value".

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "automation/class_registry.h"
#include "automation/object.h"

namespace vicenter::fakes {

using automation::Argument;
using automation::Arguments;
using automation::Variant;

inline std::string Printed(const Variant& value) {
    if (value.IsNull()) return "Null";
    if (value.IsObject() || value.IsArray() || value.IsError()) return "<" + value.TypeName() + ">";
    return value.ToText();
}

class ScriptedObject : public automation::Object {
  public:
    using Member = std::function<Variant(Arguments&)>;

    explicit ScriptedObject(std::string typeName = "Scripted") : typeName_(std::move(typeName)) {}

    ScriptedObject& On(const std::string& name, Member member) {
        members_[name] = std::move(member);
        return *this;
    }
    ScriptedObject& Value(const std::string& name, Variant value) {
        return On(name, [value = std::move(value)](Arguments&) { return value; });
    }

    std::string TypeName() const override { return typeName_; }
    bool HasMember(std::string_view name) const override { return Find(name) != nullptr; }
    Variant Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) override {
        std::string call(name);
        if (kind == automation::InvokeKind::Put) {
            call += "=" + Printed(arguments.back().Value());
            calls_.push_back(call);
            puts_[std::string(name)] = arguments.back().Value();
            if (const Member* member = Find(name)) (*member)(arguments);
            return {};
        }
        call += "(";
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            call += (i > 0 ? ", " : "") + Printed(arguments[i].Value());
        }
        calls_.push_back(call + ")");
        const Member* member = Find(name);
        if (member == nullptr)
            throw automation::Error(automation::error_number::kNoSuchMember, {}, typeName_);
        return (*member)(arguments);
    }

    const std::vector<std::string>& Calls() const { return calls_; }
    void ForgetCalls() { calls_.clear(); }
    Variant PutValue(const std::string& name) const {
        const auto found = puts_.find(name);
        return found == puts_.end() ? Variant() : found->second;
    }

  private:
    const Member* Find(std::string_view name) const {
        for (const auto& [known, member] : members_) {
            if (automation::SameName(known, name)) return &member;
        }
        return nullptr;
    }

    std::string typeName_;
    std::map<std::string, Member> members_;
    std::map<std::string, Variant> puts_;
    std::vector<std::string> calls_;
};

using ScriptedRef = std::shared_ptr<ScriptedObject>;

// Registers one shared object under a ProgID of the process's registry and returns it. Keep a
// ClassRegistry::Restore in the fixture.
inline ScriptedRef RegisterScripted(const std::string& progId) {
    auto object = std::make_shared<ScriptedObject>(progId);
    automation::ClassRegistry::Process().Register(progId, [object] { return object; });
    return object;
}

}  // namespace vicenter::fakes
