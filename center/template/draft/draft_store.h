#pragma once

// The drafts of one window on the disk.
//
// They lie beside the account set's file, or in the user's data folder when the account set is a server's or
// its folder takes no files. Each window has files of its own, named by user and template, and each is
// written beside itself and moved into place. A draft is left behind when its window is gone: closed by its
// frame, or with its process. Only drafts of the same user are ever read. User-interface thread.

#include <string>
#include <vector>

#include "center/template/draft/draft.h"

namespace vicenter::center {

struct FoundDraft {
    std::string file;
    Draft draft;
};

class DraftStore {
  public:
    DraftStore() = default;
    DraftStore(const DraftStore&) = delete;
    DraftStore& operator=(const DraftStore&) = delete;
    ~DraftStore();

    // The window has a user now; before that nothing is written or found. Without a user nothing ever is.
    void Open(const std::string& userId);
    // The window is gone: what it leaves may be offered by others.
    void Close();

    // Fills in who writes it and when. False when it could not be written.
    bool Write(Draft draft);
    // The draft that was written last goes.
    void Remove();
    // It stays, and is no longer this window's to remove.
    void Release();
    // The draft that was written last; empty when there is none.
    const std::string& File() const { return file_; }
    // It was written and lies there no more: deleted beside the account set, or its folder is gone.
    bool IsLost() const;

    // What windows that are gone have left of this user's, the newest first.
    std::vector<FoundDraft> LeftBehind() const;
    static void Discard(const std::string& file);

  private:
    std::string userId_;
    std::string window_;
    std::string file_;  // of the draft that was written last
};

}  // namespace vicenter::center
