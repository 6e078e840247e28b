// The template tables: list, profile, count, name test, delete, insert and lines.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <set>

#include "entry/host_context.h"
#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/template_batches.h"
#include "store/template_rows.h"

namespace vicenter::store {

using automation::Error;
using entry::kCrLf;
using entry::SqlQuote;

namespace {

// The whole number of a custom template's name. A name of a user's own making may hold more than a long can:
// it then counts as no number, or nobody could ever make a new template again.
std::int32_t CustomNumber(const std::string& text) {
    const double number = std::nearbyint(entry::LeadingNumber(text));
    if (number < 0 || number >= std::numeric_limits<std::int32_t>::max()) return 0;
    return static_cast<std::int32_t>(number);
}

// The number of a name that is one of ours to the last character.
std::optional<std::int64_t> WholeNumber(const std::string& text) {
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

// A new name is made of the number that follows. Where the numbers have come to their end, its name may be
// there already: the least number that is free takes its place.
std::int32_t BaseOfNewNumber(std::int32_t largest, const std::set<std::int64_t>& taken) {
    if (!taken.contains(std::int64_t{largest} + 1)) return largest;
    std::int32_t base = 0;
    while (taken.contains(std::int64_t{base} + 1))
        ++base;
    return base;
}

}  // namespace

std::string CustomTemplateName(std::int64_t number) {
    return "自定义模板(" + std::to_string(number) + ")";
}

RecordsetRef clsVIData::GetVchTemplateByUserID(const std::string& iUserID) {
    try {
        Query(std::string("if Not exists(select 1 from t_VchTemplate where FID = 0) ") + kCrLf + " begin " +
              kCrLf + " " + kTemplateInsert + "0,'标准模板',0,'0',GETDATE()) " + kCrLf + " end");
        return QueryAgain(
            "select a.* from (select FID,FName from t_VchTemplate where fid <> 0 and FUserID = " + iUserID +
            kCrLf + " union all " + kCrLf +
            " select FID,FName from t_VchTemplate where FID = 0 ) a order by a.FID ");
    } catch (const Error&) {
        return nullptr;
    }
}

std::string clsVIData::GetVchTpProfileByUserID(const std::string& iUserID) {
    try {
        Query("if Not exists(select 1 from t_VchTpProfile where FUserID = " + iUserID + ") " + kCrLf +
              " begin " + kCrLf + " insert into t_VchTpProfile(FUserID,FValue) values(" + iUserID + "," +
              SqlQuote(DefaultColumnProfile()) + ") " + kCrLf + " end");
        const RecordsetRef profile =
            QueryAgain("select FValue from t_VchTpProfile where FUserID = " + iUserID);
        return profile->RecordCount() > 0 ? profile->Value("FValue").ToTextOrEmpty() : std::string();
    } catch (const Error&) {
        return {};
    }
}

std::int32_t clsVIData::GetVchEntryCount(const std::string& iFID) {
    try {
        const RecordsetRef count = Query(CountLinesSql(iFID));
        return count->RecordCount() >= 1 ? count->Value("FCount").ToInt32() : 0;
    } catch (const Error&) {
        return 0;
    }
}

bool clsVIData::CheckVchTemplateIsExist(const std::string& strName) {
    try {
        return TemplatesOfName(strName)->RecordCount() >= 1;
    } catch (const Error&) {
        return false;
    }
}

RecordsetRef clsVIData::TemplatesOfName(const std::string& name) {
    return Query("select FID from t_VchTemplate where FName = " + SqlQuote(name));
}

std::int32_t clsVIData::FindVchTemplate(const std::string& strName, const std::string& userId) {
    try {
        const RecordsetRef found = TemplatesOfName(strName);
        if (found->RecordCount() < 1) return kNoTemplate;
        if (found->RecordCount() == 1) return found->Value("FID").ToInt32();
        const RecordsetRef own =
            QueryAgain("select FID from t_VchTemplate where FName = " + SqlQuote(strName) +
                       " and (FUserID = " + userId + " or FID = 0) order by FID desc ");
        return (own->RecordCount() >= 1 ? own : found)->Value("FID").ToInt32();
    } catch (const Error&) {
        return kUnreadable;
    }
}

bool clsVIData::DeleteVchTemplateInfo(const std::string& FID) {
    try {
        Query(" delete t_VchTemplate where FID = " + FID + kCrLf + " delete t_VchTemplateEntry where FID = " +
              FID + kCrLf + " delete t_VchTpControl where FID = " + FID);
        return true;
    } catch (const Error&) {
        return false;
    }
}

std::int32_t clsVIData::AskBaseOfNewNumber(std::int32_t lowest) {
    const RecordsetRef names = Query(
        "select REPLACE(REPLACE(fname,')',''),'自定义模板(','') as FNum from t_VchTemplate where FName like "
        "'%自定义模板(%'");
    std::set<std::int64_t> taken;
    for (; !names->AtEnd(); names->MoveNext()) {
        const std::string text = names->Value("FNum").ToTextOrEmpty();
        if (const auto number = WholeNumber(text)) taken.insert(*number);
        lowest = std::max(lowest, CustomNumber(text));
    }
    return BaseOfNewNumber(lowest, taken);
}

std::string clsVIData::NewTemplateName() {
    try {
        return CustomTemplateName(std::int64_t{AskBaseOfNewNumber(0)} + 1);
    } catch (const Error&) {
        return {};
    }
}

std::int32_t clsVIData::InsertVchTemplateInfo(std::int32_t& lMaxNum) {
    try {
        lMaxNum = AskBaseOfNewNumber(lMaxNum);
        QueryAgain(std::string(" declare @MaxFID int ") + kCrLf +
                   " select @MaxFID = MAX(FID)+1 from t_VchTemplate " + kCrLf + " " + kTemplateInsert +
                   "@MaxFID,'" + CustomTemplateName(std::int64_t{lMaxNum} + 1) + "'," +
                   entry::CurrentUserId() + ",'0',GETDATE())" + kCrLf);
        const RecordsetRef id = QueryAgain("select Max(FID) as FID from t_VchTemplate ");
        return id->Value("FID").ToInt32();
    } catch (const Error&) {
        return 0;
    }
}

RecordsetRef clsVIData::GetVchTemplateEntryInfo(const std::string& FID) {
    try {
        return Query("select * from t_VchTemplateEntry where FID = " + FID + " order by FNo,FEntryID ");
    } catch (const Error&) {
        return nullptr;
    }
}

}  // namespace vicenter::store
