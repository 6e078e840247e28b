#pragma once

// What is printed, and how it falls on pages: rules without a printer. Values.

#include <string>
#include <vector>

namespace vicenter::center {

struct PrintColumn {
    std::string header;
    int share = 1;         // of the page's width
    bool figures = false;  // to the right, digits below each other
};

// What belongs together on one page.
struct PrintBlock {
    std::string caption;
    std::vector<std::vector<std::string>> rows;  // a text for each column
    std::vector<std::string> foot;               // the sums, a text for each column; empty for none
    std::vector<std::string> notes;              // below it, each on lines of its own
};

struct PrintSheet {
    std::string title;
    std::string accountSet;
    std::string user;
    std::string date;
    std::vector<PrintColumn> columns;
    std::vector<PrintBlock> blocks;
};

// Heights in whatever unit the page has.
struct BlockHeights {
    double caption = 0;
    std::vector<double> rows;
    double end = 0;  // foot and notes, which stay with the last row

    double Whole() const;
};

struct PageHeights {
    double page = 0;  // what a page has room for below its heading
    double gap = 0;   // between two blocks
};

// Rows of one block on one page.
struct PrintPiece {
    std::size_t block = 0;
    std::size_t firstRow = 0;
    std::size_t rows = 0;
    bool begins = true;  // the caption stands there as it is; else it says that it goes on
    bool ends = true;    // foot and notes stand there
    friend bool operator==(const PrintPiece&, const PrintPiece&) = default;
};

using PrintPage = std::vector<PrintPiece>;

// A block that does not fit below another one goes on the next page; one that is higher than a page begins on
// a page of its own and is parted between rows. There is always a page.
std::vector<PrintPage> LayOutPages(const std::vector<BlockHeights>& blocks, const PageHeights& heights);

}  // namespace vicenter::center
