// PRINT, RAISERROR and THROW.

#include <algorithm>

#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/run/message_text.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::int32_t kUserError = 50000;
// Messages up to this severity are no errors.
constexpr std::int32_t kHighestMessage = 10;
// Above this RAISERROR is to write into the server's log, too.
constexpr std::int32_t kHighestPlain = 18;
constexpr std::int32_t kHighestSeverity = 25;

}  // namespace

void Executor::Print(const PrintStatement& statement) {
    Diagnostic message;
    message.severity = 0;
    message.line = static_cast<std::int32_t>(statement.position.line) + frame_->lineBase;
    message.procedure = frame_->procedure;
    message.text = EvaluateText(*statement.text);
    sink_->Message(message);
}

void Executor::RaiseKnown(std::int32_t number, const RaiserrorStatement& statement) {
    std::vector<std::string> texts;
    for (const ExprPtr& argument : statement.arguments)
        texts.push_back(EvaluateText(*argument));
    texts.resize(2);
    throw MakeError(number, statement.position, {texts[0], texts[1]});
}

void Executor::Raiserror(const RaiserrorStatement& statement) {
    SqlType type;
    const Value message = Evaluate(*statement.message, &type);
    Diagnostic details;
    details.severity = static_cast<std::int32_t>(EvaluateInt(*statement.severity));
    const bool logs =
        std::find(statement.options.begin(), statement.options.end(), "log") != statement.options.end();
    if (details.severity > kHighestPlain && !logs) throw MakeError(2754, statement.position, {kHighestPlain});
    details.severity = std::clamp(details.severity, 0, kHighestSeverity);
    details.state = static_cast<std::int32_t>(EvaluateInt(*statement.state));
    details.line = static_cast<std::int32_t>(statement.position.line);
    details.column = 0;
    details.number = kUserError;
    if (type.IsNumber()) {
        const std::int64_t number = Convert(message, type, SqlType::Of(TypeKind::kBigInt)).Int();
        // The server's own procedures tell its own messages.
        if (frame_->isSystem) RaiseKnown(static_cast<std::int32_t>(number), statement);
        throw MakeError(18054, statement.position, {number, details.severity, details.state});
    }
    std::vector<MessageArgument> arguments;
    for (const ExprPtr& argument : statement.arguments) {
        MessageArgument& filled = arguments.emplace_back();
        SqlType argumentType;
        const Value value = Evaluate(*argument, &argumentType);
        filled.isNull = value.IsNull();
        filled.isInteger = argumentType.IsInteger();
        if (filled.isNull) continue;
        if (filled.isInteger)
            filled.number = Convert(value, argumentType, SqlType::Of(TypeKind::kBigInt)).Int();
        if (!filled.isInteger)
            filled.text = Convert(value, argumentType, SqlType::NVarChar(kMaxLength)).Text();
    }
    details.text = FilledMessage(message.IsNull() ? std::string() : message.Text(), arguments);
    if (details.severity > kHighestMessage) throw SqlError(details);
    // A message is no error, unless @@ERROR is to tell of it.
    if (std::find(statement.options.begin(), statement.options.end(), "seterror") != statement.options.end())
        throw MakeError(40510, statement.position, {"RAISERROR … WITH SETERROR"});
    details.line += frame_->lineBase;
    details.procedure = frame_->procedure;
    sink_->Message(details);
}

void Executor::Throw(const ThrowStatement& statement) {
    if (!statement.number) {
        if (caught_.empty()) throw MakeError(10704, statement.position);
        throw Abort{SqlError(caught_.back()), nullptr, false, frame_->options.exactAbort};
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
    throw Abort{SqlError(details), nullptr, false, frame_->options.exactAbort};
}

}  // namespace vicenter::tsql::engine
