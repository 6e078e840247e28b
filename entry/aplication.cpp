#include "entry/aplication.h"

#include <utility>

#include "automation/lasting.h"
#include "entry/window_factory.h"

namespace vicenter::entry {

using automation::Arguments;
using automation::Error;
using automation::Variant;

namespace {

std::shared_ptr<WindowFactory>& Factory() {
    static const automation::Lasting<std::shared_ptr<WindowFactory>> factory;
    return *factory;
}

}  // namespace

std::shared_ptr<WindowFactory> WindowFactory::Process() {
    return Factory();
}

void WindowFactory::SetProcess(std::shared_ptr<WindowFactory> factory) {
    Factory() = std::move(factory);
}

const automation::MemberTable<aplication>& aplication::Members() {
    static const automation::MemberTable<aplication> table{
        automation::Method<aplication>("ShowVICenter", {},
                                       [](aplication& self, Arguments&) {
                                           self.ShowVICenter();
                                           return Variant();
                                       }),
    };
    return table;
}

void aplication::ShowVICenter() {
    const auto factory = WindowFactory::Process();
    if (!factory) {
        throw Error(automation::error_number::kCannotCreateObject,
                    "No window system is available to show the template center.", kLibraryName);
    }
    try {
        factory->OpenVICenter();
    } catch (Error& error) {
        if (error.Source().empty()) error.SetSource(kLibraryName);
        throw error.While("opening the template center");
    }
}

}  // namespace vicenter::entry
