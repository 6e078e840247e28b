#include "front/host_registrar.h"

#include <memory>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "front/host_things.h"

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
        Method<Self>("ProcessEvents", {"Milliseconds"},
                     [](Self& self, Arguments& a) {
                         self.Windows()->Process(a[0].Value().ToInt32());
                         return Variant();
                     }),
        Method<Self>("RunWindows", {},
                     [](Self& self, Arguments&) {
                         self.Windows()->Run();
                         return Variant();
                     }),
        Method<Self>("CloseWindows", {},
                     [](Self& self, Arguments&) {
                         self.Windows()->CloseAll();
                         return Variant();
                     }),
        automation::Property<Self>(
            "OpenWindows",
            [](Self& self, Arguments&) {
                return Variant(static_cast<std::int32_t>(self.Windows()->OpenWindows()));
            },
            nullptr),
    };
    return table;
}

void HostRegistrar::Register(const std::string& progId, const Variant& component) {
    ObjectRef object = ObjectIn(component);
    if (progId.empty() || !object) {
        throw Error(automation::error_number::kInvalidProcedureCall,
                    "A component needs a ProgID and an object", TypeName());
    }
    RegisterForHost(progId, [object = std::move(object)] { return object; });
}

void HostRegistrar::Unregister(const std::string& progId) {
    UnregisterForHost(progId);
}

void HostRegistrar::SetFramework(const Variant& framework) {
    SetFrameworkOfHost(ObjectIn(framework));
}

std::shared_ptr<WindowLoop> HostRegistrar::Windows() const {
    auto windows = windows_.lock();
    if (!windows) {
        throw Error(automation::error_number::kCannotCreateObject, "The template center has been shut down",
                    TypeName());
    }
    return windows;
}

void RegisterHostRegistrar(const std::shared_ptr<WindowLoop>& windows) {
    const std::weak_ptr<WindowLoop> given = windows;
    ClassRegistry::Process().Register("VelaVICenter.Host",
                                      [given] { return std::make_shared<HostRegistrar>(given); });
}

}  // namespace vicenter::front
