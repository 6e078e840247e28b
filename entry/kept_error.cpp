#include "entry/kept_error.h"

#include <utility>

namespace vicenter::entry {

namespace {

std::optional<automation::Error>& Kept() {
    static std::optional<automation::Error> error;
    return error;
}

}  // namespace

void KeepError(const automation::Error& error) {
    Kept() = error;
}

std::optional<automation::Error> TakeKeptError() {
    return std::exchange(Kept(), std::nullopt);
}

}  // namespace vicenter::entry
