#include "ui/window/tool_band.h"

#include <QApplication>
#include <QKeyEvent>
#include <QToolButton>

#include "ui/look/qt_text.h"
#include "ui/run/application.h"
#include "ui/run/keyboard_home.h"

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
    setAccessibleName(QStringLiteral("工具栏"));
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
            button->setAccessibleName(ToQt(spec.caption));
            // Icon and word say the same twice; what the command is about is in its tooltip.
            button->setAccessibleDescription(spec.tooltip == spec.caption ? QString() : ToQt(spec.tooltip));
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

void ToolBand::TakeKeyboard() {
    QWidget* focus = QApplication::focusWidget();
    if (focus && isAncestorOf(focus)) return GiveKeyboardBack();
    before_ = LastingHolder(focus);
    MoveFocus(-1, 1);
}

// To the next tool that can be clicked, round the ends.
void ToolBand::MoveFocus(int from, int step) {
    const int count = static_cast<int>(actions().size());
    for (int i = 1; i <= count; ++i) {
        QWidget* button = widgetForAction(actions()[((from + i * step) % count + count) % count]);
        if (!qobject_cast<QToolButton*>(button) || !button->isEnabled() || !button->isVisible()) continue;
        button->setFocus(Qt::ShortcutFocusReason);
        return;
    }
}

void ToolBand::GiveKeyboardBack() {
    if (!GiveKeyboardTo(before_)) emit keyboardLeft();
}

bool ToolBand::HandleKey(QWidget& button, int key) {
    int at = 0;
    while (at < actions().size() && widgetForAction(actions()[at]) != &button)
        ++at;
    switch (key) {
        case Qt::Key_Right:
        case Qt::Key_Tab:
            MoveFocus(at, 1);
            return true;
        case Qt::Key_Left:
        case Qt::Key_Backtab:
            MoveFocus(at, -1);
            return true;
        case Qt::Key_Home:
            MoveFocus(-1, 1);
            return true;
        case Qt::Key_End:
            MoveFocus(static_cast<int>(actions().size()), -1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space: {
            const QPointer<QAction> action = actions().value(at);
            GiveKeyboardBack();
            if (action) action->trigger();
            return true;
        }
        case Qt::Key_Escape:
            GiveKeyboardBack();
            return true;
        default:
            return false;
    }
}

bool ToolBand::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() &&
        HandleKey(static_cast<QWidget&>(*watched), static_cast<QKeyEvent*>(event)->key())) {
        return true;
    }
    return QToolBar::eventFilter(watched, event);
}

}  // namespace vicenter::ui
