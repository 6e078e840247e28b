#include "tsql/sqlite/file_system.h"

namespace vicenter::tsql::engine {

namespace {

thread_local NapRule* current = nullptr;

}  // namespace

NapRule::NapRule(Nap nap, void* caller) : nap_(nap), caller_(caller), before_(current) {
    current = this;
}

NapRule::~NapRule() {
    current = before_;
}

bool NapRule::Apply(std::chrono::microseconds asked) {
    if (current == nullptr) return false;
    current->nap_(current->caller_, asked);
    return true;
}

}  // namespace vicenter::tsql::engine
