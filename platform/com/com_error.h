#pragma once

// Errors between the project's exception and what COM calls give.

#include "automation/error.h"
#include "platform/com/com_headers.h"

namespace vicenter::com {

// The error's number as a result of a call: 0x800A and the number, as script hosts take it apart again.
HRESULT ResultOf(const automation::Error& error);
void Fill(EXCEPINFO& info, const automation::Error& error);
// For clients that ask for the error afterwards.
void Announce(const automation::Error& error);

// What a call to somebody else's object failed with. Takes the texts of `info` over.
automation::Error ErrorOf(HRESULT code, EXCEPINFO& info);

// Runs a call from outside: whatever is thrown becomes its result and fills `info`, where there is one.
template <class Work>
HRESULT Guarded(EXCEPINFO* info, const Work& work) noexcept;

HRESULT Told(EXCEPINFO* info, const automation::Error& error) noexcept;

template <class Work>
HRESULT Guarded(EXCEPINFO* info, const Work& work) noexcept {
    try {
        try {
            return work();
        } catch (const automation::Error& error) {
            return Told(info, error);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (const std::exception& error) {
            return Told(info, automation::Error(automation::error_number::kInvalidProcedureCall, error.what(),
                                                "VelaVICenter"));
        }
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace vicenter::com
