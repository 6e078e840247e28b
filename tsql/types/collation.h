#pragma once

// The order of texts, given to the engine by whoever opens an account set: the engine has no tables of
// characters of its own. Implementations must be stateless for callers and outlive every session. The
// printable characters of ASCII must stand as the root order has them: marks before digits before letters,
// letters without case.

#include <cstdint>
#include <string>
#include <string_view>

namespace vicenter::tsql::engine {

class TextCollation {
  public:
    TextCollation() = default;
    TextCollation(const TextCollation&) = delete;
    TextCollation& operator=(const TextCollation&) = delete;
    virtual ~TextCollation() = default;

    // Negative, zero or positive; without case and width. Trailing blanks have been cut by the engine.
    virtual int Compare(std::string_view a, std::string_view b) const = 0;
    // Equal for texts that compare equal, character by character: what LIKE and REPLACE compare.
    virtual std::string Fold(std::string_view text) const = 0;
    // The first byte that a character beyond ASCII has in the code page of varchar; that of '?' for one that
    // is not in it.
    virtual std::uint8_t LeadByte(std::string_view /*character*/) const { return '?'; }
};

// With trailing blanks ignored and a short way for equal texts and for printable ASCII.
int CompareTexts(const TextCollation& collation, std::string_view a, std::string_view b);
// The text, or the empty one where it is a single character that counts as nothing.
std::string_view WithoutLoneBlank(const TextCollation& collation, std::string_view text);

}  // namespace vicenter::tsql::engine
