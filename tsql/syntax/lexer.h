#pragma once

// From text to tokens, one at a time and without allocation: a token refers to the text, which must outlive
// it. A value type that can be copied to look ahead; not shared between threads while in use.

#include <cstdint>
#include <string>
#include <string_view>

#include "tsql/base/position.h"
#include "tsql/syntax/keyword.h"

namespace vicenter::tsql {

enum class TokenKind : std::uint8_t {
    kEnd,
    kIdentifier,        // also #temporary names; `keyword` tells reserved words
    kQuotedIdentifier,  // [name] or "name", text with the quotes
    kVariable,          // @name, @@name
    kString,            // '…', text with the apostrophes
    kNString,           // N'…'
    kInteger,
    kDecimal,
    kFloat,
    kMoney,
    kBinary,
    kPseudoColumn,  // $identity: a sign of money with a letter behind it
    kOperator,      // `op` tells which
    kUnknown,       // a character that has no place in T-SQL
};

enum class Op : std::uint8_t {
    kNone,
    kPlus,
    kMinus,
    kStar,
    kSlash,
    kPercent,
    kAmpersand,
    kPipe,
    kCaret,
    kTilde,
    kEqual,
    kNotEqual,  // <> and !=
    kLess,
    kLessEqual,  // <= and !>
    kGreater,
    kGreaterEqual,  // >= and !<
    kPlusEqual,
    kMinusEqual,
    kStarEqual,
    kSlashEqual,
    kPercentEqual,
    kAmpersandEqual,
    kPipeEqual,
    kCaretEqual,
    kLeftParen,
    kRightParen,
    kComma,
    kDot,
    kSemicolon,
    kColon,
};

struct Token {
    TokenKind kind = TokenKind::kEnd;
    Keyword keyword = Keyword::kNone;
    Op op = Op::kNone;
    Position position;
    std::string_view text;

    std::uint32_t EndOffset() const { return position.offset + static_cast<std::uint32_t>(text.size()); }
};

class Lexer {
  public:
    explicit Lexer(std::string_view text) : Lexer(text, Position{}) {}
    // Starts in the middle, at a place where a token or the blanks before one start.
    Lexer(std::string_view text, Position start)
        : text_(text),
          at_(start.offset),
          line_(start.line),
          lineStart_(static_cast<std::int64_t>(start.offset) + 1 - start.column) {}

    // The next token; kEnd for ever behind the last. Throws SqlError 105 for an unclosed quotation mark and
    // 113 for a comment without end.
    Token Next();
    // Where the next token is looked for.
    Position Where() const { return PositionAt(at_); }
    std::string_view Text() const { return text_; }

  private:
    Position PositionAt(std::size_t offset) const {
        return {static_cast<std::uint32_t>(offset), line_,
                static_cast<std::uint32_t>(static_cast<std::int64_t>(offset) - lineStart_ + 1)};
    }
    void SkipBlanksAndComments();
    void SkipBlockComment();
    // Advances to `end`, counting the lines in between.
    void AdvanceOverLines(std::size_t end);
    Token Finish(Token token, std::size_t end);
    Token ReadQuoted(TokenKind kind, std::size_t open, char close);
    Token ReadNumber();
    Token ReadMoney();
    Token ReadWord(TokenKind kind);
    Token ReadSimple(Op op);  // of one character
    Token ReadOperator();
    std::size_t WordEnd(std::size_t from) const;

    std::string_view text_;
    std::size_t at_ = 0;
    std::uint32_t line_ = 1;
    std::int64_t lineStart_ = 0;  // of the line of at_; may lie before the text when it starts mid-line
};

// The identifier, string or number without quotes: "[a]]b]" is "a]b", "'it''s'" is "it's", "$1" is "1",
// "0xAB" is "AB".
std::string TokenValue(const Token& token);

// Appends a literal as T-SQL spells it: N? and the text with its apostrophes doubled.
std::string QuoteString(std::string_view text, bool national);

// The first `count` characters (code points) of a UTF-8 text, for messages.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

}  // namespace vicenter::tsql
