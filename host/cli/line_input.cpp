#include "host/cli/line_input.h"

#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "center/editing/cell_rules.h"
#include "center/grid/columns.h"
#include "center/lookups/cell_resolution.h"
#include "entry/single_line.h"
#include "host/cli/templates.h"
#include "platform/system/utf8.h"
#include "store/column_room.h"
#include "store/item_names.h"

namespace vicenter::host {

using automation::Error;
using automation::VariantType;
using scripting::Dictionary;

namespace {

namespace column = center::column;
using Texts = std::array<std::string, center::kColumnCount>;

[[noreturn]] void Refuse(std::size_t line, std::string_view field, const std::string& reason) {
    throw Error(automation::error_number::kInvalidProcedureCall,
                "第 " + std::to_string(line) + " 行 " + std::string(field) + "：" + reason);
}

// A JSON value as the text of a cell.
std::string CellText(const Variant& value, std::size_t line, std::string_view field) {
    switch (value.Type()) {
        case VariantType::Null:
        case VariantType::Empty:
            return {};
        case VariantType::Text:
            return value.AsText();
        case VariantType::Double:
            // Never with an exponent: 1e3 is a JSON number, but no plain one.
            return automation::Decimal::FromDouble(value.ToDouble()).ToShortText();
        case VariantType::Int16:
        case VariantType::Int32:
        case VariantType::Int64:
        case VariantType::Decimal:
            return value.ToText();
        default:
            Refuse(line, field, "应为文本、数字或 null。");
    }
}

// Apostrophes and bars, which the keyboard is refused, are taken: they are stored as they stand.
void CheckText(const center::ColumnSpec& spec, const std::string& text, std::size_t line) {
    if (FitsColumn(spec, text)) return;
    if (entry::HasControlCharacter(text)) Refuse(line, spec.field, "不允许含有控制字符。");
    Refuse(line, spec.field, "超过 " + std::to_string(spec.maxCharacters) + " 个字符。");
}

// A number that stands in the account set as it is, outside of what a cell takes.
bool IsStoredNumber(const center::ColumnSpec& spec, std::string_view text) {
    if (spec.kind != center::CellKind::TemplateNumber) return center::IsPlainNumber(text);
    if (text.starts_with('-')) text.remove_prefix(1);
    constexpr std::size_t kMostDigits = 10;
    return !text.empty() && text.size() <= kMostDigits &&
           text.find_first_not_of("0123456789") == std::string_view::npos;
}

// What has been stored before has room; what a line merely says to have been may have none.
void CheckRoom(const center::ColumnSpec& spec, const std::string& text, std::size_t line) {
    if (const std::string why = store::WhyNoRoom(spec, text); !why.empty()) Refuse(line, spec.field, why);
}

// known: the line says itself that the field's value is at fault, as `show` prints it. Such a value has been
// stored before, by an import or from a voucher, and may be stored again.
std::string ReadCell(const center::ColumnSpec& spec, const Variant& value, std::size_t line, bool known) {
    std::string text = CellText(value, line, spec.field);
    if (!system::IsValidUtf8(text)) Refuse(line, spec.field, "不是有效的 UTF-8 文本。");
    switch (spec.kind) {
        case center::CellKind::Text:
            if (!known) CheckText(spec, text, line);
            CheckRoom(spec, text, line);
            break;
        case center::CellKind::Direction: {
            // The stored codes are taken, too, so that what `show` prints can be saved.
            if (text == "1") text = center::kDebit;
            if (text == "0") text = center::kCredit;
            if (known && text == "-1") break;
            const center::TextReading reading =
                center::ReadCellText(spec.column, text, center::TextOrigin::Given);
            if (reading.verdict != center::TextVerdict::Taken) Refuse(line, spec.field, "应为“借”或“贷”。");
            return reading.text;
        }
        case center::CellKind::Id:
            if (text == "0") text.clear();
            if (!center::AcceptsProgramText(spec.column, text)) Refuse(line, spec.field, "应为整数。");
            break;
        case center::CellKind::TemplateNumber:
        case center::CellKind::Whole:
        case center::CellKind::Decimal: {
            const center::TextReading reading =
                center::ReadCellText(spec.column, text, center::TextOrigin::Given);
            if (reading.verdict == center::TextVerdict::Taken) return reading.text;
            if (!known || !IsStoredNumber(spec, text))
                Refuse(line, spec.field, center::VerdictText(reading.verdict, spec.column));
            CheckRoom(spec, text, line);
            break;
        }
    }
    return text;
}

// Asks for each code once.
class IdResolver {
  public:
    // Asks what Resolve will ask about all of these, side by side where that pays.
    void AskAhead(const std::vector<Texts>& lines) {
        std::vector<center::TypedCode> codes;
        for (const Texts& texts : lines) {
            for (const int c :
                 {column::kAccountNumber, column::kSettleName, column::kCurrencyName, column::kUnitName}) {
                if (c != column::kAccountNumber && !TextAt(texts, center::Column(c).idColumn).empty())
                    continue;
                if (auto code = center::CodeIn(c, TextAt(texts, c))) codes.push_back(std::move(*code));
            }
        }
        records_.AskAhead(codes);
    }
    // As pasting would: the id, and the name where the code stands for it. A line of another account set
    // brings ids that mean others here: what the code or the name says counts, an id only where they say
    // nothing.
    void Resolve(Texts& texts) {
        ResolveAccount(texts);
        for (const int named : {column::kSettleName, column::kCurrencyName, column::kUnitName})
            ResolveNamed(texts, named);
    }

