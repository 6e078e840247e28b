// Memory that is refused to ICU while it sets itself up: the first comparison, code page and pinyin answer
// rightly or throw, and answer rightly once there is memory again. Each refusal is tried in a process of its
// own, since ICU sets itself up once. A program of its own: it stands between ICU and the allocator.

#include <atomic>
#include <cstdlib>
#include <functional>
#include <map>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "automation/error.h"
#include "platform/system/code_page.h"
#include "platform/system/collation.h"

extern "C" {
void* __libc_malloc(std::size_t);          // NOLINT: the C library names it so
void* __libc_realloc(void*, std::size_t);  // NOLINT
}

namespace {

// Requests that are still granted; below 0 all are.
std::atomic<long> granted{-1};
std::atomic<bool> forGood{false};

bool Refuses() {
    if (granted < 0) return false;
    if (granted > 0) {
        --granted;
        return false;
    }
    if (!forGood) granted = -1;
    return true;
}

}  // namespace

extern "C" void* malloc(std::size_t bytes) {
    return Refuses() ? nullptr : __libc_malloc(bytes);
}
extern "C" void* realloc(void* block, std::size_t bytes) {
    return Refuses() ? nullptr : __libc_realloc(block, bytes);
}

namespace vicenter::system {
namespace {

enum Answer { kRight, kRefused, kWrong, kWrongAfterwards, kCrashed, kHung };
constexpr unsigned kLongestSeconds = 30;

bool CompareRightly() {
    return Collator::Chinese().Compare("安徽", "中国") < 0 && Collator::Chinese().Compare("a1", "A2") < 0;
}
bool EncodeRightly() {
    const auto page = CodePage::Open(936);
    return page != nullptr && page->Encode("现金") == "\xCF\xD6\xBD\xF0" &&
           page->Decode("\xCF\xD6") == "现" && page->FirstMissing("现金") == std::string_view::npos &&
           page->FirstMissing("金😀") == 3;
}
bool SpellRightly() {
    return Collator::Chinese().PinyinInitials("库存现金") == "kcxj";
}

int InChild(const std::function<bool()>& work, long n) {
    alarm(kLongestSeconds);
    int answer = kRight;
    granted = n;
    try {
        answer = work() ? kRight : kWrong;
    } catch (const std::exception&) {
        answer = kRefused;
    }
    granted = -1;
    try {
        return work() ? answer : kWrongAfterwards;
    } catch (const std::exception&) {
        return kWrongAfterwards;
    }
}

// How often each answer came.
std::map<Answer, int> Try(const std::function<bool()>& work, long most, long step) {
    std::map<Answer, int> answers;
    for (const bool stays : {false, true}) {
        for (long n = 0; n < most; n += step) {
            const pid_t child = fork();
            if (child == 0) {
                forGood = stays;
                _exit(InChild(work, n));
            }
            int status = 0;
            EXPECT_EQ(child, waitpid(child, &status, 0));
            Answer answer = kCrashed;
            if (WIFEXITED(status)) answer = static_cast<Answer>(WEXITSTATUS(status));
            if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) answer = kHung;
            ++answers[answer];
            EXPECT_LE(answer, kRefused) << "request " << n << (stays ? " and all later ones" : "");
        }
    }
    return answers;
}

TEST(RefusedToIcu, TheFirstComparisonAnswersOrThrows) {
    EXPECT_GT(Try(CompareRightly, 90, 1)[kRight], 0);
}

TEST(RefusedToIcu, TheFirstCodePageAnswersOrThrows) {
    EXPECT_GT(Try(EncodeRightly, 25, 1)[kRight], 0);
}

// There are 21,000 requests.
TEST(RefusedToIcu, TheFirstPinyinAnswersOrThrows) {
    const bool whole = std::getenv("VICENTER_LONG") != nullptr;
    EXPECT_GT(Try(SpellRightly, 21500, whole ? 101 : 2003)[kRight], 0);
}

}  // namespace
}  // namespace vicenter::system
