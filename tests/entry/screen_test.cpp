#include "entry/screen.h"

#include <gtest/gtest.h>

#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::entry {
namespace {

TEST(Screen, BusyIsTheHourglassAndBack) {
    fakes::FakeSurroundings surroundings;
    BeginBusy();
    EndBusy();
    using system::MousePointer;
    EXPECT_EQ(surroundings.screen->pointers, (std::vector{MousePointer::Hourglass, MousePointer::Default}));
    EXPECT_EQ(static_cast<int>(MousePointer::Hourglass), 11);
}

fakes::ScriptedRef Grid() {
    auto grid = std::make_shared<fakes::ScriptedObject>("Spread");
    grid->Value("MaxCols", 21).Value("MaxRows", 100);
    return grid;
}

std::vector<std::string> PutsOf(const fakes::ScriptedObject& grid) {
    std::vector<std::string> puts;
    for (const std::string& call : grid.Calls()) {
        if (call.find('=') != std::string::npos) puts.push_back(call);
    }
    return puts;
}

TEST(HighlightGridRow, WhitensAllRowsAndColoursOne) {
    const auto grid = Grid();
    HighlightGridRow(5, *grid);
    EXPECT_EQ(PutsOf(*grid), (std::vector<std::string>{"BlockMode=True", "ReDraw=False", "Col=1", "Col2=21",
                                                       "Row=1", "Row2=100", "BackColor=16777215", "Col=1",
                                                       "Col2=21", "Row=5", "Row2=5", "BackColor=12187647",
                                                       "Row=5", "Row2=5", "ReDraw=True", "BlockMode=False"}));
}

TEST(HighlightGridRow, TheFirstRowIsARowLikeAnyOther) {
    const auto grid = Grid();
    HighlightGridRow(1, *grid);
    EXPECT_EQ(PutsOf(*grid), (std::vector<std::string>{"BlockMode=True", "ReDraw=False", "Col=1", "Col2=21",
                                                       "Row=1", "Row2=100", "BackColor=16777215", "Col=1",
                                                       "Col2=21", "Row=1", "Row2=1", "BackColor=12187647",
                                                       "Row=1", "Row2=1", "ReDraw=True", "BlockMode=False"}));
}

TEST(HighlightGridRow, RowMinusOneOnlyClears) {
    const auto grid = Grid();
    HighlightGridRow(-1, *grid);
    EXPECT_EQ(PutsOf(*grid),
              (std::vector<std::string>{"BlockMode=True", "ReDraw=False", "Col=1", "Col2=21", "Row=1",
                                        "Row2=100", "BackColor=16777215", "ReDraw=True", "BlockMode=False"}));
}

}  // namespace
}  // namespace vicenter::entry
