#include "ui/center_style.h"

#include <QPainter>
#include <QStyleOption>

namespace vicenter::ui {

namespace {

constexpr int kToolIconSize = 24;
constexpr double kCornerRadius = 4;

// The flat tool button: nothing at rest, a tinted plate under the mouse.
void DrawToolPlate(const QStyleOption& option, QPainter& painter) {
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool pressed = option.state & (QStyle::State_Sunken | QStyle::State_On);
    const bool hovered = option.state & QStyle::State_MouseOver;
    if (!enabled || (!pressed && !hovered)) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pressed ? QColor(0x9c, 0xc9, 0xc0) : QColor(0xc8, 0xdf, 0xda));
    painter.setBrush(pressed ? QColor(0xd2, 0xe7, 0xe2) : QColor(0xe9, 0xf4, 0xf1));
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
    painter.restore();
}

}  // namespace

CenterStyle::CenterStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void CenterStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const {
    switch (element) {
        case PE_PanelButtonTool:
            DrawToolPlate(*option, *painter);
            return;
        case PE_PanelToolBar:
            return;
        default:
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void CenterStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == CE_ToolBar) {
        painter->fillRect(option->rect, QColor(0xfb, 0xfc, 0xfd));
        painter->setPen(colors::kLine);
        painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
        return;
    }
    if (element == CE_HeaderSection || element == CE_HeaderEmptyArea) {
        painter->fillRect(option->rect, colors::kHeader);
        painter->setPen(colors::kLine);
        painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
        painter->drawLine(option->rect.topRight(), option->rect.bottomRight());
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

int CenterStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
        case PM_ToolBarIconSize:
            return kToolIconSize;
        case PM_ToolBarItemSpacing:
            return 1;
        case PM_ToolBarItemMargin:
            return 3;
        case PM_ToolBarFrameWidth:
            return 0;
        case PM_ScrollBarExtent:
            return 14;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int CenterStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returnData) const {
    // A list in a cell opens below it, as in a spreadsheet, not over it.
    if (hint == SH_ComboBox_Popup) return 0;
    if (hint == SH_Table_GridLineColor) return static_cast<int>(colors::kGridLine.rgb());
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

}  // namespace vicenter::ui
