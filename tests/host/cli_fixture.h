#pragma once

// Runs the command line in this process on an account set of the test's own.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "host/cli/json.h"
#include "tests/host/cli_run.h"
#include "tests/host/demo_set.h"

namespace vicenter::host::test {

class CliFixture : public testing::Test {
  protected:
    CliAnswer Run(const std::vector<std::string>& arguments, const std::string& input = {}) {
        std::vector<std::string> all = {"--account-set", file_};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return RunVicenter(all, input);
    }
    std::int32_t Number(const std::string& query) {
        const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(file_));
        return connection->Execute(query)->Value(std::size_t{0}).ToInt32();
    }

    TestFolder folder_;
    std::string file_ = CopySet(folder_);
    automation::ClassRegistry::Restore restore_;
};

// A member of an object, or of the object at a place of an array.
inline const Variant& JsonMemberOf(const Variant& object, const std::string& name) {
    static const Variant kNone;
    const auto* dictionary = dynamic_cast<const scripting::Dictionary*>(object.AsObject().get());
    const Variant* found = dictionary ? dictionary->Item(name) : nullptr;
    return found ? *found : kNone;
}

}  // namespace vicenter::host::test
