#pragma once

// The main window `frmVICenter` on Qt.
//
// A window owns its presenter and its widgets and, once opened, itself: closing deletes it, while something
// of it is under way behind that (ui/run/window_call.h). Grid, tree, panel and list ask the presenter's
// facets themselves; the window forwards its own events, shows what arrives through VICenterView and lays
// out. The grid's contents it observes. Several windows live side by side. No exception leaves it towards Qt.
// User-interface thread only.

#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QProgressBar>
#include <memory>
#include <optional>
#include <string>

#include "center/frame/frm_vi_center.h"
#include "platform/system/collation.h"
#include "ui/grid/grid_model.h"
#include "ui/grid/grid_view.h"
#include "ui/panels/fault_panel.h"
#include "ui/panels/item_panel.h"
#include "ui/panels/name_list_popup.h"
#include "ui/panels/progress_frame.h"
#include "ui/panels/search_panel.h"
#include "ui/panels/template_tree.h"
#include "ui/panels/tree_filter.h"
#include "ui/window/status_line.h"
#include "ui/window/tool_band.h"

namespace vicenter::ui {

class VICenterWindow : public QMainWindow, public center::VICenterView {
    Q_OBJECT

  public:
    explicit VICenterWindow(std::shared_ptr<center::TemplateCommands> commands = nullptr);
    ~VICenterWindow() override;

    // Loads and shows the window. Throws what the presenter throws; the window is then to be deleted.
    void Open();
    // It goes, and what is under way in it ends by itself.
    bool IsClosed() const { return unloaded_; }

    center::frmVICenter& Presenter() { return *presenter_; }
    GridView& Grid() { return *grid_; }
    TemplateTree& Tree() { return *tree_; }
    ItemPanel& Items() { return *items_; }

  protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class Zone { Elsewhere, Tree, Grid };

    void BuildWidgets();
    void BuildGrid();
    void ConnectItemPanel();
    void KeepCellsInSight();
    void DragRows();
    void LayOutFrame();
    void LayOutPanel();
    void PlaceOverlays();
    void ShowTitle();
    bool HandleWindowKey(const QKeyEvent& event);
    void FocusMoved(QWidget* now);
    bool MoveBetweenAreas(const QKeyEvent& event);
    bool MoveBetweenFaults(const QKeyEvent& event);
    bool RunWindowKey(const QKeyEvent& event);
    void PrepareNameLists();
    void ContentChanged();
    void KeepDraft();
    Zone ZoneOf(const QWidget* widget) const;
    void ClickTool(const QString& key);
    void GiveUpDialogs();
    void Show(QDialog& dialog) const;
    QRect CellOverlayRect(const center::CellAddress& cell) const;
    QRect ActiveRowOnScreen() const;

    // VICenterView
    void ShowModeless() override;
    void CloseWindow() override;
    void CommitTyping() override;
    void SetTree(const std::vector<center::TreeNode>& nodes) override;
    void AddTreeNode(const center::TreeNode& node) override;
    void RemoveTreeNode(const std::string& key) override;
    void SetTreeNodeText(const std::string& key, const std::string& text) override;
    void SelectTreeNode(const std::string& key) override;
    void StartLabelEdit() override;
    void SetModified(const std::string& key, bool modified) override;
    void SetAccount(const std::string& accountSet, const std::string& user) override;
    void TellDone(const std::string& text, const std::string& file) override;
    void SetUnusableNodes(const std::vector<std::string>& keys) override;
    void FaultsChanged() override;
    void ShowFaults() override;
    void FocusGrid() override;
    void SetToolStates(const center::ToolStates& states) override;
    void SetTemplateName(const std::string& name) override;
    void SetGridInteractive(bool interactive) override;
    void SetProgress(const center::ProgressState& state) override;
    bool ProgressCancelled() override;
    void SetItemPanel(const center::ItemPanelState& state) override;
    void SetStatus(const center::StatusState& state) override;
    void SetNameList(const center::NameListState& state) override;
    int ApplyFont(const std::string& name, double size) override;
    center::Size WindowSize() const override;
    void PlaceProgressFrame(const center::Corner& corner) override;
    void ShowFindDialog(dialogs::FrmSearch& dialog) override;
    void ShowColumnDialog(dialogs::frmSetColume& dialog) override;
    void ShowHistory(center::TemplateHistory& history) override;
    void ShowReplacement(center::CodeReplacement& replacement) override;
    void ShowGridReplace(center::GridReplace& replace) override;
    void ShowLog(center::OperationLog& log) override;
    void ShowSearch() override;
    std::optional<std::string> AskName(const std::string& caption, const std::string& proposed) override;
    void ShowVoucher(center::VoucherPreview& preview) override;
    bool Print(const center::PrintSheet& sheet) override;
    void WritePdf(const center::PrintSheet& sheet, const std::string& file) override;

    // Declared last to first use: the presenter goes before the widgets that it speaks to.
    std::shared_ptr<center::TemplateCommands> commands_;
    ToolBand* band_ = nullptr;
    StatusLine* status_ = nullptr;
    TemplateTree* tree_ = nullptr;
    TreeFilter* filter_ = nullptr;
    QFrame* panel_ = nullptr;
    QLineEdit* name_ = nullptr;
    QLabel* measure_ = nullptr;
    ProgressFrame* progress_ = nullptr;
    NameListPopup* nameList_ = nullptr;
    ItemPanel* items_ = nullptr;
    FaultPanel* faults_ = nullptr;
    SearchPanel* search_ = nullptr;
    GridModel* model_ = nullptr;
    GridView* grid_ = nullptr;
    RestTimer* listTimer_ = nullptr;   // runs out when the user rests on a cell: name lists are read
    RestTimer* homeTimer_ = nullptr;   // runs while no command does: what was saved comes home
    RestTimer* draftTimer_ = nullptr;  // runs out when nothing has been typed for a while: a draft is kept
    QElapsedTimer typing_;             // since what is typed has last been kept
    Zone zone_ = Zone::Elsewhere;
    QString account_;  // behind the title: account set and user
    bool modified_ = false;
    bool loaded_ = false;
    bool unloaded_ = false;
    bool beneathLongWork_ = false;  // no window of the user's has taken the keyboard, but the box has
    std::optional<system::PinyinLoading> pinyin_;  // for the name lists, from the first pause on
    std::unique_ptr<center::frmVICenter> presenter_;
};

}  // namespace vicenter::ui
