// Loading, activating and unloading the main window, and its help key.

#include <fstream>

#include "platform/system/files.h"
#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

using Frame = CenterTest;

TEST_F(Frame, LoadsInTheFixedOrder) {
    Texts order;
    set_.Respond("select a.* from (select FID,FName from t_VchTemplate", [&](const std::string&) {
        order.emplace_back("tree for " + entry::CurrentUserId());
        EXPECT_TRUE(view_.calls.empty());
        return Rows({"FID", "FName"}, {{0, "标准模板"}});
    });
    set_.Respond("select FValue from t_VchTpProfile", [&](const std::string&) {
        order.emplace_back("profile");
        EXPECT_FALSE(view_.Enabled(Tool::Del));
        EXPECT_FALSE(view_.Enabled(Tool::Share));
        return Rows({"FValue"}, {{"1|0|500"}});
    });
    set_.Respond("select count(*) as FCount", [&](const std::string&) {
        order.emplace_back("open");
        EXPECT_EQ(window_->Grid().Layout(1).width, 500);
        EXPECT_EQ(view_.name, "标准模板");
        EXPECT_EQ(view_.Count("progress frame 6200,3500"), 0);
        return Rows({"FCount"}, {{0}});
    });
    log_->On("WriteLog", [&](Arguments& a) {
        order.push_back("log " + a[1].Value().ToText() + " " + a[2].Value().ToText());
        EXPECT_EQ(view_.Count("progress frame 6200,3500"), 1);
        return Variant();
    });
    security_->On("AccessCheck", [&](Arguments&) {
        order.emplace_back("rights");
        return Variant(false);
    });

    Open();

    EXPECT_THAT(order, ElementsAre("tree for 7", "profile", "open", "log 1 凭证模板-打开", "rights"));
    EXPECT_EQ(view_.calls.back(), "not interactive");
}

TEST_F(Frame, KeepsTheUserThatItWasOpenedFor) {
    Open();
    entry::PresetPropsString("UserID=9;");
    EXPECT_EQ(entry::CurrentUserId(), "7");
}

