#include "platform/office/xls_reader.h"

#include <algorithm>
#include <bit>
#include <map>
#include <set>
#include <vector>

#include "platform/office/foreign_file.h"
#include "platform/office/limits.h"
#include "platform/office/pending_formulas.h"
#include "platform/office/xls_formula.h"
#include "platform/office/xls_record_reader.h"

namespace vicenter::office {

namespace {

using xls::RecordReader;

struct SheetEntry {
    std::uint32_t place = 0;
    std::string name;
    bool hidden = false;
    bool worksheet = false;
};

double DecodeRk(std::uint32_t rk) {
    double value = 0;
    if (rk & 2) {
        value = static_cast<double>(static_cast<std::int32_t>(rk) >> 2);
    } else {
        value = std::bit_cast<double>(static_cast<std::uint64_t>(rk & ~3u) << 32);
    }
    return rk & 1 ? value / 100 : value;
}

class Reader {
  public:
    explicit Reader(const std::string& fileName)
        : source_(fileName), in_(source_), workbook_(std::make_unique<Workbook>()) {}

    std::unique_ptr<Workbook> Read() {
        ReadGlobals();
        ResolveFormats();
        std::set<std::uint32_t> places;
        for (const SheetEntry& entry : entries_) {
            if (!entry.worksheet) continue;
            if (!places.insert(entry.place).second) FailDamaged("工作表位置");
            Sheet& sheet = workbook_->AddSheet(entry.name);
            sheet.SetHidden(entry.hidden);
            pending_.push_back(std::make_unique<PendingFormulas>(*workbook_, sheet));
            in_.SeekTo(entry.place);
            ReadSheet(sheet);
        }
        if (workbook_->Sheets().empty()) FailDamaged("没有工作表");
        StoreEmptyResults();
        for (const auto& formulas : pending_)
            formulas->Calculate();
        if (workbook_->activeSheet >= workbook_->Sheets().size()) workbook_->activeSheet = 0;
        return std::move(workbook_);
    }

  private:
    void ExpectBof() {
        if (!in_.Next() || in_.Id() != xls::kBof) FailDamaged("缺少起始记录");
        if (in_.U16() != xls::kVersion8) FailOldVersion();
    }

    void ReadGlobals() {
        ExpectBof();
        while (in_.Next()) {
            switch (in_.Id()) {
                case xls::kEof:
                    return;
                case xls::kFilePass:
                    FailEncrypted();
                case xls::kDateMode:
                    workbook_->dates1904 = in_.U16() == 1;
                    break;
                case xls::kWindow1:
                    in_.Skip(10);
                    workbook_->activeSheet = in_.U16();
                    break;
                case xls::kFormat: {
                    const std::uint16_t number = in_.U16();
                    in_.ReadText(text_);
                    if (numberFormats_.size() < kMaxFormats) numberFormats_[number] = text_;
                    break;
                }
                case xls::kExtendedFormat:
                    in_.Skip(2);
                    if (formatNumbers_.size() >= kMaxFormats) FailTooLarge();
                    formatNumbers_.push_back(in_.U16());
                    break;
                case xls::kBoundSheet: {
                    SheetEntry entry;
                    entry.place = in_.U32();
                    entry.hidden = (in_.U8() & 3) != 0;
                    entry.worksheet = in_.U8() == 0;
                    in_.ReadText(entry.name, true);
                    entries_.push_back(std::move(entry));
                    if (entries_.size() > kMaxSheets) FailTooLarge();
                    break;
                }
                case xls::kSharedTexts:
                    ReadSharedTexts();
                    break;
                default:
                    break;
            }
        }
        FailDamaged("记录不完整");
    }

    void ReadSharedTexts() {
        in_.Skip(4);
        const std::uint32_t count = in_.U32();
        for (std::uint32_t i = 0; i < count; ++i) {
            in_.ReadText(text_);
            workbook_->ChargeEntry(texts_);
            texts_.push_back(workbook_->Texts().Intern(text_));
        }
    }

    void ResolveFormats() {
        std::map<std::uint16_t, std::uint16_t> known;
        for (const std::uint16_t number : formatNumbers_) {
            const auto [place, isNew] = known.try_emplace(number, std::uint16_t{0});
            if (isNew) {
                CellFormat format;
                const auto own = numberFormats_.find(number);
                format.numberFormat = own != numberFormats_.end() ? own->second : BuiltInNumberFormat(number);
                if (format.numberFormat == "General" || format.numberFormat == "GENERAL")
                    format.numberFormat.clear();
                place->second = workbook_->Formats().Intern(format);
            }
            formats_.push_back(place->second);
        }
    }

