#pragma once

// The character set behind a database's single- and double-byte texts, by its Windows number: which
// characters it has, and its bytes. An object belongs to one thread.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace vicenter::system {

class CodePage {
  public:
    static constexpr int kUtf8 = 65001;

    CodePage() = default;
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;
    virtual ~CodePage() = default;

    // None for a number that is not known here.
    static std::unique_ptr<CodePage> Open(int number);

    // Where the first character stands that the page lacks, in bytes; npos when it has them all.
    virtual std::size_t FirstMissing(std::string_view text) const = 0;
    // The text in the page's bytes, "?" for what it lacks.
    virtual std::string Encode(std::string_view text) const = 0;
    virtual std::string Decode(std::string_view bytes) const = 0;
};

}  // namespace vicenter::system
