#include "platform/ado/connection.h"

#include <mutex>
#include <utility>

#include "platform/ado/running_batch.h"
#include "text/blanks.h"

namespace vicenter::ado {

using automation::Error;

namespace {

constexpr const char* kProviderNotFoundText = "Provider cannot be found. It may not be properly installed.";

std::string_view Trimmed(std::string_view text) {
    return text::Trimmed(text, text::kSpaceAndTab);
}

struct Provider {
    std::string name;
    ConnectionFactory factory;
    RestFunction rest;
};

std::vector<Provider>& Providers() {
    static std::vector<Provider> providers;
    return providers;
}

std::mutex& RunningLock() {
    static std::mutex mutex;
    return mutex;
}

RunningBatch*& LastRunning() {
    static RunningBatch* last = nullptr;
    return last;
}

}  // namespace

ConnectString::ConnectString(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t equals = text.find('=', at);
        const std::size_t semicolon = text.find(';', at);
        if (equals == std::string_view::npos || (semicolon != std::string_view::npos && semicolon < equals)) {
            // A piece without "=" names nothing.
            if (semicolon == std::string_view::npos) return;
            at = semicolon + 1;
            continue;
        }
        const std::string_view key = Trimmed(text.substr(at, equals - at));
        at = equals + 1;
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
            ++at;
        std::string value;
        const char open = at < text.size() ? text[at] : '\0';
        if (open == '{' || open == '"' || open == '\'') {
            // The closing mark is doubled to stand for itself.
            const char close = open == '{' ? '}' : open;
            for (++at; at < text.size(); ++at) {
                if (text[at] == close) {
                    if (at + 1 >= text.size() || text[at + 1] != close) break;
                    ++at;
                }
                value += text[at];
            }
            const std::size_t end = text.find(';', at);
            at = end == std::string_view::npos ? text.size() : end + 1;
        } else {
            const std::size_t end = text.find(';', at);
            const std::size_t stop = end == std::string_view::npos ? text.size() : end;
            value = Trimmed(text.substr(at, stop - at));
            at = end == std::string_view::npos ? text.size() : end + 1;
        }
        pairs_.emplace_back(std::string(key), std::move(value));
    }
}

std::string ConnectString::Value(std::string_view key) const {
    for (auto pair = pairs_.rbegin(); pair != pairs_.rend(); ++pair) {
        if (automation::SameName(pair->first, key)) return pair->second;
    }
    return {};
}

bool ConnectString::Has(std::string_view key) const {
    for (const auto& pair : pairs_) {
        if (automation::SameName(pair.first, key)) return true;
    }
    return false;
}

void Connection::SetCommandTimeout(std::int32_t seconds) {
    if (seconds < 0) throw Error(automation::error_number::kInvalidProcedureCall, {}, "ADODB.Connection");
    commandTimeout_ = seconds;
}

RunningBatch::RunningBatch(Connection& connection) : connection_(connection) {
    const std::lock_guard guard(RunningLock());
    before_ = std::exchange(LastRunning(), this);
    if (before_ != nullptr) before_->after_ = this;
}

RunningBatch::~RunningBatch() {
    const std::lock_guard guard(RunningLock());
    (after_ != nullptr ? after_->before_ : LastRunning()) = before_;
    if (before_ != nullptr) before_->after_ = after_;
}

void CancelRunning() noexcept {
    const std::lock_guard guard(RunningLock());
    for (const RunningBatch* batch = LastRunning(); batch != nullptr; batch = batch->before_)
        batch->connection_.Cancel();
}

void RegisterProvider(std::string name, ConnectionFactory factory, RestFunction rest) {
    for (Provider& provider : Providers()) {
        if (automation::SameName(provider.name, name)) {
            provider.factory = std::move(factory);
            provider.rest = std::move(rest);
            return;
        }
    }
    Providers().push_back({std::move(name), std::move(factory), std::move(rest)});
}

void RestConnections() noexcept {
    for (const Provider& provider : Providers()) {
        try {
            if (provider.rest) provider.rest();
        } catch (...) {
            // There will be another rest; whoever needs the account set meets the error himself.
        }
    }
}

std::string ProviderOf(const ConnectString& settings) {
    std::string name = settings.Value("Provider");
    if (name.empty() && (settings.Has("Driver") || settings.Has("DSN"))) name = "MSDASQL";
    return name;
}

ConnectionRef OpenConnection(const std::string& connectString) {
    const ConnectString settings(connectString);
    const std::string name = ProviderOf(settings);
    for (const Provider& provider : Providers()) {
        if (name.empty() || !automation::SameName(provider.name, name)) continue;
        ConnectionRef connection = provider.factory();
        connection->Open(connectString);
        return connection;
    }
    throw Error(error_number::kProviderNotFound, kProviderNotFoundText, "ADODB.Connection");
}

}  // namespace vicenter::ado
