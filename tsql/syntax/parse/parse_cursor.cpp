// Cursors: DECLARE c CURSOR, SET @c = CURSOR, OPEN, FETCH, CLOSE, DEALLOCATE.

#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

// DECLARE name [INSENSITIVE] [SCROLL] CURSOR …
StatementPtr Parser::ParseDeclareCursor(Position start) {
    auto declare = Make<DeclareCursorStatement>(start);
    declare->name = TakeName();
    std::vector<std::string> options;
    if (AcceptWord("insensitive")) options.emplace_back("insensitive");
    if (AcceptWord("scroll")) options.emplace_back("scroll");
    declare->cursor = ParseCursorDefinition();
    options.insert(options.end(), declare->cursor.options.begin(), declare->cursor.options.end());
    declare->cursor.options = std::move(options);
    return declare;
}

// CURSOR [options] FOR select [FOR READ ONLY | FOR UPDATE [OF columns]]
CursorDefinition Parser::ParseCursorDefinition() {
    static constexpr std::string_view kOptions[] = {
        "local",   "global",       "forward_only", "scroll",       "static",     "keyset",
        "dynamic", "fast_forward", "read_only",    "scroll_locks", "optimistic", "type_warning"};
    CursorDefinition cursor;
    cursor.position = Expect(Keyword::kCursor).position;
    while (!At(Keyword::kFor)) {
        bool found = false;
        for (const std::string_view option : kOptions) {
            if (!AcceptWord(option)) continue;
            cursor.options.emplace_back(option);
            found = true;
            break;
        }
        if (!found) Fail();
    }
    Take();
    std::vector<CommonTable> with;
    if (At(Keyword::kWith)) with = ParseCommonTables();
    cursor.query = ParseQuery(QueryPlace::kCursor);
    cursor.query->with = std::move(with);
    if (Accept(Keyword::kFor)) {
        if (Accept(Keyword::kRead)) {
            ExpectWord("only");
            cursor.forReadOnly = true;
        } else {
            Expect(Keyword::kUpdate);
            cursor.forUpdate = true;
            if (Accept(Keyword::kOf)) cursor.updateColumns = TakeNames();
        }
    }
    return cursor;
}

CursorName Parser::TakeCursorName() {
    CursorName cursor;
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        cursor.name = Name{std::string(variable.text), variable.position, false};
        return cursor;
    }
    if (AtWord("global") && AtName(1)) {
        Take();
        cursor.global = true;
    }
    cursor.name = TakeName();
    return cursor;
}

StatementPtr Parser::ParseOpen() {
    auto open = Make<OpenCursorStatement>(Take().position);
    open->cursor = TakeCursorName();
    return open;
}

StatementPtr Parser::ParseFetch() {
    auto fetch = Make<FetchStatement>(Take().position);
    const auto direction = [&](std::string_view word, FetchDirection value) {
        // A cursor may bear such a name, too.
        const bool isDirection =
            AtWord(word) && (At(Keyword::kFrom, 1) || AtName(1) || At(TokenKind::kVariable, 1) ||
                             At(TokenKind::kInteger, 1) || At(Op::kMinus, 1));
        if (!isDirection) return false;
        Take();
        fetch->direction = value;
        return true;
    };
    const bool found =
        direction("next", FetchDirection::kNext) || direction("prior", FetchDirection::kPrior) ||
        direction("first", FetchDirection::kFirst) || direction("last", FetchDirection::kLast) ||
        direction("absolute", FetchDirection::kAbsolute) || direction("relative", FetchDirection::kRelative);
    if (found &&
        (fetch->direction == FetchDirection::kAbsolute || fetch->direction == FetchDirection::kRelative)) {
        if (At(TokenKind::kVariable)) {
            const Token variable = Take();
            fetch->amount = std::make_unique<VariableExpr>(variable.position, std::string(variable.text));
        } else {
            fetch->amount = ParseConstant();
        }
    }
    Accept(Keyword::kFrom);
    fetch->cursor = TakeCursorName();
    if (Accept(Keyword::kInto)) {
        do {
            fetch->into.push_back(TakeVariable());
        } while (Accept(Op::kComma));
    }
    return fetch;
}

StatementPtr Parser::ParseClose() {
    auto close = Make<CloseCursorStatement>(Take().position);
    close->cursor = TakeCursorName();
    return close;
}

StatementPtr Parser::ParseDeallocate() {
    auto deallocate = Make<DeallocateStatement>(Take().position);
    deallocate->cursor = TakeCursorName();
    return deallocate;
}

}  // namespace vicenter::tsql
