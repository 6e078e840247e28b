#include "front/host_class.h"

#include <memory>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "front/handles.h"
#include "front/last_error.h"
#include "front/variant_bridge.h"

namespace vicenter::front {

using automation::Argument;
using automation::Arguments;
using automation::Error;
using automation::InvokeKind;
using automation::Variant;
namespace error_number = automation::error_number;

namespace {

// Variants for one call, given back at its end.
class CallVariants {
  public:
    explicit CallVariants(std::size_t count) : variants_(count) {}
    CallVariants(const CallVariants&) = delete;
    CallVariants& operator=(const CallVariants&) = delete;
    ~CallVariants() {
        for (vic_variant& variant : variants_)
            Clear(variant);
    }
    vic_variant* Data() { return variants_.data(); }
    vic_variant& operator[](std::size_t index) { return variants_[index]; }

  private:
    std::vector<vic_variant> variants_;
};

vic_kind KindOf(InvokeKind kind) {
    switch (kind) {
        case InvokeKind::Put:
            return VIC_PUT;
        case InvokeKind::Call:
            return VIC_CALL;
        case InvokeKind::Get:
            break;
    }
    return VIC_GET;
}

class HostObject : public automation::Object {
  public:
    HostObject(HostClass definition, void* instance)
        : definition_(std::move(definition)), instance_(instance) {
        ++LiveObjects();
    }
    ~HostObject() override {
        --LiveObjects();
        if (definition_.functions.release != nullptr) definition_.functions.release(instance_);
    }

    std::string TypeName() const override { return definition_.typeName; }

    bool HasMember(std::string_view name) const override {
        if (definition_.functions.has_member == nullptr) return true;
        return definition_.functions.has_member(instance_, std::string(name).c_str()) != 0;
    }

    Variant Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) override {
        CallVariants values(arguments.size());   // what the function sees
        CallVariants targets(arguments.size());  // the variables behind arguments by reference
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            if (!arguments[i].Name().empty())
                throw Error(error_number::kNamedArgumentNotFound, {}, definition_.typeName);
            if (arguments[i].IsByReference()) {
                ToC(arguments[i].Value(), targets[i]);
                values[i].type = VIC_BYREF;
                values[i].value.reference = &targets[i];
            } else {
                ToC(arguments[i].Value(), values[i]);
            }
        }
        const auto self = shared_from_this();  // the function may drop the last share of its own object
        CallVariants result(1);
        ForgetLastError();
        const vic_status status =
            definition_.functions.invoke(instance_, KindOf(kind), std::string(name).c_str(), values.Data(),
                                         arguments.size(), result.Data());
        if (status != 0) {
            Error error = ErrorOfStatus(status);
            if (error.Source().empty()) error.SetSource(definition_.typeName);
            throw error;
        }
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            if (arguments[i].IsByReference()) arguments[i].Assign(FromC(targets[i]));
        }
        return FromC(result[0]);
    }

  private:
    HostClass definition_;
    void* instance_;
};

}  // namespace

HostClass CopyOf(const vic_class* definition) {
    if (definition == nullptr || definition->size < sizeof(vic_class) || definition->invoke == nullptr ||
        definition->type_name == nullptr) {
        throw Error(error_number::kInvalidProcedureCall,
                    "The class has no size, type name or invoke function");
    }
    HostClass copy;
    copy.typeName = CleanText(definition->type_name);
    copy.functions = *definition;
    copy.functions.type_name = nullptr;
    return copy;
}

automation::ObjectRef WrapInstance(const HostClass& definition, void* instance) {
    return std::make_shared<HostObject>(definition, instance);
}

automation::ObjectRef CreateInstance(const HostClass& definition) {
    if (definition.functions.create == nullptr) throw Error(error_number::kCannotCreateObject);
    void* instance = nullptr;
    ForgetLastError();
    const vic_status status = definition.functions.create(definition.functions.data, &instance);
    if (status != 0) throw ErrorOfStatus(status);
    return WrapInstance(definition, instance);
}

}  // namespace vicenter::front
