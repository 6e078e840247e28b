#include "entry/host_services.h"

#include <gtest/gtest.h>

#include "entry/host_context.h"
#include "platform/ado/host_connection_service.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::entry {
namespace {

using automation::Arguments;
using automation::Variant;
using fakes::RegisterScripted;

class HostServicesTest : public testing::Test {
  protected:
    void SetUp() override { PresetPropsString("UserID=7;"); }
    void TearDown() override { PresetPropsString(""); }

    automation::ClassRegistry::Restore restore_;
};

TEST_F(HostServicesTest, ProfileValuesComeFromTheHostsProfile) {
    const auto profile = RegisterScripted("VelaEBSBase.SystemProfile");
    profile->Value("GetProfile", 12);
    EXPECT_EQ(GetSystemProfile("GL", "PeriodCount"), Variant(12));
    EXPECT_EQ(profile->Calls(), std::vector<std::string>{"GetProfile(UserID=7;, GL, PeriodCount)"});
}

// A framework that makes its objects itself: the registry knows none of them.
class FactoryOfItsOwn : public ado::HostFramework {
  public:
    explicit FactoryOfItsOwn(automation::ObjectRef object) : object_(std::move(object)) {}
    std::shared_ptr<ado::Broker> GiveBroker() override { return nullptr; }
    automation::ObjectRef CreateObject(const std::string& progId) override {
        asked.push_back(progId);
        return object_;
    }
    std::vector<std::string> asked;

  private:
    automation::ObjectRef object_;
};

TEST_F(HostServicesTest, TheProfileIsMadeByTheHostsFactory) {
    const auto profile = std::make_shared<fakes::ScriptedObject>("SystemProfile");
    profile->Value("GetProfile", 12);
    const auto framework = std::make_shared<FactoryOfItsOwn>(profile);
    ado::HostFramework::SetProcess(framework);
    EXPECT_EQ(GetSystemProfile("GL", "PeriodCount"), Variant(12));
    ado::HostFramework::SetProcess(nullptr);
    EXPECT_EQ(framework->asked, std::vector<std::string>{"VelaEBSBase.SystemProfile"});
}

TEST_F(HostServicesTest, AMissingProfileIsEmpty) {
    EXPECT_TRUE(GetSystemProfile("GL", "CurrentYear").IsEmpty());
}

TEST_F(HostServicesTest, TheOperationLogGetsCodeKindAndText) {
    const auto log = RegisterScripted("VelaEBCGLView.GLData");
    log->Value("WriteLog", Variant());
    WriteOperationLog(LogKind::Requested, "凭证模板-打开");
    WriteOperationLog("K1", LogKind::Failed, "x");
    EXPECT_EQ(log->Calls(),
              (std::vector<std::string>{"WriteLog(K831000, 1, 凭证模板-打开)", "WriteLog(K1, 4, x)"}));
}

TEST_F(HostServicesTest, TheKindOfALogEntryIsALong) {
    const auto log = RegisterScripted("VelaEBCGLView.GLData");
    std::vector<automation::VariantType> types;
    log->On("WriteLog", [&](Arguments& arguments) {
        for (const automation::Argument& argument : arguments)
            types.push_back(argument.Value().Type());
        return Variant();
    });
    WriteOperationLog(LogKind::Requested, "凭证模板-打开");
    using automation::VariantType;
    EXPECT_EQ(types, (std::vector<VariantType>{VariantType::Text, VariantType::Int32, VariantType::Text}));
}

TEST_F(HostServicesTest, ALogThatFailsIsSilent) {
    EXPECT_NO_THROW(WriteOperationLog(LogKind::Closed, "凭证模板-关闭"));
    const auto log = RegisterScripted("VelaEBCGLView.GLData");
    log->On("WriteLog", [](Arguments&) -> Variant { throw automation::Error(5); });
    EXPECT_NO_THROW(WriteOperationLog(LogKind::Closed, "凭证模板-关闭"));
}

TEST_F(HostServicesTest, TheFrameLogGetsThePropertyStringFirst) {
    const auto frame = RegisterScripted("Vela_APFC.FrameData");
    frame->Value("WriteMGLog", true);
    WriteFrameLog("C001C039", "AutoRunVch");
    EXPECT_EQ(frame->Calls(),
              (std::vector<std::string>{"Propstring=UserID=7;", "WriteMGLog(C001C039, AutoRunVch)"}));
}

TEST_F(HostServicesTest, AFrameLogThatFailsIsSilent) {
    EXPECT_NO_THROW(WriteFrameLog("C001C039", "AutoRunVch"));
}

}  // namespace
}  // namespace vicenter::entry
