// What COM calls in this library, and regsvr32: `regsvr32 VelaVICenter.dll` for the machine,
// `regsvr32 /n /i:user VelaVICenter.dll` for the user alone.

#include <limits>

#include "front/com/class_factory.h"
#include "front/com/member_ids.h"
#include "front/com/registration.h"
#include "front/handles.h"
#include "front/library_session.h"
#include "platform/com/com_error.h"
#include "platform/com/com_object.h"
#include "platform/com/dispatch_object.h"
#include "platform/com/member_names.h"

namespace front = vicenter::front;
namespace com = vicenter::com;

namespace {

std::wstring OwnPath() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&OwnPath), &module);
    std::wstring path(std::numeric_limits<short>::max(), L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

HRESULT Install(bool install, front::RegisterFor whom) {
    return com::Guarded(nullptr, [&] {
        return install ? front::RegisterClasses(whom, OwnPath()) : front::UnregisterClasses(whom);
    });
}

// What early-bound clients know. With the library, since an object may be given out and asked for names
// before any class is; again for a class, where there was no memory for it then.
HRESULT MakeReady() noexcept {
    return com::Guarded(nullptr, [] {
        com::ReserveMemberNumbers(front::MemberNames());
        com::AnswerAlsoAs(front::PublicInterfaces());
        return S_OK;
    });
}

const HRESULT kReady = MakeReady();

}  // namespace

extern "C" {

HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID clsid, REFIID id, void** result) {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    if (const HRESULT ready = FAILED(kReady) ? MakeReady() : S_OK; FAILED(ready)) return ready;
    const front::PublicClass* found = front::FindPublicClass(clsid);
    return found == nullptr ? CLASS_E_CLASSNOTAVAILABLE : front::GetClassFactory(*found, id, result);
}

HRESULT STDMETHODCALLTYPE DllCanUnloadNow() {
    if (com::LiveComObjects() != 0 || front::ServerLocks() != 0 || front::LiveObjects() != 0) return S_FALSE;
    // A window may be open that nobody holds, a component of the host's registered.
    return com::Guarded(nullptr, [] { return front::LibrarySession::EndIfUnused() ? S_OK : S_FALSE; });
}

HRESULT STDMETHODCALLTYPE DllRegisterServer() {
    return Install(true, front::RegisterFor::kMachine);
}

HRESULT STDMETHODCALLTYPE DllUnregisterServer() {
    return Install(false, front::RegisterFor::kMachine);
}

HRESULT STDMETHODCALLTYPE DllInstall(BOOL install, LPCWSTR whom) {
    const bool user = whom != nullptr && lstrcmpiW(whom, L"user") == 0;
    return Install(install != FALSE, user ? front::RegisterFor::kUser : front::RegisterFor::kMachine);
}

}  // extern "C"
