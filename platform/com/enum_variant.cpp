#include "platform/com/enum_variant.h"

#include "platform/com/com_error.h"
#include "platform/com/com_object.h"
#include "platform/com/com_value.h"
#include "platform/com/own_objects.h"

namespace vicenter::com {

using automation::Enumerator;
using automation::ObjectRef;
using automation::Variant;

namespace {

// Belongs to a thread as the collection's own IDispatch does.
class EnumVariant final : public ComObject<IEnumVARIANT> {
  public:
    explicit EnumVariant(ObjectRef collection) {
        inside_->values = collection->NewEnumerator();
        inside_->collection = std::move(collection);
    }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* values, ULONG* fetched) override {
        if (values == nullptr) return E_POINTER;
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        ULONG given = 0;
        const HRESULT code = Guarded(nullptr, [&]() -> HRESULT {
            for (; given < count; ++given) {
                const auto value = inside_->values->Next();
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
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        return Guarded(nullptr, [&]() -> HRESULT {
            for (ULONG i = 0; i < count; ++i, ++taken_) {
                if (!inside_->values->Next()) return S_FALSE;
            }
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        return Guarded(nullptr, [&] {
            inside_->values = inside_->collection->NewEnumerator();
            taken_ = 0;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** result) override {
        if (result == nullptr) return E_POINTER;
        *result = nullptr;
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        return Guarded(nullptr, [&]() -> HRESULT {
            ComPointer<IEnumVARIANT> copy(new EnumVariant(inside_->collection));
            copy->Skip(taken_);
            *result = copy.Detach();
            return S_OK;
        });
    }

  private:
    struct Inside {
        ObjectRef collection;
        std::unique_ptr<Enumerator> values;
    };

    ~EnumVariant() override { objects_->GiveUp(std::move(inside_)); }

    bool OnOwnThread() const { return objects_ == OwnObjects::OfThisThread(); }

    std::shared_ptr<Inside> inside_ = std::make_shared<Inside>();
    std::shared_ptr<OwnObjects> objects_ = OwnObjects::OfThisThread();
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
