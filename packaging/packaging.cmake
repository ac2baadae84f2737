# The program as a desktop and a package manager see it: desktop entry, icons, metadata, manual pages, the papers that
# Debian asks for, and the Debian package itself (make package). Included last by CMakeLists.txt.
set(papers ${CMAKE_BINARY_DIR}/packaging)
set(app_id it.korvane.Korvane)
set(packaged_documents)

# The date of this version is that of the newest entry of the Debian changelog, which must be about this version.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/changelog)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/changelog changes)
list(GET changes 0 newest)
if(NOT newest MATCHES "^korvane \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "packaging/changelog opens with \"${newest}\", which is not version ${PROJECT_VERSION}")
endif()
list(FILTER changes INCLUDE REGEX "^ -- ")
list(GET changes 0 signed)
set(months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
if(NOT signed MATCHES ", +([0-9]+) ([A-Z][a-z][a-z]) ([0-9][0-9][0-9][0-9]) ")
  message(FATAL_ERROR "packaging/changelog: the newest entry is not dated: ${signed}")
endif()
set(day ${CMAKE_MATCH_1})
set(year ${CMAKE_MATCH_3})
list(FIND months ${CMAKE_MATCH_2} month)
math(EXPR month "${month} + 101")
math(EXPR day "${day} + 100")
string(SUBSTRING ${month} 1 2 month)
string(SUBSTRING ${day} 1 2 day)
set(KORVANE_RELEASE_DATE ${year}-${month}-${day})

# korvane_zipped(RESULT SOURCE FOLDER): SOURCE, compressed without name and date as Debian wants it, installed in FOLDER.
find_program(GZIP gzip REQUIRED)
function(korvane_zipped result source folder)
  add_custom_command(OUTPUT ${papers}/${result} DEPENDS ${source} VERBATIM
    COMMAND ${CMAKE_COMMAND} -E copy ${source} ${papers}/plain-${result}
    COMMAND sh -c "gzip -9n <\"$1\" >\"$2\"" gzip ${papers}/plain-${result} ${papers}/${result}
    COMMENT "Compressing ${result}")
  install(FILES ${papers}/${result} DESTINATION ${folder})
  set(packaged_documents ${packaged_documents} ${papers}/${result} PARENT_SCOPE)
endfunction()

set(programs korvane-cli)
if(TARGET korvane)
  list(APPEND programs korvane)
endif()
foreach(program IN LISTS programs)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${program}.1.in ${papers}/${program}.1 @ONLY)
  korvane_zipped(${program}.1.gz ${papers}/${program}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
korvane_zipped(changelog.gz ${CMAKE_CURRENT_LIST_DIR}/changelog ${CMAKE_INSTALL_DOCDIR})
install(FILES ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(TARGET korvane)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${app_id}.metainfo.xml.in ${papers}/${app_id}.metainfo.xml @ONLY)
  install(FILES ${papers}/${app_id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/${app_id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  set(drawing ${CMAKE_SOURCE_DIR}/src/shell/icons/korvane.svg)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  install(FILES ${drawing} RENAME ${app_id}.svg DESTINATION ${icons}/scalable/apps)
  # Some panels and software centres show pictures in points only.
  foreach(side 32 48 64 128)
    set(picture ${papers}/icon-${side}.png)
    add_custom_command(OUTPUT ${picture} DEPENDS ${drawing} VERBATIM COMMENT "Rendering the icon, ${side} pixels"
      COMMAND ${KORVANE_rsvg-convert} -w ${side} -h ${side} -o ${picture} ${drawing})
    install(FILES ${picture} RENAME ${app_id}.png DESTINATION ${icons}/${side}x${side}/apps)
    list(APPEND packaged_documents ${picture})
  endforeach()
endif()
add_custom_target(korvane_papers ALL DEPENDS ${packaged_documents})
# What is installed is tested with the programs.
if(TARGET program_tests)
  add_dependencies(program_tests korvane_papers)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvane)
set(CPACK_PACKAGE_VENDOR "Korvane")
set(CPACK_PACKAGE_CONTACT "Korvane <info@korvane.example>")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://korvane.example/")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "workbench that turns a catalogue into a complete web shop")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"A merchant who works alone keeps departments, articles, variants and ten price
lists in up to four languages, and chooses a template. Korvane turns them into
a complete shop for an ordinary web host: PHP pages, scripts and pictures, and
the rows of its MySQL database. One shop is one folder.
.
The package holds the window (korvane), the same work from the command line
(korvane-cli), a model shop, templates and language modules. The texts of the
window are Italian.")
set(CPACK_DEBIAN_PACKAGE_SECTION web)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The toolkit's own words in Italian. The plug-in that draws the icons comes with the library of its pictures, which the
# window links with.
set(CPACK_DEBIAN_PACKAGE_DEPENDS qt6-translations-l10n)
# xdg-open shows pages and addresses in the user's browser; the plug-in is for desktops without an X server.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
# For "Vedi il negozio", which tells how to get them.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "python3, php-fpm, php-mysql, nginx, mariadb-server")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
