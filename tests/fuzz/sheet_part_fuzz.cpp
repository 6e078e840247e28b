// Fuzz target of the readers of a package's parts: the input is the XML of one part, read as styles, as
// shared texts and as a worksheet, without the zip around it, where mutations would mostly break the
// compression.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "automation/error.h"
#include "platform/office/workbook.h"
#include "platform/office/xlsx_reader.h"

namespace {

using vicenter::office::ByteSource;

class Bytes : public ByteSource {
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

// Refusing a part must leave the others readable: each reader goes on with what the one before it made.
template <class Reader>
void Try(const std::uint8_t* data, std::size_t size, const Reader& read) {
    try {
        Bytes source(data, size);
        read(source);
    } catch (const vicenter::automation::Error&) {
        // Refused.
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vicenter::office::Workbook workbook;
    vicenter::office::XlsxTables tables;
    Try(data, size, [&](ByteSource& part) { ReadXlsxStyles(part, workbook, tables); });
    Try(data, size, [&](ByteSource& part) { ReadXlsxSharedTexts(part, workbook, tables); });
    Try(data, size,
        [&](ByteSource& part) { ReadXlsxSheet(part, tables, workbook, workbook.AddSheet("Sheet1")); });
    return 0;
}
