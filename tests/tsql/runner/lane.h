#pragma once

// Where a text test runs: each lane is a source of its own, and a test program is linked with one of them.

#include <memory>
#include <string>

#include "platform/ado/connection.h"

namespace vicenter::tsql_test {

// A new, empty account set for one test; gone with the lane.
class Lane {
  public:
    Lane() = default;
    Lane(const Lane&) = delete;
    Lane& operator=(const Lane&) = delete;
    virtual ~Lane() = default;

    // Statement by statement, as the server runs a batch without a transaction around it.
    ado::ConnectionRef Open() { return Open("Transactions=none"); }
    // As the component opens it: a batch is a unit.
    ado::ConnectionRef OpenInUnits() { return Open("Transactions=batch"); }
    // A server that is not ours, which may answer otherwise where a file says so.
    virtual bool IsOtherServer() const { return false; }
    virtual bool IsOverOdbc() const { return false; }
    // What a server that is not ours says of itself in @@version; empty elsewhere.
    virtual std::string Version() const { return {}; }

  private:
    virtual ado::ConnectionRef Open(const std::string& more) = 0;
};

std::unique_ptr<Lane> MakeLane();

}  // namespace vicenter::tsql_test
