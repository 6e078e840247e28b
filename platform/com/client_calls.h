#pragma once

// The calls of COM's clients: Windows alone has any. Any thread.

namespace vicenter::com {

// Those of members of our objects that have not come back yet, in the whole process.
#ifdef _WIN32
long ClientCallsUnderWay();
#else
inline long ClientCallsUnderWay() {
    return 0;
}
#endif

}  // namespace vicenter::com
