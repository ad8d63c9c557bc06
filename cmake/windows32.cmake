# Windows on 32-bit x86: built only, nothing runs such programs here.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(triple i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
