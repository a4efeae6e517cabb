# Run by CPack on what it is about to pack: Debian wants manual pages compressed.
file(GLOB pages
  "${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share/man/man?/*")
execute_process(COMMAND gzip -9n ${pages} COMMAND_ERROR_IS_FATAL ANY)
