#pragma once

// A folder whose files' openings are noted, whoever opens them. Linux only.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace vicenter::ui {

class WatchedFolder {
  public:
    explicit WatchedFolder(const std::string& path) : queue_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(inotify_add_watch(queue_, path.c_str(), IN_OPEN), 0);
    }
    WatchedFolder(const WatchedFolder&) = delete;
    WatchedFolder& operator=(const WatchedFolder&) = delete;
    ~WatchedFolder() { close(queue_); }

    // Since the last time.
    std::vector<std::string> Opened() const {
        std::vector<std::string> names;
        alignas(inotify_event) char bytes[4096];
        for (ssize_t got = 0; (got = read(queue_, bytes, sizeof bytes)) > 0;) {
            for (ssize_t at = 0; at < got;) {
                const auto* event = reinterpret_cast<const inotify_event*>(bytes + at);
                if ((event->mask & IN_ISDIR) == 0) names.emplace_back(event->name);
                at += static_cast<ssize_t>(sizeof(inotify_event)) + event->len;
            }
        }
        return names;
    }

  private:
    int queue_;
};

}  // namespace vicenter::ui
