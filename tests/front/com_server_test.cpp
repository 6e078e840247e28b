// The library as a COM server: found by ProgID, used, registered and taken away again without a trace.

#include <deque>
#include <functional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "automation/object.h"
#include "platform/com/com_error.h"
#include "platform/com/com_pointer.h"
#include "platform/com/com_value.h"
#include "platform/com/dispatch_object.h"
#include "platform/com/foreign_object.h"

namespace vicenter::front {
namespace {

using automation::Error;
using automation::ObjectRef;
using automation::Variant;
using automation::VariantArray;

const char* const kProgIds[] = {"VelaVICenter.aplication", "VelaVICenter.clsVIData", "VelaVICenter.VbsJson",
                                "VelaVICenter.StringBuilder"};

class ComServer : public testing::Test {
  protected:
    ComServer() {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        library_ = LoadLibraryW(system::os::Wide(VICENTER_LIBRARY).c_str());
        EXPECT_NE(library_, nullptr) << GetLastError();
        EXPECT_EQ(Install(true), S_OK);
    }
    ~ComServer() override {
        EXPECT_EQ(Install(false), S_OK);
        EXPECT_EQ(Export<HRESULT STDMETHODCALLTYPE()>("DllCanUnloadNow")(), S_OK);
        CoUninitialize();
        FreeLibrary(library_);
    }

