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
inline constexpr QColor kFaulty{0xff, 0x00, 0x00};
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
