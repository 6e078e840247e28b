#include "ui/grid/figures.h"

#include <algorithm>

namespace vicenter::ui {

namespace {

constexpr char16_t kDigits[] = u"0123456789";

bool IsFigure(QChar c) {
    return c >= u'0' && c <= u'9';
}

struct Figures {
    int widest = 0;
    bool alike = true;
};

Figures FiguresOf(const QFontMetrics& metrics) {
    Figures figures;
    for (const char16_t digit : std::u16string_view(kDigits)) {
        const int width = metrics.horizontalAdvance(QChar(digit));
        figures.alike = figures.alike && (digit == u'0' || width == figures.widest);
        figures.widest = std::max(figures.widest, width);
    }
    return figures;
}

int RoomOf(QChar c, const QFontMetrics& metrics, const Figures& figures) {
    return IsFigure(c) ? figures.widest : metrics.horizontalAdvance(c);
}

}  // namespace

int FiguresWidth(const QFontMetrics& metrics, const QString& text) {
    const Figures figures = FiguresOf(metrics);
    int width = 0;
    for (const QChar c : text)
        width += RoomOf(c, metrics, figures);
    return width;
}

void DrawFigures(QPainter& painter, const QRect& rect, Qt::Alignment side, const QString& text) {
    const QFontMetrics metrics = painter.fontMetrics();
    const Figures figures = FiguresOf(metrics);
    constexpr int kOneLine = Qt::AlignVCenter | Qt::TextSingleLine;
    const int width = FiguresWidth(metrics, text);
    // A pair of digits may be kerned: the text as a whole is as wide as its characters, or it is not drawn
    // so.
    if (figures.alike && metrics.horizontalAdvance(text) == width) {
        painter.drawText(rect, kOneLine | static_cast<int>(side), text);
        return;
    }
    int left = side & Qt::AlignRight ? rect.right() + 1 - width : rect.left();
    for (const QChar c : text) {
        const int room = RoomOf(c, metrics, figures);
        painter.drawText(QRect(left, rect.top(), room, rect.height()), kOneLine | Qt::AlignHCenter, c);
        left += room;
    }
}

}  // namespace vicenter::ui
