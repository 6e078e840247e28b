#include "front/com/registration.h"

#include <optional>
#include <utility>
#include <vector>

#include "front/com/public_classes.h"

namespace vicenter::front {

namespace {

HKEY RootOf(RegisterFor whom) {
    return whom == RegisterFor::kUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

std::wstring TextOf(REFCLSID id) {
    wchar_t text[40] = {};
    StringFromGUID2(id, text, 40);
    return text;
}

// The type library, a resource of this library: front/com/vicenter.idl.
constexpr GUID kLibraryId = {0xFE125752, 0x6EC8, 0x4741, {0x9B, 0xFB, 0xF7, 0x48, 0x6F, 0x0A, 0xCF, 0xD9}};
constexpr const wchar_t* kPlatform = sizeof(void*) == 8 ? L"win64" : L"win32";
constexpr REGSAM kOtherWidth = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
// Below the library's key: one place for each width.
constexpr const wchar_t* kPlaces = L"\\1.0\\0";

const std::wstring kClassesKey = L"Software\\Classes\\";
// The system's own stand-in for interfaces that are IDispatch alone, for calls from other apartments.
constexpr const wchar_t* kDispatchStandIn = L"{00020420-0000-0000-C000-000000000046}";

std::wstring ClassKey(const PublicClass& one) {
    return kClassesKey + L"CLSID\\" + TextOf(one.id);
}

std::wstring NameKey(const PublicClass& one) {
    return kClassesKey + system::os::Wide(one.progId);
}

std::wstring InterfaceKey(const com::EarlyInterface& one) {
    return kClassesKey + L"Interface\\" + TextOf(one.id);
}

std::wstring LibraryKey() {
    return kClassesKey + L"TypeLib\\" + TextOf(kLibraryId);
}

struct Content {
    DWORD keys = 0;
    DWORD values = 0;
};

// Nothing where there is no such key.
std::optional<Content> ContentOf(HKEY root, const std::wstring& key) {
    HKEY open = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &open) != ERROR_SUCCESS) return std::nullopt;
    Content content;
    RegQueryInfoKeyW(open, nullptr, nullptr, nullptr, &content.keys, nullptr, nullptr, &content.values,
                     nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(open);
    return content;
}

void RemoveEmptyKey(HKEY root, const std::wstring& key) {
    const std::optional<Content> content = ContentOf(root, key);
    if (content && content->keys == 0 && content->values == 0) RegDeleteKeyW(root, key.c_str());
}

// The values of one registration, one key after the other; and all as it was before, when one cannot be
// written.
class Writer {
  public:
    explicit Writer(HKEY root) : root_(root) {}

    void Set(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
        if (code_ != ERROR_SUCCESS) return;
        NoteMissing(key);
        written_.push_back(Before(key, name));
        const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
        code_ = RegSetKeyValueW(root_, key.c_str(), name, REG_SZ, value.c_str(), bytes);
    }
    HRESULT Result() const { return HRESULT_FROM_WIN32(static_cast<unsigned long>(code_)); }

    void PutBack() const {
        for (auto old = written_.rbegin(); old != written_.rend(); ++old) {
            const wchar_t* name = old->name.empty() ? nullptr : old->name.c_str();
            if (old->there) {
                RegSetKeyValueW(root_, old->key.c_str(), name, old->type, old->bytes.data(),
                                static_cast<DWORD>(old->bytes.size()));
            } else {
                RegDeleteKeyValueW(root_, old->key.c_str(), name);
            }
        }
        for (auto key = missing_.rbegin(); key != missing_.rend(); ++key)
            RemoveEmptyKey(root_, *key);
    }

  private:
    struct Value {
        std::wstring key;
        std::wstring name;  // empty for the key's own
        bool there = false;
        DWORD type = REG_NONE;
        std::vector<BYTE> bytes;
    };

    Value Before(const std::wstring& key, const wchar_t* name) const {
        Value value{key, name == nullptr ? L"" : name, false, REG_NONE, {}};
        DWORD size = 0;
        if (RegGetValueW(root_, key.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, nullptr, nullptr, &size) !=
            ERROR_SUCCESS)
            return value;
        value.bytes.resize(size);
        value.there = RegGetValueW(root_, key.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &value.type,
                                   value.bytes.data(), &size) == ERROR_SUCCESS;
        value.bytes.resize(size);
        return value;
    }
    // The keys on the way that are not there yet, the outer ones first.
    void NoteMissing(const std::wstring& key) {
        for (std::size_t end = kClassesKey.size(); end != std::wstring::npos;) {
            end = key.find(L'\\', end + 1);
            std::wstring part = key.substr(0, end);
            if (!ContentOf(root_, part)) missing_.push_back(std::move(part));
        }
    }

