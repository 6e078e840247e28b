#pragma once

// A share in a COM object.

#include <utility>

namespace vicenter::com {

template <class T>
class ComPointer {
  public:
    ComPointer() = default;
    // Takes over the caller's share; Sharing() takes one more.
    explicit ComPointer(T* object) : object_(object) {}
    static ComPointer Sharing(T* object) {
        if (object != nullptr) object->AddRef();
        return ComPointer(object);
    }
    ComPointer(const ComPointer& other) : object_(other.object_) {
        if (object_ != nullptr) object_->AddRef();
    }
    ComPointer(ComPointer&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPointer& operator=(ComPointer other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPointer() {
        if (object_ != nullptr) object_->Release();
    }

    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    // Hands the share to the caller.
    T* Detach() { return std::exchange(object_, nullptr); }
    // For calls that give a new share.
    T** Receive() {
        *this = ComPointer();
        return &object_;
    }
    void** ReceiveAny() { return reinterpret_cast<void**>(Receive()); }

  private:
    T* object_ = nullptr;
};

}  // namespace vicenter::com
