#include "ui/window/vicenter_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QUrl>

#include "ui/grid/key_codes.h"
#include "ui/grid/rows_badge.h"
#include "ui/look/qt_path.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/look/twips.h"
#include "ui/run/application.h"
#include "ui/run/keyboard_home.h"
#include "ui/run/long_work.h"
#include "ui/run/rest_timer.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr QPoint kBesideTheCursor(-14, -14);  // of what is dragged

constexpr int kDesignedWidth = 1180;  // pixels at 96 dots an inch
constexpr int kDesignedHeight = 700;
constexpr int kListMilliseconds = 30;  // shorter than a hand needs from one key to the next
// How often what was saved is brought into the account set's own file; next to nothing when nothing was.
constexpr int kHomeMilliseconds = 5000;
constexpr int kRowsInSight = 2;  // above a list that is shown
constexpr int kDraftMilliseconds = 1500;
constexpr int kLongestTypingMilliseconds = 10000;  // without a rest

// The local workbooks that are being dragged; none as soon as anything else is among them.
std::vector<std::string> DroppedWorkbooks(const QMimeData& data) {
    std::vector<std::string> files;
    for (const QUrl& url : data.urls()) {
        const QString file = url.toLocalFile();
        const bool workbook = file.endsWith(QLatin1String(".xls"), Qt::CaseInsensitive) ||
                              file.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive);
        if (!workbook) return {};
        files.push_back(PathFromQt(file));
    }
    return files;
}

}  // namespace

VICenterWindow::VICenterWindow(std::shared_ptr<center::TemplateCommands> commands)
    : commands_(std::move(commands)) {
    setObjectName(QStringLiteral("frmVICenter"));
    ShowTitle();
    setWindowIcon(NamedIcon(QStringLiteral("app")));
    setContextMenuPolicy(Qt::NoContextMenu);
    presenter_ = std::make_unique<center::frmVICenter>(*this, commands_.get());
    BuildWidgets();
    BuildGrid();
    ConnectItemPanel();
    resize(TwipsToPixels(kDesignedWidth * 15, *this), TwipsToPixels(kDesignedHeight * 15, *this));
    setMinimumSize(0, 0);
    setAcceptDrops(true);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { FocusMoved(now); });
    qApp->installEventFilter(this);
}

VICenterWindow::~VICenterWindow() {
    qApp->removeEventFilter(this);
    disconnect(qApp, nullptr, this, nullptr);
    unloaded_ = true;
    // Those that ask the presenter go before it.
    delete filter_;
    filter_ = nullptr;
    delete search_;
    delete tree_;
    delete faults_;
    faults_ = nullptr;
    delete grid_;
    delete model_;
}

void VICenterWindow::BuildWidgets() {
    band_ = new ToolBand(this);
    addToolBar(Qt::TopToolBarArea, band_);
    connect(band_, &ToolBand::toolClicked, this, &VICenterWindow::ClickTool);
    connect(band_, &ToolBand::keyboardLeft, this, [this] { grid_->setFocus(Qt::OtherFocusReason); });
    status_ = new StatusLine(this);
    setStatusBar(status_);

    auto* inner = new QWidget(this);
    inner->setObjectName(QStringLiteral("inner"));
    inner->setMinimumSize(0, 0);
    inner->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    inner->installEventFilter(this);
    setCentralWidget(inner);
    tree_ = new TemplateTree(presenter_->Tree(), inner);
    filter_ = new TreeFilter(presenter_->Tree(), *tree_, inner);
    connect(filter_, &TreeFilter::offeredChanged, this, &VICenterWindow::LayOutFrame);

    panel_ = new QFrame(inner);
    panel_->setObjectName(QStringLiteral("picGrid"));
    panel_->setFrameShape(QFrame::NoFrame);
    panel_->setAutoFillBackground(true);
    const auto paint = [this] {
        QPalette background;
        background.setColor(QPalette::Window, colors::kPanel);
        panel_->setPalette(background);
    };
    paint();
    connect(&Theme::Process(), &Theme::changed, panel_, paint);
    panel_->installEventFilter(this);
    name_ = new QLineEdit(panel_);
    name_->setObjectName(QStringLiteral("itName"));
    name_->setAccessibleName(QStringLiteral("模板名称"));
    name_->setReadOnly(true);
    name_->setTextMargins(4, 0, 4, 0);
    name_->setFocusPolicy(Qt::ClickFocus);
    name_->setPlaceholderText(QStringLiteral("没有打开的模板"));
    measure_ = new QLabel(QStringLiteral("凭证模板"), panel_);
    measure_->setObjectName(QStringLiteral("lblMeasure"));
    measure_->hide();

    items_ = new ItemPanel(inner);
    nameList_ = new NameListPopup(inner);

    progress_ = new ProgressFrame(this);
}

