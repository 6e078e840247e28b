// Code pages by ICU's converters.

#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include <unicode/ucnv.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/uset.h>
#include <unicode/utf8.h>

#include "platform/system/code_page.h"
#include "platform/system/icu_memory.h"

namespace vicenter::system {

namespace {

class Utf8Page final : public CodePage {
  public:
    std::size_t FirstMissing(std::string_view /*text*/) const override { return std::string_view::npos; }
    std::string Encode(std::string_view text) const override { return std::string(text); }
    std::string Decode(std::string_view bytes) const override { return std::string(bytes); }
};

class IcuPage final : public CodePage {
  public:
    explicit IcuPage(UConverter* converter) : converter_(converter, ucnv_close) {
        UErrorCode status = U_ZERO_ERROR;
        // What comes back as it went; the look-alikes that a converter may fall back to are not the
        // character.
        ucnv_getUnicodeSet(converter_.get(), reinterpret_cast<USet*>(&characters_), UCNV_ROUNDTRIP_SET,
                           &status);
        characters_.add(0, 0x7F);
        characters_.freeze();
        ucnv_setSubstChars(converter_.get(), "?", 1, &status);
        if (U_FAILURE(status) || characters_.isBogus()) throw std::bad_alloc();
    }

    std::size_t FirstMissing(std::string_view text) const override {
        const auto length = static_cast<std::int32_t>(text.size());
        const std::int32_t held = characters_.spanUTF8(text.data(), length, USET_SPAN_CONTAINED);
        return held == length ? std::string_view::npos : static_cast<std::size_t>(held);
    }

    std::string Encode(std::string_view text) const override {
        const icu::UnicodeString wide = icu::UnicodeString::fromUTF8(
            icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
        if (wide.isBogus()) throw std::bad_alloc();
        std::string bytes(static_cast<std::size_t>(UCNV_GET_MAX_BYTES_FOR_STRING(
                              wide.length(), ucnv_getMaxCharSize(converter_.get()))),
                          '\0');
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length =
            ucnv_fromUChars(converter_.get(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
                            wide.getBuffer(), wide.length(), &status);
        bytes.resize(static_cast<std::size_t>(std::max(length, 0)));
        return bytes;
    }

    std::string Decode(std::string_view bytes) const override {
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString wide(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter_.get(),
                                      status);
        if (wide.isBogus() || status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
        std::string text;
        wide.toUTF8String(text);
        return text;
    }

  private:
    std::unique_ptr<UConverter, void (*)(UConverter*)> converter_;
    icu::UnicodeSet characters_;
};

}  // namespace

std::unique_ptr<CodePage> CodePage::Open(int number) {
    if (number == kUtf8) return std::make_unique<Utf8Page>();
    GiveIcuItsReserve();
    UErrorCode status = U_ZERO_ERROR;
    const std::string name = "windows-" + std::to_string(number);
    UConverter* converter = ucnv_open(name.c_str(), &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(status)) return nullptr;
    return std::make_unique<IcuPage>(converter);
}

}  // namespace vicenter::system
