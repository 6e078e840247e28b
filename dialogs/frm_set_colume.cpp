#include "dialogs/frm_set_colume.h"

#include "store/template_columns.h"

namespace vicenter::dialogs {

using automation::Variant;

namespace {

constexpr std::int32_t kAllRows = -1;

bool IsHidden(automation::Object& grid, int column) {
    grid.Put("Row", kAllRows);
    grid.Put("Col", std::int32_t{column});
    return grid.Get("ColHidden").ToBoolean();
}

}  // namespace

void frmSetColume::Load(frmSetColumeView& view) {
    view_ = &view;
    choices_.clear();
    for (const store::ColumnSpec& optional : store::Columns()) {
        if (!optional.optional) continue;
        // No voucher has a remark: it stands in the list in grid mode only.
        if (selectionMode_ && optional.column == store::column::kRemark) continue;
        ColumnChoice choice{std::string(optional.header), optional.column, false};
        if (!selectionMode_) {
            choice.ticked = !IsHidden(*grid_, optional.column);
        } else {
            // Asked first: reading the item of an absent key would add the key.
            const Variant key(std::to_string(optional.column));
            if (selection_->Call("Exists", {key}).ToBoolean()) {
                choice.ticked = selection_->Get("Item", {key}).ToInt32() == 1;
            }
        }
        choices_.push_back(std::move(choice));
    }
}

std::string frmSetColume::Caption() const {
    return selectionMode_ ? "模板字段设置" : "显示隐藏列";
}

void frmSetColume::SetTick(std::size_t row, bool ticked) {
    if (row < choices_.size()) choices_[row].ticked = ticked;
}

void frmSetColume::Command(int index) {
    switch (index) {
        case 0:
            if (selectionMode_) {
                FillSelection();
            } else {
                ApplyToGrid();
            }
            view_->Unload();
            break;
        case 1:
            if (!selectionMode_) ApplyToGrid();
            break;
        case 2:
            view_->Unload();
            break;
        default:
            break;
    }
}

void frmSetColume::ApplyToGrid() {
    for (const ColumnChoice& choice : choices_) {
        grid_->Put("Row", kAllRows);
        grid_->Put("Col", std::int32_t{choice.column});
        grid_->Put("ColHidden", !choice.ticked);
    }
}

void frmSetColume::FillSelection() {
    for (const ColumnChoice& choice : choices_) {
        const Variant key(std::to_string(choice.column));
        const Variant item(std::int32_t{choice.ticked ? 1 : 0});
        if (selection_->Call("Exists", {key}).ToBoolean()) {
            // As one list: GCC 12 warns wrongly of the index that Put would add the value behind.
            automation::Arguments indexAndValue{key, item};
            selection_->Invoke("Item", automation::InvokeKind::Put, indexAndValue);
        } else {
            selection_->Call("Add", {key, item});
        }
    }
}

}  // namespace vicenter::dialogs
