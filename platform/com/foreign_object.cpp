#include "platform/com/foreign_object.h"

#include <deque>
#include <vector>

#include "platform/com/com_error.h"
#include "platform/com/com_value.h"
#include "platform/com/dispatch_object.h"
#include "platform/com/enum_variant.h"

namespace vicenter::com {

using automation::Argument;
using automation::Arguments;
using automation::Enumerator;
using automation::Error;
using automation::InvokeKind;
using automation::Variant;
namespace error_number = automation::error_number;

namespace {

// How long a busy server is waited for.
constexpr int kTries = 60;
constexpr DWORD kPauseMilliseconds = 50;

bool IsBusy(HRESULT code) {
    return code == RPC_E_CALL_REJECTED || code == RPC_E_SERVERCALL_RETRYLATER;
}

// The server's process was about to end when it was asked: the next one starts another.
bool IsEnding(HRESULT code) {
    return code == CO_E_SERVER_STOPPING || code == RPC_E_SERVER_DIED || code == RPC_E_SERVER_DIED_DNE ||
           code == RPC_E_DISCONNECTED || code == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE) ||
           code == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) || code == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE);
}

// Whoever has an object of a server that ends has lost it: that is asked of those alone that are made.
bool IsBusyOrEnding(HRESULT code) {
    return IsBusy(code) || IsEnding(code);
}

template <class Call>
HRESULT Patiently(const Call& call, bool (*passes)(HRESULT) = IsBusy) {
    HRESULT code = call();
    for (int i = 1; i < kTries && passes(code); ++i) {
        Sleep(kPauseMilliseconds);
        code = call();
    }
    return code;
}

// Objects of Wine's script engine answer to the newer of the two interfaces alone.
ComPointer<IDispatchEx> NewerOf(IDispatch* dispatch) {
    ComPointer<IDispatchEx> newer;
    dispatch->QueryInterface(__uuidof(IDispatchEx), newer.ReceiveAny());
    return newer;
}

HRESULT FindNumbers(IDispatch* dispatch, wchar_t** names, UINT count, DISPID* numbers) {
    const HRESULT code = Patiently(
        [&] { return dispatch->GetIDsOfNames(IID_NULL, names, count, LOCALE_USER_DEFAULT, numbers); });
    if (code != E_NOTIMPL || count != 1) return code;
    const auto newer = NewerOf(dispatch);
    if (!newer) return code;
    const BSTR name = SysAllocString(names[0]);
    const HRESULT found = newer->GetDispID(name, fdexNameCaseInsensitive, numbers);
    SysFreeString(name);
    return found;
}

HRESULT CallNumber(IDispatch* dispatch, DISPID number, WORD flags, DISPPARAMS* given, VARIANT* result,
                   EXCEPINFO* info) {
    const HRESULT code =
        dispatch->Invoke(number, IID_NULL, LOCALE_USER_DEFAULT, flags, given, result, info, nullptr);
    if (code != E_NOTIMPL) return code;
    const auto newer = NewerOf(dispatch);
    return newer ? newer->InvokeEx(number, LOCALE_USER_DEFAULT, flags, given, result, info, nullptr) : code;
}

// The member's number, then those of the named arguments.
std::vector<DISPID> NumbersOf(IDispatch* dispatch, std::string_view name, const Arguments& arguments) {
    std::vector<std::wstring> texts{system::os::Wide(name)};
    for (const Argument& argument : arguments) {
        if (!argument.Name().empty()) texts.push_back(system::os::Wide(argument.Name()));
    }
    std::vector<wchar_t*> names;
    for (std::wstring& text : texts)
        names.push_back(text.data());
    std::vector<DISPID> numbers(names.size(), DISPID_UNKNOWN);
    if (name.empty()) {
        numbers[0] = DISPID_VALUE;
        if (names.size() == 1) return numbers;
    }
    const HRESULT code = FindNumbers(dispatch, names.data(), static_cast<UINT>(names.size()), numbers.data());
    if (FAILED(code)) {
        const bool member = numbers[0] == DISPID_UNKNOWN;
        if (code == DISP_E_UNKNOWNNAME && !member) throw Error(error_number::kNamedArgumentNotFound);
        EXCEPINFO none{};
        throw ErrorOf(code, none);
    }
    return numbers;
}

