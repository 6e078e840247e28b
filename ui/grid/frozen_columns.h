#pragma once

// The first columns of the entry grid, over its left edge while the grid is scrolled to the right: a picture
// of cells. What the mouse does there it does to the grid below, which knows where those cells are seen and
// stays where it has been scrolled to; an editor of such a cell shows through. Edges of the header are
// dragged here. Owned by the grid view. User-interface thread only.

#include <QEvent>
#include <QWidget>
#include <optional>

namespace vicenter::ui {

class GridView;

class FrozenColumns : public QWidget {
    Q_OBJECT

  public:
    explicit FrozenColumns(GridView& view);

    // The grid has been scrolled or laid out anew.
    void Follow();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void HandOn(QMouseEvent& event);
    // The section whose edge is there; -1 for none.
    int EdgeAt(const QPoint& at) const;

    struct Drag {
        int section = 0;
        int from = 0;   // where the mouse took hold of its edge
        int width = 0;  // of the section then
    };
    GridView& view_;
    std::optional<Drag> dragged_;
    bool onHeader_ = false;  // of what has been pressed
};

}  // namespace vicenter::ui
