#pragma once

// The formulas of a sheet whose results its writer left to whoever opens the file: none at all, or a 0 and
// the wish that everything be calculated on loading. Refers to the workbook for the time of reading one
// sheet; not thread-safe.

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/office/formula.h"
#include "platform/office/workbook.h"

namespace vicenter::office {

class PendingFormulas {
  public:
    PendingFormulas(Workbook& workbook, Sheet& sheet) : workbook_(workbook), sheet_(sheet) {}

    // A formula at that place of the sheet.
    void Add(std::uint32_t row, std::uint32_t column, std::string formula);
    // Puts the results into their cells, #CALC! where the formula is not simple.
    void Calculate();

  private:
    enum class State { Waiting, Open, Done };
    struct Pending {
        std::uint32_t row;
        std::uint32_t column;
        std::string formula;
        State state = State::Waiting;
        std::optional<FormulaValue> value;
    };

    std::optional<FormulaValue> ValueAt(std::uint32_t row, std::uint32_t column);
    std::optional<FormulaValue> StoredValue(std::uint32_t row, std::uint32_t column) const;
    void CalculateOne(Pending& pending);
    void Store(const Pending& pending);

    Workbook& workbook_;
    Sheet& sheet_;
    std::vector<Pending> pending_;
    std::unordered_map<std::uint64_t, std::size_t> places_;  // of pending_, by row and column
    int depth_ = 0;
    bool tooDeep_ = false;  // since the outermost formula was begun
    std::uint64_t reads_ = 0;
};

}  // namespace vicenter::office
