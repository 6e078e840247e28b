// Functions that look for a text in another. Places count UTF-16 code units; what is found goes by the
// collation.

#include <algorithm>
#include <vector>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/types/like_pattern.h"

namespace vicenter::tsql::engine {

namespace {

// A text folded character by character, so that a place found in it is a place in the text.
class FoldedText {
  public:
    // Stops with the batch, as its searches do.
    FoldedText(const FunctionCall& call, std::string_view text) : call_(call) {
        const TextCollation& collation = call.Collation();
        for (std::size_t at = 0; at < text.size();) {
            if (starts_.size() % kCharactersPerCheck == 0) call.CheckStop();
            const std::size_t bytes = CharacterBytes(text, at);
            starts_.push_back(folded_.size());
            sources_.push_back(at);
            if (bytes == 1 && static_cast<unsigned char>(text[at]) < 0x80) {
                folded_ += LowerAscii(text[at]);
            } else {
                folded_ += collation.Fold(text.substr(at, bytes));
            }
            at += bytes;
        }
        starts_.push_back(folded_.size());
        sources_.push_back(text.size());
    }

    const std::string& Folded() const { return folded_; }
    // Where a part begins, at or behind a byte of the text, and the byte behind it; npos when there is none.
    std::pair<std::size_t, std::size_t> Find(std::string_view foldedPart, std::size_t from) const {
        std::size_t at = starts_[Index(sources_, from)];
        for (;;) {
            at = FindFolded(foldedPart, at);
            if (at == std::string::npos) return {at, at};
            const auto first = std::lower_bound(starts_.begin(), starts_.end(), at);
            const auto last = std::lower_bound(starts_.begin(), starts_.end(), at + foldedPart.size());
            if (*first == at && last != starts_.end() && *last == at + foldedPart.size()) {
                return {sources_[static_cast<std::size_t>(first - starts_.begin())],
                        sources_[static_cast<std::size_t>(last - starts_.begin())]};
            }
            ++at;
        }
    }

  private:
    static constexpr std::size_t kCharactersPerCheck = 4096;

    // Piece by piece; a place may lie across two of them.
    std::size_t FindFolded(std::string_view part, std::size_t at) const {
        const std::string_view all = folded_;
        for (; at + part.size() <= all.size(); at += kCharactersPerCheck) {
            call_.CheckStop();
            const std::size_t found = all.substr(at, kCharactersPerCheck + part.size() - 1).find(part);
            if (found != std::string_view::npos) return at + found;
        }
        return std::string_view::npos;
    }

    static std::size_t Index(const std::vector<std::size_t>& places, std::size_t place) {
        return static_cast<std::size_t>(std::lower_bound(places.begin(), places.end(), place) -
                                        places.begin());
    }

    const FunctionCall& call_;
    std::string folded_;
    std::vector<std::size_t> starts_;   // in folded_, per character
    std::vector<std::size_t> sources_;  // in the text, per character
};

void CharIndexFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::string_view text = call.Text(1);
    const std::int64_t start = call.Count() > 2 ? std::max<std::int64_t>(call.Int(2), 1) : 1;
    const std::string part = FoldedText(call, call.Text(0)).Folded();
    if (part.empty()) return call.Return(std::int64_t{0});
    const std::size_t from = text.size() - TailUnits(text, static_cast<std::size_t>(start - 1)).size();
    const auto found = FoldedText(call, text).Find(part, from);
    if (found.first == std::string::npos) return call.Return(std::int64_t{0});
    call.Return(static_cast<std::int64_t>(UnitCount(text.substr(0, found.first))) + 1);
}

void PatIndexFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(static_cast<std::int64_t>(
        FindPattern(call.Collation(), call.Text(1), call.Text(0), call.Services().stopping)));
}

void ReplaceFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::string_view text = call.Text(0);
    const std::string part = FoldedText(call, call.Text(1)).Folded();
    if (part.empty()) return call.Return(text);
    const FoldedText folded(call, text);
    std::string result;
    std::size_t at = 0;
    for (;;) {
        const auto found = folded.Find(part, at);
        if (found.first == std::string::npos) break;
        result += text.substr(at, found.first - at);
        result += call.Text(2);
        at = found.second;
    }
    result += text.substr(at);
    // Checks of older account sets do not say how long the text may grow.
    const bool isCut = call.Count() > 3;
    call.Return(isCut ? HeadUnits(result, static_cast<std::size_t>(call.Int(3))) : std::string_view(result));
}

template <TrailingBlanks Blanks>
void LikeFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.IsNull(1)) return;
    const std::string_view escape = call.Count() > 2 && !call.IsNull(2) ? call.Text(2) : std::string_view();
    if (!escape.empty() && CharacterBytes(escape, 0) != escape.size())
        throw MakeError(506, {}, {escape, "LIKE"});
    const bool matches = MatchesPattern(call.Collation(), call.Text(0), call.Text(1), escape, Blanks,
                                        call.Services().stopping);
    call.Return(std::int64_t{matches ? 1 : 0});
}

// Type rules.

Bound BindCharIndex(Binding& call) {
    std::vector<std::string> arguments{call.Text(0), call.Text(1)};
    if (call.Count() > 2) arguments.push_back(call.Int(2));
    return {call.Call(arguments), SqlType::Int()};
}

Bound BindPatIndex(Binding& call) {
    return {call.Call({call.Text(0), call.Text(1)}), SqlType::Int()};
}

Bound BindReplace(Binding& call) {
    const bool unicode = call.Type(0).IsUnicode() || call.Type(1).IsUnicode() || call.Type(2).IsUnicode();
    const TypeKind kind = unicode ? TypeKind::kNVarChar : TypeKind::kVarChar;
    std::vector<std::string> arguments{call.Text(0), call.Text(1), call.Text(2)};
    if (call.Type(0).IsMax()) return {call.Call(arguments), SqlType::Of(kind, kMaxLength)};
    const int longest = unicode ? kLongestNVarChar : kLongestVarChar;
    arguments.push_back(std::to_string(longest));
    return {call.Call(arguments), SqlType::Of(kind, longest)};
}

constexpr SqlFunction kCharIndex = Scalar<CharIndexFunction>("ts_charindex", -1);
constexpr SqlFunction kPatIndex = Scalar<PatIndexFunction>("ts_patindex", 2);
constexpr SqlFunction kReplace = Scalar<ReplaceFunction>("ts_replace", -1);

constexpr FunctionEntry kEntries[] = {
    {"charindex", 2, 3, BindCharIndex, &kCharIndex},
    {"patindex", 2, 2, BindPatIndex, &kPatIndex},
    {"replace", 3, 3, BindReplace, &kReplace},
};

constexpr const SqlFunction* kOthers[] = {&kLikeCall, &kUnicodeLikeCall};

}  // namespace

const SqlFunction kLikeCall = Scalar<LikeFunction<TrailingBlanks::kIgnored>>("ts_like", -1);
const SqlFunction kUnicodeLikeCall = Scalar<LikeFunction<TrailingBlanks::kCount>>("ts_nlike", -1);

FunctionSet SearchFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
