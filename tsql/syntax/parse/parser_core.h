#pragma once

// The recursive-descent parser behind StatementReader: token handling here, one parse_*.cpp per statement
// family. Internal to tsql/syntax.

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast.h"
#include "tsql/syntax/lexer.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql {

// Whether it is true or false rather than a value.
bool IsCondition(const Expr& expr);

class Parser {
  public:
    explicit Parser(std::string_view text) : lexer_(text) {}

    // One top-level statement of the batch, or none at the end of the text.
    StatementPtr NextStatement();
    Position Where() { return Peek().position; }
    void Seek(Position where);
    const std::vector<Name>& UsedVariables() const { return usedVariables_; }
    // One expression or condition that fills the whole text.
    ExprPtr WholeExpression(bool condition);

  private:
    // Where a query stands decides what its select list may hold and whether it may be sorted.
    enum class QueryPlace { kStatement, kInsert, kCursor, kNested };

    // Counts one level of nesting for its lifetime, or a part of one; throws 191 past the limit.
    class Level {
      public:
        explicit Level(Parser& parser, int places = kParenthesesOfLevel);
        ~Level() { parser_.level_ -= places_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

      private:
        Parser& parser_;
        int places_;
    };
    struct State {
        Lexer lexer;
        std::array<Token, 4> ahead;
        std::size_t aheadCount;
        Token previous;
    };

    // ---- tokens (parser_core.cpp)
    const Token& Peek(std::size_t n = 0);
    Token Take();
    State Save() const { return {lexer_, ahead_, aheadCount_, previous_}; }
    void Restore(const State& state);
    bool At(Keyword keyword, std::size_t n = 0) { return Peek(n).keyword == keyword; }
    bool At(Op op, std::size_t n = 0) { return Peek(n).op == op; }
    bool At(TokenKind kind, std::size_t n = 0) { return Peek(n).kind == kind; }
    // A word that is not reserved, without quotes.
    bool AtWord(std::string_view lower, std::size_t n = 0);
    bool AtEnd() { return At(TokenKind::kEnd); }
    // A name: an identifier that is no reserved word, or a quoted one.
    bool AtName(std::size_t n = 0);
    bool AtLabel(std::size_t n = 0);
    bool AtString(std::size_t n = 0) { return At(TokenKind::kString, n) || At(TokenKind::kNString, n); }
    template <class T>
    bool Accept(T what) {
        if (!At(what)) return false;
        Take();
        return true;
    }
    bool AcceptWord(std::string_view lower);
    template <class T>
    Token Expect(T what) {
        if (!At(what)) Fail();
        return Take();
    }
    void ExpectWord(std::string_view lower);
    // The syntax error at the next token: 102, or 156 for a reserved word.
    [[noreturn]] void Fail();
    [[noreturn]] void FailAt(const Token& token);
    Name TakeName();
    static Name NameFrom(const Token& token);
    std::vector<Name> TakeNames();  // a, b, c
    std::vector<Name> TakeNamesInParentheses();
    ObjectName TakeObjectName();
    ObjectName TakeColumnName();
    ObjectName TakeNameParts();
    static void CheckIsHere(const ObjectName& name);
    static void CheckColumnIsHere(const ObjectName& name);
    std::string TakeVariable();
    TypeName TakeType();
    // Skips ( … ) with whatever is in it.
    void SkipParentheses();
    // WITH (…), WITH FILLFACTOR = n, ON filegroup and the like behind tables, keys and indexes.
    void SkipStorageOptions();
    std::optional<bool> AcceptClustered();

    template <class T>
    std::unique_ptr<T> Make(Position position) {
        return std::make_unique<T>(position);
    }

    // ---- statements (parse_statement.cpp)
    StatementPtr ParseStatement();
    StatementPtr ParseStatementBody();
    // Statements up to a word that ends the list: END, or the end of the text.
    std::vector<StatementPtr> ParseStatements();
    void SkipSemicolons();
    StatementPtr ParseNoOperation();
    StatementPtr ParseGrant();
    StatementPtr ParseCreate();
    StatementPtr ParseAlter();
    StatementPtr ParseWith();

