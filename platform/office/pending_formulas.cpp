#include "platform/office/pending_formulas.h"

namespace vicenter::office {

namespace {

constexpr int kMaxDepth = 64;                    // formulas that wait for each other
constexpr std::uint64_t kMaxReads = 10'000'000;  // cells that all formulas of a sheet may ask for

std::uint64_t PlaceKey(std::uint32_t row, std::uint32_t column) {
    return std::uint64_t{row} << 32 | column;
}

}  // namespace

void PendingFormulas::Add(std::uint32_t row, std::uint32_t column, std::string formula) {
    workbook_.Charge(sizeof(Pending) + 64 + formula.capacity());
    if (!places_.emplace(PlaceKey(row, column), pending_.size()).second) return;
    pending_.push_back({row, column, std::move(formula), State::Waiting, std::nullopt});
}

void PendingFormulas::Calculate() {
    // A long chain of cells gets its results from the end that is known: in one of the two directions, as
    // chains are.
    for (Pending& pending : pending_)
        CalculateOne(pending);
    for (auto pending = pending_.rbegin(); pending != pending_.rend(); ++pending)
        CalculateOne(*pending);
    for (const Pending& pending : pending_)
        Store(pending);
}

void PendingFormulas::CalculateOne(Pending& pending) {
    if (pending.state != State::Waiting) return;
    if (depth_ == 0) tooDeep_ = false;
    if (depth_ >= kMaxDepth) {
        tooDeep_ = true;
        return;
    }
    pending.state = State::Open;
    ++depth_;
    pending.value = CalculateFormula(
        pending.formula, [this](std::uint32_t row, std::uint32_t column) { return ValueAt(row, column); });
    --depth_;
    pending.state = !pending.value && tooDeep_ ? State::Waiting : State::Done;
}

std::optional<FormulaValue> PendingFormulas::ValueAt(std::uint32_t row, std::uint32_t column) {
    if (++reads_ > kMaxReads) return std::nullopt;
    const auto known = places_.find(PlaceKey(row, column));
    if (known == places_.end()) return StoredValue(row, column);
    Pending& pending = pending_[known->second];
    CalculateOne(pending);
    // Still open: the formulas wait for each other in a circle.
    if (pending.state != State::Done) return std::nullopt;
    return pending.value;
}

std::optional<FormulaValue> PendingFormulas::StoredValue(std::uint32_t row, std::uint32_t column) const {
    const Cell* cell = sheet_.Find(row, column);
    if (cell == nullptr) return FormulaValue{};
    switch (cell->kind) {
        case CellKind::Blank:
            return FormulaValue{};
        case CellKind::Number:
            return FormulaValue{FormulaValue::Kind::Number, cell->number, {}};
        case CellKind::Text:
            return FormulaValue{FormulaValue::Kind::Text, 0, std::string(workbook_.Texts().At(cell->text))};
        case CellKind::Boolean:
        case CellKind::Error:
            break;
    }
    return std::nullopt;
}

void PendingFormulas::Store(const Pending& pending) {
    Cell& cell = sheet_.At(pending.row, pending.column);
    if (!pending.value) {
        cell.kind = CellKind::Error;
        cell.error = CellError::Calc;
    } else if (pending.value->kind == FormulaValue::Kind::Text) {
        cell.kind = CellKind::Text;
        cell.text = workbook_.Texts().Intern(pending.value->text);
    } else {
        cell.kind = CellKind::Number;
        cell.number = pending.value->number;
    }
}

}  // namespace vicenter::office
