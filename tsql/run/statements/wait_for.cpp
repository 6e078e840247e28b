#include <algorithm>
#include <thread>

#include "tsql/run/executor.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kDay{24 * 60 * 60 * 1000};
// How soon a cancel is heard.
constexpr milliseconds kNap{10};

milliseconds TimeOfDay(const DateTime& date) {
    const automation::DateTimeParts parts = date.Parts();
    return milliseconds(((parts.hour * 60LL + parts.minute) * 60 + parts.second) * 1000 + parts.millisecond);
}

}  // namespace

void Executor::WaitFor(const WaitForStatement& statement) {
    SqlType type;
    const Value value = Evaluate(*statement.time, &type);
    const std::string text =
        value.IsNull() ? std::string() : Convert(value, type, SqlType::NVarChar(kMaxLength), 114).Text();
    const auto time = text.empty() ? std::nullopt : ParseDate(text);
    // A time of day alone: with a date it would be another one.
    const bool isTime =
        time && text.find(':') != std::string::npos && text.find_first_of("-/") == std::string::npos;
    if (!isTime) throw MakeError(148, statement.position, {text});
    milliseconds wait = TimeOfDay(*time);
    if (statement.untilTime) wait = (wait - TimeOfDay(options_.now()) + kDay) % kDay;
    // What is read behind it is of that time.
    catalog_.EndSnapshot();
    const auto end = std::chrono::steady_clock::now() + wait;
    for (;;) {
        database_.Stopping().Check();
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= milliseconds(0)) return;
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, kNap));
    }
}

}  // namespace vicenter::tsql::engine
