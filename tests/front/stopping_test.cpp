// Statements that a host can stop: by a time limit of its connection, and from another thread.

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "tests/fakes/own_folder.h"
#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

constexpr const char* kEndless = "declare @i int set @i = 0 while 1 = 1 set @i = 1 - @i";

class Stopping : public FrontTest {
  protected:
    // Cancels from another thread for as long as the work takes.
    static void Cancelling(const std::function<void()>& work) {
        std::atomic<bool> done{false};
        std::thread other([&] {
            while (!done) {
                vic_cancel();
                std::this_thread::yield();
            }
        });
        work();
        done = true;
        other.join();
    }

    const fakes::OwnFolder folder_;
    const std::string connect_ =
        "Provider=VelaAccountSet;Create=yes;Pooling=no;Data Source=" + (folder_.Path() / "set.vas").string();
};

vic_int32 IntOf(Handle& object, const char* member) {
    Value value;
    EXPECT_EQ(vic_get(object.object, member, &value.variant), 0) << vic_error_description();
    return value.variant.type == VIC_INT32 ? value.variant.value.int32 : -99;
}

TEST_F(Stopping, ABatchEndsAfterTheConnectionsCommandTimeout) {
    Handle connection("ADODB.Connection");
    EXPECT_EQ(IntOf(connection, "CommandTimeout"), 30);
    vic_variant seconds = Value::Int(1);
    ASSERT_EQ(vic_put(connection.object, "CommandTimeout", &seconds), 0);
    ASSERT_EQ(connection.Call("Open", {Value::Text(connect_)}), 0) << vic_error_description();
    EXPECT_EQ(IntOf(connection, "CommandTimeout"), 1);
    ASSERT_EQ(connection.Call("Execute", {Value::Text("create table t (a int)")}), 0);
    const std::string batch = std::string("insert into t values(1) ") + kEndless;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(connection.Call("Execute", {Value::Text(batch)}), VIC_ERROR_TIMEOUT);
    EXPECT_STREQ(vic_error_description(), "Query timeout expired");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    Value rows;
    ASSERT_EQ(connection.Call("Execute", {Value::Text("select * from t")}, &rows), 0);
    Handle recordset(rows.variant.value.object);
    rows.variant = vic_variant{};
    EXPECT_EQ(IntOf(recordset, "RecordCount"), 0);
    seconds = Value::Int(-1);
    EXPECT_EQ(vic_put(connection.object, "CommandTimeout", &seconds), 5);
    EXPECT_EQ(IntOf(connection, "CommandTimeout"), 1);
}

TEST_F(Stopping, TheConnectStringSetsTheTimeoutToo) {
    Handle connection("ADODB.Connection");
    ASSERT_EQ(connection.Call("Open", {Value::Text(connect_ + ";Command Timeout=0")}), 0);
    EXPECT_EQ(IntOf(connection, "CommandTimeout"), 0);
    ASSERT_EQ(connection.Call("Close"), 0);
    EXPECT_NE(connection.Call("Open", {Value::Text(connect_ + ";Command Timeout=soon")}), 0);
    EXPECT_STREQ(vic_error_description(),
                 "Invalid value specified for connection string attribute 'Command Timeout'.");
    EXPECT_NE(connection.Call("Open", {Value::Text(connect_ + ";Command Timeout=-1")}), 0);
}

TEST_F(Stopping, AnotherThreadCancelsTheBatch) {
    Handle connection("ADODB.Connection");
    ASSERT_EQ(connection.Call("Open", {Value::Text(connect_ + ";Command Timeout=0")}), 0);
    ASSERT_EQ(connection.Call("Execute", {Value::Text("create table t (a int)")}), 0);
    const std::string batch = std::string("insert into t values(1) ") + kEndless;
    Cancelling([&] {
        EXPECT_EQ(connection.Call("Execute", {Value::Text(batch)}), VIC_ERROR_CANCELLED);
        EXPECT_STREQ(vic_error_description(), "The query has been canceled by the user.");
    });
    Value count;
    ASSERT_EQ(
        connection.Call("Execute", {Value::Text("select count(*) as n from t having count(*) = 0")}, &count),
        0);
    Handle recordset(count.variant.value.object);
    count.variant = vic_variant{};
    EXPECT_EQ(IntOf(recordset, "RecordCount"), 1);
}

TEST_F(Stopping, CancelDoesNothingWhileNothingRuns) {
    vic_cancel();
    Handle connection("ADODB.Connection");
    EXPECT_EQ(connection.Call("Cancel"), 0);
    ASSERT_EQ(connection.Call("Open", {Value::Text(connect_)}), 0);
    EXPECT_EQ(connection.Call("Cancel"), 0);
    vic_cancel();
    EXPECT_EQ(connection.Call("Execute", {Value::Text("select 1 as a")}), 0) << vic_error_description();
}

}  // namespace
}  // namespace vicenter::front
