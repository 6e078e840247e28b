#pragma once

// Sheets on paper and in PDF files: what the presenter laid out, drawn page by page on A4. Colours are those
// of paper, whatever the theme. User-interface thread only; needs a QGuiApplication for its fonts.

#include <QPagedPaintDevice>
#include <string>

#include "center/print/print_sheet.h"

class QWidget;

namespace vicenter::ui {

// The number of pages drawn; 0 when the device cannot be drawn on.
int PaintSheet(QPagedPaintDevice& device, const center::PrintSheet& sheet);

// A file that is there stays until the new one is whole. Throws automation::Error with a text for users.
void WriteSheetAsPdf(const center::PrintSheet& sheet, const std::string& file);

// By the system's print dialog; false when the user cancelled it. Throws automation::Error.
bool PrintOnPaper(const center::PrintSheet& sheet, QWidget* parent);

}  // namespace vicenter::ui
