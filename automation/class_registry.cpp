#include "automation/class_registry.h"

#include <algorithm>
#include <utility>

#include "automation/lasting.h"
#include "text/ascii.h"

namespace vicenter::automation {

bool ClassRegistry::NameLess::operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return text::LowerAscii(x) < text::LowerAscii(y);
    });
}

ClassRegistry& ClassRegistry::Process() {
    static const Lasting<ClassRegistry> registry;
    return *registry;
}

void ClassRegistry::Register(std::string progId, Factory factory) {
    Unregister(progId);
    classes_.emplace(std::move(progId), std::move(factory));
}

void ClassRegistry::Unregister(std::string_view progId) {
    const auto found = classes_.find(progId);
    if (found == classes_.end()) return;
    // What ends with it may call us: the registry is whole by then.
    const auto last = classes_.extract(found);
}

bool ClassRegistry::IsRegistered(std::string_view progId) const {
    return classes_.find(progId) != classes_.end();
}

std::vector<std::string> ClassRegistry::ProgIds() const {
    std::vector<std::string> result;
    result.reserve(classes_.size());
    for (const auto& [progId, factory] : classes_)
        result.push_back(progId);
    return result;
}

ObjectRef ClassRegistry::Create(std::string_view progId) const {
    const auto found = classes_.find(progId);
    ObjectRef object;
    if (found != classes_.end()) {
        const Factory factory = found->second;  // the class may unregister itself while it is created
        object = factory();
    } else if (further_) {
        const Source further = further_;
        object = further(progId);
    }
    if (!object) throw Error(error_number::kCannotCreateObject, {}, std::string(progId));
    return object;
}

ObjectRef CreateObject(std::string_view progId) {
    return ClassRegistry::Process().Create(progId);
}

}  // namespace vicenter::automation
