// Texts put together and taken apart: CONCAT_WS and PARSENAME.

#include <algorithm>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kLongestVarChar = 8000;
constexpr int kLongestNVarChar = 4000;
constexpr int kLongestName = 128;
constexpr std::size_t kMostParts = 4;

// ts_concat_ws(separator, text, …): what is NULL is left out, its separator too
void JoinFunction(FunctionCall& call) {
    const std::string separator(call.IsNull(0) ? std::string_view() : call.Text(0));
    std::string joined;
    bool first = true;
    for (int i = 1; i < call.Count(); ++i) {
        if (call.IsNull(i)) continue;
        if (!first) joined += separator;
        first = false;
        joined += call.Text(i);
    }
    call.Return(std::string_view(joined));
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
    const std::string sql = call.Call(arguments);
    if (isMax || length <= limit) return {sql, type};
    return {kConvertCall.Call({sql, Code(SqlType::Of(kind, kMaxLength)), Code(type), "0"}), type};
}

Bound BindParseName(Binding& call) {
    return {call.Call({call.Text(0), call.Int(1)}), SqlType::NVarChar(kLongestName)};
}

constexpr SqlFunction kJoin = Scalar<JoinFunction>("ts_concat_ws", -1);
constexpr SqlFunction kParseName = Scalar<ParseNameFunction>("ts_parse_name", 2);

constexpr FunctionEntry kEntries[] = {
    {"concat_ws", 3, kManyArguments, BindJoin, &kJoin},
    {"parsename", 2, 2, BindParseName, &kParseName},
};

}  // namespace

FunctionSet TextPartFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
