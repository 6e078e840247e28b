#pragma once

// A function of the dialect: one entry with its name, how many arguments it takes, its type rule and what
// SQLite calls. Both halves stand in one source, by what the function is about.
//
// The type rule (bind) is asked when a statement is translated; it sees the call through a Binding and gives
// the text that SQLite gets. The body runs inside SQLite, see call.h. Constant data, readable from anywhere.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast_expression.h"
#include "tsql/types/sql_type.h"

struct sqlite3_context;
struct sqlite3_value;

namespace vicenter::tsql::engine {

// What is registered with SQLite, under a name that stays: checks in account sets hold it.
struct SqlFunction {
    const char* name;
    int arguments;  // -1 for any number
    void (*run)(sqlite3_context*, int, sqlite3_value**) = nullptr;
    bool deterministic = true;
    // Of an aggregate, instead of run; one without a value for the rows so far has no OVER.
    void (*step)(sqlite3_context*, int, sqlite3_value**) = nullptr;
    void (*finish)(sqlite3_context*) = nullptr;
    void (*value)(sqlite3_context*) = nullptr;
    void (*inverse)(sqlite3_context*, int, sqlite3_value**) = nullptr;

    // The call in a statement of SQLite.
    std::string Call(const std::vector<std::string>& arguments) const;
};

// What a type rule makes of a call: a text and its type, or a value of the session by its name.
struct Bound {
    std::string sql;
    SqlType type;
    bool isSystem = false;
    // What is done with the value of an aggregate: the text around its call and the OVER behind that.
    std::string before = {};
    std::string behind = {};
};

class Binding;

enum class FunctionKind { kScalar, kAggregate, kWindow };

struct FunctionEntry {
    std::string_view name;  // in lower case
    std::size_t least;      // arguments
    std::size_t most;
    Bound (*bind)(Binding& call);
    // None for what SQLite or the session answers by itself; an aggregate chooses among several by type.
    const SqlFunction* body = nullptr;
    FunctionKind kind = FunctionKind::kScalar;
    // Arguments from here on are values; those before it are words or conditions.
    std::uint32_t firstValue = 0;
    bool takesStar = false;   // f(*) in place of an argument
    bool takesFrame = false;  // of a window function: OVER (… ROWS …); aggregates take one anyway
};

// For functions that take any number of arguments.
inline constexpr std::size_t kManyArguments = 1000;
// The most that the server puts together by CONCAT and its kin.
inline constexpr std::size_t kMostTexts = 254;
// The most that one call within SQLite takes: what may be more is handed over in calls within each other.
inline constexpr std::size_t kMostInOneCall = 120;

// One call on its way through the translator: its arguments, each with its type, and the ways to write them
// into a statement of SQLite. Writing an argument twice makes two parameters of it.
class Binding {
  public:
    Binding(const FunctionEntry& entry, const FunctionExpr& call, std::string name)
        : entry_(entry), call_(call), name_(std::move(name)) {}
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;
    virtual ~Binding() = default;

    const std::string& Name() const { return name_; }
    Position Where() const { return call_.position; }
    std::size_t Count() const { return call_.arguments.size(); }
    bool IsStar() const { return call_.star; }
    bool IsDistinct() const { return call_.distinct; }

    virtual const SqlType& Type(std::size_t i) const = 0;
    // An argument as it is, as a value of another type, and with its collation.
    virtual std::string Plain(std::size_t i) = 0;
    virtual std::string As(std::size_t i, const SqlType& type, bool isExplicit = false) = 0;
    // The same of one that may not come to be chosen.
    virtual std::string Chosen(std::size_t i, const SqlType& type) = 0;
    virtual std::string Collated(std::size_t i) = 0;
    virtual std::string Condition(std::size_t i) = 0;
    // NULL where both are equal, else the first.
    virtual std::string NullIf(std::size_t i, std::size_t j) = 0;
    // The literal that an argument is, or nothing.
    virtual const LiteralExpr* Literal(std::size_t i) const = 0;
    // The argument's value or length decides the type of the result: another literal needs another plan.
    virtual void Pin(std::size_t i) = 0;

    // The call of the entry's own body.
    std::string Call(const std::vector<std::string>& arguments) const { return entry_.body->Call(arguments); }

    // The argument as text; texts stay what they are.
    std::string Text(std::size_t i);
    std::string Int(std::size_t i) { return As(i, SqlType::Int()); }
    std::string Real(std::size_t i) { return As(i, SqlType::Float()); }
    std::string Date(std::size_t i) { return As(i, SqlType::DateTime()); }
    // varchar or nvarchar, as the argument is.
    SqlType TextType(std::size_t i, int length) const;
    int TextLength(std::size_t i);
    // A number as itself, a text as float; error 8116 for what is neither.
    SqlType NumberType(std::size_t i);
    // The number of a part of a date, given as a word; error 155.
    std::string DatePartCode(std::size_t i) const;
    // A literal's value when it is a small whole number; else the given one.
    int LiteralInt(std::size_t i, int otherwise);

