#include "center/tree/tree_facet.h"

#include <algorithm>

#include "center/frame/account_set_care.h"
#include "center/frame/window_parts.h"
#include "center/health/template_check.h"
#include "center/history/template_history.h"
#include "center/print/voucher_preview.h"
#include "center/template/line_loader.h"
#include "center/template/new_name.h"
#include "center/template/save_as.h"
#include "center/tree/dropped_rows.h"
#include "center/tree/tree_filter.h"
#include "entry/host_services.h"

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

void TreeFacet::LabelEditGivenUp() {
    parts_.tree.LabelEditGivenUp();
}

bool TreeFacet::EditsLabels() {
    return parts_.tree.EditsLabels();
}

void TreeFacet::DeleteSelected() {
    if (parts_.state.IsEnabled(Tool::Del)) parts_.ClickTool(Tool::Del);
}

std::vector<TreeMenuItem> TreeFacet::MenuItems() {
    // A node that was refused is lit without being open; no menu hides what has to be mended first.
    const std::string& lit = parts_.tree.SelectedKey();
    const bool root = lit == kRootKey;
    if (!root && lit != std::string(kTemplateKeyHead) + parts_.state.open.Id()) return {};
    std::vector<TreeMenuItem> items;
    if (root) {
        items.push_back({"mnuCheckTemplates", "检查全部模板(&A)",
                         [this] { parts_.edge.Command([this] { CheckTemplates(); }); }});
        items.push_back(
            {"mnuSearch", "在全部模板中查找(&F)…\tCtrl+Shift+F", [this] { parts_.searchFacet.ShowPanel(); }});
        items.push_back({"mnuReplaceCodes", "在全部模板中替换代码(&L)…\tCtrl+Shift+H",
                         [this] { parts_.searchFacet.ReplaceCodes(); }});
        items.push_back({"mnuDeletedTemplates", "已删除的模板(&R)…",
                         [this] { parts_.edge.Command([this] { ShowDeletedTemplates(); }); }});
        items.push_back({"mnuLog", "操作日志(&G)…\tCtrl+Shift+L", [this] { parts_.searchFacet.ShowLog(); }});
    } else {
        items.push_back({"mnuDuplicate", "复制模板(&D)", [this] { Duplicate(); }});
        items.push_back(
            {"mnuReplaceInGrid", "替换文字(&T)…\tCtrl+H", [this] { parts_.searchFacet.ReplaceInGrid(); }});
        items.push_back({"mnuSaveAs", "另存为(&S)…\tCtrl+Shift+S", [this] { SaveAs(); }});
        items.push_back(
            {"mnuHistory", "历史版本(&H)…", [this] { parts_.edge.Command([this] { ShowHistory(); }); }});
        items.push_back({"mnuPrint", "打印模板(&P)…\tCtrl+P", [this] { PrintTemplate(); }});
        items.push_back(
            {"mnuPdf", "另存为 PDF(&F)…", [this] { parts_.edge.Command([this] { SaveTemplateAsPdf(); }); }});
    }
    if (root && parts_.commands != nullptr) {
        for (TreeMenuItem& item : parts_.commands->MenuItems()) {
            item.run = [this, run = std::move(item.run)] { parts_.edge.Command(run); };
            items.push_back(std::move(item));
        }
    }
    if (!AccountSetCare::IsOffered()) return items;
    items.push_back(
        {"mnuBackUpAccountSet", "备份账套(&B)…", [this] { parts_.edge.Command([this] { BackUp(); }); }});
    items.push_back(
        {"mnuVerifyAccountSet", "检查账套(&V)", [this] { parts_.edge.Look(AccountSetCare::Verify); }});
    return items;
}

// What is brought back takes the place of what is in the grid: what was typed there is saved first or given
// up.
void TreeFacet::ShowHistory() {
    if (!parts_.tree.PassGate()) return;
    Show(TemplateHistory(parts_.state.open.Id(), parts_.state.open.Name(), parts_.state.userId,
                         parts_.state.hasRight));
}

// --- the lines in the grid as a new template, and rows as another one's

void TreeFacet::SaveAs() {
    parts_.edge.Command([this] {
        const OpenTemplate& open = parts_.state.open;
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-另存模板");
        if (parts_.RefusedForRight() || !open.IsOpen() || !open.LinesKnown()) return;
        const std::string proposed =
            FreeName(open.Name(), "副本", parts_.state.userId, true).value_or(std::string());
        const auto name = parts_.state.view.AskName("另存为", proposed);
        if (!name) return;
        // After a save that was refused the window shows what is stored; what is saved is what was typed.
        if (parts_.kept.IsPending()) parts_.editing.Undo();
        SaveUnder(*name);
    });
}

void TreeFacet::Duplicate() {
    parts_.edge.Command([this] {
        const OpenTemplate& open = parts_.state.open;
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-另存模板");
        if (parts_.RefusedForRight() || !parts_.tree.PassGate()) return;
        // What is copied is what is stored.
        if (open.IsDirty()) parts_.Reload();
        if (!open.IsOpen() || !open.LinesKnown()) return;
        if (const auto name = FreeName(open.Name(), "副本", parts_.state.userId, true)) SaveUnder(*name);
    });
}

