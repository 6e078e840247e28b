// What other vocabularies leave in a part is not taken for the sheet's own.

#include <gtest/gtest.h>

#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/package.h"

namespace vicenter::office {
namespace {

const std::string kOther = "xmlns:x15='http://schemas.microsoft.com/office/spreadsheetml/2010/11/main'";

class ForeignParts : public testing::Test {
  protected:
    std::unique_ptr<Workbook> Read(const Package& package) const {
        package.Save(folder_.File("f"));
        return ReadWorkbook(folder_.File("f"));
    }

  private:
    fakes::TemporaryFolder folder_;
};

TEST_F(ForeignParts, TheExtensionsOfAWorkbookDoNotMoveItsDates) {
    Package package;
    package.workbook = "<workbook xmlns='" + kNamespace + "' xmlns:r='relations' " + kOther +
                       "><workbookPr date1904='1'/><sheets><sheet name='s' sheetId='1' r:id='r1'/></sheets>"
                       "<extLst><ext><x15:workbookPr chartTrackingRefBase='1'/></ext></extLst></workbook>";
    EXPECT_TRUE(Read(package)->dates1904);
    package.workbook =
        "<w:workbook xmlns:w='" + kNamespace +
        "' xmlns:r='relations'><w:sheets><w:sheet name='s' "
        "sheetId='1' r:id='r1'/></w:sheets><workbookPr xmlns='other' date1904='1'/></w:workbook>";
    EXPECT_FALSE(Read(package)->dates1904);
}

TEST_F(ForeignParts, ForeignCellsOverwriteNothingAndRefuseNothing) {
    Package package;
    package.sheet =
        "<worksheet xmlns='" + kNamespace + "' " + kOther +
        "><sheetData><row r='1'><c r='A1'><v>1</v><x15:c r='nonsense'><x15:v>2</x15:v></x15:c></c>"
        "<c x15:t='s' r='B1' x15:r='A1'><v>3</v></c></row></sheetData>"
        "<extLst><ext><x15:sheetData><x15:row r='0'><x15:c r='A1'><x15:v>9</x15:v></x15:c></x15:row>"
        "</x15:sheetData><sheetData xmlns='other'><row r='1'><c r='A1'><v>8</v></c></row></sheetData></ext>"
        "</extLst></worksheet>";
    const auto book = Read(package);
    EXPECT_EQ(TextAt(*book, *book->Sheets()[0], 0, 0), "1");
    EXPECT_EQ(TextAt(*book, *book->Sheets()[0], 0, 1), "3");
}

TEST_F(ForeignParts, APrefixMeansWhatTheNearestElementSays) {
    Package package;
    package.sheet =
        "<a:worksheet xmlns:a='" + kNamespace + "'><a:sheetData><a:row r='1'><b:c xmlns:b='" + kNamespace +
        "' r='A1'><b:v>1</b:v></b:c><a:c xmlns:a='other' r='A1'><a:v>2</a:v></a:c><c r='A1' xmlns='" +
        kNamespace + "'><v>3</v></c></a:row></a:sheetData></a:worksheet>";
    const auto book = Read(package);
    EXPECT_EQ(TextAt(*book, *book->Sheets()[0], 0, 0), "3");
}

TEST_F(ForeignParts, TimesAloneHaveNoDay) {
    for (const char* start : {"<workbookPr/>", "<workbookPr date1904='1'/>"}) {
        Package package;
        package.workbook = std::string("<workbook>") + start +
                           "<sheets><sheet name='s' sheetId='1' r:id='r1'/></sheets></workbook>";
        package.styles = "<styleSheet><cellXfs><xf numFmtId='0'/><xf numFmtId='21'/></cellXfs></styleSheet>";
        package.sheet =
            "<worksheet><sheetData><row r='1'><c r='A1' s='1'><v>0.4309027777777778</v></c>"
            "<c r='B1' s='1'><v>0</v></c></row></sheetData></worksheet>";
        const auto book = Read(package);
        EXPECT_EQ(TextAt(*book, *book->Sheets()[0], 0, 0), "10:20:30") << start;
        EXPECT_EQ(TextAt(*book, *book->Sheets()[0], 0, 1), "00:00:00") << start;
    }
}

}  // namespace
}  // namespace vicenter::office