    HKEY root_;
    LSTATUS code_ = ERROR_SUCCESS;
    std::vector<Value> written_;
    std::vector<std::wstring> missing_;
};

// Takes keys away with all that is in them; what is not there is no fault.
class Remover {
  public:
    explicit Remover(HKEY root) : root_(root) {}

    void Remove(const std::wstring& key) {
        const LSTATUS code = RegDeleteTreeW(root_, key.c_str());
        if (code != ERROR_SUCCESS && code != ERROR_FILE_NOT_FOUND && code_ == ERROR_SUCCESS) code_ = code;
    }
    void RemoveEmpty(const std::wstring& key) const { RemoveEmptyKey(root_, key); }
    bool HasKeys(const std::wstring& key) const {
        const std::optional<Content> content = ContentOf(root_, key);
        return content && content->keys != 0;
    }
    bool HasForOtherWidth(const std::wstring& key) const {
        HKEY open = nullptr;
        if (RegOpenKeyExW(root_, key.c_str(), 0, KEY_READ | kOtherWidth, &open) != ERROR_SUCCESS)
            return false;
        RegCloseKey(open);
        return true;
    }
    HRESULT Result() const { return HRESULT_FROM_WIN32(static_cast<unsigned long>(code_)); }

  private:
    HKEY root_;
    LSTATUS code_ = ERROR_SUCCESS;
};

}  // namespace

HRESULT RegisterClasses(RegisterFor whom, const std::wstring& library) {
    Writer writer(RootOf(whom));
    for (const PublicClass& one : PublicClasses()) {
        const std::wstring key = ClassKey(one);
        writer.Set(key, nullptr, one.description);
        writer.Set(key + L"\\InprocServer32", nullptr, library);
        writer.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
        writer.Set(key + L"\\ProgID", nullptr, system::os::Wide(one.progId));
        writer.Set(key + L"\\TypeLib", nullptr, TextOf(kLibraryId));
        writer.Set(NameKey(one), nullptr, one.description);
        writer.Set(NameKey(one) + L"\\CLSID", nullptr, TextOf(one.id));
    }
    for (const com::EarlyInterface& one : PublicInterfaces()) {
        const std::wstring key = InterfaceKey(one);
        writer.Set(key, nullptr, system::os::Wide(one.typeName));
        writer.Set(key + L"\\ProxyStubClsid32", nullptr, kDispatchStandIn);
        writer.Set(key + L"\\TypeLib", nullptr, TextOf(kLibraryId));
        writer.Set(key + L"\\TypeLib", L"Version", L"1.0");
    }
    const std::wstring version = LibraryKey() + L"\\1.0";
    writer.Set(version, nullptr, L"Voucher Template Center 1.0");
    writer.Set(LibraryKey() + kPlaces + L"\\" + kPlatform, nullptr, library);
    writer.Set(version + L"\\FLAGS", nullptr, L"0");
    if (FAILED(writer.Result())) writer.PutBack();
    return writer.Result();
}

HRESULT UnregisterClasses(RegisterFor whom) {
    Remover remover(RootOf(whom));
    for (const PublicClass& one : PublicClasses())
        remover.Remove(ClassKey(one));
    for (const com::EarlyInterface& one : PublicInterfaces())
        remover.Remove(InterfaceKey(one));
    // Programs of the other width have numbers of classes of their own, and share all else.
    if (!remover.HasForOtherWidth(ClassKey(PublicClasses().front()))) {
        for (const PublicClass& one : PublicClasses())
            remover.Remove(NameKey(one));
    }
    remover.Remove(LibraryKey() + kPlaces + L"\\" + kPlatform);
    if (!remover.HasKeys(LibraryKey() + kPlaces)) remover.Remove(LibraryKey());
    // A user who had no classes of his own has no key for them again.
    if (whom == RegisterFor::kUser) {
        for (const wchar_t* key : {L"CLSID", L"Interface", L"TypeLib"})
            remover.RemoveEmpty(kClassesKey + key);
    }
    return remover.Result();
}

}  // namespace vicenter::front
