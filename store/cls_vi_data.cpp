#include "store/cls_vi_data.h"

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "entry/kept_error.h"
#include "entry/message_box.h"
#include "store/engine_text.h"
#include "store/stoppable_command.h"

namespace vicenter::store {

using automation::Error;

namespace {

std::string lastFailure;
bool lastFailureWasLock = false;
std::string lastRefusal;

void ShowRefusal(const std::string& text) {
    lastRefusal = EngineTextInChinese(text);
    entry::Tell(lastRefusal);
}

}  // namespace

clsVIData::clsVIData() {
    try {
        broker_ = ado::HostFramework::Process().GiveBroker();
        auxiliary_ = broker_->Auxiliary();
    } catch (const Error&) {
        // The first statement asks again and reports it in its own way.
        broker_.reset();
    }
}

clsVIData::~clsVIData() {
    auxiliary_.reset();
    broker_.reset();
}

void clsVIData::Open() {
    const std::string propsString = entry::GetPropsString();
    broker_ = ado::HostFramework::Process().GiveBroker();
    broker_->Bind(propsString);
    auxiliary_ = broker_->Auxiliary();
}

RecordsetRef clsVIData::Query(const std::string& sql) {
    try {
        StoppableCommand::NeedGoingOn();
        Open();
    } catch (const Error& error) {
        StoppableCommand::Note(error);
        NoteFailure(error);
        throw;
    }
    return QueryAgain(sql);
}

RecordsetRef clsVIData::QueryAgain(const std::string& sql) {
    try {
        StoppableCommand::NeedGoingOn();
        broker_->Settle();
        return broker_->GiveConnection()->Execute(sql);
    } catch (const Error& error) {
        StoppableCommand::Note(error);
        NoteFailure(error);
        throw;
    }
}

const std::string& clsVIData::LastFailure() {
    return lastFailure;
}

const std::string& clsVIData::LastRefusal() {
    return lastRefusal;
}

void clsVIData::ForgetFailure() {
    lastFailure.clear();
    lastFailureWasLock = false;
}

bool clsVIData::LastFailureWasLock() {
    return lastFailureWasLock;
}

void clsVIData::NoteFailure(const Error& error) {
    lastFailure = error.Text();
    // A question that is not answered in time waits for a lock, as far as anybody knows.
    lastFailureWasLock = error.Number() == ado::error_number::kTimeoutExpired || SaysLocked(error.Text());
}

void clsVIData::ShowFailure() {
    ShowRefusal(lastFailure);
}

bool clsVIData::IsExecuteSql(const std::string& strsql) {
    // Whoever has stopped the command has been told so already.
    if (StoppableCommand::IsStopped()) return false;
    lastRefusal.clear();
    try {
        Open();
        std::int64_t recordsAffected = 0;
        broker_->GiveConnection()->Execute(strsql, &recordsAffected);
        broker_->Settle();
        return true;
    } catch (const Error& error) {
        StoppableCommand::Note(error);
        entry::KeepError(error);
        ShowRefusal(error.Text());
        return false;
    }
}

RecordsetRef clsVIData::GetRs(const std::string& strsql) {
    try {
        return Query(strsql);
    } catch (const Error& error) {
        entry::KeepError(error);
        return nullptr;
    }
}

scripting::DictionaryRef clsVIData::GetUserCloudInfo() {
    try {
        const automation::ObjectRef information = automation::CreateObject("VelaBillDataAccess.SysInfo");
        const Variant answer =
            information->Call("GetUserCloudInfo", {entry::GetPropsString(), entry::CurrentUserId()});
        if (!answer.IsObject() || !std::get<automation::ObjectRef>(answer.Raw())) return nullptr;
        const automation::ObjectRef& recordset = answer.AsObject();
        if (recordset->Get("RecordCount").ToInt32() == 0 || recordset->Get("EOF").ToBoolean()) return nullptr;
        const automation::ObjectRef fields = recordset->Get("Fields").AsObject();
        auto result = std::make_shared<scripting::Dictionary>();
        const std::int32_t count = fields->Get("Count").ToInt32();
        for (std::int32_t i = 0; i < count; ++i) {
            const automation::ObjectRef field = fields->Get("Item", {i}).AsObject();
            result->Add(field->Get("Name"), field->Get("Value"));
        }
        return result;
    } catch (const Error& error) {
        entry::KeepError(error);
        return nullptr;
    }
}

}  // namespace vicenter::store
