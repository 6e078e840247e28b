#include "front/handles.h"

#include <utility>

namespace vicenter::front {

std::size_t& LiveObjects() {
    static std::size_t count = 0;
    return count;
}

vic_object* NewHandle(automation::ObjectRef object) {
    if (!object) return nullptr;
    auto* handle = new vic_object{std::move(object)};
    ++LiveObjects();
    return handle;
}

void Retain(vic_object* handle) {
    ++handle->shares;
}

void Release(vic_object* handle) {
    if (handle == nullptr || --handle->shares != 0) return;
    --LiveObjects();
    delete handle;
}

}  // namespace vicenter::front
