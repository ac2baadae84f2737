# All libraries from outside; each has its reason in ARCHITECTURE.md.
find_package(SQLite3 REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto SSL)
find_package(CURL 7.85 REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)
pkg_check_modules(RE2 REQUIRED IMPORTED_TARGET re2)
pkg_check_modules(SSH2 REQUIRED IMPORTED_TARGET libssh2)
pkg_check_modules(PICTURES REQUIRED IMPORTED_TARGET libwebp libwebpdemux libexif lcms2 libzip)
pkg_check_modules(SHEETS REQUIRED IMPORTED_TARGET expat xlsxwriter)
pkg_check_modules(MDB REQUIRED IMPORTED_TARGET libmdb)
find_package(tl-expected CONFIG REQUIRED)
find_package(GIF 5 REQUIRED)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)

get_target_property(kind platform TYPE)
if(NOT kind STREQUAL INTERFACE_LIBRARY)
  target_link_libraries(platform PUBLIC tl::expected PRIVATE SQLite::SQLite3 OpenSSL::Crypto OpenSSL::SSL
    CURL::libcurl PkgConfig::UTF8PROC PkgConfig::RE2 PkgConfig::SSH2 GIF::GIF JPEG::JPEG PNG::PNG
    PkgConfig::PICTURES PkgConfig::SHEETS PkgConfig::MDB)
endif()

# The windows alone need Qt; without it the core and the command line program are built all the same.
find_package(Qt6 6.4 QUIET COMPONENTS Widgets PrintSupport Svg DBus Test)
if(NOT Qt6_FOUND)
  message(STATUS "Qt 6 is missing: the window is left out")
endif()
