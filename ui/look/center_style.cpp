#include "ui/look/center_style.h"

#include <QPainter>
#include <QStyleOption>
#include <QToolButton>
#include <algorithm>

namespace vicenter::ui {

namespace {

constexpr int kToolIconSize = 24;
constexpr double kCornerRadius = 4;
constexpr int kShortestThumb = 28;

// The flat tool button: nothing at rest, a tinted plate under the mouse.
void DrawToolPlate(const QStyleOption& option, QPainter& painter) {
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool pressed = option.state & (QStyle::State_Sunken | QStyle::State_On);
    const bool hovered = option.state & QStyle::State_MouseOver;
    // On the command bar a tool is flat until the mouse is over it; a button elsewhere has its plate always.
    const bool flat = option.state & QStyle::State_AutoRaise;
    if (flat && (!enabled || (!pressed && !hovered))) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool rest = !pressed && !hovered;
    painter.setPen(pressed ? colors::kButtonPressedLine : rest ? colors::kLine : colors::kButtonHoveredLine);
    painter.setBrush((pressed ? colors::kButtonPressed : rest ? colors::kButton : colors::kButtonHovered)());
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
    painter.restore();
}

void DrawToolFocus(const QStyleOption& option, QPainter& painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colors::kAccent(), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
    painter.restore();
}

// The style below takes the edges of panels, menus, fields and ticks from a darker shade of the window, which
// on a dark one nobody sees. It is told of a window so light that what it makes of it is the colour of lines.
constexpr int kEdgeShade = 140;  // per cent, the style's own

template <class Option>
Option WithEdges(const Option& option) {
    Option copy(option);
    copy.palette.setColor(QPalette::Window, colors::kLine().lighter(kEdgeShade));
    return copy;
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
        case PE_PanelMenu:
            if (!Theme::Process().IsDark()) break;
            painter->fillRect(option->rect, colors::kBand);
            painter->setPen(colors::kLine);
            painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
            return;
        case PE_FrameFocusRect:
            // A tool that the keyboard has reached.
            if (qobject_cast<const QToolButton*>(widget)) {
                DrawToolFocus(*option, *painter);
                return;
            }
            QProxyStyle::drawPrimitive(element, option, painter, widget);
            return;
        case PE_Frame:
        case PE_FrameLineEdit:
        case PE_IndicatorCheckBox:
        case PE_IndicatorRadioButton:
            if (Theme::Process().IsDark()) {
                if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option)) {
                    const QStyleOptionFrame edged = WithEdges(*frame);
                    QProxyStyle::drawPrimitive(element, &edged, painter, widget);
                    return;
                }
                if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
                    const QStyleOptionButton edged = WithEdges(*button);
                    QProxyStyle::drawPrimitive(element, &edged, painter, widget);
                    return;
                }
            }
            QProxyStyle::drawPrimitive(element, option, painter, widget);
            return;
        default:
            break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void CenterStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    if (element == CE_ToolBar) {
        painter->fillRect(option->rect, colors::kBand);
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

void CenterStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                     QPainter* painter, const QWidget* widget) const {
    const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    if (control == CC_SpinBox && spin && Theme::Process().IsDark()) {
        const QStyleOptionSpinBox edged = WithEdges(*spin);
        QProxyStyle::drawComplexControl(control, &edged, painter, widget);
        return;
    }
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->fillRect(bar->rect, colors::kScrollGroove);
    if (bar->minimum == bar->maximum) return;
    const bool held = (bar->state & State_Sunken) && (bar->activeSubControls & SC_ScrollBarSlider);
    const bool hovered = (bar->state & State_MouseOver) && (bar->activeSubControls & SC_ScrollBarSlider);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush((held      ? colors::kScrollHeld
                       : hovered ? colors::kScrollHovered
                                 : colors::kScrollThumb)());
    const QRectF thumb =
        QRectF(subControlRect(control, option, SC_ScrollBarSlider, widget)).adjusted(3, 3, -3, -3);
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    painter->drawRoundedRect(thumb, radius, radius);
    painter->restore();
}

QRect CenterStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                  const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control != CC_ScrollBar || !bar) return QProxyStyle::subControlRect(control, option, part, widget);
    // A thumb in a groove; no arrow buttons.
    const bool upright = bar->orientation == Qt::Vertical;
    const int length = upright ? bar->rect.height() : bar->rect.width();
    const double range = static_cast<double>(bar->maximum) - bar->minimum;
    const int thumb = range <= 0
                          ? length
                          : std::clamp(static_cast<int>(length * bar->pageStep / (range + bar->pageStep)),
                                       std::min(kShortestThumb, length), length);
    const int at = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - thumb,
                                           bar->upsideDown);
    const auto span = [&](int from, int size) {
        const QRect rect = upright
                               ? QRect(bar->rect.left(), bar->rect.top() + from, bar->rect.width(), size)
                               : QRect(bar->rect.left() + from, bar->rect.top(), size, bar->rect.height());
        return visualRect(bar->direction, bar->rect, rect);
    };
    switch (part) {
        case SC_ScrollBarGroove:
            return bar->rect;
        case SC_ScrollBarSlider:
            return span(at, thumb);
        case SC_ScrollBarSubPage:
            return span(0, at);
        case SC_ScrollBarAddPage:
            return span(at + thumb, length - at - thumb);
        default:
            return {};
    }
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
    if (hint == SH_Table_GridLineColor) return static_cast<int>(colors::kGridLine().rgb());
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

}  // namespace vicenter::ui
