#pragma once

// The parts behind frmVICenter; included by its sources only.

#include <optional>
#include <string>

#include "center/editing/block_editing.h"
#include "center/editing/grid_editing.h"
#include "center/frame/frm_vi_center.h"
#include "center/frame/status_line.h"
#include "center/frame/window_state.h"
#include "center/grid/column_profile.h"
#include "center/lookups/cell_look_ups.h"
#include "center/lookups/item_panel.h"
#include "center/lookups/name_list.h"
#include "center/template/draft/template_drafts.h"
#include "center/template/kept_lines.h"
#include "center/template/template_save.h"
#include "center/tree/template_tree.h"

namespace vicenter::center {

struct frmVICenter::Parts : public GridObserver {
    Parts(VICenterView& view, TemplateCommands* theCommands);
    ~Parts() override;

    // The open template read again, the cursor where it was; false when its lines could not be read.
    bool Reload();
    // What hangs on the active cell and the sums: item panel, name list, status line.
    void RefreshSurroundings();
    void RefreshStatus();
    // What windows that are gone have left: of the open template, or the newest of any. Nothing before the
    // window is on the screen.
    void OfferDraftOfOpenTemplate();
    void OfferNewestDraft();
    void RunCommand(Tool tool, TemplateWindow& window);
    // fileName: a workbook chosen already; empty: the command asks for one.
    void RunImport(TemplateWindow& window, const std::string& fileName);

    void ActiveCellChanged(const CellAddress& cell) override;
    void TextsChanged(const CellRange& range) override;
    void RowsInserted(int firstRow, int count) override;
    void RowsRemoved(int firstRow, int count) override;
    void WasReset() override;

    WindowState state;
    TemplateCommands* commands;
    ColumnProfile profile;
    GridEditing editing;
    KeptLines kept;
    TemplateDrafts drafts;
    TemplateTree tree;
    TemplateSave save;
    CellLookUps lookUps;
    ItemPanel items;
    NameList names;
    BlockEditing blocks;
    CellSelection selection;
    std::optional<NumberSums> sums;  // of the grid as it is
    bool offersDrafts = false;       // the window is on the screen

  private:
    TemplateSaveActions SaveActions();
    void OfferDraft(const FoundDraft& found);
    bool OpenTemplateOf(const Draft& draft, const std::string& key);
    void ContentChanged();
    bool RefusedForRight();
    void ShowFind();
    void ShowColumns();
};

// Runs an event's work; an error ends it and is told to the user.
template <class Work>
void AtEdge(Work work) {
    try {
        work();
    } catch (const automation::Error& error) {
        Tell(error.Text());
    }
}

}  // namespace vicenter::center
