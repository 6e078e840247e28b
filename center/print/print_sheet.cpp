#include "center/print/print_sheet.h"

#include <numeric>

namespace vicenter::center {

namespace {

class Layout {
  public:
    explicit Layout(const PageHeights& heights) : heights_(heights), pages_(1) {}

    void Add(std::size_t index, const BlockHeights& block) {
        const double gap = pages_.back().empty() ? 0 : heights_.gap;
        if (used_ + gap + block.Whole() > heights_.page && !pages_.back().empty()) NewPage();
        if (block.Whole() <= heights_.page) {
            used_ += (pages_.back().empty() ? 0 : heights_.gap) + block.Whole();
            pages_.back().push_back({index, 0, block.rows.size(), true, true});
            return;
        }
        Part(index, block);
    }

    std::vector<PrintPage> Take() { return std::move(pages_); }

  private:
    void NewPage() {
        pages_.emplace_back();
        used_ = 0;
    }

    // Page by page, at least a row on each: a row higher than a page is cut by its edge.
    void Part(std::size_t index, const BlockHeights& block) {
        std::size_t row = 0;
        do {
            PrintPiece piece{index, row, 0, row == 0, false};
            used_ = block.caption;
            while (row < block.rows.size()) {
                const bool last = row + 1 == block.rows.size();
                const double wanted = block.rows[row] + (last ? block.end : 0);
                if (used_ + wanted > heights_.page && piece.rows > 0) break;
                used_ += wanted;
                ++piece.rows;
                ++row;
            }
            piece.ends = row == block.rows.size();
            pages_.back().push_back(piece);
            if (!piece.ends) NewPage();
        } while (row < block.rows.size());
    }

    PageHeights heights_;
    std::vector<PrintPage> pages_;
    double used_ = 0;
};

}  // namespace

double BlockHeights::Whole() const {
    return std::accumulate(rows.begin(), rows.end(), caption + end);
}

std::vector<PrintPage> LayOutPages(const std::vector<BlockHeights>& blocks, const PageHeights& heights) {
    Layout layout(heights);
    for (std::size_t i = 0; i < blocks.size(); ++i)
        layout.Add(i, blocks[i]);
    return layout.Take();
}

}  // namespace vicenter::center
