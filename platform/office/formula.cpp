#include "platform/office/formula.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <vector>

#include "automation/object.h"
#include "platform/office/cell_text.h"
#include "platform/office/limits.h"

namespace vicenter::office {

namespace {

constexpr int kMaxDepth = 64;  // of brackets and functions in each other
constexpr std::uint64_t kMaxRangeCells = 100'000;

// Ends the calculation: the formula has no simple answer.
struct NotSimple {};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

double Rounded(double value, int digits) {
    std::array<char, 64> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, value);
    double rounded = 0;
    std::from_chars(buffer.data(), buffer.data() + length, rounded);
    return rounded;
}

FormulaValue NumberValue(double number) {
    if (!std::isfinite(number)) throw NotSimple();
    return {FormulaValue::Kind::Number, number, {}};
}

double AsNumber(const FormulaValue& value) {
    if (value.kind != FormulaValue::Kind::Text) return value.number;
    double number = 0;
    const char* end = value.text.data() + value.text.size();
    const auto [rest, error] = std::from_chars(value.text.data(), end, number);
    if (error != std::errc() || rest != end) throw NotSimple();
    return number;
}

std::string AsText(const FormulaValue& value) {
    switch (value.kind) {
        case FormulaValue::Kind::Text:
            return value.text;
        case FormulaValue::Kind::Number:
            return NumberAsTyped(Rounded(value.number, 15));
        case FormulaValue::Kind::Blank:
            break;
    }
    return {};
}

struct CellPlace {
    std::uint32_t row;
    std::uint32_t column;
};

// Halves go away from zero, as decimal digits show them: 2.675 is the half that it reads as.
double RoundToPlaces(double value, double places) {
    const double scale = std::pow(10.0, std::trunc(places));
    return std::round(Rounded(value * scale, 15)) / scale;
}

class Calculation {
  public:
    Calculation(std::string_view formula, const FormulaCells& cells) : rest_(formula), cells_(cells) {}

    FormulaValue Run() {
        FormulaValue value = Joined();
        SkipBlanks();
        if (!rest_.empty()) throw NotSimple();
        if (value.kind == FormulaValue::Kind::Blank) return NumberValue(0);
        if (value.kind == FormulaValue::Kind::Number) value.number = Rounded(value.number, 15);
        return value;
    }

