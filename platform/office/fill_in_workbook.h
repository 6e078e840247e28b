#pragma once

// Writes an .xlsx workbook that is there to be filled in: one sheet of headers, each with a note and, where
// there are values to choose from, a drop-down below it; the values stand on a second sheet. Made in one
// piece, since the workbooks of the automation server hold neither notes nor drop-downs.

#include <string>
#include <vector>

namespace vicenter::office {

struct FillInColumn {
    std::string header;
    std::string note;
    std::vector<std::string> choices = {};  // of the drop-down; none: no drop-down
    bool choicesOnly = false;               // what is no choice is refused; otherwise the user is warned
    bool text = false;                      // formatted as text
    double width = 12;                      // in characters
};

// A column of the second sheet that is there to be looked at alone.
struct FillInList {
    std::string header;
    std::vector<std::string> values;
};

struct FillInWorkbook {
    std::string sheetName;
    std::string choicesName;  // of the second sheet
    std::vector<FillInColumn> columns;
    std::vector<FillInList> lists;  // in front of the choices
    int rows = 1000;                // that have drop-downs
};

// Over whatever is there, which stays when writing fails. Throws automation::Error.
void WriteFillInWorkbook(const FillInWorkbook& workbook, const std::string& fileName);

}  // namespace vicenter::office
