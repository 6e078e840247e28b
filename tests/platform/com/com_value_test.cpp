#include <cmath>
#include <functional>
#include <limits>

#include "platform/com/com_object.h"
#include "tests/platform/com/com_fixture.h"

namespace vicenter::com {
namespace {

using automation::DateTime;
using automation::Decimal;
using automation::Error;
using automation::Variant;
using automation::VariantArray;

class ComValue : public ComTest {
  protected:
    static Variant ThereAndBack(const Variant& value) { return FromCom(OwnVariant(value).Value()); }
    // Of the error; 0 where there is none.
    static std::int32_t NumberOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const Error& error) {
            return error.Number();
        }
        return 0;
    }
    static VARTYPE TypeOf(const Variant& value) { return OwnVariant(value).Value().vt; }
};

TEST_F(ComValue, EveryKindComesBackAsItWent) {
    const std::string zero("a\0b", 3);
    const VariantArray values{
        Variant(),
        Variant::Null(),
        Variant::Missing(),
        true,
        false,
        std::int16_t{-7},
        std::int32_t{70000},
        0.1,
        -1e300,
        *DateTime::Parse("2024-02-29 23:59:59"),
        "凭证模板 😀",
        "",
        zero,
        *Decimal::Parse("-1234567890123456789012.3456"),
        Decimal(0),
        VariantArray{},
        VariantArray{1, "二", VariantArray{Variant::Null(), 3.5}},
    };
    for (const Variant& value : values)
        EXPECT_EQ(ThereAndBack(value), value) << value.TypeName();
}

TEST_F(ComValue, LargeIntegersAreDecimalsBecauseScriptsKnowNoOthers) {
    EXPECT_EQ(TypeOf(std::int64_t{1} << 31), VT_DECIMAL);
    EXPECT_EQ(TypeOf((std::int64_t{1} << 31) - 1), VT_I4);
    const std::int64_t least = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(ThereAndBack(least).ToInt64(), least);
}

TEST_F(ComValue, ADecimalBeyondTheTypesDigitsIsItsText) {
    const Decimal large = *Decimal::Parse("12345678901234567890123456789012345678");
    EXPECT_EQ(ThereAndBack(large), Variant("12345678901234567890123456789012345678"));
    // Zeros behind the point are no digits that matter.
    const Decimal fits = *Decimal::Parse("1.50000000000000000000000000000000000");
    EXPECT_EQ(ThereAndBack(fits).ToText(), "1.5");
    const Decimal most = *Decimal::Parse("79228162514264337593543950335");
    EXPECT_EQ(TypeOf(most), VT_DECIMAL);
    EXPECT_EQ(ThereAndBack(most), Variant(most));
    EXPECT_EQ(TypeOf(*Decimal::Parse("79228162514264337593543950336")), VT_BSTR);
}

TEST_F(ComValue, ForeignTypesBecomeTheNearestOfOurs) {
    OwnVariant value;
    value.Value().vt = VT_CY;
    value.Value().cyVal.int64 = -12345;
    EXPECT_EQ(FromCom(value.Value()), Variant(*Decimal::Parse("-1.2345")));
    value.Value().vt = VT_UI8;
    value.Value().ullVal = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(FromCom(value.Value()).ToText(), "18446744073709551615");
    value.Value().vt = VT_UI1;
    value.Value().bVal = 200;
    EXPECT_EQ(FromCom(value.Value()), Variant(std::int16_t{200}));
    value.Value().vt = VT_I1;
    EXPECT_EQ(FromCom(value.Value()), Variant(std::int16_t{-56}));
    value.Value().vt = VT_R4;
    value.Value().fltVal = 0.5F;
    EXPECT_EQ(FromCom(value.Value()), Variant(0.5));
    value.Value().vt = VT_BSTR;
    value.Value().bstrVal = nullptr;
    EXPECT_EQ(FromCom(value.Value()), Variant(""));
    value.Value().vt = VT_DISPATCH;
    value.Value().pdispVal = nullptr;
    EXPECT_EQ(FromCom(value.Value()), Variant(automation::ObjectRef()));
    value.Value().vt = VT_RECORD;
    EXPECT_THROW(FromCom(value.Value()), Error);
    value.Value().vt = VT_EMPTY;
}

TEST_F(ComValue, ReferencesAreFollowed) {
    OwnVariant text("甲");
    VARIANT reference;
    VariantInit(&reference);
    reference.vt = VT_BYREF | VT_BSTR;
    reference.pbstrVal = &text.Value().bstrVal;
    EXPECT_EQ(FromCom(reference), Variant("甲"));
    AssignToReference(reference, 12);
    EXPECT_EQ(FromCom(text.Value()), Variant("12")) << "in the variable's own type";
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = &text.Value();
    AssignToReference(reference, 12);
    EXPECT_EQ(FromCom(text.Value()), Variant(12));
    LONG number = 0;
    reference.vt = VT_BYREF | VT_I4;
    reference.plVal = &number;
    AssignToReference(reference, "42");
    EXPECT_EQ(number, 42);
    EXPECT_THROW(AssignToReference(reference, "no number"), Error);
}

