#include "store/component_classes.h"

#include <string>

#include "automation/class_registry.h"
#include "entry/aplication.h"
#include "platform/scripting/file_system_object.h"
#include "store/cls_vi_data.h"

namespace vicenter::store {

void RegisterComponentClasses() {
    scripting::RegisterScripting();
    auto& registry = automation::ClassRegistry::Process();
    const std::string library = std::string(entry::kLibraryName) + ".";
    registry.Register(library + "aplication", [] { return std::make_shared<entry::aplication>(); });
    registry.Register(library + "clsVIData", [] { return std::make_shared<clsVIData>(); });
}

}  // namespace vicenter::store
