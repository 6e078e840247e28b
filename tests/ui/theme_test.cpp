// Light and dark, as the desktop has it.

#include "ui/look/theme.h"

#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/paths/source_folder.h"
#include "tests/ui/window_fixture.h"
#include "ui/look/themed_icon.h"
#include "ui/run/application.h"

namespace vicenter::ui {
namespace {

// What a desktop with a dark theme gives an application.
QPalette DarkDesktop() {
    QPalette palette(QColor(40, 40, 40));
    palette.setColor(QPalette::WindowText, QColor(240, 240, 240));
    return palette;
}

class ThemeTest : public WindowTest {
  protected:
    void TearDown() override {
        Theme::Process().SetDark(false);
        WindowTest::TearDown();
    }
    static double Contrast(const QColor& a, const QColor& b) {
        const auto luminance = [](const QColor& color) {
            const auto part = [](double value) {
                return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
        };
        const double first = luminance(a);
        const double second = luminance(b);
        return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
    }
    QColor PaperOfFirstCell() {
        QApplication::processEvents();
        const QRect cell = Grid().visualRect(Grid().Model().IndexOf({50, 2}));
        return Grid().viewport()->grab(cell).toImage().pixelColor(cell.width() / 2, cell.height() / 2);
    }
};

TEST_F(ThemeTest, IsDarkWhereTheDesktopsLettersAreLighterThanTheirGround) {
    Theme::Process().TakeDesktop(DarkDesktop());
    EXPECT_TRUE(Theme::Process().IsDark());
    EXPECT_TRUE(IsDarkPalette(QApplication::palette()));
    EXPECT_EQ(QApplication::palette().color(QPalette::Base), colors::kPaper());
    Theme::Process().TakeDesktop(QPalette(QColor(240, 240, 240)));
    EXPECT_FALSE(Theme::Process().IsDark());
    EXPECT_FALSE(IsDarkPalette(QApplication::palette()));
}

TEST_F(ThemeTest, TheDesktopIsAskedAgainWhenItChangesItsTheme) {
    Open();
    Theme::Process().FollowDesktop(*qApp);
    Theme::Process().SetDark(true);
    // What every window of an application is told; the desktop of the tests is light.
    QEvent change(QEvent::ThemeChange);
    QApplication::sendEvent(window->windowHandle(), &change);
    QApplication::processEvents();
    EXPECT_FALSE(Theme::Process().IsDark());
    EXPECT_EQ(QApplication::palette().color(QPalette::Base), colors::kPaper());
}

TEST_F(ThemeTest, AnOpenWindowChangesWithTheThemeAndBack) {
    Open();
    Grid().scrollTo(Grid().Model().IndexOf({50, 2}));
    const QColor light = PaperOfFirstCell();
    Theme::Process().SetDark(true);
    const QColor dark = PaperOfFirstCell();
    EXPECT_EQ(dark, colors::kPaper());
    EXPECT_LT(dark.lightness(), 80);
    EXPECT_EQ(Grid().palette().color(QPalette::Highlight), colors::kSelection());
    Theme::Process().SetDark(false);
    EXPECT_EQ(PaperOfFirstCell(), light);
}

// Letters and every ground that they stand on.
struct Letters {
    const char* name;
    ThemeColor ink;
    std::vector<ThemeColor> grounds;
    double least = 4.5;
};

TEST_F(ThemeTest, LettersCanBeReadOnEveryGroundOfBothThemes) {
    using namespace colors;
    const std::vector<ThemeColor> cells{kPaper, kPaperAlternate, kSelection};
    const std::vector<ThemeColor> around{kBand, kWindow, kPanel, kHint, kPaper};
    const std::vector<Letters> table{
        {"kInk",
         kInk,
         {kPaper, kPaperAlternate, kSelection, kSelectionElsewhere, kFaultyPaper, kHeader, kHeaderActive,
          kBand, kPanel, kWindow, kHint, kButton, kButtonHovered, kButtonPressed, kCellButton},
         7},
        {"kFaintInk",
         kFaintInk,
         {kPaper, kPaperAlternate, kSelection, kFaultyPaper, kHeader, kWindow, kPanel, kBand}},
        {"kAccentInk", kAccentInk, {kPaper, kSelection, kBand, kWindow}},
        {"kRefusal", kRefusal, around},
        {"kRefusal, the tree", kRefusal, {kPaper, kSelectionElsewhere}},
        {"kCaution", kCaution, around},
        {"kCaution, sums in cells", kCaution, cells},
        {"kDone", kDone, around},
        {"kOnAccent", kOnAccent, {kAccent, kRefusal}},
    };
    for (const bool dark : {false, true}) {
        Theme::Process().SetDark(dark);
        for (const Letters& letters : table) {
            for (const ThemeColor& ground : letters.grounds)
                EXPECT_GE(Contrast(letters.ink, ground), letters.least)
                    << letters.name << (dark ? " dark on " : " light on ") << ground().name().toStdString();
        }
        // The ledger's red is what it is, and as readable as that allows: its ground and a mark help. Where
        // paper is dark the letters are lighter.
        for (const ThemeColor& ground : {kFaultyPaper, kPaper, kPaperAlternate, kSelection})
            EXPECT_GE(Contrast(kFaulty, ground), dark ? 4.5 : 3.3) << dark << ground().name().toStdString();
    }
    Theme::Process().SetDark(false);
    EXPECT_EQ(kFaulty(), QColor(255, 0, 0));
}

TEST_F(ThemeTest, FieldsAndTicksHaveEdgesThatAreSeen) {
    // The strongest contrast to the ground anywhere in the widget.
    const auto seen = [](QWidget& widget) {
        widget.setStyle(QApplication::style());
        widget.resize(120, 26);
        const QImage image = widget.grab().toImage();
        double most = 1;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                most = std::max(most, Contrast(image.pixelColor(x, y), colors::kWindow));
        }
        return most;
    };
    for (const bool dark : {false, true}) {
        Theme::Process().SetDark(dark);
        QLineEdit field;
        EXPECT_GT(seen(field), dark ? 1.4 : 1.1) << dark;
        // Of what stands above others the edge is all that parts it from them.
        QFrame panel;
        panel.setFrameShape(QFrame::StyledPanel);
        EXPECT_GT(seen(panel), dark ? 1.4 : 1.1) << dark;
        QCheckBox tick;
        EXPECT_GT(seen(tick), dark ? 1.4 : 1.1) << dark;
        QRadioButton choice;
        EXPECT_GT(seen(choice), dark ? 1.4 : 1.1) << dark;
        QSpinBox number;
        number.setButtonSymbols(QAbstractSpinBox::NoButtons);
        number.setSpecialValueText(QStringLiteral(" "));
        EXPECT_GT(seen(number), dark ? 1.4 : 1.1) << dark;
    }
}

TEST_F(ThemeTest, InkOfAWidgetsOwnFollowsTheTheme) {
    QLabel label;
    for (const bool dark : {false, true, false}) {
        Theme::Process().SetDark(dark);
        if (!dark) SetInk(label, colors::kRefusal);
        EXPECT_EQ(label.palette().color(QPalette::WindowText), colors::kRefusal()) << dark;
    }
}

// A colour of one theme's own is unreadable on the other's paper.
TEST_F(ThemeTest, ColoursAreNamedNowhereElse) {
    const std::regex colour(
        R"(#[0-9a-fA-F]{6}\b|Qt::(red|black|white|blue|green|yellow|(dark|light)?[gG]ray|dark[A-Z]\w*)\b)");
    const std::set<std::string> homes{"theme.h", "themed_icon.cpp"};
    int sources = 0;
    for (const char* folder : {"ui", "host/window"}) {
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(testing_paths::SourceFolder() / folder)) {
            const std::filesystem::path& source = entry.path();
            if (source.extension() != ".h" && source.extension() != ".cpp") continue;
            if (homes.count(source.filename().string()) != 0) continue;
            ++sources;
            std::ifstream stream(source);
            for (std::string line; std::getline(stream, line);)
                EXPECT_FALSE(std::regex_search(line, colour)) << source << ": " << line;
        }
    }
    EXPECT_GT(sources, 60);
}

TEST_F(ThemeTest, IconsAreDrawnForTheGroundThatTheyStandOn) {
    const auto brightest = [] {
        const QImage image = NamedIcon(QStringLiteral("tool_find")).pixmap(24, 24).toImage();
        int lightness = 0;
        int points = 0;
        for (int x = 0; x < image.width(); ++x) {
            for (int y = 0; y < image.height(); ++y) {
                if (image.pixelColor(x, y).alpha() < 200) continue;
                lightness += image.pixelColor(x, y).lightness();
                ++points;
            }
        }
        return points == 0 ? -1 : lightness / points;
    };
    const int onLight = brightest();
    ASSERT_GT(onLight, 0);
    Theme::Process().SetDark(true);
    EXPECT_NE(brightest(), onLight);
    EXPECT_FALSE(ThemedDrawing(QStringLiteral(":/vicenter/icons/tool_find.svg"), true).contains("#3b4c60"));
    EXPECT_TRUE(NamedIcon(QStringLiteral("no_such")).isNull());
}

}  // namespace
}  // namespace vicenter::ui
