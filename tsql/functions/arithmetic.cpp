#include "tsql/functions/arithmetic.h"

#include <cmath>

#include "automation/error.h"
#include "tsql/base/error_table.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

std::int64_t Calculated(char operation, std::int64_t a, std::int64_t b, const SqlType& type) {
    std::int64_t result = 0;
    switch (operation) {
        case '+':
            if (__builtin_add_overflow(a, b, &result)) Overflow(type);
            return result;
        case '-':
            if (__builtin_sub_overflow(a, b, &result)) Overflow(type);
            return result;
        case '*':
            if (__builtin_mul_overflow(a, b, &result)) Overflow(type);
            return result;
        case '/':
        case '%':
            if (b == 0) throw MakeError(8134, {});
            if (b == -1) {
                if (operation == '%') return 0;
                if (__builtin_sub_overflow(std::int64_t{0}, a, &result)) Overflow(type);
                return result;
            }
            return operation == '/' ? a / b : a % b;
        case '&':
            return a & b;
        case '|':
            return a | b;
        default:
            return a ^ b;
    }
}

Decimal Calculated(char operation, const Decimal& a, const Decimal& b, int scale) {
    switch (operation) {
        case '+':
            return Decimal::Add(a, b);
        case '-':
            return Decimal::Subtract(a, b);
        case '*':
            return Decimal::Multiply(a, b);
        case '/':
            return Decimal::Divide(a, b, scale);
        default:
            return Decimal::Remainder(a, b);
    }
}

}  // namespace

void Overflow(const SqlType& type) {
    throw MakeError(8115, {}, {"expression", MessageName(type)});
}

std::int64_t OfIntegers(char operation, std::int64_t a, std::int64_t b, const SqlType& type) {
    static const SqlType kBigInt = SqlType::Of(TypeKind::kBigInt);
    const std::int64_t result = Calculated(operation, a, b, type);
    try {
        return Convert(Value(result), kBigInt, type).Int();
    } catch (const SqlError&) {
        Overflow(type);
    }
}

Decimal OfDecimals(char operation, const Decimal& a, const Decimal& b, const SqlType& type) {
    if ((operation == '/' || operation == '%') && b.IsZero()) throw MakeError(8134, {});
    try {
        const Decimal result = Calculated(operation, a, b, type.scale).Rescaled(type.scale);
        if (!FitsDecimal(result, type)) Overflow(type);
        return result;
    } catch (const SqlError&) {
        throw;
    } catch (const automation::Error&) {
        Overflow(type);
    }
}

double OfReals(char operation, double a, double b) {
    double result = 0;
    switch (operation) {
        case '+':
            result = a + b;
            break;
        case '-':
            result = a - b;
            break;
        case '*':
            result = a * b;
            break;
        default:
            if (b == 0) throw MakeError(8134, {});
            result = a / b;
            break;
    }
    if (!std::isfinite(result)) Overflow(SqlType::Float());
    return result;
}

}  // namespace vicenter::tsql::engine
