#pragma once

// The host's data-connection service, as far as the component uses it.
//
// The framework object is process-wide and created on first use; it gives brokers and creates host objects. A
// broker is bound to the host property string and then hands out the connection for each statement. A host
// may set a framework of its own; the default opens a plain connection from the property string's
// ConnectString.

#include <memory>
#include <optional>
#include <string>

#include "automation/object.h"
#include "platform/ado/connection.h"

namespace vicenter::ado {

// The ConnectString that a host property string holds.
std::string ConnectStringOf(const std::string& propsString);

class Broker {
  public:
    Broker() = default;
    Broker(const Broker&) = delete;
    Broker& operator=(const Broker&) = delete;
    virtual ~Broker() = default;

    virtual void Bind(const std::string& propsString) = 0;
    // A second object, kept by whoever asked for it; may be no object.
    virtual automation::ObjectRef Auxiliary() = 0;
    // The parameterless call before a query and after a statement.
    virtual void Settle() = 0;
    // The connection for the next statement; throws automation::Error when there is none.
    virtual ConnectionRef GiveConnection() = 0;
};

// Statements of one command that are kept or undone together, through whichever brokers they go. Whoever
// destroys it before it is committed undoes them.
class UnitOfWork {
  public:
    UnitOfWork() = default;
    UnitOfWork(const UnitOfWork&) = delete;
    UnitOfWork& operator=(const UnitOfWork&) = delete;
    virtual ~UnitOfWork() = default;

    // False when they have been undone instead.
    virtual bool Commit() = 0;
};

class HostFramework {
  public:
    HostFramework() = default;
    HostFramework(const HostFramework&) = delete;
    HostFramework& operator=(const HostFramework&) = delete;
    virtual ~HostFramework() = default;

    virtual std::shared_ptr<Broker> GiveBroker() = 0;
    // The host's object factory; the default asks the process's class registry.
    virtual automation::ObjectRef CreateObject(const std::string& progId) = 0;

    // None when the host's service keeps each statement by itself, and within another one, whose part the
    // statements are then. The caller ends it before it waits for a user. Throws automation::Error when it
    // cannot be begun.
    virtual std::unique_ptr<UnitOfWork> BeginUnit(const std::string&) { return nullptr; }

    // The connect string whose plain connections the brokers of that property string hand out; nothing when
    // the connections are the host's own affair, or one that a unit holds.
    virtual std::optional<std::string> PlainConnectString(const std::string&) { return std::nullopt; }

    // The process-wide framework object.
    static HostFramework& Process();
    // Replaces it; none puts the default back.
    static void SetProcess(std::shared_ptr<HostFramework> framework);
};

}  // namespace vicenter::ado
