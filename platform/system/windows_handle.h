#pragma once

// What the system has opened, closed at the end of its scope. Not for callers outside this folder.

#include "platform/system/windows_text.h"

namespace vicenter::system::os {

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (handle_ != nullptr) CloseHandle(handle_);
    }
    explicit operator bool() const { return handle_ != nullptr; }
    HANDLE Get() const { return handle_; }

  private:
    HANDLE handle_;
};

}  // namespace vicenter::system::os
