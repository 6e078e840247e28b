#pragma once

// Writes values as JSON text. See VbsJson for the rules. One encoder a text.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "automation/variant.h"

namespace vicenter::support {

class JsonEncoder {
  public:
    std::string Encode(const automation::Variant& value);

  private:
    void WriteValue(const automation::Variant& value, int depth);
    void WriteArray(const automation::VariantArray& items, int depth);
    void WriteObject(const automation::ObjectRef& object, int depth);
    void WriteString(std::string_view text);
    void WriteDouble(double value);
    void WriteInteger(std::int64_t value);
    void WriteScaled(std::int64_t scaled);
    void Write(std::string_view text);
    void Write(char c);
    // The place to write at, with room for so many bytes.
    char* Room(std::size_t bytes);

    std::string text_;  // longer than what is written: used_ counts
    std::size_t used_ = 0;
};

}  // namespace vicenter::support
