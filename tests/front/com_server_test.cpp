// The library as a COM server: found by ProgID and used, late-bound and early-bound.

#include <algorithm>
#include <deque>
#include <memory>
#include <set>
#include <thread>

#include "automation/member_table.h"
#include "front/include/vicenter/vicenter.h"
#include "front/include/vicenter/vicenter_com.h"
#include "tests/front/com_server_fixture.h"

namespace vicenter::front {
namespace {

using automation::Error;
using automation::ObjectRef;
using automation::Variant;
using automation::VariantArray;

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
    // The system's own dictionary as well.
    const ObjectRef dictionary = com::CreateForeign("Scripting.Dictionary");
    dictionary->Call("Add", {"乙", decoded});
    EXPECT_EQ(json->Call("Encode", {dictionary}),
              Variant(R"({"乙":{"名":"凭证","list":[1,2.5,null,true]}})"));
    const Error failed = Failure([&] { json->Call("Decode", {"{1}"}); });
    EXPECT_EQ(failed.Number(), 8732);
    EXPECT_EQ(failed.Text(), "Expecting property name");
    const auto each = decoded.AsObject()->NewEnumerator();
    ASSERT_NE(each, nullptr);
    EXPECT_EQ(each->Next(), Variant("名"));
}

// Blocks in use on all heaps of the process; the library takes its memory from the same ones.
std::size_t BlocksInUse() {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
    heaps.resize(
        std::min<std::size_t>(heaps.size(), GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data())));
    std::size_t blocks = 0;
    for (const HANDLE heap : heaps) {
        HeapLock(heap);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry))
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        HeapUnlock(heap);
    }
    return blocks;
}

TEST_F(ComServer, AThousandObjectsOfEachClassLeaveNothingBehind) {
    constexpr std::size_t kObjects = 1000;
    constexpr std::size_t kNoise = 50;  // what the system itself keeps meanwhile
    for (const char* progId : kProgIds) {
        const auto make = [&](std::size_t count) {
            for (std::size_t i = 0; i < count; ++i)
                ASSERT_NE(com::CreateForeign(progId), nullptr);
        };
        make(kObjects / 10);  // what the first ones make once and for all
        const std::size_t before = BlocksInUse();
        make(kObjects);
        EXPECT_LT(BlocksInUse(), before + kNoise) << progId;
        // One that is held is seen.
        std::vector<ObjectRef> held;
        for (std::size_t i = 0; i < kObjects; ++i)
            held.push_back(com::CreateForeign(progId));
        EXPECT_GE(BlocksInUse(), before + kObjects) << progId;
    }
    EXPECT_EQ(CanUnload(), S_OK);
}

TEST_F(ComServer, StaysLoadedWhileAnObjectIsHeld) {
    const ObjectRef builder = com::CreateForeign("VelaVICenter.StringBuilder");
    EXPECT_EQ(CanUnload(), S_FALSE);
    builder->Call("Append", {"甲"});
    EXPECT_EQ(builder->Get(""), Variant("甲"));
}

TEST_F(ComServer, StaysLoadedWhileAnEnumeratorOrATypeIsHeld) {
    const auto dictionary = [] {
        const ObjectRef decoded =
            com::CreateForeign("VelaVICenter.VbsJson")->Call("Decode", {R"({"a":1})"}).AsObject();
        return com::ComPointer<IDispatch>(com::NewDispatch(decoded));
    };
    com::ComPointer<IEnumVARIANT> each;
    {
        DISPPARAMS none{};
        com::OwnVariant made;
        ASSERT_EQ(dictionary()->Invoke(DISPID_NEWENUM, IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                                       &made.Value(), nullptr, nullptr),
                  S_OK);
        ASSERT_EQ(made.Value().vt, VT_UNKNOWN);
        ASSERT_EQ(made.Value().punkVal->QueryInterface(IID_IEnumVARIANT, each.ReceiveAny()), S_OK);
    }
    EXPECT_EQ(CanUnload(), S_FALSE);
    com::OwnVariant first;
    EXPECT_EQ(each->Next(1, &first.Value(), nullptr), S_OK);
    EXPECT_EQ(com::FromCom(first.Value()), Variant("a"));
    each = {};
    EXPECT_EQ(CanUnload(), S_OK);
    com::ComPointer<ITypeInfo> type;
    ASSERT_EQ(dictionary()->GetTypeInfo(0, 0, type.Receive()), S_OK);
    EXPECT_EQ(CanUnload(), S_FALSE);
    type = {};
    EXPECT_EQ(CanUnload(), S_OK);
}

