#include "ui/panels/tree_filter.h"

#include <QKeyEvent>

#include "center/tree/tree_filter.h"
#include "ui/look/qt_text.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

TreeFilter::TreeFilter(center::TreeActions& actions, TemplateTree& tree, QWidget* parent)
    : QLineEdit(parent), actions_(actions), tree_(tree) {
    setObjectName(QStringLiteral("txtTreeFilter"));
    setPlaceholderText(QStringLiteral("筛选模板 (Ctrl+K)"));
    setAccessibleName(QStringLiteral("筛选模板"));
    setClearButtonEnabled(true);
    new SingleLine(*this);
    tree.installEventFilter(this);
    connect(this, &QLineEdit::textChanged, this, &TreeFilter::Apply);
    hide();
}

void TreeFilter::NodesChanged() {
    const bool offers = GuardedOr(false, [this] { return actions_.OffersFilter(); });
    if (offers == isHidden()) {
        setVisible(offers);
        if (!offers) clear();
        emit offeredChanged();
    }
    Apply();
}

void TreeFilter::Apply() {
    const std::string filter = FromQt(text());
    std::optional<std::vector<std::string>> fitting;
    if (!filter.empty() && !isHidden()) Guarded([&] { fitting = actions_.Fitting(filter); });
    tree_.ShowOnly(fitting);
}

// Unless the open template is one of those that are meant.
void TreeFilter::OpenFirst() {
    const std::string filter = FromQt(text());
    const QTreeWidgetItem* open = tree_.currentItem();
    if (filter.empty() || (open != nullptr && center::FitsFilter(FromQt(open->text(0)), filter))) return;
    const QTreeWidgetItem* root = tree_.topLevelItem(0);
    for (int i = 0; root != nullptr && i < root->childCount(); ++i) {
        QTreeWidgetItem* node = root->child(i);
        if (!node->isHidden() && node != open) return tree_.setCurrentItem(node);
    }
}

// Where the hits are, too.
bool TreeFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && !text().isEmpty() &&
        static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        clear();
        return true;
    }
    return QLineEdit::eventFilter(watched, event);
}

bool TreeFilter::TakeKeyboard() {
    if (isHidden()) return false;
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
    return true;
}

void TreeFilter::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            clear();
            tree_.setFocus(Qt::OtherFocusReason);
            return;
        case Qt::Key_Down:
            tree_.setFocus(Qt::OtherFocusReason);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            tree_.setFocus(Qt::OtherFocusReason);
            OpenFirst();
            return;
        default:
            QLineEdit::keyPressEvent(event);
    }
}

}  // namespace vicenter::ui
