# What `cmake --install` puts where. Components: runtime (the command with its documents), library (the shared one),
# development (all that a host is built with).
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TrVtrOut)

if(TARGET vtrout)
  install(TARGETS vtrout RUNTIME COMPONENT runtime)
  # As they stand here, so that their links lead somewhere.
  install(DIRECTORY docs samples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vtrout COMPONENT runtime
    PATTERN expected EXCLUDE PATTERN odd EXCLUDE PATTERN damaged EXCLUDE)
  install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vtrout COMPONENT runtime)
endif()
if(TARGET trvtrout_shared)
  set_target_properties(trvtrout_shared PROPERTIES EXPORT_NAME trvtrout)
  install(TARGETS trvtrout_shared EXPORT trvtrout_trvtrout
    LIBRARY COMPONENT library NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  set_property(GLOBAL APPEND PROPERTY trvtrout_parts trvtrout)
  install(FILES embed/trvtrout.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
  install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libtrvtrout-dev COMPONENT development
    PATTERN windows EXCLUDE)
endif()

get_property(trvtrout_parts GLOBAL PROPERTY trvtrout_parts)
list(REMOVE_DUPLICATES trvtrout_parts)
foreach(part ${trvtrout_parts})
  install(EXPORT trvtrout_${part} NAMESPACE trvtrout:: FILE TrVtrOut-${part}.cmake
    DESTINATION ${package_dir} COMPONENT development)
endforeach()
configure_package_config_file(cmake/TrVtrOutConfig.cmake.in TrVtrOutConfig.cmake INSTALL_DESTINATION ${package_dir}
  NO_SET_AND_CHECK_MACRO)
# The class's interface is stable; before 1.0 the headers behind it aren't.
write_basic_package_version_file(TrVtrOutConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TrVtrOutConfig.cmake ${PROJECT_BINARY_DIR}/TrVtrOutConfigVersion.cmake
              cmake/FindNettle.cmake
  DESTINATION ${package_dir} COMPONENT development)

# Installed headers name each other from trvtrout/ on, so that no folder as general as "text" or "services" is on the
# path of whoever includes them.
get_property(headers GLOBAL PROPERTY trvtrout_headers)
set(trvtrout_headers)
foreach(header ${headers})
  cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
  list(APPEND trvtrout_headers ${header})
endforeach()
configure_file(cmake/install_headers.cmake.in install_headers.cmake @ONLY)
install(SCRIPT ${PROJECT_BINARY_DIR}/install_headers.cmake COMPONENT development)

# Where the tree was installed, seen from the folder of the .pc files, so that it can be moved.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
# trvtrout_pkg_config(NAME DESCRIPTION LIBRARIES)
function(trvtrout_pkg_config name description libraries)
  configure_file(cmake/trvtrout.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
set(class_libraries)
foreach(room component workbook compare reports differences vtrfile text)
  string(APPEND class_libraries " -ltrvtrout_${room}")
endforeach()
trvtrout_pkg_config(trvtrout-component "The class for VTR files, for hosts in C++" "${class_libraries}")
if(TARGET trvtrout_shared)
  trvtrout_pkg_config(trvtrout "The C interface for VTR files" " -ltrvtrout")
endif()
