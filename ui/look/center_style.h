#pragma once

// The look of the windows: calm and dense, Fusion underneath. Colours stand here alone, so that the grid, the
// tree and the dialogs agree. User-interface thread only.

#include <QColor>
#include <QProxyStyle>

namespace vicenter::ui {

namespace colors {
inline constexpr QColor kWindow{0xec, 0xf0, 0xf2};
inline constexpr QColor kPanel{0xdf, 0xe7, 0xea};
inline constexpr QColor kPaper{0xff, 0xff, 0xff};
inline constexpr QColor kPaperAlternate{0xf6, 0xf9, 0xfa};
inline constexpr QColor kInk{0x1f, 0x2c, 0x3a};
inline constexpr QColor kFaintInk{0x8a, 0x97, 0xa3};
inline constexpr QColor kLine{0xc9, 0xd2, 0xd9};
inline constexpr QColor kGridLine{0xdf, 0xe5, 0xe9};
inline constexpr QColor kHeader{0xe9, 0xee, 0xf1};
inline constexpr QColor kHeaderActive{0xd2, 0xe7, 0xe2};
inline constexpr QColor kAccent{0x13, 0x80, 0x6f};
inline constexpr QColor kSelection{0xdc, 0xee, 0xea};
inline constexpr QColor kSelectionElsewhere{0xcf, 0xe0, 0xdd};  // while the focus is in another window
inline constexpr QColor kFaulty{0xff, 0x00, 0x00};
inline constexpr QColor kRefusal{0xb3, 0x2a, 0x20};  // words that say why not
inline constexpr QColor kCaution{0x9a, 0x62, 0x0c};  // words about what does not keep from saving
inline constexpr QColor kBand{0xfb, 0xfc, 0xfd};
inline constexpr QColor kHint{0xff, 0xfd, 0xf2};  // tooltips
inline constexpr QColor kDisabledInk{0xa6, 0xb0, 0xb9};
inline constexpr QColor kButton{0xf7, 0xf9, 0xfa};
inline constexpr QColor kButtonHovered{0xe9, 0xf4, 0xf1};
inline constexpr QColor kButtonHoveredLine{0xc8, 0xdf, 0xda};
inline constexpr QColor kButtonPressed{0xd2, 0xe7, 0xe2};
inline constexpr QColor kButtonPressedLine{0x9c, 0xc9, 0xc0};
inline constexpr QColor kCellButton{0xf2, 0xf6, 0xf7};
inline constexpr QColor kCellButtonLine{0xb7, 0xc6, 0xcc};
inline constexpr QColor kBevel{0xf0, 0xf3, 0xf5};
inline constexpr QColor kBevelShadow{0xa3, 0xb0, 0xbb};
}  // namespace colors

class CenterStyle : public QProxyStyle {
    Q_OBJECT

  public:
    CenterStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;
};

}  // namespace vicenter::ui
