#pragma once

// The template sheet of a workbook, opened in a copy of the file, so that a workbook that somebody has open
// can still be read; copy and server go with the object. Read tidily, rows above the header, blank rows
// between lines and blank columns are passed over, which an import by itself refuses. Rows and columns are
// numbers of the sheet, wherever its used range begins. Late bound throughout. User-interface thread only.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/excel_access.h"
#include "platform/system/unfinished_file.h"

namespace vicenter::exchange {

// A copy of a file that goes with the scope.
class TemporaryCopy {
  public:
    TemporaryCopy(ObjectRef files, const std::string& fileName);
    TemporaryCopy(const TemporaryCopy&) = delete;
    TemporaryCopy& operator=(const TemporaryCopy&) = delete;
    ~TemporaryCopy();
    const std::string& Name() const { return name_; }

  private:
    ObjectRef files_;
    std::string name_;
    std::optional<system::UnfinishedFile> unfinished_;
};

class TemplateSheet {
  public:
    // Throws Refused for a file that is not there or has no such sheet, automation::Error for one that cannot
    // be read, its reason as the text.
    explicit TemplateSheet(const std::string& fileName, bool tidily = false);

    const ObjectRef& Application() const { return session_.Application(); }
    const ObjectRef& Workbook() const { return workbook_; }
    const ObjectRef& Sheet() const { return sheet_; }
    // The columns that are read, in their order, without the reasons of a marked copy: as many from the first
    // one on as the used range has, or, read tidily, all that hold something from the header on.
    const std::vector<std::int32_t>& Columns() const { return columns_; }
    // The last ones of the used range, without the reasons of a marked copy.
    std::int32_t LastColumn() const { return lastColumn_; }
    std::int32_t LastRow() const { return lastRow_; }
    // It is a marked copy of a workbook that was refused.
    bool HasReasons() const { return hasReasons_; }
    bool Tidily() const { return tidily_; }
    // The row of the headers: the first one, unless the sheet is read tidily and has another.
    std::int32_t HeaderRow() const { return headerRow_; }
    // The first row that names all columns that must be there, 0 when none of the first ones in use does.
    std::int32_t FindHeaderRow() const;
    // A header as it is compared.
    std::string HeaderAt(std::int32_t row, std::int32_t column) const;
    // Whether the column holds nothing from that row on; false of a sheet too large to look.
    bool IsBlankFrom(std::int32_t firstRow, std::int32_t column) const;

  private:
    bool IsReasons(std::int32_t column) const;
    void ReadUsedRange();
    void ChooseColumns();

    TemporaryCopy copy_;
    ExcelSession session_;
    ObjectRef workbook_;
    ObjectRef sheet_;
    std::vector<std::int32_t> columns_;
    std::int32_t firstColumn_ = 1;  // of the used range
    std::int32_t firstRow_ = 1;
    std::int32_t lastColumn_ = 0;
    std::int32_t lastRow_ = 0;
    std::int32_t headerRow_ = 1;
    bool hasReasons_ = false;
    bool tidily_ = false;
};

}  // namespace vicenter::exchange
