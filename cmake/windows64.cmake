# Windows on x86-64; programs run under Wine.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triple x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/windows.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine64)
