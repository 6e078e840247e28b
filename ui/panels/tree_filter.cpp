#include "ui/panels/tree_filter.h"

#include <QKeyEvent>

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
        case Qt::Key_Return:
        case Qt::Key_Enter:
            tree_.setFocus(Qt::OtherFocusReason);
            return;
        default:
            QLineEdit::keyPressEvent(event);
    }
}

}  // namespace vicenter::ui
