#include "store/user_settings.h"

#include <gtest/gtest.h>

#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::store {
namespace {

using automation::Arguments;
using automation::Variant;
using fakes::RegisterScripted;

class UserSettings : public testing::Test {
  protected:
    automation::ClassRegistry::Restore restore_;
};

TEST_F(UserSettings, UserSettingsAreReadByTheirLeadingDigits) {
    const auto connection = RegisterScripted("VelaConnection.AppConnection");
    Variant stored = "12pt";
    connection->On("Execute", [&](Arguments&) { return Variant(fakes::Rows({"FValue"}, {{stored}})); });
    EXPECT_EQ(GetUserSettingNumber(16394, "BillFontSize", 9), 12);
    EXPECT_EQ(connection->Calls(),
              std::vector<std::string>{"Execute(Select FValue From t_UserSetting Where FUserID=16394 And "
                                       "FCategory='Vela_APFC' And FKey ='BillFontSize')"});
    stored = "10.5";
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 10.5);
    stored = Variant::Null();
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 0);
    stored = "big";
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 0);
}

TEST_F(UserSettings, AnApostropheInTheKeyIsDoubled) {
    const auto connection = RegisterScripted("VelaConnection.AppConnection");
    connection->On("Execute", [](Arguments&) { return Variant(fakes::Rows({"FValue"})); });
    GetUserSettingNumber(1, " a'b ", 9);
    EXPECT_EQ(connection->Calls().front(),
              "Execute(Select FValue From t_UserSetting Where FUserID=1 And FCategory='Vela_APFC' And FKey "
              "='a''b')");
}

TEST_F(UserSettings, WithoutAStoredRowTheDefaultCounts) {
    const auto connection = RegisterScripted("VelaConnection.AppConnection");
    connection->On("Execute", [](Arguments&) { return Variant(fakes::Rows({"FValue"})); });
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 9);
}

TEST_F(UserSettings, ARecordsetThatCannotCountGivesTheDefault) {
    const auto connection = RegisterScripted("VelaConnection.AppConnection");
    const auto records = std::make_shared<fakes::ScriptedObject>("Recordset");
    records->Value("RecordCount", -1).Value("Fields", "12");
    connection->On("Execute", [&](Arguments&) { return Variant(records); });
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 9);
    records->Value("RecordCount", 1);
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 12);
}

TEST_F(UserSettings, AFailingConnectionGivesTheDefault) {
    EXPECT_EQ(GetUserSettingNumber(1, "BillFontSize", 9), 9);
}

}  // namespace
}  // namespace vicenter::store
