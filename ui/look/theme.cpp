#include "ui/look/theme.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace vicenter::ui {

Theme& Theme::Process() {
    static auto* theme = new Theme;
    return *theme;
}

void SetInk(QWidget& widget, const ThemeColor& color) {
    const auto apply = [&widget, color] {
        QPalette own = widget.palette();
        own.setColor(QPalette::WindowText, color);
        widget.setPalette(own);
    };
    apply();
    QObject::connect(&Theme::Process(), &Theme::changed, &widget, apply);
}

bool IsDarkPalette(const QPalette& palette) {
    return palette.color(QPalette::WindowText).lightnessF() > palette.color(QPalette::Window).lightnessF();
}

QPalette Theme::Palette() {
    QPalette palette;
    palette.setColor(QPalette::Window, colors::kWindow);
    palette.setColor(QPalette::WindowText, colors::kInk);
    palette.setColor(QPalette::Base, colors::kPaper);
    palette.setColor(QPalette::AlternateBase, colors::kPaperAlternate);
    palette.setColor(QPalette::Text, colors::kInk);
    palette.setColor(QPalette::PlaceholderText, colors::kFaintInk);
    palette.setColor(QPalette::Button, colors::kButton);
    palette.setColor(QPalette::ButtonText, colors::kInk);
    palette.setColor(QPalette::ToolTipBase, colors::kHint);
    palette.setColor(QPalette::ToolTipText, colors::kInk);
    palette.setColor(QPalette::Light, colors::kPaper);
    palette.setColor(QPalette::Midlight, colors::kBevel);
    palette.setColor(QPalette::Mid, colors::kLine);
    palette.setColor(QPalette::Dark, colors::kBevelShadow);
    palette.setColor(QPalette::Link, colors::kAccentInk);
    palette.setColor(QPalette::Highlight, colors::kAccent);
    palette.setColor(QPalette::HighlightedText, colors::kOnAccent);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, colors::kSelectionElsewhere);
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, colors::kInk);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors::kDisabledInk);
    }
    return palette;
}

void Theme::SetDark(bool dark) {
    if (dark == dark_) return;
    dark_ = dark;
    QApplication::setPalette(Palette());
    emit changed();
    for (QWidget* widget : QApplication::allWidgets())
        widget->update();
}

void Theme::FollowDesktop(QApplication& application) {
    application.installEventFilter(this);
    AskDesktop();
}

// What the desktop's palette is shows while the application has none of its own.
void Theme::AskDesktop() {
    asking_ = true;
    QApplication::setPalette(QPalette());
    const QPalette desktop = QApplication::palette();
    QApplication::setPalette(Palette());
    asking_ = false;
    TakeDesktop(desktop);
}

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    // Windows are told one by one, in the middle of the desktop's own change.
    if (event->type() == QEvent::ThemeChange && !asking_ && watched->isWindowType())
        QMetaObject::invokeMethod(this, &Theme::AskDesktop, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

}  // namespace vicenter::ui
