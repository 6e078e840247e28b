#include "ui/run/display.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

namespace vicenter::ui {
namespace {

// The variables that decide, all unset at first and back in place afterwards.
class Display : public testing::Test {
  protected:
    void SetUp() override {
        for (const char* name :
             {"DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE", "QT_QPA_PLATFORM", "QT_QPA_FONTDIR"}) {
            kept_.push_back(
                {name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt});
            qunsetenv(name);
        }
    }
    void TearDown() override {
        for (const auto& [name, value] : kept_) {
            if (value) {
                qputenv(name, *value);
            } else {
                qunsetenv(name);
            }
        }
    }

  private:
    struct Kept {
        const char* name;
        std::optional<QByteArray> value;
    };
    std::vector<Kept> kept_;
};

#ifdef _WIN32

TEST_F(Display, BelongsToTheSystem) {
    EXPECT_TRUE(HasDisplay());
    EXPECT_FALSE(IsDisplayUnseen());
    qputenv("QT_QPA_PLATFORM", "nosuchplatform;windows");
    EXPECT_TRUE(HasDisplay());
}

TEST_F(Display, HasTheSystemsFontsWhereNobodyLooks) {
    PrepareDisplay();
    EXPECT_FALSE(qEnvironmentVariableIsSet("QT_QPA_FONTDIR")) << "the system's windows have them anyway";
    qputenv("QT_QPA_PLATFORM", "offscreen");
    PrepareDisplay();
    EXPECT_EQ(qEnvironmentVariable("QT_QPA_FONTDIR").compare("C:/Windows/Fonts", Qt::CaseInsensitive), 0)
        << qgetenv("QT_QPA_FONTDIR").constData();
    qputenv("QT_QPA_FONTDIR", "C:/others");
    PrepareDisplay();
    EXPECT_EQ(qgetenv("QT_QPA_FONTDIR"), "C:/others");
}

#else

TEST_F(Display, IsMissingWhereNothingNamesOne) {
    EXPECT_FALSE(HasDisplay());
}

TEST_F(Display, IsMissingWhereTheOneNamedDoesNotAnswer) {
    qputenv("DISPLAY", ":30987");
    EXPECT_FALSE(HasDisplay());
    qputenv("DISPLAY", "no display at all");
    EXPECT_FALSE(HasDisplay());
    qputenv("WAYLAND_DISPLAY", "no-such-wayland-socket");
    EXPECT_FALSE(HasDisplay());
    qputenv("QT_QPA_PLATFORM", "xcb");
    EXPECT_FALSE(HasDisplay());
}

TEST_F(Display, IsThereWhenOneOfSeveralPlatformsIs) {
    qputenv("DISPLAY", ":30987");
    qputenv("QT_QPA_PLATFORM", "nosuchplatform;xcb;offscreen");
    EXPECT_TRUE(HasDisplay());
    qputenv("QT_QPA_PLATFORM", "minimal:enable_fonts");
    EXPECT_TRUE(HasDisplay());
}

#endif

TEST_F(Display, IsThereForAPlatformWithoutAServerAndNotSeen) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    EXPECT_TRUE(HasDisplay());
    EXPECT_TRUE(IsDisplayUnseen());
    qunsetenv("QT_QPA_PLATFORM");
    EXPECT_FALSE(IsDisplayUnseen());
    ChooseUnseenDisplay();
    EXPECT_TRUE(HasDisplay());
    EXPECT_TRUE(IsDisplayUnseen());
}

TEST_F(Display, IsMissingForAPlatformThatIsNotInstalled) {
    qputenv("QT_QPA_PLATFORM", "nosuchplatform");
    EXPECT_FALSE(HasDisplay());
}

}  // namespace
}  // namespace vicenter::ui
