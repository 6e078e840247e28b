// PRINT, RAISERROR and THROW.

#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::int32_t kUserError = 50000;
// Messages up to this severity are no errors.
constexpr std::int32_t kHighestMessage = 10;

// The slots of RAISERROR: %d, %i, %u, %x and %s with flags, width and precision taken as plain.
std::string FilledMessage(const std::string& message, const std::vector<std::string>& arguments) {
    std::string result;
    std::size_t next = 0;
    for (std::size_t at = 0; at < message.size(); ++at) {
        if (message[at] != '%' || at + 1 >= message.size()) {
            result += message[at];
            continue;
        }
        if (message[at + 1] == '%') {
            result += '%';
            ++at;
            continue;
        }
        std::size_t end = at + 1;
        while (end < message.size() &&
               std::string_view("-+0# 123456789.*hlI").find(message[end]) != std::string::npos) {
            ++end;
        }
        if (end >= message.size() ||
            std::string_view("diosuxX").find(message[end]) == std::string_view::npos) {
            result += message[at];
            continue;
        }
        result += next < arguments.size() ? arguments[next] : std::string("(null)");
        ++next;
        at = end;
    }
    return result;
}

}  // namespace

void Executor::Print(const PrintStatement& statement) {
    Diagnostic message;
    message.severity = 0;
    message.line = static_cast<std::int32_t>(statement.position.line) + frame_->lineBase;
    message.procedure = frame_->procedure;
    message.text = EvaluateText(*statement.text);
    sink_->Message(message);
}

void Executor::Raiserror(const RaiserrorStatement& statement) {
    SqlType type;
    const Value message = Evaluate(*statement.message, &type);
    Diagnostic details;
    details.severity = static_cast<std::int32_t>(EvaluateInt(*statement.severity));
    details.state = static_cast<std::int32_t>(EvaluateInt(*statement.state));
    details.line = static_cast<std::int32_t>(statement.position.line);
    details.column = 0;
    details.number = kUserError;
    if (type.IsNumber()) {
        const std::int64_t number = Convert(message, type, SqlType::Of(TypeKind::kBigInt)).Int();
        throw MakeError(18054, statement.position, {number, details.severity, details.state});
    }
    std::vector<std::string> arguments;
    for (const ExprPtr& argument : statement.arguments) {
        SqlType argumentType;
        const Value value = Evaluate(*argument, &argumentType);
        arguments.push_back(
            value.IsNull() ? "(null)" : Convert(value, argumentType, SqlType::NVarChar(kMaxLength)).Text());
    }
    details.text = FilledMessage(message.IsNull() ? std::string() : message.Text(), arguments);
    if (details.severity > kHighestMessage) throw SqlError(details);
    details.line += frame_->lineBase;
    details.procedure = frame_->procedure;
    sink_->Message(details);
}

void Executor::Throw(const ThrowStatement& statement) {
    if (!statement.number) {
        if (caught_.empty()) throw MakeError(10704, statement.position);
        throw Abort{SqlError(caught_.back())};
    }
    Diagnostic details;
    details.number = static_cast<std::int32_t>(EvaluateInt(*statement.number));
    details.text = EvaluateText(*statement.message);
    details.state = static_cast<std::int32_t>(EvaluateInt(*statement.state));
    details.severity = 16;
    details.line = static_cast<std::int32_t>(statement.position.line) + frame_->lineBase;
    details.procedure = frame_->procedure;
    if (details.number < kUserError) throw MakeError(35100, statement.position, {details.number});
    // THROW ends the batch in any mode.
    lastError_ = details.number;
    throw Abort{SqlError(details)};
}

}  // namespace vicenter::tsql::engine
