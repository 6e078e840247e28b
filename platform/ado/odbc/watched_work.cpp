#include "platform/ado/odbc/watched_work.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

#include "automation/lasting.h"
#include "platform/ado/long_work_watch.h"
#include "platform/system/unwaited_thread.h"

namespace vicenter::ado {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenLooks{20};

thread_local bool beside = false;

// One work on a thread of its own.
struct Errand {
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
    std::exception_ptr failure;

    bool WaitFor(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex);
        return ended.wait_for(lock, time, [this] { return done; });
    }
};

using ErrandRef = std::shared_ptr<Errand>;

std::thread Start(const ErrandRef& errand, std::function<void()> work) {
    return system::StartUnwaited([errand, work = std::move(work)]() mutable {
        beside = true;
        std::exception_ptr failure;
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
        // Whatever the work alone still holds goes on this thread: a line may take its time to be closed.
        work = nullptr;
        const std::lock_guard lock(errand->mutex);
        errand->failure = failure;
        errand->done = true;
        errand->ended.notify_all();
    });
}

// Threads that nobody waits for any more; those that have ended meanwhile are joined. One that hangs in its
// driver to the last goes with the process.
class LeftBehind {
  public:
    static LeftBehind& Process() {
        static const automation::Lasting<LeftBehind> threads;
        return *threads;
    }
    void Keep(ErrandRef errand, std::thread thread) {
        const std::lock_guard lock(mutex_);
        threads_.remove_if([](Left& left) {
            if (!left.errand->WaitFor(std::chrono::milliseconds(0))) return false;
            left.thread.join();
            return true;
        });
        threads_.push_back({std::move(errand), std::move(thread)});
    }

  private:
    struct Left {
        ErrandRef errand;
        std::thread thread;
    };
    std::mutex mutex_;
    std::list<Left> threads_;
};

// Errands under way: joined, or left behind where that is said or an exception comes between.
class UnderWay {
  public:
    UnderWay() = default;
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;
    ~UnderWay() {
        for (auto& [errand, thread] : errands_)
            LeftBehind::Process().Keep(std::move(errand), std::move(thread));
    }
    // False where no thread can be had; the work has not begun then.
    bool Start(const std::function<void()>& work) {
        auto errand = std::make_shared<Errand>();
        errands_.emplace_back(errand, std::thread());
        try {
            errands_.back().second = ado::Start(errand, work);
            return true;
        } catch (const std::system_error&) {
            errands_.pop_back();
            return false;
        }
    }
    // True once all have ended.
    bool WaitFor(std::chrono::milliseconds time) {
        const Clock::time_point until = Clock::now() + time;
        return std::all_of(errands_.begin(), errands_.end(), [&](auto& entry) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
            return entry.first->WaitFor(std::max(left, std::chrono::milliseconds(0)));
        });
    }
    // Behind WaitFor only: what the works have thrown passes.
    void Join() {
        std::exception_ptr failure;
        for (auto& [errand, thread] : errands_) {
            thread.join();
            if (!failure) failure = errand->failure;
        }
        errands_.clear();
        if (failure) std::rethrow_exception(failure);
    }

  private:
    std::list<std::pair<ErrandRef, std::thread>> errands_;
};

// Waits for what is under way; false when it was asked to stop and has not.
bool Await(UnderWay& works, LongWorkWatch* watcher, const std::function<void()>& stop,
           std::chrono::milliseconds grace) {
    const Clock::time_point start = Clock::now();
    std::optional<Clock::time_point> stopped;
    while (!works.WaitFor(kBetweenLooks)) {
        const Clock::time_point now = Clock::now();
        const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(now - start);
        if (!stopped && watcher != nullptr && !watcher->GoOn(taken)) stopped = now;
        if (!stopped) continue;
        // A wish that came while nothing could take it must not be lost.
        stop();
        if (now - *stopped >= grace) return false;
    }
    works.Join();
    return true;
}

}  // namespace

bool RunWatched(std::function<void()> work, const std::function<void()>& stop,
                std::chrono::milliseconds grace) {
    if (!beside) {
        if (LongWorkWatch watcher; watcher) {
            UnderWay works;
            if (works.Start(work)) {
                work = nullptr;
                return Await(works, &watcher, stop, grace);
            }
        }
    }
    work();
    return true;
}

bool RunSideBySide(std::vector<std::function<void()>> works, const std::function<void()>& stop) {
    LongWorkWatch watcher;
    UnderWay underWay;
    for (std::function<void()>& work : works) {
        if (!underWay.Start(work)) work();
        work = nullptr;
    }
    return Await(underWay, watcher ? &watcher : nullptr, stop, kStopGrace);
}

}  // namespace vicenter::ado
