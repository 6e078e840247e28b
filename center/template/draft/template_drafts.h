#pragma once

// The draft of the template that is open in a window: written while the user rests and when the window goes,
// gone once the template is saved or its edits are given up. Part of frmVICenter.

#include <optional>
#include <vector>

#include "center/frame/window_state.h"
#include "center/template/draft/draft_store.h"
#include "center/template/draft/typed_text.h"
#include "center/template/kept_lines.h"

namespace vicenter::center {

class TemplateDrafts {
  public:
    TemplateDrafts(WindowState& state, const KeptLines& kept) : state_(state), kept_(kept) {}

    void Open() { store_.Open(state_.userId); }
    // The window goes. What has not been saved stays on the disk, unless the user declined to save it.
    void Close();

    void Changed();
    // Writes what has been typed since the last time, with what stands in an editor still; true when all of
    // it is on the disk.
    bool Keep(const std::optional<TypedText>& typed = std::nullopt);
    // Saved, or given up.
    void Drop();
    // The user does not want the edits saved; the command that asked decides whether they go. With its end
    // the answer is forgotten (edge.h): edits that are still there may yet be wanted.
    void SetDeclined(bool declined) { declined_ = declined; }

    // Around what replaces the grid's content: lines that a refused save has kept stay on the disk, others
    // go.
    void Leaving();
    void Opened() {
        unwritten_ = false;
        typed_.reset();
    }
    // While one lives, the template is only read again, and its draft stays.
    class Hold {
      public:
        explicit Hold(TemplateDrafts& drafts) : drafts_(drafts) { drafts_.held_ = true; }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold() { drafts_.held_ = false; }

      private:
        TemplateDrafts& drafts_;
    };

    std::vector<FoundDraft> LeftBehind() const { return store_.LeftBehind(); }
    // The lines of a draft that was found are in the grid now: they are this window's to keep.
    void Adopt(const FoundDraft& found);
    void Discard(const FoundDraft& found) const { DraftStore::Discard(found.file); }

  private:
    WindowState& state_;
    const KeptLines& kept_;
    DraftStore store_;
    bool unwritten_ = false;
    std::optional<TypedText> typed_;  // that the draft on the disk holds
    bool declined_ = false;
    bool held_ = false;
};

}  // namespace vicenter::center