// Neither made nor given back anywhere else.
TEST_F(ComServer, AThreadThatHasEndedLeavesTheLibraryToTheNext) {
    const auto use = [](HRESULT& made, const CLSID& id) {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        com::ComPointer<IDispatch> object;
        made = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveAny());
        object = {};
        CoUninitialize();
    };
    CLSID id{};
    ASSERT_EQ(CLSIDFromProgID(L"VelaVICenter.StringBuilder", &id), S_OK);
    for (int i = 0; i < 3; ++i) {
        HRESULT made = E_FAIL;
        std::thread([&] { use(made, id); }).join();
        EXPECT_EQ(made, S_OK) << i;
    }
    EXPECT_EQ(CanUnload(), S_OK);
    const ObjectRef builder = com::CreateForeign("VelaVICenter.StringBuilder");
    builder->Call("Append", {"甲"});
    EXPECT_EQ(builder->Get(""), Variant("甲"));
}

// COM asks again and again whether the library may go.
TEST_F(ComServer, WhatAHostHasRegisteredStandsUntilItIsTakenBack) {
    const auto host = [] { return com::CreateForeign("VelaVICenter.Host"); };
    const ObjectRef settings = com::CreateForeign("Scripting.Dictionary");
    host()->Call("Register", {"VelaTest.Settings", settings});
    EXPECT_EQ(CanUnload(), S_FALSE);
    host()->Call("Register", {"velatest.settings", settings});
    host()->Call("Unregister", {"VELATEST.Settings"});
    EXPECT_EQ(CanUnload(), S_OK);
    host()->Call("SetFramework", {settings});
    EXPECT_EQ(CanUnload(), S_FALSE);
    host()->Call("SetFramework", {ObjectRef()});
    EXPECT_EQ(CanUnload(), S_OK);
}

// As a host in C++ that was compiled with the numbers of the header.
class EarlyBound : public ComServer {
  protected:
    static com::ComPointer<IDispatch> Make(REFCLSID id, REFIID interfaceId) {
        com::ComPointer<IDispatch> made;
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, interfaceId, made.ReceiveAny()), S_OK);
        return made;
    }
    // The last `named.size()` values belong to these places.
    static Variant Call(const com::ComPointer<IDispatch>& object, DISPID member, const VariantArray& values,
                        std::vector<DISPID> named = {}) {
        std::deque<com::OwnVariant> held;
        std::vector<VARIANT> passed;
        for (auto value = values.rbegin(); value != values.rend(); ++value)
            passed.push_back(held.emplace_back(*value).Value());
        DISPPARAMS given{passed.data(), named.data(), static_cast<UINT>(passed.size()),
                         static_cast<UINT>(named.size())};
        com::OwnVariant result;
        EXPECT_EQ(
            object->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, &given, &result.Value(), nullptr, nullptr),
            S_OK);
        return com::FromCom(result.Value());
    }
};

