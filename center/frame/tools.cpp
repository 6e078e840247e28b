#include "center/frame/vicenter_view.h"

namespace vicenter::center {

const std::array<ToolSpec, kToolCount>& Tools() {
    static constexpr std::array<ToolSpec, kToolCount> table{{
        {Tool::New, "mnuNew", "新增", "新增模板库"},
        {Tool::Del, "mnuDel", "删除", "删除模板库"},
        {Tool::Save, "mnuSave", "保存", "保存模板库"},
        {Tool::ShowCol, "mnuShowCol", "显示隐藏列", "显示隐藏列"},
        {Tool::DelRow, "mnuDelRow", "删行", "删除分录"},
        {Tool::AddRow, "mnuAddRow", "添加", "添加分录"},
        {Tool::PrcFind, "mnuPrcFind", "查找", "查找"},
        {Tool::Imp, "mnuImp", "引入", "凭证模板引入"},
        {Tool::Exp, "mnuExp", "引出", "凭证模板引出"},
        {Tool::AutoVch, "mnuAutoVch", "根据凭证生成", "根据凭证生成"},
        {Tool::CloudP, "mnuCloudP", "上传云盘", "上传云盘"},
        {Tool::Share, "mnuShare", "分享", "分享"},
        {Tool::Quit, "mnuQuit", "退出", "退出"},
    }};
    return table;
}

}  // namespace vicenter::center
