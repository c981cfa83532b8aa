# Run by CPack between the installation into folders, one for each component, and the making of the packages: adds what
# only packages have, and brings the files into the form that they have there.
set(names runtime:vtrout library:libtrvtrout1 development:libtrvtrout-dev)
foreach(name ${names})
  string(REPLACE ":" ";" name ${name})
  list(GET name 0 component)
  list(GET name 1 package)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component})
  set(documents ${root}/usr/share/doc/${package})
  file(COPY ${CPACK_TRVTROUT_SOURCES}/packaging/copyright DESTINATION ${documents}
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  execute_process(COMMAND ${CPACK_TRVTROUT_SOURCES}/packaging/debian_changelog ${package} ${CPACK_PACKAGE_VERSION}
    WORKING_DIRECTORY ${CPACK_TRVTROUT_SOURCES} OUTPUT_FILE ${documents}/changelog COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB pages ${root}/usr/share/man/man*/*)
  execute_process(COMMAND gzip -9n ${documents}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB archives ${root}/usr/lib/*/*.a)
  if(archives)
    execute_process(COMMAND strip --strip-debug --remove-section=.comment --enable-deterministic-archives ${archives}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
