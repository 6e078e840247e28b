#pragma once

// The look of the windows: calm and dense, Fusion underneath, in the colours of ui/look/theme.h.
// User-interface thread only.

#include <QProxyStyle>

#include "ui/look/theme.h"

namespace vicenter::ui {

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
