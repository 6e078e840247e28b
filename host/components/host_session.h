#pragma once

// One user at work on one account set: what the host's components share.
//
// Held by every component object that a registration makes; the connection is opened at the first statement
// and anew after it has been lost. User-interface thread.

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/ado/connection.h"

namespace vicenter::host {

struct HostSettings {
    std::string connectString;
    std::int32_t userId = 1;
    std::string cloudFolder = {};  // where the users' cloud drives are kept; empty: there are none
    // What the windows call them; empty: by what stands above.
    std::string accountSetName = {};
    std::string userName = {};
};

class HostSession {
  public:
    explicit HostSession(HostSettings settings) : settings_(std::move(settings)) {}

    const HostSettings& Settings() const { return settings_; }
    // The host property string: UserID first, since it is searched for as plain text, and the connect string
    // in braces.
    std::string PropsString() const;
    // Asks the account set for the names of itself and of the user, for the windows. A set that cannot tell
    // has none.
    void ReadNames();
    // Runs one batch on the session's own connection. Throws what the connection throws.
    ado::RecordsetRef Execute(std::string_view batch);
    // Another text whenever a name list may have changed; empty when that cannot be told. A server is asked
    // for the state of the lists' tables where it tracks their changes; elsewhere they count as unchanged for
    // the seconds that the connect string gives as Lists Kept= (default 60; 0: it cannot be told).
    std::string DataVersion();
    ado::Connection& Connection();

  private:
    // What a server's change tracking says of the lists' tables; nothing when it does not watch all of them.
    std::optional<std::string> TrackedVersion();
    std::string VersionByTime();

    HostSettings settings_;
    ado::ConnectionRef connection_;
    int number_ = 0;      // of the connection, within the process: versions of different ones do not compare
    bool tracks_ = true;  // as far as is known
    std::int64_t period_ = 0;
    std::optional<std::chrono::steady_clock::time_point> periodStart_;
};

using HostSessionRef = std::shared_ptr<HostSession>;

// The value of a key of a property string that a caller hands to a component.
std::string PropsValue(const std::string& propsString, std::string_view key);

// The user id in a property string; throws Error 5 when it holds none.
std::int32_t PropsUser(const std::string& propsString);

}  // namespace vicenter::host
