#include <functional>
#include <random>

#include "platform/office/xlsx_package.h"
#include "platform/office/xlsx_reader.h"
#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/package.h"

namespace vicenter::office {
namespace {

class Hostile : public testing::Test {
  protected:
    std::string File(const std::string& name = "h") const { return folder_.File(name); }
    std::unique_ptr<Workbook> Read(const Package& package) const {
        package.Save(File());
        return ReadWorkbook(File());
    }
    void ExpectRefused(const Package& package) const {
        package.Save(File());
        ExpectRefused(File());
    }
    static void ExpectRefused(const std::string& name) {
        try {
            ReadWorkbook(name);
            ADD_FAILURE() << "was read";
        } catch (const automation::Error& error) {
            EXPECT_EQ(error.Number(), kExcelError);
            EXPECT_FALSE(error.Text().empty());
        }
    }

    fakes::TemporaryFolder folder_;
};

TEST_F(Hostile, PlainPackageIsRead) {
    EXPECT_EQ(Read({})->Sheets().size(), 1u);
}

TEST_F(Hostile, FilesThatAreNoWorkbooksAreRefused) {
    for (const std::string& content :
         {std::string(), std::string("PK"), std::string("PK\x03\x04 and nothing more"), std::string("a;b;c"),
          std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"),
          std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1") + std::string(2000, '\xFF'),
          std::string(100000, '\0'), std::string("<html></html>")}) {
        WriteBytes(File(), content);
        ExpectRefused(File());
    }
    ExpectRefused(File("missing"));
    ExpectRefused(folder_.Text());
}

TEST_F(Hostile, DocumentTypesAreRefusedSoThatNothingExpands) {
    Package package;
    package.sheet =
        "<!DOCTYPE a [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;'>]><worksheet><sheetData>"
        "<row><c t='inlineStr'><is><t>&b;</t></is></c></row></sheetData></worksheet>";
    ExpectRefused(package);
}

TEST_F(Hostile, ADimensionOfAMillionRowsWithThreeCellsIsThreeCells) {
    Package package;
    package.sheet =
        "<worksheet><dimension ref='A1:XFD1048576'/><sheetData><row r='1'><c r='A1'><v>1</v></c></row>"
        "<row r='3'><c r='C3'><v>2</v></c><c r='Q3'><v>3</v></c></row></sheetData></worksheet>";
    const auto workbook = Read(package);
    EXPECT_EQ(workbook->Sheets()[0]->UsedArea().lastRow, 2u);
    EXPECT_EQ(workbook->Sheets()[0]->Rows().size(), 3u);
}

TEST_F(Hostile, CellsWithoutPlacesFollowOneAnother) {
    Package package;
    package.sheet = "<x:worksheet xmlns:x='" + kNamespace +
                    "'><x:sheetData><x:row><x:c><x:v>1</x:v></x:c><x:c/><x:c><x:v>3</x:v></x:c></"
                    "x:row><x:row r='5'><x:c r='B5'>"
                    "<x:v>4</x:v></x:c><x:c><x:v>5</x:v></x:c></x:row><x:row><x:c><x:v>6</x:v></x:c></"
                    "x:row></x:sheetData>"
                    "</x:worksheet>";
    const auto workbook = Read(package);
    const Sheet& sheet = *workbook->Sheets()[0];
    EXPECT_EQ(TextAt(*workbook, sheet, 0, 2), "3");
    EXPECT_EQ(TextAt(*workbook, sheet, 4, 1), "4");
    EXPECT_EQ(TextAt(*workbook, sheet, 4, 2), "5");
    EXPECT_EQ(TextAt(*workbook, sheet, 5, 0), "6");
}

TEST_F(Hostile, PlacesOutOfOrderAndTwiceAreSorted) {
    Package package;
    package.sheet =
        "<worksheet><sheetData><row r='2'><c r='C2'><v>3</v></c><c r='A2'><v>1</v></c><c "
        "r='C2'><v>4</v></c></row>"
        "<row r='1'><c r='A1'><v>0</v></c></row></sheetData></worksheet>";
    const auto workbook = Read(package);
    EXPECT_EQ(TextAt(*workbook, *workbook->Sheets()[0], 1, 0), "1");
    EXPECT_EQ(TextAt(*workbook, *workbook->Sheets()[0], 1, 2), "4");
    EXPECT_EQ(TextAt(*workbook, *workbook->Sheets()[0], 0, 0), "0");
}

TEST_F(Hostile, PlacesOutsideOfASheetAreRefused) {
    for (const char* cell :
         {"<row r='0'/>", "<row r='1048577'/>", "<row r='-1'/>", "<row><c r='XFE1'/></row>",
          "<row><c r='A0'/></row>", "<row><c r='1'/></row>", "<row><c r='AAAA1'/></row>",
          "<row><c r='A99999999999999999999'/></row>", "<row><c r='XFD1'/><c/></row>"}) {
        Package package;
        package.sheet = std::string("<worksheet><sheetData>") + cell + "</sheetData></worksheet>";
        ExpectRefused(package);
    }
}

TEST_F(Hostile, ReferencesToTextsAndStylesThatAreNotThereAreHarmless) {
    Package package;
    package.sheet = "<worksheet><sheetData><row><c t='s'><v>0</v></c></row></sheetData></worksheet>";
    ExpectRefused(package);
    package.texts = "<sst><si><t>a</t></si></sst>";
    EXPECT_EQ(TextAt(*Read(package), *Read(package)->Sheets()[0], 0, 0).empty(), false);
    for (const char* index : {"1", "-1", "x", "99999999999", ""}) {
        package.sheet = std::string("<worksheet><sheetData><row><c t='s'><v>") + index +
                        "</v></c></row></sheetData></worksheet>";
        ExpectRefused(package);
    }
    package.sheet = "<worksheet><sheetData><row><c s='77'><v>5</v></c></row></sheetData></worksheet>";
    const auto workbook = Read(package);
    EXPECT_EQ(TextAt(*workbook, *workbook->Sheets()[0], 0, 0), "5");
}

TEST_F(Hostile, RichAndPhoneticTextsKeepOnlyWhatIsShown) {
    Package package;
    package.texts =
        "<sst><si><r><rPr><b/></rPr><t>凭</t></r><r><t xml:space='preserve'> 证</t></r><rPh sb='0' "
        "eb='1'><t>ping</t>"
        "</rPh></si></sst>";
    package.sheet = "<worksheet><sheetData><row><c t='s'><v>0</v></c></row></sheetData></worksheet>";
    const auto workbook = Read(package);
    EXPECT_EQ(TextAt(*workbook, *workbook->Sheets()[0], 0, 0), "凭 证");
}

TEST_F(Hostile, NumbersThatAreNoneBecomeTexts) {
    Package package;
    package.sheet =
        "<worksheet><sheetData><row><c><v>inf</v></c><c><v>nan</v></c><c><v>1e999</v></c><c><v> 7 </v></c>"
        "<c t='d'><v>2024-01-02T00:00:00Z</v></c><c t='d'><v>soon</v></c></row></sheetData></worksheet>";
    const auto workbook = Read(package);
    const Sheet& sheet = *workbook->Sheets()[0];
    EXPECT_EQ(TextAt(*workbook, sheet, 0, 0), "inf");
    EXPECT_EQ(TextAt(*workbook, sheet, 0, 2), "1e999");
    EXPECT_EQ(sheet.Find(0, 2)->kind, CellKind::Text);
    EXPECT_EQ(TextAt(*workbook, sheet, 0, 3), "7");
    EXPECT_EQ(TextAt(*workbook, sheet, 0, 4), "2024-01-02");
    EXPECT_EQ(TextAt(*workbook, sheet, 0, 5), "soon");
}

TEST_F(Hostile, PartNamesNeverLeaveThePackage) {
    EXPECT_EQ(ResolvePartName("xl/workbook.xml", "worksheets/sheet1.xml"), "xl/worksheets/sheet1.xml");
    EXPECT_EQ(ResolvePartName("xl/workbook.xml", "/xl/a.xml"), "xl/a.xml");
    EXPECT_EQ(ResolvePartName("xl/workbook.xml", "../../../etc/passwd"), "etc/passwd");
    EXPECT_EQ(ResolvePartName("", "./a//b"), "a/b");
    Package package;
    package.relations =
        "<Relationships><Relationship Id='r1' Type='x/worksheet' "
        "Target='../../../../etc/passwd'/></Relationships>";
    ExpectRefused(package);
    package.relations =
        "<Relationships><Relationship Id='r1' Type='x/worksheet' Target='file:///etc/passwd' "
        "TargetMode='External'/>"
        "</Relationships>";
    ExpectRefused(package);
}

TEST_F(Hostile, WorkbooksWithoutUsableSheetsAreRefused) {
    Package package;
    package.workbook = "<workbook><sheets/></workbook>";
    ExpectRefused(package);
    package.workbook = "<html/>";
    ExpectRefused(package);
    package = {};
    package.relations = "<Relationships/>";
    ExpectRefused(package);
    package = {};
    package.sheet = "<chartsheet/>";
    ExpectRefused(package);
    package.sheet = "<worksheet><sheetData><row><c><v>1";
    ExpectRefused(package);
}

TEST_F(Hostile, TooManySheetsAndTooLongTextsAreRefused) {
    Package package;
    package.workbook = "<workbook><sheets>";
    for (int i = 0; i < 2000; ++i)
        package.workbook += "<sheet name='s' r:id='r1'/>";
    package.workbook += "</sheets></workbook>";
    ExpectRefused(package);
    package = {};
    package.sheet = "<worksheet><sheetData><row><c t='inlineStr'><is><t>" + std::string(20'000'000, 'x') +
                    "</t></is></c></row></sheetData></worksheet>";
    ExpectRefused(package);
}

TEST_F(Hostile, ManySheetsOnOnePartAreBoundedByMemory) {
    // Each of a thousand names reads the same part of a thousand texts.
    Package package;
    package.workbook = "<workbook><sheets>";
    for (int i = 0; i < 1000; ++i)
        package.workbook += "<sheet name='s' r:id='r1'/>";
    package.workbook += "</sheets></workbook>";
    package.sheet = "<worksheet><sheetData><row r='1048576'><c><v>1</v></c></row></sheetData></worksheet>";
    ExpectRefused(package);
}

// Shared texts that are empty cost nothing but their places, whose list doubles as it grows.
TEST_F(Hostile, TheListOfSharedTextsIsBoundedWithItsGrowth) {
    class EmptyTexts : public ByteSource {
      public:
        std::size_t Read(char* buffer, std::size_t size) override {
            std::size_t count = 0;
            for (; count < size && at_ < xml_.size(); ++count)
                buffer[count] = xml_[at_++];
            return count;
        }

      private:
        static std::string Make() {
            std::string xml = "<sst>";
            for (int i = 0; i < 100'000; ++i)
                xml += "<si/>";
            return xml + "</sst>";
        }
        std::string xml_ = Make();
        std::size_t at_ = 0;
    };
    const auto read = [](std::size_t room) {
        EmptyTexts source;
        Workbook workbook;
        workbook.Charge(kMaxWorkbookBytes - room);
        XlsxTables tables;
        ReadXlsxSharedTexts(source, workbook, tables);
        return tables.sharedTexts.size();
    };
    EXPECT_EQ(read(2u << 20), 100'000u);
    EXPECT_THROW(read(500'000), automation::Error);
}

// --- the old kind

class HostileXls : public Hostile {
  protected:
    void SetUp() override {
        Workbook workbook;
        Sheet& sheet = workbook.AddSheet("s");
        for (std::uint32_t row = 0; row < 200; ++row) {
            SetText(workbook, sheet, row, 0, "凭证 " + std::to_string(row));
            SetNumber(sheet, row, 1, row);
        }
        WriteWorkbook(workbook, File(), FileKind::Xls);
        bytes_ = FileBytes(File());
    }
    std::uint32_t U32(std::size_t at) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < 4; ++i)
            value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes_[at + i])) << (8 * i);
        return value;
    }
    void SetU32(std::size_t at, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            bytes_[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
    }
    // Place of the first allocation table in the file.
    std::size_t Table() const { return (std::size_t{U32(76)} + 1) * 512; }
    void ExpectNoCrash() {
        WriteBytes(File(), bytes_);
        try {
            ReadWorkbook(File());
        } catch (const automation::Error& error) {
            EXPECT_FALSE(error.Text().empty());
        }
    }

    std::string bytes_;
};

TEST_F(HostileXls, CyclesInTheSectorsEnd) {
    const std::string good = bytes_;
    const std::size_t table = Table();
    for (std::uint32_t target = 0; target < 12; ++target) {
        bytes_ = good;
        for (std::size_t entry = 0; entry < 128; ++entry)
            SetU32(table + entry * 4, target);
        ExpectNoCrash();
        bytes_ = good;
        SetU32(table + std::size_t{target} * 4, target);
        ExpectNoCrash();
        bytes_ = good;
        SetU32(table + std::size_t{target} * 4, 0);
        ExpectNoCrash();
    }
}

TEST_F(HostileXls, HugeCountsInTheHeaderAreRefused) {
    const std::string good = bytes_;
    for (const std::size_t place : {44u, 48u, 60u, 64u, 68u, 72u, 76u}) {
        for (const std::uint32_t value : {0x7FFFFFFFu, 0xFFFFFFF0u, 0x00FFFFFFu, 0x80000000u}) {
            bytes_ = good;
            SetU32(place, value);
            ExpectNoCrash();
        }
    }
}

TEST_F(HostileXls, ChangedBytesAreReadOrRefused) {
    const std::string good = bytes_;
    std::mt19937 random(3);
    for (int round = 0; round < 1000; ++round) {
        bytes_ = good;
        const int changes = 1 + static_cast<int>(random() % 6);
        for (int i = 0; i < changes; ++i)
            bytes_[random() % bytes_.size()] = static_cast<char>(random());
        ExpectNoCrash();
    }
}

TEST_F(Hostile, ChangedBytesOfThePartsAreReadOrRefused) {
    Package good;
    good.sheet =
        "<worksheet><sheetData><row r='1'><c r='A1' t='s' s='1'><v>0</v></c><c r='B1' "
        "t='inlineStr'><is><t>a&amp;b</t>"
        "</is></c><c t='b'><v>1</v></c><c "
        "t='e'><v>#N/A</v></c><c><f>1+1</f><v>2</v></c></row></sheetData></worksheet>";
    good.texts = "<sst><si><t>凭证_x0041_</t></si></sst>";
    good.styles =
        "<styleSheet><numFmts><numFmt numFmtId='164' formatCode='yyyy'/></numFmts><cellXfs><xf numFmtId='0'/>"
        "<xf numFmtId='164'/></cellXfs></styleSheet>";
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        Package package = good;
        for (std::string* part : {&package.rootRelations, &package.workbook, &package.relations,
                                  &package.sheet, &package.texts, &package.styles}) {
            if (random() % 3 == 0) (*part)[random() % part->size()] = static_cast<char>(random());
        }
        package.Save(File());
        try {
            ReadWorkbook(File());
        } catch (const automation::Error& error) {
            EXPECT_FALSE(error.Text().empty());
        }
    }
}

}  // namespace
}  // namespace vicenter::office
