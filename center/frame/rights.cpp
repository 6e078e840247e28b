#include "center/frame/rights.h"

#include <cstdint>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "entry/host_context.h"
#include "store/engine_text.h"

namespace vicenter::center {

namespace {

constexpr std::int32_t kTemplateRights = 3145728;
constexpr std::int32_t kAllRights = 2147483647;
// What the rights are to: voucher templates.
constexpr std::int16_t kGroupType = 4;
constexpr std::int16_t kGroup = 4;

automation::ObjectRef NewSecurityInfo() {
    return automation::CreateObject("VelaEBSBase.SecurityInfo");
}

bool Grants(automation::Object& security, std::int32_t rights) {
    return security.Call("AccessCheck", {entry::GetPropsString(), kGroupType, kGroup, rights}).ToBoolean();
}

}  // namespace

TemplateRight AskTemplateRight() {
    TemplateRight right;
    try {
        right.security = NewSecurityInfo();
        right.granted = Grants(*right.security, kTemplateRights);
    } catch (const automation::Error& error) {
        right.failure =
            "未能取得当前用户的权限，不能修改模板！\r\n\r\n" + store::EngineTextInChinese(error.Text());
    }
    return right;
}

bool HasEveryRight() {
    return Grants(*NewSecurityInfo(), kAllRights);
}

}  // namespace vicenter::center
