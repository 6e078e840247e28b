#pragma once

// Classes by ProgID. The process has one registry; hosts register their components in it, and the component
// creates them at the point of use. A ProgID is compared without regard to case.
// User-interface thread only.

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/object.h"

namespace vicenter::automation {

class ClassRegistry {
  public:
    using Factory = std::function<ObjectRef()>;
    // Gives no object for a ProgID that it does not know.
    using Source = std::function<ObjectRef(std::string_view progId)>;

    // The registry that CreateObject() uses.
    static ClassRegistry& Process();

    // A later registration of the same ProgID replaces the earlier one.
    void Register(std::string progId, Factory factory);
    void Unregister(std::string_view progId);
    bool IsRegistered(std::string_view progId) const;
    std::vector<std::string> ProgIds() const;
    // Where ProgIDs are looked for that are not registered here: what the system has installed.
    void LookFurtherIn(Source source) { further_ = std::move(source); }
    // Throws Error 429 when the ProgID is unknown or the factory gives no object; other errors of the factory
    // pass.
    ObjectRef Create(std::string_view progId) const;

    // Keeps the whole content of a registry and puts it back at the end of the scope: for tests and examples.
    class Restore;

  private:
    struct NameLess {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };
    std::map<std::string, Factory, NameLess> classes_;
    Source further_;
};

class ClassRegistry::Restore {
  public:
    explicit Restore(ClassRegistry& registry = Process()) : registry_(registry), saved_(registry) {}
    Restore(const Restore&) = delete;
    Restore& operator=(const Restore&) = delete;
    ~Restore() { registry_ = std::move(saved_); }

  private:
    ClassRegistry& registry_;
    ClassRegistry saved_;
};

// Creates an object of the process's registry, or of what it looks further in.
ObjectRef CreateObject(std::string_view progId);

}  // namespace vicenter::automation
