set(CMAKE_SYSTEM_PROCESSOR i686)
set(VICENTER_WINDOWS_MACHINE i686)
include("${CMAKE_CURRENT_LIST_DIR}/windows.cmake")
# Numbers as in 64 bit: the older unit keeps more digits in between, and what does not fit a float for longer.
string(APPEND CMAKE_C_FLAGS_INIT " -msse2 -mfpmath=sse")
string(APPEND CMAKE_CXX_FLAGS_INIT " -msse2 -mfpmath=sse")
