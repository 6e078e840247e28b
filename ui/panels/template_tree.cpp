#include "ui/panels/template_tree.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "ui/grid/rows_format.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/application.h"
#include "ui/run/composition.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kKeyRole = Qt::UserRole;
constexpr int kModifiedRole = Qt::UserRole + 1;
constexpr int kRootIcon = 7;
constexpr int kIconSize = 18;
constexpr int kRowPadding = 7;
constexpr int kDropFrame = 2;

QIcon IconOf(int index) {
    return NamedIcon(index == kRootIcon ? QStringLiteral("tree_root") : QStringLiteral("tree_template"));
}

std::string KeyOf(const QTreeWidgetItem* item) {
    return item ? FromQt(item->data(0, kKeyRole).toString()) : std::string();
}

}  // namespace

// Holds the edited label until the editor is closed: the rules may show a message, which must not find an
// editor that loses its focus and is taken a second time.
class TemplateTree::LabelDelegate : public QStyledItemDelegate {
  public:
    explicit LabelDelegate(TemplateTree& tree) : QStyledItemDelegate(&tree), tree_(tree) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (editor) editor->setObjectName(QStringLiteral("labelEditor"));
        if (auto* field = qobject_cast<QLineEdit*>(editor)) {
            new Composition(*field);
            new SingleLine(*field);
        }
        return editor;
    }

    void setModelData(QWidget* editor, QAbstractItemModel* /*model*/,
                      const QModelIndex& /*index*/) const override {
        auto* field = qobject_cast<QLineEdit*>(editor);
        if (!field) return;
        // Leaving an untouched label with the mouse is no renaming; Enter always is.
        if (field->isModified() || entered_) pending_ = field->text();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            entered_ = key == Qt::Key_Return || key == Qt::Key_Enter;
        }
        return QStyledItemDelegate::eventFilter(watched, event);
    }

    // Whichever way the editor goes: its node may have been removed, or all of them.
    void destroyEditor(QWidget* editor, const QModelIndex& index) const override {
        QStyledItemDelegate::destroyEditor(editor, index);
        if (!pending_) tree_.GiveUpLabel();
    }

    std::optional<QString> TakePending() {
        entered_ = false;
        return std::exchange(pending_, std::nullopt);
    }

    // The sign is no part of the name: it is not there while the label is edited.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.data(kModifiedRole).toBool()) option->text += QStringLiteral(" *");
        if (!index.data(Qt::ForegroundRole).isValid()) return;
        // The letters of a lit node have the selection's colour: its ground says that its numbers are faulty.
        option->palette.setColor(QPalette::Text, colors::kRefusal);
        option->palette.setColor(QPalette::Active, QPalette::Highlight, colors::kRefusal);
        option->palette.setColor(QPalette::Inactive, QPalette::HighlightedText, colors::kRefusal);
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem own = option;
        initStyleOption(&own, index);
        const bool lit = (option.state & QStyle::State_Selected) != 0;
        const auto group = (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
        // The ground is one from the edge of the tree on.
        if (lit && index.data(Qt::ForegroundRole).isValid()) {
            painter->fillRect(QRect(QPoint(0, option.rect.top()), option.rect.bottomRight()),
                              own.palette.brush(group, QPalette::Highlight));
        }
        const DropMark mark = tree_.MarkOf(index);
        if (mark == DropMark::Takes && !lit) painter->fillRect(option.rect, colors::kButtonHovered);
        QStyledItemDelegate::paint(painter, option, index);
        if (mark == DropMark::None) return;
        const bool takes = mark == DropMark::Takes;
        painter->setPen(QPen((takes ? colors::kAccent : colors::kRefusal)(), kDropFrame,
                             takes ? Qt::SolidLine : Qt::DashLine));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(option.fontMetrics.height() + kRowPadding);
        return size;
    }

  private:
    TemplateTree& tree_;
    mutable std::optional<QString> pending_;
    bool entered_ = false;
};

