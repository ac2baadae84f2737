# Every library from outside, in one place; each has its reason in ARCHITECTURE.md.
find_package(SQLite3 REQUIRED)
find_package(OpenSSL REQUIRED COMPONENTS Crypto)
find_package(PkgConfig REQUIRED)
pkg_check_modules(UTF8PROC REQUIRED IMPORTED_TARGET libutf8proc)
find_package(tl-expected CONFIG REQUIRED)
find_package(GIF 5 REQUIRED)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)

get_target_property(kind platform TYPE)
if(NOT kind STREQUAL INTERFACE_LIBRARY)
  target_link_libraries(platform PUBLIC tl::expected PRIVATE SQLite::SQLite3 OpenSSL::Crypto PkgConfig::UTF8PROC
    GIF::GIF JPEG::JPEG PNG::PNG)
endif()
