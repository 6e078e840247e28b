#include "automation/error.h"

#include <utility>

namespace vicenter::automation {

namespace {

struct NumberText {
    std::int32_t number;
    const char* text;
};

constexpr NumberText kTexts[] = {
    {error_number::kInvalidProcedureCall, "Invalid procedure call or argument"},
    {error_number::kOverflow, "Overflow"},
    {error_number::kOutOfMemory, "Out of memory"},
    {error_number::kSubscriptOutOfRange, "Subscript out of range"},
    {error_number::kDivisionByZero, "Division by zero"},
    {error_number::kTypeMismatch, "Type mismatch"},
    {error_number::kOutOfStackSpace, "Out of stack space"},
    {error_number::kFileNotFound, "File not found"},
    {error_number::kFileAlreadyExists, "File already exists"},
    {error_number::kPermissionDenied, "Permission denied"},
    {error_number::kPathNotFound, "Path not found"},
    {error_number::kObjectVariableNotSet, "Object variable or With block variable not set"},
    {error_number::kInvalidUseOfNull, "Invalid use of Null"},
    {error_number::kObjectRequired, "Object required"},
    {error_number::kCannotCreateObject, "ActiveX component can't create object"},
    {error_number::kNoSuchMember, "Object doesn't support this property or method"},
    {error_number::kNamedArgumentNotFound, "Named argument not found"},
    {error_number::kArgumentNotOptional, "Argument not optional"},
    {error_number::kWrongArgumentCount, "Wrong number of arguments or invalid property assignment"},
    {error_number::kKeyAlreadyExists, "This key is already associated with an element of this collection"},
    {error_number::kElementNotFound, "Element not found"},
};

}  // namespace

std::string ErrorText(std::int32_t number) {
    for (const NumberText& entry : kTexts) {
        if (entry.number == number) return entry.text;
    }
    return "Application-defined or object-defined error";
}

Error::Error(std::int32_t number, std::string text, std::string source)
    : number_(number),
      text_(text.empty() ? ErrorText(number) : std::move(text)),
      source_(std::move(source)) {}

Error& Error::While(std::string doing) {
    chain_.push_back(std::move(doing));
    return *this;
}

}  // namespace vicenter::automation
