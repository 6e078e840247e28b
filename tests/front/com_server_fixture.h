#pragma once

// The library as a COM server, registered while a test runs.

#include <functional>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "automation/object.h"
#include "platform/com/com_error.h"
#include "platform/com/com_pointer.h"
#include "platform/com/com_value.h"
#include "platform/com/dispatch_object.h"
#include "platform/com/foreign_object.h"

namespace vicenter::front {

inline const char* const kProgIds[] = {"VelaVICenter.aplication", "VelaVICenter.clsVIData",
                                       "VelaVICenter.VbsJson", "VelaVICenter.StringBuilder",
                                       "VelaVICenter.Host"};

// Loaded, and not registered yet.
class ComLibrary : public testing::Test {
  protected:
    ComLibrary() {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        library_ = LoadLibraryW(Path().c_str());
        EXPECT_NE(library_, nullptr) << GetLastError();
    }
    ~ComLibrary() override {
        EXPECT_EQ(CanUnload(), S_OK);
        CoUninitialize();
        FreeLibrary(library_);
    }

    static std::wstring Path() { return system::os::Wide(VICENTER_LIBRARY); }

    template <class Function>
    Function* Export(const char* name) {
        auto* found = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    HRESULT CanUnload() { return Export<HRESULT STDMETHODCALLTYPE()>("DllCanUnloadNow")(); }
    HRESULT InstallForMachine(bool install) {
        return Export<HRESULT STDMETHODCALLTYPE()>(install ? "DllRegisterServer" : "DllUnregisterServer")();
    }
    HRESULT InstallForUser(bool install) {
        return Export<HRESULT STDMETHODCALLTYPE(BOOL, LPCWSTR)>("DllInstall")(install, L"user");
    }
    static automation::Error Failure(const std::function<void()>& call) {
        try {
            call();
        } catch (const automation::Error& error) {
            return error;
        }
        ADD_FAILURE() << "nothing failed";
        return automation::Error(0);
    }

  private:
    HMODULE library_ = nullptr;
};

class ComServer : public ComLibrary {
  protected:
    // Wine does not look into the user's own classes.
    ComServer() { EXPECT_EQ(InstallForMachine(true), S_OK); }
    ~ComServer() override { EXPECT_EQ(InstallForMachine(false), S_OK); }
};

}  // namespace vicenter::front
