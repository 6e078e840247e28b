#include <map>
#include <vector>

#include "platform/office/cell_text.h"
#include "platform/office/xlsx_writer.h"
#include "platform/office/xml_scanner.h"

namespace vicenter::office {

namespace {

constexpr double kStandardFontSize = 11;
constexpr std::size_t kTextFormatId = 49;
constexpr std::size_t kFirstOwnFormatId = 164;
// The palette's first eight colours stand twice in the file's own numbering.
constexpr int kPaletteOffset = 7;

std::string Count(std::size_t count) {
    return " count=\"" + std::to_string(count) + "\">";
}

// Each distinct value once, in order of first use.
template <class T>
class Distinct {
  public:
    std::size_t Add(const T& value) {
        const auto [place, isNew] = indexes_.try_emplace(value, values_.size());
        if (isNew) values_.push_back(value);
        return place->second;
    }
    const std::vector<T>& Values() const { return values_; }

  private:
    std::map<T, std::size_t> indexes_;
    std::vector<T> values_;
};

struct Font {
    double size = 0;
    bool bold = false;
    friend auto operator<=>(const Font&, const Font&) = default;
};

std::string FontXml(const Font& font) {
    return std::string("<font>") + (font.bold ? "<b/>" : "") + "<sz val=\"" +
           NumberAsTyped(font.size > 0 ? font.size : kStandardFontSize) +
           "\"/><color indexed=\"8\"/><name val=\"宋体\"/><charset val=\"134\"/></font>";
}

std::string FillXml(std::uint8_t color) {
    return "<fill><patternFill patternType=\"solid\"><fgColor indexed=\"" +
           std::to_string(color + kPaletteOffset) + "\"/><bgColor indexed=\"64\"/></patternFill></fill>";
}

}  // namespace

std::string XlsxStyles(const FormatTable& formats) {
    Distinct<Font> fonts;
    fonts.Add({});
    Distinct<std::uint8_t> fills;
    Distinct<std::string> numberFormats;
    std::string cellFormats;
    for (std::size_t i = 0; i < formats.Count(); ++i) {
        const CellFormat& format = formats.At(static_cast<std::uint16_t>(i));
        std::size_t number = 0;
        if (format.numberFormat == kTextNumberFormat) {
            number = kTextFormatId;
        } else if (!format.numberFormat.empty()) {
            number = kFirstOwnFormatId + numberFormats.Add(format.numberFormat);
        }
        const std::size_t font = fonts.Add({format.fontSize, format.bold});
        // The first two fills are fixed by the file kind.
        const std::size_t fill = format.fillColor == 0 ? 0 : 2 + fills.Add(format.fillColor);
        cellFormats += "<xf numFmtId=\"" + std::to_string(number) + "\" fontId=\"" + std::to_string(font) +
                       "\" fillId=\"" + std::to_string(fill) + "\" borderId=\"" +
                       (format.borders ? "1" : "0") + "\" xfId=\"0\"";
        if (number != 0) cellFormats += " applyNumberFormat=\"1\"";
        if (font != 0) cellFormats += " applyFont=\"1\"";
        if (fill != 0) cellFormats += " applyFill=\"1\"";
        if (format.borders) cellFormats += " applyBorder=\"1\"";
        cellFormats += "/>";
    }

    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
        "<styleSheet xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\">";
    if (!numberFormats.Values().empty()) {
        xml += "<numFmts" + Count(numberFormats.Values().size());
        std::size_t number = kFirstOwnFormatId;
        for (const std::string& format : numberFormats.Values()) {
            xml += "<numFmt numFmtId=\"" + std::to_string(number++) + "\" formatCode=\"";
            AppendXmlEscaped(xml, format);
            xml += "\"/>";
        }
        xml += "</numFmts>";
    }
    xml += "<fonts" + Count(fonts.Values().size());
    for (const Font& font : fonts.Values())
        xml += FontXml(font);
    xml +=
        "</fonts><fills" + Count(fills.Values().size() + 2) +
        "<fill><patternFill patternType=\"none\"/></fill><fill><patternFill patternType=\"gray125\"/></fill>";
    for (const std::uint8_t color : fills.Values())
        xml += FillXml(color);
    xml +=
        "</fills><borders" + Count(2) + "<border><left/><right/><top/><bottom/><diagonal/></border><border>";
    for (const char* side : {"left", "right", "top", "bottom"}) {
        xml += std::string("<") + side + " style=\"thin\"><color indexed=\"64\"/></" + side + ">";
    }
    xml += "<diagonal/></border></borders><cellStyleXfs" + Count(1) +
           "<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs><cellXfs" +
           Count(formats.Count()) + cellFormats + "</cellXfs><cellStyles" + Count(1) +
           "<cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles></styleSheet>";
    return xml;
}

}  // namespace vicenter::office
