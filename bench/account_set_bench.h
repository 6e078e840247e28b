#pragma once

// What the account-set benchmarks share: a temporary account set, raw access to its file, and timing in turn.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "bench/median.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"

namespace vicenter::bench {

class TemporaryAccountSet {
  public:
    TemporaryAccountSet()
        : folder_(std::filesystem::temp_directory_path() /
                  ("vicenter_bench_" +
                   std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()))) {
        std::filesystem::create_directories(folder_);
        ado::RegisterAccountSetProvider();
    }
    TemporaryAccountSet(const TemporaryAccountSet&) = delete;
    TemporaryAccountSet& operator=(const TemporaryAccountSet&) = delete;
    ~TemporaryAccountSet() {
        ado::CloseIdleAccountSets();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    std::string Path() const { return (folder_ / "bench.vas").string(); }
    std::string ConnectString() const { return "Provider=VelaAccountSet;Create=yes;Data Source=" + Path(); }

  private:
    std::filesystem::path folder_;
};

// The same file without the engine in between.
class RawDatabase {
  public:
    explicit RawDatabase(const std::string& path) {
        // As the engine opens its own.
        Check(sqlite3_open_v2(path.c_str(), &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr));
        Run("PRAGMA synchronous = NORMAL");
        Run("PRAGMA cache_size = -16000");
        // Bytes order these texts well enough for a comparison of speed.
        for (const char* name : {"ts_text", "ts_number"}) {
            sqlite3_create_collation_v2(handle_, name, SQLITE_UTF8, nullptr, CompareBytes, nullptr);
        }
    }
    RawDatabase(const RawDatabase&) = delete;
    RawDatabase& operator=(const RawDatabase&) = delete;
    ~RawDatabase() { sqlite3_close(handle_); }

    sqlite3* Handle() const { return handle_; }
    void Run(const char* sql) { Check(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr)); }
    sqlite3_stmt* Prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(handle_, sql, -1, &statement, nullptr));
        return statement;
    }
    std::int64_t Number(const char* sql) {
        sqlite3_stmt* statement = Prepare(sql);
        const std::int64_t value =
            sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : -1;
        sqlite3_finalize(statement);
        return value;
    }

  private:
    static int CompareBytes(void*, int sizeA, const void* a, int sizeB, const void* b) {
        return std::string_view(static_cast<const char*>(a), static_cast<std::size_t>(sizeA))
            .compare(std::string_view(static_cast<const char*>(b), static_cast<std::size_t>(sizeB)));
    }
    void Check(int code) const {
        if (code == SQLITE_OK) return;
        std::fprintf(stderr, "SQLite: %s\n", sqlite3_errmsg(handle_));
        std::exit(1);
    }

    sqlite3* handle_ = nullptr;
};

inline void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "Wrong result: %s\n", what);
    std::exit(1);
}

inline double Milliseconds(const std::function<void()>& body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

struct Candidate {
    std::string name;
    std::function<void()> prepare;  // not timed
    std::function<void()> run;
    std::vector<double> times{};

    double Median() const { return bench::Median(times); }
    double Spread() const {
        const auto [low, high] = std::minmax_element(times.begin(), times.end());
        return *high - *low;
    }
};

// Medians and spreads, beside the first candidate.
inline void Print(const std::vector<Candidate>& candidates, double unitsPerRun, const char* unit) {
    for (const Candidate& candidate : candidates) {
        std::printf("%-48s %10.3f %s  (spread %.3f)  %.2f x base\n", candidate.name.c_str(),
                    candidate.Median() / unitsPerRun, unit, candidate.Spread() / unitsPerRun,
                    candidate.Median() / candidates.front().Median());
    }
}

// Every candidate once per round, so that what else the machine does hits all alike. The first one is the
// base.
inline void RunInTurn(std::vector<Candidate>& candidates, int rounds, double unitsPerRun, const char* unit) {
    for (int round = -1; round < rounds; ++round) {
        for (Candidate& candidate : candidates) {
            if (candidate.prepare) candidate.prepare();
            const double time = Milliseconds(candidate.run);
            // One round to warm up.
            if (round >= 0) candidate.times.push_back(time);
        }
    }
    Print(candidates, unitsPerRun, unit);
}

}  // namespace vicenter::bench
