// Texts of 64 KiB to 64 MiB appended in 40-byte pieces: StringBuilder beside std::u16string, and beside a
// buffer that grows by the same chunks with plain realloc.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "bench/ratio.h"
#include "support/string_builder.h"

namespace {

using vicenter::bench::Candidate;
using vicenter::support::StringBuilder;

constexpr std::u16string_view kPiece = u"凭证模板0123456789abcdef";

// The same growth by chunks, each handed to the allocator at once.
class ReallocBuilder {
  public:
    ReallocBuilder() = default;
    ReallocBuilder(const ReallocBuilder&) = delete;
    ReallocBuilder& operator=(const ReallocBuilder&) = delete;
    ~ReallocBuilder() { std::free(buffer_); }

    void Append(std::u16string_view text) {
        if (used_ + text.size() > capacity_) {
            capacity_ += StringBuilder::kDefaultChunkBytes / 2;
            void* grown = std::realloc(buffer_, capacity_ * 2);
            if (grown == nullptr) std::abort();
            buffer_ = static_cast<char16_t*>(grown);
        }
        std::memcpy(buffer_ + used_, text.data(), text.size() * 2);
        used_ += text.size();
    }
    std::u16string_view Text() const { return {buffer_, used_}; }

  private:
    char16_t* buffer_ = nullptr;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
};

void Check(bool good) {
    if (good) return;
    std::fprintf(stderr, "wrong result\n");
    std::exit(1);
}

// Of one size, with and without other memory taken meanwhile, which keeps a block from growing where it is.
void Measure(std::size_t bytes) {
    const std::size_t pieces = bytes / (2 * kPiece.size());
    // A run too short for the clock is repeated.
    const std::size_t repeats = std::max<std::size_t>(1, (std::size_t{4} << 20) / bytes);
    const int rounds = 9;
    const auto repeated = [repeats](std::function<void()> run) {
        return [repeats, run = std::move(run)] {
            for (std::size_t i = 0; i < repeats; ++i)
                run();
        };
    };
    std::vector<Candidate> candidates{
        {"std::u16string", repeated([pieces] {
             std::u16string text;
             for (std::size_t i = 0; i < pieces; ++i)
                 text.append(kPiece);
             Check(text.size() == pieces * kPiece.size() && text.ends_with(kPiece));
         })},
        {"realloc, chunk by chunk", repeated([pieces] {
             ReallocBuilder builder;
             for (std::size_t i = 0; i < pieces; ++i)
                 builder.Append(kPiece);
             Check(builder.Text().size() == pieces * kPiece.size() && builder.Text().ends_with(kPiece));
         })},
        {"StringBuilder", repeated([pieces] {
             StringBuilder builder;
             for (std::size_t i = 0; i < pieces; ++i)
                 builder.Append(kPiece);
             Check(builder.Length() == pieces * kPiece.size() && builder.Text().ends_with(kPiece));
         })},
        {"StringBuilder, other memory taken meanwhile", repeated([pieces] {
             StringBuilder builder;
             std::vector<std::unique_ptr<char[]>> others;
             for (std::size_t i = 0; i < pieces; ++i) {
                 builder.Append(kPiece);
                 if (i % 400 == 0) others.push_back(std::make_unique<char[]>(1000));
             }
             Check(builder.Length() == pieces * kPiece.size() && builder.Text().ends_with(kPiece));
         })}};
    vicenter::bench::TimeInTurn(candidates, rounds);
    for (Candidate& candidate : candidates) {
        for (double& milliseconds : candidate.milliseconds)
            milliseconds /= static_cast<double>(repeats);
    }
    vicenter::bench::PrintRatios(std::to_string(bytes / 1024) + " KiB in pieces of 40 bytes", candidates, 0);
}

}  // namespace

int main() {
    static_assert(kPiece.size() == 20);
    constexpr std::size_t kMiB = std::size_t{1} << 20;
    for (const std::size_t bytes : {kMiB / 16, kMiB, 8 * kMiB, 64 * kMiB})
        Measure(bytes);
    return 0;
}
