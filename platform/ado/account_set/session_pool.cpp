#include "platform/ado/account_set/session_pool.h"

#include <exception>

namespace vicenter::ado {

namespace {

constexpr std::size_t kKeptSessions = 8;

}  // namespace

bool SessionPool::ended_ = false;

SessionPool* SessionPool::Process() {
    if (ended_) return nullptr;
    static SessionPool pool;
    return &pool;
}

SessionPool::~SessionPool() {
    ended_ = true;
}

std::unique_ptr<tsql::engine::Session> SessionPool::Take(const std::string& key) {
    for (auto entry = idle_.rbegin(); entry != idle_.rend(); ++entry) {
        if (entry->key != key) continue;
        std::unique_ptr<tsql::engine::Session> session = std::move(entry->session);
        idle_.erase(std::next(entry).base());
        return session;
    }
    return nullptr;
}

void SessionPool::Keep(const std::string& key, std::unique_ptr<tsql::engine::Session> session) noexcept {
    try {
        session->Reset();
        if (idle_.size() >= kKeptSessions) idle_.erase(idle_.begin());
        idle_.push_back({key, std::move(session)});
    } catch (const std::exception&) {
        // What cannot be put back, for whatever reason, is closed.
    }
}

void SessionPool::Forget(const std::string& key) {
    std::erase_if(idle_, [&](const Idle& idle) { return idle.key == key || idle.session->IsStale(); });
}

void SessionPool::BringHome() {
    for (const Idle& idle : idle_) {
        if (!idle.session->IsStale()) idle.session->BringHome();
    }
}

void SessionPool::Clear() {
    idle_.clear();
}

}  // namespace vicenter::ado
