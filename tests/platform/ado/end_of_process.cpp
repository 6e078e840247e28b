// Connections and pool calls that outlive the session pool: what static objects of a host do at the end of a
// process. Returns 0; a crash on the way out is the failure.

#include <cstdio>

#include "automation/error.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::ado {
namespace {

struct LastOut {
    ConnectionRef connection;
    ~LastOut() {
        connection.reset();
        CloseIdleAccountSets();
    }
};
// Made before the pool, hence destroyed after it.
LastOut lastOut;

int Run() {
    static const fakes::TemporaryFolder folder;
    RegisterAccountSetProvider();
    const std::string text = "Provider=VelaAccountSet;Create=yes;Data Source=" + folder.File("set.vas");
    lastOut.connection = OpenConnection(text);
    lastOut.connection->Execute("create table t (a int)");
    OpenConnection(text)->Execute("select * from t");  // one session stays idle in the pool
    return 0;
}

}  // namespace
}  // namespace vicenter::ado

int main() {
    try {
        return vicenter::ado::Run();
    } catch (const vicenter::automation::Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
