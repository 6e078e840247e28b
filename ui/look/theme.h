#pragma once

// The colours of the windows, all of them here: each with its value for light and for dark desktops, so that
// the grid, the tree and the dialogs agree. The desktop says which it is, now and when the user changes his
// mind. Whoever keeps a colour, in a palette of its own, sets it anew at Theme::changed(). User-interface
// thread only.

#include <QColor>
#include <QObject>
#include <QPalette>

class QApplication;
class QWidget;

namespace vicenter::ui {

// Letters lighter than their ground.
bool IsDarkPalette(const QPalette& palette);

class Theme : public QObject {
    Q_OBJECT

  public:
    // Of the process; never destroyed.
    static Theme& Process();

    bool IsDark() const { return dark_; }
    void SetDark(bool dark);
    // Takes the desktop's word, and goes on doing so.
    void FollowDesktop(QApplication& application);
    // Light or dark as the palette is that a desktop gives its applications.
    void TakeDesktop(const QPalette& palette) { SetDark(IsDarkPalette(palette)); }
    // Of all windows, in the colours of now.
    static QPalette Palette();

  signals:
    void changed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void AskDesktop();

    bool dark_ = false;
    bool asking_ = false;
};

class ThemeColor;
// The letters of that widget alone, now and when the theme changes.
void SetInk(QWidget& widget, const ThemeColor& color);

class ThemeColor {
  public:
    constexpr ThemeColor(QColor light, QColor dark) : light_(light), dark_(dark) {}
    QColor operator()() const { return Theme::Process().IsDark() ? dark_ : light_; }
    operator QColor() const { return (*this)(); }  // NOLINT(google-explicit-constructor): it is a colour
    // On paper that is light whatever the theme: printed, or coloured by the grid's caller.
    constexpr QColor OnLight() const { return light_; }

  private:
    QColor light_;
    QColor dark_;
};

namespace colors {
inline constexpr ThemeColor kWindow{{0xec, 0xf0, 0xf2}, {0x22, 0x27, 0x2c}};
inline constexpr ThemeColor kPanel{{0xdf, 0xe7, 0xea}, {0x2a, 0x30, 0x36}};
inline constexpr ThemeColor kPaper{{0xff, 0xff, 0xff}, {0x1b, 0x20, 0x25}};
inline constexpr ThemeColor kPaperAlternate{{0xf3, 0xf7, 0xf8}, {0x23, 0x2a, 0x30}};
inline constexpr ThemeColor kInk{{0x1f, 0x2c, 0x3a}, {0xdf, 0xe6, 0xec}};
inline constexpr ThemeColor kFaintInk{{0x5a, 0x67, 0x73}, {0xa3, 0xaf, 0xba}};
inline constexpr ThemeColor kLine{{0xc9, 0xd2, 0xd9}, {0x41, 0x4b, 0x54}};
inline constexpr ThemeColor kGridLine{{0xdf, 0xe5, 0xe9}, {0x31, 0x3a, 0x42}};
inline constexpr ThemeColor kNumberRule{{0x9f, 0xae, 0xb8}, {0x5d, 0x6b, 0x77}};  // between template numbers
inline constexpr ThemeColor kHeader{{0xe9, 0xee, 0xf1}, {0x2b, 0x32, 0x38}};
inline constexpr ThemeColor kHeaderActive{{0xd2, 0xe7, 0xe2}, {0x23, 0x44, 0x3f}};
inline constexpr ThemeColor kAccent{{0x13, 0x80, 0x6f}, {0x3f, 0xb8, 0xa2}};
inline constexpr ThemeColor kOnAccent{{0xff, 0xff, 0xff}, {0x0d, 0x15, 0x13}};   // letters on it
inline constexpr ThemeColor kAccentInk{{0x0f, 0x6e, 0x5f}, {0x5f, 0xcd, 0xb8}};  // letters of its colour
inline constexpr ThemeColor kSelection{{0xdc, 0xee, 0xea}, {0x23, 0x46, 0x3f}};
inline constexpr ThemeColor kSelectionElsewhere{{0xcf, 0xe0, 0xdd},
                                                {0x2b, 0x43, 0x3f}};  // while the focus is in another window
// On light paper the ledger's own red, as it is; on dark paper as light a red as letters need.
inline constexpr ThemeColor kFaulty{{0xff, 0x00, 0x00}, {0xff, 0x8f, 0x86}};
inline constexpr ThemeColor kFaultyPaper{{0xfd, 0xec, 0xea}, {0x3d, 0x24, 0x26}};
inline constexpr ThemeColor kRefusal{{0xb3, 0x2a, 0x20}, {0xf4, 0x97, 0x8d}};  // words that say why not
inline constexpr ThemeColor kCaution{{0x85, 0x54, 0x08},
                                     {0xe0, 0xae, 0x5b}};  // words about what does not keep from saving
inline constexpr ThemeColor kDone{{0x0f, 0x6e, 0x5f}, {0x5f, 0xcd, 0xb8}};  // words about what has been done
inline constexpr ThemeColor kBand{{0xfb, 0xfc, 0xfd}, {0x26, 0x2c, 0x32}};
inline constexpr ThemeColor kHint{{0xff, 0xfd, 0xf2}, {0x33, 0x31, 0x28}};  // tooltips
inline constexpr ThemeColor kDisabledInk{{0x8b, 0x96, 0xa0}, {0x7f, 0x8a, 0x94}};
inline constexpr ThemeColor kButton{{0xf7, 0xf9, 0xfa}, {0x2f, 0x36, 0x3d}};
inline constexpr ThemeColor kButtonHovered{{0xe9, 0xf4, 0xf1}, {0x2f, 0x46, 0x41}};
inline constexpr ThemeColor kButtonHoveredLine{{0xc8, 0xdf, 0xda}, {0x3f, 0x62, 0x5b}};
inline constexpr ThemeColor kButtonPressed{{0xd2, 0xe7, 0xe2}, {0x28, 0x50, 0x4a}};
inline constexpr ThemeColor kButtonPressedLine{{0x9c, 0xc9, 0xc0}, {0x4f, 0x85, 0x7b}};
inline constexpr ThemeColor kCellButton{{0xf2, 0xf6, 0xf7}, {0x35, 0x3d, 0x45}};
inline constexpr ThemeColor kCellButtonLine{{0xb7, 0xc6, 0xcc}, {0x55, 0x61, 0x6b}};
inline constexpr ThemeColor kBevel{{0xf0, 0xf3, 0xf5}, {0x35, 0x3d, 0x44}};
inline constexpr ThemeColor kBevelShadow{{0xa3, 0xb0, 0xbb}, {0x12, 0x16, 0x1a}};
inline constexpr ThemeColor kScrollGroove{{0xf1, 0xf4, 0xf6}, {0x26, 0x2c, 0x31}};
inline constexpr ThemeColor kScrollThumb{{0xc2, 0xcc, 0xd3}, {0x4a, 0x55, 0x5e}};
inline constexpr ThemeColor kScrollHovered{{0xa6, 0xb3, 0xbc}, {0x5f, 0x6c, 0x76}};
inline constexpr ThemeColor kScrollHeld{{0x8b, 0x9a, 0xa5}, {0x75, 0x83, 0x8e}};
}  // namespace colors

}  // namespace vicenter::ui