void VICenterWindow::BuildGrid() {
    center::GridActions& cells = presenter_->Cells();
    model_ = new GridModel(presenter_->GridObject(), cells, this);
    grid_ = new GridView(*model_, cells, presenter_->Names(), panel_);
    faults_ = new FaultPanel(presenter_->Faults(), this);
    addDockWidget(Qt::BottomDockWidgetArea, faults_);
    faults_->hide();
    search_ = new SearchPanel(presenter_->Search(), this);
    addDockWidget(Qt::BottomDockWidgetArea, search_);
    search_->hide();
    // One list below the grid at a time.
    connect(search_, &QDockWidget::visibilityChanged, faults_, [this](bool shown) {
        if (shown) faults_->hide();
        KeepCellsInSight();
    });
    connect(faults_, &QDockWidget::visibilityChanged, search_, [this](bool shown) {
        if (shown) search_->hide();
        KeepCellsInSight();
    });
    connect(status_, &StatusLine::faultsClicked, this,
            [this] { faults_->setVisible(!faults_->isVisible()); });
    auto* home = new KeyboardHome(*grid_, this);
    home->Watch(*faults_);
    home->Watch(*search_);
    connect(grid_, &GridView::contentsMoved, this, &VICenterWindow::PlaceOverlays);
    connect(grid_, &GridView::rowsPulledOut, this, &VICenterWindow::DragRows);
    connect(model_, &GridModel::activeCellChanged, this, &VICenterWindow::PlaceOverlays);
    listTimer_ = new RestTimer(QStringLiteral("listTimer"), kListMilliseconds, this);
    connect(listTimer_, &QTimer::timeout, this, &VICenterWindow::PrepareNameLists);
    connect(model_, &GridModel::activeCellChanged, listTimer_, qOverload<>(&QTimer::start));
    homeTimer_ = new RestTimer(QStringLiteral("homeTimer"), kHomeMilliseconds, this);
    homeTimer_->setSingleShot(false);
    connect(homeTimer_, &QTimer::timeout, this, [this] {
        if (!progress_->IsPolling()) Guarded([this] { presenter_->BringHome(); });
    });
    draftTimer_ = new RestTimer(QStringLiteral("draftTimer"), kDraftMilliseconds, this);
    connect(draftTimer_, &QTimer::timeout, this, &VICenterWindow::KeepDraft);
    for (const auto signal : {&GridModel::rowsInserted, &GridModel::rowsRemoved})
        connect(model_, signal, this, &VICenterWindow::ContentChanged);
    connect(model_, &GridModel::dataChanged, this, &VICenterWindow::ContentChanged);
    connect(grid_, &GridView::editingChanged, items_, &ItemPanel::SetCellEditing);
    connect(status_, &StatusLine::fileClicked, this,
            [this](const QString& file) { Guarded([&] { presenter_->OpenDocument(FromQt(file)); }); });
    connect(grid_, &GridView::textRefused, status_, &StatusLine::Flash);
    connect(grid_, &GridView::textTaken, status_, &StatusLine::EndFlash);
    connect(grid_, &GridView::textTaken, this, &VICenterWindow::ContentChanged);
    connect(grid_, &GridView::editingChanged, this, &VICenterWindow::ContentChanged);
    connect(model_, &GridModel::activeCellChanged, status_, &StatusLine::EndFlash);
    connect(nameList_, &NameListPopup::chosen, this, [this](int index) {
        Guarded([&] {
            presenter_->Names().Select(index);
            if (presenter_->Names().Take()) grid_->DropOpenEditor();
        });
    });
}

