#pragma once

// What a destructor does beyond freeing: whatever fails there stays there.
//
// A destructor that calls an object of the host, writes a file or asks the account set can fail, if only
// because memory is refused, and an exception that leaves it ends the process. So such work goes through
// here.

namespace vicenter::automation {

template <class Work>
void Quietly(const Work& work) noexcept {
    try {
        work();
    } catch (...) {
        // What is left undone is harmless, or the caller has told of it by another way.
    }
}

}  // namespace vicenter::automation
