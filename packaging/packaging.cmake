# The program as a desktop and a package manager see it: desktop entry, icon, metadata, manual page, and the Debian
# package (make package). Included last by CMakeLists.txt.
configure_file(${CMAKE_CURRENT_LIST_DIR}/it.korvane.Korvane.metainfo.xml.in
  ${CMAKE_BINARY_DIR}/packaging/it.korvane.Korvane.metainfo.xml @ONLY)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/korvane-cli.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
if(TARGET korvane)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/it.korvane.Korvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/it.korvane.Korvane.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${CMAKE_SOURCE_DIR}/src/shell/icons/korvane.svg RENAME it.korvane.Korvane.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvane)
set(CPACK_PACKAGE_VENDOR "Korvane")
set(CPACK_PACKAGE_CONTACT "Korvane <info@korvane.it>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "workbench that builds a web shop from a catalogue")
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Pictures of the icons are drawn from SVG by a plug-in that no program links with.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
include(CPack)