    struct Place {
        std::uint32_t row;
        std::uint32_t column;
        std::uint16_t format;
        bool styled;
    };

    std::uint16_t FormatOf(std::uint16_t number) const {
        return number < formats_.size() ? formats_[number] : 0;
    }

    Place ReadPlace() {
        Place place{};
        place.row = in_.U16();
        place.column = in_.U16();
        const std::uint16_t number = in_.U16();
        place.format = FormatOf(number);
        place.styled = number != xls::kStyleFormats;
        return place;
    }

    static void SetNumber(Sheet& sheet, const Place& place, double value) {
        Cell& cell = sheet.Append(place.row, place.column, place.format);
        cell.kind = CellKind::Number;
        cell.number = value;
    }

    void SetText(Sheet& sheet, const Place& place, std::uint32_t text) {
        Cell& cell = sheet.Append(place.row, place.column, place.format);
        cell.kind = CellKind::Text;
        cell.text = text;
    }

    static void SetBoolOrError(Sheet& sheet, const Place& place, std::uint8_t value, bool error) {
        Cell& cell = sheet.Append(place.row, place.column, place.format);
        if (error) {
            cell.kind = CellKind::Error;
            cell.error = CellErrorFromText(CellErrorText(static_cast<CellError>(value)));
        } else {
            cell.kind = CellKind::Boolean;
            cell.boolean = value != 0;
        }
    }

    void ReadSheet(Sheet& sheet) {
        ExpectBof();
        int nested = 0;
        std::uint32_t lastRow = 0;
        while (in_.Next()) {
            const std::uint16_t id = in_.Id();
            if (id == xls::kEof) {
                if (nested == 0) return;
                --nested;
                continue;
            }
            if (id == xls::kBof) ++nested;  // a chart inside of the sheet
            if (nested > 0) continue;
            const std::uint32_t row = ReadCellRecord(sheet, id, lastRow);
            if (row != lastRow) {
                sheet.FinishRow(lastRow);
                lastRow = row;
            }
        }
        FailDamaged("记录不完整");
    }

    std::uint32_t ReadCellRecord(Sheet& sheet, std::uint16_t id, std::uint32_t lastRow) {
        // The result of a formula that is a text follows in a record of its own.
        if (id == xls::kString && awaitsText_) {
            in_.ReadText(text_);
            SetText(sheet, formulaPlace_, workbook_->Texts().Intern(text_));
            awaitsText_ = false;
            return formulaPlace_.row;
        }
        switch (id) {
            case xls::kNumber: {
                const Place place = ReadPlace();
                SetNumber(sheet, place, in_.F64());
                return place.row;
            }
            case xls::kRk: {
                const Place place = ReadPlace();
                SetNumber(sheet, place, DecodeRk(in_.U32()));
                return place.row;
            }
            case xls::kMulRk:
                return ReadNumbers(sheet);
            case xls::kLabelShared: {
                const Place place = ReadPlace();
                const std::uint32_t index = in_.U32();
                if (index >= texts_.size()) FailDamaged("共享字符串");
                SetText(sheet, place, texts_[index]);
                return place.row;
            }
            case xls::kLabel:
            case xls::kRichString: {
                const Place place = ReadPlace();
                in_.ReadText(text_);
                SetText(sheet, place, workbook_->Texts().Intern(text_));
                return place.row;
            }
            case xls::kBoolError: {
                const Place place = ReadPlace();
                const std::uint8_t value = in_.U8();
                SetBoolOrError(sheet, place, value, in_.U8() == 1);
                return place.row;
            }
            case xls::kFormula:
                return ReadFormula(sheet);
            default:
                ReadOther(sheet, id);
                return lastRow;
        }
    }

    // What leaves no cell behind: columns, and formats around nothing.
    void ReadOther(Sheet& sheet, std::uint16_t id) {
        if (id == xls::kColumnInfo) return ReadColumns(sheet);
        if (id == xls::kBlank) {
            const Place place = ReadPlace();
            if (place.styled) sheet.ExtendUsedArea(place.row, place.column);
        } else if (id == xls::kMulBlank) {
            const std::uint32_t row = in_.U16();
            std::uint32_t column = in_.U16();
            // Behind the formats stands the last column once more.
            for (; in_.Left() >= 2 + 2; ++column) {
                if (in_.U16() != xls::kStyleFormats) sheet.ExtendUsedArea(row, column);
            }
        }
    }

    // One record for the numbers of a row that stand side by side; behind them stands the last column once
    // more.
    std::uint32_t ReadNumbers(Sheet& sheet) {
        Place place{};
        place.row = in_.U16();
        place.column = in_.U16();
        for (; in_.Left() >= 6 + 2; ++place.column) {
            place.format = FormatOf(in_.U16());
            SetNumber(sheet, place, DecodeRk(in_.U32()));
        }
        return place.row;
    }

