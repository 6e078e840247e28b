#pragma once

// Where the parts of the main window go: pure functions, all lengths in twips.

namespace vicenter::center {

struct Rectangle {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const Rectangle&, const Rectangle&) = default;
};

struct Size {
    int width = 0;
    int height = 0;
};

struct FrameLayout {
    Rectangle tree;
    Rectangle gridPanel;
};

// The tree keeps its designed width. Lengths that a minimised window makes negative come out as 0.
FrameLayout LayoutFrame(const Size& windowInner, int treeWidth);

// The grid inside its panel, below the name field.
Rectangle LayoutGrid(const Size& panelInner, int nameFieldTop, int nameFieldHeight);

struct Corner {
    int left = 0;
    int top = 0;
    friend bool operator==(const Corner&, const Corner&) = default;
};

// The progress frame, placed once at load.
Corner PlaceProgress(const Size& window);

struct RowHeights {
    int header = 450;
    int data = 285;
    friend bool operator==(const RowHeights&, const RowHeights&) = default;
};

// Row heights for a font, by the height of a label that holds one line of it. Never below the designed
// heights.
RowHeights HeightsForFont(int labelHeight);

}  // namespace vicenter::center
