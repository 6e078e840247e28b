#include "front/ado_connection.h"

#include <memory>

#include "automation/class_registry.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/odbc/odbc_provider.h"

namespace vicenter::front {

using automation::Arguments;
using automation::Error;
using automation::MemberTable;
using automation::Method;
using automation::Property;
using automation::Variant;

void AdoConnection::Open(const Variant& connectString) {
    if (!connectString.IsMissing()) connectString_ = connectString.ToText();
    connection_ = ado::OpenConnection(connectString_);
    if (commandTimeout_) connection_->SetCommandTimeout(*commandTimeout_);
}

void AdoConnection::Close() {
    if (connection_) connection_->Close();
    connection_ = nullptr;
}

ado::RecordsetRef AdoConnection::Execute(const std::string& text, std::int64_t& affected) {
    if (!IsOpen())
        throw Error(ado::error_number::kObjectClosed, "Operation is not allowed when the object is closed.",
                    "ADODB.Connection");
    return connection_->Execute(text, &affected);
}

std::int32_t AdoConnection::CommandTimeout() const {
    if (IsOpen()) return connection_->CommandTimeout();
    return commandTimeout_.value_or(ado::kUsualCommandTimeout);
}

void AdoConnection::SetCommandTimeout(std::int32_t seconds) {
    if (seconds < 0) throw Error(automation::error_number::kInvalidProcedureCall, {}, "ADODB.Connection");
    if (IsOpen()) connection_->SetCommandTimeout(seconds);
    commandTimeout_ = seconds;
}

void AdoConnection::Cancel() {
    if (IsOpen()) connection_->Cancel();
}

const MemberTable<AdoConnection>& AdoConnection::Members() {
    using Self = AdoConnection;
    static const MemberTable<Self> table{
        Property<Self>(
            "ConnectionString", [](Self& self, Arguments&) { return Variant(self.ConnectString()); },
            [](Self& self, Arguments& a) { self.SetConnectString(a[0].Value().ToText()); })
            .AsDefault(),
        Property<Self>("State", [](Self& self, Arguments&) { return Variant(self.IsOpen() ? 1 : 0); }),
        Property<Self>(
            "CommandTimeout", [](Self& self, Arguments&) { return Variant(self.CommandTimeout()); },
            [](Self& self, Arguments& a) { self.SetCommandTimeout(a[0].Value().ToInt32()); }),
        Method<Self>("Cancel", {},
                     [](Self& self, Arguments&) {
                         self.Cancel();
                         return Variant();
                     }),
        Method<Self>("Open", {"ConnectionString?"},
                     [](Self& self, Arguments& a) {
                         self.Open(a[0].Value());
                         return Variant();
                     }),
        Method<Self>("Execute", {"CommandText", "RecordsAffected?", "Options?"},
                     [](Self& self, Arguments& a) {
                         std::int64_t affected = 0;
                         auto rows = self.Execute(a[0].Value().ToText(), affected);
                         if (a[1].IsByReference()) a[1].Assign(affected);
                         return Variant(automation::ObjectRef(std::move(rows)));
                     }),
        Method<Self>("Close", {},
                     [](Self& self, Arguments&) {
                         self.Close();
                         return Variant();
                     }),
    };
    return table;
}

void RegisterAdoClasses() {
    ado::RegisterAccountSetProvider();
    ado::RegisterOdbcProviders();
    automation::ClassRegistry::Process().Register("ADODB.Connection",
                                                  [] { return std::make_shared<AdoConnection>(); });
}

}  // namespace vicenter::front
