#pragma once

// What every object of ours that has one interface of COM's does alike: it counts its shares, ends with the
// last of them, and answers to its interface and to IUnknown. Begins with one share, its maker's.

#include <atomic>

#include "platform/com/com_headers.h"

namespace vicenter::com {

template <class Interface>
class ComObject : public Interface {
  public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** result) override {
        if (result == nullptr) return E_POINTER;
        const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, __uuidof(Interface));
        *result = known ? static_cast<Interface*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++shares_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --shares_;
        if (left == 0) delete this;
        return left;
    }

  protected:
    virtual ~ComObject() = default;

  private:
    std::atomic<ULONG> shares_{1};
};

}  // namespace vicenter::com
