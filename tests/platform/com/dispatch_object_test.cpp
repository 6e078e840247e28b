#include <thread>

#include "platform/com/com_object.h"
#include "platform/com/enum_variant.h"
#include "tests/platform/com/com_fixture.h"

namespace vicenter::com {
namespace {

using automation::Variant;

class DispatchTest : public ComTest {
  protected:
    DISPID NumberOf(const wchar_t* name) {
        std::wstring text(name);
        wchar_t* names = text.data();
        DISPID number = 0;
        EXPECT_EQ(dispatch_->GetIDsOfNames(IID_NULL, &names, 1, 0, &number), S_OK) << number;
        return number;
    }
    // Arguments from the last to the first, as COM has them.
    HRESULT Call(DISPID number, WORD flags, std::vector<VARIANT> arguments, std::vector<DISPID> names = {}) {
        DISPPARAMS given{arguments.data(), names.data(), static_cast<UINT>(arguments.size()),
                         static_cast<UINT>(names.size())};
        VariantClear(&result_.Value());
        info_ = {};
        return dispatch_->Invoke(number, IID_NULL, 0, flags, &given, &result_.Value(), &info_, nullptr);
    }
    Variant Result() { return FromCom(result_.Value()); }
    VARIANT Number(LONG number) {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_I4;
        value.lVal = number;
        return value;
    }

