#include "ui/panels/template_tree.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QTimer>
#include <utility>

#include "ui/look/center_style.h"
#include "ui/look/qt_text.h"
#include "ui/run/application.h"
#include "ui/run/composition.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kKeyRole = Qt::UserRole;
constexpr int kRootIcon = 7;
constexpr int kIconSize = 18;
constexpr int kRowPadding = 7;

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
    using QStyledItemDelegate::QStyledItemDelegate;

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

    std::optional<QString> TakePending() {
        entered_ = false;
        return std::exchange(pending_, std::nullopt);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(option.fontMetrics.height() + kRowPadding);
        return size;
    }

  private:
    mutable std::optional<QString> pending_;
    bool entered_ = false;
};

TemplateTree::TemplateTree(center::TreeActions& actions, QWidget* parent)
    : QTreeWidget(parent), actions_(actions), labels_(new LabelDelegate(this)) {
    setObjectName(QStringLiteral("trv"));
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
}

QTreeWidgetItem* TemplateTree::MakeItem(const center::TreeNode& node) const {
    auto* item = new QTreeWidgetItem(QStringList(ToQt(node.text)));
    item->setData(0, kKeyRole, ToQt(node.key));
    item->setIcon(0, IconOf(node.icon));
    item->setToolTip(0, ToQt(node.text));
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
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
        item->setToolTip(0, ToQt(text));
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

void TemplateTree::mousePressEvent(QMouseEvent* event) {
    // Only the left button opens a template; no other may light a node that is not the open one.
    if (event->button() != Qt::LeftButton) {
        event->accept();
        return;
    }
    doubleClicked_ = false;
    const QModelIndex index = indexAt(event->pos());
    pressedSelected_ = index.isValid() && index == currentIndex();
    pressed_ = event->button() == Qt::LeftButton ? QPersistentModelIndex(index) : QPersistentModelIndex();
    // The click is raised when the button goes up: a question in between must not catch half a click.
    const bool before = std::exchange(selecting_, true);
    QTreeWidget::mousePressEvent(event);
    selecting_ = before;
}

void TemplateTree::mouseReleaseEvent(QMouseEvent* event) {
    const bool before = std::exchange(selecting_, true);
    QTreeWidget::mouseReleaseEvent(event);
    selecting_ = before;
    const QModelIndex index = indexAt(event->pos());
    const bool click = event->button() == Qt::LeftButton && pressed_.isValid() && index == pressed_ &&
                       !std::exchange(doubleClicked_, false);
    pressed_ = QPersistentModelIndex();
    if (!click) return;
    const QPointer<TemplateTree> alive(this);
    Guarded([&] { actions_.NodeClick(SelectedKey()); });
    if (!alive || !pressedSelected_ || !GuardedOr(false, [&] { return actions_.EditsLabels(); })) return;
    QTimer::singleShot(QApplication::doubleClickInterval(), this, [this] {
        if (!doubleClicked_) StartLabelEdit();
    });
}

void TemplateTree::mouseDoubleClickEvent(QMouseEvent* event) {
    const bool onNode = event->button() == Qt::LeftButton && indexAt(event->pos()).isValid();
    const bool before = std::exchange(selecting_, true);
    QTreeWidget::mouseDoubleClickEvent(event);
    selecting_ = before;
    doubleClicked_ = true;
    if (onNode) Guarded([&] { actions_.DoubleClick(); });
}

void TemplateTree::contextMenuEvent(QContextMenuEvent* event) {
    std::vector<center::TreeMenuItem> items;
    Guarded([&] { items = actions_.MenuItems(); });
    if (items.empty() || IsEditingLabel()) return;
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("treeMenu"));
    for (const center::TreeMenuItem& item : items)
        menu.addAction(ToQt(item.text))->setObjectName(ToQt(item.name));
    // What was chosen runs when the menu is gone: it may ask for a file.
    const QAction* chosen = menu.exec(event->globalPos());
    if (chosen == nullptr) return;
    const auto index = static_cast<std::size_t>(menu.actions().indexOf(chosen));
    Guarded([&] { items[index].run(); });
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
