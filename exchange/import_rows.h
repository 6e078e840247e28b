#pragma once

// The rows of a template sheet on their way into the batch. Refers to the sheet for the time of one import.
// User-interface thread only.

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "exchange/excel_access.h"
#include "exchange/import_outcome.h"
#include "exchange/template_columns.h"
#include "store/template_reading.h"

namespace vicenter::exchange {

class ImportRows {
  public:
    // sheetColumns: the columns of the sheet that are read; fieldList: their fields in the same order, joined
    // by ",".
    ImportRows(const ObjectRef& sheet, std::vector<std::int32_t> sheetColumns, const std::string& fieldList);

    // Reads one row of the sheet; whether any of its cells holds something.
    bool ReadRow(std::int32_t row);
    // Checks the row: its errors are appended to errorText, and `values` becomes the list of values of its
    // insert, in the sheet's order of columns. Reads the row unless it is the one that ReadRow() read last.
    void ValidateImportRow(std::int32_t row, std::string& values, std::string& errorText);
    // What was found in that row, validated last, becomes one fault of the whole row.
    void FoldFaultsOf(std::int32_t row, const std::string& reason);
    // The row that was read last as the account set would give it back; a faulty cell as it is typed.
    store::LineTexts TextsAsStored() const;
    // What has been found in all rows so far, with the value and the reason of each.
    std::vector<LineFault> TakeFaults() { return std::move(faults_); }

  private:
    // What was read of one cell.
    struct ReadText {
        std::string text;
        const char* fault = nullptr;  // why the text is not what the cell means
        bool told = false;            // the message says why, too
    };
    ReadText ReadCell(std::int32_t row, std::size_t index);
    // Looks for what the cell's column would not find.
    static void TakeFault(const automation::Variant& value, CellType type, ReadText& read);
    bool IsFirstOfItsNumber();
    // Why the cell at that place cannot be imported; the empty text when it can. `told`: the message says it.
    std::string WhyNot(std::size_t index, bool& told);

    SheetCells cells_;
    std::vector<std::int32_t> sheetColumns_;
    std::vector<std::size_t> columns_;  // places in kColumns, by sheetColumns_
    std::vector<ReadText> texts_;       // of the row read last
    std::int32_t row_ = 0;
    std::size_t numberIndex_ = 0;
    std::set<std::string, std::less<>> numbersMet_;
    std::vector<LineFault> faults_;
};

}  // namespace vicenter::exchange