  private:
    static const std::string& TextAt(const Texts& texts, int gridColumn) {
        return texts[static_cast<std::size_t>(gridColumn - 1)];
    }
    static std::string& At(Texts& texts, int gridColumn) {
        return texts[static_cast<std::size_t>(gridColumn - 1)];
    }

    void ResolveAccount(Texts& texts) {
        const ado::RecordsetRef account = Find(column::kAccountNumber, At(texts, column::kAccountNumber));
        if (!account) return;
        At(texts, column::kAccountId) = IdIn(*account, column::kAccountNumber);
        if (At(texts, column::kAccountName).empty()) At(texts, column::kAccountName) = NameIn(*account);
    }

    void ResolveNamed(Texts& texts, int nameColumn) {
        std::string& id = At(texts, center::Column(nameColumn).idColumn);
        // Behind an id there is a name, whatever code it resembles.
        const bool isName = !id.empty();
        if (isName && nameColumn == column::kUnitName && HasOwnUnit(id, At(texts, nameColumn))) return;
        ado::RecordsetRef record = isName ? nullptr : Find(nameColumn, At(texts, nameColumn));
        if (!record) record = FindNamed(nameColumn, texts);
        if (!record) return;
        id = IdIn(*record, nameColumn);
        if (!isName) At(texts, nameColumn) = NameIn(*record);
    }

    // A unit's code finds the id of its group; a line from a voucher or a choice has the unit's own.
    static bool HasOwnUnit(const std::string& id, const std::string& name) {
        if (name.empty()) return false;
        const std::optional<bool> isUnit = store::IsUnit(id, name);
        if (!isUnit) throw Error(automation::error_number::kElementNotFound, center::UnreadableText(name));
        return *isUnit;
    }

    static std::string IdIn(const ado::Recordset& record, int gridColumn) {
        return record.Value(center::Column(gridColumn).idField).ToTextOrEmpty();
    }
    static std::string NameIn(const ado::Recordset& record) { return record.Value("FName").ToTextOrEmpty(); }

    // No record for a code that nobody knows.
    ado::RecordsetRef Find(int gridColumn, const std::string& text) {
        const std::optional<center::TypedCode> code = center::CodeIn(gridColumn, text);
        if (!code) return nullptr;
        return RecordIn(records_.Find(gridColumn, code->number), code->number);
    }
    // The same for a name.
    ado::RecordsetRef FindNamed(int gridColumn, Texts& texts) {
        const std::optional<center::TypedCode> name = center::CodeIn(gridColumn, At(texts, gridColumn));
        if (!name) return nullptr;
        const std::string account(system::TrimBlanks(At(texts, column::kAccountNumber)));
        return RecordIn(records_.FindNamed(gridColumn, name->number, account), name->number);
    }
    static ado::RecordsetRef RecordIn(const center::MasterAnswer& answer, const std::string& text) {
        // What cannot be read is not taken for a code that nobody knows: the line would be saved without it.
        if (!answer.wasRead) {
            throw Error(automation::error_number::kElementNotFound, center::UnreadableText(text));
        }
        return answer.record;
    }

    center::MasterRecords records_;
};

const Dictionary* AsObject(const Variant& value) {
    return value.IsObject() ? dynamic_cast<const Dictionary*>(value.AsObject().get()) : nullptr;
}

// Fields that `show` prints beside those of the grid's columns; they are the program's own.
bool IsOwnField(const std::string& name) {
    return name == "FID" || name == "FEntryID" || name == "faulty";
}

std::set<std::string> KnownFaults(const Dictionary& line) {
    std::set<std::string> fields;
    const Variant* faulty = line.Item("faulty");
    if (faulty == nullptr || !faulty->IsArray()) return fields;
    for (const Variant& field : faulty->AsArray())
        fields.insert(field.ToTextOrEmpty());
    return fields;
}

Texts ReadLine(const Variant& value, std::size_t line) {
    const Dictionary* object = AsObject(value);
    if (object == nullptr) Refuse(line, "lines", "应为对象。");
    const std::set<std::string> known = KnownFaults(*object);
    Texts texts;
    for (std::size_t i = 0; i < object->Count(); ++i) {
        const std::string name = object->KeyAt(i).ToText();
        if (IsOwnField(name)) continue;
        const center::ColumnSpec* found = nullptr;
        for (const center::ColumnSpec& spec : center::Columns()) {
            if (spec.field == name) found = &spec;
        }
        if (found == nullptr) Refuse(line, name, "没有这个字段。");
        texts[static_cast<std::size_t>(found->column - 1)] =
            ReadCell(*found, object->ItemAt(i), line, known.contains(name));
    }
    return texts;
}

}  // namespace

int ReadLines(const Variant& document, center::EntryGrid& grid) {
    const Dictionary* object = AsObject(document);
    const Variant* lines = object ? object->Item("lines") : nullptr;
    if (lines == nullptr || !lines->IsArray())
        throw Error(automation::error_number::kInvalidProcedureCall, "应为 {\"lines\":[…]}。");
    const VariantArray& list = lines->AsArray();
    grid.Clear(static_cast<int>(list.size()) + 2);
    std::vector<Texts> read;
    for (std::size_t i = 0; i < list.size(); ++i)
        read.push_back(ReadLine(list[i], i + 1));
    IdResolver resolver;
    resolver.AskAhead(read);
    int row = 0;
    for (Texts& texts : read) {
        resolver.Resolve(texts);
        grid.FillRow(++row, texts);
    }
    return static_cast<int>(list.size());
}

}  // namespace vicenter::host
