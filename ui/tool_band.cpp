#include "ui/tool_band.h"

#include <QHelpEvent>
#include <QToolButton>
#include <QToolTip>

#include "ui/application.h"
#include "ui/qt_text.h"

namespace vicenter::ui {

namespace {

struct ToolLook {
    center::Tool tool;
    const char* icon;
    QKeySequence shortcut;
    bool startsGroup;
};

const std::array<ToolLook, center::kToolCount>& Looks() {
    using center::Tool;
    static const std::array<ToolLook, center::kToolCount> looks = {{
        {Tool::New, "tool_new", QKeySequence(Qt::CTRL | Qt::Key_N), false},
        {Tool::Del, "tool_delete", {}, false},
        {Tool::Save, "tool_save", QKeySequence(Qt::CTRL | Qt::Key_S), false},
        {Tool::ShowCol, "tool_columns", {}, true},
        {Tool::DelRow, "tool_delete_row", {}, false},
        {Tool::AddRow, "tool_add_row", {}, false},
        {Tool::PrcFind, "tool_find", QKeySequence(Qt::CTRL | Qt::Key_F), false},
        {Tool::Imp, "tool_import", {}, true},
        {Tool::Exp, "tool_export", {}, false},
        // The one command that fetches from the ledger anew, which is what F5 stands for.
        {Tool::AutoVch, "tool_generate", QKeySequence(Qt::Key_F5), false},
        {Tool::CloudP, "tool_cloud", {}, false},
        {Tool::Share, "tool_share", {}, false},
        {Tool::Quit, "tool_quit", {}, true},
    }};
    return looks;
}

}  // namespace

ToolBand::ToolBand(QWidget* parent) : QToolBar(parent) {
    setObjectName(ToQt(center::kBandName));
    setWindowTitle(QStringLiteral("工具栏"));
    setMovable(false);
    setFloatable(false);
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setContextMenuPolicy(Qt::PreventContextMenu);
    for (const center::ToolSpec& spec : center::Tools()) {
        const auto index = static_cast<std::size_t>(spec.tool);
        const ToolLook& look = Looks()[index];
        if (look.startsGroup) addSeparator();
        QAction* action = addAction(NamedIcon(QString::fromLatin1(look.icon)), ToQt(spec.caption));
        action->setObjectName(ToQt(spec.key));
        action->setToolTip(ToQt(spec.tooltip));
        action->setShortcut(look.shortcut);
        connect(action, &QAction::triggered, this, [this, key = ToQt(spec.key)] { emit toolClicked(key); });
        if (QWidget* button = widgetForAction(action)) {
            button->setObjectName(ToQt(spec.key) + QStringLiteral("Button"));
            button->setFocusPolicy(Qt::NoFocus);  // New and Delete act on what has the focus now
            button->installEventFilter(this);
        }
        actions_[index] = action;
    }
}

void ToolBand::SetStates(const center::ToolStates& states) {
    for (std::size_t i = 0; i < actions_.size(); ++i)
        actions_[i]->setEnabled(states[i]);
    updateGeometry();
}

bool ToolBand::eventFilter(QObject* watched, QEvent* event) {
    const auto* button = qobject_cast<QToolButton*>(watched);
    if (event->type() == QEvent::ToolTip && button && button->defaultAction() &&
        !button->defaultAction()->shortcut().isEmpty()) {
        const QAction& action = *button->defaultAction();
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           QStringLiteral("%1 (%2)").arg(action.toolTip(), action.shortcut().toString()),
                           const_cast<QToolButton*>(button));
        return true;
    }
    return QToolBar::eventFilter(watched, event);
}

}  // namespace vicenter::ui