  private:
    void SkipBlanks() {
        while (!rest_.empty() && rest_.front() == ' ')
            rest_.remove_prefix(1);
    }
    bool Take(char wanted) {
        SkipBlanks();
        if (rest_.empty() || rest_.front() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }
    void Expect(char wanted) {
        if (!Take(wanted)) throw NotSimple();
    }

    // a & b
    FormulaValue Joined() {
        FormulaValue left = Sum();
        while (Take('&')) {
            const std::string joined = AsText(left) + AsText(Sum());
            if (joined.size() > kMaxCellCodeUnits) throw NotSimple();
            left = {FormulaValue::Kind::Text, 0, joined};
        }
        return left;
    }

    FormulaValue Sum() {
        FormulaValue left = Product();
        while (true) {
            if (Take('+')) {
                left = NumberValue(AsNumber(left) + AsNumber(Product()));
            } else if (Take('-')) {
                left = NumberValue(AsNumber(left) - AsNumber(Product()));
            } else {
                return left;
            }
        }
    }

    FormulaValue Product() {
        FormulaValue left = Power();
        while (true) {
            if (Take('*')) {
                left = NumberValue(AsNumber(left) * AsNumber(Power()));
            } else if (Take('/')) {
                left = NumberValue(AsNumber(left) / AsNumber(Power()));
            } else {
                return left;
            }
        }
    }

    FormulaValue Power() {
        FormulaValue left = Signed();
        while (Take('^'))
            left = NumberValue(std::pow(AsNumber(left), AsNumber(Signed())));
        return left;
    }

    // A sign binds closer than a power: -2^2 is 4 on a sheet.
    FormulaValue Signed() {
        bool negative = false;
        bool any = false;
        while (true) {
            if (Take('-')) {
                negative = !negative;
            } else if (!Take('+')) {
                break;
            }
            any = true;
        }
        FormulaValue value = Percent();
        return any ? NumberValue(negative ? -AsNumber(value) : AsNumber(value)) : value;
    }

    FormulaValue Percent() {
        FormulaValue value = Single();
        while (Take('%'))
            value = NumberValue(AsNumber(value) / 100);
        return value;
    }

    FormulaValue Single() {
        if (++depth_ > kMaxDepth) throw NotSimple();
        FormulaValue value = SingleHere();
        --depth_;
        return value;
    }

    FormulaValue SingleHere() {
        if (Take('(')) {
            FormulaValue value = Joined();
            Expect(')');
            return value;
        }
        if (rest_.empty()) throw NotSimple();
        if (rest_.front() == '"') return Text();
        if (IsDigit(rest_.front()) || rest_.front() == '.') return Number();
        if (const auto place = TakePlace()) return CellAt(*place);
        const std::string name = TakeName();
        Expect('(');
        return Function(name);
    }

    FormulaValue Text() {
        rest_.remove_prefix(1);
        FormulaValue value{FormulaValue::Kind::Text, 0, {}};
        while (true) {
            const std::size_t end = rest_.find('"');
            if (end == std::string_view::npos) throw NotSimple();
            value.text.append(rest_.substr(0, end));
            rest_.remove_prefix(end + 1);
            if (!rest_.starts_with('"')) return value;
            value.text += '"';
            rest_.remove_prefix(1);
        }
    }

    FormulaValue Number() {
        double number = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
        if (error != std::errc()) throw NotSimple();
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return NumberValue(number);
    }

    // "A1", "$A$1"; nothing, and nothing taken, when something else stands there.
    std::optional<CellPlace> TakePlace() {
        std::size_t at = 0;
        const auto skipDollar = [&] {
            if (at < rest_.size() && rest_[at] == '$') ++at;
        };
        skipDollar();
        std::uint32_t column = 0;
        const std::size_t letters = at;
        for (; at < rest_.size() && IsLetter(rest_[at]) && at - letters < 4; ++at) {
            column = column * 26 + static_cast<std::uint32_t>((rest_[at] & ~0x20) - 'A' + 1);
        }
        if (at == letters || column > kMaxColumns) return std::nullopt;
        skipDollar();
        std::uint32_t row = 0;
        const auto [end, error] = std::from_chars(rest_.data() + at, rest_.data() + rest_.size(), row);
        if (error != std::errc() || row == 0 || row > kMaxRows) return std::nullopt;
        at = static_cast<std::size_t>(end - rest_.data());
        // Part of a name, a function, or another sheet's.
        if (at < rest_.size() &&
            (IsLetter(rest_[at]) || rest_[at] == '(' || rest_[at] == '!' || rest_[at] == '_')) {
            return std::nullopt;
        }
        rest_.remove_prefix(at);
        return CellPlace{row - 1, column - 1};
    }

    std::string TakeName() {
        std::string name;
        while (!rest_.empty() && IsLetter(rest_.front())) {
            name += static_cast<char>(rest_.front() & ~0x20);
            rest_.remove_prefix(1);
        }
        return name;
    }

    FormulaValue CellAt(const CellPlace& place) {
        auto value = cells_(place.row, place.column);
        if (!value) throw NotSimple();
        return std::move(*value);
    }

    // The numbers among a function's arguments: those of a range leave texts and blanks out, as a sheet does,
    // and of a function that takes a list so do cells by themselves.
    std::vector<double> Arguments(bool takesList) {
        std::vector<double> numbers;
        if (Take(')')) return numbers;
        do {
            SkipBlanks();
            const std::string_view before = rest_;
            const auto first = TakePlace();
            SkipBlanks();
            const bool alone = rest_.starts_with(',') || rest_.starts_with(')');
            if (first && Take(':')) {
                const auto last = TakePlace();
                if (!last) throw NotSimple();
                AppendRange(*first, *last, numbers);
            } else if (first && takesList && alone) {
                AppendRange(*first, *first, numbers);
            } else {
                rest_ = before;
                const FormulaValue value = Joined();
                // Whether it stands for a cell, which would not count, is not known here.
                if (takesList && value.kind != FormulaValue::Kind::Number) throw NotSimple();
                numbers.push_back(AsNumber(value));
            }
        } while (Take(','));
        Expect(')');
        return numbers;
    }

    void AppendRange(const CellPlace& a, const CellPlace& b, std::vector<double>& numbers) {
        const auto [firstRow, lastRow] = std::minmax(a.row, b.row);
        const auto [firstColumn, lastColumn] = std::minmax(a.column, b.column);
        const std::uint64_t cells =
            (std::uint64_t{lastRow} - firstRow + 1) * (std::uint64_t{lastColumn} - firstColumn + 1);
        if (cells > kMaxRangeCells) throw NotSimple();
        for (std::uint32_t row = firstRow; row <= lastRow; ++row) {
            for (std::uint32_t column = firstColumn; column <= lastColumn; ++column) {
                const FormulaValue value = CellAt({row, column});
                if (value.kind == FormulaValue::Kind::Number) numbers.push_back(value.number);
            }
        }
    }

    // Behind "IF(".
    FormulaValue Choice() {
        const bool holds = Condition();
        Expect(',');
        if (!holds) {
            SkipArgument();
            // Without a value for "otherwise" it is a truth value, which is no text and no number.
            Expect(',');
        }
        FormulaValue value = Joined();
        if (holds && Take(',')) SkipArgument();
        Expect(')');
        return value;
    }

    bool Condition() {
        const FormulaValue left = Joined();
        for (const std::string_view sign : {"<=", ">=", "<>", "<", ">", "="}) {
            SkipBlanks();
            if (!rest_.starts_with(sign)) continue;
            rest_.remove_prefix(sign.size());
            return Holds(left, sign, Joined());
        }
        if (left.kind == FormulaValue::Kind::Text) throw NotSimple();
        return left.number != 0;
    }

    static bool Holds(const FormulaValue& left, std::string_view sign, const FormulaValue& right) {
        using Kind = FormulaValue::Kind;
        const bool anyText = left.kind == Kind::Text || right.kind == Kind::Text;
        if (anyText) {
            if (sign != "=" && sign != "<>") throw NotSimple();
            // A blank cell is the empty text as well as 0; a number is no text.
            const bool alike = left.kind != Kind::Number && right.kind != Kind::Number &&
                               automation::SameName(left.text, right.text);
            return alike == (sign == "=");
        }
        const double a = Rounded(left.number, 15);
        const double b = Rounded(right.number, 15);
        if (sign == "=") return a == b;
        if (sign == "<>") return a != b;
        if (sign == "<") return a < b;
        if (sign == "<=") return a <= b;
        return sign == ">" ? a > b : a >= b;
    }

    // Up to the comma or the bracket that ends it.
    void SkipArgument() {
        int open = 0;
        char quote = 0;
        for (; !rest_.empty(); rest_.remove_prefix(1)) {
            const char c = rest_.front();
            if (quote != 0) {
                if (c == quote) quote = 0;
                continue;
            }
            if (open == 0 && (c == ',' || c == ')')) return;
            if (c == '"' || c == '\'') quote = c;
            if (c == '(' || c == '{') ++open;
            if (c == ')' || c == '}') --open;
        }
        throw NotSimple();
    }

    FormulaValue Function(const std::string& name) {
        if (name == "IF") return Choice();
        const std::vector<double> numbers = Arguments(name == "SUM" || name == "MIN" || name == "MAX");
        if (name == "SUM") {
            double sum = 0;
            for (const double number : numbers)
                sum += number;
            return NumberValue(sum);
        }
        if (name == "MIN" || name == "MAX") {
            if (numbers.empty()) return NumberValue(0);
            return NumberValue(name == "MIN" ? *std::min_element(numbers.begin(), numbers.end())
                                             : *std::max_element(numbers.begin(), numbers.end()));
        }
        if (name == "ABS" && numbers.size() == 1) return NumberValue(std::fabs(numbers[0]));
        if (name == "ROUND" && numbers.size() == 2) return NumberValue(RoundToPlaces(numbers[0], numbers[1]));
        throw NotSimple();
    }

    std::string_view rest_;
    const FormulaCells& cells_;
    int depth_ = 0;
};

}  // namespace

std::optional<FormulaValue> CalculateFormula(std::string_view formula, const FormulaCells& cells) {
    try {
        return Calculation(formula, cells).Run();
    } catch (const NotSimple&) {
        return std::nullopt;
    }
}

}  // namespace vicenter::office
