// Narrowing a name list of 20,000 accounts, key by key, beside a plain linear filter.
//
// The plain filter folds code, name and initials of every account at every key; the list folds them once.
// Both answers of every key are compared. Runs alternate; the median of nine is printed with the least and
// the most.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "platform/system/collation.h"
#include "platform/system/narrowing_index.h"

namespace {

using vicenter::system::Collator;
using vicenter::system::NarrowingIndex;

constexpr int kAccounts = 20000;
constexpr int kRuns = 9;

struct Account {
    std::string number;
    std::string name;
};

std::vector<Account> MakeAccounts() {
    static const char* const kKinds[] = {"银行存款", "应收账款", "库存商品", "应付账款", "管理费用"};
    static const char* const kFirms[] = {"杭州雅集茶庄", "上海云栖礼品", "南京清和百货", "北京长安文化",
                                         "广州南方贸易", "深圳前海电子", "成都天府食品"};
    std::vector<Account> accounts;
    accounts.reserve(kAccounts);
    for (int i = 0; i < kAccounts; ++i) {
        char number[32];
        std::snprintf(number, sizeof number, "%d.%02d.%03d", 1001 + i / 2000, i / 100 % 20, i % 100);
        accounts.push_back({number, std::string(kKinds[i % 5]) + "-" + kFirms[i % 7] + std::to_string(i)});
    }
    return accounts;
}

// Folded beforehand like the list's, but looked through from the first to the last at every key.
struct Folded {
    std::string number;
    std::string name;
    std::string initials;
};

std::vector<std::size_t> PlainFilter(const std::vector<Folded>& accounts, const std::string& text) {
    const std::string wanted = Collator::Chinese().Fold(text);
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < accounts.size(); ++i) {
        const Folded& account = accounts[i];
        if (account.number.find(wanted) != std::string::npos ||
            account.name.find(wanted) != std::string::npos ||
            account.initials.find(wanted) != std::string::npos) {
            found.push_back(i);
        }
    }
    return found;
}

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

std::string Spread(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    char text[64];
    std::snprintf(text, sizeof text, "%.3f ms (%.3f to %.3f)", times[times.size() / 2], times.front(),
                  times.back());
    return text;
}

}  // namespace

int main() {
    const std::vector<Account> accounts = MakeAccounts();
    NarrowingIndex index;
    const auto fill = [&] {
        index.Clear();
        index.Reserve(accounts.size());
        for (const Account& account : accounts)
            index.Add(account.number, account.name);
    };
    const double first = Milliseconds(fill);
    const double again = Milliseconds(fill);
    std::vector<Folded> folded;
    for (const Account& account : accounts) {
        const Collator& collator = Collator::Chinese();
        folded.push_back({collator.Fold(account.number), collator.Fold(account.name),
                          collator.PinyinInitials(account.name)});
    }
    std::printf(
        "%d accounts; folding them for the first list of a process: %.1f ms, for a later one: %.1f ms\n",
        kAccounts, first, again);

    // Words as they are typed: every key is one text more.
    for (const std::vector<std::string>& word : {std::vector<std::string>{"1", "10", "100", "1003", "1003."},
                                                 std::vector<std::string>{"y", "yh", "yhc", "yhck"},
                                                 std::vector<std::string>{"应", "应收", "应收账"}}) {
        for (std::size_t key = 0; key < word.size(); ++key) {
            std::vector<double> narrowed;
            std::vector<double> plain;
            std::size_t matches = 0;
            for (int run = 0; run < kRuns; ++run) {
                index.Narrow(key == 0 ? std::string() : word[key - 1]);
                std::vector<std::size_t> best;
                narrowed.push_back(Milliseconds([&] { best = index.Best(word[key], 200); }));
                const std::vector<std::size_t>& all = index.Narrow(word[key]);
                matches = all.size();
                std::vector<std::size_t> expected;
                plain.push_back(Milliseconds([&] { expected = PlainFilter(folded, word[key]); }));
                if (all != expected || best.size() != std::min<std::size_t>(200, all.size())) {
                    std::fprintf(stderr, "different answers for %s\n", word[key].c_str());
                    return EXIT_FAILURE;
                }
            }
            std::printf("%-8s %6zu matches   list %-32s   plain filter %s\n", word[key].c_str(), matches,
                        Spread(narrowed).c_str(), Spread(plain).c_str());
        }
    }
    return EXIT_SUCCESS;
}