// The arguments as COM wants them: from the last to the first, named ones in front.
class CallParameters {
  public:
    CallParameters(Arguments& arguments, const std::vector<DISPID>& numbers, bool put)
        : arguments_(arguments) {
        std::size_t named = 1;
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const bool value = put && i + 1 == arguments.size();
            const bool isNamed = !arguments[i].Name().empty();
            VARIANT parameter = Parameter(arguments[i]);
            if (value || isNamed) {
                namedValues_.push_back(parameter);
                names_.push_back(value ? DISPID_PROPERTYPUT : numbers[named++]);
            } else {
                positional_.push_back(parameter);
            }
        }
        all_.assign(namedValues_.rbegin(), namedValues_.rend());
        all_.insert(all_.end(), positional_.rbegin(), positional_.rend());
        namesInOrder_.assign(names_.rbegin(), names_.rend());
        given_ = {all_.data(), namesInOrder_.data(), static_cast<UINT>(all_.size()),
                  static_cast<UINT>(namesInOrder_.size())};
    }

    DISPPARAMS* Given() { return &given_; }

    // References to variables of their values' own types in place of VARIANTs: what a member with declared
    // types takes whose server converts nothing. False when there is none.
    bool GiveTypedReferences() {
        bool any = false;
        for (VARIANT& parameter : all_) {
            if (parameter.vt != (VT_BYREF | VT_VARIANT)) continue;
            VARIANT& variable = *parameter.pvarVal;
            if (variable.vt == VT_EMPTY || variable.vt == VT_NULL || variable.vt == VT_ERROR) continue;
            parameter.vt = static_cast<VARTYPE>(VT_BYREF | variable.vt);
            parameter.byref = variable.vt == VT_DECIMAL ? static_cast<void*>(&variable.decVal)
                                                        : static_cast<void*>(&variable.byref);
            any = true;
        }
        return any;
    }

    void WriteBack() {
        for (const auto& [argument, variable] : references_)
            argument->Assign(FromCom(variable->Value()));
    }

  private:
    // Shares what the values hold, which live here.
    VARIANT Parameter(Argument& argument) {
        OwnVariant& value = values_.emplace_back(argument.Value());
        if (!argument.IsByReference()) return value.Value();
        references_.emplace_back(&argument, &value);
        VARIANT reference;
        VariantInit(&reference);
        reference.vt = VT_BYREF | VT_VARIANT;
        reference.pvarVal = &value.Value();
        return reference;
    }

    Arguments& arguments_;
    std::deque<OwnVariant> values_;
    std::vector<std::pair<Argument*, OwnVariant*>> references_;
    std::vector<VARIANT> namedValues_;
    std::vector<VARIANT> positional_;
    std::vector<VARIANT> all_;
    std::vector<DISPID> names_;
    std::vector<DISPID> namesInOrder_;
    DISPPARAMS given_{};
};

// The members that a dictionary's callers use, where nothing tells of its class: one of a script, say.
bool LooksLikeDictionary(const ForeignObject& object) {
    const auto has = [&](const char* member) { return object.HasMember(member); };
    return has("Keys") && has("Items") && has("Item") && has("Exists") && has("Count") && has("RemoveAll");
}

WORD FlagsOf(InvokeKind kind, const Arguments& arguments) {
    switch (kind) {
        case InvokeKind::Get:
            return DISPATCH_PROPERTYGET | DISPATCH_METHOD;
        case InvokeKind::Call:
            return DISPATCH_METHOD | DISPATCH_PROPERTYGET;
        case InvokeKind::Put:
            break;
    }
    const bool object = !arguments.empty() && arguments.back().Value().IsObject();
    return object ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
}

}  // namespace

