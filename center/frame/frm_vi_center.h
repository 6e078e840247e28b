#pragma once

// frmVICenter: the rules of the main window.
//
// One object per window. It owns the grid and the state that its parts share (WindowState); each part holds
// one concern: commands, tree, column profile, editing, look-ups, save. The window forwards its own events to
// the members below and hands each of its views the facet that serves it, shows what arrives through
// VICenterView, and outlives the presenter. Errors end at this edge (center/frame/edge.h). User-interface
// thread only.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "center/editing/grid_actions.h"
#include "center/faults/fault_actions.h"
#include "center/frame/template_commands.h"
#include "center/frame/vicenter_view.h"
#include "center/lookups/item_actions.h"
#include "center/lookups/name_list_actions.h"
#include "center/search/search_actions.h"
#include "center/template/draft/typed_text.h"
#include "center/tree/tree_actions.h"

namespace vicenter::center {

struct WindowParts;

class frmVICenter final : public CommandTarget {
  public:
    // commands may be none: the four commands then do nothing. Not owned, like the view.
    frmVICenter(VICenterView& view, TemplateCommands* commands);
    ~frmVICenter() override;

    // --- what each view may ask; valid as long as the presenter
    TreeActions& Tree();
    GridActions& Cells();
    ItemActions& Items();
    NameListActions& Names();
    FaultActions& Faults();
    SearchActions& Search();

    // --- window system
    void Load();
    // The window is on the screen: what the user has to be told of its opening.
    void Shown();
    // Nothing has been typed for a moment: what is not saved is kept in a draft, what an editor still holds
    // with it.
    void KeepDraft(const std::optional<TypedText>& typed = std::nullopt);
    void Activate();
    // The user closes the window's frame. True when it stays: what was typed is neither saved nor kept in a
    // draft, and the user does not want to lose it.
    bool StaysOpen();
    // The window is closed, and Unload() will come as soon as what is under way has ended.
    void Closing();
    void Unload();
    // The user does nothing for a while: what was saved is brought into the account set's own file.
    void BringHome();
    // Keys before the controls; true when the key is swallowed (F1).
    bool KeyPreview(int keyCode);
    // A tool of the bar by its key, compared without case.
    void ToolClick(std::string_view key);
    // What the host offers under that name; nothing where it does not.
    void RunHostCommand(std::string_view name);
    // What a command has made, opened by the desktop.
    void OpenDocument(const std::string& file);
    // A workbook file dropped on the window: the import command on it.
    void FilesDropped(const std::vector<std::string>& fileNames);

    // --- what other folders use
    const std::string& TemplateId() const override;
    const std::string& TemplateName() const override;
    int RowCount() const override;
    EntryGrid& Grid() override;
    void ShowProgress(const ProgressState& state) override;
    bool ProgressCancelled() override;
    void RebuildTreeAndSelect(std::int32_t id) override;
    void ShowStoredTemplate(std::int32_t id) override;
    void ReportFaults(const FaultReport& report) override;
    void TellDone(const std::string& text, const std::string& file) override;

    const std::shared_ptr<EntryGrid>& GridObject() const;  // vsEntrys
    const std::string& SelectedNode() const;               // key
    const std::vector<TreeNode>& Nodes() const;
    std::int32_t CurrentEntryCount() const;
    bool IsDirty() const;
    bool HasRight() const;
    // Why nobody could say whether the user has the right, for users; empty when that was said.
    const std::string& RightsFailure() const;
    bool Save();
    bool ConfirmUnsavedChanges();

  private:
    std::unique_ptr<WindowParts> parts_;
};

}  // namespace vicenter::center
