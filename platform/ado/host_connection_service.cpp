#include "platform/ado/host_connection_service.h"

#include <utility>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "automation/lasting.h"
#include "automation/quietly.h"
#include "platform/ado/side_by_side.h"

namespace vicenter::ado {

namespace {

// One connection, open for as long as the unit lives; the brokers of its account set hand it out.
class PlainUnit : public UnitOfWork {
  public:
    explicit PlainUnit(std::string connectString)
        : connectString_(std::move(connectString)), connection_(OpenConnection(connectString_)) {
        begun_ = connection_->BeginUnit();
        if (begun_) current = this;
    }
    ~PlainUnit() override {
        if (begun_) current = nullptr;
        automation::Quietly([this] { connection_->Close(); });
    }
    bool Commit() override { return connection_->CommitUnit(); }

    bool Begun() const { return begun_; }
    static bool IsOpen() { return current != nullptr; }
    static ConnectionRef ConnectionFor(const std::string& connectString) {
        if (current == nullptr || current->connectString_ != connectString) return nullptr;
        return current->connection_;
    }

  private:
    static PlainUnit* current;

    std::string connectString_;
    ConnectionRef connection_;
    bool begun_ = false;
};

PlainUnit* PlainUnit::current = nullptr;

// A plain connection from the property string's ConnectString stands behind the default broker. Connections
// are cheap to open again (the back ends pool their sessions), so that each statement gets its own.
class PlainBroker : public Broker {
  public:
    void Bind(const std::string& propsString) override { propsString_ = propsString; }
    automation::ObjectRef Auxiliary() override { return nullptr; }
    void Settle() override {}
    ConnectionRef GiveConnection() override {
        const std::string connectString = ConnectStringOf(propsString_);
        if (ConnectionRef round = SideBySideConnection(connectString)) return round;
        ConnectionRef shared = PlainUnit::ConnectionFor(connectString);
        return shared ? shared : OpenConnection(connectString);
    }

  private:
    std::string propsString_;
};

class PlainFramework : public HostFramework {
  public:
    std::shared_ptr<Broker> GiveBroker() override { return std::make_shared<PlainBroker>(); }
    automation::ObjectRef CreateObject(const std::string& progId) override {
        return automation::CreateObject(progId);
    }
    std::optional<std::string> PlainConnectString(const std::string& propsString) override {
        std::string connectString = ConnectStringOf(propsString);
        if (PlainUnit::ConnectionFor(connectString)) return std::nullopt;
        return connectString;
    }
    std::unique_ptr<UnitOfWork> BeginUnit(const std::string& propsString) override {
        if (PlainUnit::IsOpen()) return nullptr;
        auto unit = std::make_unique<PlainUnit>(ConnectStringOf(propsString));
        return unit->Begun() ? std::move(unit) : nullptr;
    }
};

std::shared_ptr<HostFramework>& Current() {
    static const automation::Lasting<std::shared_ptr<HostFramework>> framework;
    return *framework;
}

}  // namespace

std::string ConnectStringOf(const std::string& propsString) {
    return ConnectString(propsString).Value("ConnectString");
}

HostFramework& HostFramework::Process() {
    if (!Current()) Current() = std::make_shared<PlainFramework>();
    return *Current();
}

void HostFramework::SetProcess(std::shared_ptr<HostFramework> framework) {
    Current() = std::move(framework);
}

}  // namespace vicenter::ado
