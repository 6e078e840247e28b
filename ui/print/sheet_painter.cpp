#include "ui/print/sheet_painter.h"

#include <QBuffer>
#include <QFile>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "center/print/voucher_preview.h"
#include "platform/system/file_replacement.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/print/pdf_text.h"
#include "ui/run/application.h"

namespace vicenter::ui {

using center::PrintBlock;
using center::PrintPiece;
using center::PrintSheet;

namespace {

// Points, 72 an inch.
constexpr double kMargin = 42;
constexpr double kTitleSize = 14;
constexpr double kTextSize = 9;
constexpr double kSmallSize = 8;
constexpr double kPadding = 3;
constexpr double kGap = 12;
constexpr double kFooter = 22;
constexpr double kHairline = 0.4;
constexpr double kMostOfPage = 0.5;  // for the columns of numbers together
const std::string kFixedTexts = "账套用户日期第页共续";

QFont FontOf(double points, bool bold = false) {
    QFont font(BillFontFamily());
    font.setPixelSize(static_cast<int>(points));
    font.setBold(bold);
    font.setHintingPreference(QFont::PreferNoHinting);
    // A digit behind a letter, fi as one sign: glyphs that stand for no character have no text in the file.
    font.setStyleStrategy(QFont::PreferNoShaping);
    return font;
}

// The widest number within a text.
double WidestNumber(const QString& text, const QFontMetricsF& metrics) {
    constexpr qsizetype kLongest = 32;  // what has more digits is none
    double widest = 0;
    qsizetype first = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool inNumber = i < text.size() && (text[i].isDigit() || text[i] == u',' || text[i] == u'.');
        if (inNumber) continue;
        if (i > first && i - first <= kLongest)
            widest = std::max(widest, metrics.horizontalAdvance(text.mid(first, i - first)));
        first = i + 1;
    }
    return widest;
}

// A text on as many lines as its width asks for: parted between words, within one only where it is longer
// than a line. A number is never parted: where there is no room for it, the text is drawn smaller.
class Wrapped {
  public:
    enum class As { Words, Figure };

    Wrapped(const QString& text, const QFont& font, double width, As as) : layout_(text, font) {
        QTextOption option(as == As::Figure ? Qt::AlignRight : Qt::AlignLeft);
        option.setWrapMode(as == As::Figure ? QTextOption::NoWrap
                                            : QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout_.setTextOption(option);
        const QFontMetricsF metrics(font);
        const double whole = as == As::Figure ? WidthOf(text, metrics) : WidestNumber(text, metrics);
        if (whole > width) scale_ = width / whole;
        layout_.beginLayout();
        for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
            line.setLineWidth(width / scale_);
            line.setPosition({0, height_ / scale_});
            height_ += line.height() * scale_;
        }
        layout_.endLayout();
    }

    static double WidthOf(const QString& text, const QFontMetricsF& metrics) {
        return std::ceil(metrics.horizontalAdvance(text));
    }

    double Height() const { return height_; }
    void Draw(QPainter& painter, const QPointF& at) const {
        painter.save();
        painter.translate(at);
        painter.scale(scale_, scale_);
        layout_.draw(&painter, {0, 0});
        painter.restore();
    }

  private:
    QTextLayout layout_;
    double height_ = 0;
    double scale_ = 1;
};

class SheetPainter {
  public:
    SheetPainter(QPagedPaintDevice& device, const PrintSheet& sheet) : device_(device), sheet_(sheet) {}

    int Paint() {
        device_.setPageSize(QPageSize(QPageSize::A4));
        device_.setPageMargins(QMarginsF(0, 0, 0, 0));
        if (!painter_.begin(&device_)) return 0;
        const double dots = device_.logicalDpiX() / 72.0;
        painter_.scale(dots, dots);
        page_ = QRectF(0, 0, device_.width() / dots, device_.height() / dots)
                    .adjusted(kMargin, kMargin, -kMargin, -kMargin);
        MeasureColumns();
        const double room = page_.height() - HeadingHeight() - kFooter;
        std::vector<center::BlockHeights> heights;
        for (const PrintBlock& block : sheet_.blocks)
            heights.push_back(Measure(block));
        const std::vector<center::PrintPage> pages = center::LayOutPages(heights, {room, kGap});
        for (std::size_t i = 0; i < pages.size(); ++i) {
            if (i > 0) device_.newPage();
            PaintPage(pages[i], heights, i + 1, pages.size());
        }
        painter_.end();
        return static_cast<int>(pages.size());
    }

