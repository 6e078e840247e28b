#pragma once

// Idle engine sessions by connect string, so that a connection per statement costs next to nothing.
// Process-wide, user-interface thread; bounded; closed at exit.

#include <memory>
#include <string>
#include <vector>

#include "tsql/run/session.h"

namespace vicenter::ado {

class SessionPool {
  public:
    // The process's pool; none once the process is ending: whoever still holds a connection then works
    // without.
    static SessionPool* Process();

    SessionPool() = default;
    SessionPool(const SessionPool&) = delete;
    SessionPool& operator=(const SessionPool&) = delete;
    ~SessionPool();

    // A kept session, or none. Its file may have been replaced or deleted since: whoever uses it is told.
    std::unique_ptr<tsql::engine::Session> Take(const std::string& key);
    // Puts a session back to its beginning and keeps it; the oldest one makes room.
    void Keep(const std::string& key, std::unique_ptr<tsql::engine::Session> session) noexcept;
    // Those of a set whose file was lost, and all others that have lost theirs: while they are open they keep
    // whoever opens it again away.
    void Forget(const std::string& key);
    // Brings what the kept sessions have written into their sets' own files.
    void BringHome();
    void Clear();

  private:
    struct Idle {
        std::string key;
        std::unique_ptr<tsql::engine::Session> session;
    };
    static bool ended_;
    std::vector<Idle> idle_;
};

}  // namespace vicenter::ado
