#include "platform/system/interrupt_key.h"

#include "platform/system/os.h"

namespace vicenter::system {

namespace {

std::atomic<InterruptKeyScope::Function> called{nullptr};
std::atomic<void*> calledWith{nullptr};

void Pressed() {
    if (const auto function = called.load()) function(calledWith.load());
}

}  // namespace

InterruptKeyScope::InterruptKeyScope(Function function, void* data) {
    calledWith = data;
    called = function;
    os::OnInterruptKey(&Pressed);
}

InterruptKeyScope::~InterruptKeyScope() {
    os::OnInterruptKey(nullptr);
    called = nullptr;
}

}  // namespace vicenter::system
