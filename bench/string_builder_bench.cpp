// 64 MiB appended in 40-byte pieces: StringBuilder beside std::u16string, and beside a buffer that grows by
// the same chunks but is allocated and copied anew each time (on a smaller text, since that is quadratic).

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "bench/ratio.h"
#include "support/string_builder.h"

namespace {

using vicenter::bench::Candidate;
using vicenter::support::StringBuilder;

constexpr std::size_t kCharacters = std::size_t{32} * 1024 * 1024;  // 64 MiB
constexpr std::u16string_view kPiece = u"凭证模板0123456789abcdef";

class CopyingBuilder {
  public:
    void Append(std::u16string_view text) {
        if (used_ + text.size() > capacity_) {
            const std::size_t capacity = capacity_ + StringBuilder::kDefaultChunkBytes / 2;
            auto fresh = std::make_unique<char16_t[]>(capacity);
            std::memcpy(fresh.get(), buffer_.get(), used_ * 2);
            buffer_ = std::move(fresh);
            capacity_ = capacity;
        }
        std::memcpy(buffer_.get() + used_, text.data(), text.size() * 2);
        used_ += text.size();
    }
    std::size_t Length() const { return used_; }

  private:
    std::unique_ptr<char16_t[]> buffer_ = std::make_unique<char16_t[]>(1);
    std::size_t capacity_ = 1;
    std::size_t used_ = 0;
};

void Check(bool good) {
    if (good) return;
    std::fprintf(stderr, "wrong result\n");
    std::exit(1);
}

}  // namespace

int main() {
    static_assert(kPiece.size() == 20);
    const std::size_t pieces = kCharacters / kPiece.size();
    std::vector<Candidate> candidates{
        {"std::u16string",
         [&] {
             std::u16string text;
             for (std::size_t i = 0; i < pieces; ++i)
                 text.append(kPiece);
             Check(text.size() == pieces * kPiece.size() && text.ends_with(kPiece));
         }},
        {"StringBuilder",
         [&] {
             StringBuilder builder;
             for (std::size_t i = 0; i < pieces; ++i)
                 builder.Append(kPiece);
             Check(builder.Length() == pieces * kPiece.size() && builder.Text().ends_with(kPiece));
         }},
        {"StringBuilder, other memory taken meanwhile", [&] {
             StringBuilder builder;
             std::vector<std::unique_ptr<char[]>> others;
             for (std::size_t i = 0; i < pieces; ++i) {
                 builder.Append(kPiece);
                 if (i % 400 == 0) others.push_back(std::make_unique<char[]>(1000));
             }
             Check(builder.Length() == pieces * kPiece.size() && builder.Text().ends_with(kPiece));
         }}};
    vicenter::bench::TimeInTurn(candidates, 9);
    vicenter::bench::PrintRatios("64 MiB in pieces of 40 bytes", candidates, 0);

    const std::size_t fewer = pieces / 8;
    std::vector<Candidate> chunked{{"StringBuilder",
                                    [&] {
                                        StringBuilder builder;
                                        for (std::size_t i = 0; i < fewer; ++i)
                                            builder.Append(kPiece);
                                        Check(builder.Length() == fewer * kPiece.size());
                                    }},
                                   {"chunks allocated and copied", [&] {
                                        CopyingBuilder builder;
                                        for (std::size_t i = 0; i < fewer; ++i)
                                            builder.Append(kPiece);
                                        Check(builder.Length() == fewer * kPiece.size());
                                    }}};
    vicenter::bench::TimeInTurn(chunked, 3);
    vicenter::bench::PrintRatios("8 MiB in pieces of 40 bytes", chunked, 0);
    return 0;
}
