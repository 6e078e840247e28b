#pragma once

// What blocks in a driver, run beside the user-interface thread while somebody watches: the windows stay
// painted and a wish to stop is taken. Internal to this folder.

#include <chrono>
#include <functional>
#include <vector>

namespace vicenter::ado {

// How long work is waited for that has been asked to stop.
inline constexpr std::chrono::seconds kStopGrace{2};

// Runs `work` to its end; what it throws passes. Where the surroundings watch it runs on a thread of its own
// and `stop` is called, again and again until it ends, as soon as the user wishes to stop. False when it has
// not ended `grace` after that: it is left to itself then, so that whatever it touches must be its own.
// Elsewhere, and on the threads of such work, it simply runs here.
bool RunWatched(std::function<void()> work, const std::function<void()>& stop,
                std::chrono::milliseconds grace = kStopGrace);

// Runs all of the works, each of which must catch what it throws, on as many threads as there are works, and
// waits for them as RunWatched does. Every one of them is left to itself when false comes back.
bool RunSideBySide(std::vector<std::function<void()>> works, const std::function<void()>& stop);

}  // namespace vicenter::ado
