#include "ui/look/drawing.h"

#include <QColor>
#include <QPainter>
#include <QXmlStreamReader>
#include <algorithm>
#include <cmath>

namespace vicenter::ui {

namespace {

// Numbers apart by blanks or commas; none where something else stands.
std::optional<QList<qreal>> Numbers(QStringView text) {
    QList<qreal> numbers;
    QString apart = text.toString();
    apart.replace(u',', u' ');
    for (const QString& word : apart.split(u' ', Qt::SkipEmptyParts)) {
        bool good = false;
        numbers << word.toDouble(&good);
        if (!good) return std::nullopt;
    }
    return numbers;
}

// An arc of a circle, the shorter one of the two that lead there.
void ArcTo(QPainterPath& path, qreal radius, bool clockwise, QPointF end) {
    const QPointF start = path.currentPosition();
    const QPointF half = (end - start) / 2;
    const qreal distance = std::hypot(half.x(), half.y());
    if (distance == 0) return;
    radius = std::max(radius, distance);  // too small a circle is made large enough
    const qreal toCenter = std::sqrt(radius * radius - distance * distance) / distance;
    const QPointF aside(-half.y(), half.x());
    const QPointF center = start + half + (clockwise ? aside : -aside) * toCenter;
    const auto angle = [&](QPointF point) {
        return std::atan2(point.y() - center.y(), point.x() - center.x());
    };
    const qreal turn = 2 * std::acos(-1.0);
    qreal sweep = angle(end) - angle(start);
    if (clockwise && sweep < 0) sweep += turn;
    if (!clockwise && sweep > 0) sweep -= turn;
    // Curves of a quarter each at most, which none can tell from the arc.
    const int pieces = static_cast<int>(std::ceil(std::abs(sweep) / (turn / 4) - 1e-9));
    const qreal step = sweep / pieces;
    const qreal pull = 4.0 / 3 * std::tan(step / 4);
    QPointF from = start - center;
    for (int piece = 1; piece <= pieces; ++piece) {
        const qreal at = angle(start) + piece * step;
        const QPointF to = piece == pieces ? end - center : QPointF(std::cos(at), std::sin(at)) * radius;
        path.cubicTo(center + from + QPointF(-from.y(), from.x()) * pull,
                     center + to - QPointF(-to.y(), to.x()) * pull, center + to);
        from = to;
    }
}

// One command of a path with its numbers.
bool Draw(QPainterPath& path, QChar command, const QList<qreal>& numbers) {
    const auto takes = [&](qsizetype count) { return numbers.size() == count; };
    const QPointF at = path.currentPosition();
    switch (command.unicode()) {
        case u'M':
            if (!takes(2)) return false;
            path.moveTo(numbers[0], numbers[1]);
            return true;
        case u'L':
            if (!takes(2)) return false;
            path.lineTo(numbers[0], numbers[1]);
            return true;
        case u'H':
            if (!takes(1)) return false;
            path.lineTo(numbers[0], at.y());
            return true;
        case u'V':
            if (!takes(1)) return false;
            path.lineTo(at.x(), numbers[0]);
            return true;
        case u'A':  // two radii, an angle, whether the longer arc, whether clockwise, the end
            if (!takes(7) || numbers[0] != numbers[1] || numbers[3] != 0) return false;
            ArcTo(path, numbers[0], numbers[4] != 0, {numbers[5], numbers[6]});
            return true;
        case u'Z':
            path.closeSubpath();
            return takes(0);
        default:
            return false;
    }
}

std::optional<QPainterPath> ReadPath(const QString& text) {
    QPainterPath path;
    for (qsizetype at = 0; at < text.size();) {
        const QChar command = text[at++];
        const auto isLetter = [](QChar character) { return character.isLetter(); };
        const auto end = std::find_if(text.begin() + at, text.end(), isLetter) - text.begin();
        const auto numbers = Numbers(QStringView(text).mid(at, end - at));
        if (!numbers || !Draw(path, command, *numbers)) return std::nullopt;
        at = end;
    }
    path.setFillRule(Qt::WindingFill);
    return path;
}

// What an element says of itself, or else what the drawing says for all.
class Attributes {
  public:
    Attributes(const QXmlStreamAttributes& own, const QXmlStreamAttributes& inherited)
        : own_(own), inherited_(inherited) {}

