// Memory that is refused to the library at any one point of a call: the call answers 0 or error 7, nothing
// crashes, nothing is kept. A program of its own: it stands between the library and the allocator.

#include "tests/fakes/refused_memory.h"

#include <functional>
#include <string>

#include "tests/fakes/own_folder.h"
#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

using fakes::memory::granted;
using fakes::memory::refusals;
using fakes::memory::refused;

constexpr const char* kBatch =
    "delete from t insert into t values(1, N'差旅费报销及补助') insert into t values(2, N'办公费') "
    "select * from t order by b if (select count(*) from t) <> 2 raiserror('half', 16, 1)";

class RefusedMemory : public FrontTest {
  protected:
    ~RefusedMemory() override { granted = -1; }

    // The work with ever another request refused, and that one and the next few; until none is left to
    // refuse.
    static int Try(const std::function<vic_status()>& work) {
        int points = 0;
        for (const long atOnce : {1L, 5L}) {
            for (long n = 0;; n += n < 400 ? 1 : 13) {
                refused = false;
                refusals = atOnce;
                granted = n;
                const vic_status status = work();
                granted = -1;
                if (!refused) {
                    EXPECT_EQ(status, 0) << vic_error_description();
                    break;
                }
                ++points;
                if (status != 0) {
                    EXPECT_EQ(status, VIC_ERROR_OUT_OF_MEMORY)
                        << "request " << n << ": " << vic_error_description();
                    EXPECT_EQ(vic_error_number(), status);
                }
                if (::testing::Test::HasFailure()) return points;
            }
        }
        return points;
    }
};

TEST_F(RefusedMemory, InValuesAndDictionaries) {
    Handle dictionary("Scripting.Dictionary");
    const std::string text(1000, 'x');
    EXPECT_GT(Try([&] {
                  Value array;
                  vic_status status = vic_set_array(&array.variant, 3);
                  if (status == 0)
                      status = vic_set_text(&array.variant.value.array.items[0], text.data(), text.size());
                  if (status == 0)
                      status = vic_set_object(&array.variant.value.array.items[1], dictionary.object);
                  if (status == 0) status = dictionary.Call("RemoveAll");
                  const vic_variant arguments[] = {Value::Text(text), array.variant};
                  if (status == 0)
                      status = vic_invoke(dictionary.object, VIC_PUT, "Item", arguments, nullptr, 2, nullptr);
                  Value back;
                  if (status == 0) status = vic_call(dictionary.object, "Items", nullptr, 0, &back.variant);
                  return status;
              }),
              10);
    ASSERT_EQ(dictionary.Call("RemoveAll"), 0);
}

TEST_F(RefusedMemory, InJson) {
    Handle json("VelaVICenter.VbsJson");
    const std::string text =
        R"({"lines":[{"FNo":1,"FExp":"支付货款，按合同分期付款","FAmount":"1200.00"},[1,2.5,null,true]]})";
    EXPECT_GT(Try([&] {
                  Value decoded;
                  const vic_variant given = Value::Text(text);
                  vic_status status = vic_call(json.object, "Decode", &given, 1, &decoded.variant);
                  Value encoded;
                  if (status == 0)
                      status = vic_call(json.object, "Encode", &decoded.variant, 1, &encoded.variant);
                  return status;
              }),
              20);
}

TEST_F(RefusedMemory, InCreatingAndFailing) {
    EXPECT_GT(Try([&] {
                  vic_object* object = nullptr;
                  vic_status status = vic_create("VelaVICenter.StringBuilder", &object);
                  if (status != 0) return status;
                  Value name;
                  status = vic_type_name(object, &name.variant);
                  const vic_status missing =
                      vic_call(object, "AMemberThatThereIsNotAndWithALongName", nullptr, 0, nullptr);
                  if (status == 0 && missing != 438) status = missing;
                  vic_release(object);
                  return status;
              }),
              3);
}

TEST_F(RefusedMemory, InStatements) {
    const fakes::OwnFolder folder;
    {
        Handle connection("ADODB.Connection");
        const std::string connect =
            "Provider=VelaAccountSet;Create=yes;Data Source=" + (folder.Path() / "set.vas").string();
        ASSERT_EQ(connection.Call("Open", {Value::Text(connect)}), 0) << vic_error_description();
        ASSERT_EQ(
            connection.Call("Execute",
                            {Value::Text("create table t (a int not null primary key, b nvarchar(50))")}),
            0);
        const auto count = [&] {
            Value rows;
            EXPECT_EQ(connection.Call("Execute", {Value::Text("select a from t")}, &rows), 0)
                << vic_error_description();
            Value number;
            EXPECT_EQ(vic_get(rows.variant.value.object, "RecordCount", &number.variant), 0);
            return number.variant.value.int32;
        };
        const vic_variant batch = Value::Text(kBatch);
        EXPECT_GT(Try([&] {
                      const vic_status status = vic_call(connection.object, "Execute", &batch, 1, nullptr);
                      granted = -1;
                      const int rows = count();
                      EXPECT_TRUE(rows == 0 || rows == 2) << rows;
                      return status;
                  }),
                  50);
        EXPECT_EQ(count(), 2);
        ASSERT_EQ(connection.Call("Close"), 0);
    }
}

}  // namespace
}  // namespace vicenter::front
