#include "center/template/save_as.h"

#include "center/frame/window_state.h"
#include "center/template/new_name.h"
#include "center/template/template_save.h"
#include "entry/host_services.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/new_template.h"
#include "store/stoppable_command.h"
#include "store/template_batches.h"

namespace vicenter::center {

using entry::LogKind;
using State = store::TemplateOutcome::State;

namespace {

store::TemplateOutcome TellFailed(const std::string& name, State state) {
    if (state == State::SavedUntold) {
        // It is there: who took it for failed would make it twice.
        Tell("模板 " + name + " 已另存，但未能重新读取，请重新打开凭证模板查看！");
        entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-另存模板 " + name + " 成功");
        return {state};
    }
    Tell("模板 " + name + " 保存失败！" + StoppedNote());
    entry::WriteOperationLog(LogKind::Failed, "凭证模板-另存模板 " + name + " 失败");
    return {state};
}

}  // namespace

store::TemplateOutcome SaveLinesAs(const EntryGrid& grid, int rowCount, const std::string& wished,
                                   const std::string& userId) {
    const store::StoppableCommand command;
    // As the batch writes it.
    const std::string name(system::TrimBlanks(wished));
    if (const std::string why = WhyNotNewName(name, userId, "保存失败！"); !why.empty()) {
        Tell(why);
        return {};
    }
    std::string batch;
    store::BeginTemplate(batch, store::kNewTemplate, name, userId);
    batch += store::SaveBatch("@MaxFID", rowCount, [&grid](int row, int c) { return grid.Text(row, c); });
    {
        store::NewTemplate made(name, userId);
        if (!made.MayWrite()) {
            if (!store::StoppableCommand::IsStopped()) Tell(made.WhyNot("没有保存"));
            return TellFailed(name, State::Failed);
        }
        if (!made.RunAndCommit(batch)) return TellFailed(name, State::Refused);
    }
    const std::int32_t id = store::clsVIData().FindVchTemplate(name, userId);
    if (id < 0) return TellFailed(name, State::SavedUntold);
    Tell(store::WithUnusableNote("模板 " + name + " 保存成功！",
                                 store::ReadUnusableNumbers(std::to_string(id))));
    entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-另存模板 " + name + " 成功");
    return {State::Saved, id};
}

}  // namespace vicenter::center