TEST_F(ComValue, ArraysOfTypesAndOfSeveralDimensionsAreArraysWithin) {
    SAFEARRAYBOUND bounds[2] = {{2, 1}, {3, 0}};
    OwnVariant value;
    value.Value().parray = SafeArrayCreate(VT_I4, 2, bounds);
    value.Value().vt = VT_ARRAY | VT_I4;
    for (LONG row = 1; row <= 2; ++row) {
        for (LONG column = 0; column < 3; ++column) {
            LONG place[2] = {row, column};
            LONG number = row * 10 + column;
            ASSERT_EQ(SafeArrayPutElement(value.Value().parray, place, &number), S_OK);
        }
    }
    EXPECT_EQ(FromCom(value.Value()),
              Variant(VariantArray{VariantArray{10, 11, 12}, VariantArray{20, 21, 22}}));
    OwnVariant texts;
    texts.Value().parray = SafeArrayCreateVector(VT_BSTR, 5, 1);
    texts.Value().vt = VT_ARRAY | VT_BSTR;
    LONG at = 5;
    BSTR text = NewText("五");
    ASSERT_EQ(SafeArrayPutElement(texts.Value().parray, &at, text), S_OK);
    SysFreeString(text);
    EXPECT_EQ(FromCom(texts.Value()), Variant(VariantArray{"五"}));
}

// A record type of 64 bytes that tells when one is copied.
class LongRecord final : public ComObject<IRecordInfo> {
  public:
    explicit LongRecord(bool& copied) : copied_(copied) {}
    LongRecord(const LongRecord&) = delete;
    LongRecord& operator=(const LongRecord&) = delete;

    HRESULT STDMETHODCALLTYPE GetSize(ULONG* size) override {
        *size = 64;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE RecordInit(PVOID) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RecordClear(PVOID) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RecordCopy(PVOID, PVOID) override {
        copied_ = true;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetGuid(GUID* id) override {
        *id = GUID{};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetName(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetField(PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetFieldNoCopy(PVOID, LPCOLESTR, VARIANT*, PVOID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE PutField(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE PutFieldNoCopy(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetFieldNames(ULONG*, BSTR*) override { return E_NOTIMPL; }
    BOOL STDMETHODCALLTYPE IsMatchingType(IRecordInfo*) override { return FALSE; }
    PVOID STDMETHODCALLTYPE RecordCreate() override { return nullptr; }
    HRESULT STDMETHODCALLTYPE RecordCreateCopy(PVOID, PVOID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RecordDestroy(PVOID) override { return E_NOTIMPL; }

  private:
    ~LongRecord() override = default;
    bool& copied_;
};

TEST_F(ComValue, AnArrayOfRecordsIsRefusedBeforeOneIsRead) {
    bool copied = false;
    const ComPointer<IRecordInfo> type(new LongRecord(copied));
    SAFEARRAYBOUND bound{2, 0};
    OwnVariant value;
    value.Value().parray = SafeArrayCreateEx(VT_RECORD, 1, &bound, type.Get());
    ASSERT_NE(value.Value().parray, nullptr);
    value.Value().vt = VT_ARRAY | VT_RECORD;
    EXPECT_EQ(NumberOf([&] { FromCom(value.Value()); }), 13);
    EXPECT_FALSE(copied);
}

TEST_F(ComValue, AReferenceToWhatIsUnknownOrNowhereIsRefused) {
    VARIANT reference;
    VariantInit(&reference);
    LONG room[16] = {};
    for (const int type : {VT_RECORD, VT_EMPTY, VT_NULL, VT_FILETIME}) {
        reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
        reference.byref = room;
        EXPECT_EQ(NumberOf([&] { FromCom(reference); }), 13) << type;
        EXPECT_EQ(NumberOf([&] { AssignToReference(reference, 1); }), 13) << type;
    }
    for (const int type :
         std::initializer_list<int>{VT_I4, VT_BSTR, VT_VARIANT, VT_DECIMAL, VT_ARRAY | VT_I4}) {
        reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
        reference.byref = nullptr;
        EXPECT_EQ(NumberOf([&] { FromCom(reference); }), 13) << type;
    }
}

TEST_F(ComValue, DatesKeepToTheYearsThatComKnows) {
    const auto of = [](double serial) {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_DATE;
        value.date = serial;
        return value;
    };
    EXPECT_EQ(FromCom(of(-657434)).ToText(), Variant(*DateTime::Parse("0100-01-01")).ToText());
    EXPECT_EQ(FromCom(of(2958465.5)), Variant(*DateTime::Parse("9999-12-31 12:00")));
    EXPECT_EQ(FromCom(of(-1.25)), Variant(*DateTime::Parse("1899-12-29 06:00")));
    for (const double serial : {-657435.0, 2958466.0, 1e300, -1e300, std::nan("")})
        EXPECT_EQ(NumberOf([&] { FromCom(of(serial)); }), 6) << serial;
    EXPECT_EQ(TypeOf(*DateTime::Parse("0100-01-01 06:00")), VT_DATE);
    EXPECT_EQ(TypeOf(*DateTime::Parse("0099-12-31")), VT_BSTR);
    EXPECT_EQ(FromCom(OwnVariant(*DateTime::Parse("0099-12-31 06:00")).Value()),
              Variant("0099-12-31 06:00:00"));
}

TEST_F(ComValue, AnObjectKeepsItsIdentity) {
    const auto box = std::make_shared<CashBox>();
    EXPECT_EQ(ThereAndBack(box), Variant(box));
    const auto first = DispatchOf(box);
    const auto second = DispatchOf(box);
    EXPECT_EQ(first.Get(), second.Get());
}

}  // namespace
}  // namespace vicenter::com
