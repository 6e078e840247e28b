#pragma once

// The template sheet of a workbook, opened in a copy of the file, so that a workbook that somebody has open
// can still be read; copy and server go with the object. Late bound throughout. User-interface thread only.

#include <cstdint>
#include <optional>
#include <string>

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
    explicit TemplateSheet(const std::string& fileName);

    const ObjectRef& Application() const { return session_.Application(); }
    const ObjectRef& Workbook() const { return workbook_; }
    const ObjectRef& Sheet() const { return sheet_; }
    // Of the used range.
    std::int32_t Columns() const { return columns_; }
    std::int32_t Rows() const { return rows_; }

  private:
    TemporaryCopy copy_;
    ExcelSession session_;
    ObjectRef workbook_;
    ObjectRef sheet_;
    std::int32_t columns_ = 0;
    std::int32_t rows_ = 0;
};

}  // namespace vicenter::exchange
