#include "platform/office/xml_scanner.h"

#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

#include "automation/error.h"

namespace vicenter::office {
namespace {

using Token = XmlScanner::Token;

// Gives the text a few bytes at a time, so that every token crosses a border.
class Drops : public ByteSource {
  public:
    Drops(std::string text, std::size_t step) : text_(std::move(text)), step_(step) {}
    std::size_t Read(char* buffer, std::size_t size) override {
        const std::size_t count = std::min({size, step_, text_.size() - at_});
        std::memcpy(buffer, text_.data() + at_, count);
        at_ += count;
        return count;
    }

  private:
    std::string text_;
    std::size_t step_;
    std::size_t at_ = 0;
};

std::string Printed(const std::string& xml, std::size_t step = 1000000) {
    Drops source(xml, step);
    XmlScanner scanner(source);
    std::string result;
    for (Token token = scanner.Next(); token != Token::Finished; token = scanner.Next()) {
        if (token == Token::Start) result += "<" + std::string(scanner.Name()) + ">";
        if (token == Token::End) result += "</" + std::string(scanner.Name()) + ">";
        if (token == Token::Text) scanner.AppendText(result);
    }
    return result;
}

TEST(XmlScanner, ReadsElementsTextsAndReferencesWhateverThePieces) {
    const std::string xml =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- a > b --><x:a "
        "xmlns:x='n' b='>'><x:c/>凭证&lt;&#x4E00;&#19968;"
        "<![CDATA[<&>]]><?pi?></x:a >\n";
    for (std::size_t step = 1; step < 40; ++step) {
        EXPECT_EQ(Printed(xml, step), "<a><c></c>凭证<一一<&></a>") << step;
    }
}

TEST(XmlScanner, TellsItsOwnAttributesFromThoseWithAPrefix) {
    Drops source("<a r:id = \"x&amp;y\" x:id2='3' id2='2'/>", 3);
    XmlScanner scanner(source);
    ASSERT_EQ(scanner.Next(), Token::Start);
    EXPECT_EQ(scanner.ForeignAttribute("id"), "x&y");
    EXPECT_EQ(scanner.RawAttribute("id"), "");
    EXPECT_EQ(scanner.RawAttribute("id2"), "2");
    EXPECT_EQ(scanner.ForeignAttribute("id2"), "3");
    EXPECT_FALSE(scanner.HasAttribute("id3"));
}

TEST(XmlScanner, PassesOverElementsOfOtherNamespacesWithAllTheyHold) {
    for (std::size_t step = 1; step < 12; ++step) {
        EXPECT_EQ(Printed("<a xmlns='m' xmlns:o='other' xmlns:p='m'>1<o:b>2<a>3</a><o:b/></o:b>4<p:c/><d "
                          "xmlns='x'><a/></d>"
                          "<e/></a>",
                          step),
                  "<a>14<c></c><e></e></a>");
    }
    EXPECT_THROW(Printed("<a xmlns:o='other'><o:b>"), automation::Error);
    std::string bindings = "<a";
    for (int i = 0; i < 5000; ++i)
        bindings += " xmlns:p" + std::to_string(i) + "='m'";
    EXPECT_THROW(Printed(bindings + "/>"), automation::Error);
}

TEST(XmlScanner, LooksIntoAttributesWhenTheyAreAskedFor) {
    Drops source("<a b=c/>", 3);
    XmlScanner scanner(source);
    ASSERT_EQ(scanner.Next(), Token::Start);
    EXPECT_THROW(scanner.RawAttribute("d"), automation::Error);
}

TEST(XmlScanner, RefusesWhatIsNotWellFormed) {
    for (const char* xml :
         {"", "text", "<a>", "<a></b>", "<a/><b/>", "<a></a></a>", "<a", "<a b='1></a>", "<a>&nope;</a>",
          "<a>&#xZZ;</a>", "<a>&amp</a>", "<a><![CDATA[</a>", "<!DOCTYPE a [<!ENTITY b 'c'>]><a>&b;</a>",
          "<?xml version='1.0' encoding='GBK'?><a/>", "<?xml", "</a>", "< a/>", "<a <b/>"}) {
        EXPECT_THROW(Printed(xml), automation::Error) << xml;
        EXPECT_THROW(Printed(xml, 1), automation::Error) << xml;
    }
}

TEST(XmlScanner, BoundsDepthAndTokens) {
    std::string deep;
    for (int i = 0; i < 1000; ++i)
        deep += "<a>";
    EXPECT_THROW(Printed(deep), automation::Error);
    EXPECT_THROW(Printed("<a>" + std::string(9'000'000, 'x') + "</a>"), automation::Error);
    EXPECT_THROW(Printed("<a b='" + std::string(9'000'000, 'x') + "'/>"), automation::Error);
}

TEST(PackageEscapes, ComeBackAsTheyWere) {
    for (const std::string text : {"_x0041_", "__x0041__", "_x", "\x01", "\r\n", "a_x005F_b", "_x000d_"}) {
        std::string written;
        AppendXmlEscaped(written, text);
        std::string read;
        AppendXmlDecoded(read, written);
        ResolvePackageEscapes(read);
        EXPECT_EQ(read, text);
    }
}

}  // namespace
}  // namespace vicenter::office
