#include "entry/aplication.h"

#include <gtest/gtest.h>

#include "entry/window_factory.h"

namespace vicenter::entry {
namespace {

class CountingFactory : public WindowFactory {
  public:
    void OpenVICenter() override {
        if (fail) throw automation::Error(7, "Out of memory", source);
        ++opened;
    }
    int opened = 0;
    bool fail = false;
    std::string source;
};

class AplicationTest : public testing::Test {
  protected:
    void SetUp() override { WindowFactory::SetProcess(factory_); }
    void TearDown() override { WindowFactory::SetProcess(nullptr); }

    std::shared_ptr<CountingFactory> factory_ = std::make_shared<CountingFactory>();
    automation::ObjectRef aplication_ = std::make_shared<aplication>();
};

TEST_F(AplicationTest, EveryCallOpensAFurtherWindow) {
    aplication_->Call("ShowVICenter");
    aplication_->Call("showvicenter");
    EXPECT_EQ(factory_->opened, 2);
}

TEST_F(AplicationTest, AWindowThatCannotOpenIsAnAutomationError) {
    factory_->fail = true;
    try {
        aplication_->Call("ShowVICenter");
        FAIL();
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), 7);
        EXPECT_EQ(error.Text(), "Out of memory");
        EXPECT_EQ(error.Source(), "VelaVICenter");
    }
}

TEST_F(AplicationTest, AnErrorThatNamesItsSourceKeepsIt) {
    factory_->fail = true;
    factory_->source = "VelaEBSBase.SecurityInfo";
    try {
        aplication_->Call("ShowVICenter");
        FAIL();
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Source(), "VelaEBSBase.SecurityInfo");
    }
}

TEST_F(AplicationTest, WithoutAWindowSystemTheErrorSaysSo) {
    WindowFactory::SetProcess(nullptr);
    try {
        aplication_->Call("ShowVICenter");
        FAIL();
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), 429);
        EXPECT_EQ(error.Source(), "VelaVICenter");
    }
}

}  // namespace
}  // namespace vicenter::entry
