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

constexpr std::int32_t kUnspecified = -1;  // ADO's option for a text of any kind

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

RecordsetRef ReadToEnd(const ObjectRef& foreign) {
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
    if (foreign->HasMember("Close")) foreign->Call("Close");
    return rows;
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
        Variant answer;
        try {
            answer = connection_->Call("Execute",
                                       {std::string(batch), Argument::ByReference(affected), kUnspecified});
        } catch (const Error& error) {
            TakeErrors(error);
            throw;
        }
        if (recordsAffected != nullptr) *recordsAffected = affected.IsNumeric() ? affected.ToInt64() : -1;
        if (IsNoObject(answer) || !HasRows(*answer.AsObject())) return std::make_shared<Recordset>();
        return ReadToEnd(answer.AsObject());
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
