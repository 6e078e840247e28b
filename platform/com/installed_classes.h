#pragma once

// The classes that the system itself knows by ProgID, behind those that the process registers: a host's
// components, a spreadsheet program. Windows alone has any; elsewhere nothing is found. User-interface
// thread.

#include <string_view>

namespace vicenter::com {

// As long as it lives CreateObject() looks there for what the process does not register. COM is begun on the
// thread that had none.
class InstalledClasses {
  public:
    InstalledClasses();
    InstalledClasses(const InstalledClasses&) = delete;
    InstalledClasses& operator=(const InstalledClasses&) = delete;
    ~InstalledClasses();

    // The same for another thread, when the one before has ended.
    void BeginHere();

    // Whether the system knows the class; it may fail to start all the same.
    static bool Has(std::string_view progId);

  private:
    // By Windows alone.
    [[maybe_unused]] bool begun_ = false;
    [[maybe_unused]] unsigned long thread_ = 0;
};

}  // namespace vicenter::com
