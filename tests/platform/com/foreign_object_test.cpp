#include "platform/com/foreign_object.h"

#include <algorithm>

#include "automation/class_registry.h"
#include "platform/com/com_object.h"
#include "platform/com/installed_classes.h"
#include "tests/platform/com/com_fixture.h"

namespace vicenter::com {
namespace {

using automation::Argument;
using automation::Arguments;
using automation::Error;
using automation::Variant;

// Somebody else's object: it passes every call on to one of ours and is not known to be that. Refuses its
// first calls as a busy server does.
class Stranger final : public ComObject<IDispatch> {
  public:
    Stranger(ComPointer<IDispatch> inside, int busy) : inside_(std::move(inside)), busy_(busy) {}

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        return inside_->GetTypeInfoCount(count);
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
        return inside_->GetTypeInfo(index, locale, info);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* numbers) override {
        return inside_->GetIDsOfNames(id, names, count, locale, numbers);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* given,
                                     VARIANT* result, EXCEPINFO* info, UINT* at) override {
        if (busy_ > 0) {
            --busy_;
            return RPC_E_CALL_REJECTED;
        }
        return inside_->Invoke(member, id, locale, flags, given, result, info, at);
    }

  private:
    ~Stranger() = default;

    ComPointer<IDispatch> inside_;
    int busy_;
};

// One that nothing tells of, as a script's object.
class Untold final : public ComObject<IDispatch> {
  public:
    explicit Untold(std::vector<std::wstring> members) : members_(std::move(members)) {}

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* numbers) override {
        const auto found = std::find(members_.begin(), members_.end(), names[0]);
        *numbers =
            found == members_.end() ? DISPID_UNKNOWN : static_cast<DISPID>(found - members_.begin()) + 1;
        return *numbers == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

  private:
    ~Untold() = default;

    std::vector<std::wstring> members_;
};

// One with declared types whose server converts nothing: a look-up that writes to a text.
class Typed final : public ComObject<IDispatch> {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* numbers) override {
        *numbers = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        if (given->cArgs != 1 || given->rgvarg[0].vt != (VT_BYREF | VT_BSTR)) return DISP_E_TYPEMISMATCH;
        BSTR& text = *given->rgvarg[0].pbstrVal;
        const BSTR chosen = NewText(TextOf(text) + "，选中");
        SysFreeString(text);
        text = chosen;
        return S_OK;
    }

  private:
    ~Typed() = default;
};

// A class of this process, registered for the machine: Wine does not look into the user's own classes. Making
// an object of it fails so often, with that code.
class Refusing final : public ComObject<IClassFactory> {
  public:
    Refusing(HRESULT code, int times) : code_(code), times_(times) {}
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** result) override {
        if (times_-- > 0) return code_;
        return DispatchOf(std::make_shared<CashBox>())->QueryInterface(id, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    ~Refusing() override = default;
    const HRESULT code_;
    int times_;
};

class Registered {
  public:
    Registered(HRESULT code, int times) {
        constexpr wchar_t kText[] = L"{6A0C3F0E-7D0B-4F0A-9B64-2A4E0E0B7C11}";
        CLSID id{};
        CLSIDFromString(kText, &id);
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, kKey, nullptr, REG_SZ, kText, sizeof kText);
        const ComPointer<IClassFactory> factory(new Refusing(code, times));
        CoRegisterClassObject(id, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_);
    }
    ~Registered() {
        CoRevokeClassObject(cookie_);
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\VicenterTest.CashBox");
    }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

  private:
    static constexpr const wchar_t* kKey = L"Software\\Classes\\VicenterTest.CashBox\\CLSID";
    DWORD cookie_ = 0;
};

