// The library in the system's registry, for the user and for the machine, by its own calls and by regsvr32;
// and used with nothing registered, by a manifest.

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "front/include/vicenter/vicenter_com.h"
#include "tests/front/com_server_fixture.h"

namespace vicenter::front {
namespace {

namespace fs = std::filesystem;

// Every value below a key by its path, its kind and its bytes; keys end in "\".
using Values = std::map<std::wstring, std::pair<DWORD, std::string>>;

void Read(HKEY key, const std::wstring& path, Values& values) {
    values[path];
    std::wstring name(16384, L'\0');
    std::string data(65536, '\0');
    for (DWORD i = 0;; ++i) {
        auto length = static_cast<DWORD>(name.size());
        auto size = static_cast<DWORD>(data.size());
        DWORD type = 0;
        const LSTATUS code = RegEnumValueW(key, i, name.data(), &length, nullptr, &type,
                                           reinterpret_cast<BYTE*>(data.data()), &size);
        if (code != ERROR_SUCCESS) break;
        values[path + name.substr(0, length)] = {type, data.substr(0, size)};
    }
    for (DWORD i = 0;; ++i) {
        auto length = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        const std::wstring below = name.substr(0, length);
        HKEY open = nullptr;
        if (RegOpenKeyExW(key, below.c_str(), 0, KEY_READ, &open) != ERROR_SUCCESS) continue;
        Read(open, path + below + L"\\", values);
        RegCloseKey(open);
    }
}

Values Classes(HKEY root) {
    Values values;
    HKEY open = nullptr;
    if (RegOpenKeyExW(root, L"Software\\Classes", 0, KEY_READ, &open) != ERROR_SUCCESS) return values;
    Read(open, L"", values);
    RegCloseKey(open);
    return values;
}

// What has come into the first since the second was read.
std::set<std::wstring> Added(const Values& now, const Values& before) {
    std::set<std::wstring> added;
    for (const auto& [path, value] : now) {
        const auto found = before.find(path);
        if (found == before.end() || found->second != value) added.insert(path);
    }
    return added;
}

void ExpectOnlyOurs(const std::set<std::wstring>& added) {
    EXPECT_FALSE(added.empty());
    for (std::wstring path : added) {
        // The 32-bit programs' view of the same; and names of keys are compared without case.
        constexpr std::wstring_view kOtherView = L"Wow6432Node\\";
        if (path.rfind(kOtherView, 0) == 0) path.erase(0, kOtherView.size());
        if (path.size() >= 7 && lstrcmpiW(path.substr(0, 7).c_str(), L"TypeLib") == 0)
            path.replace(0, 7, L"TypeLib");
        const bool ours =
            path.rfind(L"VelaVICenter.", 0) == 0 || path.rfind(L"TypeLib\\{FE125752-", 0) == 0 ||
            path.rfind(L"CLSID\\{CB676E64-", 0) == 0 || path.rfind(L"CLSID\\{E057ECA1-", 0) == 0 ||
            path.rfind(L"CLSID\\{DAF99C00-", 0) == 0 || path.rfind(L"CLSID\\{956C88A9-", 0) == 0 ||
            path.rfind(L"CLSID\\{FA5C40F4-", 0) == 0 || path.rfind(L"Interface\\{9867BA6C-", 0) == 0 ||
            path.rfind(L"Interface\\{2C1010B2-", 0) == 0 || path.rfind(L"Interface\\{002A486B-", 0) == 0 ||
            path.rfind(L"Interface\\{E946C532-", 0) == 0 || path.rfind(L"Interface\\{656D0DE9-", 0) == 0 ||
            path == L"TypeLib\\" || path == L"CLSID\\" || path == L"Interface\\";
        EXPECT_TRUE(ours) << system::os::Narrow(path);
    }
}

// Whether COM looks into the user's own classes: Wine does not.
bool UsersClassesCount() {
    constexpr const wchar_t* kProbe = L"VelaVICenter.Probe";
    const std::wstring key = std::wstring(L"Software\\Classes\\") + kProbe;
    HKEY made = nullptr;
    HKEY seen = nullptr;
    RegCreateKeyW(HKEY_CURRENT_USER, key.c_str(), &made);
    const bool count = RegOpenKeyExW(HKEY_CLASSES_ROOT, kProbe, 0, KEY_READ, &seen) == ERROR_SUCCESS;
    if (count) RegCloseKey(seen);
    RegCloseKey(made);
    RegDeleteKeyW(HKEY_CURRENT_USER, key.c_str());
    return count;
}

DWORD RunProgram(std::wstring command) {
    STARTUPINFOW how{};
    how.cb = sizeof how;
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &how,
                       &started) == 0)
        return GetLastError();
    WaitForSingleObject(started.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(started.hProcess, &code);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return code;
}

class Registration : public ComLibrary {
  protected:
    Registration() {
        // Every user of Windows has this key; those of Wine have it once something was written there.
        HKEY classes = nullptr;
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Classes", &classes), ERROR_SUCCESS);
        RegCloseKey(classes);
        // A user who has no classes of his own has not these keys either.
        for (const wchar_t* key :
             {L"Software\\Classes\\CLSID", L"Software\\Classes\\Interface", L"Software\\Classes\\TypeLib"})
            RegDeleteKeyW(HKEY_CURRENT_USER, key);
        EXPECT_EQ(Failure([] { com::CreateForeign("VelaVICenter.VbsJson"); }).Number(), 429);
        user_ = Classes(HKEY_CURRENT_USER);
        machine_ = Classes(HKEY_LOCAL_MACHINE);
    }
    void ExpectNothingLeft() {
        EXPECT_EQ(Classes(HKEY_CURRENT_USER), user_);
        EXPECT_EQ(Classes(HKEY_LOCAL_MACHINE), machine_);
        EXPECT_EQ(Failure([] { com::CreateForeign("VelaVICenter.VbsJson"); }).Number(), 429);
    }
    static void ExpectAllClasses() {
        for (const char* progId : kProgIds)
            EXPECT_NE(com::CreateForeign(progId), nullptr) << progId;
    }