    std::shared_ptr<CashBox> box_ = std::make_shared<CashBox>();
    ComPointer<IDispatch> dispatch_ = DispatchOf(box_);
    OwnVariant result_;
    EXCEPINFO info_{};
};

TEST_F(DispatchTest, NamesAreFoundWithoutCaseAndKeepTheirNumbers) {
    const DISPID number = NumberOf(L"Count");
    EXPECT_EQ(NumberOf(L"cOUNT"), number);
    EXPECT_NE(NumberOf(L"Owner"), number);
    std::wstring unknown(L"Nothing");
    wchar_t* names = unknown.data();
    DISPID none = 0;
    EXPECT_EQ(dispatch_->GetIDsOfNames(IID_NULL, &names, 1, 0, &none), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(none, DISPID_UNKNOWN);
}

TEST_F(DispatchTest, PropertiesAreReadAndPut) {
    ASSERT_EQ(Call(NumberOf(L"Count"), DISPATCH_PROPERTYGET, {}), S_OK);
    EXPECT_EQ(Result(), Variant(3));
    ASSERT_EQ(Call(NumberOf(L"Owner"), DISPATCH_PROPERTYPUT, {Number(8)}, {DISPID_PROPERTYPUT}), S_OK);
    EXPECT_EQ(box_->owner, Variant(8));
    // With an index: the value in front.
    ASSERT_EQ(Call(NumberOf(L"Item"), DISPATCH_PROPERTYPUT, {Number(7), Number(1)}, {DISPID_PROPERTYPUT}),
              S_OK);
    EXPECT_EQ(box_->coins, (std::vector<std::int32_t>{5, 7, 50}));
    ASSERT_EQ(Call(DISPID_VALUE, DISPATCH_PROPERTYGET, {Number(1)}), S_OK);
    EXPECT_EQ(Result(), Variant(7));
}

TEST_F(DispatchTest, ItsInterfacesCountTheSameShares) {
    const long before = LiveDispatches();
    ComPointer<ISupportErrorInfo> errors;
    ASSERT_EQ(
        DispatchOf(std::make_shared<CashBox>())->QueryInterface(IID_ISupportErrorInfo, errors.ReceiveAny()),
        S_OK);
    EXPECT_EQ(LiveDispatches(), before + 1);
    ComPointer<IDispatch> dispatch;
    ASSERT_EQ(errors->QueryInterface(IID_IDispatch, dispatch.ReceiveAny()), S_OK);
    EXPECT_EQ(errors->AddRef(), 3U);
    EXPECT_EQ(dispatch->Release(), 2U);
    // Whichever is asked, it is the same object.
    ComPointer<IUnknown> one;
    ComPointer<IUnknown> other;
    ASSERT_EQ(errors->QueryInterface(IID_IUnknown, one.ReceiveAny()), S_OK);
    ASSERT_EQ(dispatch->QueryInterface(IID_IUnknown, other.ReceiveAny()), S_OK);
    EXPECT_EQ(one.Get(), other.Get());
    one = {};
    other = {};
    errors = {};
    EXPECT_EQ(LiveDispatches(), before + 1);
    dispatch = {};
    EXPECT_EQ(LiveDispatches(), before);
}

TEST_F(DispatchTest, AnObjectIsPutByReference) {
    VARIANT self;
    VariantInit(&self);
    self.vt = VT_DISPATCH;
    self.pdispVal = dispatch_.Get();
    ASSERT_EQ(Call(NumberOf(L"Owner"), DISPATCH_PROPERTYPUTREF, {self}, {DISPID_PROPERTYPUT}), S_OK);
    EXPECT_EQ(box_->owner, Variant(box_));
    box_->owner = {};
}

TEST_F(DispatchTest, ArgumentsCanBeNamedAndLeftOut) {
    std::wstring take(L"Take");
    std::wstring left(L"LEFT");
    wchar_t* names[] = {take.data(), left.data()};
    DISPID numbers[2] = {};
    ASSERT_EQ(dispatch_->GetIDsOfNames(IID_NULL, names, 2, 0, numbers), S_OK);
    ASSERT_EQ(Call(numbers[0], DISPATCH_METHOD, {Number(9), Number(1)}, {numbers[1]}), S_OK);
    EXPECT_EQ(Result(), Variant("1;-;9;"));
    VARIANT missing;
    VariantInit(&missing);
    missing.vt = VT_ERROR;
    missing.scode = DISP_E_PARAMNOTFOUND;
    ASSERT_EQ(Call(numbers[0], DISPATCH_METHOD, {Number(3), missing, Number(1)}), S_OK);
    EXPECT_EQ(Result(), Variant("1;-;3;"));
}

TEST_F(DispatchTest, TheCallersVariableIsWrittenTo) {
    LONG amount = 41;
    VARIANT reference;
    VariantInit(&reference);
    reference.vt = VT_BYREF | VT_I4;
    reference.plVal = &amount;
    ASSERT_EQ(Call(NumberOf(L"Take"), DISPATCH_METHOD, {reference}), S_OK);
    EXPECT_EQ(amount, 42);
    VARIANT variable = Number(1);
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &variable;
    ASSERT_EQ(Call(NumberOf(L"Take"), DISPATCH_METHOD, {reference}), S_OK);
    EXPECT_EQ(variable.lVal, 2);
}

TEST_F(DispatchTest, TheCallersVariableIsWrittenToByItsName) {
    std::wstring take(L"Take");
    std::wstring amountName(L"Amount");
    wchar_t* names[] = {take.data(), amountName.data()};
    DISPID numbers[2] = {};
    ASSERT_EQ(dispatch_->GetIDsOfNames(IID_NULL, names, 2, 0, numbers), S_OK);
    for (const DISPID named : {numbers[1], DISPID{0}}) {  // by its name, by its place
        LONG amount = 41;
        VARIANT reference;
        VariantInit(&reference);
        reference.vt = VT_BYREF | VT_I4;
        reference.plVal = &amount;
        ASSERT_EQ(Call(numbers[0], DISPATCH_METHOD, {reference}, {named}), S_OK);
        EXPECT_EQ(amount, 42) << named;
    }
}

TEST_F(DispatchTest, AnArgumentThatCannotBeToldApartIsRefused) {
    const DISPID take = NumberOf(L"Take");
    for (const DISPID named : std::initializer_list<DISPID>{-1, DISPID_PROPERTYPUT, 64, 0xFFFFF, 0x7FFFFFFF})
        EXPECT_EQ(Call(take, DISPATCH_METHOD, {Number(1)}, {named}), DISP_E_PARAMNOTFOUND) << named;
    std::vector<DISPID> names{0, 1};
    VARIANT one = Number(1);
    DISPPARAMS given{&one, names.data(), 1, 2};
    EXPECT_EQ(dispatch_->Invoke(take, IID_NULL, 0, DISPATCH_METHOD, &given, nullptr, nullptr, nullptr),
              DISP_E_BADPARAMCOUNT);
}

TEST_F(DispatchTest, FailuresCarryNumberTextAndSource) {
    ASSERT_EQ(Call(NumberOf(L"Break"), DISPATCH_METHOD, {}), DISP_E_EXCEPTION);
    EXPECT_EQ(info_.scode, static_cast<HRESULT>(0x800A0009));
    EXPECT_EQ(TextOf(info_.bstrDescription), "钱箱坏了");
    EXPECT_EQ(TextOf(info_.bstrSource), "CashBox");
    SysFreeString(info_.bstrDescription);
    SysFreeString(info_.bstrSource);
    // Without a place for it the error is the thread's.
    DISPPARAMS none{};
    ASSERT_EQ(
        dispatch_->Invoke(NumberOf(L"Break"), IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
        static_cast<HRESULT>(0x800A0009));
    ComPointer<IErrorInfo> told;
    ASSERT_EQ(GetErrorInfo(0, told.Receive()), S_OK);
    BSTR text = nullptr;
    ASSERT_EQ(told->GetDescription(&text), S_OK);
    EXPECT_EQ(TextOf(text), "钱箱坏了");
    SysFreeString(text);
}

TEST_F(DispatchTest, ForEachGoesThroughACollection) {
    EXPECT_EQ(NumberOf(L"_NewEnum"), DISPID_NEWENUM);
    ASSERT_EQ(Call(DISPID_NEWENUM, DISPATCH_PROPERTYGET, {}), S_OK);
    ASSERT_EQ(result_.Value().vt, VT_UNKNOWN);
    ComPointer<IEnumVARIANT> each;
    ASSERT_EQ(result_.Value().punkVal->QueryInterface(IID_IEnumVARIANT, each.ReceiveAny()), S_OK);
    VARIANT values[4];
    ULONG fetched = 0;
    ASSERT_EQ(each->Next(2, values, &fetched), S_OK);
    EXPECT_EQ(fetched, 2U);
    EXPECT_EQ(values[1].lVal, 10);
    ComPointer<IEnumVARIANT> copy;
    ASSERT_EQ(each->Clone(copy.Receive()), S_OK);
    for (IEnumVARIANT* rest : {each.Get(), copy.Get()}) {
        ASSERT_EQ(rest->Next(4, values, &fetched), S_FALSE);
        EXPECT_EQ(fetched, 1U);
        EXPECT_EQ(values[0].lVal, 50);
    }
    ASSERT_EQ(each->Reset(), S_OK);
    ASSERT_EQ(each->Skip(3), S_OK);
    EXPECT_EQ(each->Skip(1), S_FALSE);
}

TEST_F(DispatchTest, TypeInformationTellsTheClassesName) {
    ComPointer<ITypeInfo> type;
    ASSERT_EQ(dispatch_->GetTypeInfo(0, 0, type.Receive()), S_OK);
    BSTR name = nullptr;
    ASSERT_EQ(type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(TextOf(name), "CashBox");
    SysFreeString(name);
}

TEST_F(DispatchTest, AnotherThreadIsRefused) {
    const DISPID number = NumberOf(L"Count");
    HRESULT code = S_OK;
    std::thread([&] { code = Call(number, DISPATCH_PROPERTYGET, {}); }).join();
    EXPECT_EQ(code, RPC_E_WRONG_THREAD);
}

// Tells on which thread it has ended.
class Mortal final : public automation::TableObject<Mortal> {
  public:
    explicit Mortal(std::thread::id& ended) : ended_(ended) {}
    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;
    ~Mortal() override { ended_ = std::this_thread::get_id(); }
    static const automation::MemberTable<Mortal>& Members() {
        static const automation::MemberTable<Mortal> table{};
        return table;
    }
    std::string TypeName() const override { return "Mortal"; }
    std::unique_ptr<automation::Enumerator> NewEnumerator() override {
        struct Nothing final : automation::Enumerator {
            std::optional<Variant> Next() override { return std::nullopt; }
        };
        return std::make_unique<Nothing>();
    }

  private:
    std::thread::id& ended_;
};

TEST_F(DispatchTest, WhatAnotherThreadGivesBackLastEndsOnItsOwn) {
    const long before = LiveDispatches();
    std::thread::id ended;
    IDispatch* last = NewDispatch(std::make_shared<Mortal>(ended));
    std::thread([&] { last->Release(); }).join();
    EXPECT_EQ(LiveDispatches(), before);
    EXPECT_EQ(ended, std::thread::id());
    // With the next one that is given out.
    DispatchOf(std::make_shared<CashBox>());
    EXPECT_EQ(ended, std::this_thread::get_id());
    // One whose own thread is gone ends where it is given back.
    IDispatch* orphan = nullptr;
    std::thread([&] { orphan = NewDispatch(std::make_shared<Mortal>(ended)); }).join();
    ended = {};
    EXPECT_EQ(orphan->Release(), 0U);
    EXPECT_EQ(ended, std::this_thread::get_id());
}

TEST_F(DispatchTest, AnEnumeratorKeepsToTheThreadOfItsCollection) {
    const long before = LiveComObjects();
    std::thread::id ended;
    IEnumVARIANT* each = NewEnumVariant(std::make_shared<Mortal>(ended));
    EXPECT_EQ(LiveComObjects(), before + 1);
    std::thread([&] {
        VARIANT value;
        VariantInit(&value);
        IEnumVARIANT* copy = nullptr;
        EXPECT_EQ(each->Next(1, &value, nullptr), RPC_E_WRONG_THREAD);
        EXPECT_EQ(each->Skip(1), RPC_E_WRONG_THREAD);
        EXPECT_EQ(each->Reset(), RPC_E_WRONG_THREAD);
        EXPECT_EQ(each->Clone(&copy), RPC_E_WRONG_THREAD);
        EXPECT_EQ(each->Release(), 0U);
    }).join();
    EXPECT_EQ(LiveComObjects(), before);
    EXPECT_EQ(ended, std::thread::id());
    DispatchOf(std::make_shared<CashBox>());
    EXPECT_EQ(ended, std::this_thread::get_id());
}

TEST_F(DispatchTest, ItIsFoundAgainWhileAnybodyHoldsIt) {
    const auto box = std::make_shared<CashBox>();
    const ComPointer<IDispatch> first = DispatchOf(box);
    EXPECT_EQ(DispatchOf(box).Get(), first.Get());
    std::thread([&] {
        const ComPointer<IDispatch> elsewhere = DispatchOf(box);
        EXPECT_NE(elsewhere.Get(), first.Get());
    }).join();
    EXPECT_EQ(DispatchOf(box).Get(), first.Get());
}

TEST_F(DispatchTest, WhatNobodyHoldsIsGone) {
    const long before = LiveDispatches();
    std::weak_ptr<CashBox> gone;
    for (int i = 0; i < 1000; ++i) {
        const auto box = std::make_shared<CashBox>();
        const auto dispatch = DispatchOf(box);
        EXPECT_EQ(LiveDispatches(), before + 1);
        gone = box;
    }
    EXPECT_EQ(LiveDispatches(), before);
    EXPECT_TRUE(gone.expired());
}

}  // namespace
}  // namespace vicenter::com
