# Packages for Debian, made by CPack from the installed components; packaging/package calls it.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime library development)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/stage.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Packages of what isn't released yet come after those of the release before it.
file(STRINGS CHANGELOG.md sections REGEX "^## ")
list(GET sections 0 section)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
if(section STREQUAL "## Unreleased")
  string(APPEND CPACK_PACKAGE_VERSION "+unreleased")
endif()
set(CPACK_TRVTROUT_SOURCES ${PROJECT_SOURCE_DIR})

set(CPACK_DEBIAN_PACKAGE_MAINTAINER "TrVtrOut maintainers <maintainers@trvtrout.example>")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# trvtrout_package(COMPONENT NAME SECTION SUMMARY DESCRIPTION): a component as a package of this name.
function(trvtrout_package component name section summary description)
  string(TOUPPER ${component} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_FILE_NAME DEB-DEFAULT PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
endfunction()

trvtrout_package(runtime vtrout utils "report on, compare, export and save binary VTR files"
"vtrout reads the binary VTR files in which a tool keeps its product
definitions. It says what a file holds, writes reports, shows every difference
between two files, exports documents as JSON and to databases, and saves what
can be saved of a damaged file.")
trvtrout_package(library libtrvtrout1 libs "library to read, compare and save binary VTR files"
"A C interface to VTR files, the binary files in which a tool keeps its product
definitions: reports, comparisons, differences, exports and recovery for
programs in any language.")
trvtrout_package(development libtrvtrout-dev libdevel
"library to read, compare and save binary VTR files (development)"
"Headers, static libraries, a CMake package and pkg-config files to build hosts
with: in C by the shared library, in C++ by the class itself.")

# What the binaries need is found in them. Only what they load when they need it has to be named.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
execute_process(COMMAND dpkg-query -S "*/${TRVTROUT_LIBZIP}" OUTPUT_VARIABLE libzip_package ERROR_QUIET)
string(REGEX REPLACE ":.*" "" libzip_package "${libzip_package}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS ${libzip_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS ${libzip_package})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libtrvtrout1 (= ${CPACK_PACKAGE_VERSION})")
# For the static libraries of the parts spreadsheet and platform.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libpugixml-dev, nettle-dev")

include(CPack)
