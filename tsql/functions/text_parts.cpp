// Texts put together and taken apart: CONCAT_WS and PARSENAME.

#include <algorithm>
#include <optional>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kLongestVarChar = 8000;
constexpr int kLongestNVarChar = 4000;
constexpr int kLongestName = 128;
constexpr std::size_t kMostParts = 4;

// What is NULL is left out, its separator too; where all is, nothing is.
std::optional<std::string> Joined(const FunctionCall& call) {
    const std::string separator(call.IsNull(0) ? std::string_view() : call.Text(0));
    std::optional<std::string> joined;
    for (int i = 1; i < call.Count(); ++i) {
        if (call.IsNull(i)) continue;
        joined = joined ? *joined + separator : std::string();
        *joined += call.Text(i);
    }
    return joined;
}

// ts_concat_ws(separator, text, …)
void JoinFunction(FunctionCall& call) {
    call.Return(std::string_view(Joined(call).value_or(std::string())));
}

// ts_concat_ws_some(separator, text, …): the same, as one of the texts of another call; NULL for none
void JoinSomeFunction(FunctionCall& call) {
    if (const auto joined = Joined(call)) call.Return(std::string_view(*joined));
}

// The parts of a name, brackets and quotes undone; none for what is no name.
std::vector<std::string> NameParts(std::string_view name) {
    std::vector<std::string> parts(1);
    bool closed = false;  // a quoted part is over
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char c = name[at];
        if (c == '.') {
            parts.emplace_back();
            closed = false;
        } else if (closed) {
            return {};
        } else if ((c == '[' || c == '"') && parts.back().empty()) {
            const char close = c == '[' ? ']' : '"';
            for (++at;; ++at) {
                if (at >= name.size()) return {};
                if (name[at] == close && (at + 1 >= name.size() || name[at + 1] != close)) break;
                if (name[at] == close) ++at;
                parts.back() += name[at];
            }
            closed = true;
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

// ts_parse_name(name, part): the object is part 1, its schema 2, its database 3, its server 4
void ParseNameFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::vector<std::string> parts = NameParts(call.Text(0));
    const std::int64_t wanted = call.Int(1);
    if (parts.size() > kMostParts || wanted < 1 || wanted > static_cast<std::int64_t>(parts.size())) return;
    const std::string& part = parts[parts.size() - static_cast<std::size_t>(wanted)];
    if (part.empty() || UnitCount(part) > static_cast<std::size_t>(kLongestName)) return;
    call.Return(std::string_view(part));
}

constexpr SqlFunction kJoin = Scalar<JoinFunction>("ts_concat_ws", -1);
constexpr SqlFunction kJoinSome = Scalar<JoinSomeFunction>("ts_concat_ws_some", -1);

// More texts than one call takes become fewer.
std::vector<std::string> InCalls(Binding& call, const std::vector<std::string>& arguments) {
    if (arguments.size() <= kMostInOneCall) return arguments;
    std::vector<std::string> fewer{arguments.front()};
    for (std::size_t i = 1; i < arguments.size(); i += kMostInOneCall - 1) {
        std::vector<std::string> some{call.Text(0)};
        for (std::size_t j = i; j < std::min(i + kMostInOneCall - 1, arguments.size()); ++j)
            some.push_back(arguments[j]);
        fewer.push_back(kJoinSome.Call(some));
    }
    return fewer;
}

Bound BindJoin(Binding& call) {
    std::vector<std::string> arguments;
    int length = 0;
    bool isMax = false;
    bool unicode = false;
    const int separator = call.TextLength(0);
    for (std::size_t i = 0; i < call.Count(); ++i) {
        const int part = call.TextLength(i);
        isMax = isMax || part == kMaxLength;
        unicode = unicode || call.Type(i).IsUnicode();
        if (i > 0) length += (part == kMaxLength ? 0 : part) + (i > 1 && separator > 0 ? separator : 0);
        arguments.push_back(call.Text(i));
    }
    const int limit = unicode ? kLongestNVarChar : kLongestVarChar;
    const TypeKind kind = unicode ? TypeKind::kNVarChar : TypeKind::kVarChar;
    const SqlType type = SqlType::Of(kind, isMax ? kMaxLength : std::min(std::max(length, 1), limit));
    const std::string sql = call.Call(InCalls(call, arguments));
    if (isMax || length <= limit) return {sql, type};
    return {kConvertCall.Call({sql, Code(SqlType::Of(kind, kMaxLength)), Code(type), "0"}), type};
}

Bound BindParseName(Binding& call) {
    return {call.Call({call.Text(0), call.Int(1)}), SqlType::NVarChar(kLongestName)};
}

constexpr SqlFunction kParseName = Scalar<ParseNameFunction>("ts_parse_name", 2);

constexpr FunctionEntry kEntries[] = {
    {"concat_ws", 3, kMostTexts, BindJoin, &kJoin},
    {"parsename", 2, 2, BindParseName, &kParseName},
};

constexpr const SqlFunction* kOthers[] = {&kJoinSome};

}  // namespace

FunctionSet TextPartFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