  private:
    // By their shares, but that numbers have the room that the widest of them needs, as far as the page goes.
    void MeasureColumns() {
        int figureShares = 0;
        int shares = 0;
        for (const center::PrintColumn& column : sheet_.columns)
            (column.figures ? figureShares : shares) += column.share;
        const double unit = page_.width() / std::max(shares + figureShares, 1);
        double figures = 0;
        for (std::size_t c = 0; c < sheet_.columns.size(); ++c) {
            const center::PrintColumn& column = sheet_.columns[c];
            const double most = page_.width() * kMostOfPage * column.share / std::max(figureShares, 1);
            const double wanted = std::max(unit * column.share, WidestIn(c) + 2 * kPadding);
            widths_.push_back(column.figures ? std::min(wanted, most) : 0);
            figures += widths_.back();
        }
        for (std::size_t c = 0; c < sheet_.columns.size(); ++c) {
            if (sheet_.columns[c].figures) continue;
            widths_[c] = (page_.width() - figures) * sheet_.columns[c].share / std::max(shares, 1);
        }
    }

    double WidestIn(std::size_t column) const {
        double widest = 0;
        const auto see = [&](const std::vector<std::string>& texts, const QFont& font) {
            if (column < texts.size())
                widest = std::max(widest, Wrapped::WidthOf(ToQt(texts[column]), QFontMetricsF(font)));
        };
        for (const PrintBlock& block : sheet_.blocks) {
            for (const auto& row : block.rows)
                see(row, text_);
            see(block.foot, bold_);
        }
        return widest;
    }

    Wrapped InColumn(std::size_t column, const std::string& text, const QFont& font) const {
        const auto as = sheet_.columns[column].figures ? Wrapped::As::Figure : Wrapped::As::Words;
        return Wrapped(ToPrintedLines(text), font, widths_[column] - 2 * kPadding, as);
    }

    double RowHeight(const std::vector<std::string>& texts, const QFont& font) const {
        double height = QFontMetricsF(font).height();
        for (std::size_t c = 0; c < texts.size() && c < widths_.size(); ++c)
            height = std::max(height, InColumn(c, texts[c], font).Height());
        return height + 2 * kPadding;
    }

    Wrapped Note(const std::string& note) const {
        return Wrapped(ToPrintedLines(note), small_, page_.width() - 2 * kPadding, Wrapped::As::Words);
    }
    double NoteHeight(const std::string& note) const { return Note(note).Height() + kPadding; }

    center::BlockHeights Measure(const PrintBlock& block) const {
        center::BlockHeights heights;
        heights.caption = QFontMetricsF(bold_).height() + 2 * kPadding;
        for (const auto& row : block.rows)
            heights.rows.push_back(RowHeight(row, text_));
        if (!block.foot.empty()) heights.end = RowHeight(block.foot, bold_);
        for (const std::string& note : block.notes)
            heights.end += NoteHeight(note);
        return heights;
    }

    double HeadingHeight() const {
        return QFontMetricsF(title_).height() + QFontMetricsF(small_).height() + HeaderHeight() +
               4 * kPadding;
    }
    std::vector<std::string> Headers() const {
        std::vector<std::string> headers;
        for (const center::PrintColumn& column : sheet_.columns)
            headers.push_back(column.header);
        return headers;
    }
    double HeaderHeight() const { return RowHeight(Headers(), bold_); }

    void PaintPage(const center::PrintPage& page, const std::vector<center::BlockHeights>& heights,
                   std::size_t number, std::size_t count) {
        double top = PaintHeading();
        for (std::size_t i = 0; i < page.size(); ++i) {
            if (i > 0) top += kGap;
            top = PaintPiece(page[i], heights[page[i].block], top);
        }
        painter_.setFont(small_);
        painter_.setPen(colors::kFaintInk.OnLight());
        painter_.drawText(QRectF(page_.left(), page_.bottom() - kFooter, page_.width(), kFooter),
                          Qt::AlignBottom | Qt::AlignHCenter,
                          QStringLiteral("第 %1 页，共 %2 页").arg(number).arg(count));
    }

    double PaintHeading() {
        double top = page_.top();
        painter_.setPen(colors::kInk.OnLight());
        painter_.setFont(title_);
        const double titleHeight = QFontMetricsF(title_).height();
        painter_.drawText(
            QRectF(page_.left(), top, page_.width(), titleHeight), Qt::AlignHCenter,
            QFontMetricsF(title_).elidedText(ToQtLine(sheet_.title), Qt::ElideRight, page_.width()));
        top += titleHeight + kPadding;
        painter_.setFont(small_);
        const double line = QFontMetricsF(small_).height();
        double left = page_.left();
        const auto put = [&](double share, Qt::Alignment side, const QString& name,
                             const std::string& value) {
            const QRectF place(left, top, page_.width() * share, line);
            left = place.right();
            if (value.empty()) return;
            const QString text = name + ToQtLine(value);
            painter_.drawText(place, static_cast<int>(side),
                              QFontMetricsF(small_).elidedText(text, Qt::ElideRight, place.width()));
        };
        put(0.5, Qt::AlignLeft, QStringLiteral("账套："), sheet_.accountSet);
        put(0.3, Qt::AlignLeft, QStringLiteral("用户："), sheet_.user);
        put(0.2, Qt::AlignRight, QStringLiteral("日期："), sheet_.date);
        top += line + kPadding;
        const double header = HeaderHeight();
        painter_.fillRect(QRectF(page_.left(), top, page_.width(), header), colors::kHeader.OnLight());
        PaintRow(Headers(), top, header, bold_);
        return top + header + 2 * kPadding;
    }

