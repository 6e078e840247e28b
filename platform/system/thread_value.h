#pragma once

// A value of its own for every thread, made when the thread first asks and ended with it.
//
// thread_local does for values that have nothing to end. Of the others the compiler for Windows gives back
// the room before it ends them, which spoils the heap: they are kept in a slot of the system's there.

#ifdef _WIN32
#include <new>
#endif

namespace vicenter::system {

#ifdef _WIN32

// What it holds for each thread is ended by `end`, on that thread.
class ThreadSlot {
  public:
    using End = void (*)(void* value);

    explicit ThreadSlot(End end);
    ThreadSlot(const ThreadSlot&) = delete;
    ThreadSlot& operator=(const ThreadSlot&) = delete;
    ~ThreadSlot();

    void* Value() const;
    // False where there is no memory to keep it.
    bool Keep(void* value) const;

  private:
    End end_;
    unsigned long place_;
};

// T tells the values of one kind from all others.
template <class T>
T& ValueOfThisThread() {
    static const ThreadSlot slot([](void* value) { delete static_cast<T*>(value); });
    if (void* kept = slot.Value()) return *static_cast<T*>(kept);
    T* made = new (std::nothrow) T;
    if (made != nullptr && slot.Keep(made)) return *made;
    delete made;
    // Without memory one value serves all threads.
    static T spare;
    return spare;
}

#else

template <class T>
T& ValueOfThisThread() {
    thread_local T value;
    return value;
}

#endif

}  // namespace vicenter::system
