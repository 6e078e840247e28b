#include "center/tree/tree_facet.h"

#include "center/frame/account_set_care.h"
#include "center/frame/window_parts.h"

namespace vicenter::center {

void TreeFacet::GotFocus() {
    parts_.tree.GotFocus();
}

void TreeFacet::LostFocus() {
    parts_.tree.LostFocus();
}

void TreeFacet::NodeClick(const std::string& key) {
    parts_.edge.Command([&] {
        parts_.tree.NodeClick(key);
        parts_.OfferDraftOfOpenTemplate();
    });
}

void TreeFacet::DoubleClick() {
    parts_.edge.Command([&] { parts_.tree.DoubleClick(); });
}

bool TreeFacet::BeforeLabelEdit() {
    return parts_.tree.BeforeLabelEdit();
}

bool TreeFacet::AfterLabelEdit(const std::string& newText) {
    return parts_.edge.Look([&] { return parts_.tree.AfterLabelEdit(newText); });
}

bool TreeFacet::EditsLabels() {
    return parts_.tree.EditsLabels();
}

void TreeFacet::DeleteSelected() {
    if (parts_.state.IsEnabled(Tool::Del)) parts_.ClickTool(Tool::Del);
}

std::vector<TreeMenuItem> TreeFacet::MenuItems() {
    if (!AccountSetCare::IsOffered()) return {};
    // A node that was refused is lit without being open; no menu hides what has to be mended first.
    const std::string& lit = parts_.tree.SelectedKey();
    if (lit != kRootKey && lit != std::string(kTemplateKeyHead) + parts_.state.open.Id()) return {};
    return {
        {"mnuBackUpAccountSet", "备份账套(&B)…",
         [this] { parts_.edge.Command([this] { AccountSetCare::BackUp(parts_.state.open.IsDirty()); }); }},
        {"mnuVerifyAccountSet", "检查账套(&V)", [this] { parts_.edge.Look(AccountSetCare::Verify); }}};
}

}  // namespace vicenter::center
