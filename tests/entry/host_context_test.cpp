#include "entry/host_context.h"

#include <gtest/gtest.h>

#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::entry {
namespace {

using automation::Arguments;
using automation::Variant;

class HostContextTest : public testing::Test {
  protected:
    void SetUp() override {
        properties_ = fakes::RegisterScripted("VelaPropsMgr.ShareProps");
        properties_->On("GetProperty", [this](Arguments&) { return Variant(props_); });
    }
    void TearDown() override {
        AttachHostContext(nullptr);
        PresetPropsString("");
        SetCurrentUserId("");
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::ScriptedRef properties_;
    std::string props_ = "UserID=16394;ConnectString={Provider=X;Data Source=Y};";
};

TEST_F(HostContextTest, ThePropertyStringComesFromTheSharedPropertiesOfThisProcess) {
    EXPECT_EQ(GetPropsString(), props_);
    EXPECT_EQ(properties_->Calls(), std::vector<std::string>{"GetProperty(4711, PropsString)"});
}

TEST_F(HostContextTest, ThePropertyStringIsFetchedAnewOnEveryCall) {
    EXPECT_EQ(GetPropValue("UserID"), "16394");
    props_ = "UserID=2;";
    EXPECT_EQ(GetPropValue("UserID"), "2");
}

TEST_F(HostContextTest, WithinAWindowsScopeTheHostsStringCountsAsLongAsItNamesTheWindowsSession) {
    const WindowSession window{"16394", props_};
    const SessionScope scope(window);
    const std::string renewed = "Ticket=9;UserID=16394;ConnectString={Data Source=Y;Provider=X;Password=p};";
    props_ = renewed;
    EXPECT_EQ(GetPropsString(), renewed);
    for (const char* other : {"UserID=2;ConnectString={Provider=X;Data Source=Y};",
                              "UserID=16394;ConnectString={Provider=X;Data Source=Z};",
                              "UserID=16394;ConnectString={Provider=X;Data Source=Y;Initial Catalog=N};"}) {
        props_ = other;
        EXPECT_EQ(GetPropsString(), window.propsString) << other;
        const SessionScope ofHost({});
        EXPECT_EQ(GetPropsString(), other);
    }
    props_ = "";
    EXPECT_EQ(GetPropsString(), "") << "a host that has ended the session";
}

TEST_F(HostContextTest, AnAttachedContextWithAnAccountGivesTheString) {
    auto context = std::make_shared<fakes::ScriptedObject>();
    context->Value("AcctID", "7").Value("PropsString", "UserID=9;");
    AttachHostContext(context);
    PresetPropsString("UserID=8;");
    EXPECT_EQ(GetPropsString(), "UserID=9;");
}

TEST_F(HostContextTest, AnAttachedContextWithoutAnAccountLeavesTheSharedProperties) {
    auto context = std::make_shared<fakes::ScriptedObject>();
    context->Value("AcctID", "").Value("PropsString", "UserID=9;");
    AttachHostContext(context);
    PresetPropsString("UserID=8;");  // counts only while no object is attached
    EXPECT_EQ(GetPropsString(), props_);
}

TEST_F(HostContextTest, APresetStringGoesBeforeTheSharedProperties) {
    PresetPropsString("UserID=8;");
    EXPECT_EQ(GetPropsString(), "UserID=8;");
    EXPECT_TRUE(properties_->Calls().empty());
}

TEST_F(HostContextTest, SharedPropertiesMayBeObjects) {
    auto object = std::make_shared<fakes::ScriptedObject>("Shared");
    properties_->On("GetProperty", [object](Arguments&) { return Variant(object); });
    EXPECT_EQ(GetShareProperty("Anything").AsObject(), object);
}

TEST_F(HostContextTest, TheLanguageIsAlwaysSimplifiedChinese) {
    props_ = "Language=cht;";
    EXPECT_EQ(GetPropValue("language"), "chs");
    EXPECT_EQ(GetPropValue("LANGUAGE"), "chs");
}

TEST_F(HostContextTest, TheLastValueNeedsNoFinalSemicolon) {
    props_ = "AcctID=1;UserID=5";
    EXPECT_EQ(GetPropValue("UserID"), "5");
}

TEST_F(HostContextTest, KeysAreFoundWithoutCase) {
    EXPECT_EQ(GetPropValue("userid"), "16394");
}

TEST_F(HostContextTest, AKeyThatEndsAnotherFindsThatOne) {
    EXPECT_EQ(GetPropValue("ID"), "16394");
}

TEST_F(HostContextTest, AKeyThatHoldsASemicolonHasNoValue) {
    props_ = "AcctID=1;UserID=5;";
    EXPECT_EQ(GetPropValue("1;UserID"), "") << "the found place is cut before its first semicolon";
    EXPECT_EQ(GetPropValue("UserID"), "5");
}

TEST_F(HostContextTest, AMissingKeyIsTheEmptyText) {
    EXPECT_EQ(GetPropValue("Nothing"), "");
}

TEST_F(HostContextTest, AHostThatFailsIsTheEmptyText) {
    automation::ClassRegistry::Process().Unregister("VelaPropsMgr.ShareProps");
    EXPECT_EQ(GetPropValue("UserID"), "");
    EXPECT_THROW(GetPropsString(), automation::Error);
}

TEST(GetKeyValueTest, TheConnectStringKeepsItsSemicolons) {
    const std::string text = "ConnectString={Provider=X;Data Source=Y};UserID=5";
    EXPECT_EQ(GetKeyValue(text, "ConnectString", ";"), "Provider=X;Data Source=Y");
    EXPECT_EQ(GetKeyValue(text, "CONNECTSTRING", ";"), "Provider=X;Data Source=Y");
    EXPECT_EQ(GetKeyValue(text, "UserID", ";"), "5");
}

TEST(GetKeyValueTest, OnlyWholeKeysAreFound) {
    EXPECT_EQ(GetKeyValue("UserID=5", "ID", ";"), "");
    EXPECT_EQ(GetKeyValue("A=1|B=2|", "b", "|"), "2");
}

TEST(GetKeyValueTest, WithoutAnEndMarkOrAKeyItIsTheEmptyText) {
    EXPECT_EQ(GetKeyValue("ConnectString={Provider=X", "ConnectString", ";"), "");
    EXPECT_EQ(GetKeyValue("", "A", ";"), "");
}

TEST(CurrentUserIdTest, IsKeptForTheProcess) {
    SetCurrentUserId("16394");
    EXPECT_EQ(CurrentUserId(), "16394");
    SetCurrentUserId("");
}

TEST(CurrentUserIdTest, IsTheHostsBeforeAnyWindowKeptOne) {
    PresetPropsString("userid=7;");
    EXPECT_EQ(CurrentUserId(), "7");
    PresetPropsString("UserID=8;");
    EXPECT_EQ(CurrentUserId(), "8");  // as it stands now
    SetCurrentUserId("16394");
    EXPECT_EQ(CurrentUserId(), "16394");
    SetCurrentUserId("");
    PresetPropsString("");
}

}  // namespace
}  // namespace vicenter::entry
