// Where the parts of the main window go, and what lies over the grid's cells. The rest of VICenterWindow is
// in vicenter_window.cpp.

#include <algorithm>
#include <cmath>

#include "ui/look/qt_text.h"
#include "ui/look/twips.h"
#include "ui/run/application.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

namespace {

constexpr int kTreeWidth = 3150;  // twips; designed, never changes
constexpr int kNameTop = 40;      // twips
constexpr int kNameLeft = 20;
constexpr int kProgressWidth = 4800;
constexpr int kProgressHeight = 1000;
constexpr int kNamePadding = 9;  // pixels around the name's line
constexpr int kFilterGap = 3;    // pixels between the filter and the tree
// Of a font's em: what one line of a cell takes up. The line heights that Chinese fonts name for running text
// would leave a third of every row empty.
constexpr double kLineOfEm = 1.2;

center::Size TwipsOf(const QSize& size, const QPaintDevice& device) {
    return {static_cast<int>(PixelsToTwips(size.width(), device)),
            static_cast<int>(PixelsToTwips(size.height(), device))};
}

QRect PixelsOf(const center::Rectangle& r, const QPaintDevice& device) {
    // Edges, not widths, are rounded, so that neighbours stay aligned.
    const int left = TwipsToPixels(r.left, device);
    const int top = TwipsToPixels(r.top, device);
    return QRect(left, top, TwipsToPixels(r.left + r.width, device) - left,
                 TwipsToPixels(r.top + r.height, device) - top);
}

}  // namespace

void VICenterWindow::LayOutFrame() {
    if (!centralWidget()) return;
    const center::FrameLayout layout =
        center::LayoutFrame(TwipsOf(centralWidget()->size(), *this), kTreeWidth);
    QRect tree = PixelsOf(layout.tree, *this);
    if (!filter_->isHidden()) {
        const int height = filter_->fontMetrics().height() + kNamePadding;
        filter_->setGeometry(tree.left(), tree.top(), tree.width(), height);
        tree.setTop(std::min(tree.top() + height + kFilterGap, tree.bottom()));
    }
    tree_->setGeometry(tree);
    panel_->setGeometry(PixelsOf(layout.gridPanel, *this));
    LayOutPanel();
}

void VICenterWindow::LayOutPanel() {
    const int left = TwipsToPixels(kNameLeft, *this);
    const int top = TwipsToPixels(kNameTop, *this);
    const int height = name_->fontMetrics().height() + kNamePadding;
    name_->setGeometry(left, top, std::max(0, panel_->width() - 2 * left), height);
    if (!grid_) return;
    const center::Rectangle grid = center::LayoutGrid(TwipsOf(panel_->size(), *this), kNameTop,
                                                      static_cast<int>(PixelsToTwips(height, *this)));
    grid_->setGeometry(PixelsOf(grid, *this));
    PlaceOverlays();
}

QRect VICenterWindow::CellOverlayRect(const center::CellAddress& cell) const {
    const QModelIndex index = model_->IndexOf(cell);
    if (!index.isValid() || grid_->isColumnHidden(index.column())) return {};
    const QRect rect = grid_->CellRectIn(cell, *centralWidget());
    QRect port(grid_->viewport()->mapTo(centralWidget(), QPoint(0, 0)), grid_->viewport()->size());
    port.setLeft(port.left() + grid_->CoveredWidth());
    // A cell that has scrolled away takes what lies over it along.
    return port.contains(rect.topLeft()) && rect.bottom() <= port.bottom() ? rect.intersected(port) : QRect();
}

void VICenterWindow::PlaceOverlays() {
    if (!grid_ || !model_) return;
    items_->PlaceAt(CellOverlayRect(model_->Grid().ActiveCell()));
    const center::NameListState& list = nameList_->State();
    const QRect cell = list.open ? CellOverlayRect({list.row, list.column}) : QRect();
    const bool shown = list.open && !list.entries.empty() && !cell.isEmpty();
    if (shown) {
        nameList_->PlaceAt(cell);
        nameList_->raise();
    }
    nameList_->setVisible(shown);
}

QRect VICenterWindow::ActiveRowOnScreen() const {
    const int row = model_->Grid().ActiveCell().row;
    const QRect rect = grid_->visualRect(model_->IndexOf({row, 1}));
    if (!rect.isValid()) return {};
    const QPoint corner = grid_->viewport()->mapToGlobal(QPoint(0, rect.top()));
    return QRect(corner, QSize(grid_->viewport()->width(), rect.height()));
}

int VICenterWindow::ApplyFont(const std::string& name, double size) {
    const auto change = [&](QWidget* widget) {
        QFont font = widget->font();  // bold and italic stay as they are
        font.setFamilies({name == "宋体" ? BillFontFamily() : ToQt(name)});
        font.setPointSizeF(size);
        widget->setFont(font);
    };
    for (QWidget* widget : std::initializer_list<QWidget*>{measure_, name_, tree_, filter_})
        change(widget);
    items_->SetFont(name_->font());
    LayOutPanel();
    const int line = static_cast<int>(std::lround(QFontInfo(measure_->font()).pixelSize() * kLineOfEm));
    return static_cast<int>(PixelsToTwips(line, *this));
}

center::Size VICenterWindow::WindowSize() const {
    return TwipsOf(size(), *this);
}

void VICenterWindow::PlaceProgressFrame(const center::Corner& corner) {
    progress_->SetPlace({TwipsToPixels(corner.left, *this), TwipsToPixels(corner.top, *this),
                         TwipsToPixels(kProgressWidth, *this), TwipsToPixels(kProgressHeight, *this)});
}

}  // namespace vicenter::ui