    // ---- what there is on the server alone (parse_refusal.cpp): each throws 40510 where it stands
    bool AtPhrase(std::string_view phrase);  // these words, reserved or not
    void RefuseStatement();
    void RefuseAlterTable(Position start);
    void RefuseColumnForm(std::string_view statement);
    void RefuseTableOption(const Token& option);
    void RefuseTrim(const FunctionExpr& call);
    void RefuseCall(Position start);
    void SkipProcedureNumber();
    void RefuseObject(Position start, std::string_view verb);
    void RefuseRowset();
    void RefuseBehindSource();
    void RefuseBehindQuery();
    void RefusePredicate();
    void RefuseValue();
    void RefusePseudoColumn();
    void RefuseBehindValue();
    // A call by a name of several parts, which may be that of a method.
    void RefuseMethod(const ObjectName& name);
    void RefuseBehindCall();

    // ---- expressions (parse_expression.cpp, parse_condition.cpp, parse_function.cpp)
    ExprPtr ParseValue() { return ParseOperators(0, false); }
    ExprPtr ParseCondition();
    ExprPtr ParseAnyCondition();  // a condition, or a value inside parentheses of one
    ExprPtr ParseAnd();
    ExprPtr ParseNot();
    ExprPtr ParsePredicate();
    ExprPtr ParsePredicateTail(ExprPtr left);
    ExprPtr ParseComparisonTail(ExprPtr left, ComparisonOp op);
    ExprPtr ParseInTail(std::unique_ptr<InExpr> in);
    void RequireCondition(const ExprPtr& expr);
    std::optional<ComparisonOp> AcceptComparison();
    ExprPtr ParseOperators(int lowest, bool conditionAllowed);
    ExprPtr ParseUnary(bool conditionAllowed);
    ExprPtr ParsePrimary(bool conditionAllowed);
    ExprPtr ParseParentheses(bool conditionAllowed);
    ExprPtr ParseNameOrCall();
    ExprPtr ParseKeywordPrimary();
    bool AtPseudoColumn(std::size_t n);
    ExprPtr ParsePseudoColumn(ObjectName owner);
    ExprPtr ParseLiteral();
    bool AtBrace(std::string_view brace);
    void ExpectBraceEnd();
    ExprPtr ParseBraces();  // (parse_braces.cpp)
    ExprPtr ParseOdbcCall();
    ExprPtr ParseCase();
    ExprPtr ParseCast(bool tryOnly);
    ExprPtr ParseConvert(bool tryOnly);
    ExprPtr ParseCall(ObjectName name);
    OverClause ParseOver();
    WindowFrame ParseFrame();
    FrameBound ParseFrameBound();
    ExprPtr ParseConstant();  // a literal with a sign, for places that take no expression
    std::vector<ExprPtr> ParseValueList();
    // Records the children's depth in the parent; 191 past the limit.
    void Deepen(Expr& parent, const ExprPtr& child);

    // ---- queries (parse_select.cpp, parse_source.cpp)
    StatementPtr ParseSelect(std::vector<CommonTable> with);
    QueryPtr ParseQuery(QueryPlace place);
    QueryPtr ParseNestedQuery();  // without its parentheses
    QueryBodyPtr ParseQueryBody(QueryPlace place);
    QueryBodyPtr ParseIntersect(QueryPlace place);
    QueryBodyPtr ParseQueryTerm(QueryPlace place);
    QueryBodyPtr ParseSelectBody(QueryPlace place);
    void ParseSelectItems(SelectBody& select, QueryPlace place);
    SelectItem ParseSelectItem(QueryPlace place);
    bool AcceptQualifiedStar(SelectItem& item);
    TopClause ParseTop();
    void ParseGroupBy(SelectBody& select);
    GroupingItem ParseGroupingItem();
    std::vector<OrderItem> ParseOrderBy();
    void ParseOffset(Query& query);
    std::vector<CommonTable> ParseCommonTables();
    std::vector<std::string> ParseOptionClause();
    void SkipOptionClause();
    bool AtQuery();  // SELECT, or parentheses around it
    std::optional<AssignOp> AssignmentAhead(std::size_t n);
    std::vector<TableSourcePtr> ParseFrom();
    TableSourcePtr ParseJoins(TableSourcePtr left);
    TableSourcePtr ParseSource();
    TableSourcePtr ParseOneSource();
    TableSourcePtr ParseSourceInParentheses();
    TableSourcePtr ParsePivots(TableSourcePtr source);
    TableSourcePtr ParsePivot(TableSourcePtr source);
    TableSourcePtr ParseUnpivot(TableSourcePtr source);
    bool AtJoin();
    JoinKind TakeJoinKind();
    void ParseAlias(Name& alias);
    bool AtHints();
    std::vector<std::string> ParseHints();

