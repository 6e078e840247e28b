#pragma once

// Where a text test runs: each lane is a source of its own, and a test program is linked with one of them.

#include <memory>

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
    virtual ado::ConnectionRef Open() = 0;
    // A server that is not ours, which may answer otherwise where a file says so.
    virtual bool IsOtherServer() const { return false; }
    virtual bool IsOverOdbc() const { return false; }
};

std::unique_ptr<Lane> MakeLane();

}  // namespace vicenter::tsql_test
