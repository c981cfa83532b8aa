# Nettle::nettle, the cryptographic library: the static one where there is one, because resolving the names of a shared
# one is work at each start of a program. Also part of the installed package.
find_path(Nettle_INCLUDE_DIR nettle/sha2.h)
find_library(Nettle_LIBRARY NAMES libnettle.a nettle)
mark_as_advanced(Nettle_INCLUDE_DIR Nettle_LIBRARY)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Nettle REQUIRED_VARS Nettle_LIBRARY Nettle_INCLUDE_DIR)
if(Nettle_FOUND AND NOT TARGET Nettle::nettle)
  add_library(Nettle::nettle UNKNOWN IMPORTED)
  set_target_properties(Nettle::nettle PROPERTIES
    IMPORTED_LOCATION ${Nettle_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${Nettle_INCLUDE_DIR})
endif()
