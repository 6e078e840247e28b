#pragma once

// The window of a template's versions, or of the templates that were deleted: the list, what differs between
// the chosen version and what is there now, and the ways back. One object per use; the view lives no longer.
// User-interface thread.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "store/line_changes.h"
#include "store/template_history.h"
#include "store/template_outcome.h"
#include "store/user_names.h"

namespace vicenter::center {

// Lists that are empty, for users.
inline constexpr const char* kNoDeletedTemplates = "没有可以恢复的已删除模板。";
inline constexpr const char* kSameAsNow = "与现在的分录相同。";
std::string NoVersionsText(const std::string& name);

class TemplateHistoryView {
  public:
    virtual ~TemplateHistoryView() = default;
    virtual void Unload() = 0;
};

// Before: in the version; after: now.
using HistoryChange = store::LineChange;

class TemplateHistory {
  public:
    // Of one template; mayRestore: the user has the right to change templates.
    TemplateHistory(std::string templateId, std::string name, std::string userId, bool mayRestore);
    // Of the templates of the user that were deleted.
    TemplateHistory(std::string userId, bool mayRestore);

    // Reads the list. False when there is none to show: the user has been told why.
    bool Load();
    void SetView(TemplateHistoryView* view) { view_ = view; }

    std::string Caption() const;
    bool OfDeleted() const { return templateId_.empty(); }
    bool MayRestore() const { return mayRestore_ && !versions_.empty(); }
    const std::vector<store::HistoryVersion>& Versions() const { return versions_; }
    // Who replaced it: number and name.
    std::string UserText(const store::HistoryVersion& version) const {
        return users_.WithNumber(version.keptBy);
    }

    // Compares that version with what is there now; an index behind the list chooses none.
    void Choose(std::size_t index);
    std::optional<std::size_t> Chosen() const { return chosen_; }
    const std::vector<HistoryChange>& Changes() const { return changes_; }
    // How many lines differ; why they cannot be compared.
    const std::string& Note() const { return note_; }
    // What a new template of the chosen version would be called.
    std::string ProposedName() const;

    // The chosen version; unloads the view when it has been brought back.
    void RestoreOver();
    void RestoreAsNew(const std::string& name);
    // The template that was written, once one was.
    std::optional<std::int32_t> Restored() const { return restored_; }

  private:
    void Take(const store::TemplateOutcome& outcome);

    std::string templateId_;  // empty: the deleted ones
    std::string name_;
    std::string userId_;
    bool mayRestore_;
    TemplateHistoryView* view_ = nullptr;
    std::vector<store::HistoryVersion> versions_;
    store::UserNames users_;
    std::vector<store::LineTexts> now_;
    std::optional<std::size_t> chosen_;
    std::vector<HistoryChange> changes_;
    std::string note_;
    std::optional<std::int32_t> restored_;
};

}  // namespace vicenter::center
