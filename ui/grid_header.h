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

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sizeHint() const override;
    // Names a column that is too narrow for its header.
    bool viewportEvent(QEvent* event) override;

  private:
    int activeSection_ = -1;
};

}  // namespace vicenter::ui
