# What an installation holds beside the programs, and what a package of it says. The prefix can be
# moved as a whole: nothing in it names the place where it was.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(share ${CMAKE_INSTALL_DATADIR})
configure_package_config_file(cmake/xmlppConfig.cmake.in xmlppConfig.cmake
  INSTALL_DESTINATION ${share}/cmake/xmlpp
  PATH_VARS CMAKE_INSTALL_BINDIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(xmlppConfigVersion.cmake
  COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/xmlppConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/xmlppConfigVersion.cmake
  DESTINATION ${share}/cmake/xmlpp)

configure_file(cmake/xmlpp.pc.in xmlpp.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/xmlpp.pc DESTINATION ${share}/pkgconfig)

# As they lie here, so that their links lead somewhere.
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DESCRIPTION_FILE ${PROJECT_SOURCE_DIR}/cmake/description.txt)
set(CPACK_PACKAGE_CONTACT "xmlpp maintainers <xmlpp@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)