TEST_F(EarlyBound, EachClassAnswersToItsInterface) {
    const struct {
        const char* progId;
        CLSID id;
        IID interfaceId;
    } classes[] = {
        {"VelaVICenter.aplication", VelaVICenter::aplication::kClass, VelaVICenter::aplication::kInterface},
        {"VelaVICenter.clsVIData", VelaVICenter::clsVIData::kClass, VelaVICenter::clsVIData::kInterface},
        {"VelaVICenter.VbsJson", VelaVICenter::VbsJson::kClass, VelaVICenter::VbsJson::kInterface},
        {"VelaVICenter.StringBuilder", VelaVICenter::StringBuilder::kClass,
         VelaVICenter::StringBuilder::kInterface},
        {"VelaVICenter.Host", VelaVICenter::Host::kClass, VelaVICenter::Host::kInterface},
    };
    ASSERT_EQ(std::size(classes), std::size(kProgIds));
    for (const auto& one : classes) {
        CLSID found{};
        EXPECT_EQ(CLSIDFromProgID(system::os::Wide(one.progId).c_str(), &found), S_OK);
        EXPECT_TRUE(IsEqualCLSID(found, one.id)) << one.progId;
        const auto made = Make(one.id, one.interfaceId);
        ASSERT_TRUE(made) << one.progId;
        com::ComPointer<ISupportErrorInfo> errors;
        ASSERT_EQ(made->QueryInterface(IID_ISupportErrorInfo, errors.ReceiveAny()), S_OK);
        EXPECT_EQ(errors->InterfaceSupportsErrorInfo(one.interfaceId), S_OK);
        // Nobody else's.
        com::ComPointer<IUnknown> other;
        EXPECT_EQ(made->QueryInterface(one.id, other.ReceiveAny()), E_NOINTERFACE);
    }
    const auto json = Make(VelaVICenter::VbsJson::kClass, VelaVICenter::VbsJson::kInterface);
    com::ComPointer<IUnknown> builder;
    EXPECT_EQ(json->QueryInterface(VelaVICenter::StringBuilder::kInterface, builder.ReceiveAny()),
              E_NOINTERFACE);
}

TEST_F(EarlyBound, MembersAreCalledByTheirNumbers) {
    using VelaVICenter::StringBuilder;
    const auto builder = Make(StringBuilder::kClass, StringBuilder::kInterface);
    ASSERT_TRUE(builder);
    Call(builder, StringBuilder::Append, {"abcABC"});
    EXPECT_EQ(Call(builder, StringBuilder::ToString, {}), Variant("abcABC"));
    EXPECT_EQ(Call(builder, StringBuilder::Find, {"C"}), Variant(6));
    // The second argument by its place in the declaration.
    EXPECT_EQ(Call(builder, StringBuilder::Find, {"A", 4}, {1}), Variant(4));
    using VelaVICenter::clsVIData;
    EXPECT_EQ(Call(Make(clsVIData::kClass, clsVIData::kInterface), clsVIData::mTransMode, {}), Variant(2));
}

