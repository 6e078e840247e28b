#pragma once

// Access to the Excel automation server of the host, whichever it is. User-interface thread only.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace vicenter::exchange {

using automation::ObjectRef;

inline constexpr const char* kExcelProgId = "Excel.Application";
// The first version with ".xlsx".
inline constexpr std::int32_t kFirstXlsxVersion = 12;
inline constexpr std::int32_t kFormatXls = -4143;
inline constexpr std::int32_t kFormatXlsx = 51;
inline constexpr std::int32_t kFormatStrictXlsx = 61;
inline constexpr std::int32_t kAccessExclusive = 3;

// Whether the server can be created. Keeps its version for ExcelVersion(), 0 after a failure.
bool IsExcelInstalled();
// The whole part of the version found by the last IsExcelInstalled().
std::int32_t ExcelVersion();

// Why no workbook can be written under that name, for users; empty when it can: a file that is neither a
// workbook nor called one is never written over, and no account set, device or folder, also behind a link.
std::string WhyNotWorkbookTarget(const std::string& fileName);

// Saves the workbook through a temporary file and copies it to the target, closing the workbook before. The
// target holds the old file or the new one at every moment, where the file system object can replace files.
// Returns whether the new target exists afterwards. What went wrong is put into errorText; it is shown only
// with showMessage. Never throws.
bool SaveWorkbookAs(const ObjectRef& excel, const ObjectRef& workbook, const std::string& fileName,
                    std::string& errorText, bool showMessage);

// A server of one's own: created at once, quit at the end of the scope whatever happened.
class ExcelSession {
  public:
    ExcelSession();
    ExcelSession(const ExcelSession&) = delete;
    ExcelSession& operator=(const ExcelSession&) = delete;
    ~ExcelSession();

    const ObjectRef& Application() const { return application_; }

  private:
    ObjectRef application_;
};

// The cells of a sheet, read and written by the hundred thousand: one set of arguments serves all calls.
class SheetCells {
  public:
    explicit SheetCells(ObjectRef sheet) : sheet_(std::move(sheet)) {}
    // The cell as an object.
    ObjectRef At(std::int32_t row, std::int32_t column);
    automation::Variant Value(std::int32_t row, std::int32_t column);
    void SetValue(std::int32_t row, std::int32_t column, automation::Variant value);

  private:
    ObjectRef sheet_;
    automation::Arguments arguments_;
    automation::Arguments none_;
};

}  // namespace vicenter::exchange
