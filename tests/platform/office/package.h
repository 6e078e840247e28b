#pragma once

#include <string>

#include "platform/office/zip_writer.h"

namespace vicenter::office {

inline const std::string kNamespace = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

// A package of one sheet, each part to be replaced.
struct Package {
    std::string rootRelations =
        "<Relationships><Relationship Id='r' Type='x/officeDocument' "
        "Target='xl/workbook.xml'/></Relationships>";
    std::string workbook = "<workbook><sheets><sheet name='s' sheetId='1' r:id='r1'/></sheets></workbook>";
    std::string relations =
        "<Relationships><Relationship Id='r1' Type='x/worksheet' Target='worksheets/sheet1.xml'/>"
        "<Relationship Id='r2' Type='x/sharedStrings' Target='sharedStrings.xml'/>"
        "<Relationship Id='r3' Type='x/styles' Target='styles.xml'/></Relationships>";
    std::string sheet = "<worksheet><sheetData/></worksheet>";
    std::string texts;
    std::string styles;

    void Save(const std::string& name) const {
        ZipWriter zip(name);
        zip.Add("_rels/.rels", rootRelations);
        zip.Add("xl/workbook.xml", workbook);
        zip.Add("xl/_rels/workbook.xml.rels", relations);
        zip.Add("xl/worksheets/sheet1.xml", sheet);
        if (!texts.empty()) zip.Add("xl/sharedStrings.xml", texts);
        if (!styles.empty()) zip.Add("xl/styles.xml", styles);
        zip.Finish();
    }
};

}  // namespace vicenter::office
