#pragma once

// Batches of the dialect at random, the same for the same seed: data of all kinds of types, expressions,
// joins, modifications, cursors, temporary tables, control flow, and @@ROWCOUNT and @@ERROR behind them. What
// they answer depends on no order of rows and on no choice among equal texts, so that it must be the same
// every time. Statements that fail stand apart, for whoever wants one at a place.

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace vicenter::tsql_test {

// Each statement stands by itself: any of them may be left out.
using Statements = std::vector<std::string>;

class BatchGenerator {
  public:
    explicit BatchGenerator(std::uint32_t seed) : random_(seed) {}

    // The tables g_one and g_two with their rows; with indexes as the bits say.
    static Statements Tables(int indexes);
    Statements Batch();
    // A statement that fails and changes nothing, of each form in turn.
    static std::string Failing(std::size_t number);
    static std::string Text(const Statements& statements);

  private:
    int Below(int limit) { return static_cast<int>(random_() % static_cast<std::uint32_t>(limit)); }
    const char* One(const std::vector<const char*>& choices) {
        return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
    }
    std::string Number(int depth);
    std::string Text(int depth);
    std::string Condition(int depth);
    std::string Query();
    std::string WindowQuery();
    std::string SourceQuery();
    std::string Change();
    std::string Flow();
    std::string Statement();

    std::mt19937 random_;
    int names_ = 0;
};

}  // namespace vicenter::tsql_test
