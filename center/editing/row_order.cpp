#include "center/editing/row_order.h"

namespace vicenter::center {

bool LeavesGap(const WindowState& state, int row) {
    if (row <= state.open.RowCount() + 1) return false;
    TellGap();
    return true;
}

void TellGap() {
    Tell("请连续录入凭证模板分录！");
}

void KeepBlankRows(WindowState& state, int count) {
    if (state.grid->RowTotal() - state.open.RowCount() < count)
        state.grid->SetRowTotal(state.open.RowCount() + count);
}

}  // namespace vicenter::center