    Values user_;
    Values machine_;
};

TEST_F(Registration, ForTheUserLeavesNoTrace) {
    ASSERT_EQ(InstallForUser(true), S_OK);
    if (UsersClassesCount()) ExpectAllClasses();
    ExpectOnlyOurs(Added(Classes(HKEY_CURRENT_USER), user_));
    EXPECT_EQ(Classes(HKEY_LOCAL_MACHINE), machine_);
    // Twice is as good as once.
    ASSERT_EQ(InstallForUser(true), S_OK);
    ASSERT_EQ(InstallForUser(false), S_OK);
    ExpectNothingLeft();
    EXPECT_EQ(InstallForUser(false), S_OK);
}

TEST_F(Registration, ForTheMachineLeavesNoTrace) {
    ASSERT_EQ(InstallForMachine(true), S_OK);
    ExpectAllClasses();
    ExpectOnlyOurs(Added(Classes(HKEY_LOCAL_MACHINE), machine_));
    EXPECT_EQ(Classes(HKEY_CURRENT_USER), user_);
    // The user's is another one.
    ASSERT_EQ(InstallForUser(true), S_OK);
    ASSERT_EQ(InstallForUser(false), S_OK);
    ExpectAllClasses();
    ASSERT_EQ(InstallForMachine(false), S_OK);
    ExpectNothingLeft();
    EXPECT_EQ(InstallForMachine(false), S_OK);
}

TEST_F(Registration, ByTheSystemsOwnProgram) {
    const std::wstring library = L" \"" + Path() + L"\"";
    EXPECT_EQ(RunProgram(L"regsvr32 /s /n /i:user" + library), 0U);
    if (UsersClassesCount()) ExpectAllClasses();
    EXPECT_NE(Classes(HKEY_CURRENT_USER), user_);
    EXPECT_EQ(RunProgram(L"regsvr32 /s /u /n /i:user" + library), 0U);
    ExpectNothingLeft();
    EXPECT_EQ(RunProgram(L"regsvr32 /s" + library), 0U);
    ExpectAllClasses();
    EXPECT_EQ(RunProgram(L"regsvr32 /s /u" + library), 0U);
    ExpectNothingLeft();
}

TEST_F(Registration, TheTypeLibraryIsFoundByItsNumber) {
    ASSERT_EQ(InstallForMachine(true), S_OK);
    GUID id{};
    ASSERT_EQ(CLSIDFromString(L"{FE125752-6EC8-4741-9BFB-F7486F0ACFD9}", &id), S_OK);
    com::ComPointer<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(id, 1, 0, 0, library.Receive()), S_OK);
    ASSERT_TRUE(library);
    EXPECT_EQ(library->GetTypeInfoCount(), 2 * std::size(kProgIds));
    library = {};
    ASSERT_EQ(InstallForMachine(false), S_OK);
    EXPECT_NE(LoadRegTypeLib(id, 1, 0, 0, library.Receive()), S_OK);
}

// A host in another apartment is given a stand-in for the interface that it was compiled with.
TEST_F(Registration, EachInterfaceHasTheSystemsOwnStandIn) {
    CLSID standIn{};
    EXPECT_NE(CoGetPSClsid(VelaVICenter::VbsJson::kInterface, &standIn), S_OK);
    ASSERT_EQ(InstallForMachine(true), S_OK);
    CLSID ofDispatch{};
    ASSERT_EQ(CLSIDFromString(L"{00020420-0000-0000-C000-000000000046}", &ofDispatch), S_OK);
    for (const IID& id : {VelaVICenter::aplication::kInterface, VelaVICenter::clsVIData::kInterface,
                          VelaVICenter::VbsJson::kInterface, VelaVICenter::StringBuilder::kInterface,
                          VelaVICenter::Host::kInterface}) {
        EXPECT_EQ(CoGetPSClsid(id, &standIn), S_OK);
        EXPECT_TRUE(IsEqualCLSID(standIn, ofDispatch));
    }
    ASSERT_EQ(InstallForMachine(false), S_OK);
    ExpectNothingLeft();
}

