#pragma once

// What every object of ours does alike that COM's clients hold: it counts its shares, ends with the last of
// them, and answers to its interfaces and to IUnknown. Begins with one share, its maker's.

#include <atomic>
#include <tuple>

#include "platform/com/com_headers.h"

namespace vicenter::com {

// How many shares are held in one object.
class ShareCount {
  public:
    ULONG Add() { return ++held_; }
    ULONG GiveBack() { return --held_; }
    // For whom knows the object and holds none: false when the last one has been given back, on whatever
    // thread.
    bool AddUnlessEnded() {
        ULONG held = held_;
        while (held != 0) {
            if (held_.compare_exchange_weak(held, held + 1)) return true;
        }
        return false;
    }

  private:
    std::atomic<ULONG> held_{1};
};

// How many there are at present of whichever kind, in the whole process: as long as clients hold one of them,
// their code must stay.
inline std::atomic<long>& LiveComObjects() {
    static std::atomic<long> live{0};
    return live;
}

// The first interface is the one that IUnknown is asked of, so that comparisons of identities hold.
template <class... Interfaces>
class ComObject : public Interfaces... {
  public:
    ComObject() { ++LiveComObjects(); }
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** result) override {
        if (result == nullptr) return E_POINTER;
        *result = IsEqualIID(id, IID_IUnknown) ? static_cast<First*>(this) : nullptr;
        ((*result = IsEqualIID(id, __uuidof(Interfaces)) ? static_cast<Interfaces*>(this) : *result), ...);
        if (*result == nullptr) *result = AlsoAs(id);
        if (*result == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return shares_.Add(); }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = shares_.GiveBack();
        if (left == 0) delete this;
        return left;
    }

  protected:
    using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;

    virtual ~ComObject() { --LiveComObjects(); }

    // What else the object answers to; none.
    virtual void* AlsoAs(REFIID) { return nullptr; }
    ShareCount& Shares() { return shares_; }

  private:
    ShareCount shares_;
};

}  // namespace vicenter::com
