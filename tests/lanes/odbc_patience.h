#pragma once

// For tests that count round trips: for as long as one of these lives, connections that are kept are neither
// asked before they are used again nor closed, however much time passes.

#include <chrono>

#include "platform/ado/odbc/odbc_provider.h"

namespace vicenter::lanes {

class OdbcPatience {
  public:
    OdbcPatience() {
        constexpr std::chrono::hours kLong{1};
        ado::SetOdbcPooling({usual_.most, kLong, kLong});
    }
    OdbcPatience(const OdbcPatience&) = delete;
    OdbcPatience& operator=(const OdbcPatience&) = delete;
    ~OdbcPatience() { ado::SetOdbcPooling(usual_); }

  private:
    const ado::OdbcPooling usual_ = ado::CurrentOdbcPooling();
};

}  // namespace vicenter::lanes