// What was typed goes into the new template, as in any other program; the one that was open stays as stored.
void TreeFacet::SaveUnder(const std::string& name) {
    OpenTemplate& open = parts_.state.open;
    if (open.RowCount() > 0 && !parts_.save.Validate()) return;
    const store::TemplateOutcome saved =
        SaveLinesAs(*parts_.state.grid, open.RowCount(), name, parts_.state.userId);
    if (!saved) return;
    open.Settle();
    parts_.drafts.Drop();
    if (!parts_.tree.ShowStored(saved.id)) {
        // The grid still shows the lines, and they are not those of the template whose name it bears.
        open.Touch();
        parts_.drafts.Changed();
    }
    parts_.MarkUnusable();
}

void TreeFacet::DropRows(const std::string& key, const CopiedBlock& rows) {
    parts_.edge.Command([&] {
        const std::string id = key.substr(std::min(key.size(), kTemplateKeyHead.size()));
        if (key == kRootKey || id == parts_.state.open.Id()) return;
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-保存模板 ");
        if (parts_.RefusedForRight()) return;
        for (const TreeNode& node : parts_.tree.Nodes()) {
            if (node.key != key) continue;
            AppendRows(rows, id, node.text, parts_.state);
            parts_.MarkUnusable();
            return;
        }
    });
}

// --- the filter

bool TreeFacet::OffersFilter() {
    return parts_.tree.Nodes().size() > kTemplatesWorthAFilter;  // the root is one of them
}

std::vector<std::string> TreeFacet::Fitting(const std::string& filter) {
    return parts_.edge.Look([&] {
        std::vector<std::string> keys;
        for (const TreeNode& node : parts_.tree.Nodes()) {
            if (node.key == kRootKey || node.key == parts_.tree.SelectedKey() ||
                FitsFilter(node.text, filter))
                keys.push_back(node.key);
        }
        return keys;
    });
}

void TreeFacet::BackUp() {
    const std::string file = AccountSetCare::BackUp(parts_.state.open.IsDirty());
    if (!file.empty()) parts_.state.view.TellDone("账套已备份", file);
}

// --- on paper, as it stands in the grid

std::optional<PrintSheet> TreeFacet::SheetOfOpenTemplate() {
    if (!parts_.state.open.IsOpen() || parts_.state.open.RowCount() == 0) {
        Tell("当前没有可打印的分录！");
        return std::nullopt;
    }
    return TemplateSheet(*parts_.state.grid, parts_.state.open.RowCount(), parts_.Head());
}

void TreeFacet::PrintTemplate() {
    parts_.edge.Command([this] {
        if (const auto sheet = SheetOfOpenTemplate()) PrintOut(parts_.state.view, *sheet);
    });
}

void TreeFacet::SaveTemplateAsPdf() {
    if (const auto sheet = SheetOfOpenTemplate()) SaveAsPdf(parts_.state.view, *sheet, sheet->title);
}

// Of the templates as they are stored.
void TreeFacet::CheckTemplates() {
    TemplateCheck check;
    int templates = 0;
    int faults = 0;
    int hints = 0;
    std::string unread;
    for (const TreeNode& node : parts_.tree.Nodes()) {
        if (node.key == kRootKey) continue;
        EntryGrid grid;
        const std::optional<int> lines = LoadLines(grid, node.key.substr(kTemplateKeyHead.size()));
        if (!lines) {
            unread += "\r\n模板 " + node.text + " 的分录未能读取。";
            continue;
        }
        ++templates;
        FaultReport report{FaultSource::Template, node.text, {}};
        for (const TemplateFinding& finding : check.Check(grid, *lines)) {
            const bool isFault = finding.kind == TemplateFinding::Kind::Fault;
            (isFault ? faults : hints) += 1;
            // As the cells of the template tell it once it is open: of a number as a whole, that of its name.
            const bool ofNumber = finding.column == 0;
            const int gridColumn = ofNumber ? column::kNo : finding.column;
            report.faults.push_back({finding.row, gridColumn, std::string(Column(gridColumn).header),
                                     ofNumber ? finding.number : finding.value,
                                     isFault ? finding.reason : "提示：" + finding.reason, !isFault});
        }
        parts_.reported.Take(report);
    }
    parts_.reported.Show(parts_.state.open.Id(), parts_.state.open.Name());
    parts_.ReportsChanged();
    if (faults + hints > 0) parts_.state.view.ShowFaults();
    Tell("检查了 " + std::to_string(templates) + " 个模板：异常 " + std::to_string(faults) + " 处，提示 " +
         std::to_string(hints) + " 处。" + (faults + hints > 0 ? "详见异常列表。" : "") + unread);
}

void TreeFacet::ShowDeletedTemplates() {
    Show(TemplateHistory(parts_.state.userId, parts_.state.hasRight));
}

void TreeFacet::Show(TemplateHistory history) {
    if (!history.Load()) return;
    parts_.state.view.ShowHistory(history);
    if (!history.Restored()) return;
    parts_.tree.ShowStored(*history.Restored());
    parts_.MarkUnusable();
}

}  // namespace vicenter::center