// What a list leads to is seen beside it, on a small screen as well.
void VICenterWindow::KeepCellsInSight() {
    if (unloaded_) return;
    const bool listed = !faults_->isHidden() || !search_->isHidden();
    const QRect grid(grid_->mapTo(centralWidget(), QPoint(0, 0)), grid_->size());
    const int around = grid.top() + centralWidget()->height() - grid.bottom() + 2 * grid_->frameWidth() +
                       grid_->horizontalHeader()->height();
    const int cells = kRowsInSight * grid_->verticalHeader()->defaultSectionSize() +
                      grid_->horizontalScrollBar()->sizeHint().height();
    centralWidget()->setMinimumHeight(listed ? around + cells : 0);
}

void VICenterWindow::ConnectItemPanel() {
    connect(items_, &ItemPanel::toggled, this, [this] { Guarded([this] { presenter_->Items().Toggle(); }); });
    connect(items_, &ItemPanel::textCommitted, this,
            [this](const QString& text) { Guarded([&] { presenter_->Items().CommitText(FromQt(text)); }); });
    connect(items_, &ItemPanel::numberCommitted, this, [this](int row, const QString& number) {
        Guarded([&] { presenter_->Items().CommitNumber(static_cast<std::size_t>(row), FromQt(number)); });
    });
    connect(items_, &ItemPanel::lookUpRequested, this,
            [this](int row) { Guarded([&] { presenter_->Items().LookUp(static_cast<std::size_t>(row)); }); });
    connect(items_, &ItemPanel::leaveRequested, this, [this] { grid_->setFocus(Qt::OtherFocusReason); });
    connect(grid_, &GridView::itemPanelRequested, this, [this] {
        grid_->scrollTo(grid_->currentIndex());  // the panel is where its cell is
        Guarded([this] { presenter_->Items().Toggle(); });
    });
}

void VICenterWindow::Open() {
    const WindowCall call;
    setAttribute(Qt::WA_DeleteOnClose);
    LayOutFrame();
    presenter_->Load();
    loaded_ = true;
    ShowModeless();
    // The host's call returns first: what is to be told may wait for an answer.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!unloaded_) Guarded([this] { presenter_->Shown(); });
        },
        Qt::QueuedConnection);
}

void VICenterWindow::ShowModeless() {
    show();
    grid_->setFocus(Qt::OtherFocusReason);
    raise();
    activateWindow();
    listTimer_->start();
    homeTimer_->start();
}

void VICenterWindow::CloseWindow() {
    close();
}

void VICenterWindow::CommitTyping() {
    grid_->CommitOpenEditor();
    items_->CommitTyping();
    tree_->EndLabelEdit();
}

void VICenterWindow::closeEvent(QCloseEvent* event) {
    if (progress_->IsPolling()) {
        event->ignore();  // a command is under way
        return;
    }
    // The frame alone: the command has asked, and a host that closes its windows has nobody to ask.
    if (event->spontaneous() && loaded_ && !unloaded_ &&
        GuardedOr(false, [this] { return presenter_->StaysOpen(); })) {
        event->ignore();
        return;
    }
    event->accept();
    if (unloaded_ || !loaded_) return;
    unloaded_ = true;
    presenter_->Closing();
    GiveUpDialogs();
    WindowCall::Afterwards(*this, [this] { Guarded([this] { presenter_->Unload(); }); });
}

// Whoever closes a window of a program does not wait for answers: what stands on it is given up.
void VICenterWindow::GiveUpDialogs() {
    for (QMenu* menu : findChildren<QMenu*>())
        menu->close();
    for (QDialog* dialog : findChildren<QDialog*>()) {
        // What runs is not stopped by it.
        if (dialog->isVisible() && qobject_cast<LongWorkBox*>(dialog) == nullptr) dialog->reject();
    }
}

bool VICenterWindow::event(QEvent* event) {
    if (event->type() == QEvent::DeferredDelete && WindowCall::IsUnderWay()) {
        WindowCall::Afterwards(*this, [this] { deleteLater(); });
        return true;
    }
    return QMainWindow::event(event);
}

