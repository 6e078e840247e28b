// The icons as another reader of their files draws them.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>

#include <gtest/gtest.h>

#include "ui/look/drawing.h"
#include "ui/look/themed_icon.h"

namespace vicenter::ui {
namespace {

template <class Paint>
QImage Painted(int size, const Paint& paint) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter);
    return image;
}

// Points that differ by more than what rounding at an edge makes, of which a large arc has a few.
int Different(const QImage& one, const QImage& other) {
    constexpr int kRounding = 32;
    int points = 0;
    for (int y = 0; y < one.height(); ++y) {
        const auto* left = reinterpret_cast<const QRgb*>(one.constScanLine(y));
        const auto* right = reinterpret_cast<const QRgb*>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = left[x];
            const QRgb b = right[x];
            const int largest = std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                          std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))});
            if (largest > kRounding) ++points;
        }
    }
    return points;
}

TEST(Drawing, IsThatOfAnotherReaderForEveryIcon) {
    const QDir icons(QStringLiteral(":/vicenter/icons"));
    ASSERT_GE(icons.entryList().size(), 17);
    for (const QString& name : icons.entryList()) {
        for (const bool dark : {false, true}) {
            const QByteArray text = ThemedDrawing(icons.filePath(name), dark);
            const auto drawing = Drawing::Read(text);
            ASSERT_TRUE(drawing) << name.toStdString();
            QSvgRenderer renderer(text);
            ASSERT_TRUE(renderer.isValid()) << name.toStdString();
            renderer.setAspectRatioMode(Qt::KeepAspectRatio);
            for (const int size : {16, 18, 24, 30, 48, 64, 72, 256}) {
                const QImage ours = Painted(
                    size, [&](QPainter& painter) { drawing->Paint(painter, QRectF(0, 0, size, size)); });
                const QImage theirs = Painted(size, [&](QPainter& painter) { renderer.render(&painter); });
                EXPECT_LE(Different(ours, theirs), size * size / 1000)
                    << name.toStdString() << " " << size << " " << dark;
            }
        }
    }
}

}  // namespace
}  // namespace vicenter::ui
