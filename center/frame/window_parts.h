#pragma once

// The parts behind frmVICenter, and the facets that serve the window's views by them; included by their
// sources only.

#include <optional>
#include <string>

#include "center/editing/block_editing.h"
#include "center/editing/grid_editing.h"
#include "center/editing/grid_facet.h"
#include "center/editing/pattern_editing.h"
#include "center/editing/proposals.h"
#include "center/editing/row_taking.h"
#include "center/faults/fault_facet.h"
#include "center/faults/fault_list.h"
#include "center/faults/reported_faults.h"
#include "center/frame/edge.h"
#include "center/frame/own_settings.h"
#include "center/frame/status_line.h"
#include "center/frame/template_commands.h"
#include "center/frame/window_state.h"
#include "center/grid/column_profile.h"
#include "center/lookups/cell_look_ups.h"
#include "center/lookups/choice_facets.h"
#include "center/lookups/item_panel.h"
#include "center/lookups/name_list.h"
#include "center/print/voucher_preview.h"
#include "center/search/search_facet.h"
#include "center/template/draft/template_drafts.h"
#include "center/template/kept_lines.h"
#include "center/template/refused_line.h"
#include "center/template/template_save.h"
#include "center/tree/template_tree.h"
#include "center/tree/tree_facet.h"

namespace vicenter::center {

// Among the window's own settings: whether showsTotals is on.
inline constexpr std::string_view kTotalsSetting = "totals";

struct WindowParts : public GridObserver {
    // window: as the commands of other folders see it. Not owned, like the view and the commands.
    WindowParts(VICenterView& view, TemplateCommands* theCommands, CommandTarget& theWindow);
    ~WindowParts() override;

    // The open template read again, the cursor where it was; false when its lines could not be read.
    bool Reload();
    // What hangs on the active cell and the sums: item panel, name list, status line.
    void RefreshPanels();
    void RefreshStatus();
    const NumberSums& Sums();
    void ReportsChanged();
    // The reports of the template that has just been read make room for its cells, those of the one that was
    // there before come back. Before a draft of it is offered.
    void ReportsFollowTemplate();
    // Of what is printed of the open template.
    SheetHead Head() const;
    // What windows that are gone have left: of the open template, or the newest of any. Nothing before the
    // window is on the screen.
    void OfferDraftOfOpenTemplate();
    void OfferNewestDraft();
    // A tool of the bar, from the click to what is left of it.
    void ClickTool(Tool tool);
    // Shows in the tree which templates have numbers that cannot be used, once the window is on the screen.
    void MarkUnusable();
    // Nothing is left that a draft could bring back.
    void DropDraftIfUnmodified();
    // How the user likes to work, as it was left the last time.
    void ReadSettings();
    bool IsOn(EntryAid aid) const;
    void SetOn(EntryAid aid, bool on);
    void SetColumnOrder(const ColumnOrder& order);
    void SetFrozenPlaces(int places);
    // fileNames: workbooks chosen already; none: the command asks for them. tidily, of one alone: what lies
    // above its header and between its lines is passed over.
    void RunImport(const std::vector<std::string>& fileNames, bool tidily = false);
    // The user may not change templates, and has been told so.
    bool RefusedForRight();

    void ActiveCellChanged(const CellAddress& cell) override;
    void TextsChanged(const CellRange& range) override;
    void LooksChanged(const CellRange& range) override;
    void RowsInserted(int firstRow, int count) override;
    void RowsRemoved(int firstRow, int count) override;
    void WasReset() override;
    void ColumnsChanged(int firstColumn, int lastColumn) override;

    WindowState state;
    TemplateCommands* commands;
    CommandTarget& window;
    ColumnProfile profile;
    OwnSettings settings;
    GridEditing editing;
    Proposals proposals;
    RowTaking taking;
    KeptLines kept;
    TemplateDrafts drafts;
    TemplateTree tree;
    RefusedLine refused;
    FaultList faults;
    ReportedFaults reported;
    TemplateSave save;
    CellLookUps lookUps;
    ItemPanel items;
    NameList names;
    BlockEditing blocks;
    PatternEditing patterns;
    CellSelection selection;
    std::optional<NumberSums> sums;  // of the grid as it is
    bool showsTotals = false;        // the grid shows the sums of every number at its last row
    bool passesBy = true;            // cells that the account has no use for
    int frozenPlaces = 0;            // columns that stay in sight
    bool offersDrafts = false;       // the window is on the screen
    bool newAccounts = false;        // what the lines' accounts want may not be known yet

    Edge edge;
    GridFacet gridFacet{*this};
    TreeFacet treeFacet{*this};
    ItemFacet itemFacet{*this};
    NameListFacet nameListFacet{*this};
    FaultFacet faultFacet{*this};
    SearchFacet searchFacet{*this};

  private:
    TemplateSaveActions SaveActions();
    void RunTool(Tool tool);
    void OfferDraft(const FoundDraft& found);
    bool OpenTemplateOf(const Draft& draft, const std::string& key);
    void ContentChanged();
    void LookOverStored();
    void AskOfNewAccounts();
    void FaultsChanged();
    void ShowFind();
    void ShowColumns();
    void Switch(EntryAid aid, bool on);
};

}  // namespace vicenter::center
