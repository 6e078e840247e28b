#include "platform/ado/odbc/odbc_pool.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

#include "automation/lasting.h"
#include "platform/system/unwaited_thread.h"

namespace vicenter::ado {

OdbcPool& OdbcPool::Process() {
    static const automation::Lasting<OdbcPool> pool;
    return *pool;
}

std::shared_ptr<OdbcLink> OdbcPool::Take(const std::string& key) {
    for (;;) {
        Idle found;
        bool rested = false;
        Links old;
        {
            const std::lock_guard lock(mutex_);
            old = TakeOld();
            const auto last =
                std::find_if(idle_.rbegin(), idle_.rend(), [&](const Idle& idle) { return idle.key == key; });
            if (last == idle_.rend()) return nullptr;
            rested = Clock::now() - last->since > limits_.pause;
            found = std::move(*last);
            idle_.erase(std::next(last).base());
        }
        if (!rested || found.link->Answers()) return found.link;
    }
}

void OdbcPool::Keep(const std::string& key, std::shared_ptr<OdbcLink> link) {
    const int page = link->PageNumber();
    Links old;
    {
        const std::lock_guard lock(mutex_);
        if (page > 0) pages_[key] = page;
        if (link->hasTraces) return;
        idle_.push_back({key, std::move(link), Clock::now()});
        old = TakeOld();
        StartWatching();
    }
    changed_.notify_all();
}

std::size_t OdbcPool::Count(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(
        std::count_if(idle_.begin(), idle_.end(), [&](const Idle& idle) { return idle.key == key; }));
}

int OdbcPool::PageOf(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    const auto known = pages_.find(key);
    return known == pages_.end() ? 0 : known->second;
}

void OdbcPool::Forget(const std::string& key) {
    Links gone;
    const std::lock_guard lock(mutex_);
    pages_.erase(key);
    const auto first =
        std::stable_partition(idle_.begin(), idle_.end(), [&](const Idle& idle) { return idle.key != key; });
    gone.assign(std::make_move_iterator(first), std::make_move_iterator(idle_.end()));
    idle_.erase(first, idle_.end());
}

void OdbcPool::Clear() {
    Links all;
    std::unique_lock lock(mutex_);
    all.swap(idle_);
    pages_.clear();
    changed_.notify_all();
    changed_.wait(lock, [this] { return !closing_; });
}

OdbcPooling OdbcPool::Limits() const {
    const std::lock_guard lock(mutex_);
    return limits_;
}

void OdbcPool::SetLimits(const OdbcPooling& limits) {
    Links old;
    {
        const std::lock_guard lock(mutex_);
        limits_ = limits;
        old = TakeOld();
    }
    changed_.notify_all();
}

OdbcPool::Links OdbcPool::TakeOld() {
    const Clock::time_point now = Clock::now();
    auto first = idle_.begin();
    while (first != idle_.end() && (now - first->since >= limits_.longestIdle ||
                                    static_cast<std::size_t>(idle_.end() - first) > limits_.most))
        ++first;
    Links old(std::make_move_iterator(idle_.begin()), std::make_move_iterator(first));
    idle_.erase(idle_.begin(), first);
    return old;
}

void OdbcPool::StartWatching() {
    if (watched_ || idle_.empty()) return;
    try {
        system::StartUnwaited([this] { WatchTime(); }).detach();
        watched_ = true;
    } catch (const std::system_error&) {
        // Whoever asks for a link closes what is old as well.
    }
}

void OdbcPool::WatchTime() {
    std::unique_lock lock(mutex_);
    while (!idle_.empty()) {
        changed_.wait_until(lock, idle_.front().since + limits_.longestIdle);
        if (Links old = TakeOld(); !old.empty()) {
            closing_ = true;
            lock.unlock();
            old.clear();
            lock.lock();
            closing_ = false;
            changed_.notify_all();
        }
    }
    watched_ = false;
}

void CloseIdleOdbcConnections() {
    OdbcPool::Process().Clear();
}

OdbcPooling CurrentOdbcPooling() {
    return OdbcPool::Process().Limits();
}

void SetOdbcPooling(const OdbcPooling& pooling) {
    OdbcPool::Process().SetLimits(pooling);
}

}  // namespace vicenter::ado
