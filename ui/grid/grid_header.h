#pragma once

// The header row and the row-number header of the entry grid: flat, the active row and column tinted.
// Owned by the grid view. User-interface thread only.

#include <QHeaderView>
#include <functional>
#include <optional>
#include <utility>

namespace vicenter::ui {

class GridHeader : public QHeaderView {
    Q_OBJECT

  public:
    GridHeader(Qt::Orientation orientation, QWidget* parent);

    // The section that is shown as active; -1 for none.
    void SetActiveSection(int section);
    int ActiveSection() const { return activeSection_; }
    // A section as it looks, wherever it is wanted.
    void PaintSection(QPainter& painter, const QRect& rect, int section) const {
        paintSection(&painter, rect, section);
    }
    // The section whose width is changed by dragging there; -1 for none. In the viewport's coordinates, also
    // beyond its edges.
    int EdgeAt(int position) const;
    // Names a column that is too narrow for its header.
    void ShowToolTip(int section, const QPoint& globalAt);
    // A section is being pressed or dragged over: rows or columns are being selected.
    bool IsPressed() const { return pressed_; }
    // The mouse is elsewhere by now: a message may have swallowed its release.
    void EndPress() { pressed_ = false; }
    // Which sections are selected as they stand: pressed and pulled out of the header they are dragged away,
    // and a press alone leaves them.
    void SetPullable(std::function<bool(int section)> pullable) { pullable_ = std::move(pullable); }

  signals:
    void pulledOut();
    void released();  // by the mouse
    void menuRequested(const QPoint& globalAt);

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sizeHint() const override;
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    bool IsSelected(int section) const;
    // The press that was held back is one after all.
    void PressAfterAll();

    int activeSection_ = -1;
    bool pressed_ = false;
    std::function<bool(int section)> pullable_;
    std::optional<QPoint> held_;  // where selected sections were pressed, not yet a press
};

}  // namespace vicenter::ui
