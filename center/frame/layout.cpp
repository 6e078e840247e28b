#include "center/frame/layout.h"

#include <algorithm>

namespace vicenter::center {

namespace {
constexpr int kEdge = 40;
constexpr int kTop = 60;
constexpr int kGridLeft = 20;
constexpr int kNameGap = 60;
constexpr int kDesignedLabelHeight = 180;  // a line of 9 points
}  // namespace

FrameLayout LayoutFrame(const Size& windowInner, int treeWidth) {
    FrameLayout layout;
    const int height = std::max(0, windowInner.height - kTop - kEdge);
    layout.tree = {kEdge, kTop, treeWidth, height};
    const int left = kEdge + treeWidth + kEdge;
    layout.gridPanel = {left, kTop, std::max(0, windowInner.width - left - kEdge), height};
    return layout;
}

Rectangle LayoutGrid(const Size& panelInner, int nameFieldTop, int nameFieldHeight) {
    const int top = nameFieldTop + nameFieldHeight + kNameGap;
    return {kGridLeft, top, std::max(0, panelInner.width - 2 * kGridLeft),
            std::max(0, panelInner.height - top - kGridLeft)};
}

Corner PlaceProgress(const Size& window) {
    return {window.width / 2 + 200, window.height / 2 - 500};
}

RowHeights HeightsForFont(int labelHeight) {
    const RowHeights designed;
    const int taller = std::max(0, labelHeight - kDesignedLabelHeight);
    return {designed.header + taller, designed.data + taller};
}

}  // namespace vicenter::center
