#pragma once

// The support library's classes in the process's class registry.

namespace vicenter::support {

// Registers VelaVICenter.VbsJson and VelaVICenter.StringBuilder, and the dictionary that the former makes.
void RegisterSupportClasses();

}  // namespace vicenter::support
