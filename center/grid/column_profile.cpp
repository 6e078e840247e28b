#include "center/grid/column_profile.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "entry/host_context.h"
#include "store/cls_vi_data.h"
#include "store/template_rows.h"
#include "store/user_settings.h"

namespace vicenter::center {

using automation::Error;
using automation::Variant;

namespace {

constexpr double kSmallestFont = 9;
constexpr const char* kBillFont = "宋体";

// Cuts the head of the text up to the separator off and returns it.
std::string_view TakeHead(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view head = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return head;
}

std::optional<ColumnLayout> ParsePiece(std::string_view piece) {
    TakeHead(piece, '|');
    const std::string_view hidden = TakeHead(piece, '|');
    const std::string_view width = TakeHead(piece, '|');
    try {
        const ColumnLayout layout{static_cast<double>(Variant(width).ToInt32()), Variant(hidden).ToBoolean()};
        if (layout.width < 0) return std::nullopt;
        return layout;
    } catch (const Error&) {
        return std::nullopt;
    }
}

}  // namespace

void ApplyBuiltInLayout(EntryGrid& grid) {
    for (const ColumnSpec& spec : Columns()) {
        grid.SetColumnWidth(spec.column, spec.designedWidth);
        grid.SetColumnHidden(spec.column, spec.designedHidden);
    }
}

void ApplyProfile(EntryGrid& grid, const std::string& profile) {
    if (profile.empty()) {
        ApplyBuiltInLayout(grid);
        return;
    }
    std::string_view rest = profile;
    for (int c = 1; c <= kColumnCount && !rest.empty(); ++c) {
        const std::optional<ColumnLayout> layout = ParsePiece(TakeHead(rest, ','));
        if (!layout) continue;
        grid.SetColumnWidth(c, layout->width);
        grid.SetColumnHidden(c, layout->hidden);
    }
}

std::string ProfileOf(const EntryGrid& grid) {
    std::string profile;
    for (int c = 1; c <= kColumnCount; ++c) {
        const ColumnLayout layout = grid.Layout(c);
        if (c > 1) profile += ',';
        profile +=
            std::to_string(c) + (layout.hidden ? "|1|" : "|0|") + automation::DoubleToText(layout.width);
    }
    return profile;
}

std::string ColumnOrderText(const EntryGrid& grid) {
    if (grid.Order() == DesignedOrder()) return {};
    std::string text;
    for (const int c : grid.Order())
        text += (text.empty() ? "" : ",") + std::to_string(c);
    return text;
}

void ApplyColumnOrder(EntryGrid& grid, const std::string& order) {
    ColumnOrder wanted{};
    std::string_view rest = order;
    for (int& c : wanted) {
        const std::string_view piece = TakeHead(rest, ',');
        std::from_chars(piece.data(), piece.data() + piece.size(), c);
    }
    grid.SetOrder(rest.empty() ? wanted : ColumnOrder{});
}

void ColumnProfile::Apply() {
    std::string profile = store::clsVIData().GetVchTpProfileByUserID(state_.userId);
    unreadable_ = false;
    if (profile.empty()) {
        // What is stored may be empty, or the answer never came: what counts is what a second question says.
        const std::optional<std::string> stored = store::ReadColumnProfile(state_.userId);
        unreadable_ = !stored;
        profile = stored.value_or(std::string());
    }
    ApplyProfile(*state_.grid, profile);
}

bool ColumnProfile::Save() {
    if (unreadable_) return false;
    store::SaveColumnProfile(state_.userId, ProfileOf(*state_.grid));
    return true;
}

void ColumnProfile::ApplyBillFont() {
    double size = kSmallestFont;
    try {
        const std::string user = entry::GetKeyValue(entry::GetPropsString(), "UserID", ";");
        size = store::GetUserSettingNumber(Variant(user).ToInt32(), "BillFontSize", kSmallestFont);
    } catch (const Error&) {
        // A host without a user has no setting either: the default stands.
    }
    if (size < kSmallestFont) return;
    const int labelHeight = state_.view.ApplyFont(kBillFont, size);
    state_.grid->SetFont({kBillFont, size});
    const RowHeights heights = HeightsForFont(labelHeight);
    state_.grid->SetRowHeights(heights.header, heights.data);
}

}  // namespace vicenter::center
