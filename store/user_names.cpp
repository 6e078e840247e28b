#include "store/user_names.h"

#include "automation/error.h"
#include "entry/sql_text.h"
#include "platform/system/collation.h"
#include "platform/system/utf8.h"
#include "store/statements.h"

namespace vicenter::store {

UserNames UserNames::Read() {
    UserNames users;
    try {
        const ado::RecordsetRef rows = GetRecordset(std::string("if object_id('t_User') is not null") +
                                                    entry::kCrLf + "select FUserID,FName from t_User");
        if (rows == nullptr || rows->ColumnCount() == 0) return users;
        for (; !rows->AtEnd(); rows->MoveNext()) {
            users.names_[rows->Value("FUserID").ToInt32()] =
                std::string(system::TrimBlanks(rows->Value("FName").ToTextOrEmpty()));
        }
    } catch (const automation::Error&) {
        return {};  // another table of that name
    }
    return users;
}

const std::string& UserNames::NameOf(std::int32_t userId) const {
    static const std::string none;
    const auto found = names_.find(userId);
    return found == names_.end() ? none : found->second;
}

std::string UserNames::WithNumber(std::int32_t userId) const {
    const std::string& name = NameOf(userId);
    return std::to_string(userId) + (name.empty() ? "" : " " + name);
}

std::optional<std::int32_t> UserNames::NumberOf(const std::string& name) const {
    std::optional<std::int32_t> number;
    for (const auto& [id, known] : names_) {
        if (known.empty() || system::Collator::Chinese().Compare(known, name) != 0) continue;
        if (number) return std::nullopt;
        number = id;
    }
    return number;
}

}  // namespace vicenter::store