TEST_F(Frame, OpensTheStandardTemplateAtLoad) {
    lines_["0"] = {Line(1, "收款"), Line(1, "")};
    Open();
    EXPECT_EQ(Window().TemplateId(), "0");
    EXPECT_EQ(Window().TemplateName(), "标准模板");
    EXPECT_EQ(Window().SelectedNode(), "detail-0");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_EQ(Window().CurrentEntryCount(), 2);
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(Frame, DisablesFourToolsAtLoadAndNoOther) {
    Open();
    for (const ToolSpec& spec : Tools()) {
        const bool off = spec.tool == Tool::Del || spec.tool == Tool::DelRow || spec.tool == Tool::AddRow ||
                         spec.tool == Tool::Share;
        EXPECT_EQ(view_.Enabled(spec.tool), !off) << spec.key;
    }
}

TEST_F(Frame, SetsTheDesignedRowHeightsAndAHundredRows) {
    Open();
    EXPECT_EQ(Grid().HeaderHeight(), 450);
    EXPECT_EQ(Grid().RowHeight(), 285);
    EXPECT_EQ(Grid().RowTotal(), 100);
}

TEST_F(Frame, AsksForTheRightWithTheFunctionsNumbers) {
    Arguments asked;
    security_->On("AccessCheck", [&](Arguments& arguments) {
        asked = arguments;
        return Variant(std::int32_t{1});
    });
    Open();
    ASSERT_EQ(asked.size(), 4U);
    EXPECT_EQ(asked[0].Value().AsText(), "UserID=7;ConnectString={Provider=Test;};");
    EXPECT_EQ(asked[1].Value().Type(), automation::VariantType::Int16);
    EXPECT_EQ(asked[1].Value().ToInt16(), 4);
    EXPECT_EQ(asked[2].Value().Type(), automation::VariantType::Int16);
    EXPECT_EQ(asked[2].Value().ToInt16(), 4);
    EXPECT_EQ(asked[3].Value().Type(), automation::VariantType::Int32);
    EXPECT_EQ(asked[3].Value().ToInt32(), 3145728);
    EXPECT_TRUE(Window().HasRight());
    EXPECT_TRUE(view_.interactive);
}

TEST_F(Frame, ARefusedOrFailingRightsCheckClearsTheRight) {
    right_ = false;
    Open();
    EXPECT_FALSE(Window().HasRight());
    EXPECT_FALSE(view_.interactive);
    Window().Shown();
    EXPECT_THAT(Messages(), IsEmpty());

    security_->On("AccessCheck", [](Arguments&) -> Variant { throw automation::Error(5, "broken"); });
    Open();
    EXPECT_FALSE(Window().HasRight());
    EXPECT_THAT(Messages(), IsEmpty());
    // No missing right: whoever looks is told so.
    Window().Shown();
    EXPECT_THAT(Messages(), ElementsAre("未能取得当前用户的权限，不能修改模板！\r\n\r\nbroken"));

    automation::ClassRegistry::Process().Unregister("VelaEBSBase.SecurityInfo");
    Open();
    EXPECT_FALSE(Window().HasRight());
}

TEST_F(Frame, AppliesTheBillFontOnEveryActivation) {
    Open();
    Window().Activate();
    EXPECT_THAT(view_.fonts, ElementsAre("宋体 9"));
    settings_->On("Execute", [](Arguments&) { return Variant(Rows({"FValue"}, {{"12"}})); });
    view_.labelHeight = 240;
    Window().Activate();
    EXPECT_THAT(view_.fonts, ElementsAre("宋体 9", "宋体 12"));
    EXPECT_EQ(Grid().Font().size, 12);
    EXPECT_GT(Grid().RowHeight(), 285);
}

TEST_F(Frame, SavesTheProfileThenReleasesTheHostThenLogsOnUnload) {
    Open();
    Grid().SetColumnHidden(column::kItems, true);
    Grid().SetColumnWidth(column::kItems, 1800.5);
    Forget();
    const std::weak_ptr<automation::Object> held = security_;
    security_.reset();
    automation::ClassRegistry::Process().Unregister("VelaEBSBase.SecurityInfo");
    ASSERT_FALSE(held.expired());
    bool savedFirst = false;
    set_.Respond("update t_VchTpProfile", [&](const std::string&) {
        savedFirst = !held.expired() && Log().empty();
        return Rows({});
    });

    Window().Unload();

    EXPECT_TRUE(savedFirst);
    EXPECT_TRUE(held.expired());
    EXPECT_THAT(Log(), ElementsAre("log 2 凭证模板-关闭"));
    ASSERT_EQ(Sent("update t_VchTpProfile").size(), 1U);
    EXPECT_THAT(set_.LastStatement(), HasSubstr(",11|1|1800.5,12|"));
    EXPECT_THAT(set_.LastStatement(), testing::EndsWith("' where FUserID = 7"));
}

TEST_F(Frame, ClosesAllTheSameWhenTheProfileCannotBeSaved) {
    Open();
    Forget();
    set_.Fail("update t_VchTpProfile", "read only");
    Window().Unload();
    EXPECT_THAT(Messages(), ElementsAre("read only"));
    EXPECT_THAT(Log(), ElementsAre("log 2 凭证模板-关闭"));
}

TEST_F(Frame, ALogThatCannotBeWrittenStopsNothing) {
    automation::ClassRegistry::Process().Unregister("VelaEBCGLView.GLData");
    Open();
    EXPECT_EQ(Window().TemplateName(), "标准模板");
    Window().ToolClick("mnuExp");
    EXPECT_THAT(commands_.run, ElementsAre("export"));
    Window().Unload();
    EXPECT_THAT(Messages(), IsEmpty());
}

// --- help

TEST_F(Frame, F1StartsTheHostsHelpViewerOnTheTemplatePage) {
    Open();
    EXPECT_TRUE(Window().KeyPreview(112));
    EXPECT_THAT(surroundings_.processes->started,
                ElementsAre("hh.exe C:\\Vela\\Component\\VelaV12.chm::/凭证模板.htm"));
    EXPECT_THAT(surroundings_.processes->opened, IsEmpty());
}

TEST_F(Frame, OtherKeysAreNotSwallowed) {
    Open();
    EXPECT_FALSE(Window().KeyPreview(113));
    EXPECT_FALSE(Window().KeyPreview(45));
    EXPECT_THAT(surroundings_.processes->started, IsEmpty());
}

TEST_F(Frame, WithoutAViewerTheSamePageOpensAsADocument) {
    const fakes::TemporaryFolder folder;
    std::filesystem::create_directories(folder.Path() / "docs" / "help");
    const std::string page = folder.File("docs/help/凭证模板.htm");
    std::ofstream(system::PathFromUtf8(page)).flush();
    std::filesystem::create_directories(folder.Path() / "build" / "bin");
    surroundings_.folders->component = folder.File("build/bin");
    surroundings_.processes->startError = 53;
    Open();
    EXPECT_TRUE(Window().KeyPreview(112));
    EXPECT_EQ(surroundings_.processes->started.size(), 1U);
    EXPECT_THAT(surroundings_.processes->opened, ElementsAre(page));
}

TEST_F(Frame, APageThatIsNowhereIsLookedForBesideTheComponent) {
    const fakes::TemporaryFolder folder;
    surroundings_.folders->component = folder.Text();
    surroundings_.processes->startError = 53;
    Open();
    Window().KeyPreview(112);
    EXPECT_THAT(surroundings_.processes->opened, ElementsAre(folder.File("docs/help/凭证模板.htm")));
}

TEST_F(Frame, OtherFailuresOfTheViewerAreIgnored) {
    surroundings_.processes->startError = 70;
    Open();
    EXPECT_TRUE(Window().KeyPreview(112));
    EXPECT_THAT(surroundings_.processes->opened, IsEmpty());
    surroundings_.processes->startError = 53;
    surroundings_.processes->openError = 5;
    EXPECT_TRUE(Window().KeyPreview(112));
    EXPECT_THAT(Messages(), IsEmpty());
}

}  // namespace
}  // namespace vicenter::center::test
