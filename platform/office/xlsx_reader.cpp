#include "platform/office/xlsx_reader.h"

#include <algorithm>
#include <charconv>
#include <map>

#include "platform/office/foreign_file.h"
#include "platform/office/limits.h"
#include "platform/office/xlsx_package.h"

namespace vicenter::office {

namespace {

using Token = XmlScanner::Token;

struct Relationship {
    std::string type;
    std::string target;
    bool external = false;
};

using Relationships = std::map<std::string, Relationship>;

Relationships ReadRelationships(const XlsxPackage& package, const std::string& name) {
    Relationships result;
    const auto part = package.Open(name);
    if (!part) return result;
    XmlScanner scanner(*part);
    for (Token token = scanner.Next(); token != Token::Finished; token = scanner.Next()) {
        if (token != Token::Start || scanner.Name() != "Relationship") continue;
        // A relationship to another file is kept as well: what it stands for is then told as missing, not
        // looked for under its name in the package.
        result[scanner.Attribute("Id")] = {scanner.Attribute("Type"), scanner.Attribute("Target"),
                                           scanner.RawAttribute("TargetMode") == "External"};
        // Room for the styles, the shared texts and their like beside each sheet; more is made to use memory
        // up.
        if (result.size() > 4 * kMaxSheets) FailTooLarge();
    }
    return result;
}

std::string RelationshipsName(const std::string& part) {
    const std::size_t slash = part.rfind('/');
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    return part.substr(0, start) + "_rels/" + part.substr(start) + ".rels";
}

// Target of the first relationship whose type ends so: the two editions of the format differ in what stands
// before.
std::string TargetOfType(const Relationships& relationships, std::string_view base,
                         std::string_view typeEnd) {
    for (const auto& [id, relationship] : relationships) {
        if (!relationship.external && relationship.type.ends_with(typeEnd)) {
            return ResolvePartName(base, relationship.target);
        }
    }
    return {};
}

// What cannot be read is what the format says when nothing is written there: an attribute that spreadsheets
// ignore is no reason to refuse a file.
std::uint32_t ReadNumber(std::string_view text, std::uint32_t otherwise) {
    std::uint32_t value = otherwise;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && rest == text.data() + text.size() ? value : otherwise;
}

bool ReadFlag(std::string_view text) {
    return text == "1" || text == "true" || text == "on";
}

struct SheetEntry {
    std::string name;
    std::string relationship;
    bool hidden = false;
};

std::vector<SheetEntry> ReadWorkbookPart(ByteSource& part, Workbook& workbook) {
    std::vector<SheetEntry> result;
    XmlScanner scanner(part);
    bool rootChecked = false;
    for (Token token = scanner.Next(); token != Token::Finished; token = scanner.Next()) {
        if (token != Token::Start) continue;
        const std::string_view name = scanner.Name();
        if (!rootChecked && (name == "document" || name == "presentation")) {
            FailOtherDocument(name == "document" ? " Word 文档" : "演示文稿");
        }
        if (!rootChecked && name != "workbook") FailDamaged("不是工作簿");
        rootChecked = true;
        if (name == "workbookPr") {
            workbook.dates1904 = ReadFlag(scanner.RawAttribute("date1904"));
        } else if (name == "calcPr") {
            workbook.calculatesOnLoad = ReadFlag(scanner.RawAttribute("fullCalcOnLoad"));
        } else if (name == "workbookView") {
            workbook.activeSheet = ReadNumber(scanner.RawAttribute("activeTab"), 0);
        } else if (name == "sheet") {
            const std::string_view state = scanner.RawAttribute("state");
            // The relationship's id stands in a namespace of its own, under whatever prefix the writer took.
            result.push_back({scanner.Attribute("name"), scanner.ForeignAttribute("id"),
                              !state.empty() && state != "visible"});
            if (result.size() > kMaxSheets) FailTooLarge();
        }
    }
    return result;
}

// A package of another kind, or a damaged one.
[[noreturn]] void FailWithoutWorkbook(const XlsxPackage& package) {
    if (const auto part = package.Open("mimetype")) {
        std::string kind(64, '\0');
        kind.resize(part->Read(kind.data(), kind.size()));
        if (kind.starts_with("application/vnd.oasis.opendocument")) {
            FailForeignKind(" OpenDocument 文件（.ods），不是 Excel 工作簿");
        }
    }
    FailDamaged("缺少工作簿");
}

}  // namespace

void ReadStringItem(XmlScanner& scanner, std::string& text) {
    const std::size_t depth = scanner.Depth();
    bool inText = false;
    while (true) {
        switch (scanner.Next()) {
            case Token::Start:
                if (scanner.Name() == "t") {
                    inText = true;
                } else if (scanner.Name() == "rPh") {
                    // How the text is spoken, which is no part of it.
                    scanner.SkipElement();
                }
                break;
            case Token::Text:
                if (inText) scanner.AppendText(text);
                break;
            case Token::End:
                if (scanner.Depth() < depth) {
                    ResolvePackageEscapes(text);
                    return;
                }
                inText = false;
                break;
            case Token::Finished:
                FailDamaged("XML 不完整");
        }
    }
}

void ReadXlsxSharedTexts(ByteSource& part, Workbook& workbook, XlsxTables& tables) {
    XmlScanner scanner(part);
    std::string text;
    for (Token token = scanner.Next(); token != Token::Finished; token = scanner.Next()) {
        if (token != Token::Start || scanner.Name() != "si") continue;
        text.clear();
        ReadStringItem(scanner, text);
        // A million empty items are a few megabytes in the file: each is paid for out of the workbook's
        // limit.
        workbook.ChargeEntry(tables.sharedTexts);
        tables.sharedTexts.push_back(workbook.Texts().Intern(text));
    }
}

// Of a cell's style only the number format counts. Cells name a style by its place in the list of cellXfs,
// and most styles of a list share a few formats: each format is interned once.
void ReadXlsxStyles(ByteSource& part, Workbook& workbook, XlsxTables& tables) {
    std::map<std::uint32_t, std::string> numberFormats;
    std::map<std::uint32_t, std::uint16_t> indexes;
    bool inCellFormats = false;
    XmlScanner scanner(part);
    for (Token token = scanner.Next(); token != Token::Finished; token = scanner.Next()) {
        if (token == Token::Text) continue;
        const std::string_view name = scanner.Name();
        if (name == "cellXfs") {
            inCellFormats = token == Token::Start;
        } else if (token == Token::Start && name == "numFmt" && scanner.Depth() == 3) {
            // Depth 3: those of conditional formats lie deeper and have ids of their own.
            std::string format = scanner.Attribute("formatCode");
            if (format.size() <= 1024 && numberFormats.size() < kMaxFormats) {
                numberFormats[ReadNumber(scanner.RawAttribute("numFmtId"), 0)] = std::move(format);
            }
        } else if (token == Token::Start && name == "xf" && inCellFormats) {
            if (tables.formats.size() >= kMaxFormats) FailTooLarge();
            const std::uint32_t number = ReadNumber(scanner.RawAttribute("numFmtId"), 0);
            const auto known = indexes.find(number);
            if (known != indexes.end()) {
                tables.formats.push_back(known->second);
                continue;
            }
            CellFormat format;
            const auto own = numberFormats.find(number);
            format.numberFormat = own != numberFormats.end() ? own->second : BuiltInNumberFormat(number);
            if (format.numberFormat == "General") format.numberFormat.clear();
            const std::uint16_t index = workbook.Formats().Intern(format);
            indexes[number] = index;
            tables.formats.push_back(index);
        }
    }
}

std::unique_ptr<Workbook> ReadXlsx(const std::string& fileName) {
    const XlsxPackage package(fileName);
    auto workbook = std::make_unique<Workbook>();

    std::string main = TargetOfType(ReadRelationships(package, "_rels/.rels"), "", "/officeDocument");
    // A package whose own relationships do not tell is asked for the usual name.
    if (main.empty()) main = "xl/workbook.xml";
    if (main.ends_with(".bin")) FailForeignKind("二进制工作簿（.xlsb）");
    const auto mainPart = package.Open(main);
    if (!mainPart) FailWithoutWorkbook(package);
    const std::vector<SheetEntry> entries = ReadWorkbookPart(*mainPart, *workbook);
    const Relationships relationships = ReadRelationships(package, RelationshipsName(main));

    XlsxTables tables;
    if (const auto part = package.Open(TargetOfType(relationships, main, "/styles"))) {
        ReadXlsxStyles(*part, *workbook, tables);
    }
    if (const auto part = package.Open(TargetOfType(relationships, main, "/sharedStrings"))) {
        ReadXlsxSharedTexts(*part, *workbook, tables);
    }
    // For cells that are dates by their type and have no format that shows one.
    CellFormat date;
    date.numberFormat = "yyyy/m/d";
    tables.dateFormat = workbook->Formats().Intern(date);

    for (const SheetEntry& entry : entries) {
        const auto relationship = relationships.find(entry.relationship);
        if (relationship == relationships.end() || relationship->second.external) FailDamaged("缺少工作表");
        // Chart and dialog sheets hold no cells.
        if (!relationship->second.type.ends_with("/worksheet")) continue;
        const auto part = package.Open(ResolvePartName(main, relationship->second.target));
        if (!part) FailDamaged("缺少工作表");
        Sheet& sheet = workbook->AddSheet(entry.name);
        sheet.SetHidden(entry.hidden);
        ReadXlsxSheet(*part, tables, *workbook, sheet);
    }
    if (workbook->Sheets().empty()) FailDamaged("没有工作表");
    // Counted among all sheets, of which those without cells are gone.
    workbook->activeSheet = std::min(workbook->activeSheet, workbook->Sheets().size() - 1);
    return workbook;
}

}  // namespace vicenter::office
