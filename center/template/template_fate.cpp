#include "center/template/template_fate.h"

#include "center/frame/window_state.h"

namespace vicenter::center {

using system::MessageButtons;
using system::MessageResult;

namespace {

bool Agreed(const std::string& question) {
    return Ask(question, MessageButtons::YesNo) == MessageResult::Yes;
}

}  // namespace

SeenTemplate SeenOpen(const OpenTemplate& open, const std::string& userId) {
    return store::SeenAs(open.Id(), userId, open.Name(), open.Loaded());
}

FoundTemplate FateOfNode(const std::string& id, const std::string& name, const std::string& userId) {
    return store::Compare(store::SeenAs(id, userId, name), store::AskTemplate(id));
}

SaveChoice AskHowToSave(const SeenTemplate& seen, const FoundTemplate& found) {
    if (found.fate == TemplateFate::Gone) {
        return Agreed("模板 " + seen.name + " 已在别处被删除，是否将当前分录另存为新模板？")
                   ? SaveChoice::KeepAsNew
                   : SaveChoice::Leave;
    }
    // An id is given again: what stands there now may be another template of the user's.
    const std::string changed =
        "模板 " + seen.name + " 打开之后已在别处" +
        (found.HasOtherName(seen) ? "被删除或改名，原处现在是模板 " + found.now.name + "，" : "被修改，");
    if (Agreed(changed + "是否将当前分录另存为新模板？")) return SaveChoice::KeepAsNew;
    if (!store::IsStandard(seen.id) &&
        Agreed(changed + "是否用当前分录覆盖？\r\n\r\n选择“否”将显示修改后的模板。"))
        return SaveChoice::Overwrite;
    return SaveChoice::LookAtTheirs;
}

void TellGone(const std::string& name) {
    Tell("模板 " + name + " 已在别处被删除！");
}

}  // namespace vicenter::center