    // ---- one family each
    StatementPtr ParseInsert(std::vector<CommonTable> with);
    void ParseInsertValues(InsertStatement& insert);
    StatementPtr ParseUpdate(std::vector<CommonTable> with);
    Assignment ParseAssignment();
    StatementPtr ParseDelete(std::vector<CommonTable> with);
    StatementPtr ParseMerge(std::vector<CommonTable> with);
    MergeClause ParseMergeClause();
    void ParseMergeInsert(MergeClause& clause);
    static void CheckMergeClause(const std::vector<MergeClause>& before, const MergeClause& clause);
    static const char* WhenText(MergeMatch match);
    StatementPtr ParseTruncate();
    OutputClause ParseOutput();
    void ParseWhere(ExprPtr& where, Name& currentOf);

    StatementPtr ParseCreateTable(Position start);
    TableDefinition ParseTableDefinition();
    void ParseTableElement(TableDefinition& definition);
    ColumnDefinition ParseColumnDefinition();
    bool ParseColumnOption(ColumnDefinition& column);
    Identity ParseIdentity();
    bool AtTableConstraint();
    Constraint ParseConstraint(const Name* column);
    void ParseReferences(Constraint& constraint);
    std::vector<IndexColumn> ParseIndexColumns();
    StatementPtr ParseAlterTable(Position start);
    void ParseAlterTableAdd(AlterTableStatement& alter);
    void ParseAlterTableDrop(AlterTableStatement& alter);
    StatementPtr ParseCreateIndex(Position start);
    StatementPtr ParseCreateView(Position start, bool alter, bool createOrAlter);
    StatementPtr ParseCreateProcedure(Position start, bool alter, bool createOrAlter);
    ProcedureParameter ParseProcedureParameter();
    StatementPtr ParseDrop();

    StatementPtr ParseDeclare();
    VariableDeclaration ParseVariableDeclaration();
    StatementPtr ParseSet();
    StatementPtr ParseSetVariable(Position start);
    StatementPtr ParseDeclareCursor(Position start);
    CursorDefinition ParseCursorDefinition();
    CursorName TakeCursorName();
    StatementPtr ParseOpen();
    StatementPtr ParseFetch();
    StatementPtr ParseClose();
    StatementPtr ParseDeallocate();

    StatementPtr ParseBegin();
    StatementPtr ParseTryCatch(Position start);
    StatementPtr ParseBranch();
    StatementPtr ParseIf();
    StatementPtr ParseWhile();
    StatementPtr ParseReturn();
    void CheckJumps() const;
    std::vector<StatementPtr> ParseBlock();
    StatementPtr ParseGoto();
    StatementPtr ParseLabel();
    StatementPtr ParseWaitFor();
    StatementPtr ParsePrint();
    StatementPtr ParseRaiserror();
    StatementPtr ParseThrow();
    StatementPtr ParseExecute();
    StatementPtr ParseExecuteCall(Position start);
    ExecuteArgument ParseExecuteArgument();
    bool AtExecuteArgument();
    StatementPtr ParseTransaction(Position start, TransactionAction action);

    Lexer lexer_;
    std::array<Token, 4> ahead_;
    std::size_t aheadCount_ = 0;
    Token previous_;
    int level_ = 0;
    int loops_ = 0;           // WHILEs around the current statement
    bool first_ = true;       // no statement of the batch parsed yet
    bool nested_ = false;     // inside a block, IF, WHILE or procedure
    bool procedure_ = false;  // inside CREATE PROCEDURE
    bool inMergeOutput_ = false;
    std::vector<Name> usedVariables_;
    // Labels and the jumps to them, each with the blocks around it.
    struct Place {
        Name label;
        std::vector<int> blocks;
    };
    std::vector<Place> labels_;
    std::vector<Place> jumps_;
    std::vector<int> blocks_;
    int blockNumber_ = 0;
};

}  // namespace vicenter::tsql
