#include "tsql/syntax/literal_finder.h"

#include <algorithm>
#include <string_view>

namespace vicenter::tsql {

namespace {

// By names, since no grammar is at hand: a column called decimal costs a plan for each literal behind it.
bool IsTypeWithLength(const Token& token) {
    static constexpr std::string_view kTypes[] = {
        "char", "varchar", "nchar", "nvarchar",  "binary",         "varbinary", "decimal", "numeric",
        "dec",  "float",   "time",  "datetime2", "datetimeoffset", "character", "varying", "double"};
    if (token.keyword == Keyword::kVarying || token.keyword == Keyword::kIdentity) return true;
    std::string_view word = token.text;
    if (token.kind == TokenKind::kQuotedIdentifier && word.size() > 2) word = word.substr(1, word.size() - 2);
    return (token.kind == TokenKind::kIdentifier || token.kind == TokenKind::kQuotedIdentifier) &&
           std::any_of(std::begin(kTypes), std::end(kTypes),
                       [&](std::string_view t) { return IsWord(word, t); });
}

}  // namespace

bool StartsDataStatement(const Token& first) {
    switch (first.keyword) {
        case Keyword::kSelect:
        case Keyword::kInsert:
        case Keyword::kUpdate:
        case Keyword::kDelete:
        case Keyword::kExec:
        case Keyword::kExecute:
        case Keyword::kIf:
            return true;
        default:
            return false;
    }
}

bool StartsNextStatement(Keyword word) {
    switch (word) {
        case Keyword::kSelect:
        case Keyword::kInsert:
        case Keyword::kUpdate:
        case Keyword::kDelete:
        case Keyword::kExec:
        case Keyword::kExecute:
        case Keyword::kIf:
        case Keyword::kWhile:
        case Keyword::kDeclare:
        case Keyword::kSet:
        case Keyword::kPrint:
        case Keyword::kReturn:
        case Keyword::kBegin:
        case Keyword::kCommit:
        case Keyword::kRollback:
        case Keyword::kCreate:
        case Keyword::kAlter:
        case Keyword::kDrop:
        case Keyword::kTruncate:
            return true;
        default:
            return false;
    }
}

bool OpensValue(const Token& before) {
    switch (before.op) {
        case Op::kLeftParen:
        case Op::kComma:
        case Op::kEqual:
        case Op::kNotEqual:
        case Op::kLess:
        case Op::kLessEqual:
        case Op::kGreater:
        case Op::kGreaterEqual:
            return true;
        default:
            return false;
    }
}

LiteralFinder::Answer LiteralFinder::Look(const Token& token, const Token& next) {
    const Answer answer = Classify(token, next);
    if (token.op == Op::kLeftParen) {
        // varchar(10) and TOP (10): another number is another type, or another plan. It holds for all that
        // stands deeper.
        parens_.push_back(fixedDepth_ || previous_.keyword == Keyword::kTop || IsTypeWithLength(previous_));
    } else if (token.op == Op::kRightParen) {
        if (!parens_.empty()) parens_.pop_back();
        if (sorting_ && parens_.size() < sortingLevel_) sorting_ = false;
    } else if (token.keyword == Keyword::kBy) {
        // ORDER BY 2 names a column by its place. Such a list ends with the parentheses around it, or where
        // the next statement starts; in between no grammar tells a place from a value.
        sorting_ = true;
        sortingLevel_ = parens_.size();
    } else if (sorting_ && parens_.size() == sortingLevel_ && StartsNextStatement(token.keyword)) {
        sorting_ = false;
    }
    fixedDepth_ = !parens_.empty() && parens_.back();
    // The arguments of a call stand behind a name without parentheses.
    if (StartsNextStatement(token.keyword)) {
        calling_ = token.keyword == Keyword::kExec || token.keyword == Keyword::kExecute;
    }
    previous_ = token;
    return answer;
}

bool LiteralFinder::AfterOperator() const {
    switch (previous_.op) {
        case Op::kNone:
        case Op::kRightParen:  // (expression) 'alias'
        case Op::kDot:
        case Op::kSemicolon:
        case Op::kColon:
            return false;
        default:
            return true;
    }
}

bool LiteralFinder::AfterValueKeyword() const {
    switch (previous_.keyword) {
        case Keyword::kLike:
        case Keyword::kEscape:
        case Keyword::kBetween:
        case Keyword::kAnd:
        case Keyword::kOr:
        case Keyword::kNot:
        case Keyword::kWhere:
        case Keyword::kOn:
        case Keyword::kIf:
        case Keyword::kCase:
        case Keyword::kWhen:
        case Keyword::kThen:
        case Keyword::kElse:
        case Keyword::kSelect:
        case Keyword::kDistinct:
            return true;
        default:
            return false;
    }
}

LiteralFinder::Answer LiteralFinder::Classify(const Token& token, const Token& next) const {
    bool isText = false;
    switch (token.kind) {
        case TokenKind::kString:
        case TokenKind::kNString:
            isText = true;
            break;
        case TokenKind::kInteger:
        case TokenKind::kDecimal:
        case TokenKind::kFloat:
        case TokenKind::kBinary:
            break;
        default:
            if (token.keyword != Keyword::kNull) return Answer::kFixed;
            break;
    }
    if (fixedDepth_ || sorting_) return Answer::kFixed;
    const bool open = OpensValue(previous_);
    // IS NULL, NOT NULL and DEFAULT NULL are words of the text; f(NULL) and a = NULL are literals.
    if (token.keyword == Keyword::kNull) return open ? Answer::kValue : Answer::kFixed;
    // 'alias' = value, in a select list: another alias is another column name in the result.
    if (isText && next.op == Op::kEqual &&
        (previous_.op == Op::kComma || previous_.keyword == Keyword::kSelect ||
         previous_.keyword == Keyword::kDistinct)) {
        return Answer::kFixed;
    }
    if (open) return Answer::kValue;
    if (AfterOperator() || AfterValueKeyword()) return Answer::kLiteral;
    // EXEC procedure literal; anywhere else a text behind a name is an alias.
    const bool afterName = previous_.kind == TokenKind::kQuotedIdentifier ||
                           (previous_.kind == TokenKind::kIdentifier && previous_.keyword == Keyword::kNone);
    return calling_ && afterName ? Answer::kLiteral : Answer::kFixed;
}

}  // namespace vicenter::tsql
