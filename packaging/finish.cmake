# Run by CPack when the files of all packages lie in their folders: makes them as Debian wants them.
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(name ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
  file(COPY ${CPACK_VIDEODOWN_PACKAGING}/copyright DESTINATION ${share}/doc/${name}
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
    DIRECTORY_PERMISSIONS ${CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
  set(changelog ${share}/doc/${name}/changelog.Debian)
  run(${CPACK_VIDEODOWN_PACKAGING}/debian-changelog ${CPACK_VIDEODOWN_CHANGELOG} ${name}
    ${CPACK_DEBIAN_PACKAGE_RELEASE} ${CPACK_PACKAGE_CONTACT} OUTPUT_FILE ${changelog})
  file(CHMOD ${changelog} FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  file(GLOB pages ${share}/man/man*/*.[1-9])
  run(gzip -9nf ${changelog} ${pages})
endforeach()
