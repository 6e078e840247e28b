// Offering what windows that are gone have left unsaved.

#include "center/frame/window_parts.h"

namespace vicenter::center {

using system::MessageButtons;
using system::MessageResult;

void WindowParts::OfferDraftOfOpenTemplate() {
    if (!offersDrafts || !editing.CanEdit() || !state.open.IsOpen() || state.open.IsDirty()) return;
    for (const FoundDraft& found : drafts.LeftBehind()) {
        if (found.draft.templateId != state.open.Id()) continue;
        OfferDraft(found);
        return;
    }
}

void WindowParts::OfferNewestDraft() {
    if (!offersDrafts || !editing.CanEdit() || state.open.IsDirty()) return;
    const std::vector<FoundDraft> left = drafts.LeftBehind();
    if (!left.empty()) OfferDraft(left.front());
}

void WindowParts::OfferDraft(const FoundDraft& found) {
    const Draft& draft = found.draft;
    const std::string key = tree.KeyOfTemplate(draft.templateId, draft.templateName);
    const std::string what = "模板 " + draft.templateName + " 有上次未保存的修改（" + draft.written + "，" +
                             std::to_string(draft.lines.size()) + " 条分录），";
    const std::string question =
        key.empty() ? what + "但该模板已不存在，是否恢复为新模板？" : what + "是否恢复？";
    if (Ask(question + "\r\n\r\n选择“否”将丢弃这些修改。", MessageButtons::YesNo) != MessageResult::Yes) {
        drafts.Discard(found);
        return;
    }
    if (!OpenTemplateOf(draft, key)) return;
    kept.Take(draft.lines);
    kept.PutAsTyped();
    // What was typed was typed upon what the template held then: a save finds out whether it still does.
    if (!key.empty()) state.open.TypedUpon(draft.loaded);
    drafts.Adopt(found);
    RefreshPanels();
}

void WindowParts::DropDraftIfUnmodified() {
    if (state.open.IsOpen() && !state.open.IsDirty()) drafts.Drop();
}

bool WindowParts::OpenTemplateOf(const Draft& draft, const std::string& key) {
    if (key.empty()) {
        const std::optional<TreeNode> node = tree.InsertTemplate();
        if (!node) return false;
        tree.ReadAgain(node->key.substr(kTemplateKeyHead.size()));
        state.Enable({Tool::Del, Tool::Save, Tool::Exp}, true);
    } else if (state.open.Id() != draft.templateId) {
        tree.NodeClick(key);
        if (state.open.Id() != draft.templateId) return false;
    }
    return state.open.LinesKnown();
}

}  // namespace vicenter::center