// To a node of the tree; spreadsheets take the text.
void VICenterWindow::DragRows() {
    Guarded([this] {
        QMimeData* rows = grid_->CopiedSelection();
        if (rows == nullptr) return;
        auto* drag = new QDrag(grid_);
        drag->setMimeData(rows);
        drag->setPixmap(RowsBadge(CountOfRows(*rows), *grid_));
        drag->setHotSpot(kBesideTheCursor);
        drag->exec(Qt::CopyAction);
    });
}

void VICenterWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedWorkbooks(*event->mimeData()).empty() && !progress_->IsPolling())
        event->acceptProposedAction();
}

void VICenterWindow::dropEvent(QDropEvent* event) {
    const std::vector<std::string> files = DroppedWorkbooks(*event->mimeData());
    if (files.empty()) return;
    event->acceptProposedAction();
    // After the drag has ended: the import may ask questions.
    QMetaObject::invokeMethod(
        this, [this, files] { Guarded([&] { presenter_->FilesDropped(files); }); }, Qt::QueuedConnection);
}

void VICenterWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !loaded_ || unloaded_) return;
    if (!isActiveWindow()) {
        // It comes and goes by itself: whatever asked the server behind it would bring the next one.
        beneathLongWork_ = qobject_cast<LongWorkBox*>(QApplication::activeModalWidget()) != nullptr;
    } else if (!std::exchange(beneathLongWork_, false)) {
        Guarded([this] { presenter_->Activate(); });
        listTimer_->start();
    }
}

bool VICenterWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() && !unloaded_) {
        // Keys are seen here before the controls see them, editors and drop-down lists of the window
        // included.
        const auto* widget = static_cast<const QWidget*>(watched);
        const QWidget* window = widget->window();
        if (window == this && MoveBetweenAreas(static_cast<QKeyEvent&>(*event))) return true;
        if (window == this && RunWindowKey(static_cast<QKeyEvent&>(*event))) return true;
        if (window == this && MoveBetweenFaults(static_cast<QKeyEvent&>(*event))) return true;
        if (window == this && HandleWindowKey(static_cast<QKeyEvent&>(*event))) return true;
        if (window == this || (window->windowType() == Qt::Popup && isAncestorOf(window))) {
            const int code = KeyCodeOf(static_cast<QKeyEvent&>(*event));
            if (code != 0 && GuardedOr(false, [&] { return presenter_->KeyPreview(code); })) return true;
        }
    }
    if (event->type() == QEvent::Resize) {
        if (watched == centralWidget()) LayOutFrame();
        if (watched == panel_) LayOutPanel();
    }
    return QMainWindow::eventFilter(watched, event);
}

VICenterWindow::Zone VICenterWindow::ZoneOf(const QWidget* widget) const {
    if (widget == tree_ || tree_->isAncestorOf(widget) || (filter_ && widget == filter_)) return Zone::Tree;
    if (grid_ && (widget == grid_ || grid_->isAncestorOf(widget) || items_->Contains(widget)))
        return Zone::Grid;
    return Zone::Elsewhere;
}

// Tab stays within the grid, so that the tree, the list below and the command bar have keys of their own: F6
// goes from one area to the next, F10 to the bar.
bool VICenterWindow::MoveBetweenAreas(const QKeyEvent& event) {
    if (!loaded_ || progress_->IsPolling()) return false;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_F10 && modifiers == Qt::NoModifier) {
        CommitTyping();
        band_->TakeKeyboard();
        return true;
    }
    if (event.key() != Qt::Key_F6 || (modifiers & ~Qt::ShiftModifier) != Qt::NoModifier) return false;
    const QWidget* focused = QApplication::focusWidget();
    std::vector<QWidget*> round = {grid_, tree_};
    std::size_t at = ZoneOf(focused) == Zone::Tree ? 1 : 0;
    const auto addList = [&](const QWidget& panel, QWidget& entry) {
        if (!panel.isVisible()) return;
        if (panel.isAncestorOf(focused)) at = round.size();
        round.push_back(&entry);
    };
    addList(*faults_, faults_->Table());
    addList(*search_, *search_);
    const std::size_t step = modifiers == Qt::ShiftModifier ? round.size() - 1 : 1;
    round[(at + step) % round.size()]->setFocus(Qt::ShortcutFocusReason);
    return true;
}

