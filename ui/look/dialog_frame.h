#pragma once

// What every dialog of ours has alike: a title bar that only closes it, and a size that fits the screen it is
// on. User-interface thread only.

#include <QSize>

class QDialog;
class QWidget;

namespace vicenter::ui {

// A title bar that closes the dialog and does nothing else. Window managers give dialogs one that hides them
// as well unless they are told; that goes for message boxes and the choice of files, too. Before the dialog
// is shown.
void FrameTitleBar(QDialog& dialog);
// The title bar, and the size. wanted: at 96 dots an inch; empty: what the contents ask for. Before the
// dialog is shown.
void FrameDialog(QDialog& dialog, const QSize& wanted = {});
// What a window may take of the screen that it is on, its frame beside.
QSize RoomOnScreen(const QWidget& window);

}  // namespace vicenter::ui
