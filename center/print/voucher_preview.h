#pragma once

// The window that shows one pattern as the voucher that it would make: its lines and sums, and what is still
// open before it can be one. Nothing is changed. User-interface thread.

#include <string>
#include <vector>

#include "center/print/print_sheet.h"

namespace vicenter::center {

class EntryGrid;
class VICenterView;

// Whose sheet it is.
struct SheetHead {
    std::string templateName;
    std::string accountSet;
    std::string user;
};

// The whole template as it stands in the grid, dated today.
PrintSheet TemplateSheet(const EntryGrid& grid, int rowCount, const SheetHead& head);

// Why that file cannot become a PDF, for users; empty when it can. Neither account sets nor files of another
// kind nor devices are written over.
std::string WhyNotPdfTarget(const std::string& file);
// A file name for the sheet: asked for, written, and told where the view tells it. False when the user
// cancelled or it could not be written; the reason has been told.
bool SaveAsPdf(VICenterView& view, const PrintSheet& sheet, const std::string& proposedName);
// On paper; a printer that fails is told.
bool PrintOut(VICenterView& view, const PrintSheet& sheet);

class VoucherPreview {
  public:
    // The pattern of a row in use that has a number. Asks the account set about it.
    VoucherPreview(const EntryGrid& grid, int rowCount, int row, const SheetHead& head);

    std::string Caption() const;
    const PrintBlock& Voucher() const { return sheet_.blocks.front(); }
    const std::vector<PrintColumn>& Columns() const { return sheet_.columns; }
    // What is still open, one a line: that its sums differ, and what its cells ask. Empty when the voucher
    // can be made.
    const std::vector<std::string>& Questions() const { return Voucher().notes; }
    // What is printed: the voucher with its questions as notes.
    const PrintSheet& Sheet() const { return sheet_; }
    std::string ProposedName() const;

  private:
    PrintSheet sheet_;
    std::string number_;
};

}  // namespace vicenter::center
