#include "ui/run/application.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontMetrics>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QRegularExpression>
#include <QTabWidget>
#include <QWidget>
#include <QWindow>
#include <set>

#include <gtest/gtest.h>

#include "ui/grid/key_codes.h"
#include "ui/look/chinese_texts.h"
#include "ui/look/twips.h"

namespace vicenter::ui {
namespace {

TEST(ApplicationFont, PrefersNotoSansThenWenQuanYi) {
    EXPECT_EQ(ChooseChineseFamily({"DejaVu Sans", "WenQuanYi Zen Hei", "Noto Sans CJK SC"}),
              "Noto Sans CJK SC");
    EXPECT_EQ(ChooseChineseFamily({"DejaVu Sans", "WenQuanYi Zen Hei", "WenQuanYi Micro Hei"}),
              "WenQuanYi Micro Hei");
    EXPECT_EQ(ChooseChineseFamily({"DejaVu Sans"}), QString());
}

TEST(ApplicationFont, ShowsChineseAsCharactersAndNotAsBoxes) {
    const QString characters = QStringLiteral("凭证模板借贷摘要科目金额");
    std::set<QByteArray> drawn;
    for (const QChar character : characters) {
        QImage image(24, 24, QImage::Format_Grayscale8);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setFont(BillFont(9));
        painter.drawText(image.rect(), Qt::AlignCenter, character);
        drawn.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(drawn.size(), static_cast<std::size_t>(characters.size())) << "boxes are all alike";
}

TEST(ApplicationFont, HasTheSizeAskedFor) {
    EXPECT_DOUBLE_EQ(BillFont(12).pointSizeF(), 12);
}

TEST(ApplicationTitles, HaveNothingHungBehindThemByThePlatform) {
    // Platforms put a display name that has been set behind every title; without one they leave titles alone.
    EXPECT_EQ(QGuiApplication::applicationDisplayName(), QCoreApplication::applicationName());
    QWidget window;
    window.setWindowTitle("信息提示");
    window.show();
    EXPECT_EQ(window.windowHandle()->title(), "信息提示");
}

TEST(ApplicationIcons, AreAllThereAndAllDifferent) {
    std::set<QByteArray> seen;
    for (const char* stem : {"tool_new", "tool_delete", "tool_save", "tool_columns", "tool_delete_row",
                             "tool_add_row", "tool_find", "tool_import", "tool_export", "tool_generate",
                             "tool_cloud", "tool_share", "tool_quit", "tree_root", "tree_template", "app"}) {
        const QImage image = NamedIcon(stem).pixmap(24, 24).toImage().convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(image.isNull()) << stem;
        const QByteArray bytes(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
        EXPECT_NE(bytes.count('\0'), bytes.size()) << stem << " is blank";
        EXPECT_TRUE(seen.insert(bytes).second) << stem << " looks like another icon";
    }
}

TEST(ChineseTexts, WordsQtsOwnButtonsInChineseAndLeavesTheRest) {
    const ChineseTexts texts;
    EXPECT_EQ(texts.translate("QPlatformTheme", "Cancel", nullptr, -1), "取消");
    EXPECT_EQ(texts.translate("QFileDialog", "&Save", nullptr, -1), "保存(&S)");
    EXPECT_TRUE(texts.translate("QLineEdit", "no such text", nullptr, -1).isNull());
}

#ifndef _WIN32
// What the choice of a printer shows, its options unfolded.
TEST(ChineseTexts, WordTheChoiceOfAPrinter) {
    ChineseTexts texts;
    QApplication::installTranslator(&texts);
    QPrinter printer;
    const QPrintDialog dialog(&printer);
    QStringList shown;
    for (const auto* label : dialog.findChildren<QLabel*>())
        shown << label->text();
    for (const auto* button : dialog.findChildren<QAbstractButton*>())
        shown << button->text();
    for (const auto* group : dialog.findChildren<QGroupBox*>())
        shown << group->title();
    for (const auto* tabs : dialog.findChildren<QTabWidget*>()) {
        for (int page = 0; page < tabs->count(); ++page)
            shown << tabs->tabText(page);
    }
    QApplication::removeTranslator(&texts);
    EXPECT_GT(shown.size(), 20);
    static const QRegularExpression letters(QStringLiteral("[A-Za-z]{2}"));
    static const QRegularExpression chinese(QStringLiteral("[\\x{4e00}-\\x{9fff}]"));
    for (const QString& text : shown)
        EXPECT_TRUE(text.contains(chinese) || !text.contains(letters)) << text.toStdString();
}
#endif

TEST(Twips, AreFifteenToAPixelAtNinetySixDotsAnInch) {
    EXPECT_EQ(TwipsToPixels(285, 96), 19);
    EXPECT_EQ(TwipsToPixels(450, 96), 30);
    EXPECT_DOUBLE_EQ(PixelsToTwips(78, 96), 1170);
    EXPECT_EQ(TwipsToPixels(285, 144), 29);
}

TEST(KeyCodes, AreThoseOfTheComponentsTables) {
    const auto code = [](int key, Qt::KeyboardModifiers modifiers = {}) {
        return KeyCodeOf(QKeyEvent(QEvent::KeyPress, key, modifiers));
    };
    EXPECT_EQ(code(Qt::Key_Insert), 45);
    EXPECT_EQ(code(Qt::Key_F7), 118);
    EXPECT_EQ(code(Qt::Key_F1), 112);
    EXPECT_EQ(code(Qt::Key_Left), 37);
    EXPECT_EQ(code(Qt::Key_Right), 39);
    EXPECT_EQ(code(Qt::Key_Period, Qt::KeypadModifier), 110);
    EXPECT_EQ(code(Qt::Key_Period), 190);
    EXPECT_EQ(code(Qt::Key_Backspace), 8);
    EXPECT_EQ(code(Qt::Key_7), 55);
    EXPECT_EQ(code(Qt::Key_7, Qt::KeypadModifier), 103);
    EXPECT_EQ(code(Qt::Key_A), 65);
}

TEST(KeyCodes, TypedCharactersAreOnlyThoseThatType) {
    const auto typed = [](int key, Qt::KeyboardModifiers modifiers, const QString& text) {
        return TypedCharacter(QKeyEvent(QEvent::KeyPress, key, modifiers, text));
    };
    EXPECT_EQ(typed(Qt::Key_A, {}, "a"), U'a');
    EXPECT_EQ(typed(0, {}, "借"), U'借');
    EXPECT_EQ(typed(Qt::Key_A, Qt::ControlModifier, "\x01"), U'\0');
    EXPECT_EQ(typed(Qt::Key_Delete, {}, "\x7f"), U'\0');
    EXPECT_EQ(typed(Qt::Key_F5, {}, QString()), U'\0');
}

}  // namespace
}  // namespace vicenter::ui
