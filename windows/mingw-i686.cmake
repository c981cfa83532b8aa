# The 32-bit desktop, by Debian's g++-mingw-w64-i686.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(mingw i686-w64-mingw32)
set(TRVTROUT_WIDL_ARCHITECTURE --win32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
