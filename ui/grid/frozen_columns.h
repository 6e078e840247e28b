#pragma once

// The first columns of the entry grid, over its left edge while the grid is scrolled to the right: a picture
// of cells, nothing more. A click brings the grid back to its beginning and goes to the cell. Owned by the
// grid view. User-interface thread only.

#include <QWidget>

namespace vicenter::ui {

class GridView;

class FrozenColumns : public QWidget {
    Q_OBJECT

  public:
    explicit FrozenColumns(GridView& view);

    // The grid has been scrolled or laid out anew.
    void Follow();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void HandOver(QMouseEvent& event);

    GridView& view_;
};

}  // namespace vicenter::ui