// What goes through the lines of one template or of all, and the box over the tree.
bool VICenterWindow::RunWindowKey(const QKeyEvent& event) {
    if (!loaded_ || progress_->IsPolling()) return false;
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::ControlModifier && event.key() == Qt::Key_K) return filter_->TakeKeyboard();
    void (center::SearchActions::*run)() = nullptr;
    if (modifiers == Qt::ControlModifier && event.key() == Qt::Key_H)
        run = &center::SearchActions::ReplaceInGrid;
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier)) {
        if (event.key() == Qt::Key_F) run = &center::SearchActions::ShowPanel;
        if (event.key() == Qt::Key_H) run = &center::SearchActions::ReplaceCodes;
        if (event.key() == Qt::Key_L) run = &center::SearchActions::ShowLog;
        if (event.key() == Qt::Key_S) {
            Guarded([this] { presenter_->Tree().SaveAs(); });
            return true;
        }
    }
    if (run == nullptr) return false;
    Guarded([&] { (presenter_->Search().*run)(); });
    return true;
}

// F8 goes from one faulty cell to the next, with Shift back; with Ctrl it shows and hides their list.
bool VICenterWindow::MoveBetweenFaults(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (!loaded_ || progress_->IsPolling() || event.key() != Qt::Key_F8) return false;
    if (modifiers == Qt::ControlModifier) {
        faults_->setVisible(!faults_->isVisible());
        return true;
    }
    if ((modifiers & ~Qt::ShiftModifier) != Qt::NoModifier) return false;
    Guarded([&] {
        center::FaultActions& faults = presenter_->Faults();
        // What is in no cell can only be looked at.
        if (faults.Cells().empty() && !faults.Reported().empty()) faults_->show();
        faults.GoToNext(modifiers == Qt::ShiftModifier);
    });
    return true;
}

// Wherever the keyboard is: Ctrl+P prints the open template, Ctrl+O opens another account set.
bool VICenterWindow::HandleWindowKey(const QKeyEvent& event) {
    if (!loaded_ || progress_->IsPolling()) return false;
    if (event.modifiers() != Qt::ControlModifier) return false;
    if (event.key() == Qt::Key_P) {
        Guarded([this] { presenter_->Tree().PrintTemplate(); });
        return true;
    }
    if (event.key() == Qt::Key_O) {
        Guarded([this] { presenter_->RunHostCommand("mnuOpenAccountSet"); });
        return true;
    }
    return false;
}

void VICenterWindow::FocusMoved(QWidget* now) {
    // The focus that goes to another window, a menu or a message box comes back: nothing was left for good.
    if (!now || now->window() != this || unloaded_ || !loaded_) return;
    // The command bar acts on where the focus was.
    if (band_->isAncestorOf(now)) return;
    const Zone next = ZoneOf(now);
    if (next == zone_) return;
    const Zone before = std::exchange(zone_, next);
    Guarded([&] {
        if (before == Zone::Tree) presenter_->Tree().LostFocus();
        if (before == Zone::Grid) presenter_->Cells().LostFocus();
        if (next == Zone::Tree) presenter_->Tree().GotFocus();
        if (next == Zone::Grid) presenter_->Cells().GotFocus();
    });
    grid_->viewport()->update();
}

void VICenterWindow::ClickTool(const QString& key) {
    Guarded([&] { presenter_->ToolClick(FromQt(key)); });
}

void VICenterWindow::PrepareNameLists() {
    if (!loaded_ || unloaded_ || progress_->IsPolling()) return;
    if (!system::PinyinLoading::IsOver()) {
        if (!pinyin_) pinyin_.emplace();
        listTimer_->start();
        return;
    }
    Guarded([this] { presenter_->Names().Prepare(); });
}

// Whoever types without a rest is kept from time to time all the same.
void VICenterWindow::ContentChanged() {
    if (!draftTimer_->isActive()) typing_.start();
    if (!draftTimer_->isActive() || typing_.elapsed() < kLongestTypingMilliseconds) draftTimer_->start();
}

void VICenterWindow::KeepDraft() {
    if (!loaded_ || unloaded_) return;
    if (progress_->IsPolling()) {
        draftTimer_->start();
        return;
    }
    Guarded([this] { presenter_->KeepDraft(grid_->TextInEditor()); });
}

}  // namespace vicenter::ui
