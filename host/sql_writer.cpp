#include "host/sql_writer.h"

#include "automation/decimal.h"

namespace vicenter::host {

namespace {

// Long enough that the round trips do not count, short enough for any server.
constexpr std::size_t kBatchLength = 200'000;

std::string ScaledText(std::int64_t value, int scale) {
    const bool negative = value < 0;
    const auto magnitude = static_cast<std::uint64_t>(negative ? -value : value);
    return automation::Decimal::FromParts(negative, magnitude, scale).ToText();
}

}  // namespace

void SqlWriter::Add(std::string_view statement) {
    batch_ += statement;
    batch_ += "\r\n";
    if (batch_.size() >= kBatchLength) Flush();
}

void SqlWriter::Flush() {
    if (batch_.empty()) return;
    std::string batch;
    batch.swap(batch_);
    connection_.Execute(batch);
}

std::string SqlLiteral(std::string_view text) {
    std::string literal = "N'";
    for (const char c : text) {
        literal += c;
        if (c == '\'') literal += c;
    }
    literal += '\'';
    return literal;
}

std::string CentsText(std::int64_t cents) {
    return ScaledText(cents, 2);
}

std::string RateText(std::int64_t tenThousandths) {
    return ScaledText(tenThousandths, 4);
}

}  // namespace vicenter::host
