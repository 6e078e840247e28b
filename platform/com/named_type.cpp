#include "platform/com/named_type.h"

#include "platform/com/com_error.h"
#include "platform/com/com_object.h"
#include "platform/com/com_value.h"

namespace vicenter::com {

namespace {

class NamedType final : public ComObject<ITypeInfo> {
  public:
    explicit NamedType(std::string name) : name_(std::move(name)) {}

    HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID member, BSTR* name, BSTR* text, DWORD* helpContext,
                                               BSTR* helpFile) override {
        if (name != nullptr) *name = nullptr;
        if (text != nullptr) *text = nullptr;
        if (helpContext != nullptr) *helpContext = 0;
        if (helpFile != nullptr) *helpFile = nullptr;
        if (member != MEMBERID_NIL) return TYPE_E_ELEMENTNOTFOUND;
        return Guarded(nullptr, [&] {
            if (name != nullptr) *name = NewText(name_);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** attributes) override {
        if (attributes == nullptr) return E_POINTER;
        auto* made = static_cast<TYPEATTR*>(CoTaskMemAlloc(sizeof(TYPEATTR)));
        *attributes = made;
        if (made == nullptr) return E_OUTOFMEMORY;
        *made = TYPEATTR{};
        made->typekind = TKIND_DISPATCH;
        made->guid = IID_IDispatch;
        made->memidConstructor = MEMBERID_NIL;
        made->memidDestructor = MEMBERID_NIL;
        made->wTypeFlags = TYPEFLAG_FDISPATCHABLE;
        return S_OK;
    }
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR* attributes) override { CoTaskMemFree(attributes); }

    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT, FUNCDESC**) override { return TYPE_E_ELEMENTNOTFOUND; }
    HRESULT STDMETHODCALLTYPE GetVarDesc(UINT, VARDESC**) override { return TYPE_E_ELEMENTNOTFOUND; }
    HRESULT STDMETHODCALLTYPE GetNames(MEMBERID, BSTR*, UINT, UINT*) override {
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT, HREFTYPE*) override {
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT, INT*) override { return TYPE_E_ELEMENTNOTFOUND; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(PVOID, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE, ITypeInfo**) override {
        return TYPE_E_ELEMENTNOTFOUND;
    }
    HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID, INVOKEKIND, PVOID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, PVOID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMops(MEMBERID, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib**, UINT*) override { return E_NOTIMPL; }
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC*) override {}
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC*) override {}

  private:
    std::string name_;
};

}  // namespace

ITypeInfo* NewNamedType(const std::string& name) {
    return new NamedType(name);
}

}  // namespace vicenter::com
