#include "front/host_registrar.h"

#include <memory>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "platform/ado/late_bound_framework.h"

namespace vicenter::front {

using automation::Arguments;
using automation::ClassRegistry;
using automation::Error;
using automation::Method;
using automation::ObjectRef;
using automation::Variant;

namespace {

ObjectRef ObjectIn(const Variant& value) {
    return value.IsObject() ? std::get<ObjectRef>(value.Raw()) : nullptr;
}

}  // namespace

const automation::MemberTable<HostRegistrar>& HostRegistrar::Members() {
    using Self = HostRegistrar;
    static const automation::MemberTable<Self> table{
        Method<Self>("Register", {"ProgId", "Component"},
                     [](Self& self, Arguments& a) {
                         self.Register(a[0].Value().ToText(), a[1].Value());
                         return Variant();
                     }),
        Method<Self>("Unregister", {"ProgId"},
                     [](Self& self, Arguments& a) {
                         self.Unregister(a[0].Value().ToText());
                         return Variant();
                     }),
        Method<Self>("SetFramework", {"Framework"},
                     [](Self& self, Arguments& a) {
                         self.SetFramework(a[0].Value());
                         return Variant();
                     }),
    };
    return table;
}

void HostRegistrar::Register(const std::string& progId, const Variant& component) {
    ObjectRef object = ObjectIn(component);
    if (progId.empty() || !object) {
        throw Error(automation::error_number::kInvalidProcedureCall,
                    "A component needs a ProgID and an object", TypeName());
    }
    ClassRegistry::Process().Register(progId, [object = std::move(object)] { return object; });
}

void HostRegistrar::Unregister(const std::string& progId) {
    ClassRegistry::Process().Unregister(progId);
}

void HostRegistrar::SetFramework(const Variant& framework) {
    ObjectRef object = ObjectIn(framework);
    ado::HostFramework::SetProcess(object ? ado::MakeLateBoundFramework(std::move(object)) : nullptr);
}

void RegisterHostRegistrar() {
    ClassRegistry::Process().Register("VelaVICenter.Host", [] { return std::make_shared<HostRegistrar>(); });
}

}  // namespace vicenter::front