TemplateTree::TemplateTree(center::TreeActions& actions, QWidget* parent)
    : QTreeWidget(parent), actions_(actions), labels_(new LabelDelegate(*this)) {
    setObjectName(QStringLiteral("trv"));
    setAccessibleName(QStringLiteral("凭证模板列表"));
    setHeaderHidden(true);
    setColumnCount(1);
    setItemDelegate(labels_);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(SingleSelection);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setExpandsOnDoubleClick(false);
    setIndentation(16);
    setIconSize({kIconSize, kIconSize});
    setUniformRowHeights(true);
    setTextElideMode(Qt::ElideRight);
    setTabKeyNavigation(false);
    setFrameShape(QFrame::StyledPanel);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
}

QTreeWidgetItem* TemplateTree::MakeItem(const center::TreeNode& node) const {
    auto* item = new QTreeWidgetItem(QStringList(ToQt(node.text)));
    item->setData(0, kKeyRole, ToQt(node.key));
    item->setIcon(0, IconOf(node.icon));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
    ShowModified(*item);
    ShowUnusable(*item);
    return item;
}

QTreeWidgetItem* TemplateTree::FindNode(const std::string& key) const {
    const QString wanted = ToQt(key);
    for (QTreeWidgetItemIterator it(const_cast<TemplateTree*>(this)); *it; ++it) {
        if ((*it)->data(0, kKeyRole).toString() == wanted) return *it;
    }
    return nullptr;
}

void TemplateTree::SetNodes(const std::vector<center::TreeNode>& nodes) {
    const bool before = std::exchange(selecting_, true);
    clear();
    QTreeWidgetItem* root = nullptr;
    QList<QTreeWidgetItem*> children;
    for (const center::TreeNode& node : nodes) {
        if (!root) {
            root = MakeItem(node);
        } else {
            children << MakeItem(node);
        }
    }
    if (root) {
        root->addChildren(children);
        addTopLevelItem(root);
        root->setExpanded(true);
    }
    selecting_ = before;
}

void TemplateTree::AddNode(const center::TreeNode& node) {
    QTreeWidgetItem* root = topLevelItem(0);
    if (!root) {
        addTopLevelItem(MakeItem(node));
        return;
    }
    root->addChild(MakeItem(node));
    root->setExpanded(true);
}

void TemplateTree::RemoveNode(const std::string& key) {
    const bool before = std::exchange(selecting_, true);
    delete FindNode(key);
    selecting_ = before;
}

void TemplateTree::SetNodeText(const std::string& key, const std::string& text) {
    if (QTreeWidgetItem* item = FindNode(key)) {
        item->setText(0, ToQt(text));
        ShowUnusable(*item);
    }
}

void TemplateTree::SetModified(const std::string& key, bool modified) {
    modified_ = modified ? key : std::string();
    for (QTreeWidgetItemIterator it(this); *it; ++it)
        ShowModified(**it);
}

bool TemplateTree::ShowsModified(const std::string& key) const {
    const QTreeWidgetItem* item = FindNode(key);
    return item && item->data(0, kModifiedRole).toBool();
}

void TemplateTree::ShowModified(QTreeWidgetItem& item) const {
    const bool modified = !modified_.empty() && KeyOf(&item) == modified_;
    if (item.data(0, kModifiedRole).toBool() == modified) return;
    item.setData(0, kModifiedRole, modified);
    ShowSpoken(item);
}

// What the eye sees behind and in the letters of a name.
void TemplateTree::ShowSpoken(QTreeWidgetItem& item) const {
    QString signs;
    if (item.data(0, kModifiedRole).toBool()) signs += QStringLiteral("（已修改）");
    if (unusable_.contains(KeyOf(&item))) signs += QStringLiteral("（有不能使用的编号）");
    item.setData(0, Qt::AccessibleTextRole, signs.isEmpty() ? QVariant() : QVariant(item.text(0) + signs));
}

void TemplateTree::SetUnusable(const std::vector<std::string>& keys) {
    unusable_ = {keys.begin(), keys.end()};
    for (QTreeWidgetItemIterator it(this); *it; ++it)
        ShowUnusable(**it);
}

bool TemplateTree::ShowsUnusable(const std::string& key) const {
    const QTreeWidgetItem* item = FindNode(key);
    return item && item->data(0, Qt::ForegroundRole).isValid();
}

