#include "platform/com/installed_classes.h"

#include "automation/class_registry.h"
#include "platform/com/com_headers.h"
#include "platform/com/foreign_object.h"

namespace vicenter::com {

namespace {

bool HasCom() {
    APTTYPE type{};
    APTTYPEQUALIFIER qualifier{};
    return SUCCEEDED(CoGetApartmentType(&type, &qualifier));
}

}  // namespace

InstalledClasses::InstalledClasses() {
    BeginHere();
    automation::ClassRegistry::Process().LookFurtherIn(
        [](std::string_view progId) { return CreateForeign(progId); });
}

InstalledClasses::~InstalledClasses() {
    automation::ClassRegistry::Process().LookFurtherIn(nullptr);
    if (begun_ && thread_ == GetCurrentThreadId()) CoUninitialize();
}

void InstalledClasses::BeginHere() {
    begun_ =
        !HasCom() && SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
    thread_ = GetCurrentThreadId();
}

bool InstalledClasses::Has(std::string_view progId) {
    CLSID id{};
    return SUCCEEDED(CLSIDFromProgID(system::os::Wide(progId).c_str(), &id));
}

}  // namespace vicenter::com
