// Offering what windows that are gone have left unsaved.

#include <algorithm>

#include "center/frame/window_parts.h"
#include "store/template_guard.h"

namespace vicenter::center {

using system::MessageButtons;
using system::MessageResult;

namespace {

// Where a draft's lines belong now.
struct DraftPlace {
    std::string key;       // of the node to restore into; empty: into a new template
    std::string question;  // behind what there is to restore
};

bool HoldsWhatWasLoaded(const Draft& draft) {
    // Any new template holds nothing.
    if (draft.loaded.lines == 0) return false;
    try {
        const std::optional<store::TemplateRow> row = store::AskTemplateWithLines(draft.templateId);
        return row && row->lines != nullptr && store::DigestOf(*row->lines) == draft.loaded;
    } catch (const automation::Error&) {
        return false;
    }
}

// Names change, and ids are given again: one of the user's with that id and the lines that were typed upon is
// the draft's template, whatever it is called now.
DraftPlace PlaceOf(const Draft& draft, const TemplateTree& tree) {
    const std::string key = tree.KeyOfTemplate(draft.templateId, draft.templateName);
    if (!key.empty()) return {key, "是否恢复？"};
    const std::string itsKey = std::string(kTemplateKeyHead) + draft.templateId;
    const auto node = std::find_if(tree.Nodes().begin(), tree.Nodes().end(),
                                   [&](const TreeNode& each) { return each.key == itsKey; });
    if (node == tree.Nodes().end()) return {{}, "但该模板已不存在，是否恢复为新模板？"};
    if (!HoldsWhatWasLoaded(draft)) return {{}, "但该模板已不存在，或已改名并修改，是否恢复为新模板？"};
    return {itsKey, "该模板已改名为 " + node->text + "，是否恢复到改名后的模板？"};
}

}  // namespace

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
    const DraftPlace place = PlaceOf(draft, tree);
    const std::string toTheSecond = draft.written.substr(0, draft.written.find('.'));
    const std::string what = "模板 " + draft.templateName + " 有上次未保存的修改（" + toTheSecond + "，" +
                             std::to_string(draft.lines.size()) + " 条分录），";
    if (Ask(what + place.question + "\r\n\r\n选择“否”将丢弃这些修改。", MessageButtons::YesNo) !=
        MessageResult::Yes) {
        drafts.Discard(found);
        return;
    }
    if (!OpenTemplateOf(draft, place.key)) return;
    kept.Take(draft.lines);
    kept.PutAsTyped();
    // What was typed was typed upon what the template held then: a save finds out whether it still does.
    if (!place.key.empty()) state.open.TypedUpon(draft.loaded);
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
        const std::string id = node->key.substr(kTemplateKeyHead.size());
        tree.ReadAgain(id);
        // What was typed belongs in no other template.
        if (state.open.Id() != id) return false;
        state.Enable({Tool::Del, Tool::Save, Tool::Exp}, true);
    } else if (state.open.Id() != draft.templateId) {
        tree.NodeClick(key);
        if (state.open.Id() != draft.templateId) return false;
    }
    return state.open.LinesKnown();
}

}  // namespace vicenter::center