    double PaintPiece(const PrintPiece& piece, const center::BlockHeights& heights, double top) {
        const PrintBlock& block = sheet_.blocks[piece.block];
        painter_.setPen(colors::kInk.OnLight());
        painter_.setFont(bold_);
        const QString caption = ToQt(block.caption) + (piece.begins ? QString() : QStringLiteral("（续）"));
        painter_.drawText(QRectF(page_.left(), top, page_.width(), heights.caption),
                          Qt::AlignLeft | Qt::AlignVCenter, caption);
        top += heights.caption;
        for (std::size_t row = piece.firstRow; row < piece.firstRow + piece.rows; ++row) {
            PaintRow(block.rows[row], top, heights.rows[row], text_);
            top += heights.rows[row];
        }
        if (!piece.ends) return top;
        if (!block.foot.empty()) {
            const double height = RowHeight(block.foot, bold_);
            PaintRow(block.foot, top, height, bold_);
            top += height;
        }
        for (const std::string& note : block.notes) {
            painter_.setPen(colors::kCaution.OnLight());
            Note(note).Draw(painter_, {page_.left() + kPadding, top + kPadding});
            top += NoteHeight(note);
        }
        return top;
    }

    void PaintRow(const std::vector<std::string>& texts, double top, double height, const QFont& font) {
        double left = page_.left();
        for (std::size_t c = 0; c < widths_.size(); ++c) {
            const QRectF cell(left, top, widths_[c], height);
            painter_.setPen(QPen(colors::kNumberRule.OnLight(), kHairline));
            painter_.setBrush(Qt::NoBrush);
            painter_.drawRect(cell);
            painter_.setPen(colors::kInk.OnLight());
            if (c < texts.size()) {
                const Wrapped text = InColumn(c, texts[c], font);
                text.Draw(painter_, {left + kPadding, top + (height - text.Height()) / 2});
            }
            left += widths_[c];
        }
    }

    QPagedPaintDevice& device_;
    const PrintSheet& sheet_;
    QPainter painter_;
    QRectF page_;
    std::vector<double> widths_;
    const QFont title_ = FontOf(kTitleSize, true);
    const QFont text_ = FontOf(kTextSize);
    const QFont bold_ = FontOf(kTextSize, true);
    const QFont small_ = FontOf(kSmallSize);
};

[[noreturn]] void FailToWrite(const std::string& file) {
    throw automation::Error(automation::error_number::kPermissionDenied, "文件无法写入：" + file);
}

// Everything that stands on the pages.
QString TextOf(const PrintSheet& sheet) {
    std::string text = kFixedTexts + sheet.title + sheet.accountSet + sheet.user + sheet.date;
    const auto add = [&text](const std::vector<std::string>& more) {
        for (const std::string& part : more)
            text += part;
    };
    for (const center::PrintColumn& column : sheet.columns)
        text += column.header;
    for (const PrintBlock& block : sheet.blocks) {
        text += block.caption;
        for (const auto& row : block.rows)
            add(row);
        add(block.foot);
        add(block.notes);
    }
    return ToPrintedLines(text);
}

}  // namespace

int PaintSheet(QPagedPaintDevice& device, const PrintSheet& sheet) {
    return SheetPainter(device, sheet).Paint();
}

void WriteSheetAsPdf(const PrintSheet& sheet, const std::string& file) {
    if (const std::string why = center::WhyNotPdfTarget(file); !why.empty())
        throw automation::Error(automation::error_number::kPermissionDenied, why);
    QByteArray pdf;
    QBuffer buffer(&pdf);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(ToQt(sheet.title));
        writer.setCreator(QStringLiteral("vicenter"));
        if (PaintSheet(writer, sheet) == 0) FailToWrite(file);
    }
    pdf = WithItsOwnCharacters(std::move(pdf), TextOf(sheet), FontOf(kTextSize));
    system::FileReplacement replacement(file);
    QFile target(ToQt(replacement.Path()));
    if (!target.open(QIODevice::WriteOnly) || target.write(pdf) != pdf.size() || !target.flush())
        FailToWrite(file);
    target.close();
    replacement.PutInPlace();
}

bool PrintOnPaper(const PrintSheet& sheet, QWidget* parent) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(ToQt(sheet.title));
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(QStringLiteral("打印"));
    FrameTitleBar(dialog);
    if (dialog.exec() != QDialog::Accepted) return false;
    if (PaintSheet(printer, sheet) == 0)
        throw automation::Error(automation::error_number::kPermissionDenied, "打印机无法使用。");
    return true;
}

}  // namespace vicenter::ui