    template <class Function>
    Function* Export(const char* name) {
        auto* found = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    HRESULT Install(bool install) {
        return Export<HRESULT STDMETHODCALLTYPE(BOOL, LPCWSTR)>("DllInstall")(install, L"user");
    }
    static Error Failure(const std::function<void()>& call) {
        try {
            call();
        } catch (const Error& error) {
            return error;
        }
        ADD_FAILURE() << "nothing failed";
        return Error(0);
    }
    static std::set<std::wstring> KeysBelow(const wchar_t* key) {
        std::set<std::wstring> keys;
        HKEY open = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_READ, &open) != ERROR_SUCCESS) return keys;
        wchar_t name[256];
        for (DWORD i = 0;; ++i) {
            DWORD length = 256;
            if (RegEnumKeyExW(open, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
                break;
            keys.insert(std::wstring(name, length));
        }
        RegCloseKey(open);
        return keys;
    }

    HMODULE library_ = nullptr;
};

TEST_F(ComServer, MakesEachPublicClassByItsProgId) {
    for (const char* progId : kProgIds) {
        const ObjectRef made = com::CreateForeign(progId);
        ASSERT_NE(made, nullptr) << progId;
        EXPECT_EQ("VelaVICenter." + made->TypeName(), progId);
        EXPECT_EQ(Failure([&] { made->Get("NoSuchMember"); }).Number(), 438);
    }
}

TEST_F(ComServer, ValuesTravelBothWays) {
    const ObjectRef json = com::CreateForeign("VelaVICenter.VbsJson");
    const Variant decoded = json->Call("Decode", {R"({"名":"凭证","list":[1,2.5,null,true]})"});
    ASSERT_TRUE(decoded.IsObject());
    EXPECT_EQ(decoded.AsObject()->TypeName(), "Dictionary");
    EXPECT_EQ(decoded.AsObject()->Get("Item", {"名"}), Variant("凭证"));
    EXPECT_EQ(decoded.AsObject()->Get("", {"list"}), Variant(VariantArray{1.0, 2.5, Variant::Null(), true}));
    EXPECT_EQ(json->Call("Encode", {decoded}), Variant(R"({"名":"凭证","list":[1,2.5,null,true]})"));
    const Error failed = Failure([&] { json->Call("Decode", {"{1}"}); });
    EXPECT_EQ(failed.Number(), 8732);
    EXPECT_EQ(failed.Text(), "Expecting property name");
    const auto each = decoded.AsObject()->NewEnumerator();
    ASSERT_NE(each, nullptr);
    EXPECT_EQ(each->Next(), Variant("名"));
}

TEST_F(ComServer, AThousandObjectsOfEachClassLeaveNothingBehind) {
    for (const char* progId : kProgIds) {
        for (int i = 0; i < 1000; ++i)
            ASSERT_NE(com::CreateForeign(progId), nullptr);
    }
    EXPECT_EQ(Export<HRESULT STDMETHODCALLTYPE()>("DllCanUnloadNow")(), S_OK);
}

TEST_F(ComServer, StaysLoadedWhileAnObjectIsHeld) {
    const ObjectRef builder = com::CreateForeign("VelaVICenter.StringBuilder");
    EXPECT_EQ(Export<HRESULT STDMETHODCALLTYPE()>("DllCanUnloadNow")(), S_FALSE);
    builder->Call("Append", {"甲"});
    EXPECT_EQ(builder->Get(""), Variant("甲"));
}

TEST_F(ComServer, RegistrationLeavesNoTrace) {
    ASSERT_EQ(Install(false), S_OK);
    const auto classes = KeysBelow(L"Software\\Classes");
    const auto ids = KeysBelow(L"Software\\Classes\\CLSID");
    ASSERT_EQ(Install(true), S_OK);
    EXPECT_EQ(KeysBelow(L"Software\\Classes").size(), classes.size() + std::size(kProgIds));
    EXPECT_EQ(KeysBelow(L"Software\\Classes\\CLSID").size(), ids.size() + std::size(kProgIds));
    ASSERT_EQ(Install(false), S_OK);
    EXPECT_EQ(KeysBelow(L"Software\\Classes"), classes);
    EXPECT_EQ(KeysBelow(L"Software\\Classes\\CLSID"), ids);
    EXPECT_EQ(Failure([] { com::CreateForeign("VelaVICenter.VbsJson"); }).Number(), 429);
    // Once more is no failure.
    EXPECT_EQ(Install(false), S_OK);
}

// As a host that was compiled against the type library: by the ids and places that it says.
TEST_F(ComServer, EarlyBoundHostsCallByTheTypeLibrary) {
    com::ComPointer<ITypeLib> library;
    ASSERT_EQ(LoadTypeLib(system::os::Wide(VICENTER_LIBRARY).c_str(), library.Receive()), S_OK);
    CLSID id{};
    ASSERT_EQ(CLSIDFromProgID(L"VelaVICenter.StringBuilder", &id), S_OK);
    com::ComPointer<ITypeInfo> coclass;
    ASSERT_EQ(library->GetTypeInfoOfGuid(id, coclass.Receive()), S_OK);
    HREFTYPE reference = 0;
    ASSERT_EQ(coclass->GetRefTypeOfImplType(0, &reference), S_OK);
    com::ComPointer<ITypeInfo> type;
    ASSERT_EQ(coclass->GetRefTypeInfo(reference, type.Receive()), S_OK);
    com::ComPointer<IDispatch> builder;
    ASSERT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, builder.ReceiveAny()), S_OK);
    const auto call = [&](const wchar_t* name, const wchar_t* argument, const VariantArray& values) {
        std::wstring member(name);
        std::wstring named(argument);
        wchar_t* names[] = {member.data(), named.data()};
        MEMBERID ids[2] = {};
        EXPECT_EQ(type->GetIDsOfNames(names, named.empty() ? 1 : 2, ids), S_OK);
        std::deque<com::OwnVariant> held;
        std::vector<VARIANT> passed;
        for (auto value = values.rbegin(); value != values.rend(); ++value)
            passed.push_back(held.emplace_back(*value).Value());
        DISPPARAMS given{passed.data(), &ids[1], static_cast<UINT>(passed.size()), named.empty() ? 0U : 1U};
        com::OwnVariant result;
        EXPECT_EQ(
            builder->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &given, &result.Value(), nullptr, nullptr),
            S_OK);
        return com::FromCom(result.Value());
    };
    call(L"Append", L"", {"abcABC"});
    EXPECT_EQ(call(L"ToString", L"", {}), Variant("abcABC"));
    EXPECT_EQ(call(L"Find", L"", {"C"}), Variant(6));
    // The named one stands behind, as it comes first in the call's own order.
    EXPECT_EQ(call(L"Find", L"start", {"A", 4}), Variant(4));
}

TEST_F(ComServer, WhatIsNotOursIsRefused) {
    void* made = nullptr;
    const auto get = Export<HRESULT STDMETHODCALLTYPE(REFCLSID, REFIID, void**)>("DllGetClassObject");
    EXPECT_EQ(get(IID_IDispatch, IID_IClassFactory, &made), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(Failure([] { com::CreateForeign("VelaVICenter.NoSuchClass"); }).Number(), 429);
}

}  // namespace
}  // namespace vicenter::front
