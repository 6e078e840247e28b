#pragma once

// All locks of an account set's log, held as somebody outside holds them: by another description of the file
// of its index. Linux only.

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vicenter::fakes {

class HeldLog {
  public:
    explicit HeldLog(const std::string& set) : descriptor_(open((set + "-shm").c_str(), O_RDWR | O_CLOEXEC)) {
        Lock(F_WRLCK);
    }
    HeldLog(const HeldLog&) = delete;
    HeldLog& operator=(const HeldLog&) = delete;
    ~HeldLog() { close(descriptor_); }
    void LetGo() { Lock(F_UNLCK); }

  private:
    void Lock(short type) const {
        constexpr off_t kFirstLock = 120;
        constexpr off_t kLocks = 8;
        struct flock range {};
        range.l_type = type;
        range.l_whence = SEEK_SET;
        range.l_start = kFirstLock;
        range.l_len = kLocks;
        EXPECT_EQ(fcntl(descriptor_, F_OFD_SETLK, &range), 0);
    }
    int descriptor_;
};

}  // namespace vicenter::fakes
