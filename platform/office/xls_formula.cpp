#include "platform/office/xls_formula.h"

#include <bit>
#include <cstdint>
#include <vector>

#include "platform/office/cell_text.h"
#include "platform/office/column_letters.h"
#include "platform/office/utf.h"

namespace vicenter::office {

namespace {

enum Token : std::uint8_t {
    kAdd = 0x03,
    kNotEqual = 0x0E,
    kPlusSign = 0x12,
    kMinusSign = 0x13,
    kPercent = 0x14,
    kBrackets = 0x15,
    kMissing = 0x16,
    kText = 0x17,
    kAttribute = 0x19,
    kInteger = 0x1E,
    kNumber = 0x1F,
    kFunction = 0x21,
    kFunctionOf = 0x22,  // with a count of arguments
    kName = 0x23,
    kCell = 0x24,
    kArea = 0x25,
    kCellElsewhere = 0x3A,
    kAreaElsewhere = 0x3B,
};

enum AttributeFlag : std::uint8_t { kChoose = 0x04, kSumOfOne = 0x10 };

// What calculation does not know, under a name that it does not know either.
constexpr const char* kUnknown = "UNKNOWN";

struct Operator {
    const char* text;
    int strength;
};
// From kAdd on.
constexpr Operator kOperators[] = {{"+", 3}, {"-", 3},  {"*", 4}, {"/", 4},  {"^", 5}, {"&", 2},
                                   {"<", 1}, {"<=", 1}, {"=", 1}, {">=", 1}, {">", 1}, {"<>", 1}};
constexpr int kSignStrength = 6;
constexpr int kPercentStrength = 7;
constexpr int kWhole = 8;  // needs no brackets anywhere

struct Function {
    std::uint16_t number;
    int arguments;  // of those with a fixed count
    const char* name;
};
constexpr Function kFunctions[] = {
    {1, -1, "IF"},      {4, -1, "SUM"},     {6, -1, "MIN"},     {7, -1, "MAX"},     {24, 1, "ABS"},
    {27, 2, "ROUND"},   {2, 1, kUnknown},   {3, 1, kUnknown},   {25, 1, kUnknown},  {32, 1, kUnknown},
    {33, 1, kUnknown},  {38, 1, kUnknown},  {39, 2, kUnknown},  {31, 3, kUnknown},  {74, 0, kUnknown},
    {118, 1, kUnknown}, {129, 1, kUnknown}, {212, 2, kUnknown}, {213, 2, kUnknown}, {221, 0, kUnknown}};

struct Untold {};

struct Piece {
    std::string text;
    int strength;
};

class Reading {
  public:
    explicit Reading(std::string_view tokens) : rest_(tokens) {}

    std::string Run() {
        while (!rest_.empty())
            ReadToken();
        if (pieces_.size() != 1) throw Untold();
        return pieces_.front().text;
    }

  private:
    std::uint8_t U8() {
        if (rest_.empty()) throw Untold();
        const auto value = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }
    std::uint16_t U16() {
        const std::uint8_t low = U8();
        return static_cast<std::uint16_t>(low | U8() << 8);
    }
    double F64() {
        std::uint64_t bits = 0;
        for (int i = 0; i < 8; ++i)
            bits |= std::uint64_t{U8()} << (8 * i);
        return std::bit_cast<double>(bits);
    }
    void Skip(std::size_t count) {
        if (rest_.size() < count) throw Untold();
        rest_.remove_prefix(count);
    }

    void Push(std::string text, int strength = kWhole) {
        constexpr std::size_t kLongest = 64u << 10;
        if (text.size() > kLongest) throw Untold();
        pieces_.push_back({std::move(text), strength});
    }
    Piece Pop() {
        if (pieces_.empty()) throw Untold();
        Piece piece = std::move(pieces_.back());
        pieces_.pop_back();
        return piece;
    }
    static std::string Bracketed(const Piece& piece, int needed) {
        return piece.strength >= needed ? piece.text : "(" + piece.text + ")";
    }

