// Fuzz target of the sheet reader alone: the input is the XML of one worksheet, without the zip around it,
// where mutations of a whole package would mostly break the compression.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "automation/error.h"
#include "platform/office/xml_scanner.h"

namespace {

using vicenter::office::XmlScanner;

class Bytes : public vicenter::office::ByteSource {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}
    std::size_t Read(char* buffer, std::size_t size) override {
        // Small pieces bring every token across a border.
        constexpr std::size_t kPiece = 7;
        const std::size_t count = std::min({size, left_, kPiece});
        std::memcpy(buffer, data_, count);
        data_ += count;
        left_ -= count;
        return count;
    }

  private:
    const std::uint8_t* data_;
    std::size_t left_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Bytes source(data, size);
        XmlScanner scanner(source);
        std::string text;
        for (auto token = scanner.Next(); token != XmlScanner::Token::Finished; token = scanner.Next()) {
            if (token == XmlScanner::Token::Start) text = scanner.Attribute("r");
            if (token == XmlScanner::Token::Text) scanner.AppendText(text);
            vicenter::office::ResolvePackageEscapes(text);
        }
    } catch (const vicenter::automation::Error&) {
        // Refused.
    }
    return 0;
}
