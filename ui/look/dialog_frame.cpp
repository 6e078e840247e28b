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
    if (const QScreen* screen = dialog.screen()) {
        const QSize room = screen->availableSize() - QSize(kFrame, 2 * kFrame);
        size = size.boundedTo(room);
    }
    dialog.resize(size);
}

}  // namespace vicenter::ui
