#pragma once

// What a host puts into the process by whichever way in: components, its connection service. User-interface
// thread. What is given back may call us, and even put more there.

#include <string>
#include <string_view>

#include "automation/class_registry.h"

namespace vicenter::front {

void RegisterForHost(const std::string& progId, automation::ClassRegistry::Factory factory);
void UnregisterForHost(std::string_view progId);
// None puts plain connections back.
void SetFrameworkOfHost(automation::ObjectRef framework);

// Some of it stands.
bool HasThingsOfHost();
// Gives all of it back.
void GiveBackThingsOfHost();

}  // namespace vicenter::front
