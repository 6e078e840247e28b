#include "center/template/template_fate.h"

#include "center/frame/window_state.h"
#include "center/template/line_loader.h"
#include "store/template_guard.h"

namespace vicenter::center {

using automation::Error;
using system::MessageButtons;
using system::MessageResult;

namespace {

bool Agreed(const std::string& question) {
    return Ask(question, MessageButtons::YesNo) == MessageResult::Yes;
}

// The standard template is opened under a name of its own.
bool NameStands(const std::string& id, const std::string& loaded, const std::string& now) {
    return store::IsStandard(id) || loaded == now;
}

}  // namespace

TemplateFate FateOfOpenTemplate(const OpenTemplate& open, const std::string& userId) {
    const std::optional<store::TemplateRow> row = store::AskTemplateWithLines(open.Id());
    if (!row) return TemplateFate::Unknown;
    if (!store::MayWrite(*row, open.Id(), userId)) return TemplateFate::Gone;
    try {
        const bool same =
            NameStands(open.Id(), open.Name(), row->name) && store::DigestOf(*row->lines) == open.Loaded();
        return same ? TemplateFate::AsLoaded : TemplateFate::Changed;
    } catch (const Error&) {
        return TemplateFate::Unknown;
    }
}

std::optional<LinesDigest> DigestOfStored(const std::string& templateId) {
    try {
        const std::optional<store::TemplateRow> row = store::AskTemplateWithLines(templateId);
        return row ? std::optional(store::DigestOf(*row->lines)) : std::nullopt;
    } catch (const Error&) {
        return std::nullopt;
    }
}

NodeFate FateOfNode(const std::string& id, const std::string& name, const std::string& userId) {
    const std::optional<store::TemplateRow> row = store::AskTemplate(id);
    if (!row) return {TemplateFate::Unknown, name};
    if (!store::MayWrite(*row, id, userId)) return {TemplateFate::Gone, name};
    return {NameStands(id, name, row->name) ? TemplateFate::AsLoaded : TemplateFate::Changed, row->name};
}

SaveChoice AskHowToSave(TemplateFate fate, const std::string& name, bool own) {
    if (fate == TemplateFate::Gone) {
        return Agreed("模板 " + name + " 已在别处被删除，是否将当前分录另存为新模板？")
                   ? SaveChoice::KeepAsNew
                   : SaveChoice::Leave;
    }
    const std::string changed = "模板 " + name + " 打开之后已在别处被修改，";
    if (Agreed(changed + "是否将当前分录另存为新模板？")) return SaveChoice::KeepAsNew;
    if (own && Agreed(changed + "是否用当前分录覆盖？\r\n\r\n选择“否”将显示修改后的模板。"))
        return SaveChoice::Overwrite;
    return SaveChoice::LookAtTheirs;
}

void TellGone(const std::string& name) {
    Tell("模板 " + name + " 已在别处被删除！");
}

}  // namespace vicenter::center
