#include "platform/com/own_objects.h"

#include <utility>

#include "platform/system/thread_value.h"

namespace vicenter::com {

struct OwnObjects::Holder {
    std::shared_ptr<OwnObjects> objects = std::make_shared<OwnObjects>();

    Holder() = default;
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() {
        {
            const std::lock_guard guard(objects->lock_);
            objects->ended_ = true;
        }
        objects->EndWaiting();
    }
};

const std::shared_ptr<OwnObjects>& OwnObjects::OfThisThread() {
    return system::ValueOfThisThread<Holder>().objects;
}

IDispatch* OwnObjects::Share(const automation::Object* object) {
    const std::lock_guard guard(lock_);
    const auto found = known_.find(object);
    if (found == known_.end()) return nullptr;
    // Another thread may just be giving back the last one.
    return found->second.shares->AddUnlessEnded() ? found->second.dispatch : nullptr;
}

void OwnObjects::Keep(const automation::Object* object, IDispatch* dispatch, ShareCount& shares) {
    const std::lock_guard guard(lock_);
    known_.insert_or_assign(object, Known{dispatch, &shares});
}

void OwnObjects::Drop(automation::ObjectRef object, IDispatch* dispatch) {
    {
        const std::lock_guard guard(lock_);
        const auto found = known_.find(object.get());
        if (found != known_.end() && found->second.dispatch == dispatch) known_.erase(found);
    }
    GiveUp(std::move(object));
}

void OwnObjects::GiveUp(std::shared_ptr<const void> last) {
    const bool here = this == OfThisThread().get();
    // Where it ends, it does so beyond the lock: the argument is the caller's to destroy.
    const std::lock_guard guard(lock_);
    if (!here && !ended_) waiting_.push_back(std::move(last));
}

void OwnObjects::EndWaiting() {
    std::vector<std::shared_ptr<const void>> ending;  // beyond the lock, since an object's end may end others
    {
        const std::lock_guard guard(lock_);
        ending.swap(waiting_);
    }
}

}  // namespace vicenter::com
