#include "ui/look/drawing.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace vicenter::ui {
namespace {

constexpr const char* kAround =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24" fill="none" stroke="#000000")"
    R"( stroke-width="2" stroke-linecap="round" stroke-linejoin="round">%1</svg>)";

std::optional<Drawing> Read(const char* shapes) {
    return Drawing::Read(QString(kAround).arg(shapes).toUtf8());
}

QImage Painted(const Drawing& drawing, const QSize& size) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawing.Paint(painter, image.rect());
    return image;
}

TEST(Drawing, IsPaintedAsLargeAsItFits) {
    const auto drawing =
        Read(R"(<path d="M12 4V20"/><rect x="2" y="4" width="6" height="16" rx="1" fill="#ff0000"/>)");
    ASSERT_TRUE(drawing);
    const QImage image = Painted(*drawing, {96, 48});  // twice as large, in the middle
    EXPECT_EQ(image.pixelColor(48, 24), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(34, 24), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(24, 24), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(60, 24), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(48, 3), QColor(Qt::white));
}

TEST(Drawing, ArcsTurnTheWayThatTheySay) {
    const auto clockwise = Read(R"(<path d="M4 12A8 8 0 0 1 20 12"/>)");
    const auto other = Read(R"(<path d="M4 12A8 8 0 0 0 20 12"/>)");
    ASSERT_TRUE(clockwise && other);
    EXPECT_EQ(Painted(*clockwise, {24, 24}).pixelColor(12, 4).lightness(), 0);
    EXPECT_EQ(Painted(*clockwise, {24, 24}).pixelColor(12, 19).lightness(), 255);
    EXPECT_EQ(Painted(*other, {24, 24}).pixelColor(12, 4).lightness(), 255);
    EXPECT_EQ(Painted(*other, {24, 24}).pixelColor(12, 19).lightness(), 0);
}

TEST(Drawing, IsRefusedWhereItIsMoreThanIsUnderstood) {
    EXPECT_TRUE(Read(R"(<circle cx="12" cy="12" r="3"/>)"));
    for (const char* shapes : {
             R"(<text x="1" y="2">A</text>)",
             R"(<g><circle cx="12" cy="12" r="3"/></g>)",
             R"(<circle cx="12" cy="12" r="3"><title>A</title></circle>)",
             R"(<circle cx="12" cy="12"/>)",
             R"(<circle cx="12" cy="12" r="3" opacity="0.5"/>)",
             R"(<circle cx="12" cy="12" r="3" fill="nosuchcolour"/>)",
             R"(<path d="M1 1C2 2 3 3 4 4"/>)",
             R"(<path d="M1 1l2 2"/>)",
             R"(<path d="M1 1L2"/>)",
             R"(<path d="M1 1L2 x"/>)",
             R"(<path d="M1 1A2 3 0 0 1 4 4"/>)",
             R"(<path d="M1 1A3 3 0 1 1 4 4"/>)",
             R"(<circle cx="12" cy="12" r="3")",
         })
        EXPECT_FALSE(Read(shapes)) << shapes;
    EXPECT_FALSE(Drawing::Read("no drawing"));
    EXPECT_FALSE(Drawing::Read("<svg viewBox='0 0 24'/>"));
    EXPECT_FALSE(Drawing::Read(""));
}

}  // namespace
}  // namespace vicenter::ui
