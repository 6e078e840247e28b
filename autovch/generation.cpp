#include "autovch/generation.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "entry/host_context.h"
#include "entry/host_services.h"
#include "entry/message_box.h"
#include "entry/single_line.h"
#include "entry/sql_text.h"
#include "platform/ado/side_by_side.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"
#include "store/stoppable_command.h"
#include "store/template_batches.h"
#include "store/template_guard.h"
#include "store/template_name.h"
#include "store/template_writing.h"

namespace vicenter::autovch {

using system::MessageButtons;
using system::MessageResult;

namespace {

// The items of a voucher line could not be read; they must not pass for none.
struct Unreadable {};

// Asks for each distinct detail id once within one generation.
class ItemsTexts {
  public:
    // Asks what Of() will be asked for these lines, side by side where that pays.
    void AskAhead(const ado::Recordset& vouchers) {
        const std::string propsString = entry::GetPropsString();
        if (!ado::PaysToAskSideBySide(propsString)) return;
        const std::size_t field = vouchers.ColumnIndex("FItemsInfo");
        std::vector<std::function<void()>> questions;
        for (std::size_t row = 0; row < static_cast<std::size_t>(vouchers.RecordCount()); ++row) {
            const std::string detailId = vouchers.ValueAt(row, field).ToTextOrEmpty();
            const auto [found, isNew] = texts_.try_emplace(detailId, std::string());
            if (!isNew || !HasItems(detailId)) continue;
            std::optional<std::string>& text = found->second;
            questions.emplace_back([&text, detailId] { text = store::clsVIData().ItemsInfo(detailId); });
        }
        ado::AskSideBySide(propsString, questions);
    }
    const std::string& Of(const std::string& detailId) {
        const auto [found, isNew] = texts_.try_emplace(detailId, std::string());
        if (isNew && HasItems(detailId)) found->second = store::clsVIData().ItemsInfo(detailId);
        if (!found->second) throw Unreadable();
        return *found->second;
    }

  private:
    static bool HasItems(const std::string& detailId) { return !detailId.empty() && detailId != "0"; }

    std::map<std::string, std::optional<std::string>> texts_;  // nothing: could not be read
};

std::string NoRoomText(const std::vector<store::LineFault>& faults) {
    std::string text = "凭证模板生成失败！以下内容超出模板的存储范围：";
    for (const store::LineFault& fault : faults)
        text +=
            entry::kCrLf + ("第" + std::to_string(fault.row) + "行，" + fault.header + "：" + fault.reason);
    return text;
}

// Whom the template replaces, if anyone; nothing, and the user has been told or has said so, when it must not
// be written.
std::optional<TemplateTarget> ChooseTarget(const std::string& name, const std::string& userId) {
    using State = store::NamedTemplate::State;
    const store::NamedTemplate existing = store::FindTemplateToReplace(name, userId);
    if (existing.state == State::Unknown) {
        entry::Tell("凭证模板“" + name + "”无法读取，凭证模板生成失败！");
        return std::nullopt;
    }
    if (existing.state == State::Anothers) {
        entry::Tell("凭证模板“" + name + "”属于其他用户（用户编号 " + std::to_string(existing.ownerId) +
                    "），不允许覆盖，凭证模板生成失败！");
        return std::nullopt;
    }
    TemplateTarget target{name, existing.OwnerAfterwards(userId),
                          existing.state == State::MayWrite ? existing.id : -1, std::nullopt};
    if (target.overwriteId >= 0) target.seen = existing.seen;
    if (target.overwriteId >= 0 &&
        entry::Ask("凭证模板“" + name +
                       "”已存在，生成的凭证模板将覆盖原模板，建议先引出原模板备份。请确认是否生成？",
                   MessageButtons::YesNo) != MessageResult::Yes) {
        return std::nullopt;
    }
    return target;
}

void WriteTemplate(const TemplateTarget& target, const std::string& batch, const std::string& userId,
                   GenerationResult& result) {
    using Outcome = store::TemplateOutcome::State;
    result.outcome.state = Outcome::Refused;
    // With the lines come the flags of the numbers that can be used, or nothing does.
    store::TemplateWriting writing(target.name, target.seen, store::HistoryCommand::Generate);
    if (const std::string why = writing.WhyNot("没有生成"); !why.empty()) {
        entry::Tell(why);
        return;
    }
    if (!store::RunSql(batch)) return;

    result.outcome.state = Outcome::Failed;
    const std::int32_t id = store::clsVIData().FindVchTemplate(target.name, userId);
    if (id < 0) {
        result.outcome.untold = store::clsVIData::LastFailure();
        return;
    }
    const std::string templateId = std::to_string(id);
    store::RunSql(store::MarkUsable(templateId));
    if (!writing.Commit()) {
        entry::Tell("凭证模板生成失败！");
        return;
    }
    result.outcome = {Outcome::Saved, id};
    result.message = store::WithUnusableNote("凭证生成凭证模板 " + target.name + " 成功！",
                                             store::ReadUnusableNumbers(templateId));
    entry::WriteOperationLog(entry::LogKind::Succeeded, "凭证模板-通过凭证生成模板 " + target.name + " 成功");
}

bool AllLeftOut(const ado::Recordset& vouchers, const LeftOut& without) {
    if (without.empty()) return false;
    const std::size_t number = vouchers.ColumnIndex("FNo");
    for (std::size_t row = 0; row < static_cast<std::size_t>(vouchers.RecordCount()); ++row) {
        if (!without.contains(vouchers.ValueAt(row, number).ToTextOrEmpty())) return false;
    }
    return true;
}

}  // namespace

GenerationResult Generate(const GenerationRequest& request, const Progress& progress) {
    if (const std::string problem = FilterProblem(request.filter); !problem.empty()) {
        entry::Tell(problem);
        return {};
    }
    const std::string name(system::TrimBlanks(entry::WithoutLineEnd(request.templateName)));
    if (const std::string why = store::WhyNotName(name); !why.empty()) {
        entry::Tell(why);
        return {};
    }
    const store::StoppableCommand command;
    entry::WriteFrameLog("C001C039", "AutoRunVch");

    const std::string userId = entry::CurrentUserId();
    const std::optional<TemplateTarget> target = ChooseTarget(name, userId);
    if (!target) return {};
    const auto vouchers = store::GetRecordset(VoucherQuery(request.filter));
    if (!vouchers || vouchers->AtEnd()) {
        entry::Tell("没有查询到凭证信息，凭证模板生成失败，请重新设置过滤条件！");
        return {};
    }
    if (AllLeftOut(*vouchers, request.without)) {
        entry::Tell("没有选择要生成的凭证，凭证模板生成失败！");
        return {};
    }
    ItemsTexts items;
    if (request.columns.contains(store::column::kItems)) items.AskAhead(*vouchers);
    std::string batch;
    GenerationResult result;
    result.templateName = name;
    try {
        batch = GenerationBatch(
            *target, request.columns, *vouchers,
            [&](const std::string& detailId) { return items.Of(detailId); }, progress, result.faults,
            request.without);
    } catch (const Unreadable&) {
        entry::Tell("凭证的核算项目无法读取，凭证模板生成失败！");
        return {};
    }
    if (!result.faults.empty()) entry::Tell(NoRoomText(result.faults));
    if (!batch.empty()) WriteTemplate(*target, batch, userId, result);
    return result;
}

}  // namespace vicenter::autovch