  private:
    const FunctionEntry& entry_;
    const FunctionExpr& call_;
    std::string name_;
};

// A type as an argument of a body.
std::string Code(const SqlType& type);

// All functions of the dialect, and the one of a name in lower case.
std::vector<const FunctionEntry*> AllFunctions();
const FunctionEntry* FindFunction(std::string_view name);
// A function of the server's that there is not, by its name in lower case.
bool IsServerFunction(std::string_view name);
// What is registered with every connection.
std::vector<const SqlFunction*> AllSqlFunctions();

// What the translator calls besides: conversions, stores, operators.
extern const SqlFunction kConvertCall;     // (value, from, to, style)
extern const SqlFunction kTryConvertCall;  // the same; NULL for what cannot be converted
extern const SqlFunction kPutCall;         // (value, from, to, nullable, table, column, operation, is key)
// (text): a member of a set that SQLite keeps by a collation. Where '' and ' ' are both put into such a set,
// SQLite 3.40 takes its own table for damaged: they are equal, and their records have different lengths in
// cells of one size. Only they can be so, since shorter records than these have no text.
extern const SqlFunction kMemberCall;
extern const SqlFunction
    kBytesCall;  // (bytes): without zeros at the end, which count as nothing when compared
// (number, RowLimit): the number; the errors of the server for NULL and for one that cannot be.
enum class RowLimit { kTop, kOffset, kFetch };
extern const SqlFunction kRowCountCall;
extern const SqlFunction kVariableCall;       // (name, type[, anything]): its value at this moment
extern const SqlFunction kNextIdentityCall;   // ()
extern const SqlFunction kIdentityGivenCall;  // (number): it, told to the session
extern const SqlFunction kIntegerCall;        // (operator, a, b, type)
extern const SqlFunction kDecimalCall;        // (operator, a, b, type)
extern const SqlFunction kRealCall;           // (operator, a, b)
extern const SqlFunction kChainCall;          // (program, value, …): operators in a row, see chain.cpp
extern const SqlFunction kNegateCall;         // (value, type)
// Each value with its type behind it, and each pair compared by the common type of its own.
extern const SqlFunction kBetweenCall;      // (value, low, high): 1, 0 or NULL
extern const SqlFunction kNullIfCall;       // (value, other): NULL where they are equal
extern const SqlFunction kWhichCall;        // (value, first, second, …): the number of its equal
extern const SqlFunction kDatePlusCall;     // (date, days, sign)
extern const SqlFunction kLikeCall;         // (text, pattern[, escape])
extern const SqlFunction kUnicodeLikeCall;  // the same; trailing blanks count
extern const SqlFunction kSingleCall;       // (value): of the only row, error 512 for a second one
extern const SqlFunction kAtLeastCall;      // (number, least, error): the number; the error for a smaller one
extern const SqlFunction kPercentCall;      // (rows, percent): how many rows TOP … PERCENT takes
extern const SqlFunction kRecursionCall;    // (level, most): the level below; error 530 beyond the most
extern const SqlFunction kSomeRowsCall;     // (row, name): -1; error 40510 of that name when the row is NULL
// Rows as one value and back: an aggregate of rows, and a table of its columns c1, c2, …; so a subquery can
// refer to the row that it is joined to.
extern const SqlFunction kOrderedTextsCall;  // (text, separator, kinds, key, …): STRING_AGG in an order
extern const SqlFunction kPackCall;          // (value, …)
extern const SqlFunction kSplitCall;         // (text, separator): one column, a row for each part
inline constexpr const char* kRowsTable = "ts_rows";
inline constexpr int kMostPackedColumns = 127;

// The functions of one source, and what it registers besides.
struct FunctionSet {
    std::span<const FunctionEntry> entries;
    std::span<const SqlFunction* const> others;
};
FunctionSet AggregateFunctions();
FunctionSet CatalogFunctions();
FunctionSet ChainFunctions();
FunctionSet ChoiceFunctions();
FunctionSet ComparisonFunctions();
FunctionSet ConversionFunctions();
FunctionSet DateBuildFunctions();
FunctionSet DateFunctions();
FunctionSet DeviationFunctions();
FunctionSet FormatFunctions();
FunctionSet HashFunctions();
FunctionSet LimitFunctions();
FunctionSet MathFunctions();
FunctionSet MeasureFunctions();
FunctionSet SearchFunctions();
FunctionSet OrderedTextFunctions();
FunctionSet SystemFunctions();
FunctionSet RowFunctions();
FunctionSet TextFunctions();
FunctionSet TextPartFunctions();
FunctionSet WindowFunctions();

}  // namespace vicenter::tsql::engine
