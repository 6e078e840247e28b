#pragma once

// An icon from a drawing made for light ground, with its lines lightened and its surfaces darkened where the
// theme is dark. It follows the theme by itself. User-interface thread only.

#include <QIconEngine>
#include <QString>

namespace vicenter::ui {

class ThemedIconEngine : public QIconEngine {
  public:
    // The file of the drawing, of a resource.
    explicit ThemedIconEngine(QString file) : file_(std::move(file)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override { return new ThemedIconEngine(*this); }
    bool isNull() override;

  private:
    QString file_;
};

// The drawing of a file in the colours of a dark theme; as it is for a light one.
QByteArray ThemedDrawing(const QString& file, bool dark);

}  // namespace vicenter::ui