// What was registered before is registered still when a newer library cannot be.
TEST_F(Registration, OneThatFailsHalfwayChangesNothing) {
    const std::wstring key = L"Software\\Classes\\VelaVICenter.Host";
    const auto block = [&] {  // nothing that lasts can be written below a key that does not
        HKEY made = nullptr;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, key.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE,
                                  nullptr, &made, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(made);
    };
    block();
    const Values blocked = Classes(HKEY_CURRENT_USER);
    EXPECT_TRUE(FAILED(InstallForUser(true)));
    EXPECT_EQ(Classes(HKEY_CURRENT_USER), blocked);
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    ASSERT_EQ(InstallForUser(true), S_OK);
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    block();
    const Values older = Classes(HKEY_CURRENT_USER);
    EXPECT_TRUE(FAILED(InstallForUser(true)));
    EXPECT_EQ(Classes(HKEY_CURRENT_USER), older);
    ASSERT_EQ(InstallForUser(false), S_OK);
    ExpectNothingLeft();
}

// The library of the other width, for programs of 32 bits beside those of 64, has its place in the same keys.
TEST_F(Registration, WhatIsOfTheOtherWidthStays) {
    const std::wstring library = L"Software\\Classes\\TypeLib\\{FE125752-6EC8-4741-9BFB-F7486F0ACFD9}";
    const std::wstring place = library + L"\\1.0\\0\\" + (sizeof(void*) == 8 ? L"win32" : L"win64");
    constexpr wchar_t kOther[] = L"C:\\other.dll";
    ASSERT_EQ(InstallForMachine(true), S_OK);
    ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, place.c_str(), nullptr, REG_SZ, kOther, sizeof kOther),
              ERROR_SUCCESS);
    ASSERT_EQ(InstallForMachine(false), S_OK);
    HKEY open = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, place.c_str(), 0, KEY_READ, &open), ERROR_SUCCESS);
    RegCloseKey(open);
    EXPECT_EQ(RegDeleteTreeW(HKEY_LOCAL_MACHINE, library.c_str()), ERROR_SUCCESS);
    ExpectNothingLeft();
}

// Where the library lies need not be plain; and once nobody uses it COM lets go of the file.
TEST_F(Registration, FromAFolderWithBlanksAndChineseCharacters) {
    const fs::path folder = fs::temp_directory_path() / L"凭证 模板 (com)";
    fs::create_directories(folder);
    const fs::path copy = folder / L"VelaVICenter.dll";
    ASSERT_TRUE(CopyFileW(Path().c_str(), copy.c_str(), FALSE)) << GetLastError();
    ASSERT_EQ(RunProgram(L"regsvr32 /s \"" + copy.wstring() + L"\""), 0U);
    ExpectAllClasses();
    EXPECT_NE(GetModuleHandleW(copy.c_str()), nullptr);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(RunProgram(L"regsvr32 /s /u \"" + copy.wstring() + L"\""), 0U);
    ExpectNothingLeft();
    EXPECT_EQ(GetModuleHandleW(copy.c_str()), nullptr);
    EXPECT_EQ(fs::remove_all(folder), 2U);
}

// As in a host beside the library whose manifest names it: nothing is registered.
TEST_F(Registration, AManifestNeedsNone) {
    const fs::path folder = fs::temp_directory_path() / L"宿主 host (com)";
    fs::create_directories(folder);
    const fs::path copy = folder / L"VelaVICenter.dll";
    ASSERT_TRUE(CopyFileW(Path().c_str(), copy.c_str(), FALSE)) << GetLastError();
    const fs::path manifest = folder / L"宿主.exe.manifest";
    std::ofstream(manifest) << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0"><dependency><dependentAssembly>
<assemblyIdentity type="win32" name="VelaVICenter" version="1.0.0.0" processorArchitecture=")"
                            << (sizeof(void*) == 8 ? "amd64" : "x86")
                            << R"("/></dependentAssembly></dependency></assembly>)";
    const std::wstring source = manifest.wstring();
    ACTCTXW asked{};
    asked.cbSize = sizeof asked;
    asked.lpSource = source.c_str();
    // Where the system looks for assemblies of the host's own; Wine looks beside the manifest whatever stands
    // here.
    const std::wstring place = folder.wstring();
    asked.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    asked.lpAssemblyDirectory = place.c_str();
    const HANDLE context = CreateActCtxW(&asked);
    ASSERT_NE(context, INVALID_HANDLE_VALUE) << GetLastError();
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(context, &cookie));
    ExpectAllClasses();
    EXPECT_NE(GetModuleHandleW(copy.c_str()), nullptr);
    CoFreeUnusedLibrariesEx(0, 0);
    ASSERT_TRUE(DeactivateActCtx(0, cookie));
    ReleaseActCtx(context);
    ExpectNothingLeft();
    EXPECT_EQ(fs::remove_all(folder), 3U);
}

}  // namespace
}  // namespace vicenter::front
