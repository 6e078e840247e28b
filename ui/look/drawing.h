#pragma once

// A drawing, sharp at every size: as much of SVG as the icons are made of, which is rectangles, circles and
// paths of lines and circular arcs (M, H, V, L, A and Z, absolute), filled and drawn by a round pen, dashed
// where it says so. What is drawn otherwise is refused rather than left out. A value; painted on the
// user-interface thread.

#include <QBrush>
#include <QByteArray>
#include <QPainterPath>
#include <QPen>
#include <optional>
#include <vector>

class QPainter;
class QXmlStreamAttributes;

namespace vicenter::ui {

class Drawing {
  public:
    // None of a text that is no drawing, or one of more than is understood.
    static std::optional<Drawing> Read(const QByteArray& text);

    // As large as it fits into the target, in its middle.
    void Paint(QPainter& painter, const QRectF& target) const;

  private:
    struct Shape {
        QPainterPath path;
        QBrush fill = Qt::NoBrush;
        QPen pen = QPen(Qt::NoPen);
    };

    static std::optional<Shape> ReadShape(const QString& element, const QXmlStreamAttributes& own,
                                          const QXmlStreamAttributes& inherited);

    QRectF box_;
    std::vector<Shape> shapes_;
};

}  // namespace vicenter::ui
