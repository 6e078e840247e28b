#include "tsql/translate/flat_text.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "text/ascii.h"
#include "tsql/base/text_units.h"
#include "tsql/translate/flat_frame.h"

namespace vicenter::tsql::engine {

namespace flat {
namespace {

bool IsWordCharacter(char c) {
    return text::IsLetter(c) || text::IsDigit(c) || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsBlank(char c) {
    return c == ' ' || c == '\n';
}

class Flattener {
  public:
    Flattener(std::string_view sql, int deepest) : sql_(sql), deepest_(deepest) { frames_.emplace_back(); }
    std::string Run();

  private:
    Frame& Top() { return frames_.back(); }
    void TakeText(char mark);
    void TakeNumber();
    void TakeWord();
    void TakeKeyword(std::string_view word);
    void NoteName(std::string_view name);
    void TakeMark();
    // A parenthesis, with the name of the function before it.
    void Open(std::size_t from, std::string name);
    Role RoleOf(const Frame& frame, bool isQuery) const;
    void Close();
    // Puts elsewhere what is too deep. Gives the hole that is left open, or 0.
    int Shorten(Frame& frame);
    std::string Moved(const std::string& text, const Piece& piece, bool isFirst);
    int Define(std::string text, int hole);
    int DefineCondition(std::string_view text, int hole);
    std::string_view NextWord(std::size_t at) const;
    void Append(std::size_t from) { Top().text += sql_.substr(from, at_ - from); }

    std::string_view sql_;
    int deepest_;
    std::size_t at_ = 0;
    std::string last_;  // the word or mark before, in capitals
    std::vector<Frame> frames_;
    std::set<std::string, std::less<>> names_;  // of queries in a WITH within the statement
    std::string definitions_;
    int count_ = 0;
};

std::string_view Flattener::NextWord(std::size_t at) const {
    while (at < sql_.size() && IsBlank(sql_[at]))
        ++at;
    std::size_t end = at;
    while (end < sql_.size() && IsWordCharacter(sql_[end]))
        ++end;
    return sql_.substr(at, end - at);
}

// A text or a name in its quotes.
void Flattener::TakeText(char mark) {
    const std::size_t from = at_++;
    while (at_ < sql_.size()) {
        if (sql_[at_++] != mark) continue;
        if (at_ >= sql_.size() || sql_[at_] != mark) break;
        ++at_;
    }
    Append(from);
    if (mark == '"') {
        NoteName(sql_.substr(from, at_ - from));
        if (Top().clause != Clause::kFrom && at_ < sql_.size() && sql_[at_] == '.') Top().hasColumn = true;
    }
    last_ = mark;
}

// What stands in a WITH within the statement is known there only.
void Flattener::NoteName(std::string_view name) {
    Frame& frame = Top();
    const bool isNamed = last_ == "WITH" || last_ == "RECURSIVE";
    if (frame.clause == Clause::kWith && isNamed && frame.kind != FrameKind::kStatement) {
        names_.emplace(name);
        frame.hasWith = true;
    }
    if (frame.clause == Clause::kFrom && names_.contains(name)) frame.refersWithin = true;
}

void Flattener::TakeNumber() {
    const std::size_t from = at_;
    at_ += NextWord(at_).size();
    Append(from);
    last_ = "0";
}

void Flattener::TakeKeyword(std::string_view word) {
    Frame& frame = Top();
    if (IsOneOf(word, {"AND", "OR", "IN", "WHEN", "BETWEEN"})) frame.isLazy = true;
    if (IsOneOf(word, {"AND", "OR", "NOT", "IS", "BETWEEN", "LIKE"})) ++frame.operators;
    if (word == "OVER" && !frame.pieces.empty()) {
        // What has been taken for a call is a value of the window.
        frame.pieces.back().role = Role::kNone;
        frame.isAggregate = true;
    }
    const bool isQuery = frame.kind == FrameKind::kStatement || frame.kind == FrameKind::kQuery;
    if (!isQuery && frame.kind != FrameKind::kJoin) return;
    const auto enter = [&frame](Clause clause) {
        frame.clause = clause;
        frame.operators = 0;
    };
    if (IsOneOf(word, {"SELECT", "SET", "RETURNING"})) enter(Clause::kList);
    if (IsOneOf(word, {"FROM", "JOIN", "UPDATE"})) enter(Clause::kFrom);
    if (word == "ON") enter(Clause::kOn);
    if (IsOneOf(word, {"WHERE", "GROUP", "HAVING", "WINDOW", "ORDER", "LIMIT"})) enter(Clause::kBehind);
    if (word == "INTO") enter(Clause::kNames);
    if (word == "VALUES") enter(Clause::kRows);
    if (word == "WITH") enter(Clause::kWith);
}

void Flattener::TakeWord() {
    const std::size_t from = at_;
    const std::string_view word = NextWord(at_);
    const std::string upper = UpperAscii(word);
    at_ += word.size();
    if (at_ < sql_.size() && sql_[at_] == '(' && !IsKeyword(upper)) {
        NoteName(word);
        return Open(from, LowerAscii(word));
    }
    if (upper == "CASE") {
        frames_.emplace_back();
        Top().kind = FrameKind::kCase;
    }
    const bool isOfBetween = upper == "AND" && std::exchange(Top().isBetween, false);
    if (upper == "BETWEEN") Top().isBetween = true;
    if (Top().kind == FrameKind::kParen && (upper == "AND" || upper == "OR") && !isOfBetween) {
        Top().text += upper == "AND" ? kAnd : kOr;
    } else {
        Append(from);
    }
    NoteName(word);
    if (upper == "END" && Top().kind == FrameKind::kCase) {
        Close();
    } else {
        TakeKeyword(upper);
    }
    last_ = upper;
}

Role Flattener::RoleOf(const Frame& frame, bool isQuery) const {
    const Frame& outer = frames_.back();
    const bool inFrom = outer.clause == Clause::kFrom;
    if (frame.kind == FrameKind::kList || frame.kind == FrameKind::kJoin) return Role::kNone;
    if (isQuery && frame.name.empty()) {
        if (last_ == "IN") return Role::kMembers;
        if (outer.clause == Clause::kWith) return Role::kNone;
        return inFrom ? Role::kTable : Role::kValue;
    }
    return inFrom ? Role::kNone : Role::kValue;
}

void Flattener::Open(std::size_t from, std::string name) {
    const Frame& outer = Top();
    at_ = sql_.find('(', from) + 1;
    const std::string next = UpperAscii(NextWord(at_));
    const bool isQuery = next == "SELECT" || next == "WITH";
    Frame frame;
    frame.name = std::move(name);
    const bool isNamed = !frame.name.empty();
    if (isQuery && (!isNamed || frame.name == "exists")) {
        frame.kind = FrameKind::kQuery;
    } else if (isNamed) {
        frame.kind = FrameKind::kCall;
    } else if (last_ == "\"" || outer.clause == Clause::kNames || outer.clause == Clause::kRows ||
               next == "VALUES" || IsOneOf(last_, {"IN", "OVER", "AS"})) {
        frame.kind = FrameKind::kList;
    } else {
        const bool joins = outer.clause == Clause::kFrom;
        frame.kind = joins ? FrameKind::kJoin : FrameKind::kParen;
        if (joins) frame.clause = Clause::kFrom;
    }
    frame.role = RoleOf(frame, isQuery);
    frame.text = sql_.substr(from, at_ - from);
    frames_.push_back(std::move(frame));
    last_ = "(";
}

int Flattener::Define(std::string text, int hole) {
    std::string from;
    if (hole > 0) {
        // The row below is worked out by itself: without the bound SQLite would put one into the other again.
        Replace(text, Hole(hole), NameOf(hole) + ".v$");
        from = " FROM " + NameOf(hole) + " LIMIT -1 OFFSET 0";
    }
    definitions_ += (count_ == 0 ? "" : ", ") + NameOf(count_ + 1) + "(v$) AS (SELECT " + text + from + ")";
    return ++count_;
}

// a AND b AND …: the first side is worked out first, and the others where it does not decide; within NOT and
// parentheses, too.
int Flattener::DefineCondition(std::string_view text, int hole) {
    constexpr std::string_view kNot = "NOT ";
    text = Trimmed(text);
    const std::size_t at = MarkOf(text);
    if (at != std::string_view::npos) {
        const bool isAnd = text[at] == kAnd;
        const int left = DefineCondition(text.substr(0, at), hole);
        const int right = DefineCondition(text.substr(at + 1), 0);
        return Define("CASE " + Hole(left) + (isAnd ? " WHEN 0 THEN 0 ELSE " : " WHEN 1 THEN 1 ELSE ") +
                          NameOf(left) + ".v$" + (isAnd ? " AND " : " OR ") + ByName(right) + " END",
                      left);
    }
    const bool holds = text.find_first_of(kEither) != std::string_view::npos;
    if (holds && text.starts_with(kNot))
        return Define("NOT " + ByName(DefineCondition(text.substr(kNot.size()), hole)), 0);
    if (holds && EndOf(text) == text.size()) return DefineCondition(text.substr(1, text.size() - 2), hole);
    return Define(InWords(text), hole);
}

// What stands in the place of a piece that is put elsewhere.
std::string Flattener::Moved(const std::string& text, const Piece& piece, bool isFirst) {
    if (piece.role == Role::kValue) {
        const bool isCondition = text.find_first_of(kEither) != std::string::npos;
        const int number = isCondition ? DefineCondition(text, piece.hole) : Define(text, piece.hole);
        return isFirst ? Hole(number) : ByName(number);
    }
    definitions_ += (count_ == 0 ? "" : ", ") + NameOf(count_ + 1) + " AS " + text;
    ++count_;
    return piece.role == Role::kTable ? NameOf(count_) : "(SELECT * FROM " + NameOf(count_) + ")";
}

int Flattener::Shorten(Frame& frame) {
    const bool evaluates =
        (frame.kind == FrameKind::kCall || frame.kind == FrameKind::kParen) && !frame.isAggregate;
    std::string text;
    std::size_t done = 0;
    int open = 0;
    for (const Piece& piece : frame.pieces) {
        const bool isFirst = evaluates && piece.isFirst;
        std::string own = frame.text.substr(piece.at, piece.size);
        int hole = piece.hole;
        int need = piece.need;
        if (piece.role != Role::kNone && piece.before + need > deepest_) {
            own = Moved(own, piece, isFirst);
            hole = isFirst && piece.role == Role::kValue ? count_ : 0;
            need = kByNamePlaces;
        } else if (frame.kind != FrameKind::kParen) {
            own = InWords(own);
        }
        if (hole > 0 && !isFirst) Replace(own, Hole(hole), ByName(hole));
        if (hole > 0 && isFirst) open = hole;
        frame.need = std::max(frame.need, piece.before + need);
        text.append(frame.text, done, piece.at - done) += own;
        done = piece.at + piece.size;
    }
    text.append(frame.text, done);
    frame.text = std::move(text);
    return open;
}

void Flattener::Close() {
    Frame frame = std::move(frames_.back());
    frames_.pop_back();
    if (frame.kind == FrameKind::kCall) {
        if (IsAggregateCall(frame)) frame.isAggregate = true;
        if (IsChangingCall(frame)) frame.isVolatile = true;
    }
    Frame& outer = Top();
    Piece piece;
    piece.role = MayMove(frame) ? frame.role : Role::kNone;
    piece.hole = Shorten(frame);
    piece.at = outer.text.size();
    piece.size = frame.text.size();
    piece.before = Places(outer);
    piece.need = frame.need;
    const bool mayBeLeftOut =
        outer.isLazy || (outer.commas > 0 && IsOneOf(outer.name, {"coalesce", "ifnull", "iif"}));
    piece.isFirst = outer.pieces.empty() && !mayBeLeftOut;
    outer.text += frame.text;
    outer.pieces.push_back(piece);
    outer.isVolatile = outer.isVolatile || frame.isVolatile;
    outer.refersWithin = outer.refersWithin || (frame.refersWithin && !frame.hasWith);
    if (frame.kind == FrameKind::kQuery) return;
    outer.isAggregate = outer.isAggregate || frame.isAggregate;
    outer.hasColumn = outer.hasColumn || frame.hasColumn;
}

void Flattener::TakeMark() {
    const char c = sql_[at_];
    if (c == '(') return Open(at_, {});
    Append(at_++);
    Frame& frame = Top();
    if (c == ')') {
        Close();
    } else if (c == ',') {
        ++frame.commas;
        frame.operators = 0;
        if (frame.clause == Clause::kOn) frame.clause = Clause::kFrom;
    } else if (std::string_view("=<>|+-*/%&~").find(c) != std::string_view::npos) {
        ++frame.operators;
    }
    if (!IsBlank(c)) last_ = c;
}

std::string Flattener::Run() {
    while (at_ < sql_.size()) {
        const char c = sql_[at_];
        if (c == '\'' || c == '"') {
            TakeText(c);
        } else if (text::IsDigit(c)) {
            TakeNumber();
        } else if (IsWordCharacter(c)) {
            TakeWord();
        } else {
            TakeMark();
        }
    }
    Shorten(Top());
    if (count_ == 0) return Top().text;
    constexpr std::string_view kWith = "WITH ";
    const std::string& text = Top().text;
    if (text.starts_with(kWith)) return "WITH " + definitions_ + ", " + text.substr(kWith.size());
    return "WITH " + definitions_ + " " + text;
}

}  // namespace
}  // namespace flat

std::string Flattened(const std::string& sql, int deepest) {
    // A name may hold the marks that stand for what is put elsewhere; texts are parameters.
    constexpr char kMarks[] = {flat::kHole, flat::kAnd, flat::kOr, 0};
    if (sql.find_first_of(kMarks) != std::string::npos) return sql;
    return flat::Flattener(sql, deepest).Run();
}

}  // namespace vicenter::tsql::engine
