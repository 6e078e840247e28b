#pragma once

// Idle engine sessions by connect string, so that a connection per statement costs next to nothing.
// Process-wide, user-interface thread; bounded; closed at exit.

#include <memory>
#include <string>
#include <vector>

#include "tsql/engine/session.h"

namespace vicenter::ado {

class SessionPool {
  public:
    static SessionPool& Process();

    // A kept session, or none.
    std::unique_ptr<tsql::engine::Session> Take(const std::string& key);
    // Puts a session back to its beginning and keeps it; the oldest one makes room.
    void Keep(const std::string& key, std::unique_ptr<tsql::engine::Session> session);
    void Clear();

  private:
    struct Idle {
        std::string key;
        std::unique_ptr<tsql::engine::Session> session;
    };
    std::vector<Idle> idle_;
};

}  // namespace vicenter::ado
