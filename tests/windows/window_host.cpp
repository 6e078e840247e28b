// A host in C++ whose windows live in its own message loop, as those of a ledger do: the library is found by
// COM, its windows are opened and closed by their frames, and COM is told to free what is unused. (The
// library says then that it may go; the compiler's run time keeps it until the thread ends, for what is the
// thread's own.)
//
//   window_host LIBRARY CONNECT-STRING MODE
//   modes: loop           two rounds of that
//          exit           ends with a window open
//          uninitialize   ends COM with a window open, then itself
// Ends with the line "verdict: N checks, M failures" and as many failures as exit code.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "automation/error.h"
#include "automation/member_table.h"
#include "platform/com/foreign_object.h"
#include "platform/system/program.h"

namespace vicenter {
namespace {

using automation::Arguments;
using automation::ObjectRef;
using automation::Variant;

int checks = 0;
int failures = 0;

void Check(const char* what, bool holds) {
    ++checks;
    if (!holds) ++failures;
    std::printf("%s: %s\n", holds ? "ok" : "FAILED", what);
    std::fflush(stdout);
}

// The host's property manager.
class ShareProps final : public automation::TableObject<ShareProps> {
  public:
    explicit ShareProps(std::string connectString) : connectString_(std::move(connectString)) {}
    static const automation::MemberTable<ShareProps>& Members() {
        static const automation::MemberTable<ShareProps> table{
            automation::Method<ShareProps>("GetProperty", {"Process", "Name"},
                                           [](ShareProps& self, Arguments&) {
                                               return Variant("UserID=1;ConnectString={" +
                                                              self.connectString_ + "};");
                                           }),
        };
        return table;
    }
    std::string TypeName() const override { return "ShareProps"; }

  private:
    std::string connectString_;
};

// Everybody may do everything.
class SecurityInfo final : public automation::TableObject<SecurityInfo> {
  public:
    static const automation::MemberTable<SecurityInfo>& Members() {
        static const automation::MemberTable<SecurityInfo> table{
            automation::Method<SecurityInfo>("AccessCheck", {"Properties", "First", "Second", "Rights"},
                                             [](SecurityInfo&, Arguments&) { return Variant(true); }),
        };
        return table;
    }
    std::string TypeName() const override { return "SecurityInfo"; }
};

constexpr const char* kShareProps = "VelaPropsMgr.ShareProps";
constexpr const char* kSecurity = "VelaEBSBase.SecurityInfo";

bool IsLoaded() {
    return GetModuleHandleW(L"VelaVICenter.dll") != nullptr;
}

HRESULT Install(const std::string& library, const char* name) {
    const HMODULE module = LoadLibraryW(system::os::Wide(library).c_str());
    if (module == nullptr) return E_FAIL;
    const auto install = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)()>(
        reinterpret_cast<void*>(GetProcAddress(module, name)));
    const HRESULT result = install();
    FreeLibrary(module);
    return result;
}

// The windows of this thread that somebody sees and that have a frame of their own.
std::vector<HWND> FramedWindows() {
    std::vector<HWND> windows;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM found) -> BOOL {
            const bool framed = (GetWindowLongW(window, GWL_STYLE) & WS_CAPTION) == WS_CAPTION;
            if (IsWindowVisible(window) != FALSE && framed)
                reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&windows));
    return windows;
}

// Messages until that holds; false when it never does.
template <class Condition>
bool Pump(const Condition& condition) {
    constexpr DWORD kLongest = 60'000;
    const ULONGLONG end = GetTickCount64() + kLongest;
    while (!condition()) {
        if (GetTickCount64() > end) return false;
        constexpr DWORD kNextLook = 100;
        MsgWaitForMultipleObjectsEx(0, nullptr, kNextLook, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    return true;
}

std::int32_t OpenWindows(const ObjectRef& host) {
    return host->Get("OpenWindows").ToInt32();
}

ObjectRef NewHost(const std::string& connectString) {
    const ObjectRef host = com::CreateForeign("VelaVICenter.Host");
    host->Call("Register", {kShareProps, ObjectRef(std::make_shared<ShareProps>(connectString))});
    host->Call("Register", {kSecurity, ObjectRef(std::make_shared<SecurityInfo>())});
    return host;
}

void Open() {
    com::CreateForeign("VelaVICenter.aplication")->Call("ShowVICenter");
}

HRESULT CanUnload() {
    const HMODULE module = GetModuleHandleW(L"VelaVICenter.dll");
    if (module == nullptr) return S_OK;
    return reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)()>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")))();
}

void Round(const std::string& connectString) {
    {
        const ObjectRef host = NewHost(connectString);
        Open();
        Open();
        Check("two windows", OpenWindows(host) == 2);
        Check("they are seen", Pump([] { return FramedWindows().size() == 2; }));
    }
    CoFreeUnusedLibrariesEx(0, 0);
    Check("loaded while windows are open that nobody holds", IsLoaded() && CanUnload() == S_FALSE);
    // As their users do by the frame.
    for (const HWND window : FramedWindows())
        PostMessageW(window, WM_CLOSE, 0, 0);
    Check("they close", Pump([] { return FramedWindows().empty(); }));
    Check("it stays for the host's components", CanUnload() == S_FALSE);
    {
        const ObjectRef host = com::CreateForeign("VelaVICenter.Host");
        for (const char* component : {kShareProps, kSecurity})
            host->Call("Unregister", {component});
    }
    Check("the library may go", CanUnload() == S_OK);
    CoFreeUnusedLibrariesEx(0, 0);
    // What it might have left in the thread's messages would be called now.
    PostThreadMessageW(GetCurrentThreadId(), WM_NULL, 0, 0);
    int after = 0;
    Check("messages as before", Pump([&] { return ++after > 3; }));
}

int Run(const std::vector<std::string>& arguments) {
    const std::string& library = arguments[0];
    const std::string& connectString = arguments[1];
    const std::string& mode = arguments[2];
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Check("registered", Install(library, "DllRegisterServer") == S_OK);
    if (mode == "loop") {
        Round(connectString);
        Round(connectString);
    } else {
        NewHost(connectString);
        Open();
        Check("a window", Pump([] { return FramedWindows().size() == 1; }));
    }
    if (mode != "exit") CoUninitialize();
    if (mode == "uninitialize") {
        Check("loaded when COM has ended", IsLoaded());
        int after = 0;
        Check("the window lives", Pump([&] { return ++after > 10; }) && FramedWindows().size() == 1);
    }
    Check("unregistered", Install(library, "DllUnregisterServer") == S_OK);
    std::printf("verdict: %d checks, %d failures\n", checks, failures);
    std::fflush(stdout);
    return failures;
}

}  // namespace
}  // namespace vicenter

int main(int argc, char** argv) {
    try {
        return vicenter::Run(vicenter::system::ProgramArguments(argc, argv));
    } catch (const vicenter::automation::Error& error) {
        std::printf("FAILED: %d %s\n", static_cast<int>(error.Number()), error.Text().c_str());
        return 100;
    }
}
