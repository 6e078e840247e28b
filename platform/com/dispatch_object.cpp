#include "platform/com/dispatch_object.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

#include "platform/com/client_calls.h"
#include "platform/com/com_error.h"
#include "platform/com/com_object.h"
#include "platform/com/com_value.h"
#include "platform/com/enum_variant.h"
#include "platform/com/foreign_object.h"
#include "platform/com/member_names.h"
#include "platform/com/named_type.h"
#include "platform/com/own_objects.h"

namespace vicenter::com {

using automation::Argument;
using automation::Arguments;
using automation::InvokeKind;
using automation::ObjectRef;
using automation::Variant;

namespace {

std::atomic<long> live{0};
std::atomic<long> underWay{0};

class UnderWay {
  public:
    UnderWay() { ++underWay; }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
    ~UnderWay() { --underWay; }
};

// The ids of arguments' names are those of members of the same name, from here on. Below it an id is the
// argument's place, as a type library has it.
constexpr DISPID kArgumentNames = 0x100000;
constexpr DISPID kMostPlaces = 64;

// A call whose arguments cannot be told apart.
HRESULT CheckArguments(const DISPPARAMS& given, bool put) {
    if (given.cNamedArgs > given.cArgs) return DISP_E_BADPARAMCOUNT;
    for (UINT i = 0; i < given.cNamedArgs; ++i) {
        const DISPID id = given.rgdispidNamedArgs[i];
        if (put && i == 0 && id == DISPID_PROPERTYPUT) continue;
        const bool isPlace = id >= 0 && id < kMostPlaces;
        if (!isPlace && (id < kArgumentNames || MemberNameOf(id - kArgumentNames).empty()))
            return DISP_E_PARAMNOTFOUND;
    }
    return S_OK;
}

// Asked of an IDispatch to know our own; nobody else knows the number, which is made anew in each process.
const IID& OwnInterface() {
    static const IID own = [] {
        IID made{};
        if (FAILED(CoCreateGuid(&made))) made.Data1 = GetCurrentProcessId();
        return made;
    }();
    return own;
}

std::span<const EarlyInterface>& EarlyInterfaces() {
    static std::span<const EarlyInterface> interfaces;
    return interfaces;
}

bool IsEarlyInterface(REFIID id, const automation::Object& object) {
    const auto known = EarlyInterfaces();
    return std::any_of(known.begin(), known.end(), [&](const EarlyInterface& one) {
        return IsEqualIID(one.id, id) && object.TypeName() == one.typeName;
    });
}

// The arguments of a call, the client's variables behind those by reference.
class CallArguments {
  public:
    CallArguments(const DISPPARAMS& given, bool put) {
        const UINT count = given.cArgs;
        values_.resize(count);
        // Named ones come first, all of them from the last to the first.
        const bool named = put && given.cNamedArgs > 0 && given.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
        for (UINT i = count; i-- > 0;) {
            const VARIANT& argument = given.rgvarg[i];
            if (named && i == 0) continue;
            if (i < given.cNamedArgs) {
                AddNamed(i, given.rgdispidNamedArgs[i], argument);
            } else {
                arguments_.push_back(Bound(i, argument));
            }
        }
        if (named) arguments_.emplace_back(FromCom(given.rgvarg[0]));
    }

    Arguments& Passed() { return arguments_; }

    void WriteBack() {
        for (const Reference& reference : references_) {
            const Variant& now = Now(reference);
            if (!(now == reference.before)) AssignToReference(*reference.variable, now);
        }
    }

  private:
    struct Reference {
        UINT index;
        const VARIANT* variable;
        Variant before;
        std::string name;
    };

    void AddNamed(UINT index, DISPID id, const VARIANT& argument) {
        if (id >= kArgumentNames) {
            const std::string name = MemberNameOf(id - kArgumentNames);
            Variant value = FromCom(argument);
            if ((argument.vt & VT_BYREF) != 0) references_.push_back({index, &argument, value, name});
            arguments_.push_back(Argument::Named(name, std::move(value)));
            return;
        }
        const auto place = static_cast<std::size_t>(id);
        while (arguments_.size() <= place)
            arguments_.emplace_back(Variant::Missing());
        arguments_[place] = Bound(index, argument);
    }

    Argument Bound(UINT index, const VARIANT& argument) {
        if ((argument.vt & VT_BYREF) == 0) return FromCom(argument);
        values_[index] = FromCom(argument);
        references_.push_back({index, &argument, values_[index], {}});
        return Argument::ByReference(values_[index]);
    }

    // A named argument is found by its name, wherever the member has put it.
    const Variant& Now(const Reference& reference) const {
        if (reference.name.empty()) return values_[reference.index];
        for (const Argument& argument : arguments_) {
            if (argument.Name() == reference.name) return argument.Value();
        }
        return reference.before;
    }

