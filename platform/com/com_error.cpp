#include "platform/com/com_error.h"

#include "platform/com/com_pointer.h"
#include "platform/com/com_value.h"

namespace vicenter::com {

using automation::Error;
namespace error_number = automation::error_number;

namespace {

constexpr HRESULT kControl = static_cast<HRESULT>(0x800A0000);

struct Known {
    HRESULT code;
    std::int32_t number;
};

// The system's own failures of a call, by the number that a client of ours knows.
constexpr Known kKnown[] = {
    {DISP_E_MEMBERNOTFOUND, error_number::kNoSuchMember},
    {DISP_E_UNKNOWNNAME, error_number::kNoSuchMember},
    {DISP_E_NONAMEDARGS, error_number::kNamedArgumentNotFound},
    {DISP_E_PARAMNOTFOUND, error_number::kNamedArgumentNotFound},
    {DISP_E_PARAMNOTOPTIONAL, error_number::kArgumentNotOptional},
    {DISP_E_BADPARAMCOUNT, error_number::kWrongArgumentCount},
    {DISP_E_TYPEMISMATCH, error_number::kTypeMismatch},
    {DISP_E_OVERFLOW, error_number::kOverflow},
    {DISP_E_BADINDEX, error_number::kSubscriptOutOfRange},
    {DISP_E_DIVBYZERO, error_number::kDivisionByZero},
    {E_OUTOFMEMORY, error_number::kOutOfMemory},
    {E_INVALIDARG, error_number::kInvalidProcedureCall},
    {E_ACCESSDENIED, error_number::kPermissionDenied},
};

std::int32_t NumberOf(HRESULT code) {
    for (const Known& known : kKnown) {
        if (known.code == code) return known.number;
    }
    // What a client raised by its own number comes back as that.
    if ((code & static_cast<HRESULT>(0xFFFF0000)) == kControl) return code & 0xFFFF;
    return code;
}

std::string SystemText(HRESULT code) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(code), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring_view line(text, length);
    while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r' || line.back() == L' '))
        line.remove_suffix(1);
    std::string result = system::os::Narrow(line);
    LocalFree(text);
    return result;
}

std::string Taken(BSTR& text) {
    std::string result = TextOf(text);
    SysFreeString(text);
    text = nullptr;
    return result;
}

}  // namespace

HRESULT ResultOf(const Error& error) {
    return error.Number() < 0 ? error.Number() : kControl | (error.Number() & 0xFFFF);
}

void Fill(EXCEPINFO& info, const Error& error) {
    info = EXCEPINFO{};
    info.scode = ResultOf(error);
    info.bstrSource = NewText(error.Source().empty() ? std::string("VelaVICenter") : error.Source());
    info.bstrDescription = NewText(error.Text());
}

void Announce(const Error& error) {
    ComPointer<ICreateErrorInfo> made;
    if (FAILED(CreateErrorInfo(made.Receive()))) return;
    std::wstring source = system::os::Wide(error.Source().empty() ? "VelaVICenter" : error.Source());
    std::wstring text = system::os::Wide(error.Text());
    made->SetSource(source.data());
    made->SetDescription(text.data());
    ComPointer<IErrorInfo> info;
    if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, info.ReceiveAny()))) SetErrorInfo(0, info.Get());
}

HRESULT Told(EXCEPINFO* info, const Error& error) noexcept {
    try {
        if (info != nullptr) {
            Fill(*info, error);
            return DISP_E_EXCEPTION;
        }
        Announce(error);
        return ResultOf(error);
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

Error ErrorOf(HRESULT code, EXCEPINFO& info) {
    if (code != DISP_E_EXCEPTION) {
        const std::int32_t number = NumberOf(code);
        return Error(number, number == code ? SystemText(code) : std::string());
    }
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    const std::string source = Taken(info.bstrSource);
    std::string text = Taken(info.bstrDescription);
    Taken(info.bstrHelpFile);
    const std::int32_t number = info.wCode != 0 ? info.wCode : NumberOf(info.scode);
    if (text.empty() && number == info.scode) text = SystemText(info.scode);
    return Error(number, text, source);
}

}  // namespace vicenter::com