    void ReadColumns(Sheet& sheet) {
        std::uint32_t column = in_.U16();
        const std::uint32_t last = std::min<std::uint32_t>(in_.U16(), kMaxXlsColumns - 1);
        constexpr double kPartsOfACharacter = 256;
        constexpr double kMaxWidth = 255;
        const double width = in_.U16() / kPartsOfACharacter;
        in_.Skip(2);
        const bool hidden = in_.U16() & 1;
        for (; column <= last; ++column) {
            ColumnSetting& setting = sheet.ColumnAt(column);
            if (width <= kMaxWidth) setting.width = width;
            if (hidden) setting.hidden = true;
        }
    }

    std::uint32_t ReadFormula(Sheet& sheet) {
        const Place place = ReadPlace();
        const double value = in_.F64();
        const std::uint16_t flags = in_.Left() >= 2 ? in_.U16() : std::uint16_t{0};
        const auto bits = std::bit_cast<std::uint64_t>(value);
        awaitsText_ = false;
        if (bits >> 48 != 0xFFFF) {
            // A 0 with the wish to be calculated is a writer's way to have no result.
            if (value == 0 && (flags & xls::kCalculatesOnLoad)) {
                sheet.Append(place.row, place.column, place.format);
                pending_.back()->Add(place.row, place.column, ReadFormulaText());
                return place.row;
            }
            writerCalculates_ = true;
            SetNumber(sheet, place, value);
            return place.row;
        }
        const auto kind = static_cast<std::uint8_t>(bits & 0xFF);
        const auto result = static_cast<std::uint8_t>(bits >> 16 & 0xFF);
        if (kind == xls::kEmptyResult) {
            sheet.Append(place.row, place.column, place.format);
            emptyResults_.push_back({pending_.size() - 1, place.row, place.column, ReadFormulaText()});
            workbook_->Charge(sizeof(EmptyResult) + emptyResults_.back().formula.capacity());
            return place.row;
        }
        writerCalculates_ = true;
        if (kind == 0) {
            // Until its text comes it has none.
            Cell& cell = sheet.Append(place.row, place.column, place.format);
            cell.kind = CellKind::Error;
            cell.error = CellError::Calc;
            awaitsText_ = true;
            formulaPlace_ = place;
        } else {
            SetBoolOrError(sheet, place, result, kind == 2);
        }
        return place.row;
    }

    // Behind the flags; empty for one that cannot be told.
    std::string ReadFormulaText() {
        constexpr std::size_t kUnused = 4;
        if (in_.Left() < kUnused + 2) return {};
        in_.Skip(kUnused);
        const std::size_t count = std::min<std::size_t>(in_.U16(), in_.Left());
        std::string tokens;
        for (std::size_t i = 0; i < count; ++i)
            tokens += static_cast<char>(in_.U8());
        return XlsFormulaText(tokens).value_or(std::string());
    }

    // An empty text is what a formula may well result in, and what a writer that calculates nothing says of
    // all of its formulas.
    void StoreEmptyResults() {
        for (EmptyResult& empty : emptyResults_) {
            if (!writerCalculates_) {
                pending_[empty.sheet]->Add(empty.row, empty.column, std::move(empty.formula));
                continue;
            }
            Cell& cell = workbook_->Sheets()[empty.sheet]->At(empty.row, empty.column);
            cell.kind = CellKind::Text;
            cell.text = workbook_->Texts().Intern({});
        }
    }

    struct EmptyResult {
        std::size_t sheet;
        std::uint32_t row;
        std::uint32_t column;
        std::string formula;
    };

    CompoundReader source_;
    RecordReader in_;
    std::unique_ptr<Workbook> workbook_;
    std::string text_;
    std::vector<SheetEntry> entries_;
    std::vector<std::uint32_t> texts_;
    std::map<std::uint16_t, std::string> numberFormats_;
    std::vector<std::uint16_t> formatNumbers_;
    std::vector<std::uint16_t> formats_;
    Place formulaPlace_{};
    bool awaitsText_ = false;
    std::vector<std::unique_ptr<PendingFormulas>> pending_;  // by the sheets
    std::vector<EmptyResult> emptyResults_;
    bool writerCalculates_ = false;  // some formula has a result that its writer must have calculated
};

}  // namespace

std::unique_ptr<Workbook> ReadXls(const std::string& fileName) {
    return Reader(fileName).Read();
}

}  // namespace vicenter::office
