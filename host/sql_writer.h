#pragma once

// Collects T-SQL statements and sends them in batches of bounded length. Throws what the connection throws.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"

namespace vicenter::host {

class SqlWriter {
  public:
    explicit SqlWriter(ado::Connection& connection) : connection_(connection) {}

    // One statement, without a line break behind it.
    void Add(std::string_view statement);
    // Sends what is still held back; call it at the end.
    void Flush();

  private:
    ado::Connection& connection_;
    std::string batch_;
};

// N'…' with apostrophes doubled.
std::string SqlLiteral(std::string_view text);

// Hundredths as a decimal: 12345 gives "123.45".
std::string CentsText(std::int64_t cents);

// Ten-thousandths as a decimal: 71865 gives "7.1865".
std::string RateText(std::int64_t tenThousandths);

}  // namespace vicenter::host
