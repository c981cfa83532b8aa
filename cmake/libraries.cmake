# One library for each folder; the arrows between them run one way.

set(trvtrout_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/trvtrout)

# trvtrout_library(NAME SOURCES FILE... DEPENDS TARGET... [PACKAGE PART] [HEADERS FILE...]): without sources it's
# interfaces alone. With PACKAGE it's installed, as one of the libraries of that part of the CMake package; HEADERS are
# those that its users may include, with all that these include.
function(trvtrout_library name)
  cmake_parse_arguments(arg "" "PACKAGE" "SOURCES;DEPENDS;HEADERS" ${ARGN})
  set(target trvtrout_${name})
  if(arg_SOURCES)
    add_library(${target} STATIC ${arg_SOURCES})
    target_link_libraries(${target} PUBLIC $<BUILD_INTERFACE:trvtrout_options> ${arg_DEPENDS})
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_precompile_headers(${target} REUSE_FROM trvtrout_standard)
  else()
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE $<BUILD_INTERFACE:trvtrout_options> ${arg_DEPENDS})
    target_compile_features(${target} INTERFACE cxx_std_20)
  endif()
  add_library(trvtrout::${name} ALIAS ${target})
  if(arg_PACKAGE)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    install(TARGETS ${target} EXPORT trvtrout_${arg_PACKAGE} COMPONENT development
      INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    list(TRANSFORM arg_HEADERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    set_property(GLOBAL APPEND PROPERTY trvtrout_headers ${arg_HEADERS})
    set_property(GLOBAL APPEND PROPERTY trvtrout_parts ${arg_PACKAGE})
  endif()
endfunction()
