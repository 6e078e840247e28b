#include "platform/com/enum_variant.h"

#include "platform/com/com_error.h"
#include "platform/com/com_object.h"
#include "platform/com/com_value.h"

namespace vicenter::com {

using automation::Enumerator;
using automation::ObjectRef;
using automation::Variant;

namespace {

class EnumVariant final : public ComObject<IEnumVARIANT> {
  public:
    explicit EnumVariant(ObjectRef collection)
        : collection_(std::move(collection)), values_(collection_->NewEnumerator()) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* values, ULONG* fetched) override {
        if (values == nullptr) return E_POINTER;
        ULONG given = 0;
        const HRESULT code = Guarded(nullptr, [&]() -> HRESULT {
            for (; given < count; ++given) {
                const auto value = values_->Next();
                if (!value) return S_FALSE;
                OwnVariant(*value).MoveTo(values[given]);
                ++taken_;
            }
            return S_OK;
        });
        if (fetched != nullptr) *fetched = given;
        return code;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        return Guarded(nullptr, [&]() -> HRESULT {
            for (ULONG i = 0; i < count; ++i, ++taken_) {
                if (!values_->Next()) return S_FALSE;
            }
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        return Guarded(nullptr, [&] {
            values_ = collection_->NewEnumerator();
            taken_ = 0;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** result) override {
        if (result == nullptr) return E_POINTER;
        *result = nullptr;
        return Guarded(nullptr, [&]() -> HRESULT {
            ComPointer<IEnumVARIANT> copy(new EnumVariant(collection_));
            copy->Skip(taken_);
            *result = copy.Detach();
            return S_OK;
        });
    }

  private:
    ObjectRef collection_;
    std::unique_ptr<Enumerator> values_;
    ULONG taken_ = 0;
};

class ForeignValues final : public Enumerator {
  public:
    explicit ForeignValues(ComPointer<IEnumVARIANT> values) : values_(std::move(values)) {}
    std::optional<Variant> Next() override {
        OwnVariant value;
        ULONG fetched = 0;
        const HRESULT code = values_->Next(1, &value.Value(), &fetched);
        if (FAILED(code)) {
            EXCEPINFO none{};
            throw ErrorOf(code, none);
        }
        if (code != S_OK) return std::nullopt;
        return FromCom(value.Value());
    }

  private:
    ComPointer<IEnumVARIANT> values_;
};

}  // namespace

IEnumVARIANT* NewEnumVariant(ObjectRef collection) {
    return new EnumVariant(std::move(collection));
}

std::unique_ptr<Enumerator> Over(ComPointer<IEnumVARIANT> values) {
    return std::make_unique<ForeignValues>(std::move(values));
}

}  // namespace vicenter::com
