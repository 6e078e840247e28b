#include "tests/fakes/refused_memory.h"

#include <cstdlib>
#include <new>

namespace vicenter::fakes::memory {

bool Refuses() {
    if (granted < 0) return false;
    if (granted > 0) {
        --granted;
        return false;
    }
    refused = true;
    if (--refusals == 0) granted = -1;
    return true;
}

namespace {

void* Allocate(std::size_t bytes) {
    if (Refuses()) throw std::bad_alloc();
    void* memory = std::malloc(bytes == 0 ? 1 : bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

}  // namespace vicenter::fakes::memory

void* operator new(std::size_t bytes) {
    return vicenter::fakes::memory::Allocate(bytes);
}
void* operator new[](std::size_t bytes) {
    return vicenter::fakes::memory::Allocate(bytes);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
