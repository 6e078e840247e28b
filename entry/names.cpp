#include "entry/names.h"

#include "automation/class_registry.h"
#include "platform/system/surroundings.h"

namespace vicenter::entry {

std::string NewGuidText() {
    return system::Surroundings::Current().guids->New().value_or(std::string());
}

std::string MakeTempName(bool useFolder, std::string_view extension, std::string_view folder) {
    for (;;) {
        const std::string guid = NewGuidText();
        std::string name = "T_";
        for (const char c : guid) {
            if (c == '{' || c == '}') continue;
            name += c == '-' ? '_' : c;
        }
        if (!extension.empty()) name.append(".").append(extension);
        if (!useFolder) return name;

        const automation::ObjectRef files = automation::CreateObject("Scripting.FileSystemObject");
        const std::string parent =
            folder.empty() ? files->Call("GetSpecialFolder", {2}).ToText() : std::string(folder);
        std::string path = files->Call("BuildPath", {parent, name}).ToText();
        if (!files->Call("FileExists", {path}).ToBoolean()) return path;
        // Without GUIDs every further name would be the same one.
        if (guid.empty()) throw automation::Error(automation::error_number::kFileAlreadyExists);
    }
}

}  // namespace vicenter::entry
