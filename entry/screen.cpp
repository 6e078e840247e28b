#include "entry/screen.h"

#include "platform/system/surroundings.h"

namespace vicenter::entry {

void BeginBusy() {
    system::Surroundings::Current().screen->SetMousePointer(system::MousePointer::Hourglass);
}

void EndBusy() {
    system::Surroundings::Current().screen->SetMousePointer(system::MousePointer::Default);
}

void HighlightGridRow(std::int32_t row, automation::Object& grid) {
    const automation::Variant columns = grid.Get("MaxCols");
    grid.Put("BlockMode", true);
    grid.Put("ReDraw", false);
    grid.Put("Col", 1);
    grid.Put("Col2", columns);
    grid.Put("Row", 1);
    grid.Put("Row2", grid.Get("MaxRows"));
    grid.Put("BackColor", kWhite);
    if (row != -1) {
        grid.Put("Col", 1);
        grid.Put("Col2", columns);
        grid.Put("Row", row);
        grid.Put("Row2", row);
        grid.Put("BackColor", kPaleYellow);
        grid.Put("Row", row);
        grid.Put("Row2", row);
    }
    grid.Put("ReDraw", true);
    grid.Put("BlockMode", false);
}

}  // namespace vicenter::entry
