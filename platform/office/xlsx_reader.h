#pragma once

// Reads an ".xlsx" package into a workbook: values and number formats of every worksheet, in the package's
// order. Formula results are taken as stored; charts, comments, filters and the like are passed over.

#include <memory>
#include <string>
#include <vector>

#include "platform/office/workbook.h"
#include "platform/office/xml_scanner.h"

namespace vicenter::office {

// Throws automation::Error for a file that is no readable workbook.
std::unique_ptr<Workbook> ReadXlsx(const std::string& fileName);

// What the cells of a sheet refer to.
struct XlsxTables {
    std::vector<std::uint32_t> sharedTexts;  // shared text to the workbook's text
    std::vector<std::uint16_t> formats;      // cell style to the workbook's format
    std::uint16_t dateFormat = 0;            // for dates written as text
};

// Each reads one part: the shared texts, the styles, and the cells of one worksheet.
void ReadXlsxSharedTexts(ByteSource& part, Workbook& workbook, XlsxTables& tables);
void ReadXlsxStyles(ByteSource& part, Workbook& workbook, XlsxTables& tables);
void ReadXlsxSheet(ByteSource& part, const XlsxTables& tables, Workbook& workbook, Sheet& sheet);

// Reads the texts of a string item up to its end: its own text and its rich text runs, without phonetic
// hints. The scanner stands behind the item's Start.
void ReadStringItem(XmlScanner& scanner, std::string& text);

}  // namespace vicenter::office
