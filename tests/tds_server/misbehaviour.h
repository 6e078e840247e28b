#pragma once

// What a server can do wrong, one small class each. A server has one at a time, shared by its connections,
// each of which asks it at every step; the well-behaved one is the base class itself. Called from the threads
// of the connections.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tsql/base/diagnostic.h"

namespace vicenter::tds_server {

class Misbehaviour {
  public:
    Misbehaviour() = default;
    Misbehaviour(const Misbehaviour&) = delete;
    Misbehaviour& operator=(const Misbehaviour&) = delete;
    virtual ~Misbehaviour() = default;

    // Asked at each packet of either direction.
    virtual bool DropsAtPacket() { return false; }
    // How many bytes leave at once.
    virtual std::size_t LargestPiece() { return std::numeric_limits<std::size_t>::max(); }
    // An error instead of a login.
    virtual std::optional<tsql::Diagnostic> RefusesLogin() { return std::nullopt; }
    // An error instead of running a batch.
    virtual std::optional<tsql::Diagnostic> RefusesBatch(std::string_view /*text*/) { return std::nullopt; }
    // The tokens of a reply that was made up, and whether the line is cut behind them.
    virtual std::optional<std::string> AnswersInstead(std::string_view /*text*/) { return std::nullopt; }
    virtual bool CutsBehindAnswer() { return false; }
    // What leaves, packet by packet without their heads.
    virtual void Sends(std::string_view /*tokens*/) {}
    // How long a batch lets wait for its answer; an attention ends the waiting.
    virtual int DelayMilliseconds() { return 0; }
    virtual void DelayEnded() {}
    // Asked at each login and each batch: it is not answered, whatever else comes, as behind a line that
    // leads nowhere.
    virtual bool IsDeafToLogins() { return false; }
    virtual bool IsDeafToBatches() { return false; }
};

// Cuts the line at the n-th packet, from 1, of all that pass; afterwards all is well.
class DropAtPacket final : public Misbehaviour {
  public:
    explicit DropAtPacket(int n) : left_(n) {}
    bool DropsAtPacket() override { return --left_ == 0; }
    // The packet came up at all.
    bool HasDropped() const { return left_ <= 0; }

  private:
    std::atomic<int> left_;
};

// Sends byte by byte, as a bad line may deliver.
class ByteByByte final : public Misbehaviour {
  public:
    std::size_t LargestPiece() override { return 1; }
};

// Lets every batch wait: a few milliseconds for a line over land, very many for a server that hangs.
class Slow final : public Misbehaviour {
  public:
    explicit Slow(int milliseconds) : milliseconds_(milliseconds) {}
    int DelayMilliseconds() override { return milliseconds_; }

  private:
    int milliseconds_;
};

// Hangs at the n-th batch only.
class StallAtBatch final : public Misbehaviour {
  public:
    explicit StallAtBatch(int n) : left_(n) {}
    int DelayMilliseconds() override {
        if (--left_ != 0) return 0;
        hangs_ = true;
        return kVeryLong;
    }
    void DelayEnded() override { hangs_ = false; }
    bool HasCome() const { return left_ <= 0; }
    // It has come, and nobody has ended it.
    bool Hangs() const { return hangs_; }

  private:
    static constexpr int kVeryLong = 600'000;
    std::atomic<int> left_;
    std::atomic<bool> hangs_{false};
};

class DeafToLogins final : public Misbehaviour {
  public:
    bool IsDeafToLogins() override { return true; }
};

// Answers nothing from the n-th batch on.
class DeafFromBatch final : public Misbehaviour {
  public:
    explicit DeafFromBatch(int n) : left_(n) {}
    bool IsDeafToBatches() override { return --left_ <= 0; }

  private:
    std::atomic<int> left_;
};

class RefuseLogin final : public Misbehaviour {
  public:
    std::optional<tsql::Diagnostic> RefusesLogin() override {
        tsql::Diagnostic error;
        error.number = 18456;
        error.severity = 14;
        error.text = "Login failed for user 'sa'.";
        return error;
    }
};

// An error of the server's own at the n-th batch: deadlock victim 1205, lock time-out 1222, snapshot conflict
// 3960.
class FailBatch final : public Misbehaviour {
  public:
    FailBatch(int n, std::int32_t number) : left_(n), number_(number) {}
    std::optional<tsql::Diagnostic> RefusesBatch(std::string_view text) override;
    // The batch came up at all.
    bool HasFailed() const { return left_ <= 0; }

  private:
    std::atomic<int> left_;
    std::int32_t number_;
};

// Answers one batch with any bytes.
class AnswerWith final : public Misbehaviour {
  public:
    enum class Line { kStays, kIsCut };
    AnswerWith(std::string batch, std::string tokens, Line line)
        : batch_(std::move(batch)), tokens_(std::move(tokens)), line_(line) {}
    std::optional<std::string> AnswersInstead(std::string_view text) override {
        if (text != batch_) return std::nullopt;
        return tokens_;
    }
    bool CutsBehindAnswer() override { return line_ == Line::kIsCut; }

  private:
    std::string batch_;
    std::string tokens_;
    Line line_;
};

// Behaves, and writes down what it sends.
class Recorded final : public Misbehaviour {
  public:
    void Sends(std::string_view tokens) override {
        const std::lock_guard lock(mutex_);
        sent_ += tokens;
    }
    std::string Take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(sent_, {});
    }

  private:
    std::mutex mutex_;
    std::string sent_;
};

}  // namespace vicenter::tds_server
