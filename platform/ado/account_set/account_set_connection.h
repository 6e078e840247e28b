#pragma once

// A data connection to an embedded account set; see account_set_provider.h for its connect string.

#include <memory>
#include <string>
#include <vector>

#include "platform/ado/connection.h"
#include "tsql/run/session.h"

namespace vicenter::ado {

class AccountSetConnection final : public Connection {
  public:
    AccountSetConnection() = default;
    ~AccountSetConnection() override;

    void Open(const std::string& connectString) override;
    bool IsOpen() const override { return session_ != nullptr; }
    RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected) override;
    void Close() override;
    void Cancel() noexcept override;
    std::optional<std::uint32_t> DataVersion() override;
    bool BeginUnit() override;
    bool CommitUnit() override;
    const std::vector<DriverError>& Errors() const override { return errors_; }
    RecordsetRef ResultsDespiteFailure() const override { return despiteFailure_; }

  private:
    void LeaveLostFile();

    std::string poolKey_;  // empty when the session is not to be kept
    std::unique_ptr<tsql::engine::Session> session_;
    bool inUnit_ = false;
    bool unitLost_ = false;  // a batch of it has failed
    std::vector<DriverError> errors_;
    RecordsetRef despiteFailure_;
};

}  // namespace vicenter::ado
