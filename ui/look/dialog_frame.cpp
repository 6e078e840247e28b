#include "ui/look/dialog_frame.h"

#include <QDialog>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>

#include "ui/look/twips.h"

namespace vicenter::ui {

namespace {

constexpr int kFrame = 40;  // pixels that a title bar and a panel take

}  // namespace

void FrameTitleBar(QDialog& dialog) {
    dialog.setWindowFlags(
        (dialog.windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
         Qt::WindowSystemMenuHint) &
        ~(Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowContextHelpButtonHint));
}

void FrameDialog(QDialog& dialog, const QSize& wanted) {
    FrameTitleBar(dialog);
    QSize size = wanted.isEmpty() ? dialog.sizeHint()
                                  : QSize(TwipsToPixels(wanted.width() * 15.0, dialog),
                                          TwipsToPixels(wanted.height() * 15.0, dialog));
    dialog.resize(size.boundedTo(RoomOnScreen(dialog)));
}

QSize RoomOnScreen(const QWidget& window) {
    const QScreen* screen = window.screen();
    return screen == nullptr ? QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)
                             : screen->availableSize() - QSize(kFrame, 2 * kFrame);
}

}  // namespace vicenter::ui