void TemplateTree::ShowUnusable(QTreeWidgetItem& item) const {
    const bool unusable = unusable_.contains(KeyOf(&item));
    item.setData(0, Qt::ForegroundRole, unusable ? QVariant(colors::kRefusal()) : QVariant());
    item.setToolTip(
        0, ToolTipText(item.text(0) + (unusable ? QStringLiteral("（有不能使用的编号）") : QString())));
    ShowSpoken(item);
}

void TemplateTree::ShowOnly(const std::optional<std::vector<std::string>>& keys) {
    for (QTreeWidgetItemIterator it(this); *it; ++it) {
        const bool shown = !keys || std::find(keys->begin(), keys->end(), KeyOf(*it)) != keys->end();
        (*it)->setHidden(!shown);
    }
}

void TemplateTree::SelectNode(const std::string& key) {
    const bool before = std::exchange(selecting_, true);
    if (QTreeWidgetItem* item = FindNode(key)) {
        setCurrentItem(item);
        scrollToItem(item);
    } else {
        setCurrentItem(nullptr);
        clearSelection();
    }
    selecting_ = before;
}

std::string TemplateTree::SelectedKey() const {
    return KeyOf(currentItem());
}

void TemplateTree::StartLabelEdit() {
    QTreeWidgetItem* item = currentItem();
    if (!item || IsEditingLabel()) return;
    if (!GuardedOr(false, [&] { return actions_.BeforeLabelEdit(); })) return;
    scrollToItem(item);
    editItem(item, 0);
    if (!IsEditingLabel()) GiveUpLabel();
}

void TemplateTree::GiveUpLabel() {
    Guarded([&] { actions_.LabelEditGivenUp(); });
}

void TemplateTree::EndLabelEdit() {
    if (!IsEditingLabel()) return;
    if (QWidget* editor = indexWidget(currentIndex())) {
        Composition::Finish(*editor);
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void TemplateTree::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    QTreeWidget::closeEditor(editor, hint);
    FinishLabel();
}

void TemplateTree::FinishLabel() {
    const std::optional<QString> text = labels_->TakePending();
    const std::string key = SelectedKey();
    if (!text || key.empty()) return;
    const bool stands = GuardedOr(false, [&] { return actions_.AfterLabelEdit(FromQt(*text)); });
    if (stands) SetNodeText(key, FromQt(*text));
}

void TemplateTree::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeWidget::currentChanged(current, previous);
    if (selecting_ || !current.isValid()) return;
    Guarded([&] { actions_.NodeClick(SelectedKey()); });
}

// Qt's own press and drag would light nodes that are not opened: the lit node is the open template's. It
// changes when the left button goes up where it went down, so that a question never stands in the middle of a
// press.
void TemplateTree::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton) return;
    doubleClicked_ = false;
    pressed_ = QPersistentModelIndex(indexAt(event->pos()));
}

void TemplateTree::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton) {
        QTreeWidget::mouseMoveEvent(event);
    } else {
        event->accept();
    }
}

void TemplateTree::Click(QTreeWidgetItem* item) {
    {
        const bool before = std::exchange(selecting_, true);
        setCurrentItem(item);
        selecting_ = before;
    }
    Guarded([&] { actions_.NodeClick(KeyOf(item)); });
}

void TemplateTree::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton) return;
    const QModelIndex index = indexAt(event->pos());
    const bool click = pressed_.isValid() && index == pressed_ && !std::exchange(doubleClicked_, false);
    pressed_ = QPersistentModelIndex();
    if (!click) return;
    const bool wasLit = index == currentIndex();
    const QPersistentModelIndex clicked(index);
    const QPointer<TemplateTree> alive(this);
    Click(itemFromIndex(index));
    if (!alive || !wasLit || !GuardedOr(false, [&] { return actions_.EditsLabels(); })) return;
    QTimer::singleShot(QApplication::doubleClickInterval(), this, [this, clicked] {
        // By now the user may be elsewhere: what he types there is no name.
        const bool asks = !doubleClicked_ && clicked.isValid() && clicked == currentIndex() && hasFocus() &&
                          !pressed_.isValid() && GuardedOr(false, [&] { return actions_.EditsLabels(); });
        if (asks) StartLabelEdit();
    });
}

void TemplateTree::mouseDoubleClickEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton) return;
    doubleClicked_ = true;
    if (indexAt(event->pos()).isValid()) Guarded([&] { actions_.DoubleClick(); });
}

