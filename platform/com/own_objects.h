#pragma once

// The objects of one thread that clients hold: which IDispatch each has, and what has lost its last share on
// another thread. That waits for its own thread, since an object ends where it has lived.

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "automation/object.h"
#include "platform/com/com_object.h"

namespace vicenter::com {

class OwnObjects {
  public:
    static const std::shared_ptr<OwnObjects>& OfThisThread();

    // A new share in the object's IDispatch, or none when it has none. On the own thread.
    IDispatch* Share(const automation::Object* object);
    // The object's IDispatch from now on, and where its shares are counted. On the own thread.
    void Keep(const automation::Object* object, IDispatch* dispatch, ShareCount& shares);
    // The IDispatch has lost its last share, on whatever thread.
    void Drop(automation::ObjectRef object, IDispatch* dispatch);
    // Has what was given up, on whatever thread, wait for the own one.
    void GiveUp(std::shared_ptr<const void> last);
    // Ends what waits for it. On the own thread.
    void EndWaiting();

  private:
    struct Known {
        IDispatch* dispatch;
        ShareCount* shares;
    };
    struct Holder;

    std::mutex lock_;
    std::map<const automation::Object*, Known> known_;
    std::vector<std::shared_ptr<const void>> waiting_;
    bool ended_ = false;  // the thread has
};

}  // namespace vicenter::com
