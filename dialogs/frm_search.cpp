#include "dialogs/frm_search.h"

#include <string_view>
#include <variant>

#include "automation/class_registry.h"
#include "entry/message_box.h"
#include "entry/screen.h"
#include "entry/single_line.h"
#include "entry/sql_text.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"
#include "store/template_columns.h"

namespace vicenter::dialogs {

using automation::Argument;
using automation::Variant;
namespace column = store::column;

namespace {

std::string Trimmed(const std::string& text) {
    return std::string(system::TrimBlanks(entry::WithoutLineEnd(text)));
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool IsEmpty(const SearchFields& filter) {
    return filter.txtExp.empty() && filter.txtAcct.empty() && filter.txtBZ.empty();
}

// No object for a value that is none, and for the object that is not there.
automation::ObjectRef ObjectOrNone(const Variant& value) {
    const auto* object = std::get_if<automation::ObjectRef>(&value.Raw());
    return object == nullptr ? nullptr : *object;
}

}  // namespace

void FrmSearch::Load(FrmSearchView& view) {
    view_ = &view;
    lastRow_ = 0;
    lastKey_.clear();
}

std::string FrmSearch::CellText(std::int32_t row, std::int32_t gridColumn) {
    grid_->Put("Row", row);
    grid_->Put("Col", gridColumn);
    return Trimmed(grid_->Get("Text").ToTextOrEmpty());
}

bool FrmSearch::Matches(std::int32_t row, const SearchFields& filter) {
    if (!filter.txtExp.empty() && !Contains(CellText(row, column::kExplanation), filter.txtExp)) return false;
    if (!filter.txtAcct.empty() && CellText(row, column::kAccountNumber) != filter.txtAcct &&
        !Contains(CellText(row, column::kAccountName), filter.txtAcct)) {
        return false;
    }
    return filter.txtBZ.empty() || Contains(CellText(row, column::kRemark), filter.txtBZ);
}

SearchFields FrmSearch::Filter() const {
    const SearchFields fields = view_->Fields();
    return {Trimmed(fields.txtExp), Trimmed(fields.txtAcct), Trimmed(fields.txtBZ)};
}

std::int32_t FrmSearch::HitCount() {
    const SearchFields filter = Filter();
    if (IsEmpty(filter)) return 0;
    const Variant row = grid_->Get("Row");
    const Variant column = grid_->Get("Col");
    std::int32_t count = 0;
    for (std::int32_t r = 1; r <= entryCount_; ++r)
        count += Matches(r, filter) ? 1 : 0;
    grid_->Put("Row", row);
    grid_->Put("Col", column);
    return count;
}

void FrmSearch::cmdOK_Click() {
    if (entryCount_ < 1) {
        entry::Tell("当前模板没有可查找的模板信息！");
        return;
    }
    const SearchFields filter = Filter();
    if (IsEmpty(filter)) {
        entry::Tell("请输入过滤信息！");
        return;
    }
    const std::string key = filter.txtBZ + "|||" + filter.txtAcct + "|||" + filter.txtExp;
    if (key != lastKey_) {
        lastRow_ = 0;
        lastKey_ = key;
    }
    for (std::int32_t row = lastRow_ + 1; row <= entryCount_; ++row) {
        if (!Matches(row, filter)) continue;
        lastRow_ = row;
        grid_->Call("SetActiveCell", {Argument(std::int32_t{1}), Argument(row)});
        entry::HighlightGridRow(row, *grid_);
        return;
    }
    if (lastRow_ != 0) {
        lastRow_ = 0;
        cmdOK_Click();
        return;
    }
    entry::Tell("没有查找到对应的数据，请重新录入查找条件！");
}

void FrmSearch::cmdAcct_Click() {
    const std::string typed = Trimmed(view_->Fields().txtAcct);
    const automation::ObjectRef lookUp = automation::CreateObject("VelaEBCGLView.GLView");
    Variant text(entry::SqlEscape(typed));
    const automation::ObjectRef result =
        ObjectOrNone(lookUp->Call("AccountLookup", {Argument::ByReference(text)}));
    const automation::ObjectRef account =
        result == nullptr ? nullptr : ObjectOrNone(result->Get("ReturnObject"));
    if (account == nullptr) return;
    // A record has either members or fields of that name.
    const Variant number =
        account->HasMember("Number") ? account->Get("Number") : account->Get("", {Argument("Number")});
    view_->SetAccount(number.ToTextOrEmpty());
}

void FrmSearch::cmdCancel_Click() {
    view_->Unload();
}

}  // namespace vicenter::dialogs
