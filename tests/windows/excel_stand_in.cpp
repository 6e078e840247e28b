// A COM server of its own process that answers to Excel.Application: the built-in workbook server with the
// manners of a foreign one. Registered for the machine: Wine does not look
// into the user's own classes.
//
//   excel_stand_in /regserver [OPTION...]   the options are those of the server that COM then starts
//   excel_stand_in /unregserver
//   excel_stand_in /end                     ends the server, once nobody has an object of it
//   options: --version V       what it says of itself; 16.0
//            --busy N          rejects the first N calls, as a program does in whose window somebody types
//            --refuse-save     SaveAs fails
//            --die-after N     ends without a word in the N-th call

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "automation/error.h"
#include "platform/com/com_object.h"
#include "platform/com/com_pointer.h"
#include "platform/com/dispatch_object.h"
#include "platform/office/excel_objects.h"
#include "platform/system/program.h"

namespace vicenter {
namespace {

using automation::Arguments;
using automation::InvokeKind;
using automation::ObjectRef;
using automation::Variant;

constexpr CLSID kClass = {0x9E5AEA62, 0xC854, 0x4E6B, {0x93, 0xDB, 0xEB, 0xD0, 0x27, 0x3E, 0x76, 0x33}};
constexpr const wchar_t* kClassKey = L"Software\\Classes\\CLSID\\{9E5AEA62-C854-4E6B-93DB-EBD0273E7633}";
constexpr const wchar_t* kNameKey = L"Software\\Classes\\Excel.Application";

struct Manners {
    std::string version = "16.0";
    int busy = 0;
    bool refuseSave = false;
    int dieAfter = 0;
};

Manners manners;

// What the built-in server gives, with those manners.
class Mannered final : public automation::Object {
  public:
    explicit Mannered(ObjectRef inside) : inside_(std::move(inside)) {}

    std::string TypeName() const override { return inside_->TypeName(); }
    bool HasMember(std::string_view name) const override { return inside_->HasMember(name); }
    Variant Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) override {
        if (manners.dieAfter > 0 && --manners.dieAfter == 0) std::_Exit(1);
        if (manners.refuseSave && automation::SameName(name, "SaveAs"))
            throw automation::Error(1004, "磁盘已写保护", "Microsoft Excel");
        for (automation::Argument& argument : arguments) {
            if (!argument.Value().IsObject()) continue;
            const auto& object = std::get<ObjectRef>(argument.Value().Raw());
            if (const auto* own = dynamic_cast<const Mannered*>(object.get()))
                argument.Assign(ObjectRef(own->inside_));
        }
        const Variant result = inside_->Invoke(name, kind, arguments);
        if (!result.IsObject()) return result;
        const auto& object = std::get<ObjectRef>(result.Raw());
        return object ? ObjectRef(std::make_shared<Mannered>(object)) : object;
    }

  private:
    ObjectRef inside_;
};

class Busy final : public com::ComObject<IMessageFilter> {
  public:
    DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
        if (com::LiveDispatches() == 0 || manners.busy == 0) return SERVERCALL_ISHANDLED;
        --manners.busy;
        return SERVERCALL_REJECTED;
    }
    DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD, DWORD) override { return static_cast<DWORD>(-1); }
    DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

  private:
    ~Busy() override = default;
};

class Factory final : public com::ComObject<IClassFactory> {
  public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** result) override {
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        const com::ComPointer<IDispatch> made(com::NewDispatch(
            std::make_shared<Mannered>(std::make_shared<office::ExcelApplication>(manners.version))));
        return made->QueryInterface(id, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    ~Factory() override = default;
};

LSTATUS Set(const std::wstring& key, const std::wstring& value) {
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, value.c_str(),
                           static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

int Register(const std::vector<std::string>& options) {
    std::wstring path(32767, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    std::wstring command = L"\"" + path + L"\"";
    for (const std::string& option : options)
        command += L" " + system::os::Wide(option);
    const bool done =
        Set(std::wstring(kNameKey) + L"\\CLSID", std::wstring(kClassKey).substr(23)) == ERROR_SUCCESS &&
        Set(std::wstring(kClassKey) + L"\\LocalServer32", command) == ERROR_SUCCESS;
    return done ? 0 : 1;
}

int Unregister() {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kNameKey);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey);
    return 0;
}

// Held by a server for as long as its process lives.
HANDLE NewServerMutex() {
    return CreateMutexW(nullptr, FALSE, L"VicenterExcelStandIn");
}

HANDLE NewEndEvent() {
    return CreateEventW(nullptr, TRUE, FALSE, L"VicenterExcelStandInEnd");
}

int EndServer() {
    constexpr DWORD kMostMilliseconds = 60'000;
    SetEvent(NewEndEvent());
    return WaitForSingleObject(NewServerMutex(), kMostMilliseconds) == WAIT_TIMEOUT ? 1 : 0;
}

// Until it is told to end and the last object that was given out is gone; a client that has died gives
// nothing back. A server that ended with its last object would meet the next client on its way out: of that
// Wine says that there is no such class.
int Serve() {
    constexpr UINT kLookMilliseconds = 100;
    constexpr int kMostLooks = 6000;
    WaitForSingleObject(NewServerMutex(), 0);
    const HANDLE end = NewEndEvent();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const com::ComPointer<IMessageFilter> filter(new Busy);
    CoRegisterMessageFilter(filter.Get(), nullptr);
    const com::ComPointer<IClassFactory> factory(new Factory);
    DWORD cookie = 0;
    if (FAILED(
            CoRegisterClassObject(kClass, factory.Get(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &cookie)))
        return 1;
    SetTimer(nullptr, 0, kLookMilliseconds, nullptr);
    MSG message;
    for (int looks = 0; looks < kMostLooks && GetMessageW(&message, nullptr, 0, 0) > 0;) {
        if (message.message == WM_TIMER) ++looks;
        DispatchMessageW(&message);
        if (com::LiveDispatches() == 0 && WaitForSingleObject(end, 0) == WAIT_OBJECT_0) break;
    }
    CoRevokeClassObject(cookie);
    CoUninitialize();
    return 0;
}

int Run(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && arguments[0] == "/regserver")
        return Register({arguments.begin() + 1, arguments.end()});
    if (!arguments.empty() && arguments[0] == "/unregserver") return Unregister();
    if (!arguments.empty() && arguments[0] == "/end") return EndServer();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& option = arguments[i];
        const auto value = [&] { return i + 1 < arguments.size() ? arguments[++i] : std::string(); };
        if (option == "--version") manners.version = value();
        if (option == "--busy") manners.busy = std::atoi(value().c_str());
        if (option == "--refuse-save") manners.refuseSave = true;
        if (option == "--die-after") manners.dieAfter = std::atoi(value().c_str());
    }
    return Serve();
}

}  // namespace
}  // namespace vicenter

int main(int argc, char** argv) {
    return vicenter::Run(vicenter::system::ProgramArguments(argc, argv));
}