    void ReadToken() {
        std::uint8_t token = U8();
        if (token >= kAdd && token <= kNotEqual) return ReadOperator(kOperators[token - kAdd]);
        // Three classes of one operand differ in two bits.
        if (token >= 0x40) token = static_cast<std::uint8_t>((token & 0x1F) | 0x20);
        switch (token) {
            case kPlusSign:
            case kMinusSign: {
                const Piece piece = Pop();
                return Push((token == kPlusSign ? "+" : "-") + Bracketed(piece, kSignStrength),
                            kSignStrength);
            }
            case kPercent: {
                const Piece piece = Pop();
                return Push(Bracketed(piece, kPercentStrength) + "%", kPercentStrength);
            }
            case kBrackets:
                return Push("(" + Pop().text + ")");
            case kMissing:
                return Push("");
            case kText:
                return ReadText();
            case kAttribute:
                return ReadAttribute();
            case kInteger:
                return Push(std::to_string(U16()));
            case kNumber:
                return Push(NumberAsTyped(F64()));
            case kCell:
                return Push(ReadPlace());
            case kArea:
                return ReadArea();
            case kFunction:
                return ReadFunction(std::nullopt);
            case kFunctionOf: {
                const std::uint8_t count = U8() & 0x7F;
                return ReadFunction(count);
            }
            case kName:
                Skip(4);
                return Push(kUnknown);
            case kCellElsewhere:
                Skip(6);
                return Push(kUnknown);
            case kAreaElsewhere:
                Skip(10);
                return Push(kUnknown);
            default:
                throw Untold();
        }
    }

    void ReadOperator(const Operator& found) {
        const Piece right = Pop();
        const Piece left = Pop();
        Push(Bracketed(left, found.strength) + found.text + Bracketed(right, found.strength + 1),
             found.strength);
    }

    void ReadText() {
        const std::uint8_t count = U8();
        const bool wide = U8() & 1;
        std::string text = "\"";
        for (int i = 0; i < count; ++i) {
            std::uint32_t unit = wide ? U16() : U8();
            if (unit >= 0xD800 && unit < 0xDC00 && i + 1 < count) {
                ++i;
                unit = 0x10000 + ((unit - 0xD800) << 10) + (U16() - 0xDC00u);
            }
            if (unit == '"') text += '"';
            AppendUtf8(text, unit);
        }
        Push(text + "\"");
    }

    void ReadAttribute() {
        const std::uint8_t flags = U8();
        const std::uint16_t data = U16();
        if (flags & kChoose) Skip((std::size_t{data} + 1) * 2);
        if (flags & kSumOfOne) Push("SUM(" + Pop().text + ")");
    }

    static std::string Place(std::uint16_t row, std::uint16_t column) {
        return ColumnLetters((column & 0xFFu) + 1) + std::to_string(row + 1);
    }
    std::string ReadPlace() {
        const std::uint16_t row = U16();
        return Place(row, U16());
    }
    void ReadArea() {
        const std::uint16_t firstRow = U16();
        const std::uint16_t lastRow = U16();
        const std::uint16_t firstColumn = U16();
        Push(Place(firstRow, firstColumn) + ":" + Place(lastRow, U16()));
    }

    void ReadFunction(std::optional<int> count) {
        const std::uint16_t number = U16() & 0x7FFF;
        std::string name = kUnknown;
        for (const Function& known : kFunctions) {
            if (known.number != number) continue;
            name = known.name;
            if (!count) count = known.arguments;
        }
        if (!count || *count < 0) throw Untold();
        std::string arguments;
        for (int i = 0; i < *count; ++i) {
            const Piece piece = Pop();
            arguments = i == 0 ? piece.text : piece.text + "," + arguments;
        }
        Push(name + "(" + arguments + ")");
    }

    std::string_view rest_;
    std::vector<Piece> pieces_;
};

}  // namespace

std::optional<std::string> XlsFormulaText(std::string_view tokens) {
    try {
        return Reading(tokens).Run();
    } catch (const Untold&) {
        return std::nullopt;
    }
}

}  // namespace vicenter::office