    QString Text(const char* name) const {
        const QLatin1String key(name);
        return (own_.hasAttribute(key) ? own_ : inherited_).value(key).toString();
    }
    // Not a number where it is missing.
    qreal Number(const char* name) const {
        bool good = false;
        const qreal number = own_.value(QLatin1String(name)).toDouble(&good);
        return good ? number : std::nan("");
    }
    bool OwnAreAmong(std::initializer_list<const char*> names) const {
        return std::all_of(own_.begin(), own_.end(), [&](const QXmlStreamAttribute& attribute) {
            return std::any_of(names.begin(), names.end(),
                               [&](const char* name) { return attribute.name() == QLatin1String(name); });
        });
    }

  private:
    const QXmlStreamAttributes& own_;
    const QXmlStreamAttributes& inherited_;
};

std::optional<QPainterPath> Outline(const QString& element, const Attributes& attributes) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    if (element == QLatin1String("path")) return ReadPath(attributes.Text("d"));
    if (element == QLatin1String("circle")) {
        const qreal radius = attributes.Number("r");
        path.addEllipse(QPointF(attributes.Number("cx"), attributes.Number("cy")), radius, radius);
    } else if (element == QLatin1String("rect")) {
        const qreal corner = attributes.Number("rx");
        path.addRoundedRect(QRectF(attributes.Number("x"), attributes.Number("y"), attributes.Number("width"),
                                   attributes.Number("height")),
                            corner, corner);
    }
    // A number that is missing leaves nothing.
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

// "none" is no colour, and no fault.
bool ReadColor(const QString& text, QColor& color) {
    if (text == QLatin1String("none") || text.isEmpty()) return true;
    color = QColor(text);
    return color.isValid();
}

}  // namespace

std::optional<Drawing::Shape> Drawing::ReadShape(const QString& element, const QXmlStreamAttributes& own,
                                                 const QXmlStreamAttributes& inherited) {
    const Attributes attributes(own, inherited);
    if (!attributes.OwnAreAmong({"x", "y", "width", "height", "rx", "cx", "cy", "r", "d", "fill", "stroke",
                                 "stroke-width", "stroke-dasharray"}))
        return std::nullopt;
    const auto path = Outline(element, attributes);
    QColor fill;
    QColor stroke;
    if (!path || !ReadColor(attributes.Text("fill"), fill) || !ReadColor(attributes.Text("stroke"), stroke))
        return std::nullopt;
    Shape shape{*path};
    if (fill.isValid()) shape.fill = fill;
    if (!stroke.isValid()) return shape;
    bool good = false;
    const qreal width = attributes.Text("stroke-width").toDouble(&good);
    const auto dashes = Numbers(attributes.Text("stroke-dasharray"));
    if (!good || !dashes) return std::nullopt;
    shape.pen = QPen(stroke, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    if (!dashes->isEmpty()) {
        QList<qreal> inWidths;
        for (const qreal dash : *dashes)
            inWidths << dash / width;
        shape.pen.setDashPattern(inWidths);
    }
    return shape;
}

std::optional<Drawing> Drawing::Read(const QByteArray& text) {
    QXmlStreamReader reader(text);
    if (!reader.readNextStartElement() || reader.name() != QLatin1String("svg")) return std::nullopt;
    const QXmlStreamAttributes ofAll = reader.attributes();
    const auto box = Numbers(ofAll.value(QLatin1String("viewBox")));
    const bool round = ofAll.value(QLatin1String("stroke-linecap")) == QLatin1String("round") &&
                       ofAll.value(QLatin1String("stroke-linejoin")) == QLatin1String("round");
    if (!box || box->size() != 4 || !round) return std::nullopt;
    Drawing drawing;
    drawing.box_ = QRectF((*box)[0], (*box)[1], (*box)[2], (*box)[3]);
    while (reader.readNextStartElement()) {
        auto shape = ReadShape(reader.name().toString(), reader.attributes(), ofAll);
        if (!shape || reader.readNextStartElement()) return std::nullopt;
        drawing.shapes_.push_back(std::move(*shape));
    }
    if (reader.hasError() || drawing.box_.isEmpty()) return std::nullopt;
    return drawing;
}

void Drawing::Paint(QPainter& painter, const QRectF& target) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal scale = std::min(target.width() / box_.width(), target.height() / box_.height());
    painter.translate(target.center());
    painter.scale(scale, scale);
    painter.translate(-box_.center());
    for (const Shape& shape : shapes_) {
        painter.setBrush(shape.fill);
        painter.setPen(shape.pen);
        painter.drawPath(shape.path);
    }
    painter.restore();
}

}  // namespace vicenter::ui
