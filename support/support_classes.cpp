#include "support/support_classes.h"

#include <memory>

#include "automation/class_registry.h"
#include "platform/scripting/file_system_object.h"
#include "support/string_builder.h"
#include "support/vbs_json.h"

namespace vicenter::support {

void RegisterSupportClasses() {
    scripting::RegisterScripting();
    auto& registry = automation::ClassRegistry::Process();
    registry.Register("VelaVICenter.VbsJson", [] { return std::make_shared<VbsJson>(); });
    registry.Register("VelaVICenter.StringBuilder", [] { return std::make_shared<StringBuilder>(); });
}

}  // namespace vicenter::support
