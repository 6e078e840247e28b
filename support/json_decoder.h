#pragma once

// Reads one value of a JSON text in one pass. See VbsJson for what it accepts. One decoder a text; the text
// outlives it.

#include <cstddef>
#include <string>
#include <string_view>

#include "automation/variant.h"

namespace vicenter::support {

class JsonDecoder {
  public:
    explicit JsonDecoder(std::string_view text)
        : place_(text.data()), end_(text.data() + text.size()), number_(text.data()) {}

    // Skips whitespace and reads the value there.
    automation::Variant Decode();

  private:
    void SkipWhitespace();
    bool At(char c) const { return place_ != end_ && *place_ == c; }
    bool AtWord(std::string_view word) const;
    void ScanValue(automation::Variant& value, int depth);
    void ScanObject(automation::Variant& value, int depth);
    void ScanArray(automation::Variant& value, int depth);
    // From behind the opening quote. The result lies in the text, or in scratch_ when there were escapes.
    std::string_view ScanString();
    void ScanEscapes(const char* from);
    void ScanEscape();
    unsigned ScanHexadecimal();
    void ScanNumber(automation::Variant& value);
    void AdvanceUnits(std::size_t units);

    const char* place_;
    const char* end_;
    // Where the next number begins: still good while place_ has not passed it, so that a text full of what
    // is no value is searched once.
    const char* number_;
    bool numberKnown_ = false;
    std::size_t usualCount_ = 0;  // entries of the last object read: the next one is likely alike
    std::string scratch_;
};

}  // namespace vicenter::support
