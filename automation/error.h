#pragma once

// The one exception type of the project.
//
// A run-time error has a number, a text and a source, as every automation client expects, and the chain of
// what was being done when it came up. It is thrown by any layer and converted at the edges: the automation
// boundary, the slots of the windows and main(). Whatever is *expected* to happen is a return value, never an
// Error.

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace vicenter::automation {

// Run-time error numbers that automation clients know, with the texts of ErrorText().
namespace error_number {
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kOutOfStackSpace = 28;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kFileAlreadyExists = 58;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kObjectVariableNotSet = 91;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kObjectRequired = 424;
inline constexpr std::int32_t kCannotCreateObject = 429;
inline constexpr std::int32_t kNoSuchMember = 438;
inline constexpr std::int32_t kNamedArgumentNotFound = 448;
inline constexpr std::int32_t kArgumentNotOptional = 449;
inline constexpr std::int32_t kWrongArgumentCount = 450;
inline constexpr std::int32_t kKeyAlreadyExists = 457;
inline constexpr std::int32_t kElementNotFound = 32811;
}  // namespace error_number

// The usual text of a run-time error number; "Application-defined or object-defined error" for any other.
std::string ErrorText(std::int32_t number);

class Error : public std::exception {
  public:
    // An empty text stands for ErrorText(number).
    explicit Error(std::int32_t number, std::string text = {}, std::string source = {});

    std::int32_t Number() const { return number_; }
    const std::string& Text() const { return text_; }      // UTF-8
    const std::string& Source() const { return source_; }  // ProgID or component name, may be empty
    // What was being done, innermost first.
    const std::vector<std::string>& Chain() const { return chain_; }

    void SetSource(std::string source) { source_ = std::move(source); }
    // Adds one step to the chain while the error travels outward; returns *this for `throw error.While(...)`.
    Error& While(std::string doing);

    const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::int32_t number_;
    std::string text_;
    std::string source_;
    std::vector<std::string> chain_;
};

}  // namespace vicenter::automation