class ForeignTest : public ComTest {
  protected:
    automation::ObjectRef Foreign(int busy = 0) {
        const ComPointer<IDispatch> stranger(new Stranger(DispatchOf(box_), busy));
        return ObjectOf(stranger.Get());
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

    std::shared_ptr<CashBox> box_ = std::make_shared<CashBox>();
};

TEST_F(ForeignTest, IsCalledAsOneOfOurs) {
    const auto foreign = Foreign();
    EXPECT_NE(foreign, box_);
    EXPECT_EQ(foreign->TypeName(), "CashBox");
    EXPECT_TRUE(foreign->HasMember("count"));
    EXPECT_FALSE(foreign->HasMember("nothing"));
    EXPECT_EQ(foreign->Get("Count"), Variant(3));
    EXPECT_EQ(foreign->Get("Item", {1}), Variant(10));
    EXPECT_EQ(foreign->Get("", {2}), Variant(50));
    foreign->Put("Item", {1}, 11);
    foreign->Put("Owner", "甲");
    EXPECT_EQ(box_->coins[1], 11);
    EXPECT_EQ(box_->owner, Variant("甲"));
    EXPECT_EQ(foreign->Call("Take", {1, Argument::Named("left", 5)}), Variant("1;-;5;"));
    EXPECT_EQ(foreign->Call("Echo", {automation::VariantArray{1, "b"}}),
              Variant(automation::VariantArray{1, "b"}));
}

TEST_F(ForeignTest, WritesToArgumentsByReference) {
    Variant amount(41);
    EXPECT_EQ(Foreign()->Call("Take", {Argument::ByReference(amount)}), Variant("41;-;-;"));
    EXPECT_EQ(amount, Variant(42));
}

TEST_F(ForeignTest, WritesToArgumentsOfDeclaredTypes) {
    const auto typed = ObjectOf(ComPointer<IDispatch>(new Typed).Get());
    Variant text("1001");
    typed->Call("AccountLookup", {Argument::ByReference(text)});
    EXPECT_EQ(text, Variant("1001，选中"));
    Variant number(1001);
    EXPECT_EQ(Failure([&] { typed->Call("AccountLookup", {Argument::ByReference(number)}); }).Number(), 13);
    EXPECT_EQ(number, Variant(1001));
}

TEST_F(ForeignTest, ObjectsKeepTheirIdentityOnTheWay) {
    const auto foreign = Foreign();
    EXPECT_EQ(foreign->Call("Echo", {box_}), Variant(box_));
    foreign->Put("Owner", foreign);
    ASSERT_TRUE(box_->owner.IsObject());
    EXPECT_EQ(box_->owner.AsObject()->Get("Count"), Variant(3));
    box_->owner = {};
    EXPECT_EQ(foreign->Get("Self"), Variant(box_));
}

TEST_F(ForeignTest, FailuresComeWithNumberTextAndSource) {
    const auto foreign = Foreign();
    const Error broken = Failure([&] { foreign->Call("Break"); });
    EXPECT_EQ(broken.Number(), 9);
    EXPECT_EQ(broken.Text(), "钱箱坏了");
    EXPECT_EQ(broken.Source(), "CashBox");
    EXPECT_EQ(Failure([&] { foreign->Get("Nothing"); }).Number(), 438);
    EXPECT_EQ(Failure([&] { foreign->Call("Take", {Argument::Named("other", 1)}); }).Number(), 448);
    EXPECT_EQ(Failure([&] { foreign->Call("Take"); }).Number(), 449);
    EXPECT_EQ(Failure([&] { foreign->Call("Take", {1, 2, 3, 4}); }).Number(), 450);
}

TEST_F(ForeignTest, ABusyServerIsAskedAgain) {
    EXPECT_EQ(Foreign(3)->Get("Count"), Variant(3));
}

TEST_F(ForeignTest, AServerThatIsEndingIsAskedForAnotherOne) {
    for (const HRESULT code :
         {CO_E_SERVER_STOPPING, RPC_E_SERVER_DIED, RPC_E_DISCONNECTED, RPC_E_CALL_REJECTED,
          static_cast<HRESULT>(HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE))}) {
        const Registered server(code, 2);
        EXPECT_EQ(CreateForeign("VicenterTest.CashBox")->Get("Count"), Variant(3)) << code;
    }
    const Registered refused(E_ACCESSDENIED, 1);
    EXPECT_EQ(Failure([] { CreateForeign("VicenterTest.CashBox"); }).Number(), 429);
    EXPECT_EQ(CreateForeign("VicenterTest.CashBox")->Get("Count"), Variant(3));
}

TEST_F(ForeignTest, ForEachGoesThroughACollection) {
    const auto each = Foreign()->NewEnumerator();
    ASSERT_NE(each, nullptr);
    std::vector<std::int32_t> coins;
    while (const auto coin = each->Next())
        coins.push_back(coin->ToInt32());
    EXPECT_EQ(coins, box_->coins);
}

TEST_F(ForeignTest, WhatHasADictionarysMembersIsOne) {
    std::vector<std::wstring> members{L"Item", L"Exists", L"Keys", L"Items", L"Count", L"RemoveAll"};
    EXPECT_EQ(ObjectOf(ComPointer<IDispatch>(new Untold(members)).Get())->TypeName(), "Dictionary");
    members.pop_back();
    EXPECT_EQ(ObjectOf(ComPointer<IDispatch>(new Untold(members)).Get())->TypeName(), "Object");
}

TEST_F(ForeignTest, TheSystemsClassesAreFoundBehindTheProcesssOwn) {
    const automation::ClassRegistry::Restore restore;
    EXPECT_EQ(Failure([] { automation::CreateObject("Scripting.Dictionary"); }).Number(), 429);
    {
        const InstalledClasses installed;
        EXPECT_EQ(automation::CreateObject("Scripting.Dictionary")->Get("Count"), Variant(0));
        automation::ClassRegistry::Process().Register("Scripting.Dictionary", [this] { return box_; });
        EXPECT_EQ(automation::CreateObject("scripting.dictionary"), box_);
        EXPECT_EQ(Failure([] { automation::CreateObject("Vela.NoSuchClass"); }).Number(), 429);
    }
    automation::ClassRegistry::Process().Unregister("Scripting.Dictionary");
    EXPECT_EQ(Failure([] { automation::CreateObject("Scripting.Dictionary"); }).Number(), 429);
    EXPECT_TRUE(InstalledClasses::Has("Scripting.Dictionary"));
    EXPECT_FALSE(InstalledClasses::Has("Vela.NoSuchClass"));
}

TEST_F(ForeignTest, TheSystemsOwnDictionaryIsOne) {
    const auto dictionary = CreateForeign("Scripting.Dictionary");
    EXPECT_EQ(dictionary->TypeName(), "Dictionary");
    dictionary->Call("Add", {"甲", 1});
    dictionary->Put("Item", {"乙"}, Variant("二"));
    EXPECT_EQ(dictionary->Get("Count"), Variant(2));
    EXPECT_EQ(dictionary->Get("", {"乙"}), Variant("二"));
    EXPECT_EQ(dictionary->Call("Keys"), Variant(automation::VariantArray{"甲", "乙"}));
    EXPECT_EQ(Failure([&] { dictionary->Call("Add", {"甲", 2}); }).Number(), 457);
    EXPECT_EQ(Failure([] { CreateForeign("VelaVICenter.NoSuchClass"); }).Number(), 429);
}

}  // namespace
}  // namespace vicenter::com
