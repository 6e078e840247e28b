#include "center/search/search_facet.h"

#include <algorithm>
#include <set>

#include "center/frame/window_parts.h"
#include "center/search/code_replacement.h"
#include "center/search/grid_replace.h"
#include "center/search/operation_log.h"
#include "entry/host_services.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"

namespace vicenter::center {

namespace {

// What the open template holds in the window, saved or not.
std::vector<store::LineTexts> LinesInGrid(const WindowState& state) {
    std::vector<store::LineTexts> lines(static_cast<std::size_t>(state.open.RowCount()));
    for (int row = 1; row <= state.open.RowCount(); ++row) {
        for (int c = 1; c <= kColumnCount; ++c)
            lines[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(c - 1)] =
                state.grid->Text(row, c);
    }
    return lines;
}

}  // namespace

void SearchFacet::ShowPanel() {
    parts_.edge.Look([this] { parts_.state.view.ShowSearch(); });
}

bool SearchFacet::Find(const SearchWish& wish) {
    hits_.clear();
    return parts_.edge.Command([&] {
        std::string why = WhyNotSearched(wish);
        std::optional<std::vector<store::StoredTemplate>> stored;
        if (why.empty()) {
            store::clsVIData::ForgetFailure();
            stored = store::ReadStoredTemplates(parts_.state.userId);
            if (!stored) why = store::WithReason("凭证模板无法读取，请检查账套连接！");
        }
        if (stored) {
            for (store::StoredTemplate& one : *stored) {
                if (one.id == parts_.state.open.Id() && parts_.state.open.LinesKnown())
                    one.lines = LinesInGrid(parts_.state);
            }
            hits_ = SearchTemplates(*stored, wish);
            if (hits_.empty()) why = "没有查找到对应的分录，请重新录入查找条件！";
        }
        if (!why.empty()) Tell(why);
        return why.empty();
    });
}

std::string SearchFacet::Note() {
    if (hits_.empty()) return {};
    std::set<std::string> templates;
    for (const SearchHit& hit : hits_)
        templates.insert(hit.templateId);
    return "共 " + std::to_string(templates.size()) + " 个模板中的 " + std::to_string(hits_.size()) + " 行";
}

void SearchFacet::Open(std::size_t hit) {
    if (hit >= hits_.size()) return;
    // A copy: whatever is asked on the way, the list may be another one by then.
    const SearchHit chosen = hits_[hit];
    parts_.edge.Command([&] { OpenHit(chosen); });
}

void SearchFacet::OpenHit(const SearchHit& hit) {
    const OpenTemplate& open = parts_.state.open;
    if (open.Id() != hit.templateId) {
        const std::string key = parts_.tree.KeyOfTemplate(hit.templateId, hit.templateName);
        if (key.empty()) {
            Tell("模板“" + hit.templateName + "”已不存在或已改名，请重新查找！");
            return;
        }
        parts_.tree.NodeClick(key);
        if (open.Id() != hit.templateId) return;  // the user keeps another one open
    }
    const std::optional<int> row = RowOfLine(LinesInGrid(parts_.state), hit.line, hit.row);
    if (!row) {
        Tell("该分录已被修改或删除，请重新查找！");
        return;
    }
    parts_.faultFacet.GoTo({*row, hit.column});
}

void SearchFacet::ReplaceInGrid() {
    parts_.edge.Command([this] {
        if (parts_.RefusedForRight()) return;
        GridReplace replace(parts_.state, [this](const CellAddress& cell) { parts_.faultFacet.GoTo(cell); });
        parts_.state.view.ShowGridReplace(replace);
        parts_.RefreshPanels();
    });
}

// What is replaced is what is stored: what was typed is saved first or given up.
void SearchFacet::ReplaceCodes() {
    parts_.edge.Command([this] {
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-替换代码");
        if (parts_.RefusedForRight() || !parts_.save.ConfirmUnsavedChanges()) return;
        CodeReplacement replacement(parts_.state.userId);
        parts_.state.view.ShowReplacement(replacement);
        if (!replacement.HasWritten()) return;
        parts_.tree.ReadAgain(parts_.state.open.Id());
        parts_.MarkUnusable();
    });
}

void SearchFacet::ShowLog() {
    parts_.edge.Look([this] {
        OperationLog log;
        if (log.Load()) parts_.state.view.ShowLog(log);
    });
}

}  // namespace vicenter::center
