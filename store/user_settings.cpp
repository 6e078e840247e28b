#include "store/user_settings.h"

#include <string>

#include "automation/class_registry.h"
#include "automation/object.h"
#include "entry/sql_text.h"

namespace vicenter::store {

double GetUserSettingNumber(std::int32_t userId, std::string_view key, double otherwise) {
    try {
        const automation::ObjectRef connection = automation::CreateObject("VelaConnection.AppConnection");
        const std::string sql = "Select FValue From t_UserSetting Where FUserID=" + std::to_string(userId) +
                                " And FCategory='Vela_APFC' And FKey =" + entry::SqlQuote(key);
        const automation::ObjectRef recordset = connection->Call("Execute", {sql}).AsObject();
        if (recordset->Get("RecordCount").ToInt32() <= 0) return otherwise;
        return entry::LeadingNumber(recordset->Get("Fields", {"FValue"}).ToTextOrEmpty());
    } catch (const automation::Error&) {
        return otherwise;
    }
}

}  // namespace vicenter::store
