#pragma once

// VbsJson: JSON text to late-bound values and back, created by hosts as VelaVICenter.VbsJson.
//
//   object          Scripting.Dictionary, keys as texts, in text order   from an object of type "Dictionary"
//   array           zero-based array                                     from an array
//   string          text                                                 from a text
//   number          double                                               from any number
//   true, false     boolean                                              from a boolean
//   null            Null                                                 from Null or Empty
//
// Decode() reads one value and ignores whatever follows it. What is no other value is a number, which is
// searched for in the rest of the text: characters before it do no harm, and the position then moves on by
// the length of the number from where the search began. Failures are errors of number 8732 with the texts
// below; a name that comes twice in an object is refused as the dictionary refuses it (457), a number beyond
// the doubles overflows (6).
//
// Texts are UTF-8 here and UTF-16 outside: "\u" escapes of a surrogate pair become the one character that
// they stand for, and a surrogate without its other half becomes U+FFFD, so that every text made here is
// UTF-8. Bytes of the input that are no UTF-8 pass as they are.
//
// Without state between calls. User-interface thread.

#include <cstdint>
#include <string>
#include <string_view>

#include "automation/member_table.h"
#include "automation/variant.h"

namespace vicenter::support {

namespace json_error {
inline constexpr std::int32_t kNumber = 8732;
inline constexpr const char* kNoValue = "No JSON object could be ScanOnced";
inline constexpr const char* kPropertyName = "Expecting property name";
inline constexpr const char* kColon = "Expecting : delimiter";
inline constexpr const char* kComma = "Expecting , delimiter";
inline constexpr const char* kUnterminatedString = "Unterminated string starting";
inline constexpr const char* kControlCharacter = "Invalid control character";
inline constexpr const char* kEscape = "Invalid escape";
inline constexpr const char* kNotDictionary = "None dictionary object";
inline constexpr const char* kTooDeep = "Nesting too deep";
}  // namespace json_error

class VbsJson : public automation::TableObject<VbsJson> {
  public:
    // Objects and arrays within each other. Deeper texts and values (a dictionary that holds itself) are
    // refused, since each level takes a piece of the stack.
    static constexpr int kMaxDepth = 1000;

    static const automation::MemberTable<VbsJson>& Members();
    std::string TypeName() const override { return "VbsJson"; }

    // The JSON text of a value, without blanks. Numbers and dates stand in their locale-independent text
    // (dates as strings); an error value is a type mismatch (13).
    std::string Encode(const automation::Variant& value);
    // The value that the text begins with.
    automation::Variant Decode(std::string_view text);
};

}  // namespace vicenter::support
