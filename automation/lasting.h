#pragma once

// A static object that is never destroyed: for whatever holds host objects or belongs to threads.
//
// At the end of a process the host's objects are gone before our statics are, and on Windows a library's
// statics go when all other threads have been ended wherever they stood, some with a lock in their hands. To
// give something back then, or to wait, is to crash or to hang: the system takes all of it by itself.
//
//   Pool& Pool::Process() {
//       static const Lasting<Pool> pool;
//       return *pool;
//   }

#include <utility>

namespace vicenter::automation {

template <class T>
class Lasting {
  public:
    template <class... Arguments>
    explicit Lasting(Arguments&&... arguments) : object_(new T(std::forward<Arguments>(arguments)...)) {}
    Lasting(const Lasting&) = delete;
    Lasting& operator=(const Lasting&) = delete;

    T& operator*() const { return *object_; }
    T* operator->() const { return object_; }

  private:
    T* object_;
};

}  // namespace vicenter::automation
