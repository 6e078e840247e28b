// Runs tests/exchange/foreign/*.workbook: workbooks as other programs leave them, kept as their parts, and
// what the import must make of each.
//
//     # by hand                        comments at the head
//     name: a.xlsx                     the file's name
//     cut: 400                         bytes that are left of it, when it has broken off
//
//     part xl/worksheets/sheet1.xml    a part of a package; those of PackageParts that are not given are
//     plain <worksheet>…                     @headers and @line(2) stand for the cells of such rows (A to H,
//     A to E) stream Book                      or a container with that stream, its settings and records line
//     by line: label 0 0 模板编号(*)              see AddRecord() text                             or the
//     file as it stands
//     ----
//     2: 1,'a',1,'1001','b'            the values of each line's insert, a line feed as \n; or the refusal
//     refused …                        and every fault: row,column header [value] reason
//     2,6 金额 [x] …
//
// VICENTER_UPDATE_GOLDENS=1 in the environment has what is expected written anew, to be read.

#include <cstdlib>
#include <optional>
#include <regex>
#include <sstream>

#include "exchange/import_template.h"
#include "tests/exchange/exchange_fixture.h"
#include "tests/paths/source_folder.h"
#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/package.h"
#include "tests/platform/office/records.h"

namespace vicenter::exchange {
namespace {

const std::filesystem::path& Folder() {
    static const std::filesystem::path folder =
        testing_paths::SourceFolder() / "tests" / "exchange" / "foreign";
    return folder;
}

std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder()))
        names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

struct Description {
    std::string head;  // all lines up to the expectation
    std::string name;
    std::optional<std::size_t> cut;
    std::map<std::string, std::string> parts;
    std::string stream;
    Lines records;
    std::optional<std::string> text;
    Lines expected;
};

Description ReadDescription(const std::string& text) {
    Description found;
    std::istringstream stream(text);
    std::string* open = nullptr;
    bool expecting = false;
    for (std::string line; std::getline(stream, line);) {
        if (expecting) {
            found.expected.push_back(line);
            continue;
        }
        found.head += line + "\n";
        if (line == "----") {
            expecting = true;
        } else if (line.starts_with("part ")) {
            open = &found.parts[line.substr(5)];
        } else if (line.starts_with("stream ")) {
            found.stream = line.substr(7);
        } else if (line == "text") {
            open = &found.text.emplace();
        } else if (open != nullptr) {
            *open += line + "\n";
        } else if (!found.stream.empty()) {
            found.records.push_back(line);
        } else if (line.starts_with("name: ")) {
            found.name = line.substr(6);
        } else if (line.starts_with("cut: ")) {
            found.cut = std::stoul(line.substr(5));
        } else if (!line.empty() && line.front() != '#') {
            ADD_FAILURE() << "not understood: " << line;
        }
    }
    return found;
}

// --- packages

std::string InlineCell(char column, int row, const std::string& text) {
    return "<c r='" + std::string(1, column) + std::to_string(row) + "' t='inlineStr'><is><t>" + text +
           "</t></is></c>";
}

std::string CellsOf(int row, const Lines& texts) {
    std::string cells;
    for (std::size_t i = 0; i < texts.size(); ++i)
        cells += InlineCell(static_cast<char>('A' + i), row, texts[i]);
    return cells;
}

std::string WithShorthands(std::string xml) {
    static const Lines headers = {"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)",
                                  "科目名称(*)", "金额",    "结算号",   "备注"};
    static const std::regex shorthand(R"(@headers|@line\((\d+)\))");
    std::string done;
    std::smatch match;
    while (std::regex_search(xml, match, shorthand)) {
        done += match.prefix();
        done += match[1].matched ? CellsOf(std::stoi(match[1]), {"1", "提现", "借", "1001", "现金"})
                                 : CellsOf(1, headers);
        xml = match.suffix();
    }
    return done + xml;
}

void SavePackage(const Description& description, const std::string& file) {
    const office::Package plain;
    std::map<std::string, std::string> parts = {
        {"_rels/.rels", plain.rootRelations},
        {"xl/workbook.xml",
         "<workbook><sheets><sheet name='凭证模板' sheetId='1' r:id='r1'/></sheets></workbook>"},
        {"xl/_rels/workbook.xml.rels", plain.relations}};
    for (const auto& [path, xml] : description.parts)
        parts[path] = WithShorthands(xml);
    office::ZipWriter zip(file);
    for (const auto& [path, xml] : parts)
        zip.Add(path, xml);
    zip.Finish();
}

