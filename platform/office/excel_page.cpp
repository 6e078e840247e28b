#include "platform/office/excel_page.h"

namespace vicenter::office {

namespace {

constexpr std::int32_t kPortrait = 1;
constexpr std::int32_t kLandscape = 2;
constexpr std::int32_t kMostPages = 32767;
constexpr std::int32_t kMostPapers = 256;

// A count of pages; False stands for as many as it takes.
std::uint16_t PagesOf(const Variant& value) {
    if (value.Type() == automation::VariantType::Boolean && !value.ToBoolean()) return 0;
    const std::int32_t pages = value.ToInt32();
    if (pages < 1 || pages > kMostPages) FailExcel("页数无效！");
    return static_cast<std::uint16_t>(pages);
}

Variant PagesAsValue(std::uint16_t pages) {
    return pages == 0 ? Variant(false) : Variant(static_cast<std::int32_t>(pages));
}

std::uint32_t SplitOf(const Variant& value, std::uint32_t most) {
    const std::int32_t split = value.ToInt32();
    if (split < 0 || static_cast<std::uint32_t>(split) >= most) FailExcel("拆分位置无效！");
    return static_cast<std::uint32_t>(split);
}

}  // namespace

const MemberTable<ExcelPageSetup>& ExcelPageSetup::Members() {
    using automation::Property;
    using Self = ExcelPageSetup;
    static const MemberTable<Self> table{
        Property<Self>(
            "Orientation",
            [](Self& self, Arguments&) -> Variant { return self.Page().landscape ? kLandscape : kPortrait; },
            [](Self& self, Arguments& a) {
                const std::int32_t orientation = a[0].Value().ToInt32();
                if (orientation != kPortrait && orientation != kLandscape) FailExcel("页面方向无效！");
                self.Page().landscape = orientation == kLandscape;
            }),
        Property<Self>(
            "PaperSize",
            [](Self& self, Arguments&) -> Variant { return static_cast<std::int32_t>(self.Page().paper); },
            [](Self& self, Arguments& a) {
                const std::int32_t paper = a[0].Value().ToInt32();
                if (paper < 1 || paper > kMostPapers) FailExcel("纸张大小无效！");
                self.Page().paper = static_cast<std::uint16_t>(paper);
            }),
        // False: to so many pages, by the two members below. Scales are left to whoever prints.
        Property<Self>(
            "Zoom",
            [](Self& self, Arguments&) -> Variant {
                return self.Page().fits ? Variant(false) : Variant(100);
            },
            [](Self& self, Arguments& a) {
                const Variant& zoom = a[0].Value();
                self.Page().fits = zoom.Type() == automation::VariantType::Boolean && !zoom.ToBoolean();
            }),
        Property<Self>(
            "FitToPagesWide",
            [](Self& self, Arguments&) -> Variant { return PagesAsValue(self.Page().fitsWide); },
            [](Self& self, Arguments& a) { self.Page().fitsWide = PagesOf(a[0].Value()); }),
        Property<Self>(
            "FitToPagesTall",
            [](Self& self, Arguments&) -> Variant { return PagesAsValue(self.Page().fitsTall); },
            [](Self& self, Arguments& a) { self.Page().fitsTall = PagesOf(a[0].Value()); }),
        Property<Self>(
            "PrintTitleRows",
            [](Self& self, Arguments&) -> Variant {
                const SheetPage& page = self.Page();
                if (page.titleRows == 0) return "";
                return "$" + std::to_string(page.titleFirst + 1) + ":$" +
                       std::to_string(page.titleFirst + page.titleRows);
            },
            [](Self& self, Arguments& a) {
                SheetPage& page = self.Page();
                const std::string rows = a[0].Value().ToTextOrEmpty();
                page.titleRows = 0;
                if (rows.empty()) return;
                const CellArea area = self.sheet_->AreaOfText(rows);
                page.titleFirst = area.firstRow;
                page.titleRows = area.lastRow - area.firstRow + 1;
            }),
    };
    return table;
}

const MemberTable<ExcelWindow>& ExcelWindow::Members() {
    using automation::Property;
    using Self = ExcelWindow;
    static const MemberTable<Self> table{
        Property<Self>(
            "SplitRow",
            [](Self& self, Arguments&) -> Variant {
                return static_cast<std::int32_t>(self.Page().splitRows);
            },
            [](Self& self, Arguments& a) {
                self.Page().splitRows = SplitOf(a[0].Value(), self.sheet_->WholeArea().lastRow);
            }),
        Property<Self>(
            "SplitColumn",
            [](Self& self, Arguments&) -> Variant {
                return static_cast<std::int32_t>(self.Page().splitColumns);
            },
            [](Self& self, Arguments& a) {
                self.Page().splitColumns = SplitOf(a[0].Value(), self.sheet_->WholeArea().lastColumn);
            }),
        Property<Self>(
            "FreezePanes", [](Self& self, Arguments&) -> Variant { return self.Page().frozen; },
            [](Self& self, Arguments& a) { self.Page().frozen = a[0].Value().ToBoolean(); }),
        Property<Self>("ActiveSheet", [](Self& self, Arguments&) -> Variant { return self.sheet_; }),
    };
    return table;
}

}  // namespace vicenter::office