TEST_F(EarlyBound, TheTypeLibraryTellsTheSameNumbers) {
    com::ComPointer<ITypeLib> library;
    ASSERT_EQ(LoadTypeLib(Path().c_str(), library.Receive()), S_OK);
    com::ComPointer<ITypeInfo> coclass;
    ASSERT_EQ(library->GetTypeInfoOfGuid(VelaVICenter::StringBuilder::kClass, coclass.Receive()), S_OK);
    HREFTYPE reference = 0;
    ASSERT_EQ(coclass->GetRefTypeOfImplType(0, &reference), S_OK);
    com::ComPointer<ITypeInfo> type;
    ASSERT_EQ(coclass->GetRefTypeInfo(reference, type.Receive()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualIID(attributes->guid, VelaVICenter::StringBuilder::kInterface));
    type->ReleaseTypeAttr(attributes);
    wchar_t find[] = L"Find";
    wchar_t start[] = L"start";
    wchar_t* names[] = {find, start};
    MEMBERID ids[2] = {};
    ASSERT_EQ(type->GetIDsOfNames(names, 2, ids), S_OK);
    EXPECT_EQ(ids[0], VelaVICenter::StringBuilder::Find);
    EXPECT_EQ(ids[1], 1);
}

TEST_F(ComServer, AnotherThreadIsRefused) {
    const ObjectRef own = com::CreateForeign("VelaVICenter.StringBuilder");
    CLSID id{};
    ASSERT_EQ(CLSIDFromProgID(L"VelaVICenter.StringBuilder", &id), S_OK);
    const com::ComPointer<IDispatch> builder(com::NewDispatch(own));
    HRESULT made = S_OK;
    HRESULT called = S_OK;
    HRESULT named = S_OK;
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        com::ComPointer<IDispatch> other;
        made = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, other.ReceiveAny());
        DISPPARAMS none{};
        called = builder->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr,
                                 nullptr);
        wchar_t append[] = L"Append";
        wchar_t* names = append;
        DISPID number = 0;
        named = builder->GetIDsOfNames(IID_NULL, &names, 1, 0, &number);
        CoUninitialize();
    }).join();
    EXPECT_EQ(made, RPC_E_WRONG_THREAD);
    EXPECT_EQ(called, RPC_E_WRONG_THREAD);
    EXPECT_EQ(named, RPC_E_WRONG_THREAD);
    own->Call("Append", {"甲"});
    EXPECT_EQ(own->Get(""), Variant("甲"));
}

TEST_F(ComServer, AHostsObjectsServeAsComponentsAndAsConnectionService) {
    // What the component asks of a host is asked of the host's own object, which stands in another library
    // here.
    const ObjectRef host = com::CreateForeign("VelaVICenter.Host");
    const ObjectRef settings = com::CreateForeign("Scripting.Dictionary");
    host->Call("Register", {"VelaPropsMgr.ShareProps", settings});
    host->Call("SetFramework", {settings});
    // A dictionary is neither: the first is asked for the property string, and the call fails without a word.
    EXPECT_FALSE(
        com::CreateForeign("VelaVICenter.clsVIData")->Call("CheckVchTemplateIsExist", {"甲"}).ToBoolean());
    host->Call("SetFramework", {ObjectRef()});
    host->Call("Unregister", {"VelaPropsMgr.ShareProps"});
    EXPECT_EQ(Failure([&] { host->Call("Register", {"", settings}); }).Number(), 5);
    EXPECT_EQ(Failure([&] { host->Call("Register", {"A.B", 1}); }).Number(), 5);
}

// A property manager that wants the end of the component that asks it.
class EndsWhenAsked final : public automation::TableObject<EndsWhenAsked> {
  public:
    explicit EndsWhenAsked(decltype(vic_shutdown)* end) : end_(end) {}
    static const automation::MemberTable<EndsWhenAsked>& Members() {
        static const automation::MemberTable<EndsWhenAsked> table{automation::Method<EndsWhenAsked>(
            "GetProperty", {"Process", "Name"}, [](EndsWhenAsked& self, automation::Arguments&) {
                self.answers.insert(self.end_());
                return Variant("UserID=1;ConnectString={};");
            })};
        return table;
    }
    std::string TypeName() const override { return "ShareProps"; }

    std::set<vic_status> answers;

  private:
    decltype(vic_shutdown)* end_;
};

TEST_F(ComServer, IsNotShutDownWhileItIsCalled) {
    const auto shutDown = Export<decltype(vic_shutdown)>("vic_shutdown");
    const auto properties = std::make_shared<EndsWhenAsked>(shutDown);
    const ObjectRef host = com::CreateForeign("VelaVICenter.Host");
    host->Call("Register", {"VelaPropsMgr.ShareProps", ObjectRef(properties)});
    com::CreateForeign("VelaVICenter.clsVIData")->Call("CheckVchTemplateIsExist", {"甲"});
    EXPECT_EQ(properties->answers, std::set<vic_status>{VIC_ERROR_INVALID_ARGUMENT});
    EXPECT_EQ(shutDown(), 0) << "the call has come back";
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
