#pragma once

// The library's life within a host: bound to a thread by the first call, its classes registered, ended by a
// shutdown, after which the next call begins anew.

#include <cstdint>
#include <memory>

#include "automation/class_registry.h"
#include "front/window_loop.h"
#include "platform/com/installed_classes.h"
#include "platform/system/surroundings.h"

namespace vicenter::front {

class LibrarySession {
  public:
    // The session of the process, begun if need be. Error VIC_ERROR_WRONG_THREAD on another thread.
    static LibrarySession& Enter();
    // Ends it, when it has begun: closes the windows, gives back what is the host's, which may call us
    // meanwhile, and puts back what the process had before. Error 5 while a call is under way, of the host's
    // or of a window, a window stays open, or it is just being ended.
    static void End();
    // Ends it when nothing needs it: false while a window is open, a call is under way or something of the
    // host's stands, and on another thread.
    static bool EndIfUnused();

    WindowLoop& Windows() { return *windows_; }

    // Counts the calls under way on the session's thread, but for those by COM, which counts its own.
    class CallScope;

    LibrarySession();
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
    ~LibrarySession();

  private:
    class Ending;

    // The session is this thread's from now on.
    void Belong();
    // The thread that it belongs to is another one, which lives.
    bool IsElsewhere() const;
    // A call has not come back yet: of the host's, by the C interface or by COM, or of a window.
    bool IsUnderWay() const;
    // Where that one has ended this thread goes on; it calls no more, and the host's things are still good.
    void TakeOver();

    std::uint64_t thread_ = 0;
    std::weak_ptr<const void> threadsLife_;
    int calls_ = 0;
    bool ending_ = false;
    com::InstalledClasses installed_;  // outlives the objects that it has given
    automation::ClassRegistry::Restore classes_;
    system::SurroundingsScope surroundings_;
    std::shared_ptr<WindowLoop> windows_;
};

class LibrarySession::CallScope {
  public:
    explicit CallScope(LibrarySession& session) : session_(session) { ++session_.calls_; }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
    ~CallScope() { --session_.calls_; }

  private:
    LibrarySession& session_;
};

}  // namespace vicenter::front