// What a menu offers is offered for its node: that one is opened first. Asked for by a key, it is the lit
// one's.
void TemplateTree::contextMenuEvent(QContextMenuEvent* event) {
    if (IsEditingLabel()) return;
    std::vector<center::TreeMenuItem> items;
    Guarded([&] { items = actions_.MenuItems(); });
    if (items.empty()) return;
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        at = viewport()->mapToGlobal(visualRect(currentIndex()).center());
    } else if (QTreeWidgetItem* item = itemAt(event->pos()); item != nullptr && item != currentItem()) {
        const QPointer<TemplateTree> alive(this);
        Click(item);
        if (!alive) return;
        // The question about unsaved changes may have been answered so that the node was not opened.
        items.clear();
        Guarded([&] { items = actions_.MenuItems(); });
        if (items.empty()) return;
    }
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("treeMenu"));
    for (const center::TreeMenuItem& item : items)
        menu.addAction(ToQt(item.text))->setObjectName(ToQt(item.name));
    // What was chosen runs when the menu is gone: it may ask for a file.
    const QAction* chosen = GuardedOr<const QAction*>(nullptr, [&] { return menu.exec(at); });
    if (chosen == nullptr) return;
    const auto index = static_cast<std::size_t>(menu.actions().indexOf(chosen));
    Guarded([&] { items[index].run(); });
}

// Rows go behind the lines of another template than the one that is open.
QTreeWidgetItem* TemplateTree::DropTarget(const QDropEvent& event) const {
    if (!event.mimeData()->hasFormat(RowsFormat())) return nullptr;
    QTreeWidgetItem* item = itemAt(event.position().toPoint());
    return item == nullptr || item == currentItem() || item->parent() == nullptr ? nullptr : item;
}

void TemplateTree::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(RowsFormat())) {
        event->acceptProposedAction();
    } else {
        event->ignore();  // the window takes workbooks
    }
}

void TemplateTree::dragMoveEvent(QDragMoveEvent* event) {
    const bool takes = DropTarget(*event) != nullptr;
    if (takes) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    } else {
        event->ignore();
    }
    const bool rows = event->mimeData()->hasFormat(RowsFormat());
    MarkDrop(rows ? indexAt(event->position().toPoint()) : QModelIndex(), takes);
}

void TemplateTree::dragLeaveEvent(QDragLeaveEvent* event) {
    MarkDrop({}, false);
    event->accept();
}

void TemplateTree::MarkDrop(const QModelIndex& index, bool takes) {
    if (index == under_ && takes == takes_) return;
    under_ = index;
    takes_ = takes;
    viewport()->update();
}

TemplateTree::DropMark TemplateTree::MarkOf(const QModelIndex& index) const {
    if (!under_.isValid() || index != under_) return DropMark::None;
    return takes_ ? DropMark::Takes : DropMark::Refuses;
}

void TemplateTree::dropEvent(QDropEvent* event) {
    const QTreeWidgetItem* target = DropTarget(*event);
    MarkDrop({}, false);
    if (target == nullptr) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const center::CopiedBlock rows(FromQt(event->mimeData()->text()),
                                   event->mimeData()->data(RowsFormat()).toStdString());
    // After the drag has ended: there is a question to answer.
    QMetaObject::invokeMethod(
        this, [this, key = KeyOf(target), rows] { Guarded([&] { actions_.DropRows(key, rows); }); },
        Qt::QueuedConnection);
}

// Before it had a size, the lit node was scrolled to the edge of nothing.
void TemplateTree::showEvent(QShowEvent* event) {
    QTreeWidget::showEvent(event);
    scrollToTop();
    if (currentItem() != nullptr) scrollToItem(currentItem());
}

void TemplateTree::focusInEvent(QFocusEvent* event) {
    // Qt makes a node current when none is; that is not the user's click.
    const bool before = std::exchange(selecting_, true);
    QTreeWidget::focusInEvent(event);
    selecting_ = before;
}

void TemplateTree::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_F2:
            Guarded([&] { actions_.DoubleClick(); });
            return;
        case Qt::Key_Delete:
            Guarded([&] { actions_.DeleteSelected(); });
            return;
        default:
            QTreeWidget::keyPressEvent(event);
    }
}

}  // namespace vicenter::ui