std::string ForeignObject::TypeName() const {
    ComPointer<ITypeInfo> type;
    ComPointer<IProvideClassInfo> provider;
    if (SUCCEEDED(dispatch_->QueryInterface(IID_IProvideClassInfo, provider.ReceiveAny())))
        provider->GetClassInfo(type.Receive());
    if (!type) dispatch_->GetTypeInfo(0, LOCALE_USER_DEFAULT, type.Receive());
    BSTR name = nullptr;
    if (!type || FAILED(type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr)) ||
        SysStringLen(name) == 0) {
        SysFreeString(name);
        return LooksLikeDictionary(*this) ? "Dictionary" : "Object";
    }
    std::string result = TextOf(name);
    SysFreeString(name);
    // An interface's name, where the class tells none of its own.
    if (result.size() > 1 && result[0] == 'I' && result[1] >= 'A' && result[1] <= 'Z') result.erase(0, 1);
    return result;
}

bool ForeignObject::HasMember(std::string_view name) const {
    if (name.empty()) return true;
    std::wstring text = system::os::Wide(name);
    wchar_t* names = text.data();
    DISPID number = DISPID_UNKNOWN;
    return SUCCEEDED(FindNumbers(dispatch_.Get(), &names, 1, &number));
}

Variant ForeignObject::Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) {
    const std::vector<DISPID> numbers = NumbersOf(dispatch_.Get(), name, arguments);
    CallParameters parameters(arguments, numbers, kind == InvokeKind::Put);
    WORD flags = FlagsOf(kind, arguments);
    OwnVariant result;
    EXCEPINFO info{};
    const auto call = [&] {
        info = {};
        return CallNumber(dispatch_.Get(), numbers[0], flags, parameters.Given(),
                          kind == InvokeKind::Put ? nullptr : &result.Value(), &info);
    };
    HRESULT code = Patiently(call);
    if (flags == DISPATCH_PROPERTYPUTREF && (code == DISP_E_MEMBERNOTFOUND || code == DISP_E_TYPEMISMATCH)) {
        flags = DISPATCH_PROPERTYPUT;
        code = Patiently(call);
    }
    if (code == DISP_E_TYPEMISMATCH && parameters.GiveTypedReferences()) code = Patiently(call);
    if (FAILED(code)) throw ErrorOf(code, info);
    parameters.WriteBack();
    return FromCom(result.Value());
}

std::unique_ptr<Enumerator> ForeignObject::NewEnumerator() {
    DISPPARAMS none{};
    OwnVariant result;
    const HRESULT code =
        dispatch_->Invoke(DISPID_NEWENUM, IID_NULL, LOCALE_USER_DEFAULT,
                          DISPATCH_PROPERTYGET | DISPATCH_METHOD, &none, &result.Value(), nullptr, nullptr);
    const VARTYPE type = result.Value().vt;
    if (FAILED(code) || (type != VT_UNKNOWN && type != VT_DISPATCH)) return nullptr;
    ComPointer<IEnumVARIANT> values;
    if (result.Value().punkVal == nullptr ||
        FAILED(result.Value().punkVal->QueryInterface(IID_IEnumVARIANT, values.ReceiveAny())))
        return nullptr;
    return Over(std::move(values));
}

automation::ObjectRef CreateForeign(std::string_view progId) {
    CLSID id{};
    ComPointer<IDispatch> dispatch;
    const auto create = [&] {
        return CoCreateInstance(id, nullptr, CLSCTX_SERVER, IID_IDispatch, dispatch.ReceiveAny());
    };
    if (FAILED(CLSIDFromProgID(system::os::Wide(progId).c_str(), &id)) ||
        FAILED(Patiently(create, IsBusyOrEnding)))
        throw Error(error_number::kCannotCreateObject, {}, std::string(progId));
    return ObjectOf(dispatch.Get());
}

}  // namespace vicenter::com
