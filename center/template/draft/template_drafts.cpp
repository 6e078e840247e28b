#include "center/template/draft/template_drafts.h"

namespace vicenter::center {

void TemplateDrafts::Changed() {
    unwritten_ = true;
    declined_ = false;
}

bool TemplateDrafts::Keep() {
    // Lines that could not be read are not to be replaced by the few that were typed among them.
    if (!unwritten_ || !state_.open.IsOpen() || !state_.open.IsDirty() || !state_.open.LinesKnown())
        return true;
    Draft draft;
    draft.userId = state_.userId;
    draft.templateId = state_.open.Id();
    draft.templateName = state_.open.Name();
    draft.loaded = state_.open.Loaded();
    draft.lines = kept_.IsPending() ? kept_.Lines() : LinesOfRows(*state_.grid, state_.open.RowCount());
    unwritten_ = !store_.Write(std::move(draft));
    return !unwritten_;
}

void TemplateDrafts::Drop() {
    store_.Remove();
    unwritten_ = false;
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
