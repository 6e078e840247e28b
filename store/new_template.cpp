#include "store/new_template.h"

#include <utility>

#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/engine_text.h"
#include "store/statements.h"

namespace vicenter::store {

using entry::kCrLf;

namespace {

// Clears away what belongs to no template. Named in every batch, so that an account set that locks as a whole
// is locked when it begins.
std::string ClearingAboveTheLargest() {
    const std::string which = " where FID > (select Max(FID) from t_VchTemplate)";
    std::string sql;
    for (const std::string table : {"t_VchTemplateEntry", "t_VchTpControl"})
        sql += "if exists(select 1 from " + table + which + ") delete " + table + which + kCrLf;
    return sql;
}

}  // namespace

NewTemplate::NewTemplate(std::string name, const std::string& ofUser) : name_(std::move(name)) {
    clsVIData::ForgetFailure();
    unit_.emplace();
    // Whoever waited in vain for others to end would do so a second time.
    if (unit_->HasBegun() || !clsVIData::LastFailureWasLock()) fate_ = ClearWay(ofUser);
    if (MayWrite()) return;
    why_ = clsVIData::LastFailure();
    unit_.reset();
}

NewTemplate::Fate NewTemplate::ClearWay(const std::string& ofUser) const {
    // Where rows are locked, nobody else makes one of that name before the unit ends.
    const ado::RecordsetRef found =
        GetRecordset(ClearingAboveTheLargest() +
                     "select count(*) as FNamed from t_VchTemplate with (updlock, holdlock) where FName = " +
                     entry::SqlQuote(name_) + (ofUser.empty() ? "" : " and FUserID = " + ofUser));
    if (found == nullptr || found->RecordCount() < 1) return Fate::Unknown;
    return found->Value(std::size_t{0}).ToInt32() == 0 ? Fate::Free : Fate::Taken;
}

std::string NewTemplate::WhyNot(const std::string& undone) const {
    if (MayWrite()) return {};
    const std::string text = (fate_ == Fate::Taken ? "名为 " + name_ + " 的模板已在别处建立，"
                                                   : "无法确定是否已有名为 " + name_ + " 的模板，") +
                             undone + "，账套保持原样！";
    return why_.empty() ? text : text + kCrLf + kCrLf + EngineTextInChinese(why_);
}

bool NewTemplate::Commit() {
    return MayWrite() && unit_->Commit();
}

bool NewTemplate::RunAndCommit(const std::string& sql) {
    if (!MayWrite() || !RunSql(sql)) return false;
    if (Commit()) return true;
    clsVIData::ShowFailure();
    return false;
}

}  // namespace vicenter::store
