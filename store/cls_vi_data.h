#pragma once

// clsVIData: the component's one public data-access class, created by hosts as VelaVICenter.clsVIData.
//
// Every statement against the template tables and the host's master data goes through an instance. Callers
// create a fresh one for each use and drop it afterwards; it keeps no transaction and no cursor between
// calls, and the recordsets that it returns outlive it. Each operation opens the connection anew from the
// host property string.
//
// Only IsExecuteSql speaks to the user; every other operation answers an error with its empty default (no
// recordset, empty text, 0, false), silently. Ids arrive as texts and go into the statements unchanged.
// User-interface thread.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "automation/member_table.h"
#include "platform/ado/connection.h"
#include "platform/ado/host_connection_service.h"
#include "platform/scripting/dictionary.h"
#include "store/template_columns.h"

namespace vicenter::store {

using ado::RecordsetRef;
using automation::Variant;

// The reserved standard template.
inline constexpr std::int32_t kStandardTemplateId = 0;
inline constexpr const char* kStandardTemplateName = "标准模板";

// "自定义模板(" + number + ")".
std::string CustomTemplateName(std::int64_t number);

class clsVIData : public automation::TableObject<clsVIData> {
  public:
    clsVIData();
    ~clsVIData() override;
    static const automation::MemberTable<clsVIData>& Members();
    std::string TypeName() const override { return "clsVIData"; }

    // --- generic members

    // "Requires a transaction": what the host's services make of a batch.
    std::int32_t mTransMode() const { return 2; }
    // Runs one batch. An error is shown to the user with its description; then false.
    bool IsExecuteSql(const std::string& strsql);
    // Runs one query: its rows (none: an empty recordset), or no recordset on an error.
    RecordsetRef GetRs(const std::string& strsql);
    // The first row of the user's cloud-account record, keyed by column name; no object without one.
    scripting::DictionaryRef GetUserCloudInfo();

    // --- template operations

    // The user's own templates and the standard template (created on first use) as (FID, FName), ordered by
    // FID.
    RecordsetRef GetVchTemplateByUserID(const std::string& iUserID);
    // The user's column profile, the default one stored on first use.
    std::string GetVchTpProfileByUserID(const std::string& iUserID);
    std::int32_t GetVchEntryCount(const std::string& iFID);
    // True when any user's template bears that name.
    bool CheckVchTemplateIsExist(const std::string& strName);
    // The same question by the same statement: the template's FID, kNoTemplate when there is none,
    // kUnreadable when the account set does not answer. When several users have one of that name, one more
    // question: the user's own comes first, then the standard template.
    static constexpr std::int32_t kNoTemplate = -1;
    static constexpr std::int32_t kUnreadable = -2;
    std::int32_t FindVchTemplate(const std::string& strName, const std::string& userId);
    bool DeleteVchTemplateInfo(const std::string& FID);
    // Inserts a custom template of the current user and returns its FID. lMaxNum goes in as a lower bound and
    // comes back as the largest custom number found; the new template bears the next one.
    std::int32_t InsertVchTemplateInfo(std::int32_t& lMaxNum);
    // The name that the next one would bear; empty when the account set does not answer.
    std::string NewTemplateName();
    // All columns of the template's entry lines, ordered by FNo, FEntryID.
    RecordsetRef GetVchTemplateEntryInfo(const std::string& FID);

    // --- master data

    // The master record of a typed number by grid column: 2 explanation, 5 account, 9 settlement type, 13
    // currency, 17 measure unit; no recordset for any other column.
    RecordsetRef GetItemInfoByNumber(std::int32_t iType, const Variant& strValue);
    // The item numbers of a combination, one piece per item class in ascending class id, joined by ",".
    std::string MergeItemsInfo(const std::string& lDetailID);
    // The same; nothing when they cannot be read, for callers that must not take that for "no items".
    std::optional<std::string> ItemsInfo(const std::string& lDetailID);
    // (FDetailID, FDetailCount) of a detail account that carries items; empty for any other.
    RecordsetRef GetItems(const Variant& accountNumber);
    // (FItemClassID, FName) of a combination's item classes.
    RecordsetRef GetItemClassIDs(const std::string& FDetailID);
    // True when the cell is valid; an error inside the check counts as invalid.
    bool CheckErrorCell(std::int32_t iType, const Variant& strAcctNumber, const Variant& strSettleName,
                        const Variant& strCyName, const Variant& strUnitName, const Variant& strItems);

    // --- what was answered silently

    // The error text of the last statement that failed in this process, for callers that have nothing else to
    // tell; empty when none has since it was forgotten.
    static const std::string& LastFailure();
    // What the user was shown of the last batch that was refused; empty when none was since the last one ran.
    static const std::string& LastRefusal();
    static void ForgetFailure();
    // Others were in the way of that statement: they held a lock for longer than it waits.
    static bool LastFailureWasLock();
    // What failed beside a statement, at the beginning or the end of a unit.
    static void NoteFailure(const automation::Error& error);
    // Shows the last failure to the user as that of a batch.
    static void ShowFailure();

  private:
    // Binds a new broker to the host property string and keeps its auxiliary object.
    void Open();
    // Open, the parameterless call, the connection, Execute: the order of every query. Errors pass.
    RecordsetRef Query(const std::string& sql);
    // One more statement on the broker that Query opened.
    RecordsetRef QueryAgain(const std::string& sql);
    // On which number a new template's name is built, that or a larger one. Errors pass.
    std::int32_t AskBaseOfNewNumber(std::int32_t lowest);
    // (FID) of every user's templates of that name. Errors pass.
    RecordsetRef TemplatesOfName(const std::string& name);
    // The checks that take more than one question. Errors pass.
    bool ItemsAreValid(const std::string& accountNumber, const std::string& items);
    bool SettlementIsValid(const std::string& accountNumber, const std::string& settleName);
    bool CurrencyIsValid(const std::string& accountNumber, const std::string& currencyName);

    std::shared_ptr<ado::Broker> broker_;
    automation::ObjectRef auxiliary_;
};

}  // namespace vicenter::store
