#pragma once

// What every dialog of ours has alike: a title bar that only closes it, a size that fits the screen it is on,
// and Tab going by what is seen. User-interface thread only.

#include <QSize>

class QDialog;
class QWidget;

namespace vicenter::ui {

// A title bar that closes the dialog and does nothing else. Window managers give dialogs one that hides them
// as well unless they are told; that goes for message boxes and the choice of files, too. Before the dialog
// is shown.
void FrameTitleBar(QDialog& dialog);
// The title bar, the size, and the order of Tab, by the layout as it is then. wanted: at 96 dots an inch;
// empty: what the contents ask for. Before the dialog is shown.
void FrameDialog(QDialog& dialog, const QSize& wanted = {});
// What a window may take of the screen that it is on, its frame beside.
QSize RoomOnScreen(const QWidget& window);

}  // namespace vicenter::ui
