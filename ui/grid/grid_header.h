#pragma once

// The header row and the row-number header of the entry grid: flat, the active row and column tinted.
// Owned by the grid view. User-interface thread only.

#include <QHeaderView>

namespace vicenter::ui {

class GridHeader : public QHeaderView {
    Q_OBJECT

  public:
    GridHeader(Qt::Orientation orientation, QWidget* parent);

    // The section that is shown as active; -1 for none.
    void SetActiveSection(int section);
    int ActiveSection() const { return activeSection_; }
    // A section is being pressed or dragged over: rows or columns are being selected.
    bool IsPressed() const { return pressed_; }
    // The mouse is elsewhere by now: a message may have swallowed its release.
    void EndPress() { pressed_ = false; }

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sizeHint() const override;
    // Names a column that is too narrow for its header.
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    int activeSection_ = -1;
    bool pressed_ = false;
};

}  // namespace vicenter::ui