// --- containers

std::string Bytes(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

void AddRecord(office::XlsParts& parts, const std::string& line) {
    std::istringstream stream(line);
    std::string kind;
    std::uint16_t row = 0;
    std::uint16_t column = 0;
    stream >> kind;
    if (kind == "version") {  // as the file's first record says, in hexadecimal digits
        stream >> std::hex >> parts.version;
        return;
    }
    if (kind == "encrypted" || kind == "1904") {
        (kind == "1904" ? parts.dates1904 : parts.encrypted) = true;
        return;
    }
    stream >> row >> column >> std::ws;
    std::string rest;
    std::getline(stream, rest);
    if (kind == "label") {
        parts.Label(row, column, rest);
    } else if (kind == "number") {
        parts.Number(row, column, std::stod(rest));
    } else if (kind == "time") {
        parts.Time(row, column, std::stod(rest));
    } else if (kind == "error") {
        parts.Error(row, column, static_cast<std::uint8_t>(std::stoi(rest, nullptr, 16)));
    } else if (kind == "hidden") {  // the row, whatever column is named
        parts.HiddenRow(row);
    } else if (kind == "textless") {  // a formula with a text as its result, which does not follow
        parts.Formula(row, column, std::string(6, '\0') + "\xFF\xFF", 0, Bytes("1E0100"));
    } else if (kind == "formula") {  // flags and tokens; there is no result
        const std::size_t blank = rest.find(' ');
        parts.Formula(row, column, std::string(8, '\0'),
                      static_cast<std::uint16_t>(std::stoi(rest.substr(0, blank))),
                      Bytes(rest.substr(blank + 1)));
    } else {
        ADD_FAILURE() << "not understood: " << line;
    }
}

// --- the test

class ForeignWorkbooks : public ExchangeTest, public testing::WithParamInterface<std::string> {
  protected:
    void SetUp() override {
        ExchangeTest::SetUp();
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{8}}));
        set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
    }
    std::string Make(const Description& description) const {
        const std::string file = folder_.File(description.name);
        if (description.text) {
            office::WriteBytes(file, *description.text);
        } else if (!description.stream.empty()) {
            office::XlsParts parts;
            parts.stream = description.stream;
            parts.sheetName = kSheetName;
            for (const std::string& record : description.records)
                AddRecord(parts, record);
            parts.Save(file);
        } else {
            SavePackage(description, file);
        }
        if (description.cut) office::WriteBytes(file, office::FileBytes(file).substr(0, *description.cut));
        return file;
    }
    Lines Import(const std::string& file) {
        const ImportOutcome outcome = ImportTemplateWorkbook(window_, file, -1, "甲");
        Lines result;
        if (!outcome.written) {
            result.push_back("refused " + std::regex_replace(outcome.refusal, std::regex("\r\n"), "/"));
            EXPECT_EQ(Messages(), Lines{outcome.refusal});
        }
        for (const LineFault& fault : outcome.faults) {
            result.push_back(std::to_string(fault.row) + "," + std::to_string(fault.column) + " " +
                             fault.header + " [" + fault.value + "] " + fault.reason);
        }
        static const std::regex lineFeed("\n");
        static const std::regex insert(R"(values\(@MaxFID,(\d+),([^\r]*)\) \r\n)");
        for (const std::string& sql : set_.Statements()) {
            for (std::sregex_iterator at(sql.begin(), sql.end(), insert); at != std::sregex_iterator(); ++at)
                result.push_back((*at)[1].str() + ": " + std::regex_replace((*at)[2].str(), lineFeed, "\\n"));
        }
        return result;
    }
};

TEST_P(ForeignWorkbooks, GiveWhatTheyMean) {
    const std::string path = (Folder() / (GetParam() + ".workbook")).string();
    const Description description = ReadDescription(office::FileBytes(path));
    ASSERT_FALSE(description.name.empty());
    const Lines found = Import(Make(description));
    if (std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr) {
        std::string text = description.head;
        for (const std::string& line : found)
            text += line + "\n";
        office::WriteBytes(path, text);
        return;
    }
    EXPECT_FALSE(description.expected.empty());
    EXPECT_EQ(description.expected, found) << path;
}

INSTANTIATE_TEST_SUITE_P(Files, ForeignWorkbooks, testing::ValuesIn(Names()),
                         [](const auto& name) { return name.param; });

}  // namespace
}  // namespace vicenter::exchange
