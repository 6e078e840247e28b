#include "center/search/operation_log.h"

#include <algorithm>

#include "center/frame/window_state.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"
#include "text/ascii.h"

namespace vicenter::center {

namespace {

// Empty, or yyyy-mm-dd.
bool IsDay(const std::string& text) {
    std::string form = text;
    std::replace_if(form.begin(), form.end(), text::IsDigit, '9');
    return form.empty() || form == "9999-99-99";
}

bool IsNumber(const std::string& text) {
    return std::all_of(text.begin(), text.end(), text::IsDigit);
}

}  // namespace

std::string LogKindText(std::int32_t kind) {
    switch (kind) {
        case 1:
            return "请求";
        case 2:
            return "关闭";
        case 3:
            return "成功";
        case 4:
            return "失败";
        default:
            return std::to_string(kind);
    }
}

bool OperationLog::Load() {
    if (!Read({})) return false;
    users_ = store::UserNames::Read();
    return true;
}

bool OperationLog::Read(const store::LogFilter& filter) {
    store::clsVIData::ForgetFailure();
    store::LogAnswer answer = store::ReadOperationLog(filter);
    if (answer.state != store::LogAnswer::State::Read) {
        Tell(answer.state == store::LogAnswer::State::Off
                 ? "当前账套中没有可以查看的操作日志！"
                 : store::WithReason("操作日志无法读取，请检查账套连接！"));
        return false;
    }
    entries_ = std::move(answer.entries);
    std::reverse(entries_.begin(), entries_.end());
    return true;
}

void OperationLog::Narrow(const store::LogFilter& given) {
    store::LogFilter filter = given;
    for (std::string* text : {&filter.from, &filter.to, &filter.user, &filter.templateName})
        *text = std::string(system::TrimBlanks(*text));
    if (!IsDay(filter.from) || !IsDay(filter.to)) {
        Tell("日期应为 yyyy-mm-dd，例如 2026-01-31！");
        return;
    }
    if (!IsNumber(filter.user)) {
        const auto number = users_.NumberOf(filter.user);
        if (!number) {
            Tell("没有用户“" + filter.user + "”，请录入用户的编号或姓名！");
            return;
        }
        filter.user = std::to_string(*number);
    }
    Read(filter);
}

std::string OperationLog::Note() const {
    return "共 " + std::to_string(entries_.size()) + " 条";
}

}  // namespace vicenter::center
