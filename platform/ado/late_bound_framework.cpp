#include "platform/ado/late_bound_framework.h"

#include <utility>
#include <vector>

#include "automation/class_registry.h"
#include "automation/error.h"

namespace vicenter::ado {

using automation::Argument;
using automation::Arguments;
using automation::Error;
using automation::ObjectRef;
using automation::Variant;

namespace {

constexpr std::int32_t kUnspecified = -1;   // ADO's option for a text of any kind
constexpr std::int32_t kNotCapable = 3251;  // ADO's answer of a provider that knows one result alone

// What a member must answer.
ObjectRef Required(const Variant& answer, const char* member) {
    if (answer.IsObject() && answer.AsObject() != nullptr) return answer.AsObject();
    throw Error(automation::error_number::kObjectVariableNotSet,
                std::string(member) + " of the host's connection service gave no object", "HostFramework");
}

bool IsNoObject(const Variant& answer) {
    return !answer.IsObject() || std::get<ObjectRef>(answer.Raw()) == nullptr;
}

// A code that is none of ours is read as a text: it only says how the column is told of.
DataType TypeOf(automation::Object& field) {
    if (!field.HasMember("Type")) return DataType::kVarWChar;
    const auto type = static_cast<DataType>(field.Get("Type").ToInt32());
    switch (type) {
        case DataType::kSmallInt:
        case DataType::kInteger:
        case DataType::kDouble:
        case DataType::kCurrency:
        case DataType::kBoolean:
        case DataType::kTinyInt:
        case DataType::kBigInt:
        case DataType::kGuid:
        case DataType::kBinary:
        case DataType::kChar:
        case DataType::kNumeric:
        case DataType::kTimeStamp:
        case DataType::kVarChar:
        case DataType::kLongVarChar:
        case DataType::kLongVarWChar:
            return type;
        case DataType::kVarWChar:
            break;
    }
    return DataType::kVarWChar;
}

bool HasRows(automation::Object& recordset) {
    return !recordset.HasMember("State") || recordset.Get("State").ToInt32() != 0;
}

void CloseRead(automation::Object& recordset) {
    if (recordset.HasMember("Close")) recordset.Call("Close");
}

RecordsetRef Rows(const ObjectRef& foreign) {
    const ObjectRef fields = Required(foreign->Get("Fields"), "Fields");
    const std::int32_t count = fields->Get("Count").ToInt32();
    const auto field = [&](std::int32_t i) { return Required(fields->Get("Item", {i}), "Item"); };
    std::vector<Column> columns;
    for (std::int32_t i = 0; i < count; ++i) {
        const ObjectRef described = field(i);
        columns.push_back({described->Get("Name").ToText(), TypeOf(*described), ""});
    }
    auto rows = std::make_shared<Recordset>(std::move(columns));
    for (; !foreign->Get("EOF").ToBoolean(); foreign->Call("MoveNext")) {
        std::vector<Variant> values;
        values.reserve(static_cast<std::size_t>(count));
        for (std::int32_t i = 0; i < count; ++i)
            values.push_back(field(i)->Get("Value"));
        rows->AppendRow(std::move(values));
    }
    return rows;
}

// The result behind that one; no object at the end. What ADO answers for what fails behind the first result
// is an error of this call.
Variant Behind(automation::Object& recordset) {
    try {
        return recordset.Call("NextRecordset");
    } catch (const Error& error) {
        if (error.Number() == kNotCapable) return {};
        throw;
    }
}

// All results to the end of the batch; the first one that has columns, if any. A statement that only changes
// gives a closed recordset of its own, and what stands behind it is done, or fails, no later than it is asked
// for.
RecordsetRef FirstRows(Variant answer) {
    RecordsetRef first;
    while (!IsNoObject(answer)) {
        const ObjectRef recordset = answer.AsObject();
        const bool open = HasRows(*recordset);
        if (open && !first) first = Rows(recordset);
        if (!recordset->HasMember("NextRecordset")) {
            if (open) CloseRead(*recordset);
            break;
        }
        answer = Behind(*recordset);
        // The last one; those before it ADO closes when it goes on.
        if (IsNoObject(answer) && recordset->HasMember("State") && HasRows(*recordset)) CloseRead(*recordset);
    }
    return first ? first : std::make_shared<Recordset>();
}

class LateBoundConnection final : public Connection {
  public:
    explicit LateBoundConnection(ObjectRef connection) : connection_(std::move(connection)) {}

    void Open(const std::string& /*connectString*/) override {}  // the host has
    bool IsOpen() const override { return connection_ != nullptr; }
    void Close() override { connection_ = nullptr; }  // the host does
    const std::vector<DriverError>& Errors() const override { return errors_; }

    RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected) override {
        errors_.clear();
        Variant affected(std::int32_t{-1});
        try {
            const Variant answer = connection_->Call(
                "Execute", {std::string(batch), Argument::ByReference(affected), kUnspecified});
            if (recordsAffected != nullptr) *recordsAffected = affected.IsNumeric() ? affected.ToInt64() : -1;
            return FirstRows(answer);
        } catch (const Error& error) {
            TakeErrors(error);
            throw;
        }
    }

  private:
    void TakeErrors(const Error& told) {
        try {
            if (connection_->HasMember("Errors")) {
                const ObjectRef errors = Required(connection_->Get("Errors"), "Errors");
                for (std::int32_t i = 0; i < errors->Get("Count").ToInt32(); ++i) {
                    const ObjectRef error = Required(errors->Get("Item", {i}), "Item");
                    DriverError& taken = errors_.emplace_back();
                    taken.native = error->Get("NativeError").ToInt32();
                    taken.text = error->Get("Description").ToTextOrEmpty();
                }
            }
        } catch (const Error&) {
            // What has failed is told by its own error.
        }
        if (errors_.empty()) errors_.push_back({told.Number(), 0, 0, 0, "", "", told.Text()});
    }

    ObjectRef connection_;
    std::vector<DriverError> errors_;
};

class LateBoundBroker final : public Broker {
  public:
    explicit LateBoundBroker(ObjectRef broker) : broker_(std::move(broker)) {}

    void Bind(const std::string& propsString) override { broker_->Call("Bind", {propsString}); }
    ObjectRef Auxiliary() override {
        const Variant answer = broker_->Call("Auxiliary");
        return IsNoObject(answer) ? nullptr : answer.AsObject();
    }
    void Settle() override {
        if (broker_->HasMember("Settle")) broker_->Call("Settle");
    }
    ConnectionRef GiveConnection() override {
        return std::make_shared<LateBoundConnection>(
            Required(broker_->Call("GiveConnection"), "GiveConnection"));
    }

  private:
    ObjectRef broker_;
};

class LateBoundFramework final : public HostFramework {
  public:
    explicit LateBoundFramework(ObjectRef framework) : framework_(std::move(framework)) {}

    std::shared_ptr<Broker> GiveBroker() override {
        return std::make_shared<LateBoundBroker>(Required(framework_->Call("GiveBroker"), "GiveBroker"));
    }
    ObjectRef CreateObject(const std::string& progId) override {
        if (!framework_->HasMember("CreateObject")) return automation::CreateObject(progId);
        return Required(framework_->Call("CreateObject", {progId}), "CreateObject");
    }

  private:
    ObjectRef framework_;
};

}  // namespace

std::shared_ptr<HostFramework> MakeLateBoundFramework(ObjectRef framework) {
    return std::make_shared<LateBoundFramework>(std::move(framework));
}

}  // namespace vicenter::ado
