#pragma once

// The commands of the main window that live in other folders, and what they may do with the window.
//
// They work on a CommandTarget and never see the presenter; whoever puts the program together hands a
// TemplateCommands to the window. User-interface thread.

#include <cstdint>
#include <string>
#include <vector>

#include "center/faults/reported_faults.h"
#include "center/frame/vicenter_view.h"
#include "center/grid/entry_grid.h"
#include "center/tree/tree_actions.h"

namespace vicenter::center {

class CommandTarget {
  public:
    virtual ~CommandTarget() = default;

    virtual const std::string& TemplateId() const = 0;    // FID of the open template, empty when none
    virtual const std::string& TemplateName() const = 0;  // the text of itName
    virtual int RowCount() const = 0;                     // rows of the grid in use
    virtual EntryGrid& Grid() = 0;                        // vsEntrys
    virtual void ShowProgress(const ProgressState& state) = 0;
    // The user has asked to cancel what the progress panel shows.
    virtual bool ProgressCancelled() = 0;
    // Builds the tree anew, selects the node of that id, or of the last row when the id is below 1, and opens
    // it.
    virtual void RebuildTreeAndSelect(std::int32_t id) = 0;
    // The same for a template that has just been written: 0 is the standard template.
    virtual void ShowStoredTemplate(std::int32_t id) = 0;
    // Something is done, told beside the messages: what, and the file that it made; empty for none.
    virtual void TellDone(const std::string& /*text*/, const std::string& /*file*/) {}
    // What is wrong with lines that did not become a template's, or that nothing is any more.
    virtual void ReportFaults(const FaultReport& report) = 0;
};

class TemplateCommands {
  public:
    virtual ~TemplateCommands() = default;
    virtual void Import(CommandTarget& window) = 0;
    // The import of files that are chosen already.
    virtual void ImportFiles(CommandTarget& window, const std::vector<std::string>& fileNames) = 0;
    // The same, without the rows above the workbook's header and blank rows between its lines.
    virtual void ImportTidily(CommandTarget& window, const std::string& fileName) = 0;
    // A copy of a workbook that was refused, its faulty cells marked.
    virtual void SaveMarkedCopy(CommandTarget& window, const std::string& fileName) = 0;
    virtual void Export(CommandTarget& window) = 0;
    virtual void UploadToCloud(CommandTarget& window) = 0;
    // Shows the generation dialog modally; it rebuilds the tree itself when it generated a template.
    virtual void GenerateFromVouchers(CommandTarget& window) = 0;
    // What the host itself offers at the root of the tree.
    virtual std::vector<TreeMenuItem> MenuItems() { return {}; }
};

}  // namespace vicenter::center
