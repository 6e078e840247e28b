#include "tsql/functions/function.h"

#include <algorithm>
#include <array>

#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/functions.h"
#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

std::string SqlFunction::Call(const std::vector<std::string>& given) const {
    std::string sql = std::string(name) + "(";
    for (std::size_t i = 0; i < given.size(); ++i)
        sql += (i == 0 ? "" : ", ") + given[i];
    return sql + ")";
}

std::string Code(const SqlType& type) {
    return std::to_string(TypeCode(type));
}

std::string Binding::Text(std::size_t i) {
    if (Type(i).IsText()) return Plain(i);
    return As(i, SqlType::NVarChar(kMaxLength), true);
}

SqlType Binding::TextType(std::size_t i, int length) const {
    return SqlType::Of(Type(i).IsUnicode() ? TypeKind::kNVarChar : TypeKind::kVarChar, length);
}

int Binding::TextLength(std::size_t i) {
    constexpr int kLengthOfOthers = 30;
    Pin(i);
    return Type(i).IsText() ? Type(i).length : kLengthOfOthers;
}

SqlType Binding::NumberType(std::size_t i) {
    Pin(i);
    const SqlType& type = Type(i);
    if (type.IsNumber()) return type.kind == TypeKind::kBit ? SqlType::Float() : type;
    if (type.IsUnknown()) return SqlType::Int();
    if (type.IsText()) return SqlType::Float();
    throw MakeError(8116, Where(), {type.Name(), static_cast<std::int32_t>(i + 1), name_});
}

std::string Binding::DatePartCode(std::size_t i) const {
    const auto* word = TryAs<ColumnExpr>(call_.arguments[i].get());
    const auto part = word != nullptr ? DatePartByName(LowerAscii(word->name.Object())) : std::nullopt;
    if (part) return std::to_string(static_cast<int>(*part));
    // Dates are kept to the millisecond, and without a zone.
    constexpr std::string_view kFiner[] = {"nanosecond", "ns", "microsecond", "mcs", "tzoffset", "tz"};
    const std::string lower = word != nullptr ? LowerAscii(word->name.Object()) : std::string();
    if (std::find(std::begin(kFiner), std::end(kFiner), lower) != std::end(kFiner))
        throw MakeError(40510, Where(), {UpperAscii(name_) + " of " + UpperAscii(lower)});
    throw MakeError(155, Where(), {word != nullptr ? word->name.Object() : std::string(), name_});
}

int Binding::LiteralInt(std::size_t i, int otherwise) {
    const LiteralExpr* literal = Literal(i);
    if (literal == nullptr || literal->literal != LiteralKind::kInteger || literal->text.size() > 4)
        return otherwise;
    Pin(i);
    return std::stoi(literal->text);
}

namespace {

std::array<FunctionSet, 21> Sets() {
    return {AggregateFunctions(),  CatalogFunctions(),    ChainFunctions(),       ChoiceFunctions(),
            ComparisonFunctions(), ConversionFunctions(), DateBuildFunctions(),   DateFunctions(),
            DeviationFunctions(),  FormatFunctions(),     HashFunctions(),        LimitFunctions(),
            MathFunctions(),       MeasureFunctions(),    OrderedTextFunctions(), RowFunctions(),
            SearchFunctions(),     SystemFunctions(),     TextFunctions(),        TextPartFunctions(),
            WindowFunctions()};
}

}  // namespace

std::vector<const FunctionEntry*> AllFunctions() {
    std::vector<const FunctionEntry*> all;
    for (const FunctionSet& set : Sets()) {
        for (const FunctionEntry& entry : set.entries)
            all.push_back(&entry);
    }
    return all;
}

const FunctionEntry* FindFunction(std::string_view name) {
    for (const FunctionSet& set : Sets()) {
        for (const FunctionEntry& entry : set.entries) {
            if (entry.name == name) return &entry;
        }
    }
    return nullptr;
}

std::vector<const SqlFunction*> AllSqlFunctions() {
    std::vector<const SqlFunction*> all;
    const auto add = [&all](const SqlFunction* body) {
        for (const SqlFunction* other : all) {
            if (other == body) return;
        }
        all.push_back(body);
    };
    for (const FunctionSet& set : Sets()) {
        for (const FunctionEntry& entry : set.entries) {
            if (entry.body != nullptr) add(entry.body);
        }
        for (const SqlFunction* body : set.others)
            add(body);
    }
    return all;
}

}  // namespace vicenter::tsql::engine
