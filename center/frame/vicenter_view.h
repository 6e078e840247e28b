#pragma once

// What the main window shows, without a window system.
//
// The presenter frmVICenter calls these; the window implements them, and its views call the presenter's
// facets. State travels in structs. Grid contents do not go this way: the window observes the EntryGrid.
// User-interface thread.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "center/frame/layout.h"

namespace vicenter::dialogs {
class FrmSearch;
class frmSetColume;
}  // namespace vicenter::dialogs

namespace vicenter::center {

class CodeReplacement;
class GridReplace;
class OperationLog;
class TemplateHistory;
class VoucherPreview;
struct PrintSheet;

// The tools of the band "BandToolBar", in their order on the bar.
enum class Tool { New, Del, Save, ShowCol, DelRow, AddRow, PrcFind, Imp, Exp, AutoVch, CloudP, Share, Quit };
inline constexpr int kToolCount = 13;

struct ToolSpec {
    Tool tool;
    std::string_view key;  // "mnuNew" ...
    std::string_view caption;
    std::string_view tooltip;
};
const std::array<ToolSpec, kToolCount>& Tools();
inline constexpr std::string_view kBandName = "BandToolBar";

using ToolStates = std::array<bool, kToolCount>;  // enabled, by Tool

inline constexpr std::string_view kRootKey = "ROOT";
inline constexpr std::string_view kTemplateKeyHead = "detail-";

struct TreeNode {
    std::string key;
    std::string text;
    int icon = 2;  // index in the window's image list; 7 is the root's
};

struct ProgressState {
    bool visible = false;
    std::string label;
    std::int64_t done = 0;  // of all; nothing is counted while all is 0
    std::int64_t all = 0;
};

// The item editing panel of column 11.
struct ItemPanelState {
    struct Row {
        std::int32_t classId = 0;  // lblID1..4
        std::string className;     // lblItem1..4
        std::string number;
        bool faulty = false;  // the number does not resolve
    };
    bool visible = false;   // column 11 of a usable row is active
    bool expanded = false;  // picItem, opened by cmdItem
    std::string text;       // txtItem: the whole items text
    bool faulty = false;    // the cell is red
    std::vector<Row> rows;  // one per item class of the row's account; four fit, more scroll
};

struct StatusState {
    int lines = 0;       // rows in use
    int numbers = 0;     // different template numbers among them
    std::string number;  // template number of the active row; empty: no sums
    std::string debit;   // sums of that number as display texts
    std::string credit;
    std::string difference;               // empty when balanced
    bool amountHidden = false;            // the sums are of a column that is not shown
    std::vector<std::string> unbalanced;  // template numbers whose sums differ
    std::string selectionSum;             // empty without numbers in the selection
    std::string hint;                     // why the active cell is faulty and what is expected; else empty
    int hints = 0;                        // cells that should be looked at, and reported hints
    int faults = 0;                       // faulty cells of the whole grid, and reported faults
};

// A list of choices below the active cell while its text is typed; no dialog and never in the way of typing.
struct NameListState {
    struct Entry {
        std::string number;
        std::string name;
        bool selectable = true;  // group accounts are shown but cannot be taken
    };
    bool open = false;
    int row = 0;
    int column = 0;
    int selected = -1;
    std::vector<Entry> entries;
};

class VICenterView {
  public:
    virtual ~VICenterView() = default;

    virtual void ShowModeless() = 0;  // no owner
    virtual void CloseWindow() = 0;   // leads to frmVICenter::Unload()
    // What is being typed belongs to the cell, the items or the label before a command looks at them: open
    // editors hand it in.
    virtual void CommitTyping() = 0;

    // Replaces all nodes; the root comes first and is expanded.
    virtual void SetTree(const std::vector<TreeNode>& nodes) = 0;
    virtual void AddTreeNode(const TreeNode& node) = 0;
    virtual void RemoveTreeNode(const std::string& key) = 0;
    virtual void SetTreeNodeText(const std::string& key, const std::string& text) = 0;
    // Shows the selection without raising a node click.
    virtual void SelectTreeNode(const std::string& key) = 0;
    // Starts editing the selected node's label: asks TreeActions::BeforeLabelEdit() first, ends
    // in AfterLabelEdit().
    virtual void StartLabelEdit() = 0;

    // A sign of changes that are not saved, in the title and at the node of that key.
    virtual void SetModified(const std::string& /*key*/, bool /*modified*/) {}
    // Whose window it is, in the title: the account set and the user, either empty when nobody knows.
    virtual void SetAccount(const std::string& /*accountSet*/, const std::string& /*user*/) {}
    // Something is done: what, and the file that it made, to be opened from there; empty for none.
    virtual void TellDone(const std::string& /*text*/, const std::string& /*file*/) {}
    // The templates with numbers that cannot be used in this account set; all others have none.
    virtual void SetUnusableNodes(const std::vector<std::string>& /*keys*/) {}
    // What FaultActions answers may be something else now.
    virtual void FaultsChanged() {}
    // Something has been reported that is nowhere else to be seen.
    virtual void ShowFaults() {}
    // The keyboard goes to the grid: what the user has to mend is there.
    virtual void FocusGrid() {}

    virtual void SetToolStates(const ToolStates& states) = 0;   // and lays the bar out anew
    virtual void SetTemplateName(const std::string& name) = 0;  // itName
    virtual void SetGridInteractive(bool interactive) = 0;
    virtual void SetProgress(const ProgressState& state) = 0;  // progress, lblprogress
    // Takes clicks on the progress panel alone and tells whether Cancel was among them.
    virtual bool ProgressCancelled() { return false; }
    virtual void SetItemPanel(const ItemPanelState& state) = 0;
    virtual void SetStatus(const StatusState& state) = 0;
    virtual void SetNameList(const NameListState& state) = 0;

    // Sets the bill font on the measuring label, itName and the tree, and returns the label's height in
    // twips. The grid's own font comes through its observer.
    virtual int ApplyFont(const std::string& name, double size) = 0;
    // The window's size and place for the progress frame.
    virtual Size WindowSize() const = 0;
    virtual void PlaceProgressFrame(const Corner& corner) = 0;

    // Modal; return when the dialog is closed.
    virtual void ShowFindDialog(dialogs::FrmSearch& dialog) = 0;
    virtual void ShowColumnDialog(dialogs::frmSetColume& dialog) = 0;
    virtual void ShowHistory(TemplateHistory& /*history*/) {}          // modal
    virtual void ShowReplacement(CodeReplacement& /*replacement*/) {}  // modal
    virtual void ShowGridReplace(GridReplace& /*replace*/) {}          // modal
    virtual void ShowLog(OperationLog& /*log*/) {}                     // modal
    // The panel of the search over all templates, with the keyboard.
    virtual void ShowSearch() {}
    // A name for a template, asked for in a dialog; nothing when the user gives it up.
    virtual std::optional<std::string> AskName(const std::string& /*caption*/,
                                               const std::string& /*proposed*/) {
        return std::nullopt;
    }
    virtual void ShowVoucher(VoucherPreview& /*preview*/) {}  // modal

    // On paper, by the system's print dialog; false when the user cancelled it.
    virtual bool Print(const PrintSheet& /*sheet*/) { return false; }
    // Throws automation::Error with a text for users.
    virtual void WritePdf(const PrintSheet& /*sheet*/, const std::string& /*file*/) {}
};

}  // namespace vicenter::center
