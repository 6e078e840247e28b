// libFuzzer target; json_fuzz_replay_test.cpp runs the kept texts in every test run.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "tests/support/json_fuzz_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!vicenter::support::KeepsTheRules({reinterpret_cast<const char*>(data), size})) std::abort();
    return 0;
}
