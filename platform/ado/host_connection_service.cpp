#include "platform/ado/host_connection_service.h"

#include <utility>

#include "automation/class_registry.h"

namespace vicenter::ado {

namespace {

// A plain connection from the property string's ConnectString stands behind the default broker. Connections
// are cheap to open again (the back ends pool their sessions), so that each statement gets its own.
class PlainBroker : public Broker {
  public:
    void Bind(const std::string& propsString) override { propsString_ = propsString; }
    automation::ObjectRef Auxiliary() override { return nullptr; }
    void Settle() override {}
    ConnectionRef GiveConnection() override {
        return OpenConnection(ConnectString(propsString_).Value("ConnectString"));
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
};

std::shared_ptr<HostFramework>& Current() {
    static std::shared_ptr<HostFramework> framework;
    return framework;
}

}  // namespace

HostFramework& HostFramework::Process() {
    if (!Current()) Current() = std::make_shared<PlainFramework>();
    return *Current();
}

void HostFramework::SetProcess(std::shared_ptr<HostFramework> framework) {
    Current() = std::move(framework);
}

}  // namespace vicenter::ado
