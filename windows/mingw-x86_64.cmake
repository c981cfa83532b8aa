# The 64-bit desktop, by Debian's g++-mingw-w64-x86-64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(mingw x86_64-w64-mingw32)
set(TRVTROUT_WIDL_ARCHITECTURE --win64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
