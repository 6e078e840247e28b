#include "ui/look/themed_icon.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QStyle>
#include <QStyleOption>
#include <utility>

#include "ui/look/drawing.h"
#include "ui/look/theme.h"

namespace vicenter::ui {

namespace {

// What the drawings are made of, and what takes its place on dark ground.
constexpr std::pair<const char*, const char*> kDarkColors[] = {
    {"#3b4c60", "#b9c6d2"}, {"#eaf1f8", "#33414d"}, {"#f4f8fb", "#2b3640"}, {"#ffffff", "#1f272d"},
    {"#13806f", "#46bfa9"}, {"#d8efe8", "#1f4c44"}, {"#c2453a", "#ec8177"}, {"#fbeeec", "#4a2b29"},
    {"#b9761a", "#e0a44c"}, {"#a9782a", "#d6a65c"}, {"#fbf1dc", "#463a22"},
};

}  // namespace

QByteArray ThemedDrawing(const QString& file, bool dark) {
    QFile drawing(file);
    if (!drawing.open(QIODevice::ReadOnly)) return {};
    QByteArray text = drawing.readAll();
    // The program's own sign has its colours, as a letterhead has.
    if (!dark || file.endsWith(QLatin1String("/app.svg"))) return text;
    for (const auto& [light, replacement] : kDarkColors)
        text.replace(light, replacement);
    return text;
}

bool ThemedIconEngine::isNull() {
    return !QFile::exists(file_);
}

void ThemedIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) {
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    QPixmap image = pixmap(rect.size() * ratio, mode, state);
    image.setDevicePixelRatio(ratio);
    painter->drawPixmap(rect, image);
}

QPixmap ThemedIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) {
    const bool dark = Theme::Process().IsDark();
    const QString key =
        QStringLiteral("%1 %2x%3 %4").arg(file_).arg(size.width()).arg(size.height()).arg(dark);
    QPixmap image;
    if (!QPixmapCache::find(key, &image)) {
        image = QPixmap(size);
        image.fill(Qt::transparent);
        if (const auto drawing = Drawing::Read(ThemedDrawing(file_, dark))) {
            QPainter painter(&image);
            drawing->Paint(painter, image.rect());
        }
        QPixmapCache::insert(key, image);
    }
    if (mode == QIcon::Normal || !qApp) return image;
    QStyleOption option;
    option.palette = QApplication::palette();
    return QApplication::style()->generatedIconPixmap(mode, image, &option);
}

}  // namespace vicenter::ui
