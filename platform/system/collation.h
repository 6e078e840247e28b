#pragma once

// Text order and text keys in Chinese (PRC) order: without case, without width, trailing blanks ignored.
// Stateless for callers; safe from any thread once Collator::Chinese() has been called.

#include <string>
#include <string_view>
#include <thread>

namespace vicenter::system {

class Collator {
  public:
    virtual ~Collator() = default;
    // Negative, zero or positive. Texts are UTF-8.
    virtual int Compare(std::string_view a, std::string_view b) const = 0;
    // Full case folding of one text, as "contains" and LIKE compare it.
    virtual std::string Fold(std::string_view text) const = 0;
    // Latin pinyin initials of Chinese text, lower case; letters and digits stay: "银行存款" gives "yhck".
    virtual std::string PinyinInitials(std::string_view text) const = 0;

    // The one collator of the process.
    static const Collator& Chinese();
};

// Loads what PinyinInitials needs on a thread of its own, some 250 ms once in a process, so that the first
// list that wants initials does not wait for it; who asks in the meantime waits for what is left. The
// destructor waits for the thread. What fails here fails again, and is reported, where initials are asked
// for.
class PinyinLoading {
  public:
    PinyinLoading();
    ~PinyinLoading();
    PinyinLoading(const PinyinLoading&) = delete;
    PinyinLoading& operator=(const PinyinLoading&) = delete;

    // Whether nobody waits any more: initials are at hand in this process, or cannot be had.
    static bool IsOver();

  private:
    std::thread thread_;
};

}  // namespace vicenter::system