    std::vector<Variant> values_;
    std::vector<Reference> references_;
    Arguments arguments_;
};

class DispatchObject final : public ComObject<IDispatch, ISupportErrorInfo> {
  public:
    explicit DispatchObject(ObjectRef object) : object_(std::move(object)) {
        objects_->Keep(object_.get(), this, Shares());
        ++live;
    }

    const ObjectRef& Inside() const { return object_; }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
        return IsEqualIID(id, IID_IDispatch) || IsEarlyInterface(id, *object_) ? S_OK : S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (info == nullptr) return E_POINTER;
        *info = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        return Guarded(nullptr, [&] {
            *info = NewNamedType(object_->TypeName());
            return S_OK;
        });
    }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        if (!IsEqualIID(id, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        return Guarded(nullptr, [&]() -> HRESULT {
            HRESULT code = S_OK;
            for (UINT i = 0; i < count; ++i) {
                const std::string name = system::os::Narrow(names[i]);
                ids[i] = i == 0 ? MemberOf(name) : kArgumentNames + MemberNumber(name);
                if (ids[i] == DISPID_UNKNOWN) code = DISP_E_UNKNOWNNAME;
            }
            return code;
        });
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID, WORD flags, DISPPARAMS* given,
                                     VARIANT* result, EXCEPINFO* info, UINT*) override {
        if (!IsEqualIID(id, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (given == nullptr) return E_POINTER;
        if (!OnOwnThread()) return RPC_E_WRONG_THREAD;
        // A call may give back the last share in this very object.
        const auto self = ComPointer<DispatchObject>::Sharing(this);
        const UnderWay scope;
        return Guarded(info, [&]() -> HRESULT {
            if (result != nullptr) VariantInit(result);
            if (member == DISPID_NEWENUM) return NewEnum(result);
            const std::string name = MemberNameOf(member);
            if (member != DISPID_VALUE && name.empty()) return DISP_E_MEMBERNOTFOUND;
            const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
            if (const HRESULT code = CheckArguments(*given, put); FAILED(code)) return code;
            CallArguments call(*given, put);
            const InvokeKind kind = put                              ? InvokeKind::Put
                                    : (flags & DISPATCH_METHOD) != 0 ? InvokeKind::Call
                                                                     : InvokeKind::Get;
            const Variant value = object_->Invoke(name, kind, call.Passed());
            call.WriteBack();
            if (result != nullptr) OwnVariant(value).MoveTo(*result);
            return S_OK;
        });
    }

  private:
    ~DispatchObject() override {
        objects_->Drop(std::move(object_), this);
        --live;
    }

    void* AlsoAs(REFIID id) override {
        if (IsEqualIID(id, OwnInterface())) return this;
        return IsEarlyInterface(id, *object_) ? static_cast<IDispatch*>(this) : nullptr;
    }

    bool OnOwnThread() const { return objects_ == OwnObjects::OfThisThread(); }

    DISPID MemberOf(const std::string& name) const {
        if (automation::SameName(name, "_NewEnum") && object_->NewEnumerator()) return DISPID_NEWENUM;
        return object_->HasMember(name) ? MemberNumber(name) : DISPID_UNKNOWN;
    }

    HRESULT NewEnum(VARIANT* result) const {
        if (!object_->NewEnumerator()) return DISP_E_MEMBERNOTFOUND;
        if (result == nullptr) return S_OK;
        result->punkVal = NewEnumVariant(object_);
        result->vt = VT_UNKNOWN;
        return S_OK;
    }

    ObjectRef object_;
    std::shared_ptr<OwnObjects> objects_ = OwnObjects::OfThisThread();
};

}  // namespace

IDispatch* NewDispatch(const ObjectRef& object) {
    if (!object) return nullptr;
    if (const auto* foreign = dynamic_cast<const ForeignObject*>(object.get())) return foreign->NewShare();
    OwnObjects& objects = *OwnObjects::OfThisThread();
    objects.EndWaiting();
    IDispatch* known = objects.Share(object.get());
    return known != nullptr ? known : new DispatchObject(object);
}

ObjectRef ObjectOf(IDispatch* dispatch) {
    if (dispatch == nullptr) return nullptr;
    ComPointer<DispatchObject> own;
    if (SUCCEEDED(dispatch->QueryInterface(OwnInterface(), own.ReceiveAny()))) return own->Inside();
    return std::make_shared<ForeignObject>(ComPointer<IDispatch>::Sharing(dispatch));
}

void AnswerAlsoAs(std::span<const EarlyInterface> interfaces) {
    EarlyInterfaces() = interfaces;
}

long LiveDispatches() {
    return live;
}

long ClientCallsUnderWay() {
    return underWay;
}

}  // namespace vicenter::com
