#pragma once

// ADODB.Connection for hosts: a late-bound connection to an account set, over the registered providers.
// User-interface thread.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "automation/member_table.h"
#include "platform/ado/connection.h"

namespace vicenter::front {

class AdoConnection : public automation::TableObject<AdoConnection> {
  public:
    static const automation::MemberTable<AdoConnection>& Members();
    std::string TypeName() const override { return "Connection"; }

    // By the connect string given, else by the one that was put before.
    void Open(const automation::Variant& connectString);
    void Close();
    bool IsOpen() const { return connection_ && connection_->IsOpen(); }
    ado::RecordsetRef Execute(const std::string& text, std::int64_t& affected);
    // Seconds after which a batch is ended; 0 for never. As of the connect string, until it is set.
    std::int32_t CommandTimeout() const;
    void SetCommandTimeout(std::int32_t seconds);
    // Ends the batch that runs, from whatever runs within it.
    void Cancel();
    const std::string& ConnectString() const { return connectString_; }
    void SetConnectString(std::string text) { connectString_ = std::move(text); }

  private:
    std::string connectString_;
    std::optional<std::int32_t> commandTimeout_;
    ado::ConnectionRef connection_;
};

// Registers ADODB.Connection, and the providers that the library brings.
void RegisterAdoClasses();

}  // namespace vicenter::front
