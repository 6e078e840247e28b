#include "center/template/draft/template_drafts.h"

namespace vicenter::center {

namespace {

void Put(const TypedText& typed, std::vector<KeptLine>& lines) {
    const auto row = static_cast<std::size_t>(typed.cell.row);
    const auto at = static_cast<std::size_t>(typed.cell.column - 1);
    if (lines.size() < row) lines.resize(row);
    lines[row - 1].texts[at] = typed.text;
    lines[row - 1].refusals[at] = TextVerdict::Taken;
}

}  // namespace

void TemplateDrafts::Changed() {
    unwritten_ = true;
    declined_ = false;
}

bool TemplateDrafts::Keep(const std::optional<TypedText>& typed) {
    // Lines that could not be read are not to be replaced by the few that were typed among them.
    if (!state_.open.IsOpen() || !state_.open.LinesKnown()) return true;
    if (!state_.open.IsDirty() && !typed) {
        // What stood in an editor alone has been given up there.
        if (typed_) store_.Remove();
        typed_.reset();
        return true;
    }
    if (!unwritten_ && typed == typed_ && !store_.IsLost()) return true;
    Draft draft;
    draft.userId = state_.userId;
    draft.templateId = state_.open.Id();
    draft.templateName = state_.open.Name();
    draft.loaded = state_.open.Loaded();
    draft.lines = kept_.IsPending() ? kept_.Lines() : LinesOfRows(*state_.grid, state_.open.RowCount());
    if (typed && !kept_.IsPending()) Put(*typed, draft.lines);
    unwritten_ = !store_.Write(std::move(draft));
    if (!unwritten_) typed_ = typed;
    return !unwritten_;
}

void TemplateDrafts::Drop() {
    store_.Remove();
    unwritten_ = false;
    typed_.reset();
}

void TemplateDrafts::Leaving() {
    if (held_) return;
    if (kept_.IsPending() && state_.open.IsDirty() && !declined_) {
        Keep();
        store_.Release();
    } else {
        Drop();
    }
}

void TemplateDrafts::Close() {
    if (declined_) {
        Drop();
    } else {
        Keep();
    }
    store_.Close();
}

void TemplateDrafts::Adopt(const FoundDraft& found) {
    Changed();
    if (Keep() && store_.File() != found.file) DraftStore::Discard(found.file);
}

}  // namespace vicenter::center
