#pragma once

// The component's public classes in the process's class registry.

namespace vicenter::store {

// Registers VelaVICenter.aplication and VelaVICenter.clsVIData, and the scripting objects that they use.
void RegisterComponentClasses();

}  // namespace vicenter::store
