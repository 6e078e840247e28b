#include "front/host_things.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "automation/lasting.h"
#include "platform/ado/late_bound_framework.h"

namespace vicenter::front {

using automation::ClassRegistry;

namespace {

struct Things {
    std::vector<std::string> classes;  // by ProgID
    bool framework = false;
};

Things& OfHost() {
    static const automation::Lasting<Things> things;
    return *things;
}

void Forget(std::string_view progId) {
    std::erase_if(OfHost().classes,
                  [&](const std::string& known) { return automation::SameName(known, progId); });
}

}  // namespace

void RegisterForHost(const std::string& progId, ClassRegistry::Factory factory) {
    Forget(progId);
    OfHost().classes.push_back(progId);
    ClassRegistry::Process().Register(progId, std::move(factory));
}

void UnregisterForHost(std::string_view progId) {
    Forget(progId);
    ClassRegistry::Process().Unregister(progId);
}

void SetFrameworkOfHost(automation::ObjectRef framework) {
    OfHost().framework = framework != nullptr;
    ado::HostFramework::SetProcess(framework ? ado::MakeLateBoundFramework(std::move(framework)) : nullptr);
}

bool HasThingsOfHost() {
    return OfHost().framework || !OfHost().classes.empty();
}

void GiveBackThingsOfHost() {
    SetFrameworkOfHost(nullptr);
    for (const std::string& progId : std::exchange(OfHost().classes, {}))
        ClassRegistry::Process().Unregister(progId);
}

}  // namespace vicenter::front
