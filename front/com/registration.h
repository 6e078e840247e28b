#pragma once

// The public classes in the system's registry: for one user, or for the whole machine, which wants an
// administrator.

#include <string>

#include "platform/com/com_headers.h"

namespace vicenter::front {

enum class RegisterFor { kUser, kMachine };

// `library` is the path of this library. S_OK, or why not; all is as it was before then.
HRESULT RegisterClasses(RegisterFor whom, const std::wstring& library);
// Removes what RegisterClasses() writes and nothing else. S_OK as well where nothing was registered.
HRESULT UnregisterClasses(RegisterFor whom);

}  // namespace vicenter::front
