#pragma once

// A connection that keeps the batches it is given and answers each with a closed recordset.

#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace vicenter::host::test {

class RecordingConnection : public ado::Connection {
  public:
    void Open(const std::string&) override {}
    bool IsOpen() const override { return true; }
    ado::RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected = nullptr) override {
        batches.emplace_back(batch);
        if (recordsAffected) *recordsAffected = -1;
        return std::make_shared<ado::Recordset>();
    }
    void Close() override {}
    const std::vector<ado::DriverError>& Errors() const override { return errors; }

    std::vector<std::string> batches;
    std::vector<ado::DriverError> errors;
};

}  // namespace vicenter::host::test
