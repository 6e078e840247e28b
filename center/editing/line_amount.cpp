#include "center/editing/line_amount.h"

#include "automation/error.h"
#include "center/editing/cell_rules.h"
#include "center/grid/line_texts.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

constexpr int kCents = 2;

// A number that the column has taken.
std::optional<Decimal> NumberAt(const EntryGrid& grid, int row, int gridColumn) {
    const std::string_view text = grid.Text(row, gridColumn);
    if (text.empty() || grid.Refusal(row, gridColumn) != TextVerdict::Taken) return std::nullopt;
    return DecimalIn(text);
}

// Nothing while a factor is missing, or for a product that nobody could write down.
std::optional<Decimal> Product(const EntryGrid& grid, int row, int a, int b) {
    const std::optional<Decimal> first = NumberAt(grid, row, a);
    const std::optional<Decimal> second = first ? NumberAt(grid, row, b) : std::nullopt;
    if (!second) return std::nullopt;
    try {
        return Decimal::Multiply(*first, *second).Rescaled(Decimal::kMaxDigits / 2);
    } catch (const automation::Error&) {
        return std::nullopt;
    }
}

std::optional<Decimal> InCurrency(const EntryGrid& grid, int row) {
    return Product(grid, row, column::kRate, column::kAmountFor);
}

std::optional<Decimal> OfQuantity(const EntryGrid& grid, int row) {
    return Product(grid, row, column::kQuantity, column::kPrice);
}

// However many of the product's decimals the amount has kept. Of numbers beyond all measure nothing is said.
bool Agrees(const Decimal& product, const Decimal& amount) {
    static const Decimal half = *Decimal::Parse("0.005");
    try {
        const Decimal difference = Decimal::Subtract(product, amount);
        return Decimal::Compare(difference.IsNegative() ? difference.Negated() : difference, half) <= 0;
    } catch (const automation::Error&) {
        return true;
    }
}

std::string Shown(const Decimal& product) {
    return DisplayText(column::kAmount, product.Rescaled(kCents).ToShortText());
}

}  // namespace

bool MakesAmount(int gridColumn) {
    return gridColumn == column::kRate || gridColumn == column::kAmountFor ||
           gridColumn == column::kQuantity || gridColumn == column::kPrice;
}

std::optional<std::string> AmountToFill(const EntryGrid& grid, int row) {
    if (!grid.Text(row, column::kAmount).empty()) return std::nullopt;
    std::optional<Decimal> product = InCurrency(grid, row);
    // The price of a line in a currency of its own is one in that currency.
    const bool foreign =
        !grid.Text(row, column::kRate).empty() || !grid.Text(row, column::kAmountFor).empty();
    if (!product && !foreign) product = OfQuantity(grid, row);
    if (!product || product->IsZero()) return std::nullopt;
    std::string text = product->Rescaled(kCents).ToShortText();
    if (CheckTypedText(column::kAmount, text) != TextVerdict::Taken) return std::nullopt;
    return text;
}

std::string AmountHint(const EntryGrid& grid, int row) {
    const std::optional<Decimal> amount = NumberAt(grid, row, column::kAmount);
    if (!amount) return {};
    const std::optional<Decimal> inCurrency = InCurrency(grid, row);
    if (inCurrency && !Agrees(*inCurrency, *amount))
        return "汇率×原币金额为 " + Shown(*inCurrency) + "，与金额不符";
    const std::optional<Decimal> ofQuantity = OfQuantity(grid, row);
    if (!ofQuantity || Agrees(*ofQuantity, *amount)) return {};
    const std::optional<Decimal> amountFor = NumberAt(grid, row, column::kAmountFor);
    if (amountFor && Agrees(*ofQuantity, *amountFor)) return {};
    return "数量×单价为 " + Shown(*ofQuantity) + "，与金额不符";
}

}  // namespace vicenter::center
